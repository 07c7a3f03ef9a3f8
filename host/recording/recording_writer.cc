#include "recording/recording_writer.h"

#include <sndfile.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "files/new_file.h"

namespace host {

namespace {

using Kind = WrittenForm::Kind;
using Samples = WrittenForm::Samples;

// The most that a header of RIFF counts, and what is in front of the samples.
constexpr uint64_t kMaxWaveBytes = UINT32_MAX - 100;

int SoundFormat(const WrittenForm& form) {
  const int samples = form.samples == Samples::kPcm16   ? SF_FORMAT_PCM_16
                      : form.samples == Samples::kPcm24 ? SF_FORMAT_PCM_24
                                                        : SF_FORMAT_FLOAT;
  switch (form.kind) {
    case Kind::kWave:
      return SF_FORMAT_WAV | samples;
    case Kind::kHeaderless:
      return SF_FORMAT_RAW | SF_ENDIAN_LITTLE | samples;
    case Kind::kFlac:
      return SF_FORMAT_FLAC | samples;
    case Kind::kVorbis:
      break;
  }
  return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
}

// Full scale in steps; 0 for floats.
double Steps(const WrittenForm& form) {
  return form.samples == Samples::kPcm16   ? 32768.0
         : form.samples == Samples::kPcm24 ? 8388608.0
                                           : 0;
}

uint64_t SampleBytes(Samples samples) {
  return samples == Samples::kPcm16 ? 2 : samples == Samples::kPcm24 ? 3 : 4;
}

int Rounded(double value, double steps) {
  return static_cast<int>(std::clamp(std::nearbyint(value), -steps, steps - 1));
}

}  // namespace

RecordingWriter::RecordingWriter(int file, const WrittenForm& form, double gain, bool dithered)
    : m_form(form), m_gain(gain), m_dithered(dithered && form.samples == Samples::kPcm16) {
  if (!StartAnew(file)) {
    m_fault = strerror(errno);
    return;
  }
  SF_INFO info = {};
  info.samplerate = form.rate;
  info.channels = form.channels;
  info.format = SoundFormat(form);
  m_sound = sf_open_fd(file, SFM_WRITE, &info, SF_FALSE);
  if (m_sound == nullptr) {
    m_fault = sf_strerror(nullptr);
    return;
  }
  sf_command(m_sound, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

RecordingWriter::~RecordingWriter() {
  if (m_sound != nullptr) sf_close(m_sound);
}

bool RecordingWriter::Write(std::span<const double> samples) {
  if (!m_fault.empty()) return false;
  Look(samples);
  const uint64_t bytes =
      m_level.frames * static_cast<uint64_t>(m_form.channels) * SampleBytes(m_form.samples);
  if (m_form.kind == Kind::kWave && bytes > kMaxWaveBytes) {
    return Fail("too long for a WAVE file");
  }
  return WriteBlock(samples);
}

void RecordingWriter::Look(std::span<const double> samples) {
  const double steps = Steps(m_form);
  for (const double sample : samples) {
    m_level.highest = std::max(m_level.highest, sample);
    m_level.lowest = std::min(m_level.lowest, sample);
    if (steps > 0 && m_level.exact) {
      const double value = sample * steps;
      m_level.exact = value == std::nearbyint(value) && value >= -steps && value < steps;
    }
  }
  m_level.frames += samples.size() / static_cast<size_t>(m_form.channels);
}

bool RecordingWriter::WriteBlock(std::span<const double> samples) {
  const auto count = static_cast<sf_count_t>(samples.size());
  const double steps = Steps(m_form);
  const double gain = steps > 0 ? m_gain * steps : m_gain;
  const auto convert = [&](auto& block, const auto& one) {
    block.resize(samples.size());
    std::transform(samples.begin(), samples.end(), block.begin(), one);
  };
  errno = 0;
  sf_count_t written = 0;
  if (m_form.samples == Samples::kPcm16) {
    convert(m_shorts, [&](double sample) {
      const double noise = m_dithered ? m_dither.Next() : 0;
      return static_cast<short>(Rounded(sample * gain + noise, steps));
    });
    written = sf_write_short(m_sound, m_shorts.data(), count);
  } else if (m_form.samples == Samples::kPcm24) {
    // The library takes the upper 24 bits of 32.
    convert(m_ints, [&](double sample) { return Rounded(sample * gain, steps) * 256; });
    written = sf_write_int(m_sound, m_ints.data(), count);
  } else {
    convert(m_floats, [&](double sample) { return static_cast<float>(sample * gain); });
    written = sf_write_float(m_sound, m_floats.data(), count);
  }
  if (written == count) return true;
  return Fail(errno != 0 ? strerror(errno) : sf_strerror(m_sound));
}

bool RecordingWriter::Close() {
  if (m_sound == nullptr) return false;
  errno = 0;
  const int error = sf_close(m_sound);
  const int reason = errno;
  m_sound = nullptr;
  if (error == SF_ERR_NO_ERROR || !m_fault.empty()) return m_fault.empty();
  return Fail(reason != 0 ? strerror(reason) : sf_error_number(error));
}

bool RecordingWriter::Fail(const std::string& fault) {
  m_fault = fault;
  return false;
}

double GainWithoutClipping(const WrittenLevel& level, const WrittenForm& form, bool dithered) {
  const double steps = Steps(form);
  if (steps == 0) return 1;
  // What is below half a step beyond the last one is rounded to it; noise takes a step off that.
  const double room = 0.5 - (dithered ? 1 : 0);
  const double top = (steps - 1 + room) / steps;
  const double bottom = (steps + room) / steps;
  double gain = 1;
  // Half a step's rounding of the product aside.
  constexpr double kMargin = 1 - 1e-12;
  if (level.highest > top) gain = std::min(gain, top / level.highest * kMargin);
  if (-level.lowest > bottom) gain = std::min(gain, bottom / -level.lowest * kMargin);
  return gain;
}

}  // namespace host
