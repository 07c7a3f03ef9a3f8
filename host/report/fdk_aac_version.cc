#include "report/fdk_aac_version.h"

#include <fdk-aac/aacdecoder_lib.h>
#include <fdk-aac/aacenc_lib.h>

#include <array>

namespace host {

namespace {

using Parts = std::array<LIB_INFO, FDK_MODULE_LAST>;

std::string VersionOf(const Parts& parts, FDK_MODULE_ID which) {
  for (const LIB_INFO& part : parts) {
    if (part.module_id == which) return part.versionStr;
  }
  return "?";
}

}  // namespace

std::string FdkAacVersion() {
  Parts parts = {};
  FDKinitLibInfo(parts.data());
  aacDecoder_GetLibInfo(parts.data());
  aacEncGetLibInfo(parts.data());
  return "decoder " + VersionOf(parts, FDK_AACDEC) + ", encoder " + VersionOf(parts, FDK_AACENC);
}

}  // namespace host
