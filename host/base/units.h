#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Figures as text for readers, each with its unit.

std::string Seconds(double seconds);          // "0.31 s"; "3.1 ms" below a tenth of a second.
std::string Bytes(uint64_t bytes);            // "1764 bytes", "211.7 MB".
std::string Decibels(std::optional<double>);  // "-6.0 dBFS"; "silent" for nothing.
std::string Attenuation(double decibels);     // "3.2 dB"
std::string Ratio(double ratio);              // Two significant digits: "0.00052".
std::string Amount(double value, const std::string& unit);  // "89 ms", "4.216 dB", "1".
std::string Hertz(int rate);                                // "44100 Hz".
std::string Channels(int channels);                         // "mono", "stereo", "4 channels".
std::string ChannelName(int channel, int of);  // "left" and "right" of two, else "channel 1".

// The time now as ISO 8601 has it, UTC: "2026-03-01T12:00:00Z".
std::string TimeOfDay();

}  // namespace host
