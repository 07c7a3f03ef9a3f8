// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <cstdint>
#include <type_traits>

#include "engine_api/aec/aec_file_writer.h"
#include "engine_api/aec/aec_mobile.h"
#include "engine_api/aec/aec_module.h"
#include "engine_api/aec/audio_buffer.h"
#include "engine_api/aec/echo_delay_est.h"
#include "engine_api/aec/ns.h"
#include "engine_api/aec/software_aec.h"
#include "engine_api/aec/webrtc_aec.h"
#include "support/slot.h"

using zuwebrtc::AudioBuffer;

static_assert(APMFSCHSEL == 0);

static_assert(std::is_constructible_v<AudioBuffer, int, int, int, int, int>);

static_assert(kAecNlpConservative == 0 && kAecNlpModerate == 1 && kAecNlpAggressive == 2);

static_assert(std::is_same_v<decltype(AecConfig::nlpMode), int16_t> &&
              std::is_same_v<decltype(AecConfig::skewMode), int16_t> &&
              std::is_same_v<decltype(AecConfig::metricsMode), int16_t> &&
              std::is_same_v<decltype(AecConfig::delay_logging), int32_t>);

// The delay has 16 bits.
static_assert(
    std::is_same_v<decltype(WebRtcAec_Process), int32_t(void*, const float* const*, int32_t,
                                                        float* const*, int16_t, int16_t, int32_t)>);

static_assert(std::is_same_v<decltype(Ns_Process2), int(void*, const short*, short*, int16_t)>);

static_assert(std::is_constructible_v<CEchoDelayEst, int, int>);

static_assert(std::is_same_v<decltype(&CEchoDelayEst::ProcessFar),
                             int (CEchoDelayEst::*)(const short*, int)> &&
              std::is_same_v<decltype(&CEchoDelayEst::ProcessNear),
                             int (CEchoDelayEst::*)(const short*, int)> &&
              std::is_same_v<decltype(&CEchoDelayEst::GetDelay), int (CEchoDelayEst::*)()>);

static_assert(std::is_constructible_v<CAecFileWriter, int, int, const char*, const char*,
                                      const char*, const char*, const char*, int>);

static_assert(std::is_base_of_v<AecModule, SoftwareAec> &&
              std::is_default_constructible_v<SoftwareAec>);

static_assert(std::is_abstract_v<AecModule> && std::has_virtual_destructor_v<AecModule>);

TEST(AecModule, KeepsItsSlotsInOrder) {
  EXPECT_EQ(Slot(&AecModule::ProcessCaptureAudio), 2U);
  EXPECT_EQ(Slot(&AecModule::ProcessRenderAudio), 3U);
  EXPECT_EQ(Slot(&AecModule::SetVadMode), 4U);
  EXPECT_EQ(Slot(&AecModule::SetFsAndCh), 5U);
  EXPECT_EQ(Slot(&AecModule::GetFsAndCh), 6U);
  EXPECT_EQ(Slot(&AecModule::IsSoftAecEnabled), 7U);
  EXPECT_EQ(Slot(&AecModule::EnableAGC), 8U);
  EXPECT_EQ(Slot(&AecModule::EnableDenoise), 9U);
  EXPECT_EQ(Slot(&AecModule::IsKalaokEnabled), 10U);
  EXPECT_EQ(Slot(&AecModule::EnableKalaok), 11U);
  EXPECT_EQ(Slot(&AecModule::GetKalaokDelay), 12U);
  EXPECT_EQ(Slot(&AecModule::NotifySpeekerRouting), 13U);
  EXPECT_EQ(Slot(&AecModule::ResetPreProc), 14U);
  EXPECT_EQ(Slot(&AecModule::SetNewNsOn), 15U);
  EXPECT_EQ(Slot(&AecModule::EnableLogSoftAecData), 16U);
}
