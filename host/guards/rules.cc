#include "guards/rules.h"

namespace host {

namespace {

constexpr std::array<const char*, kGuards> kNames = {
    "silent",          "unchanged", "inverted",        "not_finite",   "clipped",    "dropout",
    "click",           "dc",        "length",          "level",        "true_peak",  "swapped",
    "digital_silence", "appended",  "argument_unused", "input_unread", "engine_said"};

}  // namespace

const char* GuardName(Guard guard) { return kNames[static_cast<size_t>(guard)]; }

std::optional<Guard> FindGuard(std::string_view name) {
  for (size_t i = 0; i < kGuards; ++i) {
    if (name == kNames[i]) return static_cast<Guard>(i);
  }
  return std::nullopt;
}

GuardRules::GuardRules() {
  m_actions.fill(GuardAction::kWarn);
  for (const Guard guard :
       {Guard::kSilent, Guard::kNotFinite, Guard::kClipped, Guard::kDropout, Guard::kLength}) {
    (*this)[guard] = GuardAction::kFail;
  }
}

}  // namespace host
