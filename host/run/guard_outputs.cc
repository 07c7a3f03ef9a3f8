#include "run/guard_outputs.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "guards/guards.h"
#include "guards/input_study.h"
#include "run/file_samples.h"
#include "run/source_of_output.h"

namespace host {

namespace {

using harness::SoundUse;

// What is longer has no guards on its sound: nobody waits long for what he has not asked for.
constexpr uint64_t kMaxSamples = 100'000'000;

// The sound of a file, which must stay.
class OpenedSound {
 public:
  OpenedSound(const FileReport& file, const AudioLayout& audio, const std::function<bool()>& goOn)
      : m_samples(file.place.path, audio, goOn),
        m_signal{.samples = {m_samples, m_samples.Size()},
                 .rate = audio.rate,
                 .channels = audio.channels,
                 .bits = *audio.samples == SampleType::kPcm16 ? 16 : 0} {}

  const Signal& signal() const { return m_signal; }

  // Whether all that was looked at is what the file holds.
  bool WasRead() const { return !m_samples.HasFailed(); }

 private:
  FileSamples m_samples;
  Signal m_signal;
};

// Null where the file holds no samples that are decoded here, or too many.
std::unique_ptr<OpenedSound> Open(const FileReport& file, const std::function<bool()>& goOn) {
  const std::optional<AudioLayout>& audio = file.audio;
  if (file.absent || !audio || !audio->samples || audio->rate <= 0) return nullptr;
  const uint64_t width = *audio->samples == SampleType::kPcm16 ? 2 : 4;
  if (audio->bytes / width > kMaxSamples) return nullptr;
  auto opened = std::make_unique<OpenedSound>(file, *audio, goOn);
  return opened->signal().samples.empty() ? nullptr : std::move(opened);
}

// The input of one output after the other. Most have the same.
class OpenedInput {
 public:
  explicit OpenedInput(std::function<bool()> goOn) : m_goOn(std::move(goOn)) {}

  // Null where there is none to go by, also for one that could not be read to its end.
  InputStudy* Of(const FileReport* file) {
    if (file != m_file) {
      m_file = file;
      m_study.reset();
      m_opened = file == nullptr || file->changed ? nullptr : Open(*file, m_goOn);
      if (m_opened != nullptr) m_study.emplace(m_opened->signal());
    }
    return m_opened != nullptr && m_opened->WasRead() ? &*m_study : nullptr;
  }

 private:
  std::function<bool()> m_goOn;
  const FileReport* m_file = nullptr;
  std::unique_ptr<OpenedSound> m_opened;
  std::optional<InputStudy> m_study;
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
  OpenedInput input(goOn);
  for (FileReport& file : report.outputs) {
    const SoundUse* const sound = harness::FindSound(plan.row->sounds, file.place.use.name);
    if (sound == nullptr) continue;
    const size_t place = places[sound]++;
    if (!sound->noSound.empty() || file.state != OutputState::kWritten) continue;
    if (file.changed || !goOn()) continue;
    const std::unique_ptr<OpenedSound> made = Open(file, goOn);
    if (made == nullptr) continue;
    const FileReport* source = SourceInput(sound->input, place, report.inputs);
    const bool heardNothing = source == nullptr && captures;
    if (!comparable) source = nullptr;
    InputStudy* const study = input.Of(source);
    GuardInput judged = {.input = study == nullptr ? nullptr : &study->Input(),
                         .output = &made->signal(),
                         .rules = RulesOf(*sound),
                         .facts = {.nullDevice = heardNothing},
                         .study = study};
    std::vector<GuardHit> hits = CheckGuards(judged);
    // An input that has become shorter meanwhile tells nothing.
    if (study != nullptr && input.Of(source) == nullptr) {
      judged.input = nullptr;
      judged.study = nullptr;
      hits = CheckGuards(judged);
    }
    if (!made->WasRead()) continue;
    file.guards.insert(file.guards.end(), hits.begin(), hits.end());
  }
}

}  // namespace host
