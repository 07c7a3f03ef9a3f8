#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/aec/parts/delay_tracker.h"
#include "desktop/aec/parts/echo_suppressor.h"
#include "desktop/aec/parts/kalman_filter.h"

namespace webrtc {
class AudioProcessing;
}

namespace desktop {

// Takes the far end's echo, and noise if asked to, out of a near end, mono, in blocks of 10 ms of
// floats in the 16-bit range: a linear filter, then what suppresses the echo that the filter
// leaves. Belongs to one thread at a time.
class EchoCanceller {
 public:
  enum class Suppression { kLow, kModerate, kHigh };
  enum class Delay { kFound, kGiven };  // By itself, or by SetDelay.

  // Of what the filter leaves: EchoSuppressor, which is kind to near talkers, or the packaged
  // module, in which noise is suppressed without further lag.
  enum class Suppressor { kOwn, kPackaged };

  static constexpr int kNoNoiseSuppression = -1;

  // rate: 8000 or 16000 Hz.
  EchoCanceller(int rate, Delay delay, Suppressor suppressor);
  ~EchoCanceller();

  void SetSuppression(Suppression suppression);
  void SetNoiseSuppression(int level);  // 0 (weakest) to 3, or kNoNoiseSuppression.
  void EnableCancellation(bool on);     // On at first.

  void SetDelay(int delayMs);  // 0 to 500; the next block is the first that knows it.
  int DelayMs() const { return m_delayMs.value_or(0); }

  void ForgetEchoPath();

  // Per block first the far end; without one the near end is cleaned against silence. Blocks that
  // come early are kept for the next near ends, up to 80 ms of them, unless no near end needs them:
  // then capture has paused, and to keep them would make the far end late for good.
  void ProcessFar(const float* block);

  // In place. Cancellation makes it kLagSamples late (at 8 kHz, with a suppressor of our own, 80
  // samples), noise suppression alone 6 ms. The result stays within -32768..32767.
  void ProcessNear(float* block);
  static constexpr size_t kLagSamples = 112;

  // Takes a block of the near end that is used as it is.
  void PassNear(const float* block);

  // Whether there was echo in the last block.
  bool HasEcho() const { return m_hasEcho; }

  // The length of a block in samples.
  size_t Block() const { return m_block; }

  // The block of the far end that went with the last one of the near end.
  const float* Far() const { return m_far.data(); }

 private:
  void DropFar();
  void DropLateFar();
  void TakeFar();
  void FollowDelay(const float* near);
  void MoveFilter();
  EchoSuppressor::Delay EchoBlocks() const;
  void SuppressEcho(const float* near, float* block);
  void RunModule(float* block);

  const int m_rate;
  const size_t m_block;
  KalmanFilter m_filter;

  // Null when the delay is given.
  std::unique_ptr<DelayTracker> m_tracker;

  // Null where the packaged module suppresses.
  std::unique_ptr<EchoSuppressor> m_suppressor;
  std::unique_ptr<webrtc::AudioProcessing> m_apm;
  bool m_cancels = true;
  bool m_suppressesNoise = false;
  bool m_hasEcho = false;

  // The delay as estimated or given, empty before, and the one that has lasted, which is made use
  // of; for how many blocks the two have been far apart.
  std::optional<int> m_delayMs;
  std::optional<int> m_lastingDelayMs;
  int m_differentFor = 0;

  // The far-end blocks that wait, oldest first, and whether more came than can wait.
  std::vector<float> m_early;
  size_t m_earlyBlocks = 0;
  bool m_overflowed = false;

  // How many of them at least were left after each of the last blocks of the near end.
  size_t m_leastLeft = 0;
  int m_watchedFor = 0;
  std::vector<float> m_far;
  std::vector<float> m_near;
  std::vector<float> m_echo;
  std::vector<short> m_shorts;
};

}  // namespace desktop
