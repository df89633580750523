// Start-up: the host's picture class, the host's version, and the module or the message that there is none.
#include "LMX_Main.h"

#include <cstdio>
#include <cstring>

#include "HostCalls.h"
#include "LMX_Module.h"
#include "LMX_Picture.h"
#include "kernels/RunKernels.h"

REALclassRefStruct* gPictureClassRef = nullptr;

namespace {

constexpr double kOldestHostVersion = 2011.04;

void ShowHostTooOld(double version) {
  char text[200];
  std::snprintf(text, sizeof text,
                "This verion of Lumavex requires Real Studio 2011r4 or later.\nReal Studio version: %f", version);
  REALMessageBox(REALBuildString(text, static_cast<int>(std::strlen(text))));
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
