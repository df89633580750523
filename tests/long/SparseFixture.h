// The fixture of tests with pictures far larger than what is written to them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "host/Host.h"
#include "support/ModelPicture.h"

namespace sparse {

/// A source with opaque pixels in some bands of rows. The words of all others are 0.
struct Source {
  host::Picture picture;  ///< nil if there is no room for it
  model::Picture pixels;
};

class Pictures : public testing::Test {
 protected:
  /// New pictures are sparse, too.
  Pictures();
  /// No lock and no object is left.
  ~Pictures() override;

  /// Bands of `rows` rows at the top, in the middle, at the bottom, and where the offset of a row
  /// passes 2^31 and 2^32 bytes. Nil where the process has not enough addresses.
  static Source MakeSource(int width, int height, int rows, host::Storage storage = host::Storage::BitmapContext);

  /// The first row of each band.
  static std::vector<int> Bands(int width, int height, int rows);

  /// Compares every nth row, the last one included. Some of the pixels must not be 0.
  static void CheckRows(const host::Picture& got, const model::Picture& expected, int step);

  /// Calls a method that makes a picture; code 0.
  host::Picture Make(const std::string& method, const std::vector<host::Value>& arguments);
  int LastError() { return host_.Call("GetLastError", {}).result.AsInteger(); }

  host::Host host_;
};

/// Whether the machine has that much memory to spare.
bool HasMemory(double gibibytes);

}  // namespace sparse
