#include "desktop/codec/codec_material.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "engine_api/codec/codec_format.h"

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

bool IsAac(ZUAudioCodec family) { return family != kAudioCodecSilk && family != kAudioCodecOPUS; }

// How strongly formants around 600, 1400 and 2600 Hz, which move, let a frequency through.
double Formants(double hz, double seconds) {
  const double move = 0.2 * std::sin(kTurn * 0.7 * seconds);
  double gain = 0;
  for (const double centre : {600.0, 1400.0, 2600.0}) {
    const double off = (hz - centre * (1 + move)) / (0.15 * centre + 80);
    gain += 300 / centre / (1 + off * off);
  }
  return gain;
}

// The strength of one band, by correlation with a sine at each of its centres (Goertzel).
double PowerAt(const Samples& samples, double hz, int rate, int channels) {
  const double twoCos = 2 * std::cos(kTurn * hz / rate);
  double power = 0;
  constexpr size_t kBlock = 512;
  const auto step = static_cast<size_t>(channels);
  const size_t frames = samples.size() / step;
  for (size_t channel = 0; channel < step; ++channel) {
    for (size_t start = 0; start + kBlock <= frames; start += kBlock) {
      double one = 0;
      double two = 0;
      for (size_t i = start; i < start + kBlock; ++i) {
        const double now = samples[i * step + channel] + twoCos * one - two;
        two = one;
        one = now;
      }
      power += one * one + two * two - twoCos * one * two;
    }
  }
  return power;
}

}  // namespace

Samples Voice(int rate, int channels, double seconds) {
  const auto frames = static_cast<int>(rate * seconds);
  Samples out;
  out.reserve(static_cast<size_t>(frames) * static_cast<size_t>(channels));
  double phase = 0;
  std::vector<double> mono;
  std::vector<double> gains(40);
  for (int i = 0; i < frames; ++i) {
    const double t = static_cast<double>(i) / rate;
    const double pitch = 140 + 30 * std::sin(kTurn * 0.5 * t);
    phase = std::fmod(phase + kTurn * pitch / rate, kTurn);
    const double syllable = std::max(0.0, std::sin(kTurn * 1.5 * t)) * 3000;
    double value = 0;
    for (size_t k = 1; k < gains.size(); ++k) {
      const double harmonic = static_cast<double>(k);
      if (i % 64 == 0) gains[k] = Formants(harmonic * pitch, t);
      if (harmonic * pitch < rate * 0.45) value += gains[k] * std::sin(harmonic * phase);
    }
    mono.push_back(syllable * value);
    const size_t late = static_cast<size_t>(std::max(0, i - rate / 2000));
    for (int c = 0; c < channels; ++c) {
      const double sample = c == 0 ? mono.back() : 0.7 * mono[late];
      out.push_back(static_cast<short>(std::lrint(std::clamp(sample, -32000.0, 32000.0))));
    }
  }
  return out;
}

int FrameSamples(const AudioStreamFormat& format) {
  return format.iSamplesOfFrame * format.iNumOfChannels;
}

std::string BytesOf(const Samples& samples) {
  return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(short)};
}

Samples SamplesOf(const std::string& bytes) {
  Samples samples(bytes.size() / sizeof(short));
  memcpy(samples.data(), bytes.data(), samples.size() * sizeof(short));
  return samples;
}

double SnrDb(const Samples& original, const Samples& decoded, int channels, int lag) {
  const size_t shift = static_cast<size_t>(lag) * static_cast<size_t>(channels);
  double signal = 0;
  double difference = 1e-9;
  for (size_t i = shift; i < decoded.size() && i - shift < original.size(); ++i) {
    const double sent = original[i - shift];
    signal += sent * sent;
    difference += (decoded[i] - sent) * (decoded[i] - sent);
  }
  return 10 * std::log10(signal / difference);
}

int BestLag(const Samples& original, const Samples& decoded, int channels, int lag) {
  constexpr int kAround = 40;
  int best = lag;
  double most = -1000;
  for (int i = std::max(0, lag - kAround); i <= lag + kAround; ++i) {
    const double snr = SnrDb(original, decoded, channels, i);
    if (snr > most) best = i;
    most = std::max(most, snr);
  }
  return best;
}

std::vector<double> BandLevels(const Samples& samples, int rate, int channels) {
  constexpr int kBands = 16;
  std::vector<double> levels;
  for (int band = 0; band < kBands; ++band) {
    double power = 1e-9;
    for (int part = 0; part < 8; ++part) {
      const double place = (band + (part + 0.5) / 8) / kBands;
      power += PowerAt(samples, 200 * std::pow(70.0, place), rate, channels);
    }
    levels.push_back(10 * std::log10(power));
  }
  return levels;
}

std::unique_ptr<CAudioCodec> OpenCodec(int rawId, AudioLibraryCodecMode mode) {
  const auto& ids = CodecIds();
  const auto row =
      std::find_if(ids.begin(), ids.end(), [&](auto& id) { return id.rawId == rawId; });
  if (row == ids.end()) return nullptr;
  std::unique_ptr<CAudioCodec> codec(CreateAudioCodec(row->family, mode));
  AudioStreamFormat format = FormatFromRawCodecId(rawId);
  format.iBitRate = -123456789;  // Nobody may read it.
  return codec != nullptr && codec->Init(&format) ? std::move(codec) : nullptr;
}

bool NeedsAac(int rawId) {
  return rawId == 1 || (rawId >= 35 && rawId <= 46) || rawId == 53 || rawId == 55;
}

std::string Process(CAudioCodec& codec, const std::string& in, int room) {
  // Of exactly these sizes, so that a sanitizer sees what lies outside.
  std::vector<unsigned char> source(in.begin(), in.end());
  std::vector<unsigned char> target(static_cast<size_t>(room));
  int bytes = room;
  codec.Process(source.data(), static_cast<int>(source.size()), target.data(), &bytes);
  if (bytes < 0 || bytes > room) return "beyond the room";
  return {target.begin(), target.begin() + bytes};
}

std::vector<std::string> Encode(CAudioCodec& encoder, const Samples& samples, int blockFrames) {
  std::vector<std::string> packets;
  const auto step = static_cast<size_t>(blockFrames);
  for (size_t at = 0; at + step <= samples.size(); at += step) {
    const Samples frame(samples.begin() + static_cast<std::ptrdiff_t>(at),
                        samples.begin() + static_cast<std::ptrdiff_t>(at + step));
    packets.push_back(Process(encoder, BytesOf(frame)));
  }
  return packets;
}

Samples Decode(CAudioCodec& decoder, const std::vector<std::string>& packets) {
  std::string bytes;
  for (const std::string& packet : packets) bytes += Process(decoder, packet);
  return SamplesOf(bytes);
}

const std::vector<CodecId>& CodecIds() {
  static const std::vector<CodecId> ids = [] {
    std::vector<CodecId> all = {
        {1, kAudioCodecAAC},      {2, kAudioCodecSilk},     {22, kAudioCodecSilk},
        {35, kAudioCodecAACHIGH}, {36, kAudioCodecAACHIGH}, {37, kAudioCodecAACHIGH},
        {38, kAudioCodecEldAAC},  {39, kAudioCodecEldAAC},  {40, kAudioCodecAACHIGH},
        {41, kAudioCodecAACHIGH}, {42, kAudioCodecAACHIGH}, {43, kAudioCodecEldAAC},
        {44, kAudioCodecEldAAC},  {45, kAudioCodecAACHIGH}, {46, kAudioCodecAAC},
        {50, kAudioCodecOPUS},    {51, kAudioCodecOPUS},    {53, kAudioCodecAACHIGH},
        {55, kAudioCodecAACUni}};
    if (AUDIO_ENGINE_HAS_AAC == 0) {
      std::erase_if(all, [](const CodecId& id) { return IsAac(id.family); });
    }
    return all;
  }();
  return ids;
}
