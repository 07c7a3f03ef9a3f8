#include <gmock/gmock.h>

#include "bench/mixing/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(TestPushPcm, BuildsAHeadForEveryChunkAndWritesNothing) {
  FakeEngine engine;
  engine.PutFile("Fs44100_Ch2.pcm", std::string(2 * 3528 + 3527, 'x'));

  TestPushPcm();

  EXPECT_THAT(engine.calls, Transcript(R"(
      IPushPcmModule::CreatePuchPcmModule(44100, 2, 1) = IPushPcmModule#1
      fopen(Fs44100_Ch2.pcm, rb)
      fopen(out.pcm, wb)
      fread(Fs44100_Ch2.pcm, 3528, 1) = 1
      IPushPcmModule::MakeStreamInfo(44100, 2, 2, 3528, 1)
      fread(Fs44100_Ch2.pcm, 3528, 1) = 1
      IPushPcmModule::MakeStreamInfo(44100, 2, 2, 3528, 1)
      fread(Fs44100_Ch2.pcm, 3528, 1) = 0
      fclose(out.pcm)
  )"));
  EXPECT_EQ(engine.Bytes("out.pcm"), "");
  EXPECT_THAT(engine.live, ElementsAre(Pair("IPushPcmModule", 1)));
}

TEST(TestPushPcm, LeavesAnEmptyOutputWithoutItsInput) {
  FakeEngine engine;

  TestPushPcm();

  EXPECT_TRUE(engine.HasFile("out.pcm"));
  EXPECT_THAT(engine.CallsWith("MakeStreamInfo"), IsEmpty());
}
