#include "statistics/holm.h"

#include <gmock/gmock.h>

namespace statistics {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(HolmCorrected, MultipliesTheSmallestMost) {
  const double p[] = {0.03, 0.01, 0.02};
  EXPECT_THAT(HolmCorrected(p), ElementsAre(DoubleNear(0.04, 1e-15), DoubleNear(0.03, 1e-15),
                                            DoubleNear(0.04, 1e-15)));
}

// 0.04 would pass at 0.05 by itself, but a smaller one has not passed before it.
TEST(HolmCorrected, NeverFallsFromOneToTheNext) {
  const double p[] = {0.02, 0.03, 0.04};
  EXPECT_THAT(HolmCorrected(p), ElementsAre(DoubleNear(0.06, 1e-15), DoubleNear(0.06, 1e-15),
                                            DoubleNear(0.06, 1e-15)));
}

TEST(HolmCorrected, IsAtMostOneAndTakesNoneAtAll) {
  const double p[] = {0.8, 0.9};
  EXPECT_THAT(HolmCorrected(p), ElementsAre(1, 1));
  EXPECT_THAT(HolmCorrected({}), IsEmpty());
}

}  // namespace
}  // namespace statistics
