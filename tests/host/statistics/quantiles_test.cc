#include <gmock/gmock.h>

#include "statistics/normal.h"
#include "statistics/student.h"

namespace statistics {
namespace {

// Tables of Abramowitz and Stegun, and of NIST's handbook.
TEST(NormalQuantile, IsThatOfTables) {
  EXPECT_NEAR(NormalQuantile(0.975), 1.959963984540054, 1e-14);
  EXPECT_NEAR(NormalQuantile(0.995), 2.575829303548901, 1e-14);
  EXPECT_NEAR(NormalQuantile(1e-10), -6.361340902404056, 1e-12);
  EXPECT_NEAR(NormalQuantile(0.5), 0, 1e-15);
}

TEST(NormalQuantile, IsTheInverseOfTheShare) {
  for (double z = -7; z < 5; z += 0.01) EXPECT_NEAR(NormalQuantile(NormalShare(z)), z, 1e-9);
}

TEST(NormalQuantile, IsInfiniteAtTheEnds) {
  EXPECT_EQ(NormalQuantile(0), -INFINITY);
  EXPECT_EQ(NormalQuantile(1), INFINITY);
}

TEST(StudentQuantile, IsThatOfTables) {
  EXPECT_NEAR(StudentQuantile(0.975, 7), 2.364624251592785, 1e-10);
  EXPECT_NEAR(StudentQuantile(0.975, 30), 2.042272456301238, 1e-10);
  EXPECT_NEAR(StudentQuantile(0.025, 999), -1.962341461133449, 1e-10);
  EXPECT_NEAR(StudentQuantile(0.995, 100000), 2.575879, 1e-5);
}

// With one degree of freedom it is the Cauchy distribution.
TEST(StudentShare, OfOneDegreeIsCauchys) {
  EXPECT_NEAR(StudentShare(1, 1), 0.75, 1e-14);
  EXPECT_NEAR(StudentShare(-1, 1), 0.25, 1e-14);
  EXPECT_NEAR(StudentShare(0, 1), 0.5, 1e-14);
}

TEST(StudentShare, IsTheInverseOfTheQuantile) {
  for (const double share : {1e-6, 0.001, 0.025, 0.3, 0.6, 0.999}) {
    for (const double freedom : {7.0, 29.0, 1000.0}) {
      EXPECT_NEAR(StudentShare(StudentQuantile(share, freedom), freedom), share, 1e-12);
    }
  }
}

}  // namespace
}  // namespace statistics
