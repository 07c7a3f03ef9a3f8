#pragma once

#include <span>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace host {

// A command and what may follow it, as usage lines show it.
struct Synopsis {
  std::string_view command;
  std::string_view arguments;
};

// All commands that a reader is told of, in order.
std::span<const Synopsis> Synopses();

// The command of that name; null when there is none.
const CLI::App* FindCommand(const CLI::App& app, std::string_view name);

inline constexpr const char* kExitCodes =
    "Exit codes: 0 pass, 1 fail, 2 not run as asked (usage) or results not delivered, 3 an input\n"
    "is missing or unreadable, 4 crash or time-out, 77 skip.";

// Shows these usage lines in the help of a program and of its commands.
void ShowSynopses(CLI::App& app);

}  // namespace host
