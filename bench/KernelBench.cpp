// Times every kernel at every level that this processor has. Uses the tests' list of cases.
#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "KernelCases.h"
#include "Levels.h"
#include "Options.h"
#include "Timing.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_kernels [option...]: times the kernels at every level, in ns per pixel

  --kernel=TEXT        kernels whose name has this in it
  --n=N                only this length of runs; 16, 512 and 1920 if not given
  --seconds=S          for each kernel, length and content (default 0.03)
  --variants           also the variants of levels: non-temporal stores (_nt), and what is emulated
  --json               one object per line and measurement
  --help               this text
)";

constexpr std::size_t kLengths[] = {16, 512, 1920};
constexpr const char* kContents[] = {"opaque", "translucent"};
constexpr double kBatchSeconds = 50e-6;

// Ordinary arguments, where MakeArguments prefers the limits, and runs without gaps between them.
KernelArguments OrdinaryArguments(std::size_t n, Random& random) {
  KernelArguments arguments = MakeArguments(n, random);
  arguments.stride = n;
  arguments.columns = arguments.pitch = 16;
  SetBoxes({29491, 32767, 20000}, 9, &arguments);  // nine tenths
  arguments.slope = std::min<std::int32_t>(19661, static_cast<std::int32_t>(65536 * kMostColumns / n));
  arguments.before = 0xFF406080;
  arguments.fraction = 20000;
  arguments.hsv = {512, 1024, 1024};
  arguments.rgb = {20, -10, 5};
  return arguments;
}

// The operands of one call, in ordinary memory.
class Operands {
 public:
  Operands(const KernelCase& kernel, std::size_t n, bool opaque) : pixels_(n) {
    Random random(1);
    call_.arguments = OrdinaryArguments(n, random);
    call_.output = Make(kernel.output, opaque, random).first;
    for (std::size_t i = 0; i < kernel.inputs.size(); ++i) {
      const auto [place, isPixels] = Make(kernel.inputs[i].operand, opaque, random);
      call_.inputs[i] = place;
      haveAlpha_ = haveAlpha_ || isPixels;
    }
  }

  const KernelCall& Call() const { return call_; }
  bool HaveAlpha() const { return haveAlpha_; }
  /// The number of pixels that a call processes: those of the largest operand.
  std::size_t Pixels() const { return pixels_; }

 private:
  // The address of the operand, and whether it consists of pixels.
  std::pair<void*, bool> Make(Operand operand, bool opaque, Random& random) {
    constexpr std::size_t kLine = 64;
    const std::size_t size = SizeOf(operand, call_.arguments);
    std::vector<std::uint8_t>& memory = memories_.emplace_back(size + kLine);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(memory.data()) % kLine;
    std::uint8_t* const place = memory.data() + (kLine - past);
    const bool isPixels = MakeOrdinaryPixels(operand, call_.arguments, opaque, random, place);
    if (!isPixels) MakeOperand(operand, call_.arguments, random, place);
    if (isPixels) pixels_ = std::max(pixels_, size / 4);
    return {place, isPixels};
  }

  KernelCall call_ = {};
  std::vector<std::vector<std::uint8_t>> memories_;
  std::size_t pixels_;
  bool haveAlpha_ = false;
};

// The number of calls that take about as long as a batch should.
int BatchOf(const std::function<void()>& work) {
  int calls = 1;
  for (; calls < 1 << 20; calls *= 2) {
    const auto batch = [&] {
      for (int i = 0; i < calls; ++i) work();
    };
    if (MeasureInTurn({{batch}}, {1, 0})[0].median >= kBatchSeconds) break;
  }
  return calls;
}

class KernelBench {
 public:
  explicit KernelBench(const Options& options) : options_(options), json_(options.Has("json")) {
    for (NamedKernels& level : LevelsHere()) {
      if (options.Has("variants") || !IsVariant(level.level)) levels_.push_back(level);
    }
  }

  void Run() const {
    if (!json_) WriteHead();
    for (const KernelCase& kernel : KernelCases()) {
      if (!options_.Wants("kernel", kernel.name)) continue;
      for (const std::size_t n : kLengths) {
        if (options_.Number("n", static_cast<double>(n)) != static_cast<double>(n)) continue;
        for (const bool opaque : {true, false}) RunOn(kernel, n, opaque);
      }
    }
  }

 private:
  void RunOn(const KernelCase& kernel, std::size_t n, bool opaque) const {
    const Operands operands(kernel, n, opaque);
    if (!operands.HaveAlpha() && !opaque) return;
    const char* const content = operands.HaveAlpha() ? kContents[opaque ? 0 : 1] : "any";
    std::vector<Work> batches;
    std::vector<double> pixels;
    for (const NamedKernels& level : levels_) {
      const auto work = [&] { kernel.call(level.kernels, operands.Call()); };
      const int calls = BatchOf(work);
      pixels.push_back(static_cast<double>(operands.Pixels()) * calls);
      batches.push_back({[&kernel, &level, &operands, calls] {
        for (int i = 0; i < calls; ++i) kernel.call(level.kernels, operands.Call());
      }});
    }
    const std::vector<Timing> timings = MeasureInTurn(batches, {5, options_.Number("seconds", 0.03)});
    if (!json_) std::printf("%-32s %-12s %5zu", kernel.name.c_str(), content, n);
    for (std::size_t i = 0; i < levels_.size(); ++i) {
      const double ns = timings[i].median * 1e9 / pixels[i];
      if (json_) {
        std::printf(R"({"bits":%d,"kernel":"%s","content":"%s","n":%zu,"level":"%s","ns":%.5f})"
                    "\n",
                    static_cast<int>(8 * sizeof(void*)), kernel.name.c_str(), content, n, levels_[i].level.c_str(), ns);
      } else {
        std::printf(" %9.3f", ns);
      }
    }
    if (!json_) std::printf("\n");
    std::fflush(stdout);
  }

  void WriteHead() const {
    std::printf("%-32s %-12s %5s", "ns per pixel", "content", "n");
    for (const NamedKernels& level : levels_) std::printf(" %9s", level.level.c_str());
    std::printf("\n");
  }

  const Options& options_;
  std::vector<NamedKernels> levels_;
  const bool json_;
};

void Run(const Options& options) {
  PinToOneCore();
  KernelBench(options).Run();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunProgram(argc, argv, bench::kUsage, bench::Run);
}
