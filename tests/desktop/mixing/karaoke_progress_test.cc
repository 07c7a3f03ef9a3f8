// How often a file mixer tells of its progress.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "engine_api/mixing/karaoke_file_mixer.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Progress : public IKaraokeFileMixerNotify {
 public:
  void OnFileMixerState(uint32_t, uint32_t) override { times.push_back(steady_clock::now()); }
  void OnFinishMixer() override { ended = true; }
  std::vector<steady_clock::time_point> times;
  std::atomic<bool> ended = false;
};

// A machine that is slower mixes less between two reports, but the time between them is the same.
TEST(KaraokeProgress, IsToldAtMostTenTimesASecondAndAtTheEnd) {
  const TemporaryDirectory directory;
  WriteFile("tone.wav",
            WavBytes({.channels = 2, .rate = 48000}, Tone(300, 5000, 48000, 48000 * 60, 2)));
  char wave[] = "tone.wav";
  char out[] = "out.wav";
  IKaraokeFileMixer* const mixer = IKaraokeFileMixer::Create();
  Progress progress;
  mixer->SetKaraokeFileMixerNotify(&progress);
  mixer->EnableReverbNew(true);
  mixer->EnableLimiter(true);
  ASSERT_TRUE(mixer->Open(wave, wave));
  const auto start = steady_clock::now();
  ASSERT_TRUE(mixer->Start(out));
  while (!progress.ended) std::this_thread::sleep_for(milliseconds(1));
  mixer->Destroy();

  ASSERT_FALSE(progress.times.empty());
  // Counted from the start, for one report that comes late leaves less time to the next.
  for (size_t i = 0; i + 1 < progress.times.size(); ++i) {
    EXPECT_GE(progress.times[i] - start, (i + 1) * milliseconds(100)) << i;
  }
  // Nor does it wait much longer, where the mix takes that long.
  const bool lasted = progress.times.back() - start > milliseconds(500);
  EXPECT_GE(progress.times.size(), lasted ? 2U : 1U);
}

}  // namespace
