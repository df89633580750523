#include "Cases.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "CrashReport.h"

namespace support {
namespace {

std::uint64_t Hash(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

int Multiplied(int count) {
  const char* factor = std::getenv("LMX_CASES");
  return factor == nullptr ? count : count * std::atoi(factor);
}

void RunCase(const std::string& test, std::uint64_t seed, const std::function<void(Random& random)>& body) {
  const std::string text = "LMX_CASE=" + std::to_string(seed) + " --gtest_filter=" + test;
  SCOPED_TRACE(text);
  CrashReport::SetPlace(text);
  Random random(seed);
  body(random);
}

}  // namespace

void ForEachCase(int count, const std::function<void(Random& random)>& body) {
  const testing::TestInfo& info = *testing::UnitTest::GetInstance()->current_test_info();
  const std::string test = std::string(info.test_suite_name()) + "." + info.name();
  const CrashReport report;
  if (const char* only = std::getenv("LMX_CASE")) return RunCase(test, std::strtoull(only, nullptr, 0), body);
  Random seeds(Hash(test));
  const int cases = Multiplied(count);
  for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) RunCase(test, seeds.Next(), body);
}

std::string TestName(std::string name) {
  const auto isOther = [](unsigned char c) { return std::isalnum(c) == 0; };
  std::replace_if(name.begin(), name.end(), isOther, '_');
  return name;
}

std::int32_t AnyInteger(Random& random) {
  static constexpr std::int32_t kAwkward[] = {0,   1,   -1,   2,    -2,    INT_MIN, INT_MAX, INT_MIN + 1, INT_MAX - 1,
                                              255, 256, -255, -256, 65535, 65536,   32767,   32768,       -65536};
  if (OneIn(random, 2)) return random.OneOf(kAwkward);
  if (OneIn(random, 4)) return static_cast<std::int32_t>(random.Word());
  if (OneIn(random, 4)) return (OneIn(random, 2) ? 1 : -1) * NearPowerOfTwo(random, INT_MAX);
  return random.Between(-500, 500);
}

std::int32_t NearPowerOfTwo(Random& random, std::int32_t most) {
  std::int32_t powers = 1;
  while (most >> powers != 0) ++powers;
  const std::int64_t power = std::int64_t{1} << random.Below(static_cast<std::uint32_t>(powers));
  return static_cast<std::int32_t>(std::max<std::int64_t>(power + random.Between(-1, 1), 1));
}

namespace {

// The number, or one of the two doubles next to it.
double OrNext(Random& random, double number) {
  if (OneIn(random, 2)) return number;
  return std::nextafter(number, OneIn(random, 2) ? -DBL_MAX : DBL_MAX);
}

}  // namespace

double ExactShear(Random& random) {
  if (OneIn(random, 2)) return OrNext(random, random.Between(-10, 10) / 10.0);
  return OrNext(random, random.Between(-2, 2) / 2.0 + random.Between(-3, 3) / 65536.0);
}

double ExactAngle(Random& random) {
  if (OneIn(random, 2)) return OrNext(random, random.Between(0, 3600) / 10.0);
  return OrNext(random, random.Between(0, 8) * 45.0 + random.Between(-3, 3) / 65536.0);
}

double AnyDouble(Random& random) {
  static constexpr double kAwkward[] = {0.0,
                                        -0.0,
                                        1.0,
                                        -1.0,
                                        0.5,
                                        DBL_MIN,
                                        -DBL_MIN,
                                        std::numeric_limits<double>::denorm_min(),
                                        -std::numeric_limits<double>::denorm_min(),
                                        DBL_EPSILON,
                                        DBL_MAX,
                                        -DBL_MAX,
                                        std::numeric_limits<double>::infinity(),
                                        -std::numeric_limits<double>::infinity(),
                                        std::numeric_limits<double>::quiet_NaN(),
                                        2147483647.0,
                                        2147483648.0,
                                        -2147483649.0,
                                        359.99999999999994,
                                        360.0,
                                        999.9999999999999,
                                        1000.0};
  if (OneIn(random, 2)) return random.OneOf(kAwkward);
  return (Fraction(random) - 0.5) * std::pow(10.0, random.Between(-3, 5));
}

std::uint8_t AnyBooleanByte(Random& random) {
  static constexpr std::uint8_t kAwkward[] = {2, 3, 127, 128, 129, 254, 255};
  if (!OneIn(random, 8)) return static_cast<std::uint8_t>(random.Below(2));
  return OneIn(random, 2) ? random.OneOf(kAwkward) : static_cast<std::uint8_t>(random.Below(256));
}

double AwkwardAngle(std::uint64_t bits) {
  const auto number = static_cast<std::uint32_t>(bits >> 2);
  double angle = 0;
  switch (bits % 4) {
    case 0:
      angle = number % 5 * 90.0;
      for (std::uint32_t steps = number / 5 % 5; steps > 0; --steps) {
        angle = std::nextafter(angle, number % 2 == 0 ? 0.0 : 360.0);
      }
      return angle;
    case 1:
      return std::ldexp(1.0, -static_cast<int>(number % 1075));
    case 2:
      return number % (360 * 1024) / 1024.0;
    default:
      return number % 3600 / 10.0;
  }
}

double Fraction(Random& random) {
  return static_cast<double>(random.Next() >> 11) / 9007199254740992.0;
}

bool OneIn(Random& random, std::uint32_t n) {
  return random.Below(n) == 0;
}

}  // namespace support
