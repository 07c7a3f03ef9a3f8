#include "guards/click.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
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
constexpr int64_t kEchoFrames = 13;    // In which the input may have had what is now its echo,
constexpr float kBeyondEcho = 1.5F;    // were it not louder than the sound itself by that.
constexpr float kBeyondInput = 6;      // Times the largest error of the input at the place.

// Sums of a few thousand samples are exact enough in single precision, and vectorise.
float SumOfSquares(std::span<const float> samples) {
  constexpr size_t kLanes = 8;
  float lanes[kLanes] = {};
  size_t i = 0;
  for (; i + kLanes <= samples.size(); i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane)
      lanes[lane] += samples[i + lane] * samples[i + lane];
  }
  float sum = 0;
  for (; i < samples.size(); ++i) sum += samples[i] * samples[i];
  for (const float lane : lanes) sum += lane;
  return sum;
}

float Magnitude(std::span<const float> samples) {
  return std::sqrt(SumOfSquares(samples) / static_cast<float>(samples.size()));
}

// What a vector register of any machine holds. The compiler does not find this by itself.
using Bits = int32_t __attribute__((vector_size(16)));
constexpr size_t kBitLanes = sizeof(Bits) / sizeof(int32_t);

// Of the magnitudes of so many floats: positive ones order as their bits do.
Bits MagnitudesAt(const float* from) {
  Bits bits;
  memcpy(&bits, from, sizeof bits);
  return bits & 0x7FFFFFFF;
}

int32_t MagnitudeOf(float value) {
  return static_cast<int32_t>(std::bit_cast<uint32_t>(value) & 0x7FFFFFFFU);
}

float LargestError(std::span<const float> errors) {
  Bits lanes = {};
  size_t i = 0;
  for (; i + kBitLanes <= errors.size(); i += kBitLanes) {
    const Bits bits = MagnitudesAt(&errors[i]);
    lanes = bits > lanes ? bits : lanes;
  }
  int32_t largest = 0;
  for (; i < errors.size(); ++i) largest = std::max(largest, MagnitudeOf(errors[i]));
  for (size_t lane = 0; lane < kBitLanes; ++lane) largest = std::max(largest, lanes[lane]);
  return std::bit_cast<float>(largest);
}

// Goes through one channel frame by frame. Each frame is read with what lies around it. Most have
// no error that stands out: all else is worked out for the few that do.
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
        m_earlier(Length()),
        m_outErrors(Length() - Prediction::kOrder),
        m_inErrors(Length() - Prediction::kOrder) {}

  int64_t Frame() const { return m_frame; }

  // Whether a click lies in the frame that starts at `first`, and where.
  std::optional<int64_t> Search(int64_t first) {
    m_pairing.Output().Read(m_channel, Start(first), m_out);
    ReadInput(first, m_in);
    const Prediction prediction(m_in);
    prediction.Errors(m_out, m_outErrors);
    m_level.reset();
    m_gain.reset();

    // Window by window: only the largest error of each can be a click.
    for (int64_t window = 0; window < m_frame; window += m_around) {
      const auto errors = std::span(m_outErrors)
                              .subspan(static_cast<size_t>(m_around + window),
                                       static_cast<size_t>(std::min(m_around, m_frame - window)));
      const float largest = LargestError(errors);
      if (largest < kLeastClick) continue;
      const auto found = std::ranges::find(errors, largest, [](float e) { return std::fabs(e); });
      const int64_t place = m_around + window + (found - errors.begin());
      const int64_t frame = first + place - m_around;
      // The ends of a signal are steps of their own.
      if (frame < m_around || frame + m_around >= m_pairing.Output().Frames()) continue;
      if (StandsOut(largest, place) && IsBeyondInput(largest, place, first, prediction)) {
        return frame;
      }
    }
    return std::nullopt;
  }

 private:
  size_t Length() const { return static_cast<size_t>(m_frame + 2 * m_around) + Prediction::kOrder; }

  int64_t Start(int64_t first) const {
    return first - m_around - static_cast<int64_t>(Prediction::kOrder);
  }

  void ReadInput(int64_t first, std::span<float> to) const {
    m_pairing.Input().Read(m_pairing.Source(m_channel), Start(first) - m_pairing.Of(m_channel).lag,
                           to);
  }

  // From the output around it.
  bool StandsOut(float error, int64_t place) {
    if (!m_level) m_level = Magnitude(m_out);
    return error >= kOfLevel * *m_level && IsBeyondMedian(error, place - m_around) &&
           IsBeyondMedian(error, place + 1);
  }

  // Whether an error is kStandsOut times the median of those from `from` on: whether so many times
  // more than half of them are below it.
  bool IsBeyondMedian(float error, int64_t from) const {
    const auto around =
        std::span(m_outErrors).subspan(static_cast<size_t>(from), static_cast<size_t>(m_around));
    int32_t below = 0;
    for (const float each : around) below += kStandsOut * std::fabs(each) < error ? 1 : 0;
    return below > static_cast<int32_t>(around.size() / 2);
  }

  // From what the input has at the place, and had in the frames before.
  bool IsBeyondInput(float error, int64_t place, int64_t first, const Prediction& prediction) {
    prediction.Errors(m_in, m_inErrors);
    const int64_t from = std::max<int64_t>(0, place - m_samePlace);
    const int64_t to = std::min(static_cast<int64_t>(m_inErrors.size()), place + m_samePlace + 1);
    const float there = LargestError(
        std::span(m_inErrors).subspan(static_cast<size_t>(from), static_cast<size_t>(to - from)));
    if (!m_gain) m_gain = Gain();
    if (error < kBeyondInput * *m_gain * there) return false;
    for (int64_t i = 0; i < kEchoFrames && first >= i * m_frame; ++i) {
      if (error < kBeyondEcho * *m_gain * LargestInInput(first - i * m_frame)) return false;
    }
    return true;
  }

  // The largest error of the input in the frame that starts at `first`, which is kept for the
  // frames that follow.
  float LargestInInput(int64_t first) {
    Kept& kept = m_kept[static_cast<size_t>(first / m_frame % kEchoFrames)];
    if (kept.first != first) {
      ReadInput(first, m_earlier);
      Prediction(m_earlier).Errors(m_earlier, m_inErrors);
      kept = {first, LargestError(m_inErrors)};
    }
    return kept.largest;
  }

  // Of the output against the input: by medians, which a click leaves alone, where the input has
  // any.
  float Gain() {
    const float median = Median(m_in);
    if (median > 0) return Median(m_out) / median;
    const float level = Magnitude(m_in);
    return level > 0 ? *m_level / level : 0;
  }

  // Of the magnitudes.
  float Median(std::span<const float> samples) {
    m_sorted.clear();
    for (const float sample : samples) m_sorted.push_back(std::fabs(sample));
    const auto middle = m_sorted.begin() + static_cast<int64_t>(samples.size() / 2);
    std::nth_element(m_sorted.begin(), middle, m_sorted.end());
    return *middle;
  }

  // Of a frame of the input.
  struct Kept {
    int64_t first = -1;
    float largest = 0;
  };

  const Pairing& m_pairing;
  const int m_channel;
  const int64_t m_frame;
  const int64_t m_around;
  const int64_t m_samePlace;
  std::vector<float> m_out;
  std::vector<float> m_in;
  std::vector<float> m_earlier;  // A frame of the input that may come before.
  std::vector<float> m_outErrors;
  std::vector<float> m_inErrors;
  std::vector<float> m_sorted = {};
  std::array<Kept, kEchoFrames> m_kept = {};
  std::optional<float> m_level = {};  // RMS of the frame in the output.
  std::optional<float> m_gain = {};
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
