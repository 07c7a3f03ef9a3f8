// Equalisers and reverberations over recordings. Listen for the tone of the bands, for the length
// and the density of the tail, and for clicks at the block seams (100 a second).

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "bench/effects/routines.h"
#include "engine_api/effects/audio_dsp_processor.h"
#include "engine_api/effects/equalizer.h"
#include "harness/leave_alive.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::LeaveAlive;
using harness::ReadBlock;
using harness::StdioFile;

// Equalises a 44.1 kHz stereo WAVE, 10 ms at a time; bands 1 to 4 and 10 keep their defaults.
// Deliberate: the header is copied, not rebuilt, so it says the length of the input also when the
// last part of a block is left out. A rebuilt one would say the length of the output.
void TestIIREq() {
  IEqualizer* eq = CreateEqualizer();
  eq->SetEqGain(0, 1.0F);
  eq->SetEqGain(5, 6.0F);
  eq->SetEqGain(6, 7.0F);
  eq->SetEqGain(7, 8.0F);
  eq->SetEqGain(8, 9.0F);
  eq->SetEqGain(9, 10.0F);
  eq->SetEnabled(true);

  StdioFile pSrcFile("c:\\44100_2_music.wav", "rb");
  unsigned char header[44];
  const size_t headerBytes = pSrcFile.Read(header, 1, sizeof header);
  StdioFile pDstFile("c:\\44100_2_music_eq.wav", "wb");
  pDstFile.Write(header, 1, headerBytes);

  const int kSampleCount = 441;
  char buf[kSampleCount * 2 * 2];
  while (ReadBlock(pSrcFile, buf, sizeof buf)) {
    eq->Process(buf, kSampleCount, 44100, 2, 2);
    pDstFile.Write(buf, sizeof buf, 1);
  }

  // Deliberate: neither the files are closed nor the equaliser destroyed. Closed, the output would
  // be whole at the return; so it is at the process's exit, which flushes it.
  pSrcFile.LeaveOpen();
  pDstFile.LeaveOpen();
  LeaveAlive(eq);
}

// Adds the reverberation to a 16-bit WAVE of the rate (Hz) and channels that the arguments say, 10
// ms at a time. Its header is copied and not looked at.
// Deliberate: `preset` is not used, so every call has the settings of the processor's own. Chosen,
// it would make the files of TestReverbPreset differ.
void TestReverb(const char* pSrcFileName, const char* pDstFileName, int /*preset*/, int sampleRate,
                int channles) {
  CAudioDspProcessor audioDspProcessor;
  audioDspProcessor.SetReverbExEnable(true);

  StdioFile pSrcFile(pSrcFileName, "rb");
  unsigned char header[44];
  const size_t headerBytes = pSrcFile.Read(header, 1, sizeof header);
  StdioFile pDstFile(pDstFileName, "wb");
  pDstFile.Write(header, 1, headerBytes);

  const int64_t bufSize =
      sampleRate > 0 && channles > 0 ? int64_t{sampleRate} * 2 * channles / 100 : 0;
  const auto blockBytes = static_cast<size_t>(bufSize);
  char* const pBuf = static_cast<char*>(malloc(blockBytes));
  while (pBuf != nullptr && ReadBlock(pSrcFile, pBuf, blockBytes)) {
    audioDspProcessor.Process(pBuf, sampleRate / 100, sampleRate, channles, 16);
    pDstFile.Write(pBuf, blockBytes, 1);
  }

  pSrcFile.Close();
  pDstFile.Close();
  free(pBuf);
}

// Deliberate: fourteen files of equal content, because TestReverb does not use the preset.
void TestReverbPreset() {
  for (int i = 0; i < 14; ++i) {
    std::ostringstream name;
    name << "e:\\reverb\\lumo_reverb_" << i << ".wav";
    TestReverb("e:\\lumo.wav", name.str().c_str(), i, 44100, 1);
  }
}
