// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "engine_api/common/audio_frame.h"
#include "engine_api/common/audio_util.h"
#include "engine_api/common/channel_buffer.h"
#include "engine_api/common/interleave.h"
#include "engine_api/common/wav_file_writer.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"

using testing::Each;
using testing::ElementsAre;
using zuwebrtc::AudioFrame;
using zuwebrtc::ChannelBuffer;
using zuwebrtc::WavReader;
using zuwebrtc::WavWriter;

static_assert(std::is_polymorphic_v<AudioFrame> && std::has_virtual_destructor_v<AudioFrame>);

static_assert(AudioFrame::kMaxDataSizeSamples == 5292);

static_assert(AudioFrame::kMaxDataSizeSamples == 2 * 2646);  // 60 ms of 44.1 kHz stereo.

static_assert(zuwebrtc::kNormalSpeech == 0 && zuwebrtc::kPLC == 1 && zuwebrtc::kCNG == 2 &&
              zuwebrtc::kPLCCNG == 3 && zuwebrtc::kUndefined == 4);

static_assert(zuwebrtc::kVadActive == 0 && zuwebrtc::kVadPassive == 1 &&
              zuwebrtc::kVadUnknown == 2 && zuwebrtc::kVadActiveWithoutVoice == 3);

static_assert(std::is_same_v<decltype(zuwebrtc::S16ToFloat), void(const short*, unsigned, float*)>);

static_assert(std::is_same_v<decltype(MixStereoToMono), void(const float*, float*, int)>);

static_assert(std::is_constructible_v<WavReader, std::string>);

static_assert(std::is_constructible_v<WavWriter, std::string, int, int>);

static_assert(std::is_constructible_v<CWavFileWriter, int, int, int, const char*>);

static_assert(sizeof(WavHeader) == 44);

// The fields of a frame in their order; each at a higher address than the one before it.
TEST(AudioFrame, KeepsTheOrderAndTypesOfItsFields) {
  static_assert(std::is_same_v<decltype(AudioFrame::id_), int>);
  static_assert(std::is_same_v<decltype(AudioFrame::timestamp_), uint32_t>);
  static_assert(std::is_same_v<decltype(AudioFrame::elapsed_time_ms_), int64_t>);
  static_assert(std::is_same_v<decltype(AudioFrame::ntp_time_ms_), int64_t>);
  static_assert(std::is_same_v<decltype(AudioFrame::data_), int16_t[5292]>);
  static_assert(std::is_same_v<decltype(AudioFrame::samples_per_channel_), int>);
  static_assert(std::is_same_v<decltype(AudioFrame::sample_rate_hz_), int>);
  static_assert(std::is_same_v<decltype(AudioFrame::num_channels_), int>);
  static_assert(std::is_same_v<decltype(AudioFrame::speech_type_), zuwebrtc::SpeechType>);
  static_assert(std::is_same_v<decltype(AudioFrame::vad_activity_), zuwebrtc::VADActivity>);
  static_assert(std::is_same_v<decltype(AudioFrame::energy_), uint32_t>);
  static_assert(std::is_same_v<decltype(AudioFrame::interleaved_), bool>);
  const AudioFrame frame;
  const void* const fields[] = {&frame.id_,
                                &frame.timestamp_,
                                &frame.elapsed_time_ms_,
                                &frame.ntp_time_ms_,
                                &frame.data_,
                                &frame.samples_per_channel_,
                                &frame.sample_rate_hz_,
                                &frame.num_channels_,
                                &frame.speech_type_,
                                &frame.vad_activity_,
                                &frame.energy_,
                                &frame.interleaved_};
  EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields)));
}

TEST(AudioFrame, StartsInItsResetState) {
  const AudioFrame frame;
  EXPECT_EQ(frame.samples_per_channel_, 0);
  EXPECT_EQ(frame.sample_rate_hz_, 0);
  EXPECT_EQ(frame.num_channels_, 0);
  EXPECT_EQ(frame.id_, -1);
  EXPECT_EQ(frame.timestamp_, 0U);
  EXPECT_EQ(frame.elapsed_time_ms_, -1);
  EXPECT_EQ(frame.ntp_time_ms_, -1);
  EXPECT_THAT(frame.data_, Each(0));
  EXPECT_EQ(frame.speech_type_, zuwebrtc::kUndefined);
  EXPECT_EQ(frame.vad_activity_, zuwebrtc::kVadUnknown);
  EXPECT_EQ(frame.energy_, 0xffffffffU);
  EXPECT_TRUE(frame.interleaved_);
}

TEST(ChannelBuffer, StartsZeroFilledWithOnePointerAChannel) {
  const ChannelBuffer<float> buffer(441, 2, 1);
  EXPECT_EQ(buffer.num_frames_, 441);
  EXPECT_EQ(buffer.num_frames_per_band_, 441);
  EXPECT_EQ(buffer.num_channels_, 2);
  EXPECT_EQ(buffer.num_bands_, 1);
  EXPECT_EQ(buffer.channels_[0], buffer.data_.get());
  EXPECT_EQ(buffer.channels_[1], buffer.data_.get() + 441);
  EXPECT_EQ(buffer.bands_[1], buffer.data_.get() + 441);
  EXPECT_THAT(std::vector<float>(buffer.data_.get(), buffer.data_.get() + 882), Each(0.0F));
}

TEST(ChannelBuffer, SplitsEachChannelIntoBands) {
  const ChannelBuffer<float> buffer(320, 2, 2);
  float* const start = buffer.data_.get();
  EXPECT_EQ(buffer.num_frames_per_band_, 160);
  EXPECT_EQ(std::vector<float*>(buffer.bands_.get(), buffer.bands_.get() + 4),
            (std::vector<float*>{start, start + 160, start + 320, start + 480}));
  EXPECT_EQ(std::vector<float*>(buffer.channels_.get(), buffer.channels_.get() + 4),
            (std::vector<float*>{start, start + 320, start + 160, start + 480}));
}

TEST(Interleave, PutsOneSampleOfEachChannelSideBySide) {
  const float left[] = {1, 2, 3};
  const float right[] = {-1, -2, -3};
  const float* const channels[] = {left, right};
  float interleaved[7] = {0, 0, 0, 0, 0, 0, 9};

  zuwebrtc::Interleave(channels, 3, 2, interleaved);

  EXPECT_THAT(interleaved, ElementsAre(1, -1, 2, -2, 3, -3, 9));
}
