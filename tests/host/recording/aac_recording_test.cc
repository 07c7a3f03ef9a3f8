// AAC in ADTS.

#include <gmock/gmock.h>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"

#if AUDIO_ENGINE_HAS_AAC

#include <fdk-aac/aacenc_lib.h>

#include <cmath>

namespace host {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

// Two seconds of a sine in stereo.
std::string AdtsFile(AUDIO_OBJECT_TYPE type, int rate) {
  HANDLE_AACENCODER encoder = nullptr;
  EXPECT_EQ(aacEncOpen(&encoder, 0, 2), AACENC_OK);
  aacEncoder_SetParam(encoder, AACENC_AOT, static_cast<UINT>(type));
  aacEncoder_SetParam(encoder, AACENC_SAMPLERATE, static_cast<UINT>(rate));
  aacEncoder_SetParam(encoder, AACENC_CHANNELMODE, MODE_2);
  aacEncoder_SetParam(encoder, AACENC_BITRATE, 96000);
  aacEncoder_SetParam(encoder, AACENC_TRANSMUX, TT_MP4_ADTS);
  EXPECT_EQ(aacEncEncode(encoder, nullptr, nullptr, nullptr, nullptr), AACENC_OK);
  std::vector<short> samples = Tone(997, 16384, rate, 2 * rate, 2);
  std::string file;
  size_t at = 0;
  while (true) {
    void* in = samples.data() + at;
    INT inBytes = static_cast<INT>((samples.size() - at) * 2);
    INT inId = IN_AUDIO_DATA;
    INT inSize = 2;
    unsigned char frame[8192];
    void* out = frame;
    INT outBytes = sizeof frame;
    INT outId = OUT_BITSTREAM_DATA;
    INT outSize = 1;
    const AACENC_BufDesc inBuffers = {1, &in, &inId, &inBytes, &inSize};
    const AACENC_BufDesc outBuffers = {1, &out, &outId, &outBytes, &outSize};
    AACENC_InArgs inArgs = {};
    inArgs.numInSamples = at < samples.size() ? static_cast<INT>(samples.size() - at) : -1;
    AACENC_OutArgs made = {};
    if (aacEncEncode(encoder, &inBuffers, &outBuffers, &inArgs, &made) != AACENC_OK) break;
    file.append(reinterpret_cast<const char*>(frame), static_cast<size_t>(made.numOutBytes));
    at += static_cast<size_t>(made.numInSamples);
  }
  aacEncClose(&encoder);
  return file;
}

class AacRecordingTest : public testing::Test {
 protected:
  void ExpectTone(int rate, double tolerance) {
    const Staging staging = StageOne("source.aac", WaveForm());
    ASSERT_EQ(FaultText(staging), "");
    const Sound made = ReadSound("work/in");
    EXPECT_EQ(made.rate, rate);
    EXPECT_EQ(made.channels, 2);
    // What encoder and decoder delay it by stays.
    EXPECT_NEAR(static_cast<double>(made.samples.size()) / 2, 2.0 * rate, tolerance);
    const ToneFit fit = FitTone(made.samples, 997, rate, 2);
    EXPECT_NEAR(20 * std::log10(fit.amplitude), 20 * std::log10(0.5), 0.1);
    EXPECT_EQ(StepNames(staging), "samples");
  }

  TemporaryDirectory m_directory;
};

TEST_F(AacRecordingTest, ReadsLc) {
  WriteFile("source.aac", AdtsFile(AOT_AAC_LC, 44100));
  ExpectTone(44100, 4 * 1024);
}

TEST_F(AacRecordingTest, ReadsHighEfficiency) {
  WriteFile("source.aac", AdtsFile(AOT_SBR, 44100));
  ExpectTone(44100, 4 * 2048);
}

TEST_F(AacRecordingTest, ReadsBehindATag) {
  std::string bytes = AdtsFile(AOT_AAC_LC, 44100);
  bytes.insert(0, 140, '\0');
  // A tag of 130 bytes, which are told seven bits a byte.
  bytes.replace(0, 10, "ID3\4\0\0\0\0\1\2"s);
  WriteFile("source.aac", bytes);
  ExpectTone(44100, 4 * 1024);
}

TEST_F(AacRecordingTest, ATornFileIsRefused) {
  const std::string whole = AdtsFile(AOT_AAC_LC, 44100);
  WriteFile("source.aac", whole.substr(0, whole.size() - 5));
  EXPECT_THAT(FaultText(StageOne("source.aac", WaveForm())),
              HasSubstr("s: no whole frame follows"));
}

TEST_F(AacRecordingTest, DamageIsNamedWithItsTime) {
  std::string bytes = AdtsFile(AOT_AAC_LC, 44100);
  bytes.replace(bytes.size() / 2, 3000, std::string(3000, '\x5A'));
  WriteFile("source.aac", bytes);
  EXPECT_THAT(FaultText(StageOne("source.aac", WaveForm())),
              testing::MatchesRegex("input source.aac cannot be read beyond (0\\.9|1\\.0). s: .*"));
}

TEST_F(AacRecordingTest, APlayersRecordingIsCopied) {
  WriteFile("source.aac", AdtsFile(AOT_AAC_LC, 44100));
  const Staging staging = StageOne("source.aac", {.kind = Form::Kind::kRecording});
  EXPECT_EQ(StepNames(staging), "copy");
  EXPECT_EQ(ReadFile("work/in"), ReadFile("source.aac"));
}

}  // namespace
}  // namespace host

#else

namespace host {
namespace {

TEST(AacRecordingTest, ABuildWithoutTheLibrarySaysSo) {
  const TemporaryDirectory directory;
  // Two frames' headers with nothing in them.
  const std::string frame = std::string("\xFF\xF1\x50\x80\x02\x1F\xFC", 7) + std::string(9, '\0');
  WriteFile("source.aac", frame + frame + frame + frame);
  EXPECT_THAT(FaultText(StageOne("source.aac", WaveForm())),
              testing::HasSubstr("is AAC, which this build cannot read"));
}

}  // namespace
}  // namespace host

#endif
