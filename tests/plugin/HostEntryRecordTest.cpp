// The records that the plug-in registers, word by word.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "host/Host.h"
#include "support/PluginTest.h"

namespace {

const char* const kDeclarations[] = {
    "LMX_GetLastError() as integer",
    "LMX_GetErrorMessage(errorCode as integer) as string",
    "LMX_AdjustHSV(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
    "hue_degrees as double, saturation_factor as double, brightness_factor as double, negative as boolean, yield as "
    "integer) as picture",
    "LMX_AdjustHSV_InPlace(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
    "hue_degrees as double, saturation_factor as double, brightness_factor as double, negative as boolean, yield as "
    "integer)",
    "LMX_GetAverageHSV(extends p as picture, left as integer, top as integer, width as integer, height as integer, "
    "ByRef hue_degrees as double, ByRef saturation as double, ByRef brightness as double, yield as integer)",
    "LMX_AdjustRGB(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
    "red_delta as integer, green_delta as integer, blue_delta as integer, yield as integer) as picture",
    "LMX_AdjustRGB_InPlace(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
    "red_delta as integer, green_delta as integer, blue_delta as integer, yield as integer)",
    "LMX_GetAverageRGB(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
    "ByRef red as integer, ByRef green as integer, ByRef blue as integer, yield as integer)",
    "LMX_FlipRotate(extends p as picture, flip_h as boolean, flip_v as boolean, rotation as integer, yield as integer) "
    "as picture",
    "LMX_FreeRotateByShear(extends p as picture, rotation as double, frame_color as color, yield as integer) as "
    "picture",
    "LMX_MakeGradient(width as integer, height as integer, color1 as color, color2 as color, yield as integer) as "
    "picture",
    "LMX_MakeDoubleGradient(width as integer, height as integer, color1 as color, color2 as color, color3 as color, "
    "yield as integer) as picture",
    "LMX_ShearHorizontal(extends p as picture, width as integer, height as integer, shear as double, frame_color as "
    "color, yield as integer) as picture",
    "LMX_ShearVertical(extends p as picture, width as integer, height as integer, shear as double, frame_color as "
    "color, yield as integer) as picture",
    "LMX_Stretch(extends p as picture, width as integer, height as integer, yield as integer) as picture",
    "LMX_Trim(extends p as picture, left as integer, top as integer, width as integer, height as integer, frame_color "
    "as color,yield as integer) as picture",
};

class HostEntryRecord : public testing::Test {
 protected:
  HostEntryRecord() { host_.Load(support::LibraryPath()); }
  const REALmoduleDefinition& Module() const { return *host_.Module(); }

  host::Host host_;
};

TEST_F(HostEntryRecord, DescribesTheModule) {
  EXPECT_EQ(Module().version, 10u);
  EXPECT_STREQ(Module().name, "LMX");
  EXPECT_NE(Module().methods, nullptr);
  EXPECT_EQ(Module().methodCount, std::size(kDeclarations));
  for (const void* word : Module().unused) EXPECT_EQ(word, nullptr);
}

TEST_F(HostEntryRecord, DeclaresTheMethodsInOrder) {
  ASSERT_EQ(Module().methodCount, std::size(kDeclarations));
  for (std::size_t i = 0; i < std::size(kDeclarations); ++i) {
    EXPECT_STREQ(Module().methods[i].declaration, kDeclarations[i]) << "method " << i + 1;
  }
}

// What the other tests take a method to be.
TEST_F(HostEntryRecord, DeclaresTheMethodsOfTheCatalogue) {
  ASSERT_EQ(host_.Methods().size(), support::Methods().size());
  for (std::size_t i = 0; i < support::Methods().size(); ++i) {
    const support::Method& method = support::Methods()[i];
    const host::Method& declared = host_.Methods()[i];
    EXPECT_EQ(declared.name, method.name);
    std::string types;
    for (const host::Parameter& parameter : declared.parameters) {
      const char type = " idbcps"[static_cast<int>(parameter.type)];
      types += static_cast<char>(parameter.byRef ? std::toupper(type) : type);
    }
    EXPECT_EQ(types, (method.hasSource ? "p" : "") + std::string(method.types)) << method.name;
    EXPECT_EQ(declared.result == host::Type::Picture, method.Result() > 0) << method.name;
  }
}

TEST_F(HostEntryRecord, DescribesEveryMethod) {
  std::set<void (*)()> entries;
  for (std::uint32_t i = 0; i < Module().methodCount; ++i) {
    const REALmethodDefinition& method = Module().methods[i];
    SCOPED_TRACE(method.declaration);
    EXPECT_NE(method.entry, nullptr);
    EXPECT_TRUE(entries.insert(method.entry).second) << "an entry point of its own";
    EXPECT_EQ(method.setter, nullptr);
    EXPECT_EQ(method.flags, 0x14u);
    for (const void* word : method.unused) EXPECT_EQ(word, nullptr);
  }
}

#if UINTPTR_MAX == UINT32_MAX
// As the product's host reads it.
TEST_F(HostEntryRecord, IsMadeOfWords) {
  std::uint32_t module[14];
  static_assert(sizeof(REALmoduleDefinition) == sizeof module);
  std::memcpy(module, &Module(), sizeof module);
  EXPECT_EQ(module[0], 10u);
  EXPECT_STREQ(reinterpret_cast<const char*>(static_cast<std::uintptr_t>(module[1])), "LMX");
  EXPECT_EQ(module[3], std::size(kDeclarations));
  for (std::size_t i = 4; i < 14; ++i) EXPECT_EQ(module[i], 0u) << "word " << i;

  const auto* methods = reinterpret_cast<const std::uint32_t*>(static_cast<std::uintptr_t>(module[2]));
  for (std::size_t i = 0; i < std::size(kDeclarations); ++i, methods += 6) {
    SCOPED_TRACE(kDeclarations[i]);
    EXPECT_NE(methods[0], 0u);
    EXPECT_EQ(methods[1], 0u);
    EXPECT_STREQ(reinterpret_cast<const char*>(static_cast<std::uintptr_t>(methods[2])), kDeclarations[i]);
    EXPECT_EQ(methods[3], 0x14u);
    EXPECT_EQ(methods[4], 0u);
    EXPECT_EQ(methods[5], 0u);
  }
}
#endif

TEST_F(HostEntryRecord, StaysAsItIs) {
  const REALmoduleDefinition before = Module();
  std::vector<REALmethodDefinition> methods(before.methods, before.methods + before.methodCount);
  host_.Call("MakeGradient", {2, 2, host::Colour{1}, host::Colour{2}, 0});
  EXPECT_EQ(std::memcmp(&before, &Module(), sizeof before), 0);
  EXPECT_EQ(std::memcmp(methods.data(), before.methods, methods.size() * sizeof methods[0]), 0);
}

}  // namespace
