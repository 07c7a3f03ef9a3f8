#include "catalogue/run_test_case.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <type_traits>

#include "bench/effects/routines.h"
#include "fake_engine/effects/mit_hrtf.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

namespace {

constexpr const char* kInput = "/sdcard/ZUAudioDemo/44100_2.pcm";

}  // namespace

static_assert(std::is_same_v<decltype(RunTestCase), void()>);

TEST(RunTestCase, RunsTheSelectedTestAndNothingElse) {
  std::vector<std::string> direct;
  {
    FakeEngine engine;
    engine.PutSamples(kInput, std::vector<short>(2000, 7));
    TestHRTF();
    direct = engine.calls;
  }
  FakeEngine engine;
  engine.PutSamples(kInput, std::vector<short>(2000, 7));

  RunTestCase();

  EXPECT_THAT(engine.calls, Transcript(direct));
}

TEST(RunTestCase, LetsWhatTheEngineThrowsPass) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().get = [](int*, int*, short*, short*) -> unsigned {
    throw std::runtime_error("no table");
  };

  EXPECT_THROW(RunTestCase(), std::runtime_error);
}
