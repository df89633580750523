// The breaches of contract that the odd plug-in can commit while it is loaded. They show that the
// stand-in host notices them. Its methods commit others.
#pragma once

namespace odd {

/// What the plug-in does wrong while it is loaded: the host's version less kVersionOfLoadMisdeeds.
constexpr double kVersionOfLoadMisdeeds = 5000;
enum LoadMisdeed {
  kNone,
  kWrongInterface,
  kNoInterface,
  kWrongModuleVersion,
  kNoModuleName,
  kNoMethods,
  kModuleWordSet,
  kSetter,
  kWrongFlags,
  kMethodWordSet,
  kNoEntry,
  kNoDeclaration,
  kMalformedDeclaration,
  kSameNameTwice,
};
constexpr double VersionFor(LoadMisdeed misdeed) {
  return kVersionOfLoadMisdeeds + static_cast<int>(misdeed);
}

}  // namespace odd
