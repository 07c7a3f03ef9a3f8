// A recording at half its tempo by the library. Listen for echoes of drum strokes and for a flutter
// in held notes.

#include <SoundTouch.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/platform/paths.h"
#include "harness/read_block.h"

using harness::ReadBlock;

// Deliberate: set to 44.1 kHz mono whatever the file holds, and given the samples of all channels
// as if they were one. With the file's own format a stereo recording would come out as one.
void TestSoundTouch() {
  soundtouch::SoundTouch _soundTouch;
  _soundTouch.setSampleRate(44100);
  _soundTouch.setChannels(1);
  _soundTouch.setTempoChange(0.0);
  _soundTouch.setPitchSemiTones(0);
  _soundTouch.setRateChange(0.0);
  _soundTouch.setSetting(SETTING_USE_AA_FILTER, 1);
  _soundTouch.setSetting(SETTING_USE_QUICKSEEK, 0);
  _soundTouch.setTempo(0.5);
  _soundTouch.setSetting(SETTING_SEQUENCE_MS, 40);
  _soundTouch.setSetting(SETTING_SEEKWINDOW_MS, 15);
  _soundTouch.setSetting(SETTING_OVERLAP_MS, 8);

  zuwebrtc::WavReader wavReader(GetIosDocPath() + "input.wav");
  const int fs = wavReader.sample_rate();
  const int ch = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter(GetIosDocPath() + "out.wav", fs, ch);
  const auto read_samples = static_cast<uint32_t>(fs * ch / 100);

  float buffer[8192] = {};
  while (ReadBlock(wavReader, buffer, read_samples)) {
    _soundTouch.putSamples(buffer, read_samples);
    const uint32_t ret = _soundTouch.receiveSamples(buffer, 8192);
    // No more whole frames than there are, however many channels the file has.
    const auto channels = static_cast<uint32_t>(ch);
    const auto capacity = static_cast<uint32_t>(std::size(buffer));
    const uint32_t samples = std::min(ret, capacity / channels) * channels;
    if (samples != 0) wavWriter.WriteSamples(buffer, samples);
  }
  // Deliberate: no flush. With one the output would be longer, by what the library still holds.
}  // Closes the writer and the reader, then destroys the processor.
