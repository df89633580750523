// The code of the last operation, which host programs read, and the messages of the codes.
#pragma once

#include <cstdint>

#include "HostCalls.h"

// Entry points.
LMX_HOST_CALLABLE int LMX_GetLastError();
LMX_HOST_CALLABLE REALstringStruct* LMX_GetErrorMessage(int errorCode);

/// The codes that operations leave in gLMX_Error.
enum LMX_ErrorCode : std::int32_t {
  kNoError = 0,
  kSourceIsNil = 2,
  kCantLockSource = 4,
  kCantLockIntermediate = 5,
  kCantLockResult = 6,
  kRotationOutOfBounds = 31,
  kShearOutOfBounds = 33,
  kWidthOutOfBounds = 34,
  kHeightOutOfBounds = 35,
  kInvalidSelection = 38,
  kInvalidTrimArea = 39,
  kRedOutOfBounds = 40,
  kGreenOutOfBounds = 41,
  kBlueOutOfBounds = 42,
  kDegreesOutOfBounds = 43,
  kSaturationOutOfBounds = 44,
  kBrightnessOutOfBounds = 45,
};

/// The code of the last operation. An operation sets it when it starts, and again when it fails
/// later. Reading it changes nothing.
extern std::int32_t gLMX_Error;

/// A diagnostic text, zero-terminated. No operation writes one.
extern char gLMX_DebugMessage[4096];

/// gLMX_DebugMessage as a host text; not a method of the module.
REALstringStruct* LMX_GetDebugMessage();
