#include "measure/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "base/units.h"
#include "measure/drawing.h"
#include "measure/spectrogram.h"

namespace host {

namespace {

constexpr double kWidth = 960;
constexpr double kLeft = 76;
constexpr double kPanelWidth = 800;
constexpr double kGap = 26;
constexpr size_t kMostChannels = 8;
constexpr int kColumns = 400;
constexpr int kRows = 100;
constexpr int kShownDecibels = 90;  // Below the strongest.
constexpr int kShades = 24;
constexpr const char* kInk = "#1f4e79";
constexpr const char* kFaint = "#d9d9d9";
constexpr const char* kFrame = "#808080";

std::string Short(double value) {
  char text[32];
  snprintf(text, sizeof text, "%.6g", std::abs(value) < 1e-12 ? 0.0 : value);
  return text;
}

// From dark blue to pale yellow.
std::string Shade(int shade) {
  constexpr double kStops[][3] = {
      {13, 8, 60}, {84, 20, 110}, {170, 45, 90}, {235, 110, 40}, {252, 240, 170}};
  const double place = 4.0 * shade / (kShades - 1);
  const int stop = std::min(static_cast<int>(place), 3);
  char text[16];
  int parts[3];
  for (int i = 0; i < 3; ++i) {
    parts[i] = static_cast<int>(
        std::lround(kStops[stop][i] + (place - stop) * (kStops[stop + 1][i] - kStops[stop][i])));
  }
  snprintf(text, sizeof text, "#%02x%02x%02x", static_cast<unsigned>(parts[0]),
           static_cast<unsigned>(parts[1]), static_cast<unsigned>(parts[2]));
  return text;
}

// Round numbers from `low` to `high`, about `count` of them.
std::vector<double> Ticks(double low, double high, int count) {
  const double rough = (high - low) / count;
  const double power = std::pow(10, std::floor(std::log10(rough)));
  double step = 10 * power;
  for (const double each : {5.0, 2.0, 1.0}) {
    if (each * power >= rough) step = each * power;
  }
  std::vector<double> ticks;
  for (double at = std::ceil(low / step); at * step <= high + step * 1e-9; ++at) {
    ticks.push_back(at * step);
  }
  return ticks;
}

class Picture {
 public:
  explicit Picture(const Plot& plot) : m_plot(plot) {
    const size_t frames = plot.sound.channels.empty() ? 0 : plot.sound.channels.front().size();
    m_seconds = static_cast<double>(frames) / plot.sound.rate;
  }

  std::string Svg() {
    m_drawing.Text({kLeft, 24}, Anchor::kStart, m_plot.title, 14);
    const size_t channels = m_plot.sound.channels.size();
    const size_t shown = std::min(channels, kMostChannels);
    for (size_t i = 0; i < shown; ++i) Wave(i, shown == 1 ? 120 : shown == 2 ? 80 : 44);
    if (m_seconds > 0) Spectrum(220);
    for (const Course& course : m_plot.courses) Draw(course, 120);
    m_drawing.Text({kLeft + kPanelWidth / 2, m_top - 8}, Anchor::kMiddle, "s");
    return m_drawing.Svg(m_top + 4);
  }

 private:
  double X(double seconds) const { return kLeft + kPanelWidth * seconds / m_seconds; }

  // The frame of a panel with its ticks of time, and its name above.
  void Open(double height, const std::string& name) {
    m_drawing.Text({kLeft, m_top - 6}, Anchor::kStart, name);
    m_drawing.Box({kLeft, m_top}, kPanelWidth, height, "none", kFrame);
  }

  // Goes on below a panel.
  void Close(double height) {
    if (m_seconds > 0) {
      for (const double tick : Ticks(0, m_seconds, 8)) {
        m_drawing.Line({X(tick), m_top + height}, {X(tick), m_top + height + 4}, kFrame);
        m_drawing.Text({X(tick), m_top + height + 15}, Anchor::kMiddle, Short(tick), 10);
      }
    }
    m_top += height + kGap + 14;
  }

  void Mark(double y, const std::string& text) {
    m_drawing.Text({kLeft - 6, y + 4}, Anchor::kEnd, text, 10);
  }

  // The highest and the lowest sample in each place.
  void Wave(size_t channel, double height) {
    const std::vector<float>& samples = m_plot.sound.channels[channel];
    const int channels = static_cast<int>(m_plot.sound.channels.size());
    Open(height,
         channels == 1 ? "wave" : "wave, " + ChannelName(static_cast<int>(channel), channels));
    const double middle = m_top + height / 2;
    m_drawing.Line({kLeft, middle}, {kLeft + kPanelWidth, middle}, kFaint);
    const auto places = std::min(static_cast<size_t>(kPanelWidth), samples.size());
    const auto y = [&](float sample) {
      return middle - height / 2 * std::clamp(std::isfinite(sample) ? sample : 0.0F, -1.0F, 1.0F);
    };
    std::string path;
    for (size_t i = 0; i < places; ++i) {
      const auto first = samples.begin() + static_cast<long>(i * samples.size() / places);
      const auto last = samples.begin() + static_cast<long>((i + 1) * samples.size() / places);
      const auto [low, high] = std::minmax_element(first, last);
      const double x =
          kLeft + (static_cast<double>(i) + 0.5) * kPanelWidth / static_cast<double>(places);
      // A point has a height, too.
      path +=
          "M" + Coordinate(x) + " " + Coordinate(y(*high) - 0.5) + "V" + Coordinate(y(*low) + 0.5);
    }
    if (!path.empty()) m_drawing.Path(path, "none", kInk);
    Mark(m_top, "1");
    Mark(middle, "0");
    Mark(m_top + height, "-1");
    Close(height);
  }

  void Spectrum(double height) {
    audio_measures::Signal signal = m_plot.sound.View();
    const Spectrogram picture = SpectrogramOf(signal, kColumns, kRows);
    m_drawing.Box({kLeft, m_top}, kPanelWidth, height, Shade(0));
    std::array<std::string, kShades> paths;
    for (int column = 0; column < picture.columns; ++column) {
      for (int row = 0; row < kRows;) {
        const int shade = ShadeOf(picture.Level(column, row));
        int end = row + 1;
        while (end < kRows && ShadeOf(picture.Level(column, end)) == shade) ++end;
        paths[static_cast<size_t>(shade)] += "M" + std::to_string(column) + " " +
                                             std::to_string(kRows - end) + "h1v" +
                                             std::to_string(end - row) + "h-1z";
        row = end;
      }
    }
    for (int shade = 1; shade < kShades; ++shade) {
      const std::string& path = paths[static_cast<size_t>(shade)];
      if (path.empty()) continue;
      m_drawing.Grid({kLeft, m_top}, kPanelWidth / picture.columns, height / kRows, path,
                     Shade(shade));
    }
    Open(height, "spectrum, kHz");
    const double most = m_plot.sound.rate / 2000.0;
    for (const double tick : Ticks(0, most, 5))
      Mark(m_top + height * (1 - tick / most), Short(tick));
    Scale(height);
    Close(height);
  }

  static int ShadeOf(float level) {
    const float share = 1 + level / static_cast<float>(kShownDecibels);
    return std::clamp(static_cast<int>(share * kShades), 0, kShades - 1);
  }

  // What the shades mean.
  void Scale(double height) {
    constexpr double kAt = kLeft + kPanelWidth + 12;
    for (int shade = 0; shade < kShades; ++shade) {
      m_drawing.Box({kAt, m_top + height * (kShades - 1 - shade) / kShades}, 12,
                    height / kShades + 0.5, Shade(shade));
    }
    for (int level = 0; level >= -kShownDecibels; level -= 30) {
      m_drawing.Text({kAt + 16, m_top - height * level / kShownDecibels + 4}, Anchor::kStart,
                     std::to_string(level) + (level == 0 ? " dB" : ""), 10);
    }
  }

  void Draw(const Course& course, double height) {
    Open(height, course.name + (course.unit.empty() ? "" : ", " + course.unit));
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const auto& figure : course.figures) {
      if (!figure) continue;
      low = std::min(low, *figure);
      high = std::max(high, *figure);
    }
    if (low > high) {
      m_drawing.Text({kLeft + kPanelWidth / 2, m_top + height / 2}, Anchor::kMiddle,
                     "no figure: " + course.reason);
      Close(height);
      return;
    }
    const double room = high > low ? 0.08 * (high - low) : std::max(1e-3, 0.1 * std::abs(high));
    low -= room;
    high += room;
    const auto y = [&](double value) { return m_top + height * (high - value) / (high - low); };
    for (const double tick : Ticks(low, high, 4)) {
      m_drawing.Line({kLeft, y(tick)}, {kLeft + kPanelWidth, y(tick)}, kFaint);
      Mark(y(tick), Short(tick));
    }
    std::string path;
    bool goesOn = false;
    for (size_t i = 0; i < course.figures.size(); ++i) {
      const auto& figure = course.figures[i];
      if (figure) {
        const double x = X(course.first + course.step * static_cast<double>(i));
        path += (goesOn ? "L" : "M") + Coordinate(x) + " " + Coordinate(y(*figure));
        // One that stands alone is a dot.
        const bool last = i + 1 == course.figures.size() || !course.figures[i + 1];
        if (!goesOn && last) path += "h2";
      }
      goesOn = figure.has_value();
    }
    m_drawing.Path(path, "none", kInk);
    Close(height);
  }

  const Plot& m_plot;
  double m_seconds = 0;
  double m_top = 58;
  Drawing m_drawing{kWidth};
};

}  // namespace

std::string PlotSvg(const Plot& plot) { return Picture(plot).Svg(); }

}  // namespace host
