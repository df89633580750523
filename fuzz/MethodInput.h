// One input of the methods' target: a call, the pictures around it, and what the host gets wrong.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "support/Expectation.h"

namespace fuzz {

using support::Method;
using support::Methods;

// Of bytes that stand for something wrong, only the highest values mean it, so that most inputs are
// well-formed.

/// How a picture lies in memory, and what is wrong with it.
struct PictureInput {
  std::uint8_t form = 0;     ///< odd: buffer
  std::uint8_t layout = 0;   ///< see LayoutOf
  std::uint8_t padding = 0;  ///< bytes
  std::uint8_t fault = 0;    ///< see FaultOf
  std::uint8_t defect = 0;   ///< see Spoil
  std::uint8_t amount = 0;   ///< of the defect, as a signed byte
};

struct SourceInput {
  std::uint8_t flaw = 0;    ///< 255: it is nil; from 240 on, rows are missing
  std::uint8_t width = 0;   ///< 255: `length`
  std::uint8_t height = 0;  ///< the same
  std::uint16_t length = 0;
  std::uint16_t missing = 0;  ///< a bit for each row that a buffer may lack, again from row 16 on
  std::uint8_t content = 0;   ///< 0: the words that the input ends with; else the seed of random ones
};

/// Of a double, the kind that is an angle at which the last bit of a sine decides a size.
constexpr std::uint8_t kAwkwardAngle = 240;

/// A number from few bytes: what it means depends on the type and on `kind`, see Arguments.
struct ArgumentInput {
  std::uint8_t kind = 0;
  std::uint64_t bits = 0;
};

struct FaultInput {
  std::uint8_t kind = 0;     ///< see HostFaultOf
  std::uint8_t service = 0;  ///< index of host::kServices
  std::uint8_t at = 0;       ///< which call, or new picture, counted from 0
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

/// The method that a byte means, as its place in the table: in a corpus, a byte that is not a place
/// would mean another method once there is one at that place.
std::uint8_t MethodByte(std::uint8_t byte);
const Method& MethodOf(const MethodInput& input);

MethodInput Decode(const std::uint8_t* bytes, std::size_t size);
std::vector<std::uint8_t> Encode(const MethodInput& input);

// What an input means.

support::Setting SettingOf(const MethodInput& input);
std::vector<host::Value> Arguments(const MethodInput& input);
double HostVersion(const MethodInput& input);
support::HostFault HostFaultOf(const FaultInput& fault);

/// Whether a picture is malformed.
bool HasDefects(const MethodInput& input);

}  // namespace fuzz
