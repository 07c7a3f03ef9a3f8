#include <gmock/gmock.h>

#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/audio_dsp_processor.h"
#include "fake_engine/effects/equalizer.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

// A header that no one looks at, then so many bytes.
std::string WaveBytes(size_t bytes) {
  std::string wave = "a header of forty-four bytes, whatever is in";
  for (size_t i = 0; i < bytes; ++i) wave += static_cast<char>(i % 127);
  return wave;
}

constexpr const char* kMusic = "c:\\44100_2_music.wav";
constexpr const char* kEqualised = "c:\\44100_2_music_eq.wav";

}  // namespace

TEST(TestIIREq, SetsSixBandsThenEqualisesWholeBlocksInPlace) {
  FakeEngine engine;
  engine.PutFile(kMusic, WaveBytes(1764 + 1764 + 1763));

  TestIIREq();

  EXPECT_THAT(engine.calls, Transcript(R"(
      CreateEqualizer() = IEqualizer#1
      IEqualizer#1.SetEqGain(0, 1)
      IEqualizer#1.SetEqGain(5, 6)
      IEqualizer#1.SetEqGain(6, 7)
      IEqualizer#1.SetEqGain(7, 8)
      IEqualizer#1.SetEqGain(8, 9)
      IEqualizer#1.SetEqGain(9, 10)
      IEqualizer#1.SetEnabled(true)
      fopen(c:\44100_2_music.wav, rb)
      fread(c:\44100_2_music.wav, 1, 44) = 44
      fopen(c:\44100_2_music_eq.wav, wb)
      fwrite(c:\44100_2_music_eq.wav, 1, 44)
      fread(c:\44100_2_music.wav, 1764, 1) = 1
      IEqualizer#1.Process(@1, 441, 44100, 2, 2)
      fwrite(c:\44100_2_music_eq.wav, 1764, 1)
      fread(c:\44100_2_music.wav, 1764, 1) = 1
      IEqualizer#1.Process(@1, 441, 44100, 2, 2)
      fwrite(c:\44100_2_music_eq.wav, 1764, 1)
      fread(c:\44100_2_music.wav, 1764, 1) = 0
  )"));  // Dropped: not a whole block.
}

TEST(TestIIREq, LeavesTheEqualiserAliveAndBothFilesOpen) {
  FakeEngine engine;
  engine.PutFile(kMusic, WaveBytes(1764));

  TestIIREq();

  EXPECT_THAT(engine.live, ElementsAre(Pair("IEqualizer", 1)));
  EXPECT_THAT(engine.CallsWith("fclose"), IsEmpty());
}

TEST(TestIIREq, WritesTheCopiedHeaderAndWhatTheEqualiserMade) {
  FakeEngine engine;
  const std::string input = WaveBytes(3 * 1764);
  engine.PutFile(kMusic, input);
  engine.script<EqualizerScript>().process = [](short* samples, int count) {
    EXPECT_EQ(count, 882);
    for (int i = 0; i < count; ++i) samples[i] = static_cast<short>(~samples[i]);
  };

  TestIIREq();

  fflush(nullptr);  // As the process's exit does.
  std::string expected = input;
  for (size_t i = 44; i < expected.size(); ++i) expected[i] = static_cast<char>(~expected[i]);
  EXPECT_EQ(engine.Bytes(kEqualised), expected);
}

TEST(TestIIREq, EndsAtOnceWithoutItsInput) {
  FakeEngine engine;

  TestIIREq();

  EXPECT_THAT(engine.CallsWith("Process"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(R"(
      fopen(c:\44100_2_music.wav, rb) = null
      fopen(c:\44100_2_music_eq.wav, wb)
  )"));
}

TEST(TestReverb, AddsTheReverberationToWholeBlocksThenReleasesInOrder) {
  FakeEngine engine;
  engine.PutFile("in.wav", WaveBytes(882 + 882 + 881));

  TestReverb("in.wav", "out.wav", 3, 44100, 1);

  EXPECT_THAT(engine.calls, Transcript(R"(
      CAudioDspProcessor#1()
      CAudioDspProcessor#1.SetReverbExEnable(true)
      fopen(in.wav, rb)
      fread(in.wav, 1, 44) = 44
      fopen(out.wav, wb)
      fwrite(out.wav, 1, 44)
      fread(in.wav, 882, 1) = 1
      CAudioDspProcessor#1.Process(441, 44100, 1, 16)
      fwrite(out.wav, 882, 1)
      fread(in.wav, 882, 1) = 1
      CAudioDspProcessor#1.Process(441, 44100, 1, 16)
      fwrite(out.wav, 882, 1)
      fread(in.wav, 882, 1) = 0
      fclose(in.wav)
      fclose(out.wav)
      ~CAudioDspProcessor#1
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestReverb, TakesItsBlockFromItsArguments) {
  const struct {
    int rate, channels, bytes;
    const char* process;
  } cases[] = {{44100, 2, 1764, "CAudioDspProcessor#1.Process(441, 44100, 2, 16)"},
               {8000, 1, 160, "CAudioDspProcessor#1.Process(80, 8000, 1, 16)"},
               {22050, 1, 441, "CAudioDspProcessor#1.Process(220, 22050, 1, 16)"}};
  for (const auto& [rate, channels, bytes, process] : cases) {
    FakeEngine engine;
    engine.PutFile("in.wav", WaveBytes(static_cast<size_t>(bytes)));

    TestReverb("in.wav", "out.wav", 0, rate, channels);

    EXPECT_THAT(engine.CallsWith("Process("), ElementsAre(process));
    EXPECT_THAT(engine.Bytes("out.wav"), SizeIs(44 + static_cast<size_t>(bytes)));
  }
}

TEST(TestReverb, EndsAtOnceForARateOrChannelsThatAreNone) {
  const std::pair<int, int> none[] = {
      {0, 1},       {44100, 0}, {-44100, 1}, {44100, -1},
      {-44100, -1}, {0, 0},     {49, 1},     {2147483647, 2147483647}};
  for (const auto& [rate, channels] : none) {
    FakeEngine engine;
    engine.PutFile("in.wav", WaveBytes(2000));

    TestReverb("in.wav", "out.wav", 0, rate, channels);

    EXPECT_THAT(engine.CallsWith("Process("), IsEmpty()) << rate << ", " << channels;
    EXPECT_THAT(engine.Bytes("out.wav"), SizeIs(44));
    EXPECT_THAT(engine.live, IsEmpty());
  }
}

TEST(TestReverb, SelectsNoPreset) {
  std::vector<std::string> first;
  for (const int preset : {0, 1, 13, -1, 1000}) {
    FakeEngine engine;
    engine.PutFile("in.wav", WaveBytes(882));

    TestReverb("in.wav", "out.wav", preset, 44100, 1);

    if (first.empty()) first = engine.calls;
    EXPECT_THAT(engine.calls, Transcript(first)) << preset;
  }
}

TEST(TestReverb, CopiesWhatThereIsOfAShortHeader) {
  FakeEngine engine;
  engine.PutFile("in.wav", "RIFF");

  TestReverb("in.wav", "out.wav", 0, 44100, 1);

  EXPECT_EQ(engine.Bytes("out.wav"), "RIFF");
}

TEST(TestReverbPreset, MakesFourteenFilesOfEqualContent) {
  FakeEngine engine;
  engine.PutFile("e:\\lumo.wav", WaveBytes(5 * 882));
  engine.script<AudioDspProcessorScript>().process = [](short* samples, int count) {
    std::iota(samples, samples + count, static_cast<short>(7));
  };

  TestReverbPreset();

  const std::string first = engine.Bytes("e:\\reverb\\lumo_reverb_0.wav");
  EXPECT_THAT(first, SizeIs(44 + 5 * 882));
  for (int i = 0; i < 14; ++i) {
    const std::string name = "e:\\reverb\\lumo_reverb_" + std::to_string(i) + ".wav";
    EXPECT_EQ(engine.Bytes(name), first) << name;
  }
  EXPECT_THAT(engine.files, SizeIs(15));
}

TEST(TestReverbPreset, RunsEachPresetAsMonoAt44100) {
  FakeEngine engine;
  engine.PutFile("e:\\lumo.wav", WaveBytes(882));

  TestReverbPreset();

  std::vector<std::string> opens, blocks;
  for (int i = 0; i < 14; ++i) {
    opens.emplace_back("fopen(e:\\lumo.wav, rb)");
    opens.push_back("fopen(e:\\reverb\\lumo_reverb_" + std::to_string(i) + ".wav, wb)");
    blocks.push_back("CAudioDspProcessor#" + std::to_string(i + 1) + ".Process(441, 44100, 1, 16)");
  }
  EXPECT_THAT(engine.CallsWith("fopen"), Transcript(opens));
  EXPECT_THAT(engine.CallsWith("Process("), Transcript(blocks));
  EXPECT_THAT(engine.live, IsEmpty());
}
