#include "Bench.h"

#include <cstdio>
#include <ostream>

#include "Errors.h"
#include "Interrupt.h"
#include "Values.h"
#include "bench/Timing.h"
#include "bench/Workbench.h"
#include "host/Value.h"

namespace tool {
namespace {

constexpr bench::Budget kBudget = {3, 0.05};
constexpr bench::Budget kMemcpyBudget = {9, 0.2};

// Nanoseconds per pixel.
struct Line {
  std::string operation;
  double call;
  double yielding;
};

void WriteHead(std::ostream& out, const Image& image, const char* form, const std::string& level, double memcpy,
               std::int32_t yield) {
  char text[256];
  std::snprintf(text, sizeof text,
                "%d x %d pixels, %s, %d-bit, %s; memcpy takes %.3f ns per pixel\n"
                "operation             ns per pixel   x memcpy   x with a yield every %d pixels\n",
                image.width, image.height, form, static_cast<int>(8 * sizeof(void*)), level.c_str(), memcpy,
                static_cast<int>(yield));
  out << text;
}

void Write(std::ostream& out, const Line& line, double memcpy, bool json) {
  char text[192];
  if (json) {
    std::snprintf(text, sizeof text, "{\"operation\":%s,\"nanoseconds\":%.4f,\"yielding\":%.4f,\"memcpy\":%.4f}\n",
                  JsonText(line.operation).c_str(), line.call, line.yielding, memcpy);
  } else {
    std::snprintf(text, sizeof text, "%-22s %11.3f %10.2f %10.2f\n", line.operation.c_str(), line.call,
                  line.call / memcpy, line.yielding / line.call);
  }
  out << text << std::flush;
}

void WriteFailure(std::ostream& out, const std::string& operation, const char* what, bool json) {
  if (json) {
    out << "{\"operation\":" << JsonText(operation) << ",\"error\":" << JsonText(std::string(what)) << "}\n";
  } else {
    out << operation << ": " << what << '\n';
  }
}

}  // namespace

void WriteBench(std::ostream& out, const std::string& plugin, const Image& image, host::Storage storage,
                std::optional<std::int32_t> yield, bool json) {
  const double pixels = static_cast<double>(image.width) * image.height;
  const auto nanoseconds = [&](const bench::Timing& timing) { return timing.median * 1e9 / pixels; };
  const char* const form = storage == host::Storage::Buffer ? "buffer" : "context";
  const std::int32_t pace = yield.value_or(bench::kUsualYield);
  const bench::Plugin library(plugin);
  bench::PinToOneCore();
  bench::Workbench workbench(storage, image.pixels, image.width, image.height);
  const double memcpy = nanoseconds(workbench.Memcpy(kMemcpyBudget));
  if (!json) WriteHead(out, image, form, library.Level(), memcpy, pace);
  for (const bench::Operation& operation : bench::Operations()) {
    if (InterruptRequested()) throw Interrupted("stopped before " + std::string(operation.name));
    try {
      const std::vector<bench::Timing> timings = bench::MeasureInTurn(
          {workbench.Call(library, operation, 0), workbench.Call(library, operation, pace)}, kBudget);
      Write(out, {operation.name, nanoseconds(timings[0]), nanoseconds(timings[1])}, memcpy, json);
    } catch (const host::Error& error) {  // most likely a result that there is no memory for
      WriteFailure(out, operation.name, error.what(), json);
    }
    workbench.Clear();
  }
}

}  // namespace tool
