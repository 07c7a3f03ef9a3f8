#include "engine_api/aec/aec_mobile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "engine_api/aec/audio_buffer.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/talk.h"
#include "support/tone.h"

namespace {

using zuwebrtc::AudioBuffer;
using zuwebrtc::AudioFrame;

struct Stages {
  bool newNlp;
  bool aec;
  bool ns;
};

// One canceller with the buffers that go with it.
class Canceller {
 public:
  explicit Canceller(int rate, Stages stages)
      : m_rate(rate),
        m_stages(stages),
        m_handle(AecMobile_Creat(&m_error)),
        m_near(Frames(), 1, Frames(), 1, Frames()),
        m_far(Frames(), 1, Frames(), 1, Frames()),
        m_out(Frames(), 1, Frames(), 1, Frames()) {
    EXPECT_EQ(m_error, AECMOBILE_NO_ERROR);
    EXPECT_EQ(AecMobile_Init(m_handle, rate, rate, rate), AECMOBILE_NO_ERROR);
  }
  ~Canceller() { AecMobile_Free(m_handle); }
  Canceller(const Canceller&) = delete;
  Canceller& operator=(const Canceller&) = delete;

  Samples Run(const Samples& far, const Samples& near) {
    Samples out(near.size());
    const auto frames = static_cast<size_t>(Frames());
    for (size_t at = 0; at + frames <= near.size(); at += frames) {
      AudioFrame frame = Frame(&far[at]);
      m_far.DeinterleaveFrom(&frame);
      EXPECT_EQ(AecMobile_BufferFarend(m_handle, m_far.channels_const()[0], m_far.num_frames()),
                AECMOBILE_NO_ERROR);
      frame = Frame(&near[at]);
      m_near.DeinterleaveFrom(&frame);
      Process();
      m_out.InterleaveTo(&frame, true);
      std::copy_n(frame.data_, frames, &out[at]);
      int status = -1;
      EXPECT_EQ(AecMobile_GetEchoState(m_handle, &status), AECMOBILE_NO_ERROR);
      m_echoFrames += status;
    }
    return out;
  }

  void* Handle() { return m_handle; }
  int Delay() { return AecMobile_getDelay(m_handle); }
  int EchoFrames() const { return m_echoFrames; }
  const int16_t* AlignedFar() const { return m_alignedFar; }
  const int16_t* AlignedNear() const { return m_alignedNear; }

 private:
  int Frames() const { return m_rate / 100; }

  AudioFrame Frame(const short* samples) const {
    AudioFrame frame;
    frame.sample_rate_hz_ = m_rate;
    frame.num_channels_ = 1;
    frame.samples_per_channel_ = Frames();
    std::copy_n(samples, Frames(), frame.data_);
    return frame;
  }

  void Process() {
    EXPECT_EQ(AecMobile_Process_Bands(m_handle, m_near.split_bands_const(0), m_near.num_bands(),
                                      static_cast<int16_t>(m_near.num_frames_per_band()),
                                      m_out.split_bands(0), &m_alignedFar, &m_alignedNear,
                                      m_stages.newNlp, m_stages.aec, m_stages.ns),
              AECMOBILE_NO_ERROR);
  }

  const int m_rate;
  const Stages m_stages;
  AECMOBILE_ERROR_CODE m_error = AECMOBILE_BAD_PARAMETER;
  void* const m_handle;
  AudioBuffer m_near;
  AudioBuffer m_far;
  AudioBuffer m_out;
  int16_t* m_alignedFar = nullptr;
  int16_t* m_alignedNear = nullptr;
  int m_echoFrames = 0;
};

Samples Late(const Samples& samples, int lag) { return {samples.begin() + lag, samples.end()}; }

constexpr Stages kNoiseOnly = {false, false, true};
constexpr Stages kEchoOnly = {false, true, false};
constexpr Stages kBoth = {false, true, true};

TEST(AecMobile, CancelsEchoAtEveryRateAndKnowsItsDelay) {
  for (const int rate : {8000, 16000, 32000, 48000}) {
    const Samples far = Talk(rate, 6, 1);
    const Samples near = Sum(Echo(far, rate, 80), Hiss(rate, 6, 2, -65));
    Canceller canceller(rate, kBoth);
    const Samples out = canceller.Run(far, near);
    EXPECT_GT(LossDb(near, Late(out, rate / 60), rate, 3, 6), 20) << rate;
    EXPECT_NEAR(canceller.Delay(), 80, 8) << rate;
    EXPECT_GT(canceller.EchoFrames(), 200) << rate;
  }
}

// Only the lowest band is cancelled; the others are turned down as much as its upper half is.
TEST(AecMobile, TakesEchoOutOfTheUpperBands) {
  for (const int rate : {32000, 48000}) {
    const Samples far = Talk(rate, 6, 1);
    const Samples near = Sum(Echo(far, rate, 80), Hiss(rate, 6, 2, -85));
    const Samples out = Late(Canceller(rate, kBoth).Run(far, near), rate / 60);
    const auto middle = [&](const Samples& samples) {
      return ToShorts(OctaveBand(OctaveBand(ToDoubles(samples), 5500, rate), 5500, rate));
    };
    const auto high = [&](const Samples& samples) {
      return ToShorts(HighPassed(ToDoubles(samples), 9000, rate));
    };
    const double middleLoss = LossDb(middle(near), middle(out), rate, 3, 6);
    EXPECT_GT(middleLoss, 30) << rate;
    EXPECT_NEAR(LossDb(high(near), high(out), rate, 3, 6), middleLoss, 5) << rate;
  }
}

TEST(AecMobile, IsLateByExactly48SamplesAt8KilohertzWithNoiseSuppressionAlone) {
  const Samples speech = Talk(8000, 4, 3);
  Canceller canceller(8000, kNoiseOnly);
  const Lag lag = FindLag(speech, canceller.Run(speech, speech), 400);
  EXPECT_EQ(lag.samples, 48);
  EXPECT_GT(lag.agreement, 0.98);
}

TEST(AecMobile, CancelsNothingWhereTheFarEndIsTheNearEndAndCancellationIsOff) {
  const Samples speech = Talk(8000, 4, 4);
  Canceller canceller(8000, kNoiseOnly);
  const Samples out = canceller.Run(speech, speech);
  EXPECT_GT(FindLag(speech, out, 100).agreement, 0.98);
  EXPECT_EQ(canceller.EchoFrames(), 0);
  EXPECT_EQ(canceller.Delay(), 0);
  EXPECT_EQ(Canceller(8000, kNoiseOnly).Run(Samples(speech.size()), speech), out);
}

TEST(AecMobile, TakesNoiseAway) {
  const Samples noise = Hiss(16000, 5, 5, -35);
  Canceller canceller(16000, kNoiseOnly);
  const Samples out = canceller.Run(Samples(noise.size()), noise);
  EXPECT_LT(LevelDb(out, 16000, 3, 5), LevelDb(noise, 16000, 3, 5) - 5);
}

TEST(AecMobile, LosesLessThan1DbOfSpeechToNoiseSuppression) {
  const Samples near = Sum(Talk(16000, 8, 9), Hiss(16000, 8, 10, -65));
  const Samples out = Canceller(16000, kBoth).Run(Samples(near.size()), near);
  EXPECT_NEAR(LossDb(near, Late(out, 208), 16000, 2, 8), 0, 1);
}

TEST(AecMobile, PassesNearEndSpeechInAllBands) {
  const Stages none = {false, false, false};
  const struct {
    int rate;
    int bandLag;
  } cases[] = {{16000, 0}, {32000, 63}, {48000, 95}};
  for (const auto& one : cases) {
    const Samples speech = Talk(one.rate, 3, 6);
    const Samples silence(speech.size());
    const Lag plain = FindLag(speech, Canceller(one.rate, none).Run(silence, speech), 900);
    EXPECT_EQ(plain.samples, one.bandLag);
    EXPECT_GT(plain.agreement, 0.999);
    const Lag lag = FindLag(speech, Canceller(one.rate, kEchoOnly).Run(silence, speech), 900);
    EXPECT_EQ(lag.samples, one.bandLag + 112 * one.rate / 16000);
    EXPECT_GT(lag.agreement, 0.99) << one.rate;
  }
}

TEST(AecMobile, SuppressesMoreWithTheNewNonLinearStage) {
  const Samples far = Talk(16000, 8, 7);
  Samples near = Sum(Echo(far, 16000, 60), Hiss(16000, 8, 8, -65));
  for (short& sample : near) {  // A loudspeaker that is driven too hard.
    sample = static_cast<short>(std::clamp<int>(sample, -700, 900));
  }
  const auto loss = [&](Stages stages, bool newOn) {
    Canceller canceller(16000, stages);
    AecMobile_SetAecNewOn(canceller.Handle(), newOn);
    return LossDb(near, Late(canceller.Run(far, near), 112), 16000, 3, 8);
  };
  const double plain = loss(kEchoOnly, false);
  EXPECT_GT(loss({true, true, false}, false), plain + 1);
  EXPECT_GT(loss(kEchoOnly, true), plain + 1);
}

TEST(AecMobile, LendsTheBlocksThatItCompared) {
  Canceller canceller(16000, kEchoOnly);
  const Samples far = Talk(16000, 0.02, 9);
  const Samples near = Talk(16000, 0.02, 10);
  canceller.Run(far, near);
  EXPECT_EQ(Samples(canceller.AlignedFar(), canceller.AlignedFar() + 160),
            Samples(far.begin() + 160, far.end()));
  EXPECT_EQ(Samples(canceller.AlignedNear(), canceller.AlignedNear() + 160),
            Samples(near.begin() + 160, near.end()));
}

TEST(AecMobile, SaysWhatIsWrong) {
  AECMOBILE_ERROR_CODE error = AECMOBILE_BAD_PARAMETER;
  void* const handle = AecMobile_Creat(&error);
  EXPECT_EQ(error, AECMOBILE_NO_ERROR);
  int16_t samples[160] = {};
  int16_t* band = samples;
  int status = 0;
  const auto process = [&](void* of, int bands, int16_t frames) {
    return AecMobile_Process_Bands(of, &band, bands, frames, &band, nullptr, nullptr, false, true,
                                   true);
  };
  EXPECT_EQ(AecMobile_BufferFarend(handle, samples, 160), AECMOBILE_NOT_INITIALIZED);
  EXPECT_EQ(process(handle, 1, 160), AECMOBILE_NOT_INITIALIZED);
  EXPECT_EQ(AecMobile_GetEchoState(handle, &status), AECMOBILE_NOT_INITIALIZED);
  EXPECT_EQ(AecMobile_getDelay(handle), -1);
  {
    CapturedStderr log;
    for (const int rate : {0, 11025, 24000, 44100, 64000, 96000}) {
      EXPECT_EQ(AecMobile_Init(handle, rate, rate, rate), AECMOBILE_BAD_PARAMETER) << rate;
    }
    EXPECT_EQ(AecMobile_Init(handle, 16000, 8000, 16000), AECMOBILE_BAD_PARAMETER);
    EXPECT_EQ(AecMobile_Init(handle, 16000, 16000, 8000), AECMOBILE_BAD_PARAMETER);
    EXPECT_EQ(log.Lines().size(), 8u);
  }
  EXPECT_EQ(AecMobile_Init(handle, 16000, 16000, 16000), AECMOBILE_NO_ERROR);
  EXPECT_EQ(AecMobile_BufferFarend(handle, samples, 80), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(process(handle, 2, 160), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(process(handle, 1, 80), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(process(handle, 1, 160), AECMOBILE_NO_ERROR);
  EXPECT_EQ(AecMobile_GetEchoState(handle, nullptr), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(process(nullptr, 1, 160), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_Init(nullptr, 16000, 16000, 16000), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_BufferFarend(nullptr, samples, 160), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_BufferFarend(handle, nullptr, 160), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_GetEchoState(nullptr, &status), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_SetAecNewOn(nullptr, true), AECMOBILE_BAD_PARAMETER);
  EXPECT_EQ(AecMobile_getDelay(nullptr), -1);
  EXPECT_EQ(AecMobile_Free(handle), AECMOBILE_NO_ERROR);
  EXPECT_EQ(AecMobile_Free(nullptr), AECMOBILE_BAD_PARAMETER);
}

}  // namespace
