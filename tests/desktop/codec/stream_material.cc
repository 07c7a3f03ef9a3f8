#include "desktop/codec/stream_material.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "engine_api/codec/stream_to_aac.h"

std::string Converted(const std::string& stream) {
  unsigned char* out = nullptr;
  const std::vector<char> exact(stream.begin(), stream.end());
  const int bytes = TransZUStreamToAAC(exact.data(), static_cast<int>(exact.size()), &out);
  EXPECT_EQ(out == nullptr, bytes == 0);
  std::string aac(reinterpret_cast<const char*>(out), static_cast<size_t>(bytes));
  free(out);
  return aac;
}

std::string Join(const std::vector<std::string>& packets) {
  std::string stream;
  for (const std::string& packet : packets) stream += packet;
  return stream;
}
