// Reference and coded files for an outside scoring tool: what a codec makes of a recording, beside
// the recording itself at the same rate.

#include <string>

#include "bench/codec/routines.h"
#include "bench/effects/routines.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/format_name.h"

// Encodes, decodes and resamples to 16 kHz mono. The encoded and the decoded file stay beside the
// result.
void TestZUCodecNew(const char* wavInFileName, const char* wavOutFileName, int codecId) {
  const uint32_t startTime = GetExactTickCount();
  const std::string encodedFileName = std::string(wavOutFileName) + ".enc";
  TestZUEncode(wavInFileName, encodedFileName.c_str(), codecId, false);
  const uint32_t elapseTimeEncode = GetExactTickCount() - startTime;

  const std::string decodedFileName = std::string(wavOutFileName) + ".dec.wav";
  // Deliberate: what 50 encodes at 16 kHz, 51 decodes at 48 kHz. With 50 the decoded file would
  // hold no more than 16 kHz.
  const int id = codecId == 50 || codecId == 51 ? 51 : codecId;
  TestZUDecode(encodedFileName.c_str(), decodedFileName.c_str(), id, false);

  const int outFS = 16000;
  const int outChannels = 1;
  TestAudioResamplerEx(decodedFileName.c_str(), wavOutFileName, outFS, outChannels);
  OutputDebugInfo("total elapse time:%d %d.", static_cast<int>(elapseTimeEncode),
                  static_cast<int>(GetExactTickCount() - startTime));
}

// Makes one case of a comparison: all files are named after the codec's rate and channel count and
// the bit rate.
// Deliberate: the bit rate goes into the names alone, so that two of them give two sets of files
// with the same stream; wavOutFileName goes nowhere.
void calAACMos(char* wavInFileName, char*, int codecId, int bitRate, int sRate) {
  const uint32_t startTime = GetExactTickCount();
  const std::string dirName;  // Deliberate: empty, the place for a folder. The files lie here.
  const AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);
  const int targetFs = iAudioFormat.iSampleRate;
  const int targetChannels = iAudioFormat.iNumOfChannels;

  const std::string tmpInFile =
      harness::FormatName("%s%d_%d_%d.res.wav", dirName.c_str(), targetFs, targetChannels, bitRate);
  TestAudioResamplerEx(wavInFileName, tmpInFile.c_str(), targetFs, targetChannels);
  // Deliberate: made from the resampled input, not from the input. That way it has gone through the
  // same filter as what the codec gets.
  const std::string refFileName =
      harness::FormatName("%s%d_%d_%d.ref.wav", dirName.c_str(), targetFs, targetChannels, bitRate);
  TestAudioResamplerEx(tmpInFile.c_str(), refFileName.c_str(), targetFs, 1);

  const std::string encodedFileName =
      harness::FormatName("%s%d_%d_%d.enc.wav", dirName.c_str(), targetFs, targetChannels, bitRate);
  newTestZUEncode(tmpInFile.c_str(), encodedFileName.c_str(), codecId, bitRate, sRate, false);
  const uint32_t elapseTimeEncode = GetExactTickCount() - startTime;

  const std::string decodedFileName =
      harness::FormatName("%s%d_%d_%d.dec.wav", dirName.c_str(), targetFs, targetChannels, bitRate);
  if (codecId >= 50 && codecId < 52) {
    TestZUDecode(encodedFileName.c_str(), decodedFileName.c_str(), 51, false);
  } else {
    newTestZUDecode(encodedFileName.c_str(), decodedFileName.c_str(), codecId, sRate, false);
  }
  OutputDebugInfo("total elapse time:%d %d.", static_cast<int>(elapseTimeEncode),
                  static_cast<int>(GetExactTickCount() - startTime));
}
