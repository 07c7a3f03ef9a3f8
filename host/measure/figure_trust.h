#pragma once

#include <string_view>

namespace host {

// Whether figures of a measure are marked as untrusted: it has not passed its self-test in this
// build, or nobody knows whether it has.
bool IsUntrusted(std::string_view measure);

}  // namespace host
