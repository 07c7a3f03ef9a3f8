// Runs the guards over pairs of WAVE files (16-bit integers or floats): guard_pairs INPUT OUTPUT
// ... One line for each guard that is hit, then the totals. Returns 1 when one fails.
// guard_alarms.sh makes the pairs.

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "guards/guards.h"
#include "wave/wave_file.h"

namespace {

struct Recording {
  std::vector<float> samples;
  host::Signal signal;
};

[[noreturn]] void GiveUp(const std::string& path, const char* reason) {
  fprintf(stderr, "guard_pairs: %s: %s\n", path.c_str(), reason);
  exit(1);
}

std::unique_ptr<Recording> Read(const std::string& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "rb"), fclose);
  struct stat status = {};
  if (!file || fstat(fileno(file.get()), &status) != 0) GiveUp(path, strerror(errno));
  const wave::Parsed parsed = wave::Find(file.get(), static_cast<uint64_t>(status.st_size));
  if (!parsed.audio) GiveUp(path, parsed.fault);
  const wave::Audio& audio = *parsed.audio;
  if (!audio.IsPcm16() && !audio.IsFloat32()) GiveUp(path, "neither 16-bit integers nor floats");
  std::vector<char> bytes(audio.bytes);
  if (fseeko(file.get(), static_cast<off_t>(audio.offset), SEEK_SET) != 0 ||
      fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    GiveUp(path, "cannot be read");
  }
  auto recording = std::make_unique<Recording>();
  const size_t width = audio.IsPcm16() ? sizeof(int16_t) : sizeof(float);
  recording->samples.resize(bytes.size() / static_cast<size_t>(audio.frameBytes) *
                            static_cast<size_t>(audio.channels));
  for (size_t i = 0; i < recording->samples.size(); ++i) {
    if (audio.IsPcm16()) {
      int16_t sample = 0;
      memcpy(&sample, &bytes[i * width], width);
      recording->samples[i] = static_cast<float>(sample) / 32768;
    } else {
      memcpy(&recording->samples[i], &bytes[i * width], width);
    }
  }
  recording->signal = {.samples = recording->samples,
                       .rate = audio.rate,
                       .channels = audio.channels,
                       .bits = audio.IsPcm16() ? 16 : 0};
  return recording;
}

}  // namespace

int main(int argc, char** argv) {
  double seconds = 0;
  size_t pairs = 0;
  size_t warned = 0;
  size_t failed = 0;
  clock_t spent = 0;
  for (int i = 1; i + 1 < argc; i += 2) {
    const auto input = Read(argv[i]);
    const auto output = Read(argv[i + 1]);
    const clock_t start = clock();
    const auto hits = host::CheckGuards(
        {.input = &input->signal, .output = &output->signal, .rules = {}, .facts = {}});
    spent += clock() - start;
    ++pairs;
    seconds += output->signal.Seconds();
    warned += hits.empty() ? 0 : 1;
    failed += std::ranges::any_of(hits, &host::GuardHit::fails) ? 1 : 0;
    for (const host::GuardHit& hit : hits) {
      printf("%s: %s %s at %.3f s, channel %d: %s\n", argv[i + 1], hit.fails ? "FAILS" : "warns",
             hit.Name(), hit.at.value_or(-1), hit.channel.value_or(-1), hit.text.c_str());
    }
  }
  printf("%zu pairs, %.0f s: %zu hit, %zu fail, %.2f s of CPU\n", pairs, seconds, warned, failed,
         static_cast<double>(spent) / CLOCKS_PER_SEC);
  return failed > 0 ? 1 : 0;
}
