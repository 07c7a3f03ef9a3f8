// One codec over a whole file of encoded frames, into a WAVE file. The stream is read up to the
// first frame that is none; what was decoded until then is written.

#include <memory>
#include <string>
#include <vector>

#include "bench/codec/decode_frames.h"
#include "bench/codec/routines.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/common/wav_file_writer.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/stdio_file.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes ReadAll(const char* name) {
  harness::StdioFile file(name, "rb");
  Bytes bytes(static_cast<size_t>(file.Size()));
  bytes.resize(file.Read(bytes.data(), 1, bytes.size()));
  return bytes;
}

void WriteWav(const char* name, const AudioStreamFormat& format, const Bytes& decodedPcmData) {
  CWavFileWriter writer(format.iSampleRate, format.iNumOfChannels, 16, name);
  writer.Write(decodedPcmData.data(), static_cast<int>(decodedPcmData.size()));
}

}  // namespace

// Writes a WAVE file without samples for an id without a codec.
void TestZUDecode(const char* encodedFileName, const char* decodedWavFileName, int codecId,
                  bool extraHeader) {
  Bytes encodedToTalData = ReadAll(encodedFileName);
  AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);
  // Deliberate: 55 and 1, where newTestZUDecode has 46 and 1. A plain stream of 46 comes out empty
  // here, one of 55 there; with one rule for both, neither would.
  int headerLen = codecId == 55 || codecId == 1 ? 7 : 2;
  if (extraHeader) headerLen = 4;

  const uint32_t startTime = GetExactTickCount();
  Bytes decodedPcmData;
  std::unique_ptr<CAudioCodec> decoder(decoderFromRawCodecId(codecId));
  if (decoder != nullptr) {
    decoder->Init(&iAudioFormat);
    decodedPcmData = bench::DecodeFrames(*decoder, iAudioFormat, encodedToTalData, headerLen);
  }
  decoder.reset();
  OutputDebugInfo("decode elapse time: %d.", static_cast<int>(GetExactTickCount() - startTime));

  WriteWav(decodedWavFileName, iAudioFormat, decodedPcmData);
}

// Deliberate: the rate is taken and not used, that of the id counts. With another one the samples
// would play at the wrong speed.
void newTestZUDecode(const char* encodedFileName, const char* decodedWavFileName, int codecId, int,
                     bool extraHeader) {
  Bytes encodedToTalData = ReadAll(encodedFileName);
  AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);
  // Deliberate: 46 and 1, where TestZUDecode has 55 and 1.
  int headerLen = codecId == 46 || codecId == 1 ? 7 : 2;
  if (extraHeader) headerLen = 4;

  Bytes decodedPcmData;
  std::unique_ptr<CAudioCodec> decoder(decoderFromRawCodecId(codecId));
  if (decoder != nullptr) {
    OutputDebugInfo("Tavik call aac decoder Init %d", decoder->Init(&iAudioFormat));
    decodedPcmData = bench::DecodeFrames(*decoder, iAudioFormat, encodedToTalData, headerLen);
  }
  decoder.reset();

  WriteWav(decodedWavFileName, iAudioFormat, decodedPcmData);
}
