#pragma once

#include <memory>

#include "../common/visibility.h"

// Estimates by how many milliseconds the echo in the near end comes after the far end. Belongs to
// one thread at a time.
class ENGINE_API CEchoDelayEst {
 public:
  // rate: Hz, 8000 to 48000; channels: of both signals, interleaved. With other values the
  // estimator stays at 0, with one line in the log.
  CEchoDelayEst(int rate, int channels);
  ~CEchoDelayEst();
  CEchoDelayEst(const CEchoDelayEst&) = delete;
  CEchoDelayEst& operator=(const CEchoDelayEst&) = delete;

  // Take `count` interleaved samples each, any number, far end first. Return 0, or -1 when nothing
  // can be estimated (see above) or there are no samples. An end that stops counts as silent; some
  // two seconds after it goes on both belong together again.
  int ProcessFar(const short* samples, int count);
  int ProcessNear(const short* samples, int count);

  // The delay in ms, 0 to 500: 0 until it is known, about 1 s after both ends have started to
  // sound. In silence the last sure value stays; a moving talker is followed within seconds.
  int GetDelay();

 private:
  struct Estimator;
  std::unique_ptr<Estimator> m_estimator;
};
