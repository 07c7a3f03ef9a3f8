#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

TEST(TestSilkMos, BuildsAFreshFormatTableOnEveryCallAndNothingElse) {
  FakeEngine engine;

  TestSilkMos();
  TestSilkMos();

  EXPECT_THAT(engine.calls, Transcript(R"(
      NetCodecStreamFormat#1()
      NetCodecStreamFormat#2()
  )"));
}
