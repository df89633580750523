// Times every kernel at every level that this processor has, from the list of cases that the tests use.
#include <algorithm>
#include <cstdio>
#include <cstring>
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
  --json               one object per line and measurement
  --help               this text
)";

constexpr std::size_t kLengths[] = {16, 512, 1920};
constexpr const char* kContents[] = {"opaque", "translucent"};
constexpr double kBatchSeconds = 50e-6;

bool IsRows(Operand operand) {
  return operand == Operand::ContextRows || operand == Operand::BufferRows || operand == Operand::WorkingRows;
}

// Whether the operand holds pixels whose alpha can matter.
bool HasAlpha(Operand operand) {
  return IsRows(operand) || operand == Operand::ContextPixels || operand == Operand::BufferPixels ||
         operand == Operand::Pixels || operand == Operand::Runs;
}

std::uint32_t PixelOf(Operand operand, bool opaque, Random& random) {
  const std::uint32_t alpha = opaque ? 255 : 1 + random.Below(254);
  const bool context = operand == Operand::ContextPixels || operand == Operand::ContextRows;
  const auto channel = [&] { return random.Below(context ? alpha + 1 : 256); };
  const std::uint32_t red = channel(), green = channel(), blue = channel();
  const std::uint32_t colour = red << 16 | green << 8 | blue;
  if (context) return __builtin_bswap32(alpha << 24 | colour);
  if (operand == Operand::BufferPixels || operand == Operand::BufferRows) return (127 - alpha / 2) << 24 | colour;
  return alpha << 24 | colour;
}

// Arguments of ordinary use; MakeArguments looks for the edges.
KernelArguments OrdinaryArguments(std::size_t n, Random& random) {
  KernelArguments arguments = MakeArguments(n, random);
  arguments.stride = n;
  arguments.columns = 16;
  arguments.pitch = 480;
  arguments.count = 2;
  arguments.before = 0xFF406080;
  arguments.fraction = 20000;
  arguments.units = 1000;
  arguments.ofSecond = 300;
  arguments.part = 500;
  arguments.hsv = {512, 1024, 1024};
  arguments.rgb = {20, -10, 5};
  return arguments;
}

// The operands of one call, in ordinary memory.
class Operands {
 public:
  Operands(const KernelCase& kernel, std::size_t n, bool opaque) {
    Random random(1);
    call_.arguments = OrdinaryArguments(n, random);
    pixels_ = n;
    call_.output = Make(kernel.output, opaque, random);
    for (std::size_t i = 0; i < kernel.inputs.size(); ++i) {
      const Operand operand = kernel.inputs[i].operand;
      call_.inputs[i] = Make(operand, opaque, random);
      dependOnAlpha_ = dependOnAlpha_ || HasAlpha(operand);
      if (IsRows(operand)) pixels_ = n * call_.arguments.columns;
      if (operand == Operand::Runs) pixels_ = n * call_.arguments.count;
    }
  }

  const KernelCall& Call() const { return call_; }
  bool DependOnAlpha() const { return dependOnAlpha_; }
  /// How many a call works on.
  std::size_t Pixels() const { return pixels_; }

 private:
  void* Make(Operand operand, bool opaque, Random& random) {
    constexpr std::size_t kLine = 64;
    const std::size_t size = SizeOf(operand, call_.arguments);
    std::vector<std::uint8_t>& memory = memories_.emplace_back(size + kLine);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(memory.data()) % kLine;
    std::uint8_t* const place = memory.data() + (kLine - past);
    MakeOperand(operand, call_.arguments, random, place);
    for (std::size_t i = 0; HasAlpha(operand) && i + 4 <= size; i += 4) {
      const std::uint32_t pixel = PixelOf(operand, opaque, random);
      std::memcpy(place + i, &pixel, 4);
    }
    return place;
  }

  KernelCall call_ = {};
  std::vector<std::vector<std::uint8_t>> memories_;
  std::size_t pixels_ = 0;
  bool dependOnAlpha_ = false;
};

// How many calls take about as long as a batch shall.
int BatchOf(const std::function<void()>& work) {
  int calls = 1;
  for (; calls < 1 << 20; calls *= 2) {
    const auto batch = [&] {
      for (int i = 0; i < calls; ++i) work();
    };
    if (MeasureInTurn({batch}, {1, 0})[0].median >= kBatchSeconds) break;
  }
  return calls;
}

class KernelBench {
 public:
  explicit KernelBench(const Options& options) : options_(options), levels_(LevelsHere()), json_(options.Has("json")) {}

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
    if (!operands.DependOnAlpha() && !opaque) return;
    const char* const content = operands.DependOnAlpha() ? kContents[opaque ? 0 : 1] : "any";
    std::vector<std::function<void()>> batches;
    std::vector<double> pixels;
    for (const NamedKernels& level : levels_) {
      const auto work = [&] { kernel.call(level.kernels, operands.Call()); };
      const int calls = BatchOf(work);
      pixels.push_back(static_cast<double>(operands.Pixels()) * calls);
      batches.emplace_back([&kernel, &level, &operands, calls] {
        for (int i = 0; i < calls; ++i) kernel.call(level.kernels, operands.Call());
      });
    }
    const std::vector<Timing> timings = MeasureInTurn(batches, {5, options_.Number("seconds", 0.03)});
    if (!json_) std::printf("%-32s %-12s %5zu", kernel.name, content, n);
    for (std::size_t i = 0; i < levels_.size(); ++i) {
      const double ns = timings[i].median * 1e9 / pixels[i];
      if (json_) {
        std::printf(R"({"bits":%d,"kernel":"%s","content":"%s","n":%zu,"level":"%s","ns":%.5f})"
                    "\n",
                    static_cast<int>(8 * sizeof(void*)), kernel.name, content, n, levels_[i].level.c_str(), ns);
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
  const std::vector<NamedKernels> levels_;
  const bool json_;
};

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  bench::PinToOneCore();
  const bench::Options options(argc, argv, bench::kUsage);
  bench::KernelBench(options).Run();
  return 0;
}
