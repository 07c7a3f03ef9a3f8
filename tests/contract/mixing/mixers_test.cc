#include <gmock/gmock.h>

#include <algorithm>

#include "bench/mixing/routines.h"
#include "fake_engine/fake_engine.h"
#include "fake_engine/mixing/audio_block_mixer.h"
#include "fake_engine/mixing/audio_record_mixer.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kInput = "c:\\5.wav";
constexpr const char* kOutput = "c:\\outmix.pcm";

std::string Input(size_t bytesAfterHeader) { return std::string(44 + bytesAfterHeader, 'x'); }

}  // namespace

TEST(TestAudioMixer, OpensSeeksMixesAndClosesInOrder) {
  FakeEngine engine;
  engine.PutFile(kInput, Input(320 + 319));

  TestAudioMixer();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(c:\5.wav, rb)
      fopen(c:\5.wav, rb)
      fopen(c:\5.wav, rb)
      fopen(c:\5.wav, rb)
      fopen(c:\5.wav, rb)
      fopen(c:\outmix.pcm, wb)
      fseek(c:\5.wav, 44, 0)
      fseek(c:\5.wav, 96044, 0)  # 44 + 3 s of 32000 bytes
      fseek(c:\5.wav, 192044, 0)  # 6 s
      fseek(c:\5.wav, 288044, 0)  # 9 s
      fseek(c:\5.wav, 384044, 0)  # 12 s
      CAudioBlockMixer#1(160, 1)
      fread(c:\5.wav, 320, 1) = 1
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      CAudioBlockMixer#1.Process(320) = 1
      fwrite(c:\outmix.pcm, 1, 1)
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fread(c:\5.wav, 320, 1) = 0
      fclose(c:\5.wav)
      fclose(c:\5.wav)
      fclose(c:\5.wav)
      fclose(c:\5.wav)
      fclose(c:\5.wav)
      fclose(c:\outmix.pcm)
      ~CAudioBlockMixer#1
  )"));
}

TEST(TestAudioMixer, LosesItsShiftedSourcesOneByOne) {
  FakeEngine engine;
  // The last stream has one block, each other one 300 more than the next.
  engine.PutFile(kInput, Input(384000 + 320));

  TestAudioMixer();

  const std::string expected = std::string(1, '5') + std::string(300, '4') + std::string(300, '3') +
                               std::string(300, '2') + std::string(300, '1');
  EXPECT_EQ(engine.Bytes(kOutput), expected);
}

TEST(TestAudioMixer, HandsTheBlocksOverInTheOrderOfTheStreams) {
  FakeEngine engine;
  std::string input(44, 'h');
  for (const char source : {'a', 'b', 'c', 'd', 'e'}) input += std::string(96000, source);
  engine.PutFile(kInput, input);
  engine.script<BlockMixerScript>().process = [](const AudioBlockList& blocks) {
    std::string firsts;
    for (const std::string* block : blocks) firsts += block->front();
    return firsts;
  };

  TestAudioMixer();

  EXPECT_EQ(engine.Bytes(kOutput).substr(0, 5), "abcde");
}

TEST(TestAudioMixer, StartsEachPassWithAnEmptyMix) {
  FakeEngine engine;
  engine.PutFile(kInput, Input(640));

  TestAudioMixer();

  EXPECT_THAT(engine.CallsWith("Process"), SizeIs(2));
  EXPECT_THAT(engine.CallsWith("not empty"), IsEmpty());
}

TEST(TestAudioMixer, WritesAllThatTheMixerGivesAsOneItem) {
  FakeEngine engine;
  engine.PutFile(kInput, Input(320));
  engine.script<BlockMixerScript>().process = [](const AudioBlockList&) {
    return std::string(777, 'm');
  };

  TestAudioMixer();

  EXPECT_THAT(engine.CallsWith("fwrite"), ElementsAre("fwrite(c:\\outmix.pcm, 777, 1)"));
  EXPECT_EQ(engine.Bytes(kOutput), std::string(777, 'm'));
}

TEST(TestAudioMixer, LeavesAnEmptyOutputWithoutItsInput) {
  FakeEngine engine;

  TestAudioMixer();

  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("fclose"), ElementsAre("fclose(c:\\outmix.pcm)"));
  EXPECT_TRUE(engine.HasFile(kOutput));
}

TEST(TestRecordMixer, MixesBlockByBlockAndReleasesInOrder) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {16000, 1, std::vector<short>(160 + 160 + 159, 7)};
  engine.wavs["record_voice.wav"] = {8000, 2, std::vector<short>(1000, 5)};

  TestRecordMixer();

  EXPECT_THAT(engine.calls, Transcript(R"(
      AudioRecordMixer#1()
      WavReader#1(record_acc.wav)
      WavReader#2(record_voice.wav)
      WavWriter#1(record_out.wav, 16000, 1)
      AudioRecordMixer#1.SetMixerMode(2)
      WavReader#1.ReadSamples(160) = 160
      WavReader#2.ReadSamples(160) = 160
      AudioRecordMixer#1.PushAudioFrame(160 x 1, 0)
      AudioRecordMixer#1.GetMixedAudioFrame(160 x 1)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 160
      WavReader#2.ReadSamples(160) = 160
      AudioRecordMixer#1.PushAudioFrame(160 x 1, 0)
      AudioRecordMixer#1.GetMixedAudioFrame(160 x 1)
      WavWriter#1.WriteSamples(160)
      WavReader#1.ReadSamples(160) = 159
      ~WavWriter#1
      ~WavReader#2
      ~WavReader#1
      ~AudioRecordMixer#1
  )"));
  EXPECT_THAT(engine.wavs["record_out.wav"].samples, SizeIs(320));
  EXPECT_THAT(engine.wavs["record_out.wav"].samples, Each(6));  // The voice, mixed in place.
}

TEST(TestRecordMixer, FillsWholeFramesInTheirResetState) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {44100, 2, std::vector<short>(882, 7)};
  engine.wavs["record_voice.wav"] = {44100, 2, std::vector<short>(882, 5)};

  TestRecordMixer();

  const auto& script = engine.script<RecordMixerScript>();
  ASSERT_THAT(script.pushed, SizeIs(1));
  ASSERT_THAT(script.voice, SizeIs(1));
  EXPECT_EQ(script.pushed[0].data_[881], 7);
  EXPECT_EQ(script.voice[0].data_[881], 5);
  for (const zuwebrtc::AudioFrame* frame : {&script.pushed[0], &script.voice[0]}) {
    EXPECT_EQ(frame->samples_per_channel_, 441);
    EXPECT_EQ(frame->sample_rate_hz_, 44100);
    EXPECT_EQ(frame->num_channels_, 2);
    EXPECT_EQ(frame->data_[882], 0);
    EXPECT_EQ(frame->id_, -1);
    EXPECT_EQ(frame->timestamp_, 0U);
    EXPECT_EQ(frame->elapsed_time_ms_, -1);
    EXPECT_EQ(frame->ntp_time_ms_, -1);
    EXPECT_EQ(frame->speech_type_, zuwebrtc::kUndefined);
    EXPECT_EQ(frame->vad_activity_, zuwebrtc::kVadUnknown);
    EXPECT_EQ(frame->energy_, 0xFFFFFFFFU);
    EXPECT_TRUE(frame->interleaved_);
  }
}

// The mixer deletes what it is handed; the address sanitizer sees a frame that is freed twice.
TEST(TestRecordMixer, HandsAFreshFrameOverForEveryBlock) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {16000, 1, std::vector<short>(480, 7)};
  engine.wavs["record_voice.wav"] = {16000, 1, std::vector<short>(480, 5)};

  TestRecordMixer();

  EXPECT_THAT(engine.CallsWith("PushAudioFrame"), SizeIs(3));
}

TEST(TestRecordMixer, KeepsBothFormulasAt22050Stereo) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {22050, 2, std::vector<short>(441, 7)};
  engine.wavs["record_voice.wav"] = {22050, 2, std::vector<short>(441, 5)};

  TestRecordMixer();

  const std::vector<short>& out = engine.wavs["record_out.wav"].samples;
  ASSERT_THAT(out, SizeIs(441));
  EXPECT_EQ(out[439], 6);
  EXPECT_EQ(out[440], 0);  // 220 samples a channel were copied.
}

TEST(TestRecordMixer, EndsWithTheShorterFile) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {16000, 1, std::vector<short>(1600, 7)};
  engine.wavs["record_voice.wav"] = {16000, 1, std::vector<short>(320, 5)};

  TestRecordMixer();

  EXPECT_THAT(engine.wavs["record_out.wav"].samples, SizeIs(320));
  EXPECT_THAT(engine.CallsWith("WavReader#1.ReadSamples"), SizeIs(3));
}

TEST(TestRecordMixer, WritesNothingWithoutAnAccompaniment) {
  FakeEngine engine;
  engine.wavs["record_voice.wav"] = {16000, 1, std::vector<short>(320, 5)};

  TestRecordMixer();

  EXPECT_THAT(engine.CallsWith("WavWriter"), Transcript(R"(
      WavWriter#1(record_out.wav, 0, 0)
      ~WavWriter#1
  )"));
  EXPECT_THAT(engine.CallsWith("PushAudioFrame"), IsEmpty());
}

// 10 ms that no frame holds: the frame keeps what it can and no more is written.
TEST(TestRecordMixer, NeverWritesBeyondAFrame) {
  FakeEngine engine;
  engine.wavs["record_acc.wav"] = {96000, 8, std::vector<short>(7680, 7)};
  engine.wavs["record_voice.wav"] = {96000, 8, std::vector<short>(7680, 5)};

  TestRecordMixer();

  EXPECT_THAT(engine.wavs["record_out.wav"].samples, SizeIs(5292));
}

TEST(TestRecordMixer, ReadsBlocksOfUpTo65536Samples) {
  for (const auto& [rate, samples] : {std::pair(6553600, 65536U), {6553700, 0U}}) {
    FakeEngine engine;
    engine.wavs["record_acc.wav"] = {rate, 1, std::vector<short>(70000, 7)};
    engine.wavs["record_voice.wav"] = {rate, 1, std::vector<short>(70000, 5)};

    TestRecordMixer();

    EXPECT_THAT(engine.wavs["record_out.wav"].samples, SizeIs(std::min(samples, 5292U))) << rate;
  }
}
