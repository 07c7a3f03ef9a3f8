#include <gmock/gmock.h>

#include <numeric>
#include <stdexcept>

#include "bench/effects/routines.h"
#include "fake_engine/effects/fir_filter.h"
#include "fake_engine/effects/mit_hrtf.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* kInput = "/sdcard/ZUAudioDemo/44100_2.pcm";
constexpr const char* kOutput = "/sdcard/ZUAudioDemo/44100_2_out_902.pcm";

// 0, 1, 2, ...: even values on the left, odd ones on the right.
std::vector<short> Ramp(size_t samples) {
  std::vector<short> ramp(samples);
  std::iota(ramp.begin(), ramp.end(), static_cast<short>(0));
  return ramp;
}

}  // namespace

TEST(TestHRTF, FiltersWholeChunksAndReleasesInOrder) {
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(882 + 882 + 881));
  engine.script<MitHrtfScript>().availability = 3;
  engine.script<MitHrtfScript>().get = [](int*, int*, short*, short*) { return 3U; };

  TestHRTF();

  EXPECT_THAT(engine.calls, Transcript(R"(
      OutputDebugInfo("TestHrtf..start")
      mit_hrtf_availability(90, 0, 44100, 0) = 3
      mit_hrtf_get(90, 0, 44100, 0) = 3
      fopen(/sdcard/ZUAudioDemo/44100_2.pcm, rb)
      fopen(/sdcard/ZUAudioDemo/44100_2_out_902.pcm, wb)
      FIRFilter::Create(3, 1765) = FIRFilter#1
      FIRFilter::Create(3, 1765) = FIRFilter#2
  )" + Times(2, R"(
      fread(/sdcard/ZUAudioDemo/44100_2.pcm, 2, 882) = 882
      S16ToFloat(882)
      FIRFilter#1.Filter(@1, 441, @2)
      FIRFilter#2.Filter(@3, 441, @4)
      fwrite(/sdcard/ZUAudioDemo/44100_2_out_902.pcm, 4, 882)
  )") + R"(
      fread(/sdcard/ZUAudioDemo/44100_2.pcm, 2, 882) = 881  # Dropped: neither filtered nor written.
      fclose(/sdcard/ZUAudioDemo/44100_2.pcm)
      fclose(/sdcard/ZUAudioDemo/44100_2_out_902.pcm)
      ~FIRFilter#1
      ~FIRFilter#2
      OutputDebugInfo("TestHrtf..end")
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestHRTF, WritesInterleavedFloatsUnderThePcmName) {
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(882));
  engine.script<FirFilterScript>().filter = [](int filter, const float* in, size_t length,
                                               float* out) {
    for (size_t i = 0; i < length; ++i) out[i] = (filter == 1 ? 10.0F : -100.0F) * in[i];
  };

  TestHRTF();

  // In the engine's scaling, which for the fake is one half.
  const std::vector<float> out = engine.Values<float>(kOutput);
  ASSERT_THAT(out, SizeIs(882));
  for (int k = 0; k < 441; ++k) {
    EXPECT_EQ(out[static_cast<size_t>(2 * k)], 10.0F * static_cast<float>(2 * k) / 2);
    EXPECT_EQ(out[static_cast<size_t>(2 * k + 1)], -100.0F * static_cast<float>(2 * k + 1) / 2);
  }
}

TEST(TestHRTF, ScalesEachEarsTapsToCoefficients) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().get = [](int*, int*, short* left, short* right) {
    const short ears[][4] = {{-32768, 32767, 1, 0}, {16384, -1, 0, 3}};
    std::copy_n(ears[0], 4, left);
    std::copy_n(ears[1], 4, right);
    return 4U;
  };

  TestHRTF();

  ASSERT_THAT(engine.script<FirFilterScript>().coefficients, SizeIs(2));
  EXPECT_THAT(engine.script<FirFilterScript>().coefficients[0],
              ElementsAre(-1.0F, 32767.0F / 32768.0F, 1.0F / 32768.0F, 0.0F));
  EXPECT_THAT(engine.script<FirFilterScript>().coefficients[1],
              ElementsAre(0.5F, -1.0F / 32768.0F, 0.0F, 3.0F / 32768.0F));
}

TEST(TestHRTF, TakesAsManyTapsAsItsArraysHold) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().get = [](int*, int*, short* left, short* right) {
    std::fill_n(left, 8192, static_cast<short>(16384));
    std::fill_n(right, 8192, static_cast<short>(8192));
    return 8192U;
  };

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("Create"), Transcript(R"(
      FIRFilter::Create(8192, 1765) = FIRFilter#1
      FIRFilter::Create(8192, 1765) = FIRFilter#2
  )"));
  EXPECT_THAT(engine.script<FirFilterScript>().coefficients[0], Each(0.5F));
  EXPECT_THAT(engine.script<FirFilterScript>().coefficients[1], Each(0.25F));
}

TEST(TestHRTF, GoesOnWhateverTheTableSaysOfItsAvailability) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().availability = 0;
  engine.PutSamples(kInput, Ramp(882));

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("mit_hrtf"), Transcript(R"(
      mit_hrtf_availability(90, 0, 44100, 0) = 0
      mit_hrtf_get(90, 0, 44100, 0) = 1
  )"));
  EXPECT_THAT(engine.Values<float>(kOutput), SizeIs(882));
}

TEST(TestHRTF, UsesAMovedPositionWithoutAWord) {
  FakeEngine moved;
  moved.script<MitHrtfScript>().get = [](int* azimuth, int* elevation, short* left, short* right) {
    *azimuth = 85;
    *elevation = -10;
    left[0] = right[0] = 16384;
    return 1U;
  };

  TestHRTF();

  EXPECT_THAT(moved.CallsWith("OutputDebugInfo"), SizeIs(2));
  EXPECT_THAT(moved.CallsWith("printf"), IsEmpty());
  EXPECT_THAT(moved.CallsWith("mit_hrtf_get"), SizeIs(1));
  EXPECT_THAT(moved.script<FirFilterScript>().coefficients, Each(ElementsAre(0.5F)));
}

// 0xFFFFFFFF taps are -1 in the routine's arithmetic: nothing is converted, and no filter is made
// of the arrays' content.
TEST(TestHRTF, TakesATapCountBeyondIntForANegativeOne) {
  FakeEngine engine;
  engine.script<FirFilterScript>().keepCoefficients = false;
  engine.script<MitHrtfScript>().get = [](int*, int*, short*, short*) { return 0xFFFFFFFFU; };

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("Create"), Transcript(R"(
      FIRFilter::Create(18446744073709551615, 1765) = FIRFilter#1
      FIRFilter::Create(18446744073709551615, 1765) = FIRFilter#2
  )"));
}

// A sample of 0xFFFF is -1, not 65535.
TEST(TestHRTF, KeepsTheSignOfTaps) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().get = [](int*, int*, short* left, short* right) {
    left[0] = right[0] = static_cast<short>(0xFFFF);
    return 1U;
  };

  TestHRTF();

  EXPECT_THAT(engine.script<FirFilterScript>().coefficients, Each(ElementsAre(-1.0F / 32768)));
}

TEST(TestHRTF, WritesWholeChunksOnly) {
  const std::pair<size_t, size_t> samplesInAndFloatsOut[] = {
      {0, 0}, {881, 0}, {882, 882}, {883, 882}, {1763, 882}, {1764, 1764}, {1765, 1764}};
  for (const auto& [samples, floats] : samplesInAndFloatsOut) {
    FakeEngine engine;
    engine.PutSamples(kInput, Ramp(samples));

    TestHRTF();

    EXPECT_THAT(engine.Values<float>(kOutput), SizeIs(floats)) << samples;
  }
}

TEST(TestHRTF, CreatesNoFolderAndPrintsNothing) {
  FakeEngine engine;
  engine.unwritable = {kOutput};

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("mkdir"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("printf"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("puts("), IsEmpty());
}

TEST(TestHRTF, LetsWhatTheEngineThrowsPass) {
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(882));
  engine.script<FirFilterScript>().filter = [](int, const float*, size_t, float*) {
    throw std::runtime_error("no filter");
  };

  EXPECT_THROW(TestHRTF(), std::runtime_error);

  EXPECT_THAT(engine.live, IsEmpty());
  EXPECT_THAT(engine.CallsWith("fclose"), SizeIs(2));
}

TEST(TestHRTF, MakesFiltersWithoutCoefficientsWhenTheTableHasNone) {
  FakeEngine engine;
  engine.script<MitHrtfScript>().get = [](int*, int*, short*, short*) { return 0U; };
  engine.PutSamples(kInput, Ramp(882));

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("Create"), Transcript(R"(
      FIRFilter::Create(0, 1765) = FIRFilter#1
      FIRFilter::Create(0, 1765) = FIRFilter#2
  )"));
  EXPECT_THAT(engine.CallsWith(".Filter("), Transcript(R"(
      FIRFilter#1.Filter(@1, 441, @2)
      FIRFilter#2.Filter(@3, 441, @4)
  )"));
}

TEST(TestHRTF, LeavesAnEmptyOutputWhenTheInputIsMissing) {
  FakeEngine engine;

  TestHRTF();

  EXPECT_THAT(engine.calls, Transcript(R"(
      OutputDebugInfo("TestHrtf..start")
      mit_hrtf_availability(90, 0, 44100, 0) = 0
      mit_hrtf_get(90, 0, 44100, 0) = 1
      fopen(/sdcard/ZUAudioDemo/44100_2.pcm, rb) = null
      fopen(/sdcard/ZUAudioDemo/44100_2_out_902.pcm, wb)
      FIRFilter::Create(1, 1765) = FIRFilter#1
      FIRFilter::Create(1, 1765) = FIRFilter#2
      fclose(/sdcard/ZUAudioDemo/44100_2_out_902.pcm)
      ~FIRFilter#1
      ~FIRFilter#2
      OutputDebugInfo("TestHrtf..end")
  )"));
  EXPECT_TRUE(engine.HasFile(kOutput));
  EXPECT_EQ(engine.Bytes(kOutput), "");
}

TEST(TestHRTF, LeavesAnEmptyOutputForLessThanOneChunk) {
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(881));

  TestHRTF();

  EXPECT_THAT(engine.CallsWith(".Filter("), IsEmpty());
  EXPECT_TRUE(engine.HasFile(kOutput));
  EXPECT_EQ(engine.Bytes(kOutput), "");
}

TEST(TestHRTF, ReadsToTheEndWhenTheOutputCannotBeWritten) {
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(3 * 882));
  engine.unwritable = {kOutput};

  TestHRTF();

  EXPECT_THAT(engine.CallsWith("fread"), SizeIs(4));
  EXPECT_THAT(engine.CallsWith("fwrite"), IsEmpty());
  EXPECT_THAT(engine.CallsWith("fclose"), ElementsAre("fclose(/sdcard/ZUAudioDemo/44100_2.pcm)"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestHRTF, StartsAfreshOnEveryCall) {
  std::vector<std::string> first;
  {
    FakeEngine engine;
    engine.PutSamples(kInput, Ramp(882));
    TestHRTF();
    first = engine.calls;
  }
  FakeEngine engine;
  engine.PutSamples(kInput, Ramp(882));

  TestHRTF();

  EXPECT_THAT(engine.calls, Transcript(first));
}
