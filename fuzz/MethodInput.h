// One input of the methods' target: a call, its pictures, and the fault of the host.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "support/Expectation.h"

namespace fuzz {

using support::Method;
using support::Methods;

/// Where a byte can stand for something wrong, it does from here on. So most inputs are
/// well-formed.
constexpr std::uint8_t kWrong = 240;

/// The memory layout of a picture, and its defect.
struct PictureInput {
  std::uint8_t form = 0;     ///< odd: buffer
  std::uint8_t layout = 0;   ///< see LayoutOf
  std::uint8_t padding = 0;  ///< in bytes
  std::uint8_t fault = 0;    ///< see FaultOf
  std::uint8_t defect = 0;   ///< see Spoil
  std::uint8_t amount = 0;   ///< size of the defect, as a signed byte
};

struct SourceInput {
  std::uint8_t flaw = 0;    ///< 255: the source is nil; from 240 on, rows are missing
  std::uint8_t width = 0;   ///< 255: use `length`
  std::uint8_t height = 0;  ///< 255: use `length`
  std::uint16_t length = 0;
  std::uint16_t missing = 0;  ///< one bit for each of the first 16 rows, then repeated: rows that a buffer lacks
  std::uint8_t content = 0;   ///< 0: the words at the end of the input; else the seed of random ones
};

/// The kind of double that is an angle where the last bit of a sine decides a size.
constexpr std::uint8_t kAwkwardAngle = 240;

/// A number from few bytes. Its meaning depends on the type and on `kind`, see Arguments.
struct ArgumentInput {
  std::uint8_t kind = 0;
  std::uint64_t bits = 0;
};

struct FaultInput {
  std::uint8_t kind = 0;     ///< see HostFaultOf
  std::uint8_t service = 0;  ///< index into host::kServices
  std::uint8_t at = 0;       ///< number of the call or new picture, from 0
};

struct MethodInput {
  static constexpr std::size_t kNewPictures = 4;

  std::uint8_t method = 0;
  std::uint8_t version = 0;  ///< see HostVersion
  FaultInput fault;
  PictureInput sourcePicture;
  SourceInput source;
  PictureInput newPictures[kNewPictures];
  std::vector<ArgumentInput> arguments;
  std::vector<std::uint32_t> words;
};

/// The place in the table of the method that a byte means. A corpus contains only such places:
/// another byte would change its meaning when a method is added.
std::uint8_t MethodByte(std::uint8_t byte);
const Method& MethodOf(const MethodInput& input);

MethodInput Decode(const std::uint8_t* bytes, std::size_t size);
std::vector<std::uint8_t> Encode(const MethodInput& input);

// The meaning of an input.

support::Setting SettingOf(const MethodInput& input);
std::vector<host::Value> Arguments(const MethodInput& input);
double HostVersion(const MethodInput& input);
support::HostFault HostFaultOf(const FaultInput& fault);

/// Whether a picture of the input is malformed.
bool HasDefects(const MethodInput& input);

}  // namespace fuzz
