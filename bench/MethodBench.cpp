// Times every method at every level of kernels, without yields and with them, on a small and a
// large picture.
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "Options.h"
#include "Timing.h"
#include "Workbench.h"
#include "host/Value.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_methods [option...]: times the methods, each at every level, with and without yields

  --size=WxH,...       the pictures (default 1920x1080,4000x3000)
  --yield=N            pixels from one yield to the next (default 10000)
  --form=context       or buffer; both if not given
  --content=TEXT       contents whose name has this in it: opaque, fading, soft
  --operation=TEXT     operations whose name has this in it
  --level=NAME         only this level: plain, sse2, avx2, ...
  --no-plain           all levels but plain, which takes long on large pictures
  --seconds=S          for each operation (default 0.3), and at least
  --least=N            rounds (default 5)
  --json               one object per line and measurement
  --help               this text
)";

constexpr int kBits = 8 * sizeof(void*);

class MethodBench {
 public:
  explicit MethodBench(const Options& options)
      : options_(options),
        budget_{static_cast<int>(options.Number("least", 5)), options.Number("seconds", 0.3)},
        yield_(static_cast<std::int32_t>(options.Number("yield", kUsualYield))),
        json_(options.Has("json")),
        sizes_(options.Sizes("size", "1920x1080,4000x3000")) {
    for (std::unique_ptr<Plugin>& plugin : LoadLevels(LMX_FOLDER)) {
      if (options.Text("level", plugin->Level()) != plugin->Level()) continue;
      if (options.Has("no-plain") && plugin->Level() == "plain") continue;
      plugins_.push_back(std::move(plugin));
    }
    if (plugins_.empty()) throw host::Error("there is no such level");
  }

  void Run() const {
    for (const Content& content : Contents()) {
      if (!options_.Wants("content", content.name)) continue;
      if (options_.Wants("form", "context")) RunOn(content, host::Storage::BitmapContext);
      if (options_.Wants("form", "buffer")) RunOn(content, host::Storage::Buffer);
    }
  }

 private:
  void RunOn(const Content& content, host::Storage storage) const {
    const char* const form = storage == host::Storage::BitmapContext ? "context" : "buffer";
    for (const Size& size : sizes_) {
      Workbench workbench(storage, Draw(content, size.width, size.height), size.width, size.height);
      if (!json_) WriteHead(form, content, size);
      for (const Operation& operation : Operations()) {
        if (!options_.Wants("operation", operation.name)) continue;
        RunOn(workbench, operation, form, content, size);
        workbench.Clear();
      }
    }
  }

  void RunOn(Workbench& workbench, const Operation& operation, const char* form, const Content& content,
             const Size& size) const {
    const auto ns = [&](double seconds) { return seconds * 1e9 / size.Pixels(); };
    const double copy = workbench.Memcpy({budget_.least, 0}).median;
    std::vector<Work> works;
    for (const auto& plugin : plugins_) {
      for (const std::int32_t yield : {0, yield_}) works.push_back(workbench.Call(*plugin, operation, yield));
    }
    const std::vector<Timing> timings = MeasureInTurn(works, budget_);
    if (!json_) std::printf("%-20s%8.3f", operation.name, ns(copy));
    for (std::size_t i = 0; i < plugins_.size(); ++i) {
      const Timing &call = timings[2 * i], &yielding = timings[2 * i + 1];
      if (json_) {
        std::printf(R"({"bits":%d,"form":"%s","content":"%s","width":%d,"height":%d,"operation":"%s","level":"%s",)"
                    R"("memcpy":%.5f,"ns":%.5f,"low":%.5f,"high":%.5f,"yielding":%.5f})"
                    "\n",
                    kBits, form, content.name, size.width, size.height, operation.name, plugins_[i]->Level().c_str(),
                    ns(copy), ns(call.median), ns(call.low), ns(call.high), ns(yielding.median));
      } else {
        std::printf("%8.3f%6.2f%6.1f", ns(call.median), call.median / copy, yielding.median / call.median);
      }
    }
    if (!json_) std::printf("\n");
    std::fflush(stdout);
  }

  void WriteHead(const char* form, const Content& content, const Size& size) const {
    std::printf(
        "\n%s, %s, %d x %d, %d-bit: ns per pixel of the source; x memcpy; with a yield every %d pixels, x without\n",
        form, content.name, size.width, size.height, kBits, static_cast<int>(yield_));
    std::printf("%-20s%8s", "", "memcpy");
    for (const auto& plugin : plugins_) std::printf("%8s%6s%6s", plugin->Level().c_str(), "x", "yield");
    std::printf("\n");
  }

  const Options& options_;
  const Budget budget_;
  const std::int32_t yield_;
  const bool json_;
  const std::vector<Size> sizes_;
  std::vector<std::unique_ptr<Plugin>> plugins_;
};

void Run(const Options& options) {
  PinToOneCore();
  MethodBench(options).Run();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunProgram(argc, argv, bench::kUsage, bench::Run);
}
