#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine_api/codec/audio_codec.h"

// What the tests of the codecs have in common.

using Samples = std::vector<short>;

// A voice of `seconds`: harmonics of a gliding pitch under moving formants, with pauses. In stereo
// the right channel is softer and later.
Samples Voice(int rate, int channels, double seconds);

// Samples of a frame, of all channels together.
int FrameSamples(const AudioStreamFormat& format);

std::string BytesOf(const Samples& samples);
Samples SamplesOf(const std::string& bytes);

// Signal against difference in dB, over all channels, with `decoded` shifted back by `lag` samples
// per channel.
double SnrDb(const Samples& original, const Samples& decoded, int channels, int lag);

// The shift near `lag` that gives the best SnrDb.
int BestLag(const Samples& original, const Samples& decoded, int channels, int lag);

// The level in dB of each of 16 bands from 200 Hz to 14 kHz, all channels together.
std::vector<double> BandLevels(const Samples& samples, int rate, int channels);

// The codec that the id's format asks for, with the family that codes it; null when not built in.
std::unique_ptr<CAudioCodec> OpenCodec(int rawId, AudioLibraryCodecMode mode);

// Whether the raw id is coded by AAC, which a build may lack.
bool NeedsAac(int rawId);

// One call of Process with `room` bytes of output.
std::string Process(CAudioCodec& codec, const std::string& in, int room = 65536);

// The packets of whole frames of `samples`, one a frame.
std::vector<std::string> Encode(CAudioCodec& encoder, const Samples& samples, int blockFrames);

Samples Decode(CAudioCodec& decoder, const std::vector<std::string>& packets);

// Every raw id that CreateAudioCodec has a family for, and without AAC those that are left.
struct CodecId {
  int rawId;
  ZUAudioCodec family;
};
const std::vector<CodecId>& CodecIds();
