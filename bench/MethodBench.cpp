// Times every method at every level of kernels, without yields and with them, on a small and a
// large picture.
#include <unistd.h>

#include <cstdio>
#include <map>
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

  --size=WxH,...       the pictures (default 1920x1080,4000x3000); all others are compared with the first
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

constexpr const char* kLegend =
    R"(ns     nanoseconds per pixel of the source, without yields
x      the same as a multiple of memcpy; instead of it on further pictures:
size   the same as a multiple of that on the first picture
yield  the time with a yield every %d pixels as a multiple of that without

)";

// What an operation took at a level, and memcpy before it; seconds.
struct Row {
  Timing call;
  Timing yielding;
  Timing copy;
};

// Nanoseconds of a pixel, by operation and level.
using Figures = std::map<std::pair<const Operation*, const Plugin*>, double>;

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
    if (!json_) std::printf(kLegend, static_cast<int>(yield_));
    for (const Content& content : Contents()) {
      if (!options_.Wants("content", content.name)) continue;
      if (options_.Wants("form", "context")) RunOn(content, host::Storage::BitmapContext);
      if (options_.Wants("form", "buffer")) RunOn(content, host::Storage::Buffer);
    }
  }

 private:
  void RunOn(const Content& content, host::Storage storage) const {
    const std::string picture =
        std::string(storage == host::Storage::BitmapContext ? "context" : "buffer") + ", " + content.name;
    Figures small;
    for (const Size& size : sizes_) {
      Workbench workbench(storage, Draw(content, size.width, size.height), size.width, size.height);
      std::vector<std::pair<const Operation*, std::vector<Row>>> table;
      for (const Operation& operation : Operations()) {
        if (!options_.Wants("operation", operation.name)) continue;
        ShowProgress(operation.name);
        table.emplace_back(&operation, Measure(workbench, operation));
        if (json_) WriteJson(content, storage, size, operation, table.back().second);
        workbench.Clear();
      }
      ShowProgress("");
      if (!json_ && !table.empty()) WriteTable(picture, size, table, small);
    }
  }

  std::vector<Row> Measure(Workbench& workbench, const Operation& operation) const {
    const Timing copy = workbench.Memcpy({budget_.least, 0});
    std::vector<Work> works;
    for (const auto& plugin : plugins_) {
      works.push_back(workbench.Call(*plugin, operation, 0));
      works.push_back(workbench.Call(*plugin, operation, yield_));
    }
    const std::vector<Timing> timings = MeasureInTurn(works, budget_);
    std::vector<Row> rows;
    for (std::size_t i = 0; i < plugins_.size(); ++i) rows.push_back({timings[2 * i], timings[2 * i + 1], copy});
    return rows;
  }

  // One figure of memcpy for the whole table: the median of all its operations.
  void WriteTable(const std::string& picture, const Size& size,
                  const std::vector<std::pair<const Operation*, std::vector<Row>>>& table, Figures& small) const {
    const bool isFirst = small.empty();
    std::vector<double> copies;
    copies.reserve(table.size());
    for (const auto& [operation, rows] : table) copies.push_back(Nanoseconds(rows.front().copy.median, size));
    const Timing copy = Summary(copies);
    std::printf("%s, %d x %d, %d-bit; memcpy: %.3f ns per pixel, %.3f to %.3f in half of the measurements\n",
                picture.c_str(), size.width, size.height, static_cast<int>(8 * sizeof(void*)), copy.median, copy.low,
                copy.high);
    std::printf("%-20s", "");
    for (const auto& plugin : plugins_) std::printf("%20s", plugin->Level().c_str());
    std::printf("\n%-20s", "operation");
    for (std::size_t i = 0; i < plugins_.size(); ++i) std::printf("%8s%6s%6s", "ns", isFirst ? "x" : "size", "yield");
    std::printf("\n");
    for (const auto& [operation, rows] : table) {
      std::printf("%-20s", operation->name);
      for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& [call, yielding, itsCopy] = rows[i];
        const double ns = Nanoseconds(call.median, size);
        double& first = small[{operation, plugins_[i].get()}];
        if (isFirst) first = ns;
        std::printf("%8.3f%6.2f%6.1f", ns, ns / (isFirst ? copy.median : first), yielding.median / call.median);
      }
      std::printf("\n");
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  void WriteJson(const Content& content, host::Storage storage, const Size& size, const Operation& operation,
                 const std::vector<Row>& rows) const {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto ns = [&](double seconds) { return Nanoseconds(seconds, size); };
      std::printf(R"({"bits":%d,"form":"%s","content":"%s","width":%d,"height":%d,"operation":"%s","level":"%s",)"
                  R"("memcpy":%.5f,"ns":%.5f,"low":%.5f,"high":%.5f,"yielding":%.5f})"
                  "\n",
                  static_cast<int>(8 * sizeof(void*)), storage == host::Storage::BitmapContext ? "context" : "buffer",
                  content.name, size.width, size.height, operation.name, plugins_[i]->Level().c_str(),
                  ns(rows[i].copy.median), ns(rows[i].call.median), ns(rows[i].call.low), ns(rows[i].call.high),
                  ns(rows[i].yielding.median));
    }
    std::fflush(stdout);
  }

  static double Nanoseconds(double seconds, const Size& size) { return seconds * 1e9 / size.Pixels(); }

  // On a terminal, where the table comes when it is complete.
  static void ShowProgress(const char* operation) {
    if (isatty(STDERR_FILENO)) std::fprintf(stderr, "\r%-40s\r", operation);
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
