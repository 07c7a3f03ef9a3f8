#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// Samples as a FLAC file.
struct FlacFile {
  std::string bytes = {};
  double gain = 0;  // dB by which it is softer than the samples, where it has no room for them.
  std::string fault = {};  // Why there is none; empty where there is.
};

// One vector for each channel, full scale at 1; 16 or 24 bits.
FlacFile EncodeFlac(const std::vector<std::vector<float>>& channels, int rate, int bits);

// Bytes in base64 (RFC 4648, section 4).
std::string Base64(std::string_view bytes);

}  // namespace host
