#pragma once

#include <string>

namespace CLI {
class App;
}

namespace host {

// Declares --engine, which takes the word that FindEngine takes.
void AddEngine(CLI::App& command, std::string& engine);

// Declares --engine-only, which goes with it.
void AddEngineOnly(CLI::App& command, bool& only);

}  // namespace host
