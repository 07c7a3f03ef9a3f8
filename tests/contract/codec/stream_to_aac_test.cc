#include "fake_engine/codec/stream_to_aac.h"

#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void AnswerWith(FakeEngine& engine, const std::string& aac) {
  engine.script<StreamToAacScript>().convert = [aac](const std::string&) { return aac; };
}

}  // namespace

TEST(TestAACStreamToAAC, ConvertsTheFifthRowAndFreesTheInputFirst) {
  FakeEngine engine;
  for (const char* name :
       {"packer.aac", "packer.silk", "packer.lc.aac", "packer.ld.aac", "packer.opus"}) {
    engine.PutFile(name, "another row");
  }
  engine.PutFile("packer.48k.aac", "stream");
  std::string given;
  engine.script<StreamToAacScript>().convert = [&](const std::string& stream) {
    given = stream;
    return std::string("adts!");
  };

  TestAACStreamToAAC();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(packer.48k.aac, rb)
      fseek(packer.48k.aac, 0, 2)
      ftell(packer.48k.aac) = 6
      fseek(packer.48k.aac, 0, 0)
      malloc(6) = @1
      fread(packer.48k.aac, 6, 1) = 1
      fclose(packer.48k.aac)
      TransZUStreamToAAC(@1, 6) = 5
      free(@1)
      fopen(48k.aac, wb)
      fwrite(48k.aac, 5, 1)
      OutputDebugInfo("TransZUStreamToAAC successfully write :%d", 5)
      fclose(48k.aac)
  )"));
  EXPECT_EQ(given, "stream");
  EXPECT_EQ(engine.Bytes("48k.aac"), "adts!");
}

TEST(TestAACStreamToAAC, SaysThatThereIsNoFile) {
  FakeEngine engine;
  TestAACStreamToAAC();
  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(packer.48k.aac, rb) = null
      OutputDebugInfo("can not open aac+ file ")
  )"));
}

TEST(TestAACStreamToAAC, SaysThatAnEmptyFileCannotBeReadAndKeepsTheMemory) {
  FakeEngine engine;
  engine.PutFile("packer.48k.aac", "");

  TestAACStreamToAAC();

  EXPECT_THAT(engine.calls, Transcript(R"(
      fopen(packer.48k.aac, rb)
      fseek(packer.48k.aac, 0, 2)
      ftell(packer.48k.aac) = 0
      fseek(packer.48k.aac, 0, 0)
      malloc(0) = @1
      fread(packer.48k.aac, 0, 1) = 0
      fclose(packer.48k.aac)
      OutputDebugInfo("read aac+ file error")
  )"));
}

TEST(TestAACStreamToAAC, SaysThatNothingCameOutAndKeepsTheMemory) {
  FakeEngine engine;
  engine.PutFile("packer.48k.aac", "stream");

  TestAACStreamToAAC();

  EXPECT_THAT(engine.CallsWith("free"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"),
              ElementsAre("OutputDebugInfo(\"TransZUStreamToAAC error\")"));
  EXPECT_FALSE(engine.HasFile("48k.aac"));
}

TEST(TestAACStreamToAAC, KeepsQuietWhenTheOutputCannotBeOpened) {
  FakeEngine engine;
  engine.PutFile("packer.48k.aac", "stream");
  engine.unwritable = {"48k.aac"};
  AnswerWith(engine, "adts!");

  TestAACStreamToAAC();

  EXPECT_EQ(engine.calls.back(), "fopen(48k.aac, wb) = null");
  EXPECT_THAT(engine.CallsWith("OutputDebugInfo"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("free"), ElementsAre("free(@1)"));
}

TEST(TestZUStreamToAAC, IsTheOtherTest) {
  std::vector<std::string> calls[2];
  for (const int run : {0, 1}) {
    FakeEngine engine;
    engine.PutFile("packer.48k.aac", "stream");
    AnswerWith(engine, "adts!");
    run == 0 ? TestAACStreamToAAC() : TestZUStreamToAAC();
    calls[run] = engine.calls;
  }
  EXPECT_THAT(calls[1], Transcript(calls[0]));
}
