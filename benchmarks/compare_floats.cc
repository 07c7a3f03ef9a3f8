// Compares two headerless files of stereo floats frame by frame, and says how far they are apart.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Frames in which the other file may differ in length: the tail of the response, blocks of an FFT.
constexpr long kSlackFrames = 20000;

constexpr size_t kBlockFloats = 1 << 16;

long FrameCount(FILE* file) {
  fseek(file, 0, SEEK_END);
  return ftell(file) / static_cast<long>(2 * sizeof(float));
}

}  // namespace

// compare_floats A B FRAMES LIMIT: B is FRAMES frames ahead of A. 0 when no sample differs by more
// than LIMIT.
int main(int argc, char** argv) {
  FILE* const a = argc == 5 ? fopen(argv[1], "rb") : nullptr;
  FILE* const b = argc == 5 ? fopen(argv[2], "rb") : nullptr;
  if (a == nullptr || b == nullptr) {
    fprintf(stderr, "usage: compare_floats A B FRAMES LIMIT, with two files that can be read\n");
    return 2;
  }
  const long ahead = std::atol(argv[3]);
  const double limit = std::atof(argv[4]);
  const long framesOfA = FrameCount(a) - ahead;
  const long framesOfB = FrameCount(b);
  if (std::labs(framesOfA - framesOfB) > kSlackFrames || std::min(framesOfA, framesOfB) <= 0) {
    printf("lengths differ: %ld and %ld frames\n", framesOfA, framesOfB);
    return 1;
  }

  fseek(a, ahead * static_cast<long>(2 * sizeof(float)), SEEK_SET);
  fseek(b, 0, SEEK_SET);
  std::vector<float> blockOfA(kBlockFloats);
  std::vector<float> blockOfB(kBlockFloats);
  double largest = 0;
  double peak = 0;
  size_t got = kBlockFloats;
  while (got == kBlockFloats) {
    got = std::min(fread(blockOfA.data(), sizeof(float), kBlockFloats, a),
                   fread(blockOfB.data(), sizeof(float), kBlockFloats, b));
    for (size_t i = 0; i < got; ++i) {
      const double difference =
          std::fabs(static_cast<double>(blockOfA[i]) - static_cast<double>(blockOfB[i]));
      if (!(difference <= largest)) largest = std::isnan(difference) ? HUGE_VAL : difference;
      peak = std::max(peak, std::fabs(static_cast<double>(blockOfA[i])));
    }
  }
  fclose(a);
  fclose(b);
  printf("largest difference %.2e, peak %.3f\n", largest, peak);
  return largest <= limit && peak > 0 ? 0 : 1;
}
