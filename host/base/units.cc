#include "base/units.h"

#include <cmath>
#include <ctime>

#include "harness/format_name.h"

namespace host {

using harness::FormatName;

std::string Seconds(double seconds) {
  if (seconds < 0.1) return FormatName("%.1f ms", seconds * 1000);
  return FormatName("%.2f s", seconds);
}

std::string Bytes(uint64_t bytes) {
  const auto value = static_cast<double>(bytes);
  if (value < 1e4) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  if (value < 1e6) return FormatName("%.1f kB", value / 1e3);
  if (value < 1e9) return FormatName("%.1f MB", value / 1e6);
  return FormatName("%.2f GB", value / 1e9);
}

std::string Decibels(std::optional<double> level) {
  if (!level) return "silent";
  return FormatName("%.1f dBFS", std::round(*level * 10) / 10 + 0.0);  // This is never "-0.0".
}

std::string Attenuation(double decibels) { return FormatName("%.1f dB", decibels); }

std::string Ratio(double ratio) { return FormatName("%.2g", ratio); }

std::string Amount(double value, const std::string& unit) {
  const bool whole = value == std::floor(value) && std::abs(value) < 1e15;
  const std::string text = whole ? FormatName("%.0f", value) : FormatName("%.4g", value);
  return unit == "1" ? text : text + " " + unit;
}

std::string Hertz(int rate) { return std::to_string(rate) + " Hz"; }

std::string Channels(int channels) {
  if (channels == 1) return "mono";
  if (channels == 2) return "stereo";
  return std::to_string(channels) + " channels";
}

std::string ChannelName(int channel, int of) {
  if (of == 1) return "mono";
  if (of == 2) return channel == 0 ? "left" : "right";
  return "channel " + std::to_string(channel + 1);
}

std::string TimeOfDay() {
  const time_t now = time(nullptr);
  tm parts;
  char text[32];
  return std::string(text, strftime(text, sizeof text, "%FT%TZ", gmtime_r(&now, &parts)));
}

}  // namespace host
