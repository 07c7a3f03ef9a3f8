// Calls without buffers, and rates and channels that differ.

#include <gmock/gmock.h>

#include "desktop/codec/codec_material.h"
#include "engine_api/codec/audio_processor.h"
#include "engine_api/codec/codec_format.h"

namespace {

AudioStreamFormat Pcm(int rate, int channels) {
  AudioStreamFormat format = FormatFromRawCodecId(-1);
  format.iSampleRate = rate;
  format.iNumOfChannels = channels;
  return format;
}

// The bytes of one call; as many as there is room for even without a buffer.
uint32_t Process(AudioProcessor* processor, const void* in, uint32_t bytes, void* out,
                 uint32_t room) {
  processor->ProcessData(in, &bytes, out, &room, 0, 0);
  return room;
}

}  // namespace

TEST(AudioProcessorEdges, WithoutOutWhatComesWaits) {
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(Pcm(16000, 1), Pcm(16000, 1), processor);
  EXPECT_EQ(Process(processor, "abcdef", 6, nullptr, 1000), 0U);
  char out[10];
  EXPECT_EQ(Process(processor, nullptr, 1000, out, sizeof out), 6U);
  EXPECT_EQ(std::string(out, 6), "abcdef");
  EXPECT_EQ(Process(processor, "gh", 2, out, sizeof out), 2U);
  AudioProcessor::Release(processor);
}

TEST(AudioProcessorEdges, SaysNothingOfTheRoomWhenItCannotConvert) {
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(Pcm(0, 1), Pcm(16000, 1), processor);
  char out[10];
  EXPECT_EQ(Process(processor, "abcdef", 6, out, sizeof out), 0U);
  AudioProcessor::Release(processor);
}

// Blocks are counted in samples of all channels, the converter counts in sample frames.
TEST(AudioProcessorEdges, KeepsStereoAsItIsAndHalvesItsRate) {
  const Samples voice = Voice(48000, 2, 0.3);
  const auto bytes = static_cast<uint32_t>(voice.size() * sizeof(short));
  Samples out(voice.size());
  AudioProcessor* processor = nullptr;
  AudioProcessor::Create(Pcm(48000, 2), Pcm(48000, 2), processor);
  EXPECT_EQ(Process(processor, voice.data(), bytes, out.data(), bytes), bytes);
  AudioProcessor::Release(processor);
  EXPECT_EQ(out, voice);

  AudioProcessor::Create(Pcm(48000, 2), Pcm(24000, 2), processor);
  EXPECT_EQ(Process(processor, voice.data(), bytes, out.data(), bytes), bytes / 2);
  AudioProcessor::Release(processor);
}
