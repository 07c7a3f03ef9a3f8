// The two mixers over files. Listen for the level when sources join and fall
// out, for clipping where several are loud at once, and for voice and
// accompaniment staying together.

#include <algorithm>

#include "bench/mixing/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/mixing/audio_block_mixer.h"
#include "engine_api/mixing/audio_record_mixer.h"
#include "harness/block_samples.h"
#include "harness/fill_frame.h"
#include "harness/pcm_readers.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::BlockSamples;
using harness::FillFrame;
using harness::ReadBlock;
using harness::StdioFile;

// Mixes five views of one recording, each 96000 bytes further on than the one
// before, 10 ms of 16 kHz mono at a time. They fall out one by one as they
// reach its end.
void TestAudioMixer() {
  StdioFile pFile1("c:\\5.wav", "rb");
  StdioFile pFile2("c:\\5.wav", "rb");
  StdioFile pFile3("c:\\5.wav", "rb");
  StdioFile pFile4("c:\\5.wav", "rb");
  StdioFile pFile5("c:\\5.wav", "rb");
  StdioFile pOutFile("c:\\outmix.pcm", "wb");

  // Deliberate: the header is skipped by a fixed 44 bytes. Parsed, a recording
  // with a longer header would be mixed from its first sample instead of with
  // header bytes ahead of it.
  pFile1.Seek(44, SEEK_SET);
  pFile2.Seek(96044, SEEK_SET);
  pFile3.Seek(192044, SEEK_SET);
  pFile4.Seek(288044, SEEK_SET);
  pFile5.Seek(384044, SEEK_SET);
  CAudioBlockMixer audioBlockMixer(160, 1);

  for (;;) {
    AudioBlockList blocks;
    std::string outMix;
    std::string data1(320, '\0');
    std::string data2(320, '\0');
    std::string data3(320, '\0');
    std::string data4(320, '\0');
    std::string data5(320, '\0');
    ReadPCMFromFileToMix(pFile1.get(), data1, blocks);
    ReadPCMFromFileToMix(pFile2.get(), data2, blocks);
    ReadPCMFromFileToMix(pFile3.get(), data3, blocks);
    ReadPCMFromFileToMix(pFile4.get(), data4, blocks);
    ReadPCMFromFileToMix(pFile5.get(), data5, blocks);
    if (blocks.empty()) break;
    audioBlockMixer.Process(blocks, outMix);
    pOutFile.Write(outMix.data(), outMix.size(), 1);
  }

  pFile1.Close();
  pFile2.Close();
  pFile3.Close();
  pFile4.Close();
  pFile5.Close();
  pOutFile.Close();
}

// Mixes an accompaniment into a voice of the same format, 10 ms at a time, in
// the voice's frame.
void TestRecordMixer() {
  AudioRecordMixer mixer;
  zuwebrtc::WavReader farendReader("record_acc.wav");
  zuwebrtc::WavReader nearendReader("record_voice.wav");
  const int sampleRate = farendReader.sample_rate();
  const int channel = farendReader.num_channels();
  const unsigned readSamples = BlockSamples(sampleRate, channel, 10);
  zuwebrtc::WavWriter outWriter("record_out.wav", sampleRate, channel);

  mixer.SetMixerMode(AudioSourceTypeMix);

  static short farendBuf[65536];
  static short nearendBuf[65536];
  while (ReadBlock(farendReader, farendBuf, readSamples) &&
         ReadBlock(nearendReader, nearendBuf, readSamples)) {
    // Deliberate: rate / 100 samples per channel here, while the block read is
    // rate * channels / 100. At 22050 Hz stereo the last of 441 samples is 0;
    // with one formula it would be the recording's.
    const int frameSamples = channel * (sampleRate / 100);
    zuwebrtc::AudioFrame nearendFrame;
    auto *const farendFrame = new zuwebrtc::AudioFrame;
    FillFrame(nearendFrame, nearendBuf, frameSamples, sampleRate, channel);
    FillFrame(*farendFrame, farendBuf, frameSamples, sampleRate, channel);
    mixer.PushAudioFrame(farendFrame, 0);  // The mixer's from now on.
    mixer.GetMixedAudioFrame(nearendFrame);
    outWriter.WriteSamples(nearendFrame.data_,
                           std::min<unsigned>(readSamples, std::size(nearendFrame.data_)));
  }
}  // Finishes the output, closes the voice and the accompaniment, then ends the
   // mixer.
