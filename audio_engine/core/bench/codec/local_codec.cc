// The codecs for local files, over headerless samples and WAVE files. Each test has its own layout
// of the encoded file, and none reads another's except where it says so.

#include "engine_api/codec/local_codec.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "bench/codec/routines.h"
#include "engine_api/common/wav_file_writer.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

namespace {

constexpr size_t kPacketBytes = 65536;  // More than the 16-bit length of a packet can say.

}  // namespace

// Encodes "audio_test.pcm" into packets, each after its length in 2 bytes, and decodes them again.
void TestAudioEncode() {
  const AudioLocalCodec::AudioCodecType audioCodecType = AudioLocalCodec::AAC_ELD_CODEC;
  harness::StdioFile in("audio_test.pcm", "rb");
  harness::StdioFile enc("out.enc", "wb");
  if (in.get() == nullptr) {
    puts("Can't Open Input File!");
    return;  // Deliberate: "out.enc" stays, empty.
  }

  AudioLocalCodec::IAudioEncoder* encoder = AudioLocalCodec::CreateAudioEncoder(audioCodecType);
  if (encoder != nullptr) encoder->Init();
  const int readBytes = encoder != nullptr ? encoder->GetEncoderBytes() : 0;
  char readBuf[8192];
  std::string outData;
  while (harness::ReadBlock(in, readBuf, static_cast<size_t>(readBytes))) {
    encoder->Encode(readBuf, readBytes, outData);
    // Deliberate: 16 bits of the length, and then all of the data. A packet of 65536 bytes is left
    // out, and a longer one puts a reader out of step.
    const auto packetSize = static_cast<uint16_t>(outData.size());
    if (packetSize == 0) continue;
    enc.Write(&packetSize, sizeof packetSize, 1);
    enc.Write(outData.data(), 1, outData.size());
  }
  if (encoder != nullptr) encoder->Destroy();
  in.Close();
  enc.Close();

  harness::StdioFile packets("out.enc", "rb");
  harness::StdioFile dec("dec.pcm", "wb");
  AudioLocalCodec::IAudioDecoder* decoder = AudioLocalCodec::CreateAudioDecoder(audioCodecType);
  if (decoder != nullptr) decoder->Init();
  char packet[kPacketBytes];
  std::string outPcm;
  uint16_t packetSize = 0;
  while (decoder != nullptr && harness::ReadBlock(packets, &packetSize, sizeof packetSize) &&
         harness::ReadBlock(packets, packet, packetSize)) {
    decoder->Decode(packet, packetSize, outPcm);
    // Deliberate: 16 bits of the length here too. 65536 bytes and more lose what is above.
    const auto pcmSize = static_cast<uint16_t>(outPcm.size());
    if (pcmSize != 0) dec.Write(outPcm.data(), 1, pcmSize);
  }
  if (decoder != nullptr) decoder->Destroy();
}

// Encodes a WAVE file into frame records: 13 bytes of header each, little-endian, and the frame.
void TestEncodeFile(char* pSrcFileName, char* pDstFileName) {
  // Deliberate: one counter for the life of the program. A second file goes on where the first
  // has stopped.
  static uint32_t frameIndex = 0;
  harness::StdioFile src(pSrcFileName, "rb");
  harness::StdioFile dst(pDstFileName, "wb");
  WavHeader header = {};
  if (!harness::ReadBlock(src, &header, sizeof header)) header = {};

  uint8_t codecType = 0;
  AudioLocalCodec::IAudioEncoder* encoder = nullptr;
  if (header.sampleRate == 44100 && header.channels == 2) {
    codecType = 1;
    encoder = AudioLocalCodec::CreateAudioEncoder(AudioLocalCodec::AAC_PLUS_CODEC);
  } else if (header.sampleRate == 16000 && header.channels == 1) {
    codecType = 2;
    encoder = AudioLocalCodec::CreateAudioEncoder(AudioLocalCodec::SILK_CODEC);
  }
  if (encoder == nullptr) return;

  encoder->Init();
  const int frameSize = std::max(encoder->GetEncoderBytes(), 0);
  auto pBuf = std::make_unique<char[]>(static_cast<size_t>(frameSize));
  while (harness::ReadBlock(src, pBuf.get(), static_cast<size_t>(frameSize))) {
    std::string encFrame;
    encoder->Encode(pBuf.get(), frameSize, encFrame);
    ++frameIndex;
    const uint32_t timestamp = 0;
    const uint8_t ssrc = 0;
    const uint8_t keyFrame = 1;
    // Deliberate: a record even for a frame of nothing. Without it the counter would tell another
    // number of frames than the input has.
    const auto encFrameSize = static_cast<uint16_t>(encFrame.size());
    dst.Write(&timestamp, sizeof timestamp, 1);
    dst.Write(&ssrc, sizeof ssrc, 1);
    dst.Write(&frameIndex, sizeof frameIndex, 1);
    dst.Write(&codecType, sizeof codecType, 1);
    dst.Write(&keyFrame, sizeof keyFrame, 1);
    dst.Write(&encFrameSize, sizeof encFrameSize, 1);
    dst.Write(encFrame.data(), 1, encFrameSize);
  }
  pBuf.reset();
  encoder->Destroy();
}

// Decodes packets, each after its length in 2 bytes, as TestAudioEncode writes them, to headerless
// samples.
// Deliberate: not the frame records of TestEncodeFile. Of those, the first bytes would be taken for
// a length of 0.
void TestDecodeFile(char* pSrcFileName, char* pDstFileName, AudioLocalCodec::AudioCodecType type) {
  harness::StdioFile src(pSrcFileName, "rb");
  harness::StdioFile dst(pDstFileName, "wb");
  AudioLocalCodec::IAudioDecoder* decoder = AudioLocalCodec::CreateAudioDecoder(type);
  if (decoder == nullptr) return;
  decoder->Init();

  char buf[kPacketBytes];
  uint16_t encFrameSize = 0;
  while (harness::ReadBlock(src, &encFrameSize, sizeof encFrameSize) &&
         harness::ReadBlock(src, buf, encFrameSize)) {
    std::string outData;
    decoder->Decode(buf, encFrameSize, outData);
    dst.Write(outData.data(), 1, outData.size());
  }
  decoder->Destroy();
}
