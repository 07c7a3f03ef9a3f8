#pragma once

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstdint>
#include <string>

// For code that is compiled for several sets of vector instructions and picks the best one at run
// time: runs each case once per set that this machine has, with just that one to pick.
//
//   using MyCode = VectorTargetTest;
//   TEST_P(MyCode, DoesThis) { ... }
//   INSTANTIATE_TEST_SUITE_P(, MyCode, EveryVectorTarget(), VectorTargetName);
class VectorTargetTest : public testing::TestWithParam<int64_t> {
 protected:
  VectorTargetTest() { hwy::SetSupportedTargetsForTest(GetParam()); }
  ~VectorTargetTest() override { hwy::SetSupportedTargetsForTest(0); }
};

inline auto EveryVectorTarget() { return testing::ValuesIn(hwy::SupportedAndGeneratedTargets()); }

inline std::string VectorTargetName(const testing::TestParamInfo<int64_t>& info) {
  return hwy::TargetName(info.param);
}
