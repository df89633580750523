// A process that lacks the bitmap context function LMX_MISSING ("all": every one). Pictures of that
// form cannot be locked; buffers are not affected.
#include <dlfcn.h>

#include <string>

#include "plugin/FaultsTest.h"

namespace faults {

using host::Storage;

namespace {

const char* const kFunctions[] = {"CGBitmapContextGetWidth", "CGBitmapContextGetHeight",
                                  "CGBitmapContextGetBitsPerPixel", "CGBitmapContextGetBytesPerRow",
                                  "CGBitmapContextGetData"};

}  // namespace

class MissingContext : public FaultsTest {
 protected:
  // With a source of that form, and buffers as new pictures.
  static void ForEveryOperationOn(Storage source, const Body& body) {
    for (const Operation& operation : support::Operations()) {
      SCOPED_TRACE(operation.name);
      Setting setting = SettingOf(operation, source, Storage::Buffer);
      setting.lacksContexts = true;
      body(CallOf(operation), setting);
    }
  }
};

TEST_F(MissingContext, ItAloneIsMissing) {
  for (const std::string function : kFunctions) {
    const bool missing = function == LMX_MISSING || std::string("all") == LMX_MISSING;
    EXPECT_EQ(dlsym(RTLD_DEFAULT, function.c_str()) == nullptr, missing) << function;
  }
}

TEST_F(MissingContext, SourcesCannotBeLocked) {
  ForEveryOperationOn(Storage::BitmapContext, [this](const MethodCall& call, const Setting& setting) {
    if (!call.method->hasSource) return;
    Check(call, setting);
    EXPECT_EQ(ServiceCalls(*call.method, *host_), std::vector<std::string>({"lock S", "unlock S"}));
  });
}

TEST_F(MissingContext, NewPicturesCannotBeLocked) {
  ForEveryOperationOn(Storage::Buffer, [this](const MethodCall& call, const Setting& setting) {
    for (std::size_t made = 0; made < std::string(call.method->made).size(); ++made) {
      SCOPED_TRACE(made);
      Setting context = setting;
      context.newPictures[made].form = Storage::BitmapContext;
      Check(call, context);
    }
  });
}

TEST_F(MissingContext, BuffersWork) {
  ForEveryOperationOn(Storage::Buffer, [this](const MethodCall& call, const Setting& setting) {
    EXPECT_EQ(Check(call, setting), 0);
    EXPECT_EQ(ServiceCalls(*call.method, *host_), ServiceCalls(*call.method));
  });
}

}  // namespace faults
