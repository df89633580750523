#include "MethodTable.h"

namespace support {
namespace {

using model::MakePicture;
using model::Outcome;
using model::Rectangle;
using model::StoredPicture;
using Arguments = std::vector<host::Value>;

Rectangle RectangleOf(const Arguments& a) {
  return {a[0].AsInteger(), a[1].AsInteger(), a[2].AsInteger(), a[3].AsInteger()};
}

model::HsvChange HsvChangeOf(const Arguments& a) {
  return {a[4].AsDouble(), a[5].AsDouble(), a[6].AsDouble(), a[7].AsBooleanByte()};
}

model::RgbChange RgbChangeOf(const Arguments& a) {
  return {a[4].AsInteger(), a[5].AsInteger(), a[6].AsInteger()};
}

Outcome AdjustHsv(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::AdjustHsv(source, RectangleOf(a), HsvChangeOf(a), a[8].AsInteger(), make);
}
Outcome AdjustHsvInPlace(const StoredPicture* source, const Arguments& a, const MakePicture&) {
  return model::AdjustHsvInPlace(source, RectangleOf(a), HsvChangeOf(a), a[8].AsInteger());
}
Outcome AverageHsv(const StoredPicture* source, const Arguments& a, const MakePicture&) {
  return model::AverageHsv(source, RectangleOf(a), a[7].AsInteger());
}
Outcome AdjustRgb(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::AdjustRgb(source, RectangleOf(a), RgbChangeOf(a), a[7].AsInteger(), make);
}
Outcome AdjustRgbInPlace(const StoredPicture* source, const Arguments& a, const MakePicture&) {
  return model::AdjustRgbInPlace(source, RectangleOf(a), RgbChangeOf(a), a[7].AsInteger());
}
Outcome AverageRgb(const StoredPicture* source, const Arguments& a, const MakePicture&) {
  return model::AverageRgb(source, RectangleOf(a), a[7].AsInteger());
}
Outcome FlipRotate(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::FlipRotate(source, a[0].AsBooleanByte(), a[1].AsBooleanByte(), a[2].AsInteger(), a[3].AsInteger(),
                           make);
}
Outcome FreeRotateByShear(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::FreeRotateByShear(source, a[0].AsDouble(), a[1].AsColour().value, a[2].AsInteger(), make);
}
Outcome MakeGradient(const StoredPicture*, const Arguments& a, const MakePicture& make) {
  return model::MakeGradient(a[0].AsInteger(), a[1].AsInteger(), a[2].AsColour().value, a[3].AsColour().value,
                             a[4].AsInteger(), make);
}
Outcome MakeDoubleGradient(const StoredPicture*, const Arguments& a, const MakePicture& make) {
  return model::MakeDoubleGradient(a[0].AsInteger(), a[1].AsInteger(), a[2].AsColour().value, a[3].AsColour().value,
                                   a[4].AsColour().value, a[5].AsInteger(), make);
}
Outcome ShearHorizontal(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::ShearHorizontal(source, a[0].AsInteger(), a[1].AsInteger(), a[2].AsDouble(), a[3].AsColour().value,
                                a[4].AsInteger(), make);
}
Outcome ShearVertical(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::ShearVertical(source, a[0].AsInteger(), a[1].AsInteger(), a[2].AsDouble(), a[3].AsColour().value,
                              a[4].AsInteger(), make);
}
Outcome Stretch(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::Stretch(source, a[0].AsInteger(), a[1].AsInteger(), a[2].AsInteger(), make);
}
Outcome Trim(const StoredPicture* source, const Arguments& a, const MakePicture& make) {
  return model::Trim(source, RectangleOf(a), a[4].AsColour().value, a[5].AsInteger(), make);
}

}  // namespace

bool Method::InPlace() const {
  return std::string(name).find("_InPlace") != std::string::npos;
}

const std::vector<Method>& Methods() {
  static const std::vector<Method> methods = {
      {"LMX_GetLastError", false, "", 0, nullptr},
      {"LMX_GetErrorMessage", false, "i", 0, nullptr},
      {"LMX_AdjustHSV", true, "iiiidddbi", 1, AdjustHsv},
      {"LMX_AdjustHSV_InPlace", true, "iiiidddbi", 0, AdjustHsvInPlace},
      {"LMX_GetAverageHSV", true, "iiiiDDDi", 0, AverageHsv},
      {"LMX_AdjustRGB", true, "iiiiiiii", 1, AdjustRgb},
      {"LMX_AdjustRGB_InPlace", true, "iiiiiiii", 0, AdjustRgbInPlace},
      {"LMX_GetAverageRGB", true, "iiiiIIIi", 0, AverageRgb},
      {"LMX_FlipRotate", true, "bbii", 1, FlipRotate},
      {"LMX_FreeRotateByShear", true, "dci", 4, FreeRotateByShear},
      {"LMX_MakeGradient", false, "iicci", 1, MakeGradient},
      {"LMX_MakeDoubleGradient", false, "iiccci", 1, MakeDoubleGradient},
      {"LMX_ShearHorizontal", true, "iidci", 1, ShearHorizontal},
      {"LMX_ShearVertical", true, "iidci", 1, ShearVertical},
      {"LMX_Stretch", true, "iii", 1, Stretch},
      {"LMX_Trim", true, "iiiici", 1, Trim},
  };
  return methods;
}

}  // namespace support
