#include <gmock/gmock.h>

#include "bench/aec/routines.h"
#include "contract/pcm_files.h"
#include "fake_engine/aec/ns.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(TestAecDenoiseInternal, CleansWholeBlocksFromOneBufferIntoAnother) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {44100, 2, Ramp(882 + 882 + 881)};
  engine.script<NsScript>().process = [](const short* in, short* out) {
    for (int i = 0; i < 882; ++i) out[i] = static_cast<short>(-in[i]);
  };

  TestAecDenoiseInternal("in.wav", "out.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(out.wav, 44100, 2)
      Ns_Create() = Ns#1
      Ns_Init(#1, 44100)
      Ns_set_policy(#1, 2)
  )" + Times(2, R"(
      WavReader#1.ReadSamples(882) = 882
      Ns_Process2(#1, @1, @2, 2)
      WavWriter#1.WriteSamples(882)
  )") + R"(
      WavReader#1.ReadSamples(882) = 881  # Dropped.
      Ns_Free(#1)
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_EQ(engine.wavs["out.wav"].samples, Negated(Ramp(2 * 882)));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAecDenoiseInternal, ReadsTenMillisecondsOfAnyFormat) {
  for (const auto& [rate, channels, samples] :
       {std::tuple{32000, 1, 320}, std::tuple{8000, 1, 80}, std::tuple{22050, 2, 441}}) {
    FakeEngine engine;
    engine.wavs["in.wav"] = {rate, channels, Ramp(samples)};

    TestAecDenoiseInternal("in.wav", "out.wav");

    EXPECT_THAT(engine.CallsWith("Ns_Process2"),
                ElementsAre("Ns_Process2(#1, @1, @2, " + std::to_string(channels) + ")"));
    EXPECT_THAT(engine.wavs["out.wav"].samples, SizeIs(samples));
  }
}

// 10 ms of 768 kHz with nine channels are 69120 samples, of which 16 bits keep 3584.
TEST(TestAecDenoiseInternal, CountsABlockIn16Bits) {
  FakeEngine engine;
  engine.wavs["in.wav"] = {768000, 9, Ramp(3584)};

  TestAecDenoiseInternal("in.wav", "out.wav");

  EXPECT_THAT(engine.CallsWith("WriteSamples"), ElementsAre("WavWriter#1.WriteSamples(3584)"));
}

TEST(TestAecDenoiseInternal, StopsAtOnceWhenTheInputIsMissing) {
  FakeEngine engine;

  TestAecDenoiseInternal("in.wav", "out.wav");

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(in.wav)
      WavWriter#1(out.wav, 0, 0)
      Ns_Create() = Ns#1
      Ns_Init(#1, 0)
      Ns_set_policy(#1, 2)
      Ns_Free(#1)
      ~WavWriter#1
      ~WavReader#1
  )"));
}

TEST(TestAecDenoiseNOIZEUS, WalksTheCorpusIntoTheRevisionsFolder) {
  FakeEngine engine;

  TestAecDenoiseNOIZEUS();

  std::vector<std::string> readers;
  std::vector<std::string> writers;
  int number = 0;
  for (const std::string noise :
       {"airport", "babble", "car", "exhibition", "restaurant", "station", "street", "train"}) {
    for (const std::string level : {"0", "5", "10", "15"}) {
      for (int i = 1; i <= 30; ++i) {
        const std::string sentence = (i < 10 ? "sp0" : "sp") + std::to_string(i);
        const std::string name = sentence + "_" + noise + "_sn" + level;
        const std::string object = "#" + std::to_string(++number);
        readers.push_back("WavReader" + object + "(NOIZEUS/in/" + noise + "/" + level + "dB/" +
                          name + ".wav)");
        writers.push_back("WavWriter" + object + "(NOIZEUS/out/rev3.2.50/" + name +
                          "_denoise.wav, 0, 0)");
      }
    }
  }
  EXPECT_THAT(engine.CallsWith(".wav)"), Transcript(readers));
  EXPECT_THAT(engine.CallsWith("_denoise.wav"), Transcript(writers));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAecDenoise, CleansTenRecordingsIntoTheRevisionsFolder) {
  FakeEngine engine;
  engine.wavs["in/wrpcmin32000.wav"] = {32000, 1, Ramp(320)};

  TestAecDenoise();

  std::vector<std::string> readers;
  std::vector<std::string> writers;
  int number = 0;
  for (const std::string name :
       {"ns_in_32000", "ns_step_32000", "sp01_airport_sn5", "sp22_street_sn10", "sp22_train_sn10",
        "sp22_train_sn5", "mirela_ns_off", "wrpcmin32000", "wrpcmin_ka", "after_aec"}) {
    const std::string object = "#" + std::to_string(++number);
    readers.push_back("WavReader" + object + "(in/" + name + ".wav)");
    writers.push_back("WavWriter" + object + "(out/rev3.2.250/" + name + "_out_rev3.2.250.wav, " +
                      (name == "wrpcmin32000" ? "32000, 1)" : "0, 0)"));
  }
  EXPECT_THAT(engine.CallsWith(".wav)"), Transcript(readers));
  EXPECT_THAT(engine.CallsWith("_out_"), Transcript(writers));
  EXPECT_THAT(engine.CallsWith("Ns_Process2"), SizeIs(1));
}

// The revision's folder is named and not made.
TEST(TestAecDenoise, CreatesNoFolder) {
  FakeEngine engine;

  TestAecDenoise();
  TestAecDenoiseNOIZEUS();

  EXPECT_THAT(engine.CallsWith("mkdir"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
}
