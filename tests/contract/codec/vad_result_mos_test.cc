#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "codec_formats.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/enhancement/voice_detection.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr VADResultKind A = vadResultIsActive;
constexpr VADResultKind P = vadResultIsPassive;
constexpr VADResultKind U = vadResultIsUnknown;
constexpr VADResultKind V = vadResultIsActiveWithoutVoice;

std::string Marked(const std::string& payload) {
  std::string frame(1, static_cast<char>(payload.size()));
  frame += '\xFC';
  return frame + payload;
}

// Frames of 4 samples of mono at 16 kHz, 2 for id 51 at 48 kHz. Frame n holds samples n; its two
// halves get `decisions`, two for each frame. Encoded frame k is the k-th letter, decoded into its
// letter.
class MosRun {
 public:
  MosRun(const std::vector<VADResultKind>& decisions, int codecId, int samplesMore = 0) {
    engine.script<CodecFormatScript>().format = [](int id) {
      return id == 51 ? CodecFormat(51, 48000, 1, 2) : CodecFormat(id, 16000, 1, 4);
    };
    std::vector<short> samples;
    for (size_t i = 0; i < decisions.size() / 2; ++i) {
      samples.insert(samples.end(), 4, static_cast<short>(i + 1));
    }
    samples.insert(samples.end(), static_cast<size_t>(samplesMore), 99);
    engine.wavs["in.wav"] = {16000, 1, samples};
    engine.script<VoiceDetectionScript>().detect = [this, decisions](const short*, unsigned) {
      return decisions.at(m_call++);
    };
    engine.script<AudioCodecScript>().process = [this](int codec, const std::string& in) {
      if (codec == 1) {
        sent.push_back(in[0]);
        return Marked(std::string(1, static_cast<char>('a' + m_encoded++)));
      }
      played += in[2];
      return std::string(2, in[2]);
    };
    TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", codecId);
    EXPECT_THAT(engine.live, IsEmpty());
  }

  // The reconstruction: a letter for each decoded frame, a dot for each silent one.
  std::string Output(size_t silentSamples = 4) {
    std::string text;
    const std::vector<short>& out = engine.wavs["out.wav"].samples;
    for (size_t i = 0; i < out.size();) {
      const bool silent = out[i] == 0;
      text += silent ? '.' : static_cast<char>(out[i] & 0xFF);
      i += silent ? silentSamples : 1;
    }
    return text;
  }

  std::vector<short> Track() { return engine.wavs["vad.wav"].samples; }

  FakeEngine engine;
  std::vector<char> sent;  // The first byte of each frame that was encoded.
  std::string played;

 private:
  size_t m_call = 0;
  int m_encoded = 0;
};

}  // namespace

TEST(TestVADCodecMosByVADResult, SendsSpeechAndFillsTheRestWithSilence) {
  MosRun run({P, P, P, A, A, V, A, P}, 2, 2);

  EXPECT_THAT(run.engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      FormatFromRawCodecId(2)
      WavWriter#1(vad.wav, 16000, 1)
      CVoiceDetectionEx#1(16000, 1)
      CVoiceDetectionEx#1.SetVoiceDetectionMode(1)
      CreateAudioCodec(4, 1) = CAudioCodec#1
      CAudioCodec#1.Init(id 2, 16000 Hz x 1, 4) = 1
      WavReader#1.ReadSamples(4) = 4
      CVoiceDetectionEx#1.Detect(2) = 1
      CVoiceDetectionEx#1.Detect(2) = 1
      WavWriter#1.WriteSamples(4)
      WavReader#1.ReadSamples(4) = 4
      CVoiceDetectionEx#1.Detect(2) = 1
      CVoiceDetectionEx#1.Detect(2) = 0
      CAudioCodec#1.Process(8, room 1024) = 3
      WavWriter#1.WriteSamples(4)
      WavReader#1.ReadSamples(4) = 4
      CVoiceDetectionEx#1.Detect(2) = 0
      CVoiceDetectionEx#1.Detect(2) = 3
      CAudioCodec#1.Process(8, room 1024) = 3
      WavWriter#1.WriteSamples(4)
      WavReader#1.ReadSamples(4) = 4
      CVoiceDetectionEx#1.Detect(2) = 0
      CVoiceDetectionEx#1.Detect(2) = 1
      WavWriter#1.WriteSamples(4)
      WavReader#1.ReadSamples(4) = 2  # Dropped.
      ~CAudioCodec#1
      CreateAudioCodec(4, 0) = CAudioCodec#2
      CAudioCodec#2.Init(id 2, 16000 Hz x 1, 4) = 1
      CAudioCodec#2.Process(3, room 20480) = 2
      CAudioCodec#2.Process(3, room 20480) = 2
      ~CAudioCodec#2
      WavWriter#2(out.wav, 16000, 1)
      WavWriter#2.WriteSamples(14)
      ~WavWriter#2
      ~CVoiceDetectionEx#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(run.sent, ElementsAre(2, 3));
  EXPECT_EQ(run.Output(), ".ab..");  // One silent frame more than was read.
  EXPECT_EQ(run.Track(), (std::vector<short>{0, 0, 0, 0, 32000, 32000, 32000, 32000, 13000, 13000,
                                             13000, 13000, 0, 0, 0, 0}));
}

TEST(TestVADCodecMosByVADResult, HandsBothHalvesToTheDetector) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 5); };
  engine.wavs["in.wav"] = {16000, 1, {1, 2, 3, 4, 5}};
  std::vector<std::vector<short>> halves;
  engine.script<VoiceDetectionScript>().detect = [&](const short* samples, unsigned count) {
    halves.emplace_back(samples, samples + count);
    return P;
  };
  TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 2);
  EXPECT_THAT(halves, ElementsAre(ElementsAre(1, 2), ElementsAre(3, 4)));
}

TEST(TestVADCodecMosByVADResult, MovesOnToTheNextSegmentInASilentFrame) {
  MosRun run({P, P, A, A, A, A, P, P, P, P, A, A, A, A, P, P}, 2);
  EXPECT_EQ(run.Output(), ".ab..cd..");
  EXPECT_EQ(run.played, "abcd");
}

TEST(TestVADCodecMosByVADResult, PlaysSegmentsThatAreOneFrameApart) {
  // Three segments with a single silent frame between them.
  MosRun run({A, A, P, P, A, A, P, P, A, A, P, P}, 2);
  EXPECT_EQ(run.Output(), "a.b.c..");
}

TEST(TestVADCodecMosByVADResult, LeavesAGapForUnknownFramesAndEndsTheSegment) {
  MosRun run({A, A, U, U, A, A, P, P}, 2);
  EXPECT_THAT(run.Track(), SizeIs(3 * 4));  // Shorter than the source.
  EXPECT_EQ(run.Output(), "a.b..");
}

TEST(TestVADCodecMosByVADResult, KeepsSpeechThatNeverEndsSilent) {
  MosRun run({A, A, P, P, A, A, A, A}, 2);
  EXPECT_THAT(run.sent, SizeIs(3));
  EXPECT_EQ(run.Output(), "a....");
}

TEST(TestVADCodecMosByVADResult, FindsNoSegmentWithoutSpeechOrWithoutAnEnd) {
  EXPECT_EQ(MosRun({P, P, P, P}, 2).Output(), "...");
  EXPECT_EQ(MosRun({A, A, A, A}, 2).Output(), "...");
  EXPECT_EQ(MosRun({}, 2).Output(), ".");
}

TEST(TestVADCodecMosByVADResult, Decodes50As51WithItsFormatAndItsSilence) {
  for (const int id : {50, 51}) {
    MosRun run({P, P, A, A, P, P}, id);
    if (id == 51) {  // The source has not that rate.
      EXPECT_THAT(run.engine.CallsWith("Writer"), IsEmpty());
      continue;
    }
    EXPECT_THAT(run.engine.CallsWith("Init"), Transcript(R"(
      CAudioCodec#1.Init(id 50, 16000 Hz x 1, 4) = 1
      CAudioCodec#2.Init(id 51, 48000 Hz x 1, 2) = 1
  )"));
    EXPECT_THAT(run.engine.CallsWith("WavWriter#1("),
                ElementsAre("WavWriter#1(vad.wav, 16000, 1)"));
    EXPECT_THAT(run.engine.CallsWith("WavWriter#2("),
                ElementsAre("WavWriter#2(out.wav, 48000, 1)"));
    EXPECT_EQ(run.Output(2), ".a..");
  }
}

TEST(TestVADCodecMosByVADResult, DoesNothingForAnotherRateOrChannelCount) {
  for (const auto& [rate, channels] : {std::pair(16000, 2), {8000, 1}}) {
    FakeEngine engine;
    engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 4); };
    engine.wavs["in.wav"] = {rate, channels, std::vector<short>(100)};
    TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 2);
    EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      FormatFromRawCodecId(2)
      ~WavReader#1
  )"));
  }
}

TEST(TestVADCodecMosByVADResult, ReadsMarkedHeadersForEveryId) {
  // What an id with another header sends adds nothing, not even silence.
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 4); };
  engine.wavs["in.wav"] = {16000, 1, std::vector<short>(12)};
  int call = 0;
  engine.script<VoiceDetectionScript>().detect = [&](auto, auto) { return call++ < 4 ? A : P; };
  engine.script<AudioCodecScript>().process = [](int, const std::string&) {
    return std::string("\xFF\xF1\x50\x80\x01\x3F\xFC", 7);
  };
  for (const int id : {1, 46, 55}) {
    call = 0;
    TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", id);
    EXPECT_EQ(engine.wavs["out.wav"].samples, std::vector<short>(2 * 4)) << id;
  }
}

TEST(TestVADCodecMosByVADResult, PairsFramesByTheirCountAlone) {
  // The encoder keeps the first frame back: the last active frame finds nothing to decode.
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 4); };
  engine.wavs["in.wav"] = {16000, 1, std::vector<short>(16)};
  int call = 0;
  engine.script<VoiceDetectionScript>().detect = [&](auto, auto) { return call++ < 6 ? A : P; };
  int encoded = 0;
  std::string played;
  engine.script<AudioCodecScript>().process = [&](int codec, const std::string& in) {
    if (codec == 1) return encoded++ == 0 ? std::string() : Marked(std::string(1, 'x'));
    played += in[2];
    return std::string(2, in[2]);
  };
  TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 2);
  EXPECT_EQ(played, "xx");
  EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(2 + 2 * 4));
}

TEST(TestVADCodecMosByVADResult, KeepsFromTheDecoderWhatReachesPastTheEnd) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) { return CodecFormat(id, 16000, 1, 4); };
  engine.wavs["in.wav"] = {16000, 1, std::vector<short>(12)};
  int call = 0;
  engine.script<VoiceDetectionScript>().detect = [&](auto, auto) { return call++ < 4 ? A : P; };
  int encoded = 0;
  engine.script<AudioCodecScript>().process = [&](int codec, const std::string&) {
    if (codec % 2 == 0) return std::string("pp");
    return ++encoded == 1 ? std::string("\x20\xFC") : std::string("\xFF");
  };
  TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 2);
  EXPECT_THAT(engine.CallsWith("CAudioCodec#2.Process"), IsEmpty());
}

TEST(TestVADCodecMosByVADResult, WritesTheMarksOfLongFramesInBlocks) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) {
    return CodecFormat(id, 44100, 1, 2049);  // The last part is of one sample.
  };
  engine.wavs["in.wav"] = {44100, 1, std::vector<short>(2049)};
  engine.script<VoiceDetectionScript>().detect = [](auto, auto) { return V; };
  TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 35);
  EXPECT_THAT(engine.CallsWith("WavWriter#1.Write"), Transcript(R"(
      WavWriter#1.WriteSamples(1024)
      WavWriter#1.WriteSamples(1024)
      WavWriter#1.WriteSamples(1)
  )"));
  EXPECT_THAT(engine.wavs["vad.wav"].samples, Each(13000));
}

TEST(TestVADCodecMosByVADResult, ReadsNoFrameThatItsArrayDoesNotHold) {
  for (const auto& [samples, frames] : {std::pair(4096, 3), {4097, 0}}) {
    FakeEngine engine;
    engine.script<CodecFormatScript>().format = [length = samples](int id) {
      return CodecFormat(id, 44100, 2, length);
    };
    engine.wavs["in.wav"] = {44100, 2, std::vector<short>(30000)};
    TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", 35);
    EXPECT_THAT(engine.CallsWith("Detect("), SizeIs(2 * frames)) << samples;
  }
}

TEST(TestVADCodecMosByVADResult, WritesItsFilesWithoutACodec) {
  for (const int id : {0, 2}) {
    FakeEngine engine;
    engine.script<CodecFormatScript>().format = [](int) { return CodecFormat(0, 16000, 1, 4); };
    engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };
    engine.wavs["in.wav"] = {16000, 1, std::vector<short>(12)};
    int call = 0;
    engine.script<VoiceDetectionScript>().detect = [&](auto, auto) { return call++ < 4 ? A : P; };
    TestVADCodecMosByVADResult("in.wav", "out.wav", "vad.wav", id);
    EXPECT_THAT(engine.wavs["vad.wav"].samples, SizeIs(12));
    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(2 * 4));
  }
}
