// The fixture of tests of the built plug-in: a host that has loaded it, and calls whose locks and
// references are checked.
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

/// The library under test: the built one, or the one that LMX_LIBRARY names.
std::string LibraryPath();

/// The outcome of a call.
struct Called {
  host::Picture result;  ///< nil for a method without a result
  int code = 0;          ///< the error code, from LMX_GetLastError
  int yields = 0;
  std::vector<host::Value> arguments;  ///< as passed; ByRef arguments with the values that the method wrote
};

/// The row that a buffer lacks, if any.
enum class MissingRow { None, First, Inner, Last };
/// The numbers of the missing rows in a picture of that height.
std::set<int> MissingRows(MissingRow missing, int height);

/// How the size of a new picture differs from the requested one. Halves are rounded up, and no size
/// is below 1.
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
  host::Storage form = host::Storage::BitmapContext;
  host::Layout layout = {};
  model::Fault fault = model::Fault::None;
  unsigned variant = 0;  ///< see DefectsFor
  MissingRow missing = MissingRow::None;
  Resized resized = Resized::No;
};

/// The circumstances of a method call.
struct Setting {
  std::optional<model::StoredPicture> source;  ///< empty: the source is nil, or the method has none
  host::Layout layout = {};                    ///< layout of the source
  unsigned variant = 0;                        ///< variant of the source's fault
  std::vector<NewPicture> newPictures;         ///< in order; further ones are like the default
  std::int64_t mostPixels = 1 << 17;           ///< the host has no memory for a larger new picture

  // Malformed pictures: these change shapes after all of the above.
  std::function<void(host::PictureShape& shape)> spoilSource = {};
  std::function<void(int ordinal, host::PictureShape& shape)> spoilNew = {};
  bool lacksContexts = false;  ///< a bitmap context function is missing from the process
};

/// The value that a picture of this shape has for the plug-in in this setting.
model::StoredPicture ValueIn(const Setting& setting, const host::PictureShape& shape);

/// The new pictures of a setting, as the model's values and as the host's option
/// (host::NewPictures). The setting must outlive both.
model::MakePicture NewValues(const Setting& setting);
std::function<void(int ordinal, host::PictureShape& shape)> NewShapes(const Setting& setting);

/// A method with arguments, for the plug-in and for the model.
struct MethodCall {
  MethodCall(const Method& called, Arguments values) : method(&called), arguments(std::move(values)) {}
  MethodCall(const std::string& name, Arguments values) : MethodCall(FindMethod(name), std::move(values)) {}
  /// An operation, on a source whose size gives a result of about that size.
  MethodCall(const Operation& operation, Size result, host::Colour colour, int yield);

  model::Outcome ByModel(const std::optional<model::StoredPicture>& source, const model::MakePicture& make) const {
    return method->byModel(source ? &*source : nullptr, arguments, make);
  }

  const Method* method;
  Arguments arguments;  ///< after the source
};

/// Compares the outcome of a call with the model: the result, the values, and the source
/// afterwards. `before` are the arguments as they were passed, including the source.
void CheckResults(const model::Outcome& expected, const Setting& setting, const std::vector<host::Value>& before,
                  const Called& called);

class PluginTest : public testing::Test {
 protected:
  PluginTest() { host_.Load(LibraryPath()); }

  /// Calls a method and checks what holds for every call: no lock is left; padding is intact;
  /// picture arguments are unchanged, except by methods that work in place; references are as
  /// before; the result has one reference, the caller's; and `lost` new pictures have no owner.
  Called Run(const std::string& name, const std::vector<host::Value>& arguments, int lost = 0);

  /// Does the same and compares everything with the model: result, code, values, the changed
  /// source, every yield, the complete and the untouched lines at each yield, and the new pictures
  /// that exist at each yield.
  void CheckCall(const MethodCall& call, const Setting& setting);

  int LastError() { return host_.Call("GetLastError", {}).result.AsInteger(); }

  host::Host host_;

 private:
  class Watch;
};

/// The new pictures that exist, each with its number: the order, from 1, in which the host made
/// them since ResetCounts.
std::vector<std::pair<std::size_t, host::Picture>> LiveNewPictures(const host::Host& host);

}  // namespace support
