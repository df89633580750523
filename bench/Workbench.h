// A picture, and works on it by plug-ins and by memcpy, ready to be measured.
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

/// The yield that programs usually pass, so that their windows stay responsive.
constexpr std::int32_t kUsualYield = 10000;

/// The capped builds in a folder, lowest level first, as far as this processor has their levels.
/// The plug-in itself if there are none.
std::vector<std::unique_ptr<Plugin>> LoadLevels(const std::string& folder);

class Workbench {
 public:
  /// Only one can live at a time, because it owns the pool.
  Workbench(host::Storage storage, const Pixels& pixels, int width, int height);

  /// The time of memcpy from the picture into a new one. It is measured alone, so the state of the
  /// caches does not depend on earlier measurements.
  Timing Memcpy(const Budget& budget);
  /// A call, prepared by memcpy of the picture; it has succeeded once. A method that works in place
  /// changes the copy. Throws host::Error if the call gives no picture or leaves an error code. The
  /// plug-in must outlive the work.
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
