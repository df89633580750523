// The fixture of tests on pictures that are far larger than the memory that is written.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/Host.h"
#include "support/ModelPicture.h"

namespace sparse {

/// A source with opaque pixels in some bands of rows. All other words are 0.
struct Source {
  host::Picture picture;  ///< nil if there are not enough addresses for it
  model::Picture pixels;
};

class Pictures : public testing::Test {
 protected:
  /// Makes new pictures sparse, too.
  Pictures();
  /// Checks that no lock and no object is left.
  ~Pictures() override;

  /// Bands of `rows` rows at the top, in the middle, at the bottom, and where the offset of a row
  /// passes 2^31 and 2^32 bytes. Nil if the process does not have enough addresses.
  static Source MakeSource(int width, int height, int rows, host::Storage storage = host::Storage::BitmapContext);

  /// The first row of each band.
  static std::vector<int> Bands(int width, int height, int rows);

  /// Compares every nth row and the last one. At least some pixels must not be 0.
  static void CheckRows(const host::Picture& got, const model::Picture& expected, int step);

  /// Calls a method that makes a picture, and expects code 0.
  host::Picture Make(const std::string& method, const std::vector<host::Value>& arguments);
  int LastError() { return host_.Call("GetLastError", {}).result.AsInteger(); }

  host::Host host_;
};

/// Whether the machine has that much unused memory.
bool HasMemory(double gibibytes);

}  // namespace sparse
