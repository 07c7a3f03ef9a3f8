#pragma once

namespace harness {

// The NOIZEUS corpus of noisy speech: its vocabulary, in the order in which the batches walk it.

inline constexpr const char* kNoizeusNoises[] = {"airport",    "babble",  "car",    "exhibition",
                                                 "restaurant", "station", "street", "train"};
inline constexpr int kNoizeusLevels[] = {0, 5, 10, 15};  // dB of speech above noise.
inline constexpr int kNoizeusSentences = 30;             // Numbered from 1.

}  // namespace harness
