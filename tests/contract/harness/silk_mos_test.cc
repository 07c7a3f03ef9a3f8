#include <gmock/gmock.h>

#include "fake_engine/fake_engine.h"
#include "harness/catalogue/routines.h"

using testing::ElementsAre;

TEST(TestSilkMos, BuildsOneFormatTableAndNothingElse) {
  FakeEngine engine;

  TestSilkMos();

  EXPECT_THAT(engine.calls, ElementsAre("NetCodecStreamFormat()"));
}
