// Arguments and results by their declaration, the stack at the call, and exceptions that leave a
// method.

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "host/Host.h"
#include "tests/support/Thrown.h"

namespace {

using host::BooleanByte;
using host::Colour;
using host::Error;
using host::Host;
using host::Outcome;
using host::Picture;
using host::Storage;
using host::Value;

class Call : public testing::Test {
 protected:
  Call() { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2, Storage::Buffer}};
};

TEST_F(Call, PassesEveryTypeInRegistersAndOnTheStack) {
  const Outcome outcome =
      host_.Call("DescribeAll", {picture_, -7, 2.5, true, Colour{0xFF00ABCD}, -3, std::numeric_limits<int>::min(),
                                 Colour{0xFEDCBA98}, -0.125, -9, false});
  EXPECT_EQ(outcome.result.AsText(), "1 -7 2.5 1 FF00ABCD -3 -2147483648 FEDCBA98 -0.125 -9 0");
  EXPECT_TRUE(host_.Leaks().empty());
}

TEST_F(Call, PassesBytesThatAreNoBooleans) {
  const Outcome outcome =
      host_.Call("DescribeAll", {nullptr, 0, 0, BooleanByte{254}, 0, 0, 0, 0, 0, 0, BooleanByte{2}});
  EXPECT_EQ(outcome.result.AsText(), "0 0 0 254 00000000 0 0 00000000 0 0 2");
  EXPECT_EQ(Value(BooleanByte{3}).AsBooleanByte(), 3);
  EXPECT_EQ(Value(true).AsBooleanByte(), 1);
  EXPECT_EQ(Value(false).AsBooleanByte(), 0);
  EXPECT_THROW(Value(2).AsBooleanByte(), Error);
  EXPECT_THROW(Value(BooleanByte{1}).AsBoolean(), Error);
}

TEST_F(Call, PassesMoreDoublesThanRegisters) {
  const Outcome outcome = host_.Call("Weigh", {1, 2, 3, 4, 2, 5, 6, 7, 8, 9, 3});
  EXPECT_EQ(outcome.result.AsDouble(), 23987654321.0);
}

TEST_F(Call, IntegersServeForOtherNumbers) {
  const Outcome outcome = host_.Call("DescribeAll", {nullptr, 1, 2, 1, 0x00123456, 0, 0, -1, 3, 0, 0});
  EXPECT_EQ(outcome.result.AsText(), "0 1 2 1 00123456 0 0 FFFFFFFF 3 0 0");
}

TEST_F(Call, ReturnsEveryType) {
  EXPECT_EQ(host_.Call("Negate", {false}).result, Value(true));
  EXPECT_EQ(host_.Call("Negate", {true}).result, Value(false));
  EXPECT_EQ(host_.Call("Invert", {Colour{0x12345678}}).result, Value(Colour{0xEDCBA987}));
  EXPECT_TRUE(host_.Call("ShowBox", {}).result.IsNil());
  const Picture made = host_.Call("New", {3, 5}).result.AsPicture();
  EXPECT_EQ(made.Width(), 3);
  EXPECT_EQ(made.Height(), 5);
  EXPECT_EQ(made.References(), 1);
  EXPECT_EQ(made.PluginReferences(), 0);
}

TEST_F(Call, ByRefArgumentsComeBack) {
  const Outcome outcome = host_.Call("Change", {41, 1.5, true, Colour{0x0000FFFF}});
  EXPECT_EQ(outcome.arguments, (std::vector<Value>{42, 3.0, false, Colour{0xFFFF0000}}));
  const Outcome partly = host_.Call("Change", {nullptr, 7, nullptr, nullptr});
  EXPECT_EQ(partly.arguments, (std::vector<Value>{nullptr, 14.0, nullptr, nullptr}));
}

TEST_F(Call, RefusesWhatTheDeclarationDoesNotAllow) {
  EXPECT_THROW(host_.Call("Negate", {}), Error);
  EXPECT_THROW(host_.Call("Negate", {true, true}), Error);
  EXPECT_THROW(host_.Call("Negate", {nullptr}), Error);
  EXPECT_THROW(host_.Call("Negate", {2}), Error);
  EXPECT_THROW(host_.Call("Negate", {1.0}), Error);
  EXPECT_THROW(host_.Call("Invert", {BooleanByte{1}}), Error);
  EXPECT_THROW(host_.Call("Invert", {true}), Error);
  EXPECT_THROW(host_.Call("New", {1.5, 2}), Error);
  EXPECT_THROW(host_.Call("New", {"1", 2}), Error);
  EXPECT_THROW(host_.Call("Kind", {1}), Error);
  EXPECT_THROW(host_.Call("Change", {1.5, nullptr, nullptr, nullptr}), Error);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
}

TEST_F(Call, ErrorNamesTheArgument) {
  EXPECT_EQ(ThrownBy<Error>([&] {
              host_.Call("New", {1, 2.5});
            }),
            "Odd_New: argument height as integer got a value of another type");
}

TEST_F(Call, StackIsMisalignedInTurn) {
#if UINTPTR_MAX == UINT32_MAX
  std::vector<int> seen;
  for (int i = 0; i < 8; ++i) seen.push_back(host_.Call("StackPointer", {}).result.AsInteger());
  EXPECT_EQ(seen, (std::vector<int>{0, 4, 8, 12, 0, 4, 8, 12}));
  for (unsigned bytes : {12u, 8u, 4u, 0u}) {
    host_.SetStackMisalignment(bytes);
    EXPECT_EQ(host_.Call("StackPointer", {}).result, static_cast<int>(bytes));
    EXPECT_EQ(host_.Call("StackPointer", {}).result, static_cast<int>(bytes));
  }
#else
  for (int i = 0; i < 4; ++i) EXPECT_EQ(host_.Call("StackPointer", {}).result, 0);
#endif
  EXPECT_THROW(host_.SetStackMisalignment(16), Error);
  EXPECT_THROW(host_.SetStackMisalignment(2), Error);
}

TEST_F(Call, ExceptionsPassThroughTheMethod) {
  for (unsigned misalignment : {0u, 4u, 8u, 12u}) {
    host_.SetStackMisalignment(misalignment);
    host_.onYield = [] { throw std::logic_error("from the program"); };
    EXPECT_THROW(host_.Call("Yield", {picture_, 3}), std::logic_error);
    EXPECT_EQ(picture_.Locks(), 0);
  }
  EXPECT_EQ(host_.Calls(host::Service::YieldToRB), 4);
  host_.onYield = nullptr;
  host_.Call("Yield", {picture_, 3});
  EXPECT_EQ(host_.Calls(host::Service::YieldToRB), 7);
}

TEST_F(Call, MethodsCanBeCalledWhileOneYields) {
  std::vector<int> kinds;
  int locks = 0;
  host_.onYield = [&] {
    kinds.push_back(host_.Call("Kind", {picture_}).result.AsInteger());
    locks = picture_.Locks();
  };
  host_.Call("Yield", {picture_, 2});
  EXPECT_EQ(kinds, (std::vector<int>{10, 10}));
  EXPECT_EQ(locks, 1);
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Call, ExceptionsPassThroughNestedCalls) {
  int depth = 0;
  host_.onYield = [&] {
    if (++depth == 4) throw std::logic_error("from within");
    host_.Call("Yield", {picture_, 1});
  };
  EXPECT_THROW(host_.Call("Yield", {picture_, 1}), std::logic_error);
  EXPECT_EQ(depth, 4);
  EXPECT_EQ(picture_.Locks(), 0);
}

}  // namespace
