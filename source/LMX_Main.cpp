// Start-up: chooses the kernels, looks up the host's picture class and version, and registers the
// module or shows a message.
#include "LMX_Main.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "HostCalls.h"
#include "LMX_Module.h"
#include "LMX_Picture.h"
#include "kernels/RunKernels.h"

REALclassRefStruct* gPictureClassRef = nullptr;

namespace {

constexpr double kOldestHostVersion = 2011.04;

// The version has six decimals after a point, also where the locale writes another sign. A version
// of very many digits is cut. Rationale: the word is misspelt on purpose; users and those who help
// them know the message as it is.
void ShowHostTooOld(double version) {
  constexpr int kMostShown = 199;
  constexpr int kDecimals = 6;
  char text[450];  // the longest number has 309 digits before its decimals
  const int length =
      std::snprintf(text, sizeof text,
                    "This verion of Lumavex requires Real Studio 2011r4 or later.\nReal Studio version: %f", version);
  if (std::isfinite(version)) {
    const char* const decimals = text + length - kDecimals;
    char* point = text + length - kDecimals - 1;
    while (point[-1] < '0' || point[-1] > '9') --point;  // a locale's own may take several bytes
    *point = '.';
    std::memmove(point + 1, decimals, kDecimals + 1);
  }
  REALMessageBox(REALBuildString(text, std::min(static_cast<int>(std::strlen(text)), kMostShown)));
}

}  // namespace

void PluginEntry() {
  SelectRunKernels();
  gPictureClassRef = REALGetClassRef("picture");
  const double version = REALGetRBVersion();
  if (version >= kOldestHostVersion) {
    RegisterModule();
  } else {  // also when the version is not a number
    ShowHostTooOld(version);
  }
}
