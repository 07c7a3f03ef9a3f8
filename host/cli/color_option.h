#pragma once

#include "base/paint.h"

namespace CLI {
class App;
}

namespace host {

// Adds --color, which sets `color`, to a command that prints verdicts.
void AddColor(CLI::App& command, Color& color);

}  // namespace host
