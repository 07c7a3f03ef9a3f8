#pragma once

#include <optional>
#include <string>

#include "base/json_parts.h"

namespace host {

// What a guard of a report says, for readers who do not know it by its name: "out.wav: samples stay
// at full scale, first at 1.25 s on the left (clipped)". `channels` is how many its file has, where
// that is known.
std::string GuardSentence(const Json& guard, std::optional<double> channels);

}  // namespace host
