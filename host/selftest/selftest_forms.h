#pragma once

#include <span>
#include <string>
#include <string_view>

#include "selftest/run_controls.h"

namespace host {

// What the controls of these measures have shown, in the forms that `selftest` prints.

// For readers: a line for each measure, and after it each control that does not hold. One that has
// no controls does not hold.
std::string SelftestText(std::span<const std::string_view> names,
                         std::span<const Outcome> outcomes);

// For programs; selftest.schema.json describes it.
std::string SelftestJson(std::span<const std::string_view> names,
                         std::span<const Outcome> outcomes);

}  // namespace host
