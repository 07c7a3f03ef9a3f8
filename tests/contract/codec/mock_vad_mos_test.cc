#include <gmock/gmock.h>

#include <set>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "engine_api/common/wav_writer.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Samples = std::vector<short>;

// 10 ms frames of 16 kHz mono; packets carry the first sample of their frame, with which the
// decoder fills a frame.
void UseCodec(FakeEngine& engine) {
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 160); };
  engine.script<AudioCodecScript>().process = [](int codec, const std::string& in) {
    if (codec % 2 == 1) return "\x02\xFC" + in.substr(0, 2);
    std::string frame;
    for (int i = 0; i < 160; ++i) frame += in.substr(2, 2);
    return frame;
  };
}

// The names of files in the order in which they are opened, "<" before what is read.
std::vector<std::string> Opened(const FakeEngine& engine) {
  std::vector<std::string> names;
  for (const std::string& call : engine.calls) {
    const size_t at = call.find("x.wav");
    if (at == std::string::npos) continue;
    const std::string name = call.substr(at, call.find_first_of(",)", at) - at);
    if (call.rfind("WavReader#", 0) == 0 || call.find(", rb)") != std::string::npos) {
      names.push_back("<" + name);
    } else if (call.rfind("WavWriter#", 0) == 0 || call.rfind("CWavFileWriter#", 0) == 0 ||
               call.find(", wb)") != std::string::npos) {
      names.push_back(name);
    }
  }
  return names;
}

// Two frames of speech with a frame of noise between them, and a detector that knows.
void PutSpeech(FakeEngine& engine) {
  Samples samples(480, 7);
  std::fill_n(samples.begin() + 160, 160, short{1});
  zuwebrtc::WavWriter("x.wav.preproc.wav", 16000, 1).WriteSamples(samples.data(), 480);
  engine.calls.clear();
  engine.script<VoiceDetectionScript>().detect = [](const short* frame, unsigned) {
    return frame[0] == 7 ? vadResultIsActive : vadResultIsPassive;
  };
}

}  // namespace

TEST(TestMockVADMos, TakesItsStepsInOrder) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["x.wav"] = {48000, 2, Samples(960)};
  PutSpeech(engine);

  TestMockVADMos("x.wav", 2);

  EXPECT_THAT(
      Opened(engine),
      ElementsAre("<x.wav", "x.wav.resample.wav", "<x.wav.preproc.wav", "x.wav.codec.wav.enc",
                  "<x.wav.codec.wav.enc", "x.wav.codec.wav.dec.wav", "<x.wav.codec.wav.dec.wav",
                  "x.wav.codec.wav", "<x.wav.preproc.wav", "x.wav.vadresult.wav", "x.wav.vad.wav",
                  "<x.wav.vad.wav", "x.wav.vadCodec.wav.enc", "<x.wav.vadCodec.wav.enc",
                  "x.wav.vadCodec.wav.dec.wav", "<x.wav.vadCodec.wav.dec.wav",
                  "x.wav.vadCodec.wav"));
  EXPECT_EQ(engine.wavs["x.wav.resample.wav"].rate, 16000);
  EXPECT_EQ(engine.wavs["x.wav.resample.wav"].channels, 1);
  EXPECT_THAT(engine.CallsWith("FormatFromRawCodecId(2)"), SizeIs(4));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestMockVADMos, PutsTheGatedSpeechThroughTheSameCodec) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["x.wav"] = {16000, 1, Samples(160)};
  PutSpeech(engine);
  const Samples speech = engine.wavs["x.wav.preproc.wav"].samples;

  TestMockVADMos("x.wav", 2);

  Samples gated = speech;
  std::fill_n(gated.begin() + 160, 160, short{0});
  EXPECT_EQ(engine.wavs["x.wav.codec.wav"].samples, speech);
  EXPECT_EQ(engine.Bytes("x.wav.vad.wav").substr(44),
            std::string(reinterpret_cast<const char*>(gated.data()), 960));
  EXPECT_EQ(engine.wavs["x.wav.vadCodec.wav"].samples, gated);
}

TEST(TestMockVADMos, NeverMakesThePreprocessedSpeechItself) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["x.wav"] = {16000, 1, Samples(1600, 7)};

  TestMockVADMos("x.wav", 2);

  EXPECT_THAT(engine.CallsWith("puts("), ElementsAre("puts(\"Open Source File Error..\")"));
  for (const char* const file : {"x.wav.preproc.wav", "x.wav.vad.wav", "x.wav.vadresult.wav"}) {
    EXPECT_EQ(engine.wavs.count(file), 0U) << file;
    EXPECT_EQ(engine.files.count(file), 0U) << file;
  }
  // The codec's two steps are taken all the same, and find nothing.
  EXPECT_THAT(engine.wavs["x.wav.resample.wav"].samples, SizeIs(1600));
  EXPECT_THAT(engine.wavs["x.wav.codec.wav"].samples, IsEmpty());
  EXPECT_EQ(engine.wavs.count("x.wav.vadCodec.wav"), 1U);
  EXPECT_EQ(engine.Bytes("x.wav.vadCodec.wav.enc"), "");
}

TEST(TestMockVADMos, OverwritesItsFilesAndLeavesThePreprocessedSpeech) {
  FakeEngine engine;
  UseCodec(engine);
  engine.wavs["x.wav"] = {16000, 1, Samples(160)};
  PutSpeech(engine);
  const Samples speech = engine.wavs["x.wav.preproc.wav"].samples;
  TestMockVADMos("x.wav", 2);
  const Samples first = engine.wavs["x.wav.vadCodec.wav"].samples;
  std::set<std::string> names;
  for (const auto& file : engine.files) names.insert(file.first);

  TestMockVADMos("x.wav", 2);

  EXPECT_EQ(engine.wavs["x.wav.preproc.wav"].samples, speech);
  EXPECT_EQ(engine.wavs["x.wav.vadCodec.wav"].samples, first);
  for (const auto& file : engine.files) EXPECT_EQ(names.count(file.first), 1U) << file.first;
}

TEST(TestMockVADMos, LeavesFilesWithoutSamplesForAnUnknownId) {
  FakeEngine engine;
  UseCodec(engine);
  engine.script<AudioCodecScript>().isAvailable = [](ZUAudioCodec, AudioLibraryCodecMode) {
    return false;
  };
  engine.wavs["x.wav"] = {16000, 1, Samples(160)};
  PutSpeech(engine);
  TestMockVADMos("x.wav", 77);
  EXPECT_EQ(engine.Bytes("x.wav.codec.wav.enc"), "");
  EXPECT_THAT(engine.wavs["x.wav.codec.wav"].samples, IsEmpty());
  EXPECT_THAT(engine.Bytes("x.wav.vad.wav"), SizeIs(44 + 960));
  EXPECT_THAT(engine.wavs["x.wav.vadCodec.wav"].samples, IsEmpty());
}
