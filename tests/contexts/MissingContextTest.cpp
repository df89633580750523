// A process that lacks a bitmap context function, LMX_MISSING ("all": every one): pictures of that
// form cannot be locked, buffers work as ever.
#include <dlfcn.h>

#include <string>

#include "plugin/FaultsCases.h"

namespace faults {

using host::PictureShape;
using host::Storage;

namespace {

constexpr Forms kBuffersOnly = {Storage::Buffer, Storage::Buffer};
const char* const kFunctions[] = {"CGBitmapContextGetWidth", "CGBitmapContextGetHeight",
                                  "CGBitmapContextGetBitsPerPixel", "CGBitmapContextGetBytesPerRow",
                                  "CGBitmapContextGetData"};

}  // namespace

class MissingContext : public FaultsTest {
 protected:
  // The nth new picture is a bitmap context, the others are buffers.
  Ran RunWithContext(const MethodCase& method, std::size_t made) {
    const Ran ran = Run(method, kBuffersOnly, [&] {
      host_->newPictures.change = [made](int ordinal, PictureShape& shape) {
        if (ordinal == static_cast<int>(made) + 1) shape.storage = Storage::BitmapContext;
      };
    });
    host_->newPictures.change = nullptr;
    return ran;
  }
};

TEST_F(MissingContext, ItAloneIsMissing) {
  for (const std::string function : kFunctions) {
    const bool missing = function == LMX_MISSING || std::string("all") == LMX_MISSING;
    EXPECT_EQ(dlsym(RTLD_DEFAULT, function.c_str()) == nullptr, missing) << function;
  }
}

TEST_F(MissingContext, SourcesCannotBeLocked) {
  for (const MethodCase& method : Methods()) {
    if (!method.hasSource) continue;
    SCOPED_TRACE(method.name);
    const Ran ran = Run(method, Forms{Storage::BitmapContext, Storage::Buffer});
    ExpectFailure(method, method.source, ran);
    EXPECT_TRUE(ran.leaks.empty());
    EXPECT_EQ(Sequence(method, ran), std::vector<std::string>({"lock S", "unlock S"}));
  }
}

TEST_F(MissingContext, NewPicturesCannotBeLocked) {
  for (const MethodCase& method : Methods()) {
    for (std::size_t made = 0; made < method.made.size(); ++made) {
      SCOPED_TRACE(testing::Message() << method.name << ", new picture " << made + 1);
      const bool result = method.made[made] == Role::Result;
      const Failure& expected = result ? method.resultLock : method.temporary;
      const Ran ran = RunWithContext(method, made);
      ExpectFailure(method, expected, ran);
      const bool left = result && !expected.returnsResult;
      EXPECT_EQ(ran.leaks.size(), left ? 1u : 0u) << "a temporary picture is given up, a result never";
    }
  }
}

TEST_F(MissingContext, BuffersWork) {
  for (const MethodCase& method : Methods()) {
    SCOPED_TRACE(method.name);
    const Ran ran = Run(method, kBuffersOnly);
    EXPECT_EQ(ran.code, 0);
    EXPECT_EQ(Sequence(method, ran), method.sequence);
    ASSERT_EQ(!ran.result.IsNil(), method.MakesResult());
    if (ran.result) {
      EXPECT_FALSE(ran.result.SamePixels(host::Picture(ran.result.Shape()))) << "nothing has been painted";
    }
    EXPECT_TRUE(ran.leaks.empty());
  }
}

}  // namespace faults
