// The batches over the corpus of noisy speech, on a whole generated one: the scores beside a
// program that only reads the same files as often and in the same way, the suppressor's batch
// beside the suppressor alone.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/enhancement/routines.h"
#include "bench/enhancement/speech_segment.h"
#include "catalogue/noizeus_files.h"
#include "cpu_timer.h"
#include "engine_api/enhancement/audio_denoise.h"
#include "noise.h"
#include "support/temporary_directory.h"

namespace {

using harness::FileUse;

constexpr size_t kSentenceSamples = 22000;
constexpr const char* kAlgorithms[] = {"aec", "denoise_light", "denoise", "mcra2"};
constexpr int kShifts[] = {48, 80, 80, 128};

bool WriteSentences(const std::vector<FileUse>& files) {
  Noise noise(1);
  std::vector<short> samples(kSentenceSamples);
  for (const FileUse& file : files) {
    const std::filesystem::path name = file.name;
    std::filesystem::create_directories(name.parent_path());
    for (short& sample : samples) sample = static_cast<short>(noise.Next() / 8);
    FILE* const out = fopen(name.c_str(), "wb");
    if (out == nullptr) return false;
    const bool written =
        fwrite(samples.data(), sizeof(short), samples.size(), out) == samples.size();
    if (fclose(out) != 0 || !written) return false;
  }
  return true;
}

bool WriteCorpus(bool processed) {
  std::filesystem::create_directories("NOIZEUS/out");
  bool written = WriteSentences(harness::NoizeusClean()) && WriteSentences(harness::NoizeusNoisy());
  for (const char* const algorithm : kAlgorithms) {
    if (processed) written = written && WriteSentences(harness::NoizeusProcessed(algorithm));
  }
  return written;
}

void ReadWhole(FILE* clean, FILE* processed) {
  char frame[320];
  while (fread(frame, sizeof frame, 1, clean) == 1 &&
         fread(frame, sizeof frame, 1, processed) == 1) {
    benchmark::DoNotOptimize(frame);
  }
}

void ReadSegments(size_t sentence, int shift, FILE* clean, FILE* processed) {
  char frame[320];
  const int32_t* segment = g_speechSegment[sentence];
  for (; segment[0] >= 0; segment += 2) {
    fseek(clean, 2 * segment[0], SEEK_SET);
    fseek(processed, 2 * (shift + segment[0]), SEEK_SET);
    for (int i = 0; i < segment[1] / 160; ++i) {
      if (fread(frame, sizeof frame, 1, clean) != 1) continue;
      if (fread(frame, sizeof frame, 1, processed) != 1) continue;
      benchmark::DoNotOptimize(frame);
    }
  }
}

// Reads what one call of TestNoizeusEx reads.
void ReadScored(const std::vector<FileUse>& cleanFiles, const std::vector<FileUse>& files,
                int shift, bool segments) {
  for (size_t i = 0; i < files.size(); ++i) {
    const size_t sentence = i % cleanFiles.size();
    FILE* const clean = fopen(cleanFiles[sentence].name.c_str(), "rb");
    FILE* const processed = fopen(files[i].name.c_str(), "rb");
    if (clean != nullptr && processed != nullptr) {
      fseek(clean, 0, SEEK_SET);
      fseek(processed, 2 * shift, SEEK_SET);
      if (segments) {
        ReadSegments(sentence, shift, clean, processed);
      } else {
        ReadWhole(clean, processed);
      }
    }
    if (clean != nullptr) fclose(clean);
    if (processed != nullptr) fclose(processed);
  }
}

void WholeTestNoizeus(benchmark::State& state) {
  const TemporaryDirectory workspace;
  if (!WriteCorpus(true)) {
    state.SkipWithError("the corpus cannot be written");
    return;
  }
  const std::vector<FileUse> clean = harness::NoizeusClean();
  std::vector<std::vector<FileUse>> lists;
  for (const char* const algorithm : kAlgorithms) {
    lists.push_back(harness::NoizeusProcessed(algorithm));
  }
  const std::vector<FileUse> noisy = harness::NoizeusNoisy();

  double scoring = 0;
  double reading = 0;
  for (auto _ : state) {
    const double seconds = TimeOf([] { TestNoizeus(); });
    state.SetIterationTime(seconds);
    scoring += seconds;
    reading += TimeOf([&] {
      for (const bool segments : {false, true}) {
        for (size_t i = 0; i < lists.size(); ++i) {
          ReadScored(clean, lists[i], kShifts[i], segments);
        }
        ReadScored(clean, noisy, 0, segments);
      }
    });
  }
  state.counters["times_reading"] = scoring / reading;
}
BENCHMARK(WholeTestNoizeus)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void WholeTestDenoiseProcessNoizeus(benchmark::State& state) {
  const TemporaryDirectory workspace;
  if (!WriteCorpus(false)) {
    state.SkipWithError("the corpus cannot be written");
    return;
  }
  std::vector<short> sentence(kSentenceSamples);
  Noise noise(1);
  // Not timed: how long it takes to make 1920 files is the file system's. One that has just deleted
  // as many spends a fifth of the whole time on it.
  TestDenoiseProcessNoizeus();
  double batch = 0;
  double alone = 0;
  for (auto _ : state) {
    const double seconds = TimeOf([] { TestDenoiseProcessNoizeus(); });
    state.SetIterationTime(seconds);
    batch += seconds;
    for (int i = 0; i < 2 * 960; ++i) {
      for (short& sample : sentence) sample = static_cast<short>(noise.Next() / 8);
      alone += TimeOf([&] {
        CAudioDenoise denoise(8000, 1);
        denoise.EnableLightDenoise(i >= 960);
        for (size_t at = 0; at < sentence.size(); at += 80) denoise.Process(&sentence[at]);
      });
    }
  }
  state.counters["percent_in_suppressor"] = 100 * alone / batch;
}
BENCHMARK(WholeTestDenoiseProcessNoizeus)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
