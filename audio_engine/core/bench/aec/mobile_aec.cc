// The canceller for handheld devices on the bands of an audio buffer, 10 ms at a time. Listen for
// echo that is left, for a dull near end, and at 8 kHz, where only noise is suppressed, for musical
// noise.

#include <cstdint>
#include <cstdio>
#include <optional>

#include "bench/aec/routines.h"
#include "engine_api/aec/aec_mobile.h"
#include "engine_api/aec/audio_buffer.h"
#include "engine_api/platform/log.h"
#include "harness/copy_wav_header.h"
#include "harness/fill_frame.h"
#include "harness/format_name.h"
#include "harness/leave_alive.h"
#include "harness/noizeus_cases.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::FillFrame;
using harness::LeaveAlive;
using harness::ReadBlock;
using harness::StdioFile;
using zuwebrtc::AudioBuffer;
using zuwebrtc::AudioFrame;

// Cancels the echo of a far end, which may end early or be missing. echoDelay is not used.
void TestZUAECProcess(const char* pFarendFileName, const char* pNearendFileName,
                      const char* pOutFileName, int) {
  const int sampleRate = 16000;
  const int samples10ms = 160;
  std::optional<StdioFile> pFarendFile;
  // Deliberate: the far end is read from its first byte. With a header skipped it would be 22
  // samples earlier and would not start with a click.
  if (pFarendFileName != nullptr) pFarendFile.emplace(pFarendFileName, "rb");
  StdioFile pNearendFile(pNearendFileName, "rb");
  StdioFile pOutFile(pOutFileName, "wb");
  // Deliberate: a copy of the near end's header, lengths included; patched, it would be no copy.
  harness::CopyWavHeader(pNearendFile, pOutFile);

  AECMOBILE_ERROR_CODE enErrorcode = AECMOBILE_NO_ERROR;
  void* aecm = AecMobile_Creat(&enErrorcode);
  AecMobile_Init(aecm, sampleRate, sampleRate, sampleRate);
  AecMobile_SetAecNewOn(aecm, false);
  // Deliberate: never released. Each call leaves its three buffers behind.
  auto* captureBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  auto* renderBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  auto* outputBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  for (const AudioBuffer* buffer : {captureBuf, renderBuf, outputBuf}) LeaveAlive(buffer);

  for (uint32_t frameIndex = 1;; ++frameIndex) {
    short farend[samples10ms] = {};
    // A frame that is not whole is replaced by silence, its first samples too.
    if (!pFarendFile || !ReadBlock(*pFarendFile, farend, sizeof farend)) {
      for (short& sample : farend) sample = 0;
    }
    short nearend[samples10ms];
    if (!ReadBlock(pNearendFile, nearend, sizeof nearend)) break;

    AudioFrame frame;
    FillFrame(frame, farend, samples10ms, sampleRate, 1);
    renderBuf->DeinterleaveFrom(&frame);
    AecMobile_BufferFarend(aecm, renderBuf->channels_const()[0], renderBuf->num_frames());
    FillFrame(frame, nearend, samples10ms, sampleRate, 1);
    captureBuf->DeinterleaveFrom(&frame);

    int16_t* alignedFar[2] = {};
    int16_t* alignedNear[2] = {};
    AecMobile_Process_Bands(aecm, captureBuf->split_bands_const(0), captureBuf->num_bands(),
                            static_cast<int16_t>(captureBuf->num_frames_per_band()),
                            outputBuf->split_bands(0), alignedFar, alignedNear, false, true, true);
    int status = 0;
    AecMobile_GetEchoState(aecm, &status);
    OutputDebugInfo("TestZUAECProcess: %d, %d, %d", static_cast<int>(frameIndex), status,
                    AecMobile_getDelay(aecm));

    AudioFrame outFrame;
    FillFrame(outFrame, nearend, samples10ms, sampleRate, 1);
    outputBuf->InterleaveTo(&outFrame, true);
    const int outSamples = outFrame.samples_per_channel_ * outFrame.num_channels_;
    pOutFile.Write(outFrame.data_, static_cast<size_t>(outSamples) * sizeof(short), 1);
  }

  if (pFarendFile) pFarendFile->Close();
  pNearendFile.Close();
  pOutFile.Close();
  AecMobile_Free(aecm);
}

// Suppresses the noise of one headerless stream, 8 kHz mono, with the canceller's own suppressor.
// The streams stay open; one that is null counts as empty.
void TestZUAECNSProcess(FILE* in, FILE* out) {
  const int sampleRate = 8000;
  const int samples10ms = 80;
  AECMOBILE_ERROR_CODE enErrorcode = AECMOBILE_NO_ERROR;
  void* aecm = AecMobile_Creat(&enErrorcode);
  AecMobile_Init(aecm, sampleRate, sampleRate, sampleRate);
  AecMobile_SetAecNewOn(aecm, false);
  // Deliberate: never released. Each call leaves its three buffers behind.
  auto* captureBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  auto* renderBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  auto* outputBuf = new AudioBuffer(samples10ms, 1, samples10ms, 1, samples10ms);
  for (const AudioBuffer* buffer : {captureBuf, renderBuf, outputBuf}) LeaveAlive(buffer);
  uint32_t frameIndex = 1;

  short buffer[samples10ms];
  while (in != nullptr && fread(buffer, sizeof buffer, 1, in) == 1) {
    // Deliberate: one signal is both the far end and the near end. With another far end the
    // canceller would be heard as soon as its flag were on by mistake, and not only then.
    AudioFrame frame;
    FillFrame(frame, buffer, samples10ms, sampleRate, 1);
    renderBuf->DeinterleaveFrom(&frame);
    AecMobile_BufferFarend(aecm, renderBuf->channels_const()[0], renderBuf->num_frames());
    FillFrame(frame, buffer, samples10ms, sampleRate, 1);
    captureBuf->DeinterleaveFrom(&frame);

    int16_t* alignedFar[2] = {};
    int16_t* alignedNear[2] = {};
    AecMobile_Process_Bands(aecm, captureBuf->split_bands_const(0), captureBuf->num_bands(),
                            static_cast<int16_t>(captureBuf->num_frames_per_band()),
                            outputBuf->split_bands(0), alignedFar, alignedNear, false, false, true);
    int status = 0;
    AecMobile_GetEchoState(aecm, &status);
    const int delay = AecMobile_getDelay(aecm);
    // Deliberate: the other routine's name. With its own one, logs of the two could be told apart.
    OutputDebugInfo("TestZUAECProcess: %d, %d, %d", static_cast<int>(frameIndex), status, delay);
    ++frameIndex;

    AudioFrame outFrame;
    FillFrame(outFrame, buffer, samples10ms, sampleRate, 1);
    outputBuf->InterleaveTo(&outFrame, true);
    const int outSamples = outFrame.samples_per_channel_ * outFrame.num_channels_;
    const size_t outBytes = static_cast<size_t>(outSamples) * sizeof(short);
    if (out != nullptr) fwrite(outFrame.data_, outBytes, 1, out);
  }

  AecMobile_Free(aecm);
}

// The whole NOIZEUS corpus, for scoring under the algorithm name "aec".
void TestAECNsNoizeus() {
  for (const char* noise : harness::kNoizeusNoises) {
    for (const int level : harness::kNoizeusLevels) {
      for (int sentence = 1; sentence <= harness::kNoizeusSentences; ++sentence) {
        StdioFile in(harness::FormatName("NOIZEUS/in/%s/%ddB/sp%02d_%s_sn%d.pcm", noise, level,
                                         sentence, noise, level)
                         .c_str(),
                     "rb");
        StdioFile out(
            harness::FormatName("NOIZEUS/out/sp%02d_%s_sn%d_aec.pcm", sentence, noise, level)
                .c_str(),
            "wb");
        TestZUAECNSProcess(in.get(), out.get());
        in.Close();
        out.Close();
      }
    }
  }
}

// One recording.
void TestTemp() {
  StdioFile in("wrpcmin.pcm", "rb");
  StdioFile out("NSout.pcm", "wb");
  TestZUAECNSProcess(in.get(), out.get());
  in.Close();
  out.Close();
}
