// The signal-to-noise ratio of processed against clean speech, frame by frame: 10 log10(1 + signal
// energy / error energy), averaged over the frames. Both files are raw mono PCM at 8 kHz.

#include <cmath>
#include <iterator>

#include "bench/enhancement/routines.h"
#include "bench/enhancement/speech_segment.h"
#include "harness/read_block.h"
#include "harness/stream.h"

using harness::ReadBlock;

namespace {

constexpr int SAMPLES_20MS = 160;

using Frame = short[SAMPLES_20MS];

// The logarithm of one frame's ratio.
// Deliberate: samples are scaled by 2^-16 and not by 2^-15, which counts in frames whose error is
// near 1e-7, and the sums are in single precision.
double FrameTerm(const Frame& cleanData, const Frame& processedData) {
  float ref_2 = 0;
  float in_minus_ref_2 = 0;
  for (int i = 0; i < SAMPLES_20MS; ++i) {
    const float ref = static_cast<float>(cleanData[i]) * 1.52587890625e-05f;
    const float in = static_cast<float>(processedData[i]) * 1.52587890625e-05f;
    ref_2 += ref * ref;
    in_minus_ref_2 += (in - ref) * (in - ref);
  }
  return log10(static_cast<double>(ref_2) / (static_cast<double>(in_minus_ref_2) + 1e-7) + 1.0);
}

// The running total is single precision, although each term is not.
void AddTerm(float& total, double term) {
  total = static_cast<float>(static_cast<double>(total) + term);
}

}  // namespace

// Over the whole files, up to the end of the shorter.
// Deliberate: silent frames count as well, with 0 dB. Without them a sentence with long pauses
// would score higher.
float MeasureAverageSNR(FILE* cf, FILE* pf) {
  Frame cleanData;
  Frame processedData;
  int frameAll = 0;
  float sn = 0;
  while (ReadBlock(cf, cleanData, sizeof cleanData) &&
         ReadBlock(pf, processedData, sizeof processedData)) {
    ++frameAll;
    AddTerm(sn, FrameTerm(cleanData, processedData));
  }
  // Not a number when there was no frame.
  return sn * 10.0f / static_cast<float>(frameAll);
}

// Over the marked speech of sentence `no`, counted from where the files stand. A frame has the 160
// samples that are read for it, however long its segment is.
float MeasureSpeechSNR(int no, FILE* cf, FILE* pf) {
  Frame cleanData;
  Frame processedData;
  const long cfStartPos = harness::Position(cf);
  const long pfStartPos = harness::Position(pf);
  int frameAll = 0;
  float result = 0;
  const bool known = no >= 1 && no <= bench::kNoizeusRows;
  const int32_t* const row = known ? g_speechSegment[no - 1] : nullptr;
  for (int pair = 0; known && pair < bench::kSegmentPairs && row[2 * pair] >= 0; ++pair) {
    const int segStart = row[2 * pair];
    const int segSample = row[2 * pair + 1];
    const int frameSeg = segSample / SAMPLES_20MS;
    harness::SeekTo(cf, cfStartPos + 2 * segStart);
    harness::SeekTo(pf, pfStartPos + 2 * segStart);
    // Deliberate: a failed read spends its turn, and the next one reads on from where the files
    // stand. When the processed file alone ends, the clean one still moves on.
    for (int frame = 0; frame < frameSeg; ++frame) {
      if (!ReadBlock(cf, cleanData, sizeof cleanData)) continue;
      if (!ReadBlock(pf, processedData, sizeof processedData)) continue;
      ++frameAll;
      AddTerm(result, FrameTerm(cleanData, processedData));
    }
  }
  return result * 10.0f / static_cast<float>(frameAll);
}
