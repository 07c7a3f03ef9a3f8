#pragma once

#include <string_view>

namespace host {

// The page that the build has made, with its style and its script; empty where it could not.
std::string_view PageTemplate();

}  // namespace host
