// A sender that transmits only what its detector calls speech, and a receiver that fills the gaps
// with silence. Listen to the reconstruction for clipped word onsets; the decision track, beside
// it, shows where.

#include <algorithm>
#include <memory>
#include <vector>

#include "bench/codec/routines.h"
#include "bench/codec/whole_frame.h"
#include "engine_api/codec/codec_format.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/voice_detection.h"
#include "harness/read_block.h"

namespace {

using Bytes = std::vector<unsigned char>;

// What the first pass leaves to the second. Frames count from 1; a segment lasts from its start up
// to, and without, its end.
struct SentSpeech {
  Bytes encodeOut;  // All active frames, each with its own header.
  std::vector<int> startActiveFrameId;
  std::vector<int> endActiveFrameId;
  int totalFrames = 1;
};

// The decision track: one frame of a constant per frame of the source.
class DecisionTrack {
 public:
  DecisionTrack(const char* name, int rate, int channels) : m_writer(name, rate, channels) {
    std::fill_n(m_ones, kMarkSamples, short{13000});
    std::fill_n(m_twos, kMarkSamples, short{32000});
  }

  // Deliberate: nothing for a frame that is unknown. The track is then shorter than the source.
  void Write(VADResultKind res, unsigned samples) {
    if (res == vadResultIsActive) WriteMark(m_twos, samples);
    if (res == vadResultIsActiveWithoutVoice) WriteMark(m_ones, samples);
    if (res == vadResultIsPassive) WriteMark(m_zeros, samples);
  }

 private:
  static constexpr unsigned kMarkSamples = 1024;

  void WriteMark(const short* mark, unsigned samples) {
    for (unsigned left = samples; left > 0;) {
      const unsigned count = std::min(left, kMarkSamples);
      m_writer.WriteSamples(mark, count);
      left -= count;
    }
  }

  zuwebrtc::WavWriter m_writer;
  short m_zeros[kMarkSamples] = {};
  short m_ones[kMarkSamples];
  short m_twos[kMarkSamples];
};

SentSpeech Send(zuwebrtc::WavReader& reader, AudioStreamFormat iAudioFormat, int codecId,
                CVoiceDetectionEx& vad, DecisionTrack& track) {
  const auto readSamples =
      static_cast<unsigned>(iAudioFormat.iNumOfChannels * iAudioFormat.iSamplesOfFrame);
  short Buffer[8192];
  unsigned char encodeOutBuf[1024];
  SentSpeech sent;
  bool isPreActive = false;
  int frameId = 1;

  const std::unique_ptr<CAudioCodec> encoder(encoderFromRawCodecId(codecId));
  if (encoder != nullptr) encoder->Init(&iAudioFormat);
  while (harness::ReadBlock(reader, Buffer, readSamples)) {
    // Deliberate: the first half is only heard; the second one decides. With both, a frame would
    // already be sent when speech ends in its first half.
    vad.Detect(Buffer, readSamples / 2);
    const VADResultKind res = vad.Detect(Buffer + readSamples / 2, readSamples / 2);
    const bool isActive = res == vadResultIsActive || res == vadResultIsActiveWithoutVoice;
    if (isActive) {
      int outLen = encoder != nullptr ? static_cast<int>(sizeof encodeOutBuf) : 0;
      if (encoder != nullptr) {
        encoder->Process(reinterpret_cast<const unsigned char*>(Buffer),
                         static_cast<int>(readSamples * sizeof(short)), encodeOutBuf, &outLen);
      }
      sent.encodeOut.insert(sent.encodeOut.end(), encodeOutBuf, encodeOutBuf + outLen);
      if (!isPreActive) sent.startActiveFrameId.push_back(frameId);
    } else if (isPreActive) {
      sent.endActiveFrameId.push_back(frameId);
    }
    ++frameId;
    track.Write(res, readSamples);
    isPreActive = isActive;
  }
  sent.totalFrames = frameId;
  return sent;
}

// Deliberate: encoded frames are paired with active ones by their count alone, and there is one
// frame more than was read. A frame that the encoder held back shifts all that follow.
Bytes Receive(SentSpeech& sent, AudioStreamFormat iAudioFormat, int decoderId) {
  const auto outFrameLen = static_cast<size_t>(iAudioFormat.iSamplesOfFrame) *
                           static_cast<size_t>(iAudioFormat.iNumOfChannels);
  const Bytes emptyFrame(outFrameLen * sizeof(short));
  unsigned char decodeOutBuf[20480];
  Bytes decodeOut;
  size_t offset = 0;
  const size_t totalEncodeOutSize = sent.encodeOut.size();
  const int headerLen = 2;  // Deliberate: for every id. Ids with other headers give no speech.
  const std::vector<int>& starts = sent.startActiveFrameId;
  const std::vector<int>& ends = sent.endActiveFrameId;

  const std::unique_ptr<CAudioCodec> decoder(decoderFromRawCodecId(decoderId));
  if (decoder != nullptr) decoder->Init(&iAudioFormat);
  size_t i = 0;
  for (int f = 1; f <= sent.totalFrames; ++f) {
    // A segment without an end is none: speech that lasts to the end of the file is not played.
    if (i < starts.size() && i < ends.size() && starts[i] <= f && f < ends[i]) {
      const int frameLen =
          bench::WholeFrameLength(sent.encodeOut.data(), totalEncodeOutSize, offset, headerLen);
      if (frameLen == 0 || decoder == nullptr) continue;
      int outLen = sizeof decodeOutBuf;
      decoder->Process(&sent.encodeOut[offset], frameLen, decodeOutBuf, &outLen);
      decodeOut.insert(decodeOut.end(), decodeOutBuf, decodeOutBuf + outLen);
      offset += static_cast<size_t>(frameLen);
    } else {
      // The frame that moves on to the next segment is itself silent.
      if (i + 1 < starts.size() && i + 1 < ends.size() && ends[i] <= f) ++i;
      decodeOut.insert(decodeOut.end(), emptyFrame.begin(), emptyFrame.end());
    }
  }
  return decodeOut;
}

}  // namespace

// Nothing happens, and nothing is written, when the source has another rate or channel count than
// the codec.
void TestVADCodecMosByVADResult(const char* pSrcFileName, const char* pDstFileName,
                                const char* pVadResultFile, int codecId) {
  zuwebrtc::WavReader reader(pSrcFileName);
  const int fs = reader.sample_rate();
  const int ch = reader.num_channels();
  AudioStreamFormat iAudioFormat = FormatFromRawCodecId(codecId);
  if (fs != iAudioFormat.iSampleRate || ch != iAudioFormat.iNumOfChannels) return;

  DecisionTrack track(pVadResultFile, fs, ch);
  CVoiceDetectionEx vad(static_cast<unsigned>(fs), static_cast<unsigned>(ch));
  vad.SetVoiceDetectionMode(voiceDetectionLowLikelihood);
  SentSpeech sent = Send(reader, iAudioFormat, codecId, vad, track);

  int decoderId = codecId;
  if (codecId == 50 || codecId == 51) {
    decoderId = 51;
    iAudioFormat = FormatFromRawCodecId(51);
  }
  const Bytes decodeOut = Receive(sent, iAudioFormat, decoderId);
  zuwebrtc::WavWriter writer(pDstFileName, iAudioFormat.iSampleRate, iAudioFormat.iNumOfChannels);
  writer.WriteSamples(reinterpret_cast<const short*>(decodeOut.data()),
                      static_cast<unsigned>(decodeOut.size() / sizeof(short)));
}
