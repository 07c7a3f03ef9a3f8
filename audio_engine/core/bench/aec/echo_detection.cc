// Residual echo detection over a pair of files, and the recorder of what a canceller gets and
// gives. Nothing to listen for in the first; in the second, for gaps in what was recorded.

#include "engine_api/aec/echo_detection.h"

#include <cstdio>

#include "bench/aec/routines.h"
#include "engine_api/aec/aec_file_writer.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/leave_alive.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::ReadBlock;
using harness::StdioFile;

// Says whether the near end holds echo of the far end.
void TestEchoDetection() {
  const int sample_rate = 16000;
  const int max_delay = 500;
  // Deliberate: the headers are read as samples. Skipped, all blocks would begin 22 samples later.
  StdioFile farFile("C:\\aecfiles\\farend.wav", "rb");
  StdioFile nearFile("C:\\aecfiles\\nearend.wav", "rb");
  void* handle = echo_detection_create(nullptr, sample_rate, max_delay);
  if (handle == nullptr) {
    // Deliberate: both files stay open, here alone.
    farFile.LeaveOpen();
    nearFile.LeaveOpen();
    return;
  }

  int nframe = 0;
  short xbuf[256] = {};
  short dbuf[256] = {};
  while (farFile.Read(xbuf, 2, 256) != 0 && nearFile.Read(dbuf, 2, 256) != 0) {
    ++nframe;
    // Deliberate: 256 samples, also when fewer were read: the tail is that of the block before.
    // With the true count the last block would be shorter.
    echo_detection_process(handle, xbuf, dbuf, 256);
    printf("number of frame: %d\n", nframe);
  }

  const int echo_flag = get_echo_detection_result(handle);
  OutputDebugInfo("residual echo detection: %d", echo_flag);
  echo_detection_free(handle);
  farFile.Close();
  nearFile.Close();
}

// Feeds the recorder a little slower than in real time: 12.5 ms of audio every 15 ms.
void TestRecord() {
  StdioFile fid("F:\\sample\\test.pcm", "rb");
  StdioFile fid2("F:\\sample\\test2.pcm", "rb");
  if (fid.get() == nullptr) {
    puts("Can't Open Input File!");
    return;
  }
  // Deliberate: neither stopped nor destroyed; its thread finishes the files after the routine has
  // returned.
  auto* m_pVoipFileWriter = new CAecFileWriter(16000, 1, "far", "near", "out", "delay", "log", 0);
  harness::LeaveAlive(m_pVoipFileWriter);
  m_pVoipFileWriter->EchoDetectionStart(16000);

  char readBuf[400];
  while (ReadBlock(fid, readBuf, sizeof readBuf)) {
    m_pVoipFileWriter->RecordOutData(readBuf, sizeof readBuf);
    // Deliberate: nobody asks how much was read, so at the end of the second file (part of) the
    // first file's block is recorded as the far end. Asked, the far end would end with its file.
    fid2.Read(readBuf, 1, sizeof readBuf);
    m_pVoipFileWriter->RecordFarendData(readBuf, sizeof readBuf);
    SleepMs(15);
  }

  fid.Close();
  fid2.Close();
}
