// Writes the table of head-related impulse responses that mit_hrtf.cc is built with:
// write_hrtf_table SOFA_FILE TABLE_FILE
// SOFA_FILE holds the KEMAR measurements (AES69), as they are packaged with libmysofa.

#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>

#include "desktop/effects/hrtf/hrtf_table.h"

namespace {

constexpr unsigned kMeasuredRate = 44100;  // Hz.

struct FreeHrtf {
  void operator()(MYSOFA_HRTF* hrtf) const { mysofa_free(hrtf); }
};
using Measurements = std::unique_ptr<MYSOFA_HRTF, FreeHrtf>;

// Returns the set of `taps` taps at `rate`, its positions spherical and in degrees; null, with one
// line on stderr, when `file` has no such set.
Measurements Load(const char* file, unsigned rate, unsigned taps) {
  int error = MYSOFA_OK;
  Measurements set(mysofa_load(file, &error));
  if (error == MYSOFA_OK) error = mysofa_check(set.get());
  if (error == MYSOFA_OK) mysofa_tospherical(set.get());
  if (error == MYSOFA_OK && rate != kMeasuredRate) {
    error = mysofa_resample(set.get(), static_cast<float>(rate));
  }
  if (error != MYSOFA_OK) {
    std::fprintf(stderr, "write_hrtf_table: cannot read \"%s\" at %u Hz: libmysofa's error %d\n",
                 file, rate, error);
    return nullptr;
  }
  if (set->M != desktop::kHrtfPositions || set->R != 2 || set->N != taps) {
    std::fprintf(stderr,
                 "write_hrtf_table: \"%s\" at %u Hz has %u positions, %u ears, %u taps instead of "
                 "%zu, 2, %u\n",
                 file, rate, set->M, set->R, set->N, desktop::kHrtfPositions, taps);
    return nullptr;
  }
  return set;
}

void CopyPositions(const MYSOFA_HRTF& set, desktop::HrtfTable& table) {
  const float* from = set.SourcePosition.values;
  for (desktop::HrtfTable::Position& position : table.positions) {
    // SOFA counts counter-clockwise.
    position.azimuth = std::fmod(720.0 - static_cast<double>(from[0]), 360.0);
    position.elevation = static_cast<double>(from[1]);
    from += 3;
  }
}

// Fills the responses at `rate`, in 16 bits; a filter of more taps has smaller ones. The positions
// are the same at every rate. Returns false, with one line on stderr, on failure.
template <unsigned taps>
bool Copy(const char* file, unsigned rate, desktop::HrtfTable& table,
          desktop::HrtfResponses<taps>& responses) {
  const Measurements set = Load(file, rate, taps);
  if (set == nullptr) return false;

  CopyPositions(*set, table);
  const double scale = 32768.0 * kMeasuredRate / rate;
  const float* from = set->DataIR.values;
  for (auto& ears : responses.values) {
    for (auto& ear : ears) {
      for (short& tap : ear) {
        const double value = static_cast<double>(*from++) * scale;
        tap = static_cast<short>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
      }
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: write_hrtf_table SOFA_FILE TABLE_FILE\n");
    return 2;
  }
  const auto table = std::make_unique<desktop::HrtfTable>();
  if (!Copy(argv[1], kMeasuredRate, *table, table->at44100)) return 1;
  if (!Copy(argv[1], 48000, *table, table->at48000)) return 1;

  std::ofstream file(argv[2], std::ios::binary);
  file.write(reinterpret_cast<const char*>(table.get()), sizeof(desktop::HrtfTable));
  file.close();
  if (!file) {
    std::fprintf(stderr, "write_hrtf_table: cannot write \"%s\"\n", argv[2]);
    return 1;
  }
  return 0;
}
