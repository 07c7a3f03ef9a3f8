#include "engine_api/effects/mit_hrtf.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "desktop/effects/hrtf/hrtf_table.h"

// The bytes of HRTF_TABLE_FILE. An array literal of that size would take the compiler seconds.
extern "C" [[gnu::visibility("hidden")]] const desktop::HrtfTable kHrtfTable;
asm(".pushsection .rodata\n"
    ".balign 64\n"
    ".globl kHrtfTable\n"
    ".hidden kHrtfTable\n"
    ".type kHrtfTable, %object\n"
    "kHrtfTable:\n"
    ".incbin \"" HRTF_TABLE_FILE
    "\"\n"
    ".size kHrtfTable, . - kHrtfTable\n"
    ".popsection\n");

namespace {

// One ear after the other at each position; no taps when there is no such set.
struct Set {
  unsigned taps;
  const short* responses;
};

template <unsigned taps>
Set SetOf(const desktop::HrtfResponses<taps>& responses) {
  return {taps, responses.values[0][0]};
}

Set FindSet(unsigned rate, unsigned diffused) {
  if (diffused == 0 && rate == 44100) return SetOf(kHrtfTable.at44100);
  if (diffused == 0 && rate == 48000) return SetOf(kHrtfTable.at48000);
  return {0, nullptr};
}

// Returns the measured position on the nearest ring of elevation, and there the one with the
// nearest azimuth. On a tie, the smaller angle.
size_t NearestPosition(int azimuth, int elevation) {
  const auto rank = [&](const desktop::HrtfTable::Position& position) {
    const double apart = std::abs(std::remainder(position.azimuth - azimuth, 360.0));
    return std::tuple(std::abs(position.elevation - elevation), position.elevation, apart,
                      position.azimuth);
  };
  size_t nearest = 0;
  auto nearestRank = rank(kHrtfTable.positions[0]);
  for (size_t index = 1; index < desktop::kHrtfPositions; ++index) {
    const auto other = rank(kHrtfTable.positions[index]);
    if (other < nearestRank) {
      nearest = index;
      nearestRank = other;
    }
  }
  return nearest;
}

}  // namespace

unsigned int mit_hrtf_availability(int, int, unsigned int samplerate, unsigned int diffused) {
  return FindSet(samplerate, diffused).taps;
}

unsigned int mit_hrtf_get(int* azimuth, int* elevation, unsigned int samplerate,
                          unsigned int diffused, short* left, short* right) {
  const auto [taps, responses] = FindSet(samplerate, diffused);
  if (taps == 0) return 0;

  const size_t nearest = NearestPosition(*azimuth, *elevation);
  const short* response = responses + nearest * 2 * taps;
  std::copy_n(response, taps, left);
  std::copy_n(response + taps, taps, right);
  const desktop::HrtfTable::Position& position = kHrtfTable.positions[nearest];
  *azimuth = static_cast<int>(std::lround(position.azimuth) % 360);
  *elevation = static_cast<int>(std::lround(position.elevation));
  return taps;
}
