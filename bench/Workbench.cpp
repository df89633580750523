#include "Workbench.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <utility>

#include "host/Value.h"

namespace bench {

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> measured = support::Operations();
    const auto isOdd = [](const Operation& operation) { return !operation.measured; };
    measured.erase(std::remove_if(measured.begin(), measured.end(), isOdd), measured.end());
    return measured;
  }();
  return operations;
}

std::vector<std::unique_ptr<Plugin>> LoadLevels(const std::string& folder) {
  std::vector<std::unique_ptr<Plugin>> plugins;
  std::istringstream names(LMX_LEVELS);
  for (std::string name; names >> name;) {
    const std::filesystem::path file = std::filesystem::path(folder) / ("libLMX-" + name + ".so");
    if (!std::filesystem::exists(file)) continue;
    auto plugin = std::make_unique<Plugin>(file.string());
    if (plugin->Level() == name) plugins.push_back(std::move(plugin));
  }
  if (plugins.empty()) plugins.push_back(std::make_unique<Plugin>(folder + "/libLMX.so"));
  return plugins;
}

Workbench::Workbench(host::Storage storage, const Pixels& pixels, int width, int height)
    : pool_(storage), source_(pool_.Make(width, height)), copy_(pool_.Make(width, height)) {
  if (pool_.Shortages() != 0) throw host::Error("no memory for the picture");
  Store(pixels, *source_);
}

std::function<void()> Workbench::Copy() {
  return [this] { std::memcpy(copy_->pixels, source_->pixels, source_->Bytes()); };
}

Timing Workbench::Memcpy(const Budget& budget) {
  const auto copyToResult = [this] {
    PoolPicture* const result = pool_.Make(source_->width, source_->height);
    std::memcpy(result->pixels, source_->pixels, source_->Bytes());
    pool_.GiveBack(*result);
  };
  return MeasureInTurn({{copyToResult, Copy()}}, budget).front();
}

Work Workbench::Call(const Plugin& plugin, const Operation& operation, std::int32_t yield) {
  constexpr host::Colour kClear = {0xFF000000};
  const support::Size size = {source_->width, source_->height};
  const std::vector<host::Value> arguments = operation.arguments(size, operation.ResultOf(size), kClear);
  PoolPicture* const picture = support::WorksInPlace(operation.method) ? copy_ : source_;
  auto call = std::make_shared<MethodCall>(plugin.Method(operation.method), picture, arguments, yield);
  const int shortages = pool_.Shortages();
  Copy()();
  PoolPicture* const result = (*call)();
  const std::int32_t error = plugin.LastError();
  const bool empty = call->ReturnsPicture() && (result == nullptr || result->Bytes() == 0);
  if (result != nullptr) pool_.GiveBack(*result);
  if (pool_.Shortages() != shortages) throw host::Error("no memory for its pictures");
  if (error != 0) throw host::Error("failed with code " + std::to_string(error));
  if (empty) throw host::Error("gave no picture");
  return {[this, call] {
            if (PoolPicture* const made = (*call)()) pool_.GiveBack(*made);
          },
          Copy()};
}

}  // namespace bench
