#include "MethodVariants.h"

#include <stdexcept>
#include <string>

namespace support {

using host::Colour;
using host::Value;

namespace {

Size TheSize(Size size) {
  return size;
}

constexpr Colour kOther = {0x00F0A010};

}  // namespace

const std::vector<Variant>& Variants() {
  using Arguments = std::vector<Value>;
  static const std::vector<Variant> variants = {
      {"AdjustHSV", "LMX_AdjustHSV", TheSize,
       [](Size s, Colour) -> Arguments { return {1, 2, s.width - 4, s.height - 5, 40.0, 1.0, 2.0, false}; }, false},
      {"AdjustHSVInPlace", "LMX_AdjustHSV_InPlace", TheSize,
       [](Size s, Colour) -> Arguments { return {2, 1, s.width, s.height - 3, -70.0, 2.0, 1.0, true}; }, false},
      {"GetAverageHSV", "LMX_GetAverageHSV", TheSize,
       [](Size s, Colour) -> Arguments { return {1, 1, s.width, s.height - 4, -7.0, -8.0, -9.0}; }, false},
      {"AdjustRGB", "LMX_AdjustRGB", TheSize,
       [](Size s, Colour) -> Arguments { return {1, 2, s.width - 4, s.height - 5, 10, -20, 30}; }, false},
      {"AdjustRGBInPlace", "LMX_AdjustRGB_InPlace", TheSize,
       [](Size s, Colour) -> Arguments { return {1, 0, s.width - 3, s.height, 10, -20, 30}; }, false},
      {"GetAverageRGB", "LMX_GetAverageRGB", TheSize,
       [](Size s, Colour) -> Arguments { return {1, 1, s.width, s.height - 4, -7, -8, -9}; }, false},
      {"Copy", "LMX_FlipRotate", TheSize,
       [](Size, Colour) -> Arguments {
         return {false, true, 0};
       },
       false},
      {"Mirror", "LMX_FlipRotate", TheSize,
       [](Size, Colour) -> Arguments {
         return {true, false, 0};
       },
       false},
      {"QuarterTurn", "LMX_FlipRotate", TheSize,
       [](Size, Colour) -> Arguments {
         return {false, false, 90};
       },
       false},
      {"ThreeQuarterTurn", "LMX_FlipRotate", TheSize,
       [](Size, Colour) -> Arguments {
         return {false, false, 270};
       },
       false},
      {"FreeRotate", "LMX_FreeRotateByShear",
       [](Size s) -> Size {
         return {s.width * 3 / 4, s.height * 3 / 4};
       },
       [](Size, Colour frame) -> Arguments {
         return {30.0, frame};
       },
       false},
      {"FreeRotateOnItsSide", "LMX_FreeRotateByShear",
       [](Size s) -> Size {
         return {s.width * 3 / 4, s.height * 3 / 4};
       },
       [](Size, Colour frame) -> Arguments {
         return {235.0, frame};
       },
       false},
      {"MakeGradient", "LMX_MakeGradient", TheSize,
       [](Size s, Colour frame) -> Arguments {
         return {s.width, s.height, frame, kOther};
       },
       false},
      {"MakeDoubleGradient", "LMX_MakeDoubleGradient", TheSize,
       [](Size s, Colour frame) -> Arguments {
         return {s.width, s.height, kOther, frame, kOther};
       },
       false},
      {"ShearHorizontal", "LMX_ShearHorizontal", TheSize,
       [](Size s, Colour frame) -> Arguments {
         return {s.width + 5, s.height + 3, 0.3, frame};
       },
       false},
      {"ShearVertical", "LMX_ShearVertical", TheSize,
       [](Size s, Colour frame) -> Arguments {
         return {s.width - 1, s.height + 7, -0.6, frame};
       },
       true},
      {"StretchLarger", "LMX_Stretch",
       [](Size s) -> Size {
         return {s.width * 4 / 5, s.height * 3 / 4};
       },
       [](Size s, Colour) -> Arguments {
         return {s.width, s.height};
       },
       true},
      {"StretchSmaller", "LMX_Stretch",
       [](Size s) -> Size {
         return {s.width * 9 / 8, s.height * 8 / 7};
       },
       [](Size s, Colour) -> Arguments {
         return {s.width, s.height};
       },
       true},
      {"StretchToHalf", "LMX_Stretch",
       [](Size s) -> Size {
         return {s.width * 2, s.height * 2 / 3};
       },
       [](Size s, Colour) -> Arguments {
         return {s.width, s.height};
       },
       true},
      {"StretchToFewRows", "LMX_Stretch", TheSize,
       [](Size s, Colour) -> Arguments {
         return {s.width, s.height / 35 + 1};
       },
       true},
      {"StretchToFewColumns", "LMX_Stretch", TheSize,
       [](Size s, Colour) -> Arguments {
         return {s.width / 35 + 1, s.height};
       },
       true},
      {"Trim", "LMX_Trim", TheSize,
       [](Size s, Colour frame) -> Arguments {
         return {-3, 2, s.width + 5, s.height, frame};
       },
       false},
  };
  return variants;
}

const Method& MethodOf(const Variant& variant) {
  for (const Method& method : Methods()) {
    if (std::string(method.name) == variant.method) return method;
  }
  throw std::logic_error(variant.method);
}

MethodCall CallOf(const Variant& variant, Size size, Colour frame, int yield) {
  const Method& method = MethodOf(variant);
  std::vector<Value> arguments = variant.arguments(size, frame);
  arguments.emplace_back(yield);
  return {method.name, method.hasSource, arguments,
          [&method, arguments](const model::StoredPicture* source, const model::MakePicture& make) {
            return method.define(source, arguments, make);
          }};
}

}  // namespace support
