#include "fuzz/mixing/sources.h"

#include <algorithm>
#include <vector>

#include "fuzz/fuzz_target.h"

namespace {

constexpr short kMark = 12345;  // Behind a block: nothing may be written there.

// The samples up to the end, or up to `most` frames and a block.
std::vector<short> ReadAll(desktop::FileSource& source, uint64_t most, size_t frames) {
  const size_t channels = source.Channels();
  std::vector<short> samples;
  uint64_t total = 0;
  while (total < most) {
    std::vector<short> block(frames * channels + 1, kMark);
    const size_t got = source.Read(block.data(), frames);
    REQUIRE(got <= frames && block.back() == kMark);
    total += got;
    samples.insert(samples.end(), block.begin(),
                   block.begin() + static_cast<std::ptrdiff_t>(got * channels));
    if (got < frames) {
      REQUIRE(source.Failed() == (total < source.Frames()));
      REQUIRE(source.Read(block.data(), frames) == 0);
      break;
    }
    REQUIRE(!source.Failed());
  }
  return samples;
}

}  // namespace

uint64_t ReadTwice(desktop::FileSource& source, uint64_t most, bool sameAgain) {
  REQUIRE(source.Rate() >= 1 && source.Rate() <= 768000);
  REQUIRE(source.Channels() >= 1 && source.Channels() <= 64);
  const std::vector<short> first = ReadAll(source, most, 441);
  if (source.Rewind()) {
    const std::vector<short> second = ReadAll(source, most, 1000);
    if (!sameAgain) return first.size() / source.Channels();
    const size_t both = std::min(first.size(), second.size());
    REQUIRE(std::equal(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(both),
                       second.begin()));
    REQUIRE(first.size() == second.size() || both / source.Channels() >= most);
  }
  return first.size() / source.Channels();
}
