// The head of a frame in its three styles, in memory of exactly the size that each one needs.

#include <algorithm>

#include "bench/codec/routines.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 100000;

std::vector<std::string> Seeds() {
  return {"", std::string("\xFF\xF1\x50\x80\x2A\xBF\xFC", 7), std::string("\x05\xFC", 2),
          std::string("\x10\0\0\0", 4)};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (const auto& [style, bytes] : {std::pair(7, 6), {2, 2}, {4, 4}, {3, 0}}) {
    std::vector<unsigned char> header(static_cast<size_t>(bytes));
    std::copy_n(data, std::min(size, header.size()), header.begin());
    const int length = GetCodecFrameLength(header.data(), style);
    if (style == 7) REQUIRE(length >= 0 && length <= 2047);
    if (style == 2) REQUIRE(length == 0 || (length >= 2 && length <= 1025));
    if (style == 3) REQUIRE(length == 0);
  }
  return 0;
}
