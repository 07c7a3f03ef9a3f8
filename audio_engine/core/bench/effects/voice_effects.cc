// A voice beautified and a voice changed, 10 ms at a time, and whether as many samples come back as
// went in. Listen for clicks at the block seams, for words cut off and for a pitch that wavers.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/voice_beautify.h"
#include "engine_api/effects/voice_changer.h"
#include "harness/leave_alive.h"
#include "harness/read_block.h"

using harness::LeaveAlive;
using harness::ReadBlock;

// The sixth mode at full strength.
void TestVoiceBeautify() {
  zuwebrtc::WavReader wavReader("f:\\4.wav");
  const int fs = wavReader.sample_rate();
  const int ch = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter("f:\\4_out6.wav", fs, ch);
  printf("TestInFile Fs = %d, ch = %d\n", fs, ch);

  IAudioVoiceBeautify* beautify = IAudioVoiceBeautify::Create();
  beautify->SetEnabled(true);
  beautify->SetVoiceBeautifyOption(mode6, 1.0F, 0.0F);
  const auto readSamples = static_cast<int16_t>(fs * ch / 100);
  // Deliberate: counts blocks, whatever it is called. In samples the printed figures would be
  // others.
  uint32_t totalSamples = 0;
  uint32_t notSameSamples = 0;

  short In[8192];
  while (ReadBlock(wavReader, In, static_cast<unsigned>(readSamples))) {
    totalSamples += 1;
    const int pSamples =
        beautify->VoiceBeautifyProcess(reinterpret_cast<unsigned short*>(In), readSamples, fs, ch);
    if (pSamples != readSamples) {
      notSameSamples += 1;
      printf(
          "output samples is not the same with input, totalSamples = %d, return = %d, expect = "
          "%d\n",
          totalSamples, pSamples, readSamples);
    }
    // Deliberate: a whole block, whatever came back. With `pSamples` the output would have another
    // length than the input.
    wavWriter.WriteSamples(In, static_cast<unsigned>(readSamples));
  }
  printf("notSame = %d, total = %d\n", notSameSamples, totalSamples);

  // Deliberate: never destroyed. The effect lives on after its last use, until the process ends.
  LeaveAlive(beautify);
}  // Closes the writer, then the reader.

// The voice of a little girl.
void TestVoiceChangerEx() {
  zuwebrtc::WavReader wavReader("voice.wav");
  const int fs = wavReader.sample_rate();
  const int ch = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter("voice_changer_out.wav", fs, ch);
  printf("TestInFile Fs = %d, ch = %d\n", fs, ch);

  IVoiceChangerToolbox* toolbox = IVoiceChangerToolbox::Create(fs, ch);
  toolbox->SetVoiceEffectOption(VeoLorie);
  auto readSamples = static_cast<int16_t>(fs * ch / 100);
  uint32_t totalSamples = 0;  // Deliberate: of blocks, as in TestVoiceBeautify.
  uint32_t notSameSamples = 0;

  short In[8192];
  // Deliberate: the count that the effect may have changed is what is compared, written and read
  // next. With a count of its own for each, a change would show in the message alone.
  while (ReadBlock(wavReader, In, static_cast<unsigned>(readSamples))) {
    totalSamples += 1;
    const int pSamples = toolbox->Process(In, &readSamples);
    if (pSamples != readSamples) {
      notSameSamples += 1;
      printf(
          "output samples is not the same with input, totalSamples = %d, return = %d, expect = "
          "%d\n",
          totalSamples, pSamples, readSamples);
    }
    const int written = std::clamp<int>(readSamples, 0, std::size(In));
    wavWriter.WriteSamples(In, static_cast<unsigned>(written));
  }
  printf("notSame = %d, total = %d\n", notSameSamples, totalSamples);
  LeaveAlive(toolbox);  // Deliberate: never deleted, as in TestVoiceBeautify.
}  // Closes the writer, then the reader.
