// Seeds of the methods: every method with ordinary arguments, with arguments at their limits, on
// every kind of picture, and with every fault of the host.

#include <cfloat>
#include <climits>
#include <cstring>
#include <limits>

#include "MethodInput.h"
#include "Seeds.h"

namespace fuzz {
namespace {

using support::FaultKind;

constexpr std::uint8_t kNearWidth = 1;   // an integer: the source's width and a little
constexpr std::uint8_t kNearHeight = 2;  // an integer: the source's height and a little
constexpr std::uint8_t kRaw = 4;         // an integer: its 32 bits
constexpr std::uint8_t kRawDouble = 3;   // a double: its 64 bits
constexpr std::uint8_t kAnyByte = 160;   // a boolean: its byte

ArgumentInput Integer(std::int32_t value) {
  return {kRaw, static_cast<std::uint32_t>(value)};
}

ArgumentInput Double(double value) {
  ArgumentInput argument = {kRawDouble, 0};
  std::memcpy(&argument.bits, &value, sizeof value);
  return argument;
}

ArgumentInput ArgumentOf(const host::Value& value, char type) {
  if (type == 'i') return Integer(value.AsInteger());
  if (type == 'd') return Double(value.AsDouble());
  if (type == 'c') return {0, value.AsColour().value};
  if (type == 'b') return {kAnyByte, value.AsBooleanByte()};
  return {};
}

// A call of a method with these arguments after the source.
MethodInput Usual(const Method& method, const support::Arguments& arguments) {
  MethodInput input;
  input.method = static_cast<std::uint8_t>(&method - Methods().data());
  input.source.width = 9;
  input.source.height = 7;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    input.arguments.push_back(ArgumentOf(arguments[i], method.types[i]));
  }
  // Opaque, translucent and clear pixels, and colours above their alpha, in either form.
  input.words = {0xFF102030, 0x80706050, 0x00010203, 0x10FFFFFF, 0x7F336699, 0xFFFFFFFF, 0x40804020, 0xC8FF00FF};
  return input;
}

class Collection {
 public:
  void Add(const MethodInput& input) { seeds_.push_back(Encode(input)); }

  void AddEdgesOfArguments(const MethodInput& usual) {
    static constexpr double kDoubles[] = {0.0,
                                          -0.0,
                                          1.0,
                                          -1.0,
                                          0.5,
                                          45.0,
                                          89.999999999999986,
                                          90.0,
                                          90.000000000000014,
                                          180.0,
                                          359.99999999999994,
                                          360.0,
                                          -360.0,
                                          999.9999,
                                          1000.0,
                                          DBL_MAX,
                                          DBL_MIN,
                                          DBL_EPSILON,
                                          1e-300,
                                          -1e-300,
                                          std::numeric_limits<double>::denorm_min(),
                                          std::numeric_limits<double>::infinity(),
                                          -std::numeric_limits<double>::infinity(),
                                          std::numeric_limits<double>::quiet_NaN()};
    static constexpr std::int32_t kIntegers[] = {0,   -1,  1,   INT_MIN, INT_MAX, 255,   -255,  256,  -89,
                                                 -90, 180, 270, 359,     360,     32768, 65535, 65536};
    static constexpr std::uint64_t kBytes[] = {0, 1, 2, 3, 127, 128, 254, 255};
    const char* types = MethodOf(usual).types;
    for (std::size_t i = 0; i < usual.arguments.size(); ++i) {
      MethodInput input = usual;
      for (const std::int32_t value : kIntegers) {
        if (types[i] == 'i') input.arguments[i] = Integer(value), Add(input);
      }
      for (const double value : kDoubles) {
        if (types[i] == 'd') input.arguments[i] = Double(value), Add(input);
      }
      for (const std::uint64_t byte : kBytes) {
        if (types[i] == 'b') input.arguments[i] = {kAnyByte, byte}, Add(input);
      }
      input.arguments[i].kind = 7;
      if (std::strchr("bID", types[i]) != nullptr) Add(input);
    }
  }

  void AddPictures(const MethodInput& usual) {
    for (std::uint8_t form = 0; form < 4; ++form) {
      for (std::uint8_t layout = 0; layout < 8; ++layout) {
        MethodInput input = usual;
        input.sourcePicture.form = form & 1;
        input.sourcePicture.layout = layout;
        input.sourcePicture.padding = 13;
        for (PictureInput& picture : input.newPictures) {
          picture = input.sourcePicture;
          picture.form = form >> 1;
        }
        Add(input);
        input.source.flaw = kWrong;
        input.source.missing = static_cast<std::uint16_t>(1 << layout | 1 << 2 * layout);
        Add(input);
      }
    }
    for (const auto& [width, height] : {std::pair(0, 5), std::pair(5, 0), std::pair(1, 1), std::pair(1, 40),
                                        std::pair(40, 1), std::pair(40, 40), std::pair(255, 3), std::pair(3, 255)}) {
      MethodInput input = usual;
      input.source.width = static_cast<std::uint8_t>(width);
      input.source.height = static_cast<std::uint8_t>(height);
      input.source.length = 1025;
      input.source.content = 3;
      Add(input);
    }
    MethodInput nil = usual;
    nil.source.flaw = 255;
    Add(nil);
  }

  // Yields near one line and near two lines of the source.
  void AddPaces(const MethodInput& usual) {
    for (int pixels = -1; pixels <= 1; ++pixels) {
      for (const std::uint8_t size : {kNearWidth, kNearHeight}) {
        MethodInput input = usual;
        if (!input.arguments.empty()) input.arguments.back() = {size, static_cast<std::uint8_t>(pixels)};
        Add(input);
      }
    }
  }

  void AddWrongPictures(const MethodInput& usual) {
    for (int wrong = kWrong; wrong < kWrong + 12; ++wrong) {
      for (std::size_t which = 0; which <= std::strlen(MethodOf(usual).made); ++which) {
        for (const int form : {0, 1}) {
          MethodInput input = usual;
          PictureInput& picture = which == 0 ? input.sourcePicture : input.newPictures[which - 1];
          picture.form = static_cast<std::uint8_t>(form);
          picture.fault = static_cast<std::uint8_t>(wrong);
          Add(input);
          picture.fault = 0;
          picture.defect = static_cast<std::uint8_t>(wrong);
          picture.amount = 3;
          Add(input);
        }
      }
    }
  }

  // Each service at its first calls. The last two bits of a fault select its kind.
  void AddFaults(const MethodInput& usual) {
    for (std::uint8_t kind = kWrong; kind < kWrong + 4; ++kind) {
      for (std::uint8_t service = 0; service < host::kServiceCount; ++service) {
        for (std::uint8_t at = 0; at < 4; ++at) {
          MethodInput input = usual;
          input.fault = {kind, service, at};
          const support::HostFault fault = HostFaultOf(input.fault);
          const bool once = fault.kind == FaultKind::Withhold || fault.service <= host::Service::GetClassRef;
          const bool byService = fault.kind != FaultKind::ConstructorThrows;
          if ((at == 0 || !once) && (service == 0 || byService)) Add(input);
        }
      }
    }
    for (const int version : {255, 254, 253, 252}) {
      MethodInput input = usual;
      input.version = static_cast<std::uint8_t>(version);
      Add(input);
    }
  }

  std::vector<Bytes> Take() { return std::move(seeds_); }

 private:
  std::vector<Bytes> seeds_;
};

}  // namespace

std::vector<Bytes> MethodSeeds() {
  std::vector<MethodInput> inputs = {Usual(support::FindMethod("GetLastError"), {}),
                                     Usual(support::FindMethod("GetErrorMessage"), {1})};
  for (const support::Operation& operation : support::Operations()) {
    const support::MethodCall call(operation, {9, 7}, host::Colour{0x40C08020}, 1);
    inputs.push_back(Usual(*call.method, call.arguments));
  }
  Collection seeds;
  for (const MethodInput& usual : inputs) {
    seeds.Add(usual);
    seeds.AddEdgesOfArguments(usual);
    seeds.AddPictures(usual);
    seeds.AddPaces(usual);
    seeds.AddWrongPictures(usual);
    seeds.AddFaults(usual);
  }
  return seeds.Take();
}

}  // namespace fuzz
