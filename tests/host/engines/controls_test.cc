// The engines with one known fault each: every fault is there, and nothing else is.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <random>

#include "engine_api/aec/webrtc_aec.h"
#include "engine_api/codec/local_codec.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/audio_denoise.h"
#include "facilities/engine_calls.h"
#include "support/file_bytes.h"
#include "support/talk.h"
#include "support/temporary_directory.h"
#include "support/tone.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
constexpr int kRate = 48000;

// Left and right, quiet enough for the compressor to let them pass as they are.
Samples Quiet(double frequency) {
  Samples samples = Tone(frequency, 1000, kRate, kRate, 2);
  for (size_t i = 1; i < samples.size(); i += 2) samples[i] = static_cast<short>(samples[i] / 2);
  return samples;
}

// Leads calls of one facility to a library, or of all back to the engine that is built in.
class ControlTest : public testing::Test {
 protected:
  ControlTest() : m_own(facilities::EngineTargets().begin(), facilities::EngineTargets().end()) {
    std::copy(m_own.begin(), m_own.end(), facilities::LibraryTargets().begin());
  }
  ~ControlTest() override {
    std::copy(m_own.begin(), m_own.end(), facilities::EngineTargets().begin());
  }

  static void Lead(const std::string& control, const std::string& facility) {
    void* const library = dlopen((CONTROL_FOLDER "/lib" + control + ".so").c_str(), RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto calls = facilities::EngineCalls();
    for (size_t i = 0; i < calls.size(); ++i) {
      if (calls[i].facility != facility) continue;
      void* const function = dlsym(library, calls[i].name);
      ASSERT_NE(function, nullptr) << calls[i].name;
      facilities::EngineTargets()[i] = facilities::LibraryTargets()[i] = function;
    }
  }

  // What a recording is once it has been written.
  static Samples Written(const Samples& samples) {
    {
      zuwebrtc::WavWriter writer("out.wav", kRate, 2);
      writer.WriteSamples(samples.data(), static_cast<unsigned>(samples.size()));
    }
    const std::string bytes = ReadFile("out.wav");
    Samples out(bytes.size() < 44 ? 0 : (bytes.size() - 44) / 2);
    if (!out.empty()) memcpy(out.data(), bytes.data() + 44, out.size() * 2);
    return out;
  }
  static Samples Damaged(const std::string& control, const Samples& samples) {
    Lead(control, "common/wav_writer");
    return Written(samples);
  }

 private:
  TemporaryDirectory m_directory;
  std::vector<void*> m_own;
};

TEST_F(ControlTest, TheEngineBeneathPassesTheRecordingOn) {
  EXPECT_EQ(Written(Quiet(440)), Quiet(440));
}

TEST_F(ControlTest, WritesSilence) {
  const Samples out = Damaged("mute", Quiet(440));
  EXPECT_EQ(out.size(), Quiet(440).size());
  EXPECT_THAT(out, Each(0));
}

TEST_F(ControlTest, WritesOneSampleLate) {
  Samples late = Quiet(440);
  late.insert(late.begin(), 2, 0);
  late.resize(late.size() - 2);
  EXPECT_EQ(Damaged("late_by_1", Quiet(440)), late);
}

TEST_F(ControlTest, WritesHalfASampleLate) {
  const Samples out = Damaged("late_by_half", Quiet(440));
  ASSERT_EQ(out.size(), Quiet(440).size());
  for (size_t i = 100; i + 100 < out.size() / 2; ++i) {
    const double angle = 2 * std::numbers::pi * 440 / kRate * (static_cast<double>(i) - 0.5);
    ASSERT_NEAR(out[2 * i], 1000 * std::sin(angle), 1.5) << i;
  }
}

TEST_F(ControlTest, WritesTheOtherSign) {
  Samples turned = Quiet(440);
  for (short& sample : turned) sample = static_cast<short>(-sample);
  EXPECT_EQ(Damaged("polarity", Quiet(440)), turned);
}

TEST_F(ControlTest, AddsNoiseOfOneStep) {
  const Samples in = Quiet(440);
  const Samples out = Damaged("noise", in);
  ASSERT_EQ(out.size(), in.size());
  size_t changed = 0;
  for (size_t i = 0; i < in.size(); ++i) {
    ASSERT_LE(std::abs(out[i] - in[i]), 1);
    changed += out[i] != in[i] ? 1 : 0;
  }
  EXPECT_NEAR(static_cast<double>(changed) / static_cast<double>(in.size()), 2.0 / 3, 0.02);
}

TEST_F(ControlTest, WritesLouder) {
  EXPECT_NEAR(FitTone(Damaged("gain", Quiet(440)), 440, kRate, 2).amplitude, 1011.6, 0.2);
  EXPECT_NEAR(FitTone(Damaged("clipped", Quiet(440)), 440, kRate, 2).amplitude, 4000, 2);
}

TEST_F(ControlTest, CutsOffAtFullScale) {
  const Samples out = Damaged("clipped", Tone(440, 20000, kRate, kRate, 2));
  EXPECT_EQ(*std::max_element(out.begin(), out.end()), 32767);
  EXPECT_GT(std::count(out.begin(), out.end(), 32767), kRate / 10);
}

TEST_F(ControlTest, ExchangesLeftAndRight) {
  Samples exchanged = Quiet(440);
  for (size_t i = 0; i < exchanged.size(); i += 2) std::swap(exchanged[i], exchanged[i + 1]);
  EXPECT_EQ(Damaged("swapped", Quiet(440)), exchanged);
}

TEST_F(ControlTest, MakesHoles) {
  Samples holed = Quiet(440);
  for (size_t i = 0; i < holed.size(); i += 80) holed[i] = holed[i + 1] = 0;
  EXPECT_EQ(Damaged("holes", Quiet(440)), holed);
}

TEST_F(ControlTest, DropsOutForFiveMilliseconds) {
  constexpr long kLoudest = 20000;
  Samples loud(2 * kRate, 1000);
  loud[2 * kLoudest + 1] = -2000;
  Samples dropped = loud;
  std::fill_n(dropped.begin() + 2 * (kLoudest - 120), 480, short{0});
  EXPECT_EQ(Damaged("dropout", loud), dropped);
  // Where the loudest sample is the first or the last one.
  for (const size_t at : {size_t{0}, loud.size() - 1}) {
    loud.assign(2 * kRate, 1000);
    loud[at] = 2000;
    const Samples out = Damaged("dropout", loud);
    ASSERT_EQ(out.size(), loud.size());
    EXPECT_EQ(out[at], 0);
    EXPECT_THAT(std::count(out.begin(), out.end(), 0), AllOf(Ge(240), Le(480)));
  }
  EXPECT_THAT(Damaged("dropout", {}), IsEmpty());
}

// The bytes of a second of noise in the packets of an encoder.
size_t CodedBytes(AudioLocalCodec::AudioCodecType type, int rate, bool flushed) {
  AudioLocalCodec::IAudioEncoder* const encoder = AudioLocalCodec::CreateAudioEncoder(type);
  encoder->Init();
  if (flushed) encoder->Flush();
  std::minstd_rand random(1);
  size_t bytes = 0;
  std::string packet;
  for (int given = 0; given < rate * 2; given += encoder->GetEncoderBytes()) {
    std::vector<short> block(static_cast<size_t>(encoder->GetEncoderBytes()) / 2);
    for (short& sample : block) sample = static_cast<short>(random() % 8000) - 4000;
    encoder->Encode(reinterpret_cast<const char*>(block.data()), encoder->GetEncoderBytes(),
                    packet);
    bytes += packet.size();
  }
  encoder->Destroy();
  return bytes;
}

TEST_F(ControlTest, CodesAtHalfTheBitRate) {
  const size_t whole = CodedBytes(AudioLocalCodec::SILK_CODEC, 16000, false);
  const size_t speex = CodedBytes(AudioLocalCodec::SPEEX_CODEC_8, 16000, false);
  Lead("half_bit_rate", "codec/local_codec");
  for (const bool flushed : {false, true}) {
    const size_t half = CodedBytes(AudioLocalCodec::SILK_CODEC, 16000, flushed);
    EXPECT_NEAR(static_cast<double>(half) / static_cast<double>(whole), 0.5, 0.1) << flushed;
  }
  EXPECT_EQ(CodedBytes(AudioLocalCodec::SPEEX_CODEC_8, 16000, false), speex);
}

TEST_F(ControlTest, LetsNothingHighPass) {
  EXPECT_NEAR(FitTone(Damaged("low_pass", Quiet(6000)), 6000, kRate, 2).amplitude, 1000, 10);
  EXPECT_LT(FitTone(Damaged("low_pass", Quiet(8000)), 8000, kRate, 2).amplitude, 10);
}

TEST_F(ControlTest, PlaysFaster) {
  const Samples out = Damaged("faster", Quiet(1000));
  EXPECT_NEAR(static_cast<double>(out.size()) / 2, kRate / 1.001, 1);
  EXPECT_LT(FitTone(out, 1001, kRate, 2).residualDb, -40);
}

TEST_F(ControlTest, SuppressesNoNoise) {
  const Samples noise = Tone(440, 1000, 16000, 160);
  Samples out = noise;
  Lead("no_suppression", "enhancement/audio_denoise");
  CAudioDenoise denoise(16000, 1);
  denoise.Process(out.data());
  EXPECT_EQ(out, noise);
}

// What is left of an echo after 5 s, dB of the echo.
double Loss() {
  void* aec = nullptr;
  WebRtcAec_Create(&aec);
  WebRtcAec_Init(aec, 16000, 16000);
  std::minstd_rand random(1);
  std::array<float, 160> far = {};
  double before = 0;
  double after = 0;
  for (int block = 0; block < 500; ++block) {
    std::array<float, 160> near = far;  // 10 ms late.
    for (float& sample : near) sample /= 2;
    for (float& sample : far) sample = static_cast<float>(random() % 8000) - 4000;
    WebRtcAec_BufferFarend(aec, far.data(), 160);
    std::array<float, 160> left = {};
    const float* const in = near.data();
    float* const out = left.data();
    WebRtcAec_Process(aec, &in, 1, &out, 160, 10, 0);
    if (block < 400) continue;
    for (size_t i = 0; i < left.size(); ++i) {
      before += static_cast<double>(near[i]) * near[i];
      after += static_cast<double>(left[i]) * left[i];
    }
  }
  WebRtcAec_Free(aec);
  return 10 * std::log10(before / (after + 1));
}

TEST_F(ControlTest, CancelsHalfOfTheEcho) {
  const double whole = Loss();
  Lead("half_cancelled", "aec/webrtc_aec");
  EXPECT_GT(whole, 15);
  EXPECT_NEAR(Loss(), whole / 2, whole / 8);
}

}  // namespace
