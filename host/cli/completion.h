#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace CLI {
class App;
}

namespace host {

// The script that makes bash complete the words of audio_bench, for
// share/bash-completion/completions.
std::string BashCompletion();

// What may stand in the place of word `at` of `words`, of which the first one is the program. One
// answer a line; the first line says which files may stand there as well: "none", "files",
// "folders" or "suites". `app` declares commands and options.
std::string Completions(const CLI::App& app, std::span<const std::string> words, size_t at);

}  // namespace host
