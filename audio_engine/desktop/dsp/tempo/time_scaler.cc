#include "desktop/dsp/tempo/time_scaler.h"

#include <algorithm>
#include <cmath>

#include "desktop/common/counts.h"
#include "desktop/dsp/effect_math.h"
#include "desktop/dsp/tempo/best_match.h"

namespace desktop {
namespace {

size_t FramesOf(int rate, int ms) { return Size(rate * ms / 1000); }

}  // namespace

TimeScaler::TimeScaler(int rate, int channels)
    : m_channels(Size(channels)),
      m_overlap(FramesOf(rate, 10)),
      m_reach(FramesOf(rate, 12)),
      m_short(FramesOf(rate, 20)),
      m_usual(FramesOf(rate, 30)),
      m_fast(FramesOf(rate, 40)),
      m_long(FramesOf(rate, 50)),
      m_fewRepeated(FramesOf(rate, 10)),
      m_fewPassed(FramesOf(rate, 13)),
      m_mostPassed(FramesOf(rate, 60)),
      m_step(Size(std::max(rate / 11000, 1))),
      m_fadeOut(m_overlap),
      m_fadeIn(m_overlap),
      m_pattern(m_overlap * m_channels),
      m_field((2 * m_reach + m_overlap) * m_channels),
      m_faded(m_overlap) {
  m_input.reserve(FramesOf(rate, 400) * m_channels);
}

void TimeScaler::SetSpeed(double speed) {
  if (speed == m_speed) return;
  const bool copied = m_speed == 1;
  m_speed = speed;
  if (!copied) return;
  m_left = Segment();
  m_target = Real(m_position) + Real(m_left) * speed;
}

void TimeScaler::Put(const short* samples, size_t frames) {
  // The frames that a join may still look back at stay.
  const size_t kept = m_usual + 2 * m_reach;
  const size_t needed = std::min(m_position, m_faded < m_overlap ? m_fadingOut : m_position);
  if (needed > kept) {
    const size_t dropped = needed - kept;
    m_input.erase(m_input.begin(), m_input.begin() + Offset(dropped * m_channels));
    m_position -= dropped;
    m_fadingOut -= std::min(m_fadingOut, dropped);
    m_target -= Real(dropped);
  }
  m_input.insert(m_input.end(), samples, samples + frames * m_channels);
}

size_t TimeScaler::Take(short* out, size_t room) {
  size_t done = 0;
  while (done < room) {
    if (m_speed != 1 && m_left == 0 && !Join()) break;
    size_t frames = std::min(room - done, Frames() - m_position);
    if (m_speed != 1) frames = std::min(frames, m_left);
    if (frames == 0) break;
    Copy(out + done * m_channels, frames);
    m_left -= std::min(m_left, frames);
    done += frames;
  }
  return done;
}

void TimeScaler::Reset() {
  m_input.clear();
  m_position = 0;
  m_target = 0;
  m_left = 0;
  m_faded = m_overlap;
}

size_t TimeScaler::Segment() const {
  const auto lengthFor = [&](size_t jump) {
    return static_cast<size_t>(Real(jump) / std::abs(m_speed - 1));
  };
  if (m_speed < 1) return std::clamp(lengthFor(m_fewRepeated), m_short, m_usual);
  if (m_speed <= 1.6) return std::clamp(lengthFor(m_fewPassed), m_usual, m_long);
  return std::min(m_fast, lengthFor(m_mostPassed));
}

// Finds where the next segment begins. Returns false when the input does not reach that far yet.
bool TimeScaler::Join() {
  const size_t low = static_cast<size_t>(std::max(std::floor(m_target) - Real(m_reach), 0.0));
  const size_t places = 2 * m_reach;
  if (std::max(low + places, m_position) + m_overlap > Frames()) return false;

  std::copy_n(m_input.data() + m_position * m_channels, m_pattern.size(), m_pattern.begin());
  std::copy_n(m_input.data() + low * m_channels, m_field.size(), m_field.begin());
  const Match match =
      BestMatch(m_pattern.data(), m_overlap, m_field.data(), places, m_step, m_channels);
  const size_t next = low + match.place;
  if (next != m_position) {
    m_fadingOut = m_position;
    m_faded = 0;
    m_position = next;
    ShapeFade(match.likeness);
  }
  m_left = Segment();
  m_target += Real(m_left) * m_speed;
  return true;
}

// Two stretches of equal power and this likeness, mixed with gains a and b, have the power
// a * a + b * b + 2 * a * b * likeness. What is unlike is not raised beyond the sum of powers.
void TimeScaler::ShapeFade(double likeness) {
  const double alike = std::clamp(likeness, 0.0, 1.0);
  for (size_t i = 0; i < m_overlap; ++i) {
    const double in = 0.5 - 0.5 * std::cos(M_PI * (Real(i) + 0.5) / Real(m_overlap));
    const double out = 1 - in;
    const double level = std::sqrt(in * in + out * out + 2 * in * out * alike);
    m_fadeIn[i] = static_cast<float>(in / level);
    m_fadeOut[i] = static_cast<float>(out / level);
  }
}

// Plays frames of this segment, over the rest of the one before while that fades.
void TimeScaler::Copy(short* out, size_t frames) {
  const short* in = m_input.data() + m_position * m_channels;
  const size_t fading = std::min(frames, m_overlap - m_faded);
  const short* old = m_input.data() + m_fadingOut * m_channels;
  for (size_t i = 0; i < fading * m_channels; ++i) {
    const size_t frame = m_faded + i / m_channels;
    const float mixed = m_fadeOut[frame] * old[i] + m_fadeIn[frame] * in[i];
    out[i] = ToSample(mixed);
  }
  std::copy(in + fading * m_channels, in + frames * m_channels, out + fading * m_channels);
  m_faded += fading;
  m_fadingOut += fading;
  m_position += frames;
}

}  // namespace desktop
