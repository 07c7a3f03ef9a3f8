#pragma once

#include <string>

namespace CLI {
class App;
}

namespace host {

// The manual page audio_bench(1), in the man macros of roff, with the commands and options that
// `app` declares and --help shows.
std::string ManualPage(const CLI::App& app);

}  // namespace host
