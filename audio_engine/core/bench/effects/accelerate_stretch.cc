// Speech made shorter and longer without a change of pitch. Listen for clicks where periods were
// taken out or put in, for a warble in long vowels, and for a jump when the accelerator is
// switched.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/audio_accelerate.h"
#include "engine_api/effects/sound_process.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/copy_wav_header.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::CopyWavHeader;
using harness::ReadBlock;
using harness::StdioFile;

// Shortens a recording, 30 ms at a time.
int AccelerateTest() {
  zuwebrtc::WavReader wavReader("whenold_8000_1.wav");
  const int fs = wavReader.sample_rate();
  const int ch = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter("out.wav", fs, ch);
  const auto length10Ms = static_cast<uint32_t>(fs * ch / 100);
  const uint32_t length30Ms = 3 * length10Ms;

  short inBuf[8192];
  short outBuf[8192] = {};
  while (ReadBlock(wavReader, inBuf, length30Ms)) {
    uint32_t outLen = std::size(outBuf);
    const int ret = AccelerateSoundProcess(static_cast<unsigned>(fs), static_cast<unsigned>(ch),
                                           inBuf, length30Ms, outBuf, &outLen, true);
    if (ret < 0) printf("error in AccelerateSoundProcess, %d\n", ret);
    // Deliberate: also after an error, as many samples as the function says. With a check the
    // output would be shorter, or the same where the function says none.
    wavWriter.WriteSamples(outBuf, std::min<uint32_t>(outLen, std::size(outBuf)));
  }
  return 0;
}  // Closes the writer, then the reader.

// Lengthens the same recording into the same output.
int StretchTest() {
  zuwebrtc::WavReader wavReader("whenold_8000_1.wav");
  const int fs = wavReader.sample_rate();
  const int ch = wavReader.num_channels();
  zuwebrtc::WavWriter wavWriter("out.wav", fs, ch);
  const auto length10Ms = static_cast<uint32_t>(fs * ch / 100);
  const uint32_t length30Ms = 3 * length10Ms;

  short inBuf[8192];
  short outBuf[8192] = {};
  while (ReadBlock(wavReader, inBuf, length30Ms)) {
    uint32_t outLen = std::size(outBuf);
    const int ret = StretchSoundProcess(static_cast<unsigned>(fs), static_cast<unsigned>(ch), inBuf,
                                        length30Ms, outBuf, &outLen);
    // Deliberate: names the other function. With its own name, who looks for this line would not
    // find it.
    if (ret < 0) printf("error in AccelerateSoundProcess, %d\n", ret);
    wavWriter.WriteSamples(outBuf, std::min<uint32_t>(outLen, std::size(outBuf)));
  }
  return 0;
}  // Closes the writer, then the reader.

// Switches the accelerator on and off over a 44.1 kHz stereo stream, and logs how long that took.
void TestAudioAccelerate() {
  const char* filein = "F:\\44100_2_new1.wav";
  const char* fileout = "F:\\44100_2_new1_out.wav";
  StdioFile fp1(filein, "rb");
  if (fp1.get() == nullptr) {
    puts("fail to open file!");
    return;
  }
  StdioFile fp2(fileout, "wb");
  if (fp2.get() == nullptr) {
    puts("fail to open file!");
    // Deliberate: the input stays open. Closed, this way out would leave nothing behind.
    fp1.LeaveOpen();
    return;
  }
  CopyWavHeader(fp1, fp2);

  IAudioAccelerate* acc = CreateAudioAccelerate();
  acc->SetEnabled(false);
  acc->SetAccelerateRate(25.0);
  const int blockSize = 4096;
  const int samplerate = 44100;
  const int channel = 2;
  // Deliberate: 5 s, whatever it is called. With ten the switching would come half as often.
  const int tenSecSampleCount = 220500;
  const uint32_t startTick = GetExactTickCount();
  bool needProcess = false;
  int countsample = 0;

  char buf[blockSize];
  while (ReadBlock(fp1, buf, blockSize)) {
    countsample += 1024;
    const int temp = countsample / tenSecSampleCount;
    if (temp % 2 == 1 && !needProcess) {
      OutputDebugInfo("TestAudioAccelerate1 enable: %d, %d", temp, countsample);
      acc->SetEnabled(true);
      needProcess = true;
    } else if (temp % 2 == 0 && needProcess) {
      OutputDebugInfo("TestAudioAccelerate disable: %d, %d", temp, countsample);
      acc->SetEnabled(false);
      needProcess = false;
    }
    const int res = acc->Process(buf, 1024, samplerate, channel, 16);
    // No more than there is room for, whatever the accelerator says.
    fp2.Write(buf, 1, static_cast<size_t>(std::clamp(res, 0, blockSize / 4)) * 4);
  }

  OutputDebugInfo("TestAudioAccelerate: %d", static_cast<int>(GetExactTickCount() - startTick));
  acc->Destroy();
  fp2.Close();
  fp1.Close();
}
