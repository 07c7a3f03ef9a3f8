#include "guards/click.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "guards/prediction.h"

namespace host {

namespace {

constexpr double kFrame = 0.02;        // s over which sounds hardly change.
constexpr double kAround = 0.0025;     // s on either side that a click stands out from;
constexpr int64_t kLeastAround = 64;   // as many samples at the least.
constexpr double kSamePlace = 0.002;   // s by which the place in the input may be off.
constexpr float kLeastClick = 0.002F;  // Of full scale: what is softer is not heard as a click.
constexpr float kStandsOut = 12;       // Times the median error on either side.
constexpr float kOfLevel = 0.25F;      // Of the RMS of the output around: what is softer is masked.
constexpr size_t kEchoFrames = 13;     // In which the input may have had what is now its echo,
constexpr float kBeyondEcho = 1.5F;    // were it not louder than the sound itself by that.
constexpr float kBeyondInput = 6;      // Times the largest error of the input at the place.

float Magnitude(std::span<const float> samples) {
  float squares = 0;
  for (const float sample : samples) squares += sample * sample;
  return std::sqrt(squares / static_cast<float>(samples.size()));
}

float LargestError(std::span<const float> errors) {
  float largest = 0;
  for (const float error : errors) largest = std::max(largest, std::fabs(error));
  return largest;
}

// Goes through one channel frame by frame. Each frame is read with what lies around it.
class ClickSearch {
 public:
  ClickSearch(const Pairing& pairing, int channel, int rate)
      : m_pairing(pairing),
        m_channel(channel),
        m_frame(static_cast<int64_t>(std::ceil(kFrame * rate))),
        m_around(std::max(kLeastAround, static_cast<int64_t>(kAround * rate))),
        m_samePlace(static_cast<int64_t>(kSamePlace * rate)),
        m_out(Length()),
        m_in(Length()),
        m_outErrors(Length() - Prediction::kOrder),
        m_inErrors(Length() - Prediction::kOrder) {}

  int64_t Frame() const { return m_frame; }

  // Whether a click lies in the frame that starts at `first`, and where.
  std::optional<int64_t> Search(int64_t first) {
    const int64_t start = first - m_around - static_cast<int64_t>(Prediction::kOrder);
    m_pairing.Output().Read(m_channel, start, m_out);
    m_pairing.Input().Read(m_pairing.Source(m_channel), start - m_pairing.Of(m_channel).lag, m_in);
    const Prediction prediction(m_in);
    prediction.Errors(m_out, m_outErrors);
    prediction.Errors(m_in, m_inErrors);
    m_before[m_frames++ % kEchoFrames] = LargestError(m_inErrors);
    m_level = Magnitude(m_out);
    m_gain.reset();

    // Window by window: only the largest error of each can be a click.
    for (int64_t window = 0; window < m_frame; window += m_around) {
      const int64_t length = std::min(m_around, m_frame - window);
      const auto begin = m_outErrors.begin() + m_around + window;
      const auto largest = std::max_element(
          begin, begin + length, [](float a, float b) { return std::fabs(a) < std::fabs(b); });
      const int64_t place = largest - m_outErrors.begin();
      const int64_t frame = first + place - m_around;
      // The ends of a signal are steps of their own.
      if (frame < m_around || frame + m_around >= m_pairing.Output().Frames()) continue;
      if (IsClick(place)) return frame;
    }
    return std::nullopt;
  }

 private:
  size_t Length() const { return static_cast<size_t>(m_frame + 2 * m_around) + Prediction::kOrder; }

  bool IsClick(int64_t place) {
    const float error = std::fabs(m_outErrors[static_cast<size_t>(place)]);
    if (error < std::max(kLeastClick, kOfLevel * m_level)) return false;
    if (error <= kStandsOut * MedianError(place - m_around)) return false;
    if (error <= kStandsOut * MedianError(place + 1)) return false;
    if (!m_gain) m_gain = Gain();
    if (error < kBeyondEcho * *m_gain * std::ranges::max(m_before)) return false;
    const int64_t from = std::max<int64_t>(0, place - m_samePlace);
    const int64_t to = std::min(static_cast<int64_t>(m_inErrors.size()), place + m_samePlace + 1);
    const auto there =
        std::span(m_inErrors).subspan(static_cast<size_t>(from), static_cast<size_t>(to - from));
    return !(error < kBeyondInput * *m_gain * LargestError(there));
  }

  // Of the output against the input: by medians, which a click leaves alone, where the input has
  // any.
  float Gain() {
    const float median = Median(m_in);
    if (median > 0) return Median(m_out) / median;
    const float level = Magnitude(m_in);
    return level > 0 ? m_level / level : 0;
  }

  // Of the errors in the output from `from` on.
  float MedianError(int64_t from) {
    return Median(
        std::span(m_outErrors).subspan(static_cast<size_t>(from), static_cast<size_t>(m_around)));
  }

  // Of the magnitudes.
  float Median(std::span<const float> samples) {
    m_sorted.clear();
    for (const float sample : samples) m_sorted.push_back(std::fabs(sample));
    const auto middle = m_sorted.begin() + static_cast<int64_t>(samples.size() / 2);
    std::nth_element(m_sorted.begin(), middle, m_sorted.end());
    return *middle;
  }

  const Pairing& m_pairing;
  const int m_channel;
  const int64_t m_frame;
  const int64_t m_around;
  const int64_t m_samePlace;
  std::vector<float> m_out;
  std::vector<float> m_in;
  std::vector<float> m_outErrors;
  std::vector<float> m_inErrors;
  std::vector<float> m_sorted = {};
  std::array<float, kEchoFrames> m_before = {};  // Largest errors in the last frames of the input.
  size_t m_frames = 0;
  float m_level = 0;                 // RMS of the frame in the output.
  std::optional<float> m_gain = {};  // Worked out for the few frames that need it.
};

}  // namespace

void CheckClicks(const GuardInput& input, const Pairing& pairing, GuardHits& hits) {
  if (!hits.IsOn(Guard::kClick)) return;
  std::optional<int64_t> first;
  int channelOfFirst = 0;
  size_t frames = 0;
  for (int channel = 0; channel < input.output->channels; ++channel) {
    if (!pairing.Of(channel).known) continue;
    ClickSearch search(pairing, channel, input.output->rate);
    for (int64_t frame = 0; frame < pairing.Output().Frames(); frame += search.Frame()) {
      const auto place = search.Search(frame);
      if (!place) continue;
      ++frames;
      if (first && *first <= *place) continue;
      first = place;
      channelOfFirst = channel;
    }
  }
  if (!first) return;
  std::string text = "a click that the input does not have";
  if (frames > 1) text += ", the first in " + std::to_string(frames) + " places";
  hits.Add(Guard::kClick,
           {.at = static_cast<double>(*first) / input.output->rate, .channel = channelOfFirst},
           text);
}

}  // namespace host
