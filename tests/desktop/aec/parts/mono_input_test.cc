#include "desktop/aec/parts/mono_input.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/talk.h"

namespace {

// What all samples give, fed `count` at a time.
Samples Mono(const Samples& stereo, size_t count) {
  desktop::MonoInput input(16000, 2);
  Samples mono;
  for (size_t at = 0; at < stereo.size(); at += count) {
    input.Feed(&stereo[at], std::min(count, stereo.size() - at),
               [&mono](const short* samples, size_t frames) {
                 mono.insert(mono.end(), samples, samples + frames);
               });
  }
  return mono;
}

// The left channel is soft and the right one loud, so that a channel too many or too few is heard.
TEST(MonoInput, GoesOnWithAFrameThatIsCut) {
  Samples stereo;
  const Samples left = Hiss(16000, 0.5, 1, -60);
  const Samples right = Talk(16000, 0.5, 2);
  for (size_t i = 0; i < left.size(); ++i) stereo.insert(stereo.end(), {left[i], right[i]});
  const Samples whole = Mono(stereo, stereo.size());
  EXPECT_EQ(whole.size(), left.size());
  for (const size_t count : {1U, 3U, 333U, 961U}) EXPECT_EQ(Mono(stereo, count), whole) << count;
}

}  // namespace
