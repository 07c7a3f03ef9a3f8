#include "harness/pcm_readers.h"

#include "engine_api/common/audio_util.h"

bool ReadChunk(FILE* file, short* interleaved, float* interleavedFloat,
               zuwebrtc::ChannelBuffer<float>* buffer) {
  const int frames = buffer->num_frames_;
  const auto samples = static_cast<unsigned>(2 * frames);
  if (file == nullptr || fread(interleaved, sizeof(short), samples, file) < samples) return false;

  zuwebrtc::S16ToFloat(interleaved, samples, interleavedFloat);
  float* const* channels = buffer->channels_.get();
  if (buffer->num_channels_ == 1) {
    MixStereoToMono(interleavedFloat, channels[0], frames);
    return true;
  }
  // Deliberate: two channels whatever num_channels_ says. The input is stereo; a third channel
  // keeps what it held.
  for (int i = 0; i < frames; ++i) {
    channels[0][i] = interleavedFloat[2 * i];
    channels[1][i] = interleavedFloat[2 * i + 1];
  }
  return true;
}

void ReadPCMFromFileToMix(FILE* stream, std::string& block, std::vector<std::string*>& blocks) {
  if (stream == nullptr) return;
  if (fread(block.data(), block.size(), 1, stream) == 1) blocks.push_back(&block);
}
