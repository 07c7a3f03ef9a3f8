#pragma once

#include <string>

#include "base/json_parts.h"

namespace host {

// What a guard of a report says, for readers who do not know it by its name: "out.wav: samples stay
// at full scale, first at 1.25 s in channel 1 (clipped)".
std::string GuardSentence(const Json& guard);

}  // namespace host
