// A picture, and works that plug-ins and memcpy do on it, ready to be measured.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Contents.h"
#include "Plugin.h"
#include "Timing.h"
#include "support/Operations.h"

namespace bench {

using support::Operation;

/// The operations that are measured.
const std::vector<Operation>& Operations();

/// What programs pass as `yield`: their windows stay alive.
constexpr std::int32_t kUsualYield = 10000;

/// The capped builds in a folder that run the level that they are named after, lowest first: those
/// of the levels that this processor has. If there are none, the plug-in itself.
std::vector<std::unique_ptr<Plugin>> LoadLevels(const std::string& folder);

class Workbench {
 public:
  /// One lives at a time: it has the pool.
  Workbench(host::Storage storage, const Pixels& pixels, int width, int height);

  /// What memcpy of the picture into a picture as results are takes, seconds. It is measured by
  /// itself, so that it finds the caches as it left them, whatever was measured before.
  Timing Memcpy(const Budget& budget);
  /// A call right after memcpy of the picture, which has succeeded once. A method that works in
  /// place changes the copy. Throws host::Error if it gives no picture or leaves an error code. The
  /// work is good as long as the plug-in.
  Work Call(const Plugin& plugin, const Operation& operation, std::int32_t yield);
  /// Returns the memory of results to the system.
  void Clear() { pool_.ReleaseUnused(); }

 private:
  std::function<void()> Copy();

  PluginPool pool_;
  PoolPicture* source_;
  PoolPicture* copy_;
};

}  // namespace bench
