#include <gmock/gmock.h>

#include "bench/codec/routines.h"
#include "fake_engine/fake_engine.h"

using testing::ElementsAre;

TEST(TestSilkMos, BuildsAFreshFormatTableOnEveryCallAndNothingElse) {
  FakeEngine engine;

  TestSilkMos();
  TestSilkMos();

  EXPECT_THAT(engine.calls, ElementsAre("NetCodecStreamFormat#1()", "NetCodecStreamFormat#2()"));
}
