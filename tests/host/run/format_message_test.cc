// What is said of WAVE inputs that are not in the format that is right, and which are no fault.

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "bench_process.h"
#include "support/file_bytes.h"
#include "support/talk.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class FormatMessage : public testing::Test {
 protected:
  FormatMessage() { std::filesystem::create_directory("bench_work"); }

  static Finished Run(std::vector<std::string> words) {
    words.insert(words.begin(), {AUDIO_BENCH, "run"});
    return RunProcess(words);
  }

  static void Put(const std::string& name, const std::string& bytes) {
    WriteFile("bench_work/" + name, bytes);
  }

  // `frames` of what sounds like speech, alike in all channels.
  static std::vector<short> Speech(const WavFormat& format, size_t frames) {
    std::vector<short> samples;
    for (const short sample : Talk(static_cast<int>(format.rate), 1, 7)) {
      if (samples.size() >= frames * format.channels) break;
      samples.insert(samples.end(), format.channels, sample);
    }
    return samples;
  }

  static std::string Wave(const WavFormat& format, size_t frames = 8000) {
    return WavBytes(format, Speech(format, frames));
  }

  TemporaryDirectory m_directory;
};

constexpr WavFormat kMono = {.channels = 1, .rate = 16000};
constexpr WavFormat kStereo = {.channels = 2, .rate = 16000};

// A byte of the little-endian length at `at` after another, all set to `byte`.
std::string WithLength(std::string wave, size_t at, char byte) {
  return wave.replace(at, 4, 4, byte);
}

TEST_F(FormatMessage, NamesTheChannelsOfAnInputThatEndsTheProcess) {
  Put("in.wav", Wave(kStereo));
  const Finished run = Run({"TestVADProcessRefined", "in.wav", "out.wav", "none", "0"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out,
              HasSubstr("killed by signal 6 (Aborted); input in.wav (bench_work/in.wav) is 16000 "
                        "Hz, stereo, where only mono, any rate is taken; to convert it: ffmpeg"));
}

TEST_F(FormatMessage, NamesTheRateBelowWhichTheTempoEndsTheProcess) {
  const WavFormat slow = {.channels = 1, .rate = 7999};
  Put("yedegangqinqu_Fs44100_Ch1.wav", Wave(slow, 4000));
  const Finished run = Run({"TestSoundTouchBpm"});
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out,
              HasSubstr("is 7999 Hz, mono, where only a rate of 8000 Hz or more is taken"));
  EXPECT_THAT(run.out, HasSubstr("-ar 8000 "));
  const WavFormat enough = {.channels = 1, .rate = 8000};
  Put("yedegangqinqu_Fs44100_Ch1.wav", Wave(enough, 4000));
  EXPECT_EQ(Run({"TestSoundTouchBpm"}).exitCode, 0);
}

TEST_F(FormatMessage, NamesTheFileWhoseFormatAnotherOneNeeds) {
  Put("near.wav", Wave(kMono));
  EXPECT_THAT(Run({"TestZUAec", "near.wav", "far.wav", "out.wav", "true"}).out,
              HasSubstr("16-bit WAVE, the rate and channel count of near.wav\n"));
}

TEST_F(FormatMessage, NamesBothFormatsWhereNothingComesOfAnInput) {
  Put("near.wav", Wave(kMono));
  Put("far.wav", Wave(kStereo));
  Finished run = Run({"TestZUAec", "near.wav", "far.wav", "out.wav", "true"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("far.wav (bench_work/far.wav) is 16000 Hz, stereo, where only "
                                 "16000 Hz, mono, as in near.wav is taken"));
  run = Run({"TestVADCodecMosByVADResult", "far.wav", "o.wav", "r.wav", "2"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("is 16000 Hz, stereo, where only 16000 Hz, mono is taken"));
  run = Run({"TestEncodeFile", "far.wav", "out.enc"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("where only 44100 Hz, stereo or 16000 Hz, mono is taken"));
}

TEST_F(FormatMessage, RefusesWhatACodecDoesNotTakeBeforeTheRun) {
  const auto refuse = [](const std::vector<std::string>& words, const std::string& format) {
    const Finished run = Run(words);
    EXPECT_EQ(run.exitCode, 1) << words[0];
    EXPECT_THAT(run.out, HasSubstr(format + " is taken; to convert it: ffmpeg")) << words[0];
    EXPECT_FALSE(std::filesystem::exists("bench_work/out")) << words[0];
    EXPECT_FALSE(std::filesystem::exists("bench_work/logs")) << words[0];
  };
  Put("fast", Wave({.channels = 1, .rate = 48000}));
  Put("two", Wave(kStereo));
  for (const std::string in : {"fast", "two"}) {
    const std::string only = (in == "fast" ? "48000 Hz, mono" : "16000 Hz, stereo") +
                             std::string(", where only 16000 Hz, mono");
    refuse({"TestZUEncode", in, "out", "2", "false"}, only);
    refuse({"newTestZUEncode", in, "out", "2", "0", "48000", "false"}, only);
    refuse({"TestZUCodecNew", in, "out", "2"}, only);
    refuse({"TestVADCodecMosByVADResult", in, "out", "r.wav", "2"}, only);
    refuse({"TestEncodeFile", in, "out"}, "where only 44100 Hz, stereo or 16000 Hz, mono");
  }
  Put("ref", Wave(kMono));
  Put("ref.preproc.wav", Wave(kStereo));
  refuse({"TestMockVADMos", "ref", "2"}, "16000 Hz, stereo, where only 16000 Hz, mono");
  EXPECT_FALSE(std::filesystem::exists("bench_work/ref.resample.wav"));
}

TEST_F(FormatMessage, BlamesTheInputForACopiedHeaderThatIsNone) {
  Put("in.wav", Riff(PlainFormat(kMono) + Chunk("LIST", std::string(26, 'x')) +
                     Chunk("data", SampleBytes(Speech(kMono, 8000)))));
  const Finished run = Run({"TestAGCProcess", "in.wav", "out.wav"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("fail  TestAGCProcess  input in.wav (bench_work/in.wav) has a "
                                  "header of 78 bytes with a LIST chunk, where the first 44 are "
                                  "copied as the header"));
  EXPECT_THAT(run.out, HasSubstr(" -bitexact "));
  EXPECT_THAT(run.out, testing::Not(HasSubstr("is not a WAVE file")));
  EXPECT_TRUE(std::filesystem::exists("bench_work/out.wav")) << "it runs all the same";
}

TEST_F(FormatMessage, TakesAnOpenLengthForAllThatFollows) {
  for (const char byte : {'\0', '\xFF'}) {
    Put("in.wav", WithLength(WithLength(Wave(kMono), 40, byte), 4, byte));
    EXPECT_EQ(Run({"TestHPFProcess", "in.wav", "out.wav"}).exitCode, 0);
    EXPECT_THAT(Run({"TestHPFProcess", "in.wav", "out.wav"}).out, StartsWith("pass"));
  }
}

TEST_F(FormatMessage, SaysBothLengthsOfAnInputThatIsCut) {
  const std::string whole = Wave(kMono);
  Put("in.wav", whole.substr(0, whole.size() / 2));
  const Finished run = Run({"TestHPFProcess", "in.wav", "out.wav"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, StartsWith("warn  TestHPFProcess  input in.wav (bench_work/in.wav) is not "
                                  "whole: its header announces 16000 bytes of samples, there are "
                                  "7978"));
}

TEST_F(FormatMessage, TakesTheOutputOfACopiedHeaderForWhole) {
  Put("in.wav", Wave(kMono, 8007));  // The last 7 samples are no block.
  EXPECT_THAT(Run({"TestAGCProcess", "in.wav", "out.wav"}).out, StartsWith("pass"));
  EXPECT_THAT(Run({"TestAGCProcess", "out.wav", "again.wav"}).out, StartsWith("pass"));
  std::string cut = ReadFile("bench_work/out.wav");
  cut.resize(cut.size() - 2);
  Put("out.wav", cut);
  EXPECT_THAT(Run({"TestAGCProcess", "out.wav", "again.wav"}).out, StartsWith("warn"));
}

TEST_F(FormatMessage, TakesBlocksThatEndWithinAFrameForWhole) {
  const WavFormat format = {.channels = 2, .rate = 22050};
  for (const size_t frames : {4410U, 4631U}) {  // 20 and 21 blocks of 441 samples.
    Put("in.wav", Wave(format, frames));
    EXPECT_THAT(Run({"TestHPFProcess", "in.wav", "out.wav"}).out, StartsWith("pass")) << frames;
    Put("ns_in.wav", Wave(format, frames));
    EXPECT_THAT(Run({"TestDenoiseProcess"}).out, StartsWith("pass")) << frames;
  }
}

TEST_F(FormatMessage, RefusesABlockOfWhichNothingIsRead) {
  const WavFormat many = {.channels = 8, .rate = 192000};
  Put("yedegangqinqu_Fs44100_Ch1.wav", Wave(many, 4000));
  const Finished run = Run({"TestBeatTrack"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("15360 samples in a block of 10 ms, where 1 to 8192 are read"));
}

TEST_F(FormatMessage, SaysWhatIsRightInTheDescription) {
  const auto describe = [](const std::string& routine) {
    return RunProcess({AUDIO_BENCH, "describe", routine}).out;
  };
  EXPECT_THAT(describe("TestIIREq"), HasSubstr("16-bit WAVE; 44100 Hz; stereo; at least 1764"));
  EXPECT_THAT(describe("TestHPFProcess"), HasSubstr("any rate; any channel count; at least 10 ms"));
  EXPECT_THAT(describe("TestVADProcess"), HasSubstr("; optional"));
  const std::string refused = "in another format it is refused before the run\n";
  EXPECT_THAT(describe("TestZUEncode"), HasSubstr(refused));
  EXPECT_THAT(describe("TestMockVADMos"),
              HasSubstr(refused + "                a part of the routine takes it for 16000 Hz, "
                                  "mono, whatever it is in\n"));
  EXPECT_THAT(describe("TestIIREq"), testing::Not(HasSubstr(refused)));
  EXPECT_THAT(describe("TestAudioRecorder"), HasSubstr("AAC stream; a run adds to it"));
  EXPECT_THAT(describe("TestVAD"), HasSubstr("text; optional"));
}

}  // namespace
