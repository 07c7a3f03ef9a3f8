#pragma once

#include <cstdint>
#include <string>

// A frame after its length in four bytes.
inline std::string Record(uint32_t length, const std::string& bytes) {
  std::string record(reinterpret_cast<const char*>(&length), sizeof length);
  record += bytes;
  return record;
}
