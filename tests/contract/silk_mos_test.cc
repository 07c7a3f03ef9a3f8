#include <gmock/gmock.h>

#include "fake_engine/fake_engine.h"
#include "harness/routines.h"

using testing::ElementsAre;

TEST(TestSilkMos, BuildsOneFormatTableAndNothingElse) {
  FakeEngine engine;

  TestSilkMos();

  EXPECT_THAT(engine.calls, ElementsAre("NetCodecStreamFormat()"));
}
