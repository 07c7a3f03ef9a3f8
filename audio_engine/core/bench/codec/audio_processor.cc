// The engine's converter between stream formats: packed speech into samples, music into packets.

#include "engine_api/codec/audio_processor.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include "bench/codec/routines.h"
#include "engine_api/codec/net_codec_stream_format.h"
#include "engine_api/codec/two_byte_header.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/platform/paths.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

// Decodes the packer's frames of speech into 16 kHz mono, headerless.
void TestSilkPackerOut() {
  harness::StdioFile fid("packer.out", "rb");
  harness::StdioFile fout("packer.pcm", "wb");
  const ZUAudio::NetCodecStreamFormat streamFormatInfo;
  const AudioStreamFormat inputFormat = streamFormatInfo.iNetSilk16KFormat.iAudioFormat;
  AudioStreamFormat outputFormat = streamFormatInfo.iNetPcmFormat.iAudioFormat;
  outputFormat.iSampleRate = 16000;
  outputFormat.iNumOfChannels = 1;
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(inputFormat, outputFormat, processor);

  unsigned char buffer[65536];  // One packed frame, however long it says it is.
  unsigned char outPcm[65535];
  for (;;) {
    uint32_t outSize = sizeof outPcm;
    uint16_t header = 0;
    if (!harness::ReadBlock(fid, &header, sizeof header)) break;
    fid.Seek(-2, SEEK_CUR);  // The header goes to the processor with its frame.
    const auto frameSize = static_cast<uint16_t>(ParseTwoByteHeader(header));
    uint32_t frameLen = frameSize;
    if (!harness::ReadBlock(fid, buffer, frameSize)) break;
    processor->ProcessData(buffer, &frameLen, outPcm, &outSize, 0, 0);
    fout.Write(outPcm, 1, outSize);
  }

  // Deliberate: neither file is closed and the processor lives on. The samples are complete when
  // the program has ended, not when this has returned.
  fid.LeaveOpen();
  fout.LeaveOpen();
}

// Encodes a 44.1 kHz stereo recording into a plain stream. 4096 samples at a time, of both channels
// together: half of what one packet of two frames takes.
void TestZUAudioProcessor() {
  const std::string inputFileName = GetIosDocPath() + "player.wav";
  const std::string outputFileName = GetIosDocPath() + "player.aac";
  zuwebrtc::WavReader reader(inputFileName);
  harness::StdioFile fout(outputFileName.c_str(), "wb");
  const ZUAudio::NetCodecStreamFormat streamFormatInfo;
  AudioStreamFormat inputFormat = streamFormatInfo.iNetPcmFormat.iAudioFormat;
  inputFormat.iSampleRate = 44100;
  inputFormat.iNumOfChannels = 2;
  const AudioStreamFormat outputFormat = streamFormatInfo.iNetAACPlusFormat.iAudioFormat;
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(inputFormat, outputFormat, processor);

  // Deliberate: not times the channels. With them each pass would hand over twice as much.
  const auto readSamples =
      static_cast<int16_t>(outputFormat.iSamplesOfFrame * outputFormat.iNumOfFramesInPacket);
  short In[8192];
  short Out[32768];
  while (harness::ReadBlock(reader, In, static_cast<unsigned>(readSamples))) {
    uint32_t inLen = static_cast<uint32_t>(readSamples) * sizeof(short);
    uint32_t outLen = sizeof Out;
    processor->ProcessData(In, &inLen, Out, &outLen, 0, 0);
    fout.Write(Out, 1, outLen);
  }

  fout.Close();
  AudioProcessor::Release(processor);
  puts("Encode End......");
}
