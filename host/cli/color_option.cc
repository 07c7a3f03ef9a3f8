#include "cli/color_option.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace host {

void AddColor(CLI::App& command, Color& color) {
  const std::map<std::string, Color> words = {
      {"auto", Color::kAuto}, {"always", Color::kAlways}, {"never", Color::kNever}};
  command
      .add_option_function<std::string>(
          "--color", [&color, words](const std::string& word) { color = words.at(word); },
          "Colour the verdicts (auto: on a terminal, unless NO_COLOR is set)")
      ->type_name("auto|always|never")
      ->check([words](const std::string& word) {
        return words.contains(word) ? "" : "is none of auto, always and never: " + word;
      });
}

}  // namespace host
