#include "measure/sound.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <string_view>

#include "base/units.h"
#include "files/regular_file.h"
#include "recording/rate_converter.h"

namespace host {

namespace {

constexpr size_t kBlockFrames = 4096;

// Of integers; nothing for samples that can have any value.
std::optional<int> BitsOf(std::string_view samples) {
  int bits = 0;
  const auto [rest, error] = std::from_chars(samples.begin(), samples.end(), bits);
  if (error != std::errc()) return std::nullopt;
  const std::string_view kind(rest, samples.end());
  return kind == "-bit" || kind == "-bit ALAC" ? std::optional(bits) : std::nullopt;
}

}  // namespace

audio_measures::Signal MeasuredSound::View() const {
  audio_measures::Signal signal = {.rate = rate};
  for (const std::vector<float>& channel : channels) signal.channels.emplace_back(channel);
  return signal;
}

OpenSound::OpenSound(const std::string& path, const std::optional<RawForm>& raw)
    : m_file(OpenRegular(path)) {
  if (m_file == nullptr) throw UnreadableSound{FaultText(errno)};
  OpenedRecording opened = OpenRecording(m_file, raw);
  if (opened.recording == nullptr) {
    fclose(m_file);
    throw UnreadableSound{opened.fault};
  }
  m_recording = std::move(opened.recording);
}

OpenSound::~OpenSound() {
  m_recording.reset();
  fclose(m_file);
}

float OpenSound::FullScale() const {
  const std::optional<int> bits = BitsOf(Format().samples);
  return bits ? static_cast<float>(1 - std::ldexp(1.0, 1 - *bits)) : 1.0F;
}

void OpenSound::ForEachDoubles(const std::function<void(std::span<const double>)>& use) {
  const auto channels = static_cast<size_t>(Format().channels);
  std::vector<double> block(kBlockFrames * channels);
  size_t frames = 0;
  do {
    frames = m_recording->Read(block.data(), kBlockFrames);
    if (std::string fault = m_recording->Fault(); !fault.empty()) throw UnreadableSound{fault};
    use(std::span(block).first(frames * channels));
  } while (frames > 0);
}

MeasuredSound OpenSound::ReadAll(int rate) {
  const auto count = static_cast<size_t>(Format().channels);
  MeasuredSound sound = {.rate = rate > 0 ? rate : Format().rate, .fullScale = FullScale()};
  sound.channels.resize(count);
  const auto keep = [&](std::span<const double> block) {
    for (size_t channel = 0; channel < count; ++channel) {
      std::vector<float>& samples = sound.channels[channel];
      const size_t before = samples.size();
      samples.resize(before + block.size() / count);
      float* sample = samples.data() + before;
      for (size_t i = channel; i < block.size(); i += count) {
        *sample++ = static_cast<float>(block[i]);
      }
    }
  };
  if (sound.rate == Format().rate) {
    ForEachDoubles(keep);
    return sound;
  }
  RateConverter converter(Format().rate, sound.rate, Format().channels);
  std::vector<double> converted;
  bool done = true;
  ForEachDoubles([&](std::span<const double> block) {
    converted.clear();
    done = done && converter.Process(block, converted);
    keep(converted);
  });
  converted.clear();
  if (!done || !converter.Finish(converted)) {
    throw UnreadableSound{"cannot be converted from " + Hertz(Format().rate) + " to " +
                          Hertz(sound.rate)};
  }
  keep(converted);
  return sound;
}

void OpenSound::ForEachBlock(const std::function<void(std::span<const float>)>& use) {
  std::vector<float> samples;
  ForEachDoubles([&](std::span<const double> block) {
    samples.resize(block.size());
    std::ranges::transform(block, samples.begin(),
                           [](double sample) { return static_cast<float>(sample); });
    use(samples);
  });
}

}  // namespace host
