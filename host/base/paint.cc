#include "base/paint.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace host {

namespace {

struct Meaning {
  std::string_view word;
  std::string_view color;  // Of ECMA-48, as "select graphic rendition" takes it.
};

constexpr std::string_view kGreen = "32";
constexpr std::string_view kYellow = "33";
constexpr std::string_view kRed = "31";
constexpr std::string_view kCyan = "36";

constexpr Meaning kMeanings[] = {{"pass", kGreen},     {"warn", kYellow},  {"fail", kRed},
                                 {"error", kRed},      {"skip", kCyan},    {"known", kCyan},
                                 {"PASSES", kYellow},  {"not_run", kCyan}, {"available", kGreen},
                                 {"lacking", kYellow}, {"worse", kRed},    {"changed", kRed},
                                 {"better", kGreen},   {"same", kGreen},   {"undecided", kYellow}};

bool IsSet(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool HasColors(int descriptor) {
  if (!IsSet("TERM") || isatty(descriptor) == 0) return false;
  return std::string_view(std::getenv("TERM")) != "dumb";
}

}  // namespace

Paint::Paint(Color color, int descriptor)
    : m_colored(color == Color::kAlways ||
                (color == Color::kAuto && !IsSet("NO_COLOR") && HasColors(descriptor))) {}

std::string Paint::Word(std::string_view word) const {
  const std::string_view bare = word.substr(0, word.find_last_not_of(' ') + 1);
  const auto* const meaning =
      std::ranges::find(kMeanings, bare, [](const Meaning& each) { return each.word; });
  if (!m_colored || meaning == std::end(kMeanings)) return std::string(word);
  return "\x1b[" + std::string(meaning->color) + "m" + std::string(bare) + "\x1b[0m" +
         std::string(word.substr(bare.size()));
}

}  // namespace host
