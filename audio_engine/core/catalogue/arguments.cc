#include "catalogue/arguments.h"

namespace harness {

template <>
std::span<const Enumerator<AudioLocalCodec::AudioCodecType>> Enumerators() {
  using namespace AudioLocalCodec;
  static constexpr Enumerator<AudioCodecType> kCodecs[] = {
      {"UNKNOWN_CODEC", UNKNOWN_CODEC},     {"SPEEX_CODEC_8", SPEEX_CODEC_8},
      {"AAC_PLUS_CODEC", AAC_PLUS_CODEC},   {"SILK_CODEC", SILK_CODEC},
      {"AAC_ELD_CODEC", AAC_ELD_CODEC},     {"SPEEX_CODEC_4", SPEEX_CODEC_4},
      {"SPEEX_CODEC_2", SPEEX_CODEC_2},     {"AAC_LC_CODEC", AAC_LC_CODEC},
      {"AAC_AUDIT_CODEC", AAC_AUDIT_CODEC}, {"WAV_CODEC", WAV_CODEC}};
  return kCodecs;
}

bool Argument<int*>::Parse(std::string_view word) {
  numbers.clear();
  if (word == "none") return true;
  while (!word.empty()) {
    const size_t comma = std::min(word.find(','), word.size());
    Argument<int> number;
    if (!number.Parse(word.substr(0, comma)) || number.value < 0) return false;
    numbers.push_back(number.value);
    if (comma + 1 == word.size()) return false;  // Nothing after the last comma.
    word.remove_prefix(std::min(comma + 1, word.size()));
  }
  const bool pairs = !numbers.empty() && numbers.size() % 2 == 0;
  if (!pairs || numbers.size() > 2 * kMaxPairs) return false;
  numbers.push_back(-1);
  return true;
}

}  // namespace harness
