// Makes very many calls one after another, in one process and one host, as a program does that runs
// for weeks.
//
//   soak [--calls=N] [--seed=N] [--first=N]     20000 calls of seed 1, from call 1 on
//
// Calls are random: any method, small pictures of both storage forms, any yield, and sometimes a
// nil source, a malformed picture, no memory for a new picture, or a service that fails or throws.
// Each call is compared with the reference model to the last pixel. It must leave no lock,
// reference or object. At the end the process must use as much memory as it did after a warm-up.
//
// A call depends only on the seed and its number. A finding prints both and ends the process.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "Finding.h"
#include "InputCall.h"
#include "support/Cases.h"
#include "support/CrashReport.h"

namespace fuzz {
namespace {

using support::OneIn;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryIsPlain = false;
#elif defined(__has_feature)
constexpr bool kMemoryIsPlain = !__has_feature(address_sanitizer);
#else
constexpr bool kMemoryIsPlain = true;
#endif

// ------------------------------------------------------------------------------------------- calls

std::uint8_t Byte(Random& random) {
  return static_cast<std::uint8_t>(random.Below(256));
}

// With a probability of 1/n, a byte that stands for something wrong; else 0.
std::uint8_t Wrong(Random& random, std::uint32_t n, std::uint32_t kinds) {
  return OneIn(random, n) ? static_cast<std::uint8_t>(kWrong + random.Below(kinds)) : std::uint8_t{0};
}

PictureInput RandomPicture(Random& random) {
  PictureInput picture;
  picture.form = Byte(random);
  picture.layout = Byte(random);
  picture.padding = static_cast<std::uint8_t>(random.Below(80));
  picture.fault = Wrong(random, 40, 16);
  picture.defect = Wrong(random, 100, 11);
  picture.amount = Byte(random);
  return picture;
}

SourceInput RandomSource(Random& random) {
  SourceInput source;
  source.flaw = OneIn(random, 40) ? std::uint8_t{255} : Wrong(random, 30, 1);
  source.width = OneIn(random, 100) ? std::uint8_t{255} : static_cast<std::uint8_t>(random.Below(41));
  source.height = OneIn(random, 100) ? std::uint8_t{255} : static_cast<std::uint8_t>(random.Below(41));
  source.length = static_cast<std::uint16_t>(random.Below(3001));
  source.missing = static_cast<std::uint16_t>(random.Below(65536));
  source.content = static_cast<std::uint8_t>(1 + random.Below(255));
  return source;
}

// A service that fails or throws, or a constructor that throws. No service is withheld.
FaultInput RandomFault(Random& random) {
  static constexpr std::uint8_t kKinds[] = {kWrong, kWrong + 1, kWrong + 3};
  FaultInput fault;
  if (!OneIn(random, 8)) return fault;
  fault.kind = random.OneOf(kKinds);
  fault.service = static_cast<std::uint8_t>(random.Below(host::kServiceCount));
  fault.at = static_cast<std::uint8_t>(random.Below(OneIn(random, 4) ? 30 : 4));
  return fault;
}

// Mostly values that the method accepts, but often enough others.
ArgumentInput RandomArgument(Random& random, char type) {
  ArgumentInput argument;
  argument.bits = random.Next();
  argument.kind = Byte(random);
  if (OneIn(random, 15)) return argument;
  if (type == 'i') {
    argument.kind = static_cast<std::uint8_t>(random.Below(OneIn(random, 4) ? 3 : 1));
    argument.bits = static_cast<std::uint8_t>(random.Between(-4, 60));
  } else if (type == 'd') {
    argument.kind = static_cast<std::uint8_t>(random.Below(2));
    argument.bits = random.Below(OneIn(random, 4) ? 65536 : 20000);
    if (OneIn(random, 8)) argument = {kAwkwardAngle, random.Next()};
  } else if (type == 'c' && OneIn(random, 2)) {
    argument.bits &= 0xFFFFFF;
  }
  return argument;
}

MethodInput RandomCall(std::uint64_t seed, std::uint64_t number) {
  Random random(Random(seed).Next() + number * 0xD1342543DE82EF95);
  MethodInput input;
  input.method = static_cast<std::uint8_t>(random.Below(static_cast<std::uint32_t>(Methods().size())));
  input.fault = RandomFault(random);
  input.sourcePicture = RandomPicture(random);
  input.source = RandomSource(random);
  for (PictureInput& picture : input.newPictures) picture = RandomPicture(random);
  for (const char* type = MethodOf(input).types; *type != '\0'; ++type) {
    input.arguments.push_back(RandomArgument(random, *type));
  }
  return input;
}

// ------------------------------------------------------------------------------------------ memory

struct Memory {
  long residentKib = 0;
  long addressKib = 0;
  std::size_t allocated = 0;  // in bytes
};

Memory MemoryNow() {
  malloc_trim(0);
  const long kibPerPage = sysconf(_SC_PAGESIZE) / 1024;
  long pages = 0, residentPages = 0;
  std::ifstream("/proc/self/statm") >> pages >> residentPages;
  const struct mallinfo2 heap = mallinfo2();
  return {residentPages * kibPerPage, pages * kibPerPage, heap.uordblks + heap.hblkhd};
}

void Print(const char* when, const Memory& memory) {
  std::printf("memory %-10s %7ld KiB resident, %8ld KiB of addresses, %9zu bytes allocated\n", when, memory.residentKib,
              memory.addressKib, memory.allocated);
}

// In a million calls, a leak of one byte in every hundredth call is noticed.
void CheckMemory(const Memory& warm, const Memory& end) {
  constexpr long kMostKib = 512;
  constexpr std::size_t kMostBytes = 8192;
  if (end.residentKib > warm.residentKib + kMostKib) Report("more and more memory is resident");
  if (end.addressKib > warm.addressKib + kMostKib) Report("more and more addresses are in use");
  if (end.allocated > warm.allocated + kMostBytes) Report("more and more memory is allocated");
}

// -------------------------------------------------------------------------------------------- soak

class Soak {
 public:
  explicit Soak(std::uint64_t seed) : seed_(seed), host_(Options()) { host_.Load(support::LibraryPath()); }

  void Run(std::uint64_t first, std::uint64_t calls) {
    const std::uint64_t warmUp = std::min<std::uint64_t>(calls / 2, 20000);
    Memory warm;
    for (std::uint64_t i = 0; i < calls; ++i) {
      if (i == warmUp) warm = MemoryNow();
      Call(first + i);
    }
    support::CrashReport::SetPlace("no call, but after all of them");
    const Memory end = MemoryNow();
    CheckVariety(calls);
    PrintOutcomes();
    Print("when warm", warm);
    Print("at the end", end);
    if (kMemoryIsPlain) CheckMemory(warm, end);
  }

 private:
  static host::Options Options() {
    host::Options options;
    options.throwComplaints = false;
    options.keepLog = false;
    return options;
  }

  static std::string Outcome(std::optional<int> code) {
    return code ? "code " + std::to_string(*code) : "left by an exception";
  }

  void Call(std::uint64_t number) {
    support::CrashReport::SetPlace("call " + std::to_string(number) + " of seed " + std::to_string(seed_) +
                                   "; again: --calls=1 --seed=" + std::to_string(seed_) +
                                   " --first=" + std::to_string(number));
    const MethodInput input = RandomCall(seed_, number);
    const std::optional<int> code = CheckCallIn(host_, input);
    ++outcomes_[Outcome(code)];
    if (code == 0) succeeded_.insert(MethodOf(input).name);
    if (!host_.LiveObjects().empty()) Report("an object is left");
  }

  // If all calls failed, the soak would prove little.
  void CheckVariety(std::uint64_t calls) const {
    constexpr std::uint64_t kEnough = 2000;
    constexpr int kCodes[] = {0, 2, 4, 5, 6, 31, 33, 34, 35, 38, 39, 40, 41, 42, 43, 44, 45};
    if (calls < kEnough) return;
    if (succeeded_.size() != Methods().size()) Report("a method never succeeded");
    if (outcomes_.at("code 0") < calls / 2) Report("most calls failed");
    if (calls < 10 * kEnough) return;
    for (const int code : kCodes) {
      if (outcomes_.count(Outcome(code)) == 0) Report(Outcome(code) + " never came up");
    }
    if (outcomes_.count(Outcome({})) == 0) Report("no exception left a call");
  }

  void PrintOutcomes() const {
    for (const auto& [outcome, count] : outcomes_) {
      std::printf("%-22s %9llu\n", outcome.c_str(), static_cast<unsigned long long>(count));
    }
  }

  const std::uint64_t seed_;
  host::Host host_;
  std::map<std::string, std::uint64_t> outcomes_;
  std::set<std::string> succeeded_;
};

// Restarts the program without the allocator's thread cache, whose blocks would count as allocated.
void RunWithoutCache(char** arguments) {
  constexpr const char* kVariable = "GLIBC_TUNABLES";
  if (!kMemoryIsPlain || std::getenv(kVariable) != nullptr) return;
  setenv(kVariable, "glibc.malloc.tcache_count=0", 1);
  execv("/proc/self/exe", arguments);
}

// The number after `--name=`.
std::uint64_t Option(int count, char** arguments, const std::string& name, std::uint64_t otherwise) {
  const std::string start = "--" + name + "=";
  for (int i = 1; i < count; ++i) {
    if (std::strncmp(arguments[i], start.c_str(), start.size()) == 0) {
      return std::strtoull(arguments[i] + start.size(), nullptr, 0);
    }
  }
  return otherwise;
}

}  // namespace
}  // namespace fuzz

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  fuzz::RunWithoutCache(argv);
  fuzz::ReportFailedAssertions();
  const std::uint64_t calls = fuzz::Option(argc, argv, "calls", 20000);
  const std::uint64_t seed = fuzz::Option(argc, argv, "seed", 1);
  const std::uint64_t first = fuzz::Option(argc, argv, "first", 1);
  const support::CrashReport report;
  std::printf("%llu calls of seed %llu, from call %llu on\n", static_cast<unsigned long long>(calls),
              static_cast<unsigned long long>(seed), static_cast<unsigned long long>(first));
  std::fflush(stdout);
  const Clock::time_point start = Clock::now();
  fuzz::Soak(seed).Run(first, calls);
  std::printf("%.1f seconds\n", std::chrono::duration<double>(Clock::now() - start).count());
}
