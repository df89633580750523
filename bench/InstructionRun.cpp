// Calls every operation once on small pictures, each call with a count of its instructions of its own: Callgrind writes
// one file per call, named by what was called. Counts begin where the method is entered and end where it returns, so
// they include the services that it asks for. scripts/instructions runs it under Callgrind and reads the files.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>
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

constexpr int kWidth = 256, kHeight = 192;

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
      const std::string name = std::string(kind.name) + " " + operation.name;
      const std::function<void()> call = workbench.Call(plugin, operation);
      CALLGRIND_ZERO_STATS;
      CALLGRIND_TOGGLE_COLLECT;
      call();
      CALLGRIND_TOGGLE_COLLECT;
      CALLGRIND_DUMP_STATS_AT(name.c_str());
    }
  }
}

void Run(const Options& options) {
  if (RUNNING_ON_VALGRIND == 0) throw host::Error("this runs under valgrind --tool=callgrind");
  for (const Level& level : LevelsIn(LMX_FOLDER)) {
    if (level.name == options.Text("level", "")) return CountAll(Plugin(level.file));
  }
  throw host::Error("there is no such level here");
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    bench::Run(bench::Options(argc, argv, bench::kUsage));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_instructions: %s\n", error.what());
    return 1;
  }
}
