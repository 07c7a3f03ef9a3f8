// A recording played faster and slower in turn, 10 ms at a time. Listen for clicks where the speed
// changes, every 5 s of the recording, and for a pitch that goes with it.

#include "engine_api/effects/rate_changer.h"

#include <cstdint>
#include <string>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/platform/paths.h"
#include "harness/leave_alive.h"
#include "harness/read_block.h"

using harness::LeaveAlive;
using harness::ReadBlock;

// Sweeps the ratio 1, 2, 3, 2, 1, 2, 3, ...
void TestRateChanger() {
  zuwebrtc::WavReader wavReader(GetIosDocPath() + "test.wav");
  const int fs = wavReader.sample_rate();
  const int channels = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter(GetIosDocPath() + "rate.wav", fs, channels);

  const bool isSpeech = true;
  double ratio = 1.0;
  auto* const rateChanger = new RateChanger(isSpeech);
  rateChanger->SetEnabled(true);
  rateChanger->SetRatio(ratio);
  rateChanger->SetFsAndCh(fs, channels);
  const auto readSamples = static_cast<uint32_t>(fs * channels / 100);
  uint32_t readCnt = 0;  // ms.
  int32_t add_flag = 1;

  short inBuf[8192];
  std::string outData;
  while (ReadBlock(wavReader, inBuf, readSamples)) {
    readCnt += 10;
    const int samplesPerCh = static_cast<int>(readSamples) / channels;
    outData.clear();
    rateChanger->Process(inBuf, samplesPerCh, channels, outData);
    const int outSamples = static_cast<int>(outData.length() / 2);
    wavWriter.WriteSamples(reinterpret_cast<const short*>(outData.data()),
                           static_cast<unsigned>(outSamples));

    if (readCnt > 4999) {
      // Deliberate: one bound for both turns. With a bound for each, 3 and 1, the ratio would run
      // from 0 to 4.
      if (ratio > 2.0) {
        add_flag = -1;
      } else if (ratio < 2.0) {
        add_flag = 1;
      }
      ratio += add_flag;
      rateChanger->SetRatio(ratio);
      readCnt = 0;
    }
  }

  // Deliberate: never deleted. The changer lives on after its last use, until the process ends.
  LeaveAlive(rateChanger);
}  // Closes the writer, then the reader.
