// A picture, and works that plug-ins and memcpy do on it, ready to be measured.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Contents.h"
#include "Operations.h"
#include "Plugin.h"

namespace bench {

/// A build of the plug-in whose kernels go up to a level of instruction sets.
struct Level {
  std::string name;  ///< "best" for the plug-in itself, which takes what the processor has
  std::string file;
};

/// The capped builds in a folder that this processor can run, lowest first; or the plug-in, if there are none.
std::vector<Level> LevelsIn(const std::string& folder);

class Workbench {
 public:
  /// One lives at a time: it has the pool.
  Workbench(host::Storage storage, const Pixels& pixels, int width, int height);

  /// memcpy of the picture.
  std::function<void()> Copy();
  /// A call, which has succeeded once. A method that works in place gets what Copy left. Throws host::Error if it gives
  /// no picture or leaves an error code. The work is good as long as the plug-in.
  std::function<void()> Call(const Plugin& plugin, const Operation& operation);
  /// Returns the memory of results to the system.
  void Clear() { pool_.ReleaseUnused(); }

 private:
  PluginPool pool_;
  PoolPicture* source_;
  PoolPicture* copy_;
};

}  // namespace bench
