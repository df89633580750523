// The fixture of tests of the built plug-in: a host that has loaded it, and calls whose books are
// checked.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "MethodTable.h"
#include "Model.h"
#include "host/Host.h"

namespace support {

/// The library under test: the built one, or what LMX_LIBRARY names.
std::string LibraryPath();

/// What a call gave.
struct Called {
  host::Picture result;  ///< nil for a method without one
  int code = 0;          ///< of the call, as LMX_GetLastError tells it
  int yields = 0;
  std::vector<host::Value> arguments;  ///< with what ByRef ones hold now
};

/// One row that a buffer lacks.
enum class MissingRow { None, First, Inner, Last };
/// The rows that a picture of a height lacks then.
std::set<int> MissingRows(MissingRow missing, int height);

/// A size that differs from the one that was asked for in one thing; halves are rounded up, and
/// nothing is below 1.
enum class Resized {
  No,
  WiderByOne,
  WiderByHalf,
  NarrowerByOne,
  HalfAsWide,
  TallerByOne,
  TallerByHalf,
  LowerByOne,
  HalfAsHigh
};

/// One new picture that the host will make.
struct NewPicture {
  model::Form form = model::Form::BitmapContext;
  host::Layout layout = {};
  model::Fault fault = model::Fault::None;
  unsigned variant = 0;  ///< see DefectsFor
  MissingRow missing = MissingRow::None;
  Resized resized = Resized::No;
};

/// What surrounds a call of a method.
struct Setting {
  std::optional<model::StoredPicture> source;  ///< nothing: nil, or a method without a source
  host::Layout layout = {};                    ///< of the source
  unsigned variant = 0;                        ///< of the source's fault
  std::vector<NewPicture> newPictures;         ///< in order; more are like the default
  std::int64_t mostPixels = 1 << 17;           ///< for a larger new picture the host has no memory

  // Malformed pictures. These change shapes after everything above.
  std::function<void(host::PictureShape& shape)> spoilSource = {};
  std::function<void(int ordinal, host::PictureShape& shape)> spoilNew = {};
  bool lacksContexts = false;  ///< no process function tells the pixels of a bitmap context
};

/// What a picture of a shape is to the plug-in then.
model::StoredPicture ValueIn(const Setting& setting, const host::PictureShape& shape);

/// What the host makes in that setting, which must outlive them: as values, and as the host is told
/// (host::NewPictures).
model::MakePicture NewValues(const Setting& setting);
std::function<void(int ordinal, host::PictureShape& shape)> NewShapes(const Setting& setting);

/// A method with arguments, for the plug-in and for the model.
struct MethodCall {
  MethodCall(const Method& called, Arguments values) : method(&called), arguments(std::move(values)) {}
  MethodCall(const std::string& name, Arguments values) : MethodCall(FindMethod(name), std::move(values)) {}
  /// An operation on a source that gives a result of about that size.
  MethodCall(const Operation& operation, Size result, host::Colour colour, int yield);

  model::Outcome ByModel(const std::optional<model::StoredPicture>& source, const model::MakePicture& make) const {
    return method->byModel(source ? &*source : nullptr, arguments, make);
  }

  const Method* method;
  Arguments arguments;  ///< after the source
};

/// Compares what a call gave with the model: the result, the values, and the source afterwards.
/// `before` are the arguments as they were passed, the source included.
void CheckResults(const model::Outcome& expected, const Setting& setting, const std::vector<host::Value>& before,
                  const Called& called);

class PluginTest : public testing::Test {
 protected:
  PluginTest() { host_.Load(LibraryPath()); }

  /// Calls a method and checks what holds for every call: no lock is left, padding is intact, every
  /// picture argument is untouched (but by methods that work in place), references are as before,
  /// the result has exactly one, the caller's, and `lost` new pictures are left without an owner.
  Called Run(const std::string& name, const std::vector<host::Value>& arguments, int lost = 0);

  /// Does the same and compares everything with the model: result, code, values, the changed
  /// source, every yield, what is complete and what is untouched at each yield, and which new
  /// pictures exist then.
  void CheckCall(const MethodCall& call, const Setting& setting);

  int LastError() { return host_.Call("GetLastError", {}).result.AsInteger(); }

  host::Host host_;

 private:
  class Watch;
};

/// The new pictures that exist, with the number in the order in which the host made them since
/// ResetCounts (from 1).
std::vector<std::pair<std::size_t, host::Picture>> LiveNewPictures(const host::Host& host);

}  // namespace support
