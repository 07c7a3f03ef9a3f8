#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "bench/effects/routines.h"
#include "fake_engine/effects/audio_music_detector.h"
#include "fake_engine/fake_engine.h"
#include "support/transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Shorts = std::vector<short>;

Shorts Ramp(size_t samples) {
  Shorts ramp(samples);
  std::iota(ramp.begin(), ramp.end(), static_cast<short>(1));
  return ramp;
}

Shorts Track(const Shorts& samples, size_t first) {
  Shorts track;
  for (size_t i = first; i < samples.size(); i += 2) track.push_back(samples[i]);
  return track;
}

}  // namespace

TEST(TestAudioMusicDetector, AsksAfterEachBlockThenReleasesLastOpenedFirst) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {16000, 1, Shorts(320, 1)};

  TestAudioMusicDetector();

  EXPECT_THAT(engine.calls, Transcript(R"(
      WavReader#1(music.wav)
      printf("TestInFile Fs = %d, ch = %d\n", 16000, 1)
      WavWriter#1(music_det.wav, 48000, 2)
      AudioMusicDetector#1()
      AudioMusicDetector#1.Enable(true)
      WavReader#1.ReadSamples(160) = 160
      AudioMusicDetector#1.Process(16000 Hz, 1, 160)
      AudioMusicDetector#1.IsMusic() = false
      WavWriter#1.WriteSamples(320)
      WavReader#1.ReadSamples(160) = 160
      AudioMusicDetector#1.Process(16000 Hz, 1, 160)
      AudioMusicDetector#1.IsMusic() = false
      WavWriter#1.WriteSamples(320)
      WavReader#1.ReadSamples(160) = 0
      ~AudioMusicDetector#1
      ~WavWriter#1
      ~WavReader#1
  )"));
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAudioMusicDetector, PutsAMarkerBesideEverySample) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {44100, 2, Ramp(3 * 882)};
  int asked = 0;
  engine.script<AudioMusicDetectorScript>().isMusic = [&] { return ++asked == 2; };

  TestAudioMusicDetector();

  const Shorts& out = engine.wavs["music_det.wav"].samples;
  ASSERT_THAT(out, SizeIs(2 * 3 * 882));
  EXPECT_EQ(Track(out, 0), Ramp(3 * 882));
  const Shorts markers = Track(out, 1);
  EXPECT_THAT(Shorts(markers.begin(), markers.begin() + 882), Each(-16384));
  EXPECT_THAT(Shorts(markers.begin() + 882, markers.begin() + 2 * 882), Each(16384));
  EXPECT_THAT(Shorts(markers.begin() + 2 * 882, markers.end()), Each(-16384));
}

TEST(TestAudioMusicDetector, Says48000StereoWhateverTheInput) {
  for (const auto& [rate, channels] : {std::pair(8000, 1), {44100, 2}, {48000, 2}}) {
    FakeEngine engine;
    engine.wavs["music.wav"] = {rate, channels, Shorts(10000, 1)};

    TestAudioMusicDetector();

    EXPECT_EQ(engine.wavs["music_det.wav"].rate, 48000);
    EXPECT_EQ(engine.wavs["music_det.wav"].channels, 2);
  }
}

TEST(TestAudioMusicDetector, TakesAShortLastBlockForAWholeOneWithAStaleTail) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {8000, 1, Ramp(80 + 3)};
  std::vector<Shorts> frames;
  engine.script<AudioMusicDetectorScript>().process = [&](const zuwebrtc::AudioFrame& frame) {
    frames.emplace_back(frame.data_, frame.data_ + frame.samples_per_channel_);
  };

  TestAudioMusicDetector();

  Shorts last = Ramp(80);
  last[0] = 81;
  last[1] = 82;
  last[2] = 83;
  EXPECT_THAT(frames, ElementsAre(Ramp(80), last));
  const Shorts in = Track(engine.wavs["music_det.wav"].samples, 0);
  EXPECT_EQ(Shorts(in.begin() + 80, in.end()), last);
}

TEST(TestAudioMusicDetector, HasSilenceAfterALoneShortBlock) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {8000, 1, Ramp(3)};

  TestAudioMusicDetector();

  Shorts expected(80);
  expected[0] = 1;
  expected[1] = 2;
  expected[2] = 3;
  EXPECT_EQ(Track(engine.wavs["music_det.wav"].samples, 0), expected);
}

// All 441 samples go into the frame although it says 220 per channel.
TEST(TestAudioMusicDetector, CopiesAllThatWasReadAt22050Stereo) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {22050, 2, Shorts(441, 9)};
  engine.script<AudioMusicDetectorScript>().process = [](const zuwebrtc::AudioFrame& frame) {
    EXPECT_EQ(frame.samples_per_channel_, 220);
    EXPECT_EQ(frame.data_[440], 9);
    EXPECT_EQ(frame.speech_type_, zuwebrtc::kUndefined);
    EXPECT_EQ(frame.energy_, 0xffffffffU);
  };

  TestAudioMusicDetector();

  EXPECT_THAT(engine.CallsWith("WriteSamples"), ElementsAre("WavWriter#1.WriteSamples(882)"));
}

TEST(TestAudioMusicDetector, WritesNoMoreThanItsTracksHold) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {192000, 4, Shorts(7680, 9)};

  TestAudioMusicDetector();

  EXPECT_THAT(engine.CallsWith("WriteSamples"), ElementsAre("WavWriter#1.WriteSamples(8192)"));
}

TEST(TestAudioMusicDetector, TakesABlockThatFillsItsArray) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {819200, 1, Shorts(8192, 9)};
  TestAudioMusicDetector();
  EXPECT_THAT(engine.CallsWith("WriteSamples"), SizeIs(1));
}

TEST(TestAudioMusicDetector, EndsAtOnceForABlockBeyondItsArray) {
  FakeEngine engine;
  engine.wavs["music.wav"] = {768000, 2, Shorts(20000, 9)};

  TestAudioMusicDetector();

  EXPECT_THAT(engine.CallsWith("Process("), IsEmpty());
  EXPECT_THAT(engine.live, IsEmpty());
}

TEST(TestAudioMusicDetector, WritesAnEmptyFileWithoutItsInput) {
  FakeEngine engine;

  TestAudioMusicDetector();

  EXPECT_THAT(engine.CallsWith("Process("), IsEmpty());
  EXPECT_THAT(engine.CallsWith("printf"),
              ElementsAre("printf(\"TestInFile Fs = %d, ch = %d\\n\", 0, 0)"));
  EXPECT_THAT(engine.wavs["music_det.wav"].samples, IsEmpty());
}
