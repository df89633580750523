// Calls every operation once on each kind of picture, without yields and with them. Callgrind
// counts the instructions of each call and writes one file per call, named by the call. It counts
// from the entry of the method to its return, including the services that the method calls.
// scripts/instructions runs this program under Callgrind and reads the files.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>

#include "Options.h"
#include "Workbench.h"
#include "host/Value.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_instructions --level=NAME: calls each operation once, for valgrind --tool=callgrind --collect-atstart=no

  --level=NAME         the level of kernels
  --help               this text
)";

// As in a photo, about ten columns lie between two yields, and the work done once per call is small
// compared with the work on pixels.
constexpr int kWidth = 320, kHeight = 1000;

struct Kind {
  const char* name;
  host::Storage storage;
  const char* content;
};

constexpr Kind kKinds[] = {
    {"context-opaque", host::Storage::BitmapContext, "opaque"},
    {"context-translucent", host::Storage::BitmapContext, "fading"},
    {"buffer-opaque", host::Storage::Buffer, "opaque"},
};

const Content& ContentOf(const Kind& kind) {
  for (const Content& content : Contents()) {
    if (std::string(content.name) == kind.content) return content;
  }
  throw host::Error(std::string("there is no content ") + kind.content);
}

void CountAll(const Plugin& plugin) {
  for (const Kind& kind : kKinds) {
    Workbench workbench(kind.storage, Draw(ContentOf(kind), kWidth, kHeight), kWidth, kHeight);
    for (const Operation& operation : Operations()) {
      for (const std::int32_t yield : {0, kUsualYield}) {
        const Work work = workbench.Call(plugin, operation, yield);
        const std::string name = plugin.Level() + " " + kind.name + " " + std::to_string(yield) + " " + operation.name;
        work.prepare();
        CALLGRIND_ZERO_STATS;
        CALLGRIND_TOGGLE_COLLECT;
        work.run();
        CALLGRIND_TOGGLE_COLLECT;
        CALLGRIND_DUMP_STATS_AT(name.c_str());
      }
    }
  }
}

void Run(const Options& options) {
  if (RUNNING_ON_VALGRIND == 0) throw host::Error("this runs under valgrind --tool=callgrind");
  for (const auto& plugin : LoadLevels(LMX_FOLDER)) {
    if (plugin->Level() == options.Text("level", "")) return CountAll(*plugin);
  }
  std::printf("skipped, since the processor lacks it, or Valgrind\n");
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunProgram(argc, argv, bench::kUsage, bench::Run);
}
