#include "replay/first_difference.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "base/units.h"
#include "files/audio_layout.h"
#include "files/plain_text.h"
#include "files/regular_file.h"
#include "files/sample_reader.h"

namespace host {

namespace {

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

// One of the two files.
struct Side {
  std::unique_ptr<FILE, CloseFile> file = {};
  uint64_t bytes = 0;
  std::optional<AudioLayout> audio = {};
  bool text = false;

  Side(const std::string& path, const FileUse& use) : file(OpenRegular(path)) {
    if (file == nullptr) return;
    struct stat status = {};
    fstat(fileno(file.get()), &status);
    bytes = static_cast<uint64_t>(status.st_size);
    audio = FindAudio(use, file.get(), bytes);
    if (audio && !audio->samples) audio.reset();
    std::array<unsigned char, 4096> head = {};
    rewind(file.get());
    text = IsPlainText({head.data(), fread(head.data(), 1, head.size(), file.get())});
    rewind(file.get());
  }
};

// "0.50 s longer"; empty for the same length.
std::string Length(const AudioLayout& before, const AudioLayout& now) {
  const double more = now.Seconds() - before.Seconds();
  if (before.bytes == now.bytes) return "";
  return Seconds(std::abs(more)) + (now.bytes > before.bytes ? " longer" : " shorter");
}

// What two runs of samples have apart.
class Comparison {
 public:
  Comparison(int rate, int channels) : m_rate(rate), m_channels(channels) {}

  void Take(std::span<const float> before, std::span<const float> now) {
    for (size_t i = 0; i < before.size(); ++i, ++m_index) {
      if (std::bit_cast<uint32_t>(before[i]) == std::bit_cast<uint32_t>(now[i])) continue;
      const double difference = std::abs(double{now[i]} - double{before[i]});
      if (!m_differs) {
        m_differs = true;
        m_first = m_index;
        m_firstSize = difference;
      }
      if (std::isfinite(difference)) m_greatest = std::max(m_greatest, difference);
    }
  }

  // "first at 1.25 s (frame 55125), left, by -60.2 dBFS; at most by -12.0 dBFS"; empty when there
  // is none.
  std::string Words() const {
    if (!m_differs) return "";
    const auto channels = static_cast<uint64_t>(m_channels);
    const uint64_t frame = m_first / channels;
    return "first at " + Seconds(static_cast<double>(frame) / m_rate) + " (frame " +
           std::to_string(frame) + "), " +
           ChannelName(static_cast<int>(m_first % channels), m_channels) + ", by " +
           Size(m_firstSize) + "; at most by " + Size(m_greatest);
  }

 private:
  static std::string Size(double difference) {
    if (!std::isfinite(difference)) return "what is not finite";
    // The two zeros differ by nothing.
    return difference > 0 ? Decibels(20 * std::log10(difference)) : "the sign of a zero";
  }

  int m_rate;
  int m_channels;
  uint64_t m_index = 0;
  bool m_differs = false;
  uint64_t m_first = 0;
  double m_firstSize = 0;
  double m_greatest = 0;
};

std::string AudioFormat(const AudioLayout& audio) {
  return Hertz(audio.rate) + " " + Channels(audio.channels) +
         (audio.samples == SampleType::kPcm16 ? ", 16-bit" : ", 32-bit float");
}

// Empty when all samples that both have are the same, and both have as many.
std::string AudioDifference(const Side& before, const Side& now,
                            const std::function<bool()>& goOn) {
  const AudioLayout& was = *before.audio;
  const AudioLayout& is = *now.audio;
  if (was.rate != is.rate || was.channels != is.channels || was.samples != is.samples) {
    return "is " + AudioFormat(is) + ", was " + AudioFormat(was);
  }
  Comparison comparison(is.rate, is.channels);
  SampleReader beforeSamples(before.file.get(), was);
  SampleReader nowSamples(now.file.get(), is);
  while (goOn()) {
    const std::span<const float> first = beforeSamples.Next();
    const std::span<const float> second = nowSamples.Next();
    const size_t both = std::min(first.size(), second.size());
    comparison.Take(first.first(both), second.first(both));
    if (both == 0 || first.size() != second.size()) break;
  }
  std::string text = comparison.Words();
  const std::string length = Length(was, is);
  if (!text.empty() && !length.empty()) text += "; ";
  if (text.empty() && !length.empty()) text = "the same as far as both go; ";
  return text + length;
}

// The next line without its end; nothing after the last one.
std::optional<std::string> Line(FILE* file) {
  std::string line;
  int byte = EOF;
  while ((byte = fgetc(file)) != EOF && byte != '\n') line += static_cast<char>(byte);
  if (line.empty() && byte == EOF) return std::nullopt;
  return line;
}

std::string Quoted(const std::optional<std::string>& line) {
  constexpr size_t kMax = 60;
  if (!line) return "no line";
  return "\"" + (line->size() > kMax ? line->substr(0, kMax) + "..." : *line) + "\"";
}

std::string TextDifference(const Side& before, const Side& now, const std::function<bool()>& goOn) {
  for (uint64_t number = 1; goOn(); ++number) {
    const std::optional<std::string> was = Line(before.file.get());
    const std::optional<std::string> is = Line(now.file.get());
    if (was != is) {
      return "line " + std::to_string(number) + " is " + Quoted(is) + ", was " + Quoted(was);
    }
    if (!was) break;
  }
  return "";
}

std::string ByteDifference(const Side& before, const Side& now, const std::function<bool()>& goOn) {
  constexpr uint64_t kOften = 1 << 16;  // Bytes between two questions.
  uint64_t at = 0;
  while (at % kOften != 0 || goOn()) {
    const int was = fgetc(before.file.get());
    if (was != fgetc(now.file.get()) || was == EOF) break;
    ++at;
  }
  std::string text = "first at byte " + std::to_string(at);
  if (now.bytes > before.bytes) text += "; " + Bytes(now.bytes - before.bytes) + " longer";
  if (now.bytes < before.bytes) text += "; " + Bytes(before.bytes - now.bytes) + " shorter";
  return text;
}

}  // namespace

std::string FirstDifference(const std::string& before, const std::string& now, const FileUse& use,
                            const std::function<bool()>& goOn) {
  const Side was(before, use);
  const Side is(now, use);
  if (was.file == nullptr || is.file == nullptr) return "differs, and cannot be read again";
  std::string text;
  const bool audio = was.audio && is.audio;
  if (audio) text = AudioDifference(was, is, goOn);
  if (!audio && was.text && is.text) text = TextDifference(was, is, goOn);
  if (text.empty() && goOn()) {
    rewind(was.file.get());
    rewind(is.file.get());
    text = (audio ? "the samples are the same, the bytes are not: " : "") +
           ByteDifference(was, is, goOn);
  }
  return goOn() ? text : "differs; the run was ended before that could be looked at";
}

}  // namespace host
