#include "MethodTable.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <tuple>
#include <type_traits>

#include "RandomArguments.h"

namespace support {
namespace {

using model::MakePicture;
using model::Outcome;
using model::StoredPicture;

// Passes a call's arguments to the model, parameter by parameter. The model does not get the values
// of ByRef arguments.
class Call {
 public:
  Call(const StoredPicture* source, const Arguments& arguments, const MakePicture& make, const char* types)
      : source_(source), make_(make) {
    for (const host::Value& argument : arguments) {
      if (std::isupper(static_cast<unsigned char>(*types++)) == 0) values_.push_back(argument);
    }
  }

  template <class T>
  T Take() {
    if constexpr (std::is_same_v<T, const StoredPicture*>) {
      return source_;
    } else if constexpr (std::is_same_v<T, MakePicture>) {
      return make_;
    } else if constexpr (std::is_same_v<T, model::Rectangle>) {
      return {Take<int>(), Take<int>(), Take<int>(), Take<int>()};
    } else if constexpr (std::is_same_v<T, model::HsvChange>) {
      return {Take<double>(), Take<double>(), Take<double>(), Take<std::uint8_t>()};
    } else if constexpr (std::is_same_v<T, model::RgbChange>) {
      return {Take<int>(), Take<int>(), Take<int>()};
    } else if constexpr (std::is_same_v<T, int>) {
      return Next().AsInteger();
    } else if constexpr (std::is_same_v<T, double>) {
      return Next().AsDouble();
    } else if constexpr (std::is_same_v<T, std::uint8_t>) {
      return Next().AsBooleanByte();
    } else {
      static_assert(std::is_same_v<T, std::uint32_t>, "a parameter that no argument gives");
      return Next().AsColour().value;
    }
  }

 private:
  const host::Value& Next() { return values_.at(next_++); }

  const StoredPicture* source_;
  const MakePicture& make_;
  Arguments values_;
  std::size_t next_ = 0;
};

template <class... Parameters>
Method Row(const char* name, const char* types, const char* made, Outcome (*byModel)(Parameters...),
           Arguments (*random)(Random& random, Size source)) {
  constexpr bool kHasSource = (std::is_same_v<Parameters, const StoredPicture*> || ...);
  return {name,
          kHasSource,
          types,
          made,
          [=](const StoredPicture* source, const Arguments& arguments, const MakePicture& make) {
            Call call(source, arguments, make, types);
            // Braces evaluate these in order.
            return std::apply(byModel,
                              std::tuple<std::decay_t<Parameters>...>{call.Take<std::decay_t<Parameters>>()...});
          },
          random};
}

}  // namespace

bool Method::ByColumns() const {
  return std::string(made).find('c') != std::string::npos;
}

std::size_t Method::Result() const {
  return std::string(made).find_first_of("rc") + 1;  // npos + 1 is 0
}

const std::vector<Method>& Methods() {
  static const std::vector<Method> methods = {
      {"LMX_GetLastError", false, "", "", nullptr, nullptr},
      {"LMX_GetErrorMessage", false, "i", "", nullptr, nullptr},
      Row("LMX_AdjustHSV", "iiiidddbi", "r", model::AdjustHsv, RandomAdjustHSV),
      Row("LMX_AdjustHSV_InPlace", "iiiidddbi", "", model::AdjustHsvInPlace, RandomAdjustHSV),
      Row("LMX_GetAverageHSV", "iiiiDDDi", "", model::AverageHsv, RandomAverageHSV),
      Row("LMX_AdjustRGB", "iiiiiiii", "r", model::AdjustRgb, RandomAdjustRGB),
      Row("LMX_AdjustRGB_InPlace", "iiiiiiii", "", model::AdjustRgbInPlace, RandomAdjustRGB),
      Row("LMX_GetAverageRGB", "iiiiIIIi", "", model::AverageRgb, RandomAverageRGB),
      Row("LMX_FlipRotate", "bbii", "r", model::FlipRotate, RandomFlipRotate),
      Row("LMX_FreeRotateByShear", "dci", "tttr", model::FreeRotateByShear, RandomFreeRotate),
      Row("LMX_MakeGradient", "iicci", "r", model::MakeGradient, RandomGradient),
      Row("LMX_MakeDoubleGradient", "iiccci", "r", model::MakeDoubleGradient, RandomDoubleGradient),
      Row("LMX_ShearHorizontal", "iidci", "r", model::ShearHorizontal, RandomShear),
      Row("LMX_ShearVertical", "iidci", "c", model::ShearVertical, RandomShear),
      Row("LMX_Stretch", "iii", "ct", model::Stretch, RandomStretch),
      Row("LMX_Trim", "iiiici", "r", model::Trim, RandomTrim),
  };
  return methods;
}

const std::vector<Method>& ModelledMethods() {
  static const std::vector<Method> methods = [] {
    std::vector<Method> modelled;
    for (const Method& method : Methods()) {
      if (method.byModel) modelled.push_back(method);
    }
    return modelled;
  }();
  return methods;
}

const Method& FindMethod(const std::string& name) {
  const auto found = std::find_if(Methods().begin(), Methods().end(), [&](const Method& method) {
    return method.name == name || method.name == "LMX_" + name;
  });
  if (found == Methods().end()) throw std::logic_error("no method is called " + name);
  return *found;
}

}  // namespace support
