#include "recording/conversion.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/units.h"
#include "files/audio_figures.h"
#include "recording/rate_converter.h"

namespace host {

namespace {

constexpr size_t kBlockFrames = 4096;

uint64_t FramesOf(double seconds, int rate) {
  return static_cast<uint64_t>(std::max(0.0, std::round(seconds * rate)));
}

// One frame in another number of channels.
void MapFrame(const double* from, size_t fromChannels, double* to, size_t toChannels,
              std::optional<ChannelChoice> choice) {
  if (choice == ChannelChoice::kFirst && fromChannels >= toChannels) {
    std::copy_n(from, toChannels, to);
    return;
  }
  double sum = 0;
  for (size_t i = 0; i < fromChannels; ++i) sum += from[i];
  std::fill_n(to, toChannels, sum / static_cast<double>(fromChannels));
}

class Converter {
 public:
  Converter(Recording& recording, const Conversion& conversion,
            const std::function<bool(std::span<const double>)>& use)
      : m_recording(recording), m_conversion(conversion), m_use(use) {
    const RecordingFormat& format = recording.Format();
    if (format.rate != conversion.rate) {
      m_converter.emplace(format.rate, conversion.rate, conversion.channels);
    }
    if (conversion.cut.seconds) {
      m_wanted = std::max<uint64_t>(FramesOf(*conversion.cut.seconds, format.rate), 1);
    }
  }

  std::string Run() {
    if (std::string fault = Skip(); !fault.empty()) return fault;
    while (m_wanted > 0) {
      const size_t frames = ReadBlock(std::min<uint64_t>(kBlockFrames, m_wanted));
      if (std::string fault = m_recording.Fault(); !fault.empty()) return fault;
      if (frames == 0) break;
      m_passed += frames;
      m_wanted -= frames;
      if (std::string fault = NotFinite(frames); !fault.empty()) return fault;
      if (std::string fault = Pass(frames); !fault.empty()) return fault;
    }
    return m_passed == 0 ? NothingThere() : Finish();
  }

 private:
  int Rate() const { return m_recording.Format().rate; }
  size_t FromChannels() const { return static_cast<size_t>(m_recording.Format().channels); }
  size_t ToChannels() const { return static_cast<size_t>(m_conversion.channels); }

  size_t ReadBlock(size_t frames) {
    m_read.resize(frames * FromChannels());
    const size_t count = m_recording.Read(m_read.data(), frames);
    m_at += count;
    return count;
  }

  // By reading, which is exact for every kind of file.
  std::string Skip() {
    for (uint64_t left = FramesOf(m_conversion.cut.start, Rate()); left > 0;) {
      const size_t frames = ReadBlock(std::min<uint64_t>(kBlockFrames, left));
      if (std::string fault = m_recording.Fault(); !fault.empty()) return fault;
      left -= frames;
      // Asks whether to go on.
      if (!m_use({})) return kStopped;
      if (frames == 0) return NothingThere();
    }
    return "";
  }

  std::string NothingThere() const {
    if (m_at == 0) return "holds no samples";
    return "has " + Seconds(static_cast<double>(m_at) / Rate()) + ", nothing at " +
           Seconds(m_conversion.cut.start);
  }

  std::string NotFinite(size_t frames) const {
    const auto end = m_read.begin() + static_cast<ptrdiff_t>(frames * FromChannels());
    const auto found =
        std::find_if(m_read.begin(), end, [](double sample) { return !std::isfinite(sample); });
    if (found == end) return "";
    const auto frame = static_cast<uint64_t>(found - m_read.begin()) / FromChannels();
    const double seconds = static_cast<double>(m_at - frames + frame) / Rate();
    return "holds a sample that is not finite, at " + Seconds(seconds);
  }

  std::string Pass(size_t frames) {
    std::span<const double> samples(m_read.data(), frames * FromChannels());
    if (FromChannels() != ToChannels()) {
      m_mapped.resize(frames * ToChannels());
      for (size_t i = 0; i < frames; ++i) {
        MapFrame(m_read.data() + i * FromChannels(), FromChannels(),
                 m_mapped.data() + i * ToChannels(), ToChannels(), m_conversion.choice);
      }
      samples = m_mapped;
    }
    if (!m_converter) return m_use(samples) ? "" : kStopped;
    m_converted.clear();
    if (!m_converter->Process(samples, m_converted)) return Unconverted();
    return m_use(m_converted) ? "" : kStopped;
  }

  std::string Finish() {
    if (!m_converter) return "";
    m_converted.clear();
    if (!m_converter->Finish(m_converted)) return Unconverted();
    return m_use(m_converted) ? "" : kStopped;
  }

  std::string Unconverted() const {
    return "cannot be converted from " + Hertz(Rate()) + " to " + Hertz(m_conversion.rate);
  }

  Recording& m_recording;
  const Conversion& m_conversion;
  const std::function<bool(std::span<const double>)>& m_use;
  std::optional<RateConverter> m_converter;
  uint64_t m_wanted = UINT64_MAX;  // Frames of the recording that are still to be passed on.
  uint64_t m_at = 0;               // Frames read,
  uint64_t m_passed = 0;           // and those of them that are not before the cut.
  std::vector<double> m_read;
  std::vector<double> m_mapped;
  std::vector<double> m_converted;
};

}  // namespace

std::string ChannelFault(int from, int to, std::optional<ChannelChoice> choice) {
  if (from == to || from == 1 || to == 1) return "";
  if (choice == ChannelChoice::kMean || (choice == ChannelChoice::kFirst && from > to)) return "";
  return "has " + Channels(from) + ", not " + Channels(to) +
         "; choose what becomes of them: " + "--channels " + (from > to ? "first or mean" : "mean");
}

std::string ForEachConvertedBlock(Recording& recording, const Conversion& conversion,
                                  const std::function<bool(std::span<const double>)>& use) {
  return Converter(recording, conversion, use).Run();
}

}  // namespace host
