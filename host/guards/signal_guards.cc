#include "guards/signal_guards.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

#include "guards/click.h"
#include "guards/dropout.h"
#include "guards/input_study.h"
#include "guards/level_guards.h"
#include "guards/pair_guards.h"
#include "guards/pairing.h"
#include "guards/true_peak_guard.h"
#include "guards/whole_guards.h"

namespace host {

namespace {

// Whether one of the guards that need input and output in time with each other is on.
bool NeedsPairing(const GuardHits& hits) {
  const std::initializer_list<Guard> guards = {Guard::kUnchanged, Guard::kInverted, Guard::kDropout,
                                               Guard::kClick, Guard::kSwapped};
  return std::ranges::any_of(guards, [&](Guard guard) { return hits.IsOn(guard); });
}

// Rates so far apart have no sound in common that would show a delay.
constexpr int kMaxRateFactor = 32;

bool CanBePaired(const Signal& input, const Signal& output) {
  return std::max(input.rate, output.rate) / std::min(input.rate, output.rate) < kMaxRateFactor;
}

}  // namespace

void CheckSignals(const GuardInput& input, GuardHits& hits) {
  const Signal& output = *input.output;
  CheckLength(input, hits);
  CheckFinite(input, hits);

  std::optional<InputStudy> own;
  InputStudy* study = input.study;
  if (input.input != nullptr && study == nullptr) study = &own.emplace(*input.input);
  Surveys surveys{.output = SurveyOf(output, output.channels), .input = {}};
  if (input.input != nullptr) surveys.input = study->Survey(output.channels);
  CheckSilence(input, surveys, hits);
  CheckClipped(input, surveys, hits);
  CheckDc(surveys, hits);
  CheckLevel(input, surveys, hits);
  CheckTruePeak(input, surveys, hits);
  if (input.input == nullptr || !NeedsPairing(hits)) return;

  if (IsCopy(*input.input, output)) {  // Nothing else can be wrong with it beside its input.
    CheckUnchanged(input, surveys, nullptr, hits);
    return;
  }
  std::optional<Pairing> pairing;
  if (input.rules.comparable && CanBePaired(*input.input, output)) {
    pairing.emplace(*study, output, input.rules);
  }
  CheckUnchanged(input, surveys, pairing ? &*pairing : nullptr, hits);
  if (!pairing) return;
  CheckInverted(*pairing, output.channels, hits);
  CheckSwapped(*pairing, hits);
  CheckDropout(input, surveys, *pairing, hits);
  CheckClicks(input, *pairing, hits);
}

}  // namespace host
