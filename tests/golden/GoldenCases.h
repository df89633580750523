// The calls whose complete results are kept as hashes, and their results by the plug-in and by the
// reference model.
#pragma once

#include <string>
#include <vector>

#include "host/Host.h"
#include "support/PluginTest.h"

namespace golden {

struct Case {
  std::string name;  ///< method, pictures and arguments, in one word
  support::MethodCall call;
  std::optional<model::StoredPicture> source;
  host::Storage newPictures;  ///< the storage form of all pictures that the method makes
};

/// "buffer" or "context".
const char* NameOf(host::Storage form);

/// All cases, method by method.
std::vector<Case> Cases();

/// The result of a case in one line: code, number of yields, and either the picture's size and hash
/// or the averages (doubles as their bits). By the plug-in that the host has loaded, and by the
/// model.
std::string ResultOfPlugin(host::Host& host, const Case& c);
std::string ResultByModel(const Case& c);

/// A line of the file of hashes: "<name> <result>".
struct Line {
  std::string name;
  std::string result;
};
std::vector<Line> ReadHashes();

}  // namespace golden
