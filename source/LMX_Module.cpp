// The two records that the host gets: the module, and the table of its methods in the order in
// which programs see them.
//
// Every entry point but the two of TPQ_Errors sets gLMX_Error when it starts, so that the code is
// about this call only, and returns nil (or nothing) on failure. A `REALpictureStruct*` argument
// may be nil, which is error 2; it stays the caller's. A returned picture is the caller's. `yield`
// is the number of pixels after which the host may handle events; 0 or less means never. Integers
// are 32-bit on every ABI, also where the type is long.
//
// Rationale: some declarations lack a space after a comma. Hosts and programs get these texts to
// the letter, so they stay. In the names of workers, `_NonVector` and `_NoMask` tell variants of a
// larger family of operations apart. They say nothing about the code; debuggers and crash reports
// show them.
#include "LMX_Module.h"

#include "HostCalls.h"
#include "TPQ_AdjustHSV.h"
#include "TPQ_AdjustRGB.h"
#include "TPQ_Errors.h"
#include "TPQ_FlipRotate.h"
#include "TPQ_FreeRotateByShear.h"
#include "TPQ_Gradient.h"
#include "TPQ_Shear.h"
#include "TPQ_Stretch.h"
#include "TPQ_Trim.h"

namespace {

// Every entry point has a type of its own; the host calls it by its declaration.
template <class Entry>
REALmethodDefinition Method(Entry* entry, const char* declaration) {
  return {reinterpret_cast<void (*)()>(entry), nullptr, declaration, kMethodFlags, {nullptr, nullptr}};
}

REALmethodDefinition LMX_Module_Extensions[] = {
    Method(LMX_GetLastError, "LMX_GetLastError() as integer"),
    Method(LMX_GetErrorMessage, "LMX_GetErrorMessage(errorCode as integer) as string"),
    Method(LMX_AdjustHSV,
           "LMX_AdjustHSV(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
           "hue_degrees as double, saturation_factor as double, brightness_factor as double, negative as boolean, "
           "yield as integer) as picture"),
    Method(LMX_AdjustHSV_InPlace,
           "LMX_AdjustHSV_InPlace(extends p as picture, left as integer, top as integer,width as integer, height as "
           "integer, hue_degrees as double, saturation_factor as double, brightness_factor as double, negative as "
           "boolean, yield as integer)"),
    Method(LMX_GetAverageHSV,
           "LMX_GetAverageHSV(extends p as picture, left as integer, top as integer, width as integer, height as "
           "integer, ByRef hue_degrees as double, ByRef saturation as double, ByRef brightness as double, yield as "
           "integer)"),
    Method(LMX_AdjustRGB,
           "LMX_AdjustRGB(extends p as picture, left as integer, top as integer,width as integer, height as integer, "
           "red_delta as integer, green_delta as integer, blue_delta as integer, yield as integer) as picture"),
    Method(LMX_AdjustRGB_InPlace,
           "LMX_AdjustRGB_InPlace(extends p as picture, left as integer, top as integer,width as integer, height as "
           "integer, red_delta as integer, green_delta as integer, blue_delta as integer, yield as integer)"),
    Method(LMX_GetAverageRGB,
           "LMX_GetAverageRGB(extends p as picture, left as integer, top as integer,width as integer, height as "
           "integer, ByRef red as integer, ByRef green as integer, ByRef blue as integer, yield as integer)"),
    Method(LMX_FlipRotate,
           "LMX_FlipRotate(extends p as picture, flip_h as boolean, flip_v as boolean, rotation as integer, yield as "
           "integer) as picture"),
    Method(LMX_FreeRotateByShear_Frame,
           "LMX_FreeRotateByShear(extends p as picture, rotation as double, frame_color as color, yield as integer) "
           "as picture"),
    Method(LMX_MakeGradient,
           "LMX_MakeGradient(width as integer, height as integer, color1 as color, color2 as color, yield as integer) "
           "as picture"),
    Method(LMX_MakeDoubleGradient,
           "LMX_MakeDoubleGradient(width as integer, height as integer, color1 as color, color2 as color, color3 as "
           "color, yield as integer) as picture"),
    Method(LMX_ShearHorizontal_Frame,
           "LMX_ShearHorizontal(extends p as picture, width as integer, height as integer, shear as double, "
           "frame_color as color, yield as integer) as picture"),
    Method(LMX_ShearVertical_Frame,
           "LMX_ShearVertical(extends p as picture, width as integer, height as integer, shear as double, frame_color "
           "as color, yield as integer) as picture"),
    Method(LMX_Stretch,
           "LMX_Stretch(extends p as picture, width as integer, height as integer, yield as integer) as picture"),
    Method(LMX_Trim,
           "LMX_Trim(extends p as picture, left as integer, top as integer, width as integer, height as integer, "
           "frame_color as color,yield as integer) as picture"),
};

constexpr std::uint32_t kMethodCount = sizeof LMX_Module_Extensions / sizeof *LMX_Module_Extensions;

REALmoduleDefinition LMX_Module = {kPluginInterfaceVersion, "LMX", LMX_Module_Extensions, kMethodCount, {}};

}  // namespace

void RegisterModule() {
  REALRegisterModule(&LMX_Module);
}
