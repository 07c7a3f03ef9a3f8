#include "run/guard_outputs.h"

#include <sys/mman.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "files/audio_figures.h"
#include "files/regular_file.h"
#include "guards/guards.h"
#include "run/source_of_output.h"

namespace host {

namespace {

using harness::SoundUse;

// Both signals are held in memory: what is longer has no guards on its sound.
constexpr uint64_t kMaxSamples = 100'000'000;

// Asks for large pages for what is going to hold so many samples: to get thousands of small ones
// takes about as long as to read the samples. No more than a wish.
void TakeLargePages(std::vector<float>& samples) {
  constexpr size_t kLargePage = 2U << 20U;
  void* first = samples.data();
  size_t bytes = samples.capacity() * sizeof(float);
  if (std::align(kLargePage, kLargePage, first, bytes) == nullptr) return;
  madvise(first, bytes / kLargePage * kLargePage, MADV_HUGEPAGE);
}

// The samples of a file, which must stay.
class Loaded {
 public:
  // The same file as the last time is not read again. Null where the file holds no samples that are
  // decoded here, or too many.
  const Signal* Load(const FileReport& file, const std::function<bool()>& goOn) {
    if (m_file != &file) {
      m_file = &file;
      m_loaded = Read(file, goOn);
    }
    return m_loaded ? &m_signal : nullptr;
  }

 private:
  bool Read(const FileReport& file, const std::function<bool()>& goOn) {
    const std::optional<AudioLayout>& audio = file.audio;
    if (file.absent || !audio || !audio->samples || audio->rate <= 0) return false;
    const uint64_t width = *audio->samples == SampleType::kPcm16 ? 2 : 4;
    if (audio->bytes == 0 || audio->bytes / width > kMaxSamples) return false;
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(OpenRegular(file.place.path), fclose);
    if (stream == nullptr) return false;
    m_samples.clear();
    m_samples.reserve(audio->bytes / width);
    TakeLargePages(m_samples);
    const std::string fault =
        ForEachSampleBlock(stream.get(), *audio, [&](std::span<const float> block) {
          m_samples.insert(m_samples.end(), block.begin(), block.end());
          return goOn();
        });
    if (!fault.empty() || m_samples.empty()) return false;
    m_signal = {.samples = m_samples,
                .rate = audio->rate,
                .channels = audio->channels,
                .bits = width == 2 ? 16 : 0};
    return true;
  }

  const FileReport* m_file = nullptr;
  bool m_loaded = false;
  std::vector<float> m_samples;
  Signal m_signal;
};

GuardRules RulesOf(const SoundUse& sound) {
  GuardRules rules;
  rules.comparable = sound.comparable;
  rules.lengthFactor = sound.lengthFactor;
  rules.lengthTolerance = sound.lengthTolerance;
  rules.leastLevel = sound.leastLevel;
  rules.mostLevel = sound.mostLevel;
  for (const harness::GuardOff& off : sound.off) {
    if (const auto guard = FindGuard(off.guard))
      rules[*guard] = off.warns ? GuardAction::kWarn : GuardAction::kOff;
  }
  return rules;
}

}  // namespace

void GuardOutputs(const Plan& plan, Limits& limits, RunReport& report) {
  const auto goOn = [&] { return limits.Check() == Limits::Stop::kNone; };
  // No microphone hears nothing but zeros.
  const bool captures = plan.row->device == Device::kCapture || plan.row->device == Device::kBoth;
  // What a routine makes of an input that is not whole, or of another format than the right one, is
  // not held against it: the verdict names the input.
  const bool comparable = std::all_of(report.inputs.begin(), report.inputs.end(),
                                      [](const FileReport& each) { return each.problems.empty(); });
  std::map<const SoundUse*, size_t> places;
  Loaded input;
  Loaded output;
  for (FileReport& file : report.outputs) {
    const SoundUse* const sound = harness::FindSound(plan.row->sounds, file.place.use.name);
    if (sound == nullptr) continue;
    const size_t place = places[sound]++;
    if (!sound->noSound.empty() || file.state != OutputState::kWritten) continue;
    if (file.changed || !goOn()) continue;
    const Signal* const made = output.Load(file, goOn);
    if (made == nullptr) continue;
    const FileReport* const source = SourceInput(sound->input, place, report.inputs);
    const std::vector<GuardHit> hits = CheckGuards(
        {.input = source == nullptr || source->changed || !comparable ? nullptr
                                                                      : input.Load(*source, goOn),
         .output = made,
         .rules = RulesOf(*sound),
         .facts = {.nullDevice = source == nullptr && captures}});
    file.guards.insert(file.guards.end(), hits.begin(), hits.end());
  }
}

}  // namespace host
