// Compressors over recordings, 10 ms at a time. Listen for pumping, for distortion of low notes,
// and for a soft passage that comes out louder than it went in.

#include <cstdio>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/drc.h"
#include "engine_api/effects/multiband_drc.h"
#include "harness/block_samples.h"
#include "harness/fill_frame.h"
#include "harness/read_block.h"

using harness::BlockSamples;
using harness::FillFrame;
using harness::FrameSamples;
using harness::ReadBlock;

// The compressor in bands over "voice.wav".
void TestMdrc() {
  zuwebrtc::WavReader reader("voice.wav");
  const int rate = reader.sample_rate();
  const int channels = reader.num_channels();
  zuwebrtc::WavWriter writer("mdrc.wav", rate, channels);
  printf("TestInFile Fs = %d, ch = %d\n", rate, channels);
  MultibandDrc mDrc;
  mDrc.Init();
  const int readSamples = rate * channels / 100;
  const auto blockSamples = static_cast<unsigned>(readSamples);

  short In[8192];
  zuwebrtc::AudioFrame frame;
  while (ReadBlock(reader, In, blockSamples)) {
    FillFrame(frame, In, readSamples, rate, channels);
    mDrc.Process(frame);
    writer.WriteSamples(frame.data_, FrameSamples(blockSamples));
  }
}  // Destroys the compressor, then closes the writer and the reader.

// The compressor over "music.wav"; prints nothing.
void TestDrc() {
  zuwebrtc::WavReader reader("music.wav");
  Drc drc;
  const int time_ms = 10;
  const int src_fs = reader.sample_rate();
  const int src_ch = reader.num_channels();
  const unsigned read_samples = BlockSamples(src_fs, src_ch, time_ms);
  zuwebrtc::WavWriter writer("drc_out.wav", src_fs, src_ch);

  short inData[8192];
  while (ReadBlock(reader, inData, read_samples)) {
    drc.Process(inData, src_ch, static_cast<int>(read_samples) / src_ch);
    writer.WriteSamples(inData, read_samples);
  }
}  // Closes the writer, destroys the compressor, then closes the reader.
