// Times every method at every level of kernels, beside memcpy of the source picture.
#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

#include "Options.h"
#include "Timing.h"
#include "Workbench.h"
#include "host/Value.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_methods [option...]: times the methods, each at every level, beside memcpy of the picture

  --size=WxH           the picture (default 1920x1080)
  --form=context       or buffer; both if not given
  --content=TEXT       contents whose name has this in it: opaque, fading, soft
  --operation=TEXT     operations whose name has this in it
  --level=NAME         only this level: plain, sse2, avx2, ...
  --no-plain           all levels but plain, which takes long on large pictures
  --folder=PATH        where the libraries are (default: the build folder)
  --seconds=S          for each operation (default 0.3), and at least
  --least=N            rounds (default 5)
  --json               one object per line and measurement
  --help               this text
)";

struct Loaded {
  Level level;
  std::unique_ptr<Plugin> plugin;
};

// What a level took, and the copy before it.
struct Pair {
  Timing copy;
  Timing call;
};

std::vector<Pair> Pairs(const std::vector<Timing>& timings) {
  std::vector<Pair> pairs(timings.size() / 2);
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {timings[2 * i], timings[2 * i + 1]};
  return pairs;
}

struct Size {
  int width = 0;
  int height = 0;
  double Pixels() const { return static_cast<double>(width) * height; }
};

class MethodBench {
 public:
  explicit MethodBench(const Options& options)
      : options_(options),
        budget_{static_cast<int>(options.Number("least", 5)), options.Number("seconds", 0.3)},
        json_(options.Has("json")) {
    if (std::sscanf(options.Text("size", "1920x1080").c_str(), "%dx%d", &size_.width, &size_.height) != 2 ||
        size_.width < 1 || size_.height < 1) {
      throw host::Error("a size is WxH");
    }
    for (const Level& level : LevelsIn(options.Text("folder", LMX_FOLDER))) {
      if (options.Text("level", level.name) != level.name) continue;
      if (options.Has("no-plain") && level.name == "plain") continue;
      plugins_.push_back({level, std::make_unique<Plugin>(level.file)});
    }
    if (plugins_.empty()) throw host::Error("there is no such level");
  }

  void Run() const {
    for (const Content& content : Contents()) {
      if (!options_.Wants("content", content.name)) continue;
      const Pixels pixels = Draw(content, size_.width, size_.height);
      if (options_.Wants("form", "context")) RunOn(content, pixels, host::Storage::BitmapContext);
      if (options_.Wants("form", "buffer")) RunOn(content, pixels, host::Storage::Buffer);
    }
  }

 private:
  void RunOn(const Content& content, const Pixels& pixels, host::Storage storage) const {
    const char* const form = storage == host::Storage::BitmapContext ? "context" : "buffer";
    Workbench workbench(storage, pixels, size_.width, size_.height);
    if (!json_) WriteHead(form, content);
    for (const Operation& operation : Operations()) {
      if (!options_.Wants("operation", operation.name)) continue;
      // A copy before each call, so that every level finds the caches alike.
      std::vector<std::function<void()>> works;
      for (const Loaded& loaded : plugins_) {
        works.push_back(workbench.Copy());
        works.push_back(workbench.Call(*loaded.plugin, operation));
      }
      const std::vector<Pair> timings = Pairs(MeasureInTurn(works, budget_));
      if (json_) {
        WriteJson(form, content, operation, timings);
      } else {
        WriteRow(operation, timings);
      }
      workbench.Clear();
    }
  }

  double Nanoseconds(double seconds) const { return seconds * 1e9 / size_.Pixels(); }

  void WriteHead(const char* form, const Content& content) const {
    std::printf("%s, %s, %d x %d, %d-bit: ns per pixel, multiple of memcpy, half of the rounds within\n", form,
                content.name, size_.width, size_.height, static_cast<int>(8 * sizeof(void*)));
    std::printf("%-22s %7s", "", "memcpy");
    for (const Loaded& loaded : plugins_) std::printf("  %26s", loaded.level.name.c_str());
    std::printf("\n");
  }

  void WriteRow(const Operation& operation, const std::vector<Pair>& timings) const {
    std::printf("%-22s %7.3f", operation.name, Nanoseconds(timings.front().copy.median));
    for (const auto& [copy, call] : timings) {
      std::printf("  %8.3f %7.2fx %+3.0f%% %+3.0f%%", Nanoseconds(call.median), call.median / copy.median,
                  100 * (call.low / call.median - 1), 100 * (call.high / call.median - 1));
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  void WriteJson(const char* form, const Content& content, const Operation& operation,
                 const std::vector<Pair>& timings) const {
    for (std::size_t i = 0; i < timings.size(); ++i) {
      const auto& [copy, call] = timings[i];
      std::printf(R"({"bits":%d,"form":"%s","content":"%s","width":%d,"height":%d,"operation":"%s","level":"%s",)"
                  R"("memcpy":%.5f,"ns":%.5f,"low":%.5f,"high":%.5f})"
                  "\n",
                  static_cast<int>(8 * sizeof(void*)), form, content.name, size_.width, size_.height, operation.name,
                  plugins_[i].level.name.c_str(), Nanoseconds(copy.median), Nanoseconds(call.median),
                  Nanoseconds(call.low), Nanoseconds(call.high));
    }
    std::fflush(stdout);
  }

  const Options& options_;
  const Budget budget_;
  const bool json_;
  Size size_;
  std::vector<Loaded> plugins_;
};

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    bench::PinToOneCore();
    const bench::Options options(argc, argv, bench::kUsage);
    bench::MethodBench(options).Run();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_methods: %s\n", error.what());
    return 1;
  }
}
