// The shapes and values that the bench and an engine agree on; most of it is proved by compiling.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/aec/aec_module.h"
#include "engine_api/aec/audio_buffer.h"
#include "engine_api/codec/audio_codec.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/codec/local_codec.h"
#include "engine_api/codec/net_codec_stream_format.h"
#include "engine_api/codec/stream_format.h"
#include "engine_api/common/audio_frame.h"
#include "engine_api/common/audio_util.h"
#include "engine_api/common/channel_buffer.h"
#include "engine_api/common/interleave.h"
#include "engine_api/common/wav_file_writer.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "engine_api/enhancement/voice_detection.h"
#include "engine_api/mixing/audio_source.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"

using testing::Each;
using testing::ElementsAre;
using zuwebrtc::AudioBuffer;
using zuwebrtc::AudioFrame;
using zuwebrtc::ChannelBuffer;
using zuwebrtc::FIRFilter;
using zuwebrtc::WavReader;
using zuwebrtc::WavWriter;

static_assert(std::is_polymorphic_v<AudioFrame> && std::has_virtual_destructor_v<AudioFrame>);
static_assert(AudioFrame::kMaxDataSizeSamples == 5292);
static_assert(AudioFrame::kMaxDataSizeSamples == 2 * 2646);  // 60 ms of 44.1 kHz stereo.
static_assert(sizeof(AudioFrame::data_) == 5292 * sizeof(int16_t));
static_assert(std::is_same_v<decltype(AudioFrame::timestamp_), uint32_t>);
static_assert(std::is_same_v<decltype(AudioFrame::elapsed_time_ms_), int64_t>);
static_assert(std::is_same_v<decltype(AudioFrame::ntp_time_ms_), int64_t>);
static_assert(std::is_same_v<decltype(AudioFrame::energy_), uint32_t>);

static_assert(zuwebrtc::kNormalSpeech == 0 && zuwebrtc::kPLC == 1 && zuwebrtc::kCNG == 2 &&
              zuwebrtc::kPLCCNG == 3 && zuwebrtc::kUndefined == 4);
static_assert(zuwebrtc::kVadActive == 0 && zuwebrtc::kVadPassive == 1 &&
              zuwebrtc::kVadUnknown == 2 && zuwebrtc::kVadActiveWithoutVoice == 3);

static_assert(kAudioCodecUnknown == 0 && kAudioCodecSpeex == 1 && kAudioCodecAMRWB == 2 &&
              kAudioCodecSilk == 4 && kAudioCodecMP3 == 8 && kAudioCodecAAC == 16 &&
              kAudioCodecPCM == 32 && kAudioCodecAACHIGH == 64 && kAudioCodecOPUS == 128 &&
              kAudioCodecEldAAC == 256 && kAudioCodecAACCommon == 512 &&
              kAudioCodecOpusCommon == 1024 && kAudioCodecAACUni == 2048);
static_assert(kStreamTypeUnknown == 0 && kStreamTypeAudio == 1 && kStreamTypeVideo == 2);
static_assert(sizeof(AudioStreamFormat) == 12 * 4 && sizeof(StreamFormat) == 13 * 4);
static_assert(std::is_trivially_default_constructible_v<StreamFormat>);  // Gaps stay gaps.
static_assert(sizeof(ZUAudio::NetCodecStreamFormat) == 27 * sizeof(StreamFormat));

static_assert(AudioLocalCodec::UNKNOWN_CODEC == -1 && AudioLocalCodec::SPEEX_CODEC_8 == 0 &&
              AudioLocalCodec::AAC_PLUS_CODEC == 1 && AudioLocalCodec::SILK_CODEC == 2 &&
              AudioLocalCodec::AAC_ELD_CODEC == 4 && AudioLocalCodec::SPEEX_CODEC_4 == 21 &&
              AudioLocalCodec::SPEEX_CODEC_2 == 23 && AudioLocalCodec::AAC_LC_CODEC == 35 &&
              AudioLocalCodec::AAC_AUDIT_CODEC == 36 && AudioLocalCodec::WAV_CODEC == 255);
static_assert(kAudioLibraryDecoder == 0 && kAudioLibraryEncoder == 1);
static_assert(vadResultIsActive == 0 && vadResultIsPassive == 1 && vadResultIsUnknown == 2 &&
              vadResultIsActiveWithoutVoice == 3);
static_assert(AudioSourceTypeMic == 0 && AudioSourceTypeOuterPCM == 1 && AudioSourceTypeMix == 2);
static_assert(voiceDetectionUnknown == -1 && voiceDetectionVeryLowLikelihood == 0 &&
              voiceDetectionLowLikelihood == 1 && voiceDetectionModerateLikelihood == 2 &&
              voiceDetectionHighLikelihood == 3);
static_assert(APMFSCHSEL == 0);

[[maybe_unused]] constexpr void (*kLogger)(const char*, ...) = OutputDebugInfo;
static_assert(std::is_same_v<decltype(SleepMs), void(int)>);
static_assert(std::is_same_v<decltype(GetExactTickCount), uint32_t()>);
static_assert(std::is_same_v<decltype(FormatFromRawCodecId), AudioStreamFormat(int)>);
static_assert(std::is_same_v<decltype(zuwebrtc::S16ToFloat), void(const short*, unsigned, float*)>);
static_assert(std::is_same_v<decltype(MixStereoToMono), void(const float*, float*, int)>);
static_assert(std::is_same_v<decltype(mit_hrtf_availability),
                             unsigned int(int, int, unsigned int, unsigned int)>);
static_assert(std::is_same_v<decltype(mit_hrtf_get),
                             unsigned int(int*, int*, unsigned int, unsigned int, short*, short*)>);

static_assert(std::has_virtual_destructor_v<FIRFilter> && std::is_abstract_v<FIRFilter>);
static_assert(std::is_same_v<decltype(&FIRFilter::Filter),
                             void (FIRFilter::*)(const float*, size_t, float*)>);
static_assert(std::is_same_v<decltype(&FIRFilter::UpdateCoeffients),
                             void (FIRFilter::*)(const float*, size_t)>);
static_assert(
    std::is_same_v<decltype(FIRFilter::Create), FIRFilter*(const float*, size_t, size_t)>);

static_assert(std::is_constructible_v<AudioBuffer, int, int, int, int, int>);
static_assert(std::is_constructible_v<WavReader, std::string>);
static_assert(std::is_constructible_v<WavWriter, std::string, int, int>);
static_assert(std::is_constructible_v<CWavFileWriter, int, int, int, const char*>);
static_assert(sizeof(WavHeader) == 44);

TEST(AudioFrame, StartsInItsResetState) {
  const AudioFrame frame;
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
