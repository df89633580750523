// The error code from call to call, its messages, and the result in a host without a picture class.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/PluginTest.h"

namespace {

using host::Colour;
using host::Picture;
using host::Service;
using host::Storage;
using host::Value;

class HostEntryErrors : public support::PluginTest {
 protected:
  std::string Message(int code) { return host_.Call("GetErrorMessage", {code}).result.AsText(); }
};

TEST_F(HostEntryErrors, StartWithNone) {
  EXPECT_EQ(LastError(), 0);
}

TEST_F(HostEntryErrors, EveryOtherCodeIsUnknown) {
  for (const int code :
       {1, 3, 51, 52, 255, 256, INT_MAX, INT_MAX - 1, -1, -2, -256, INT_MIN, INT_MIN + 1, INT_MIN + 2}) {
    EXPECT_EQ(Message(code), "Unknown Error") << code;
  }
}

TEST_F(HostEntryErrors, AMessageIsANewTextEveryTime) {
  for (int call = 1; call <= 3; ++call) {
    Message(6);
    EXPECT_EQ(host_.Calls(Service::BuildString), call);
    EXPECT_EQ(host_.Lookups(Service::BuildString), 1);
    EXPECT_TRUE(host_.Leaks().empty());
  }
}

TEST_F(HostEntryErrors, NoTextNoMessage) {
  host_.FailAt(Service::BuildString, 1);
  EXPECT_TRUE(host_.Call("GetErrorMessage", {6}).result.IsNil());
  EXPECT_EQ(Message(6), "General Error: can't lock result picture");
}

TEST_F(HostEntryErrors, ReadingDoesNotClear) {
  host_.Call("Trim", {Value(), 0, 0, 1, 1, Colour{0}, 0});
  EXPECT_EQ(LastError(), 2);
  EXPECT_EQ(LastError(), 2);
  EXPECT_EQ(Message(31), "Rotate Error: \"rotation\" parameter is out of bounds");
  EXPECT_EQ(Message(-5), "Unknown Error");
  EXPECT_EQ(LastError(), 2);
}

TEST_F(HostEntryErrors, BelongToTheLastOperation) {
  const Picture picture({3, 2, Storage::Buffer, {}, {}});
  const std::vector<std::pair<int, std::vector<Value>>> trims = {
      {2, {Value(), 0, 0, 1, 1, Colour{0}, 0}},
      {0, {picture, 0, 0, 1, 1, Colour{0}, 0}},
      {39, {picture, 0, 0, 0, 1, Colour{0}, 0}},
      {0, {picture, -9, -9, 2, 2, Colour{0}, 0}},
      {6, {picture, 0, 0, INT_MAX, INT_MAX, Colour{0}, 0}},
      {2, {Value(), 0, 0, 0, 0, Colour{0}, 0}},
  };
  // If the host has no memory for a picture, the picture cannot be locked.
  host_.newPictures.storage = Storage::BitmapContext;
  for (const auto& [code, arguments] : trims) {
    host_.Call("Trim", arguments);
    EXPECT_EQ(LastError(), code);
    host_.DropLeaks();
  }
}

// ------------------------------------------------------------------------ a host without the class

struct NoClassCase {
  const char* method;
  std::vector<Value> arguments;
  int code;
};

TEST(HostEntryNoClass, MethodsThatMakePicturesFail) {
  host::Host host;
  host.Withhold(Service::GetClassRef);
  host.Load(support::LibraryPath());
  const Picture p({3, 2, Storage::Buffer, {}, {}});
  const Colour c = {0x123456};
  const std::vector<NoClassCase> cases = {
      {"AdjustHSV", {p, 0, 0, 2, 2, 10.0, 1.0, 1.0, false, 0}, 6},
      {"AdjustRGB", {p, 0, 0, 2, 2, 1, 2, 3, 0}, 6},
      {"FlipRotate", {p, true, false, 90, 0}, 6},
      {"MakeGradient", {3, 2, c, c, 0}, 6},
      {"MakeDoubleGradient", {3, 2, c, c, c, 0}, 6},
      {"Trim", {p, 0, 0, 2, 2, c, 0}, 6},
      {"FreeRotateByShear", {p, 30.0, c, 0}, 0},
      {"ShearHorizontal", {p, 3, 2, 0.5, c, 0}, 0},
      {"ShearVertical", {p, 3, 2, 0.5, c, 0}, 0},
      {"Stretch", {p, 3, 2, 0}, 0},
  };
  for (const NoClassCase& method : cases) {
    SCOPED_TRACE(method.method);
    EXPECT_TRUE(host.Call(method.method, method.arguments).result.IsNil());
    EXPECT_EQ(host.Call("GetLastError", {}).result.AsInteger(), method.code);
    EXPECT_TRUE(host.Leaks().empty());
  }
  EXPECT_EQ(host.Lookups(Service::NewInstance), 0) << "nothing can be made of a nil class";
  EXPECT_EQ(host.Lookups(Service::GetClassRef), 1) << "the class is looked up at load only";
}

TEST(HostEntryNoClass, TheOthersWork) {
  host::Host host;
  host.Withhold(Service::GetClassRef);
  host.Load(support::LibraryPath());
  Picture p({1, 1, Storage::Buffer, {}, {}});
  p.Fill(0x00102030);
  EXPECT_EQ(host.Call("GetAverageRGB", {p, 0, 0, 0, 0, -1, -1, -1, 0}).arguments[6], Value(0x20));
  EXPECT_EQ(host.Call("GetAverageHSV", {p, 0, 0, 0, 0, -1.0, -1.0, -1.0, 0}).arguments[7], Value(48 / 256.0));
  host.Call("AdjustRGB_InPlace", {p, 0, 0, 0, 0, 1, 1, 1, 0});
  EXPECT_EQ(p.Stored(0, 0), 0x00112131u);
  host.Call("AdjustHSV_InPlace", {p, 0, 0, 0, 0, 0.0, 0.0, 1.0, false, 0});
  EXPECT_EQ(p.Stored(0, 0), 0x00313131u);
  EXPECT_EQ(host.Call("GetLastError", {}).result.AsInteger(), 0);
}

}  // namespace
