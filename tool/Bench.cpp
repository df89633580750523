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

struct Line {
  std::string operation;
  double ns;      // per pixel
  double memcpy;  // the same of memcpy
};

void WriteHead(std::ostream& out, const Image& image, host::Storage storage) {
  const char* const form = storage == host::Storage::Buffer ? "buffer" : "context";
  out << image.width << " x " << image.height << " pixels, " << form << ", " << 8 * sizeof(void*) << "-bit\n"
      << "operation             ns per pixel   x memcpy\n";
}

void Write(std::ostream& out, const Line& line, bool json) {
  char text[128];
  if (json) {
    std::snprintf(text, sizeof text, "{\"operation\":%s,\"nanoseconds\":%.4f,\"memcpy\":%.4f}\n",
                  JsonText(line.operation).c_str(), line.ns, line.memcpy);
  } else {
    std::snprintf(text, sizeof text, "%-22s %11.3f %10.2f\n", line.operation.c_str(), line.ns, line.ns / line.memcpy);
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

void WriteBench(std::ostream& out, const std::string& plugin, const Image& image, host::Storage storage, bool json) {
  const double pixels = static_cast<double>(image.width) * image.height;
  const bench::Plugin library(plugin);
  bench::PinToOneCore();
  bench::Workbench workbench(storage, image.pixels, image.width, image.height);
  if (!json) WriteHead(out, image, storage);
  for (const bench::Operation& operation : bench::Operations()) {
    if (InterruptRequested()) throw Interrupted("stopped before " + std::string(operation.name));
    try {
      const std::vector<bench::Timing> timings =
          bench::MeasureInTurn({workbench.Copy(), workbench.Call(library, operation)}, kBudget);
      Write(out, {operation.name, timings[1].median * 1e9 / pixels, timings[0].median * 1e9 / pixels}, json);
    } catch (const host::Error& error) {  // most likely a result that there is no memory for
      WriteFailure(out, operation.name, error.what(), json);
    }
    workbench.Clear();
  }
}

}  // namespace tool
