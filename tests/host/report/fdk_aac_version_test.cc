#include "report/fdk_aac_version.h"

#include <fdk-aac/aacdecoder_lib.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <string>

namespace host {
namespace {

TEST(FdkAacVersion, TellsThoseOfTheDecoderAndOfTheEncoder) {
  std::array<LIB_INFO, FDK_MODULE_LAST> parts = {};
  FDKinitLibInfo(parts.data());
  aacDecoder_GetLibInfo(parts.data());
  const auto* const decoder = std::ranges::find(parts, FDK_AACDEC, &LIB_INFO::module_id);
  ASSERT_NE(decoder, parts.end());
  EXPECT_THAT(FdkAacVersion(),
              testing::StartsWith("decoder " + std::string(decoder->versionStr) + ", encoder "));
  EXPECT_THAT(FdkAacVersion(), testing::ContainsRegex("encoder [0-9.]+$"));
}

}  // namespace
}  // namespace host
