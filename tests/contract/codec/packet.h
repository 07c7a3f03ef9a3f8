#pragma once

#include <cstdint>
#include <string>

// A packet after its length in two bytes.
inline std::string Packet(const std::string& bytes) {
  const auto length = static_cast<uint16_t>(bytes.size());
  std::string packet(reinterpret_cast<const char*>(&length), sizeof length);
  packet += bytes;
  return packet;
}
