#include "Workbench.h"

#include <cstring>
#include <filesystem>
#include <memory>

#include "host/Value.h"

namespace bench {
namespace {

// What a level asks of the processor; the rest runs everywhere.
bool RunsHere(const std::string& level) {
#if defined(__i386__) || defined(__x86_64__)
  if (level == "avx2") return __builtin_cpu_supports("avx2") != 0;
  if (level == "avx512") return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0;
#endif
  return true;
}

}  // namespace

std::vector<Level> LevelsIn(const std::string& folder) {
  std::vector<Level> levels;
  for (const char* name : {"plain", "sse2", "avx2", "avx512"}) {
    const std::string file = folder + "/libLMX-" + name + ".so";
    if (std::filesystem::exists(file) && RunsHere(name)) levels.push_back({name, file});
  }
  if (levels.empty()) levels.push_back({"best", folder + "/libLMX.so"});
  return levels;
}

Workbench::Workbench(host::Storage storage, const Pixels& pixels, int width, int height)
    : pool_(storage), source_(pool_.Make(width, height)), copy_(pool_.Make(width, height)) {
  if (pool_.Shortages() != 0) throw host::Error("no memory for the picture");
  Store(pixels, *source_);
}

std::function<void()> Workbench::Copy() {
  return [this] { std::memcpy(copy_->pixels, source_->pixels, source_->Bytes()); };
}

std::function<void()> Workbench::Call(const Plugin& plugin, const Operation& operation) {
  const std::vector<double> arguments = operation.arguments(source_->width, source_->height);
  if (operation.inPlace) Copy()();
  auto call =
      std::make_shared<MethodCall>(plugin.Method(operation.method), operation.inPlace ? copy_ : source_, arguments);
  const int shortages = pool_.Shortages();
  PoolPicture* const result = (*call)();
  const std::int32_t error = plugin.LastError();
  const bool empty = call->ReturnsPicture() && (result == nullptr || result->Bytes() == 0);
  if (result != nullptr) pool_.GiveBack(*result);
  if (pool_.Shortages() != shortages) throw host::Error("no memory for its pictures");
  if (error != 0) throw host::Error("failed with code " + std::to_string(error));
  if (empty) throw host::Error("gave no picture");
  return [this, call] {
    if (PoolPicture* const picture = (*call)()) pool_.GiveBack(*picture);
  };
}

}  // namespace bench
