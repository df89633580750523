// The fixture of tests that call the product's functions directly: a host that has started the
// plug-in that is linked into the program, and pictures as workers get them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HostCalls.h"
#include "LMX_Picture.h"
#include "host/Host.h"
#include "host/ProgramReference.h"

extern "C" REALPluginMainFunction REALPluginMain;

/// Every test starts the plug-in anew. Its other variables keep their values from test to test: the
/// addresses of services that it has found, and the last error.
class LinkedTest : public testing::Test {
 protected:
  LinkedTest() {
    gResolver = nullptr;
    host_.Start(REALPluginMain);
    host_.ResetCounts();
  }
  void TearDown() override {
    EXPECT_EQ(host_.Complaints(), std::vector<std::string>());
    EXPECT_TRUE(host_.Leaks().empty());
  }

  /// The services that were called since the start or since ResetCounts.
  std::vector<std::string> Calls() const {
    std::vector<std::string> calls;
    for (const host::ServiceCall& call : host_.Log()) calls.emplace_back(call.name);
    return calls;
  }

  host::Host host_;
};

inline host::PictureShape Context(int width, int height, const host::Defects& defects = {}) {
  return {width, height, host::Storage::BitmapContext, {}, defects};
}

/// A picture whose rows lie between inaccessible pages, each on its own.
inline host::PictureShape Buffer(int width, int height, const host::Defects& defects = {}) {
  return {width, height, host::Storage::Buffer, {0, true, host::Flush::End}, defects};
}

inline host::Defects WithoutRows(std::vector<int> rows) {
  host::Defects defects;
  defects.nilRows = std::move(rows);
  return defects;
}

/// A picture and the wrapper that has locked it.
struct LockedPicture {
  explicit LockedPicture(const host::PictureShape& shape) : picture(shape), wrapper(picture.Handle()) {
    EXPECT_TRUE(wrapper.Lock());
  }

  host::Picture picture;
  LMX_Picture wrapper;  // destroyed first, which ends the lock
};

/// The picture that a worker has returned; takes over its reference.
inline host::Picture Returned(REALpictureStruct* handle) {
  host::PictureObject* const object = host::Table().FindPicture(handle);
  return object == nullptr ? host::Picture() : host::ProgramReference::Adopt(*object);
}
