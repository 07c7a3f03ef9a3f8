// Music or not, block by block. See how soon the marker follows the sound, and whether it flutters.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/audio_music_detector.h"
#include "harness/fill_frame.h"

using harness::FillFrame;

// Puts the samples into the first track of `Out` and the marker beside each, as many as it holds.
static unsigned MarkTrack(const short* In, unsigned count, int16_t res, short (&Out)[8192]) {
  const unsigned pairs = std::min(count, static_cast<unsigned>(std::size(Out)) / 2);
  for (unsigned i = 0; i < pairs; ++i) {
    Out[2 * i] = In[i];
    Out[2 * i + 1] = res;
  }
  return 2 * pairs;
}

// Writes "music.wav" beside a marker: 16384 for music, -16384 for all else.
// Deliberate: the output says 48000 Hz and 2 channels whatever the input is, and plays at another
// speed then. With the input's own rate the two tracks would run in time.
void TestAudioMusicDetector() {
  zuwebrtc::WavReader wavReader("music.wav");
  const int rate = wavReader.sample_rate();
  const int channels = wavReader.num_channels();
  printf("TestInFile Fs = %d, ch = %d\n", rate, channels);
  zuwebrtc::WavWriter wavWriter("music_det.wav", 48000, 2);
  AudioMusicDetector amd;
  amd.Enable(true);
  const auto readSamples = static_cast<uint32_t>(rate * channels / 100);

  short In[8192] = {};
  short Out[8192];
  zuwebrtc::AudioFrame frame;
  // Deliberate: a short last block counts as a whole one; after its samples come those of the block
  // before. Dropped, or filled up with silence, the output would end with the input.
  while (readSamples <= std::size(In) && wavReader.ReadSamples(readSamples, In) != 0) {
    FillFrame(frame, In, static_cast<int>(readSamples), rate, channels);
    amd.Process(frame);
    const bool isMusic = amd.IsMusic();
    const int16_t res = isMusic ? 16384 : -16384;
    const unsigned marked = MarkTrack(In, readSamples, res, Out);
    wavWriter.WriteSamples(Out, marked);
  }
}  // Destroys the detector, then closes the writer and the reader.
