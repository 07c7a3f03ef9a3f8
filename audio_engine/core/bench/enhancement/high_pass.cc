// The fixed-point high-pass filter of the audio-processing chain, second order, built here. Listen
// for rumble that is left and for crackle at full scale.

#include <algorithm>
#include <cstdint>
#include <memory>

#include "bench/enhancement/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/signal_processing.h"
#include "harness/block_samples.h"
#include "harness/read_block.h"

namespace {

// b0, b1, b2, -a1, -a2
constexpr int16_t kFilterCoefficients8kHz[5] = {3798, -7596, 3798, 7807, -3733};
constexpr int16_t kFilterCoefficients[5] = {4012, -8024, 4012, 8002, -3913};

struct HighPassFilterState {
  int16_t y[4];  // The last output, high and low part, and the one before.
  int16_t x[2];  // The last two inputs.
  const int16_t* ba;
};

// The next output sample. The parts of the state are kept as 16 bits each, and wrap.
int16_t Filter(HighPassFilterState& state, int16_t d) {
  int16_t* const y = state.y;
  int16_t* const x = state.x;
  const int16_t* const ba = state.ba;
  int32_t t = y[1] * ba[3] + y[3] * ba[4];
  t >>= 15;
  t += y[0] * ba[3] + y[2] * ba[4];
  t *= 2;
  t += d * ba[0] + x[0] * ba[1] + x[1] * ba[2];

  x[1] = x[0];
  x[0] = d;
  y[2] = y[0];
  y[3] = y[1];
  y[0] = static_cast<int16_t>(t >> 13);
  // Leaves 32 bits when the high part has wrapped.
  y[1] = static_cast<int16_t>((int64_t{t} - y[0] * 8192) * 4);

  t = std::clamp(t + 2048, -134217728, 134217727);
  return static_cast<int16_t>(t >> 12);
}

}  // namespace

// Filters a WAVE file.
// Deliberate: interleaved channels share one state and are filtered as one sequence, so that a
// stereo file comes out as if its samples were of one channel of twice the rate. Every rate but
// 8 kHz has the same coefficients.
void TestHPFProcess(const char* pSrcFileName, const char* pDstFileName) {
  zuwebrtc::WavReader reader(pSrcFileName);
  const int fs = reader.sample_rate();
  const int ch = reader.num_channels();
  const unsigned blockSamples = harness::BlockSamples(fs, ch, 10);

  const auto hpf = std::make_unique<HighPassFilterState>();
  hpf->ba = fs == 8000 ? kFilterCoefficients8kHz : kFilterCoefficients;
  WebRtcSpl_MemSetW16(hpf->x, 0, 2);
  WebRtcSpl_MemSetW16(hpf->y, 0, 4);

  zuwebrtc::WavWriter writer(pDstFileName, fs, ch);
  short data[8192];
  while (harness::ReadBlock(reader, data, blockSamples)) {
    for (unsigned i = 0; i < blockSamples; ++i) data[i] = Filter(*hpf, data[i]);
    writer.WriteSamples(data, blockSamples);
  }
}
