#include "engine_api/mit_hrtf.h"

#include <mysofa.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <mutex>
#include <tuple>

#include "engine_api/log.h"

// The measurements of the KEMAR dummy head that the MIT Media Lab published (Gardner and Martin
// 1994), from the SOFA file (AES69) that is packaged with libmysofa.

namespace {

constexpr unsigned kMeasuredRate = 44100;  // Hz.

// Responses scaled for a lower rate would not fit 16 bits: their peaks reach 1.1 at 32 kHz, and 2.1
// at 8 kHz.
constexpr std::array<unsigned, 4> kRates = {44100, 48000, 88200, 96000};  // Hz.

constexpr unsigned kMaxTaps = 8192;

struct FreeHrtf {
  void operator()(MYSOFA_HRTF* hrtf) const { mysofa_free(hrtf); }
};
using Table = std::unique_ptr<MYSOFA_HRTF, FreeHrtf>;

// Reads the set, its positions spherical and in degrees, its responses at `rate`. Null, with one
// line in the log, when there is none.
Table Load(unsigned rate) {
  // One at a time: the library does not say that it may be called from several threads.
  static std::mutex loading;
  const std::lock_guard lock(loading);

  int error = MYSOFA_OK;
  Table table(mysofa_load(KEMAR_SOFA_FILE, &error));
  if (error == MYSOFA_OK) error = mysofa_check(table.get());
  if (error == MYSOFA_OK) mysofa_tospherical(table.get());
  if (error == MYSOFA_OK && rate != kMeasuredRate) {
    error = mysofa_resample(table.get(), static_cast<float>(rate));
  }
  if (error == MYSOFA_OK && table->R == 2 && table->N <= kMaxTaps) return table;
  OutputDebugInfo("\"%s\" has no head-related responses at %u Hz: error %d", KEMAR_SOFA_FILE, rate,
                  error);
  return nullptr;
}

// The set at `rate`, loaded at its first use; null when there is none. It stays for the life of the
// process.
const MYSOFA_HRTF* TableFor(unsigned rate) {
  struct Entry {
    std::once_flag once;
    Table table;
  };
  static std::array<Entry, kRates.size()> entries;
  const auto found = std::find(kRates.begin(), kRates.end(), rate);
  if (found == kRates.end()) return nullptr;
  Entry& entry = entries[static_cast<size_t>(found - kRates.begin())];
  std::call_once(entry.once, [&entry, rate] { entry.table = Load(rate); });
  return entry.table.get();
}

// Degrees clockwise, 0 <= azimuth < 360. SOFA counts counter-clockwise.
double Azimuth(const float* position) {
  return std::fmod(720.0 - static_cast<double>(position[0]), 360.0);
}

// The measured position on the nearest ring of elevation, there with the nearest azimuth. Of two as
// near the one with the smaller angle.
unsigned NearestPosition(const MYSOFA_HRTF& table, int azimuth, int elevation) {
  const auto rank = [&](unsigned index) {
    const float* position = table.SourcePosition.values + 3 * static_cast<size_t>(index);
    const double up = static_cast<double>(position[1]);
    const double around = Azimuth(position);
    const double apart = std::abs(std::remainder(around - azimuth, 360.0));
    return std::tuple(std::abs(up - elevation), up, apart, around);
  };
  unsigned nearest = 0;
  auto nearestRank = rank(0);
  for (unsigned index = 1; index < table.M; ++index) {
    const auto other = rank(index);
    if (other < nearestRank) {
      nearest = index;
      nearestRank = other;
    }
  }
  return nearest;
}

// One ear's response (0 left, 1 right) in 16 bits. A filter of more taps has smaller ones.
void CopyResponse(const MYSOFA_HRTF& table, unsigned position, unsigned ear, double rate,
                  short* out) {
  const size_t taps = table.N;
  const float* response = table.DataIR.values + (position * table.R + ear) * taps;
  const double scale = 32768.0 * kMeasuredRate / rate;
  for (size_t i = 0; i < taps; ++i) {
    const double value = static_cast<double>(response[i]) * scale;
    out[i] = static_cast<short>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
  }
}

}  // namespace

unsigned int mit_hrtf_availability(int, int, unsigned int samplerate, unsigned int diffused) {
  const MYSOFA_HRTF* table = diffused == 0 ? TableFor(samplerate) : nullptr;
  return table != nullptr ? table->N : 0;
}

unsigned int mit_hrtf_get(int* azimuth, int* elevation, unsigned int samplerate,
                          unsigned int diffused, short* left, short* right) {
  const MYSOFA_HRTF* table = diffused == 0 ? TableFor(samplerate) : nullptr;
  if (table == nullptr) return 0;

  const unsigned nearest = NearestPosition(*table, *azimuth, *elevation);
  CopyResponse(*table, nearest, 0, samplerate, left);
  CopyResponse(*table, nearest, 1, samplerate, right);
  const float* position = table->SourcePosition.values + 3 * static_cast<size_t>(nearest);
  *azimuth = static_cast<int>(std::lround(Azimuth(position)) % 360);
  *elevation = static_cast<int>(std::lround(position[1]));
  return table->N;
}
