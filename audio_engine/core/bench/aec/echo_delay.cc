// The echo-delay estimator and the full-band canceller on a far-end and a near-end file, 16 kHz
// mono in frames of 10 ms. Listen for echo that is left, for a near end that pumps or is cut while
// both talk, and for clicks.

#include <cstdint>

#include "bench/aec/routines.h"
#include "engine_api/aec/echo_delay_est.h"
#include "engine_api/aec/webrtc_aec.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/read_block.h"
#include "harness/sample_conversion.h"
#include "harness/stdio_file.h"

using harness::ReadBlock;
using harness::StdioFile;

// Logs the delay that the estimator has found, in ms, once a second.
void TestEchoDelayEst(const char* pFarendFileName, const char* pNearendFileName) {
  StdioFile pFarendFile(pFarendFileName, "rb");
  pFarendFile.Seek(44, SEEK_SET);
  StdioFile pNearendFile(pNearendFileName, "rb");
  pNearendFile.Seek(44, SEEK_SET);
  CEchoDelayEst echoDelayEst(16000, 1);
  uint32_t frameIndex = 1;

  short buf1[160];
  short buf2[160];
  while (ReadBlock(pFarendFile, buf1, 320) && ReadBlock(pNearendFile, buf2, 320)) {
    echoDelayEst.ProcessFar(buf1, 160);
    echoDelayEst.ProcessNear(buf2, 160);
    if (frameIndex % 100 == 0) {
      const int echoDelay = echoDelayEst.GetDelay();
      OutputDebugInfo("TestEchoDelayEst: %d, %d", static_cast<int>(frameIndex), echoDelay);
    }
    ++frameIndex;
  }

  pFarendFile.Close();
  pNearendFile.Close();
}  // Destroys the estimator.

// Cancels the echo with the delay that the estimator has found so far, and logs it in every frame.
void TestEchoDelayEstAndAEC(const char* pFarendFileName, const char* pNearendFileName,
                            const char* pOutFileName) {
  // Deliberate: the near end's header replaces the far end's, and its lengths stay as they are when
  // the output is shorter. Patched, the output would no longer start with the near end's 44 bytes.
  unsigned char header[44] = {};
  StdioFile pFarendFile(pFarendFileName, "rb");
  pFarendFile.Read(header, 1, sizeof header);
  StdioFile pNearendFile(pNearendFileName, "rb");
  pNearendFile.Read(header, 1, sizeof header);
  StdioFile pOutFile(pOutFileName, "wb");
  pOutFile.Write(header, 1, sizeof header);

  void* aec = nullptr;
  WebRtcAec_Create(&aec);
  WebRtcAec_Init(aec, 16000, 16000);
  AecConfig config;
  config.nlpMode = kAecNlpAggressive;
  config.skewMode = 0;
  config.metricsMode = 0;
  config.delay_logging = 0;
  WebRtcAec_set_config(aec, config);
  CEchoDelayEst echoDelayEst(16000, 1);
  const uint32_t tickCount = GetExactTickCount();
  uint32_t frameIndex = 1;

  short farendShortBuf[160];
  short nearendShortBuf[160];
  short outShortBuf[160];
  float farendFloatBuf[160];
  float nearendFloatBuf[160];
  float outFloatBuf[160] = {};
  const float* pNear = nearendFloatBuf;
  float* pOut = outFloatBuf;
  while (ReadBlock(pFarendFile, farendShortBuf, 320) &&
         ReadBlock(pNearendFile, nearendShortBuf, 320)) {
    echoDelayEst.ProcessFar(farendShortBuf, 160);
    echoDelayEst.ProcessNear(nearendShortBuf, 160);
    const int echoDelay = echoDelayEst.GetDelay();
    OutputDebugInfo("TestEchoDelayEstAndAEC: %d, %d", static_cast<int>(frameIndex), echoDelay);
    ++frameIndex;
    ConvertToFloatForWebrtc(farendShortBuf, farendFloatBuf, 160);
    ConvertToFloatForWebrtc(nearendShortBuf, nearendFloatBuf, 160);
    WebRtcAec_BufferFarend(aec, farendFloatBuf, 160);
    // Deliberate: the delay is narrowed to 16 bits. Clamped, one beyond 32767 ms would not arrive
    // as a negative one.
    WebRtcAec_Process(aec, &pNear, 1, &pOut, 160, static_cast<int16_t>(echoDelay), 0);
    ConvertToShortForWebrtc(outFloatBuf, outShortBuf, 160);
    pOutFile.Write(outShortBuf, sizeof outShortBuf, 1);
  }
  OutputDebugInfo("%d", static_cast<int>(GetExactTickCount() - tickCount));

  pFarendFile.Close();
  pNearendFile.Close();
  pOutFile.Close();
  WebRtcAec_Free(aec);
}  // Destroys the estimator.

// Cancels the echo in headerless files with a delay that is given, in ms.
void TestAECProcess(const char* pFarendFileName, const char* pNearendFileName,
                    const char* pOutFileName, int echoDelay) {
  StdioFile pFarendFile(pFarendFileName, "rb");
  StdioFile pNearendFile(pNearendFileName, "rb");
  StdioFile pOutFile(pOutFileName, "wb");
  void* aec = nullptr;
  WebRtcAec_Create(&aec);
  // Deliberate: nothing is configured. The canceller runs with its own defaults.
  WebRtcAec_Init(aec, 16000, 16000);
  uint32_t frameIndex = 1;

  short farendShortBuf[160];
  short nearendShortBuf[160];
  short outShortBuf[160];
  float farendFloatBuf[160];
  float nearendFloatBuf[160];
  float outFloatBuf[160] = {};
  const float* pNear = nearendFloatBuf;
  float* pOut = outFloatBuf;
  while (ReadBlock(pFarendFile, farendShortBuf, 320) &&
         ReadBlock(pNearendFile, nearendShortBuf, 320)) {
    OutputDebugInfo("TestAECProcess: %d, %d", static_cast<int>(frameIndex), echoDelay);
    ++frameIndex;
    ConvertToFloatForWebrtc(farendShortBuf, farendFloatBuf, 160);
    ConvertToFloatForWebrtc(nearendShortBuf, nearendFloatBuf, 160);
    WebRtcAec_BufferFarend(aec, farendFloatBuf, 160);
    // Deliberate: the delay is narrowed to 16 bits: 40000 arrives as -25536, clamped it would not.
    WebRtcAec_Process(aec, &pNear, 1, &pOut, 160, static_cast<int16_t>(echoDelay), 0);
    ConvertToShortForWebrtc(outFloatBuf, outShortBuf, 160);
    pOutFile.Write(outShortBuf, sizeof outShortBuf, 1);
  }

  pFarendFile.Close();
  pNearendFile.Close();
  pOutFile.Close();
  WebRtcAec_Free(aec);
}
