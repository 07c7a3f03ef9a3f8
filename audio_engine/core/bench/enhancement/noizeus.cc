// The NOIZEUS batch: what each algorithm made of every noisy sentence, scored against the clean
// ones. A table for each measure, algorithm and noise; higher is better, and what an algorithm
// brings is its lead over "off".

#include <cstdio>
#include <string>

#include "bench/enhancement/align.h"
#include "bench/enhancement/routines.h"
#include "harness/format_name.h"
#include "harness/noizeus_cases.h"
#include "harness/stdio_file.h"

using harness::FormatName;
using harness::StdioFile;

namespace {

// Deliberate: the light mode comes before the normal one. The batch that writes these files does
// the normal mode first.
constexpr const char* algorithm[] = {"aec", "denoise_light", "denoise", "mcra2", "off"};
constexpr const char* measure[] = {"avg_snr", "speech_snr"};

// By how many samples the output of each algorithm lags its input. None is negative today.
constexpr int32_t g_algorithmShift[] = {48, 80, 80, 128, 0};

constexpr int32_t kOff = 4;

bool IsAlgorithm(int32_t ns) { return ns >= 0 && ns <= kOff; }

// The name of what algorithm `ns` made of a sentence.
std::string ProcessedName(int32_t ns, const char* noise, int level, int sentence) {
  if (ns == kOff) {
    return FormatName("NOIZEUS/in/%s/%ddB/sp%02d_%s_sn%d.pcm", noise, level, sentence, noise,
                      level);
  }
  return FormatName("NOIZEUS/out/sp%02d_%s_sn%d_%s.pcm", sentence, noise, level,
                    IsAlgorithm(ns) ? algorithm[ns] : "");
}

float Score(int32_t ms, int sentence, StdioFile& clean, StdioFile& processed) {
  if (ms == 0) return MeasureAverageSNR(clean.get(), processed.get());
  if (ms == 1) return MeasureSpeechSNR(sentence, clean.get(), processed.get());
  return 0.0f;
}

}  // namespace

// Scores algorithm `ns` with measure `ms`: a file for each noise, a line for each level, a figure
// in dB for each sentence. Every file is opened anew for every figure, whether it is read or not.
void TestNoizeusEx(int32_t ns, int32_t ms) {
  const int32_t shift = IsAlgorithm(ns) ? g_algorithmShift[ns] : 0;
  const char* const algorithmName = IsAlgorithm(ns) ? algorithm[ns] : "";
  const char* const measureName = ms == 0 || ms == 1 ? measure[ms] : "";

  for (const char* const noise : harness::kNoizeusNoises) {
    StdioFile result(
        FormatName("NOIZEUS/out/result_%s_%s_%s.txt", measureName, algorithmName, noise).c_str(),
        "wt");
    for (const int level : harness::kNoizeusLevels) {
      for (int i = 1; i <= harness::kNoizeusSentences; ++i) {
        StdioFile clean(FormatName("NOIZEUS/in/clean/sp%02d.pcm", i).c_str(), "rb");
        StdioFile processed(ProcessedName(ns, noise, level, i).c_str(), "rb");
        bench::Align(clean, processed, shift);
        result.Print("%f ", static_cast<double>(Score(ms, i, clean, processed)));
        clean.Close();
        processed.Close();
      }
      result.Print("\n");
    }
  }
}

void TestNoizeus() {
  for (int32_t ns = 0; ns <= kOff; ++ns) {
    TestNoizeusEx(ns, 0);
    TestNoizeusEx(ns, 1);
  }
}
