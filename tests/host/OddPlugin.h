// What the odd plug-in can be told to do wrong. It exists to show that the stand-in host notices.
#pragma once

namespace odd {

/// For the method Misbehave(extends p as picture, misdeed as integer) as picture. Most act on p.
enum Misdeed {
  kLeaveLocked,
  kYieldAndLeaveLocked,
  kUnlockTwice,
  kUnlockNonsense,
  kLockNonsense,
  kLockString,
  kLockUnconstructed,
  kLockWithoutDescription,
  kUseContextAfterUnlock,
  kUseAfterRelease,
  kReleaseTwice,
  kReleaseForeign,
  kReleaseNil,
  kReleaseWhileLocked,
  kConstructTwice,
  kConstructReleased,
  kConstructEmpty,
  kAskWrongConstructor,
  kAskMethodOfNil,
  kAskUnknownService,
  kAskUnknownClass,
  kInstanceOfNonsense,
  kBuildNegativeString,
  kBuildStringOfNil,
  kShowNonsense,
  kRegisterAgain,
  kRegisterNil,
  kReturnArgument,
  kReturnReleased,
  kReturnUnconstructed,
  kReturnString,
  kAbandon,
  kLeakPicture,
  kEndOuterLock,
};

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
