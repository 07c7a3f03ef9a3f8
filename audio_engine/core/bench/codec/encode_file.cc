// One codec over a whole WAVE file, into a file of encoded frames. The file's own rate and channel
// count are not looked at: its samples go to the codec as they are.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bench/codec/routines.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/log.h"
#include "harness/stdio_file.h"

namespace {

std::vector<unsigned char> ReadAllSamples(zuwebrtc::WavReader& reader) {
  const unsigned totalSamples = reader.num_samples();
  std::vector<unsigned char> wavData(totalSamples * sizeof(short));
  reader.ReadSamples(totalSamples, reinterpret_cast<short*>(wavData.data()));
  return wavData;
}

// Encodes wavData frame by frame, the last one filled up with silence. Each encoded frame has its
// length in 4 bytes ahead of it when addExtraHeader asks for that.
std::string EncodeFrames(CAudioCodec& encoder, const AudioStreamFormat& format,
                         const std::vector<unsigned char>& wavData, bool addExtraHeader) {
  const size_t frameLen =
      static_cast<size_t>(format.iSamplesOfFrame) * static_cast<size_t>(format.iNumOfChannels);
  const size_t frameBytes = frameLen * sizeof(short);
  std::string encodedData;
  if (frameBytes == 0) return encodedData;

  std::vector<unsigned char> wavFrameData(frameBytes);
  std::vector<unsigned char> outEncodedFrameData(frameBytes);
  for (size_t offset = 0; offset < wavData.size(); offset += frameBytes) {
    const size_t bytes = std::min(frameBytes, wavData.size() - offset);
    const auto rest = std::copy_n(wavData.data() + offset, bytes, wavFrameData.data());
    std::fill(rest, wavFrameData.data() + frameBytes, static_cast<unsigned char>(0));
    int outLen = static_cast<int>(frameBytes);
    encoder.Process(wavFrameData.data(), static_cast<int>(frameBytes), outEncodedFrameData.data(),
                    &outLen);
    if (outLen == 0) continue;
    if (addExtraHeader) encodedData.append(reinterpret_cast<const char*>(&outLen), sizeof outLen);
    encodedData.append(reinterpret_cast<const char*>(outEncodedFrameData.data()),
                       static_cast<size_t>(outLen));
  }
  return encodedData;
}

void WriteAll(const char* name, const std::string& bytes) {
  harness::StdioFile file(name, "wb");
  file.Write(bytes.data(), 1, bytes.size());
}

}  // namespace

// Writes an empty file for an id without a codec.
void TestZUEncode(const char* wavInFileName, const char* encodedFileName, int codecId,
                  bool addExtraHeader) {
  zuwebrtc::WavReader reader(wavInFileName);
  const std::vector<unsigned char> wavData = ReadAllSamples(reader);
  AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);

  const uint32_t startTime = GetExactTickCount();
  std::string encodedData;
  std::unique_ptr<CAudioCodec> encoder(encoderFromRawCodecId(codecId));
  if (encoder != nullptr) {
    encoder->Init(&iAudioFormat);
    encodedData = EncodeFrames(*encoder, iAudioFormat, wavData, addExtraHeader);
  }
  encoder.reset();
  OutputDebugInfo("encode elapse time: %d.", static_cast<int>(GetExactTickCount() - startTime));

  WriteAll(encodedFileName, encodedData);
}

// Deliberate: the bit rate and the rate are taken and not used, those of the id count. Otherwise
// the case files of two bit rates would no longer hold the same stream.
void newTestZUEncode(const char* wavInFileName, const char* encodedFileName, int codecId, int, int,
                     bool addExtraHeader) {
  zuwebrtc::WavReader reader(wavInFileName);
  const std::vector<unsigned char> wavData = ReadAllSamples(reader);
  AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);

  std::string encodedData;
  std::unique_ptr<CAudioCodec> encoder(encoderFromRawCodecId(codecId));
  if (encoder != nullptr) {
    // Deliberate: "silk", whatever the codec. Another text would be another line in the log.
    OutputDebugInfo("Tavik Create silk encoder success %d.", encoder->Init(&iAudioFormat));
    encodedData = EncodeFrames(*encoder, iAudioFormat, wavData, addExtraHeader);
  }
  encoder.reset();

  WriteAll(encodedFileName, encodedData);
}
