// Voice activity detection over recorded speech. Listen for clipped word onsets and ends in what
// passes the gate; look at the marker tracks beside the recording.

#include "engine_api/enhancement/vad.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <vector>

#include "bench/enhancement/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/enhancement/voice_detection.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::ReadBlock;
using harness::StdioFile;

namespace {

constexpr short kSpeechMarker = 30000;

bool IsSoundActive(VADResultKind kind) {
  return kind == vadResultIsActive || kind == vadResultIsActiveWithoutVoice;
}

// The marker of position `p` by hand-marked pairs of start and length, in ascending order and ended
// by a start of -1: of pairs that overlap the last one started decides.
// Deliberate: the end is inclusive, so that a segment marks one sample more than its length.
short ReferenceMarker(const int* speechSegment, int p) {
  const int* decides = nullptr;
  for (const int* pair = speechSegment; pair[0] != -1 && pair[0] <= p; pair += 2) decides = pair;
  if (decides == nullptr) return 0;
  return int64_t{p} - decides[0] <= decides[1] ? kSpeechMarker : short{0};
}

}  // namespace

// Gates 16 kHz mono speech: what is no sound becomes silence, and a second file says where.
// Deliberate: the header is copied as it stands, and the frames are 160 samples of 16 kHz mono,
// whatever it says. Its sizes are those of the source also where a part-frame is dropped.
void TestVADProcess(const char* pSrcFileName, const char* pDstFileName,
                    const char* pResultFileName) {
  StdioFile source(pSrcFileName, "rb");
  if (source.get() == nullptr) {
    puts("Open Source File Error..");
    return;
  }
  StdioFile result(pResultFileName, "wb");
  char header[44];
  const size_t headerBytes = source.Read(header, 1, sizeof header);
  result.Write(header, 1, headerBytes);
  StdioFile destination(pDstFileName, "wb");
  destination.Write(header, 1, headerBytes);

  auto detector = std::make_unique<CVoiceDetectionEx>(16000, 1);
  detector->SetVoiceDetectionMode(voiceDetectionVeryLowLikelihood);
  // Deliberate: the second detector is never fed. Without it nothing would exercise its life cycle.
  void* vad = nullptr;
  WebRtcVad_Create(&vad);
  WebRtcVad_Init(vad);
  WebRtcVad_set_mode(vad, 2);

  short buf[160];
  while (ReadBlock(source, buf, sizeof buf)) {
    if (IsSoundActive(detector->Detect(buf, 160))) {
      destination.Write(buf, sizeof buf, 1);
      std::fill_n(buf, std::size(buf), kSpeechMarker);
    } else {
      std::fill_n(buf, std::size(buf), short{0});
      destination.Write(buf, sizeof buf, 1);
    }
    result.Write(buf, sizeof buf, 1);
  }

  detector.reset();
  source.Close();
  destination.Close();
  result.Close();
  WebRtcVad_Free(vad);
}

// Puts a recording, the detector's markers and, where segments are given, the markers by hand
// beside each other as the channels of one file. `shift`: so many samples are left out at the
// start.
void TestVADProcessRefined(const char* in, const char* out, int* speechSegment, int shift) {
  zuwebrtc::WavReader reader(in);
  if (reader.num_channels() != 1) abort();
  const int fs = reader.sample_rate();
  auto detector = std::make_unique<CVoiceDetectionEx>(static_cast<unsigned>(fs), 1U);
  detector->SetVoiceDetectionMode(voiceDetectionVeryLowLikelihood);
  const int outCh = speechSegment != nullptr ? 3 : 2;
  zuwebrtc::WavWriter writer(out, fs, outCh);
  const int samplePerFrame = fs / 100;
  const auto frameSamples = static_cast<unsigned>(samplePerFrame);
  const auto channels = static_cast<size_t>(outCh);
  std::vector<short> buf(frameSamples * channels);

  short discarded = 0;
  for (int i = 0; i < shift; ++i) {
    if (reader.ReadSamples(1, &discarded) == 0) break;
  }
  // Deliberate: positions count from 0 after the shift, so that the segments mark what is written.
  int curPos = 0;
  while (ReadBlock(reader, std::span(buf), frameSamples)) {
    const VADResultKind kind = detector->Detect(buf.data(), frameSamples);
    const short marker = IsSoundActive(kind) ? kSpeechMarker : short{0};
    // From the last sample down, so that none is overwritten before it is moved.
    for (int i = samplePerFrame - 1; i >= 0; --i) {
      short* const slot = &buf[static_cast<size_t>(i) * channels];
      slot[0] = buf[static_cast<size_t>(i)];
      slot[1] = marker;
      if (outCh == 3) slot[2] = ReferenceMarker(speechSegment, curPos + i);
    }
    writer.WriteSamples(buf.data(), frameSamples * static_cast<unsigned>(outCh));
    curPos += samplePerFrame;
  }

  detector.reset();
}  // Closes the writer, then the reader.

// Keeps what the detector calls speech, and writes a track of three levels.
// Deliberate: a frame of which the detector knows nothing is written to neither file. As silence,
// it would look like a decision.
void TestVadResult() {
  zuwebrtc::WavReader reader("swb_ref_16kHz.wav");
  const int fs = reader.sample_rate();
  const int ch = reader.num_channels();
  const auto frame = static_cast<unsigned>(fs / 100 * ch);
  zuwebrtc::WavWriter writer_out("vad_out.wav", fs, ch);
  zuwebrtc::WavWriter vad_out("vad_result.wav", fs, ch);
  CVoiceDetectionEx vad(static_cast<unsigned>(fs), static_cast<unsigned>(ch));
  vad.SetVoiceDetectionMode(voiceDetectionLowLikelihood);

  short data[8192];
  short level[8192];
  while (ReadBlock(reader, data, frame)) {
    switch (vad.Detect(data, frame)) {
      case vadResultIsActive:
        writer_out.WriteSamples(data, frame);
        std::fill_n(level, frame, short{32000});
        vad_out.WriteSamples(level, frame);
        break;
      case vadResultIsActiveWithoutVoice:
        std::fill_n(level, frame, short{0});
        writer_out.WriteSamples(level, frame);
        std::fill_n(level, frame, short{12767});
        vad_out.WriteSamples(level, frame);
        break;
      case vadResultIsPassive:
        std::fill_n(level, frame, short{0});
        writer_out.WriteSamples(level, frame);
        vad_out.WriteSamples(level, frame);
        break;
      default:
        break;
    }
  }
}
