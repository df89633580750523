// An executable decides which bitmap context functions the plug-in finds.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/Host.h"

namespace {

TEST(PartialExport, OnlyListedFunctionsAreThere) {
  const host::Host keepsThemLinked;
  EXPECT_NE(dlsym(RTLD_DEFAULT, "CGBitmapContextGetWidth"), nullptr);
  EXPECT_NE(dlsym(RTLD_DEFAULT, "CGBitmapContextGetHeight"), nullptr);
  EXPECT_NE(dlsym(RTLD_DEFAULT, "CGBitmapContextGetBitsPerPixel"), nullptr);
  EXPECT_NE(dlsym(RTLD_DEFAULT, "CGBitmapContextGetBytesPerRow"), nullptr);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "CGBitmapContextGetData"), nullptr);
}

}  // namespace
