// Pushed PCM in the stream format of its module. There is nothing to hear: the samples are prepared
// and not pushed.

#include <string>

#include "bench/mixing/routines.h"
#include "engine_api/mixing/push_pcm_module.h"
#include "harness/leave_alive.h"
#include "harness/stdio_file.h"

using harness::LeaveAlive;
using harness::StdioFile;

// Builds the head of pushed data for 20 ms of stereo at a time.
// Deliberate: nothing is pushed; head and samples are put together and thrown
// away, "out.pcm" stays empty, the input is left open and the module alive.
// With a push the output would hold audio.
void TestPushPcm() {
  const unsigned dstFs = 44100;
  const unsigned dstCh = 2;
  const unsigned streamCount = 1;
  const unsigned size20ms0 = 3528;
  LeaveAlive(IPushPcmModule::CreatePuchPcmModule(dstFs, dstCh, streamCount));
  StdioFile fin("Fs44100_Ch2.pcm", "rb");
  StdioFile fout("out.pcm", "wb");
  unsigned fs_array[] = {44100};
  unsigned ch_array[] = {2};
  unsigned precision_array[] = {2};
  unsigned length_array[] = {size20ms0};

  for (;;) {
    std::string buf0(size20ms0, '\0');
    if (fin.Read(buf0.data(), size20ms0, 1) != 1) break;
    const std::string headerInfo = IPushPcmModule::MakeStreamInfo(
        fs_array, ch_array, precision_array, length_array, streamCount);
    const std::string streamData = headerInfo + buf0;
  }

  fout.Close();
  fin.LeaveOpen();
}
