// The last error code, and the messages of the codes. The plug-in throws nothing: a program asks
// for the code after the call. Rationale: the messages belong to a larger family of operations. LMX
// raises only some of the codes (LMX_ErrorCode), and keeps the texts to the letter.
#include "TPQ_Errors.h"

#include <cstring>

#include "HostCalls.h"

std::int32_t gLMX_Error = kNoError;
char gLMX_DebugMessage[4096] = {};

namespace {

constexpr char kUnknownError[] = "Unknown Error";

constexpr const char* kMessages[] = {
    "General Error: No Error",
    kUnknownError,
    "General Error: \"source\" parameter is nil",
    kUnknownError,
    "General Error: can't lock \"source\" picture",
    "General Error: can't lock intermediate picture",
    "General Error: can't lock result picture",
    "General Error: can't get DIB object",
    "General Error: \"mask\" parameter is nil",
    "General Error: can't lock \"mask\" picture",
    "General Error: \"mask\" is not same size as \"source\"",
    "General Error: \"mask\" is not greyscale (1, 2, 4, or 8 bit)",
    "General Error: \"mask\" is not black and white (1 bit)",
    "General Error: \"overlay\" parameter is nil",
    "General Error: can't lock \"overlay\" picture",
    "General Error: \"overlay_fraction\" positioned out of bounds",
    "General Error: \"overlay\" positioned out of bounds",
    "General Error: \"overlay\" is wrong size",
    "General Error: \"addend\" is nil",
    "General Error: can't lock \"addend\" picture",
    "General Error: \"addend\" is wrong size",
    "General Error: \"subtractend\" is nil",
    "General Error: can't lock \"subtractend\" picture",
    "General Error: \"subtractend\" is wrong size",
    "General Error: \"color_matrix\" parameter is nil",
    "General Error: \"convolution\" parameter is nil",
    "TPQ_Pixelate Error: \"start_row\" parameter is out of bounds",
    "TPQ_Pixelate Error: \"start_col\" parameter is out of bounds",
    "TPQ_Pixelate Error: \"row_count\" parameter is out of bounds",
    "TPQ_Pixelate Error: \"col_count\" parameter is out of bounds",
    "TPQ_Pixelate Error: \"pixelation\" parameter is out of bounds",
    "Rotate Error: \"rotation\" parameter is out of bounds",
    "Rotate Error: \"rotation_oversample\" parameter is out of bounds",
    "Shear Error: \"shear_pixels\" parameter is out of bounds",
    "Stretch Error: \"width\" parameter is out of bounds",
    "Stretch Error: \"height\" parameter is out of bounds",
    "Stretch Error: \"oversample\" parameter is out of bounds",
    "Stretch Error: \"blur\" parameter is out of bounds",
    "Color Error: invalid selection",
    "Color Error: invalid trim area",
    "Color Error: red parameter out of bounds",
    "Color Error: green parameter out of bounds",
    "Color Error: blue parameter out of bounds",
    "Color Error: degrees out of bounds",
    "Color Error: saturation factor out of bounds",
    "Color Error: brightness factor out of bounds",
    "Color Error: ant size out of bounds",
    "Color Error: ant state out of bounds",
    "Color Error: bits per channel out of bounds",
    "Compare Error: \"compare\" parameter is nil",
    "Compare Error: can't lock \"compare\" picture",
};
constexpr unsigned kLastCode = 50;
static_assert(sizeof kMessages / sizeof *kMessages == kLastCode + 1);

REALstringStruct* HostText(const char* text) {
  return REALBuildString(text, static_cast<int>(std::strlen(text)));
}

}  // namespace

/// The code that the last operation left: 0 after success.
int LMX_GetLastError() {
  return gLMX_Error;
}

/// The message of any code, as a new host text; nil only when the host cannot make one.
REALstringStruct* LMX_GetErrorMessage(int errorCode) {
  const bool known = static_cast<unsigned>(errorCode) <= kLastCode;
  return HostText(known ? kMessages[errorCode] : kUnknownError);
}

REALstringStruct* LMX_GetDebugMessage() {
  return HostText(gLMX_DebugMessage);
}
