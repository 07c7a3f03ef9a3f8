#include "report_page/guard_text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include "guards/rules.h"
#include "report_page/json_values.h"

namespace host {

namespace {

// In the order of the enumeration.
constexpr std::array<const char*, kGuards> kTexts = {
    "is silent where its input sounds",
    "is the same as the input",
    "is upside down against the input",
    "holds samples that are no numbers",
    "stays at full scale as its input does not",
    "falls silent while the input goes on",
    "clicks where the input does not",
    "is off zero by more than the input",
    "is longer or shorter than it should be",
    "is louder or softer than it should be",
    "goes beyond full scale between the samples",
    "has left and right swapped",
    "was recorded from a device that hears nothing",
    "was added to what the file held before",
    "depends on none of what an argument says",
    "is made from an input that was not read to its end",
    "comes with a line in which the engine refused something",
};

std::string Place(double at) {
  char text[64];
  snprintf(text, sizeof text, ", first at %.2f s", at);
  return text;
}

// Which of the channels; nothing of a single one.
std::string ChannelWords(double channel, std::optional<double> channels, bool afterPlace) {
  if (channels == 1) return "";
  if (channels == 2 && channel < 2) {
    return std::string(afterPlace ? "" : ",") + (channel < 1 ? " on the left" : " on the right");
  }
  return (afterPlace ? " in channel " : ", channel ") +
         std::to_string(static_cast<int>(channel) + 1);
}

}  // namespace

std::string GuardSentence(const Json& guard, std::optional<double> channels) {
  const std::string name = TextOf(guard, "name");
  const std::string file = TextOf(guard, "file");
  const auto known = FindGuard(name);
  std::string text = file.empty() ? "The run" : file;
  text += known ? std::string(" ") + kTexts[static_cast<size_t>(*known)] : " hits a guard";
  const auto at = NumberOf(guard, "at");
  if (at && std::isfinite(*at) && *at > 0) text += Place(*at);
  const auto channel = NumberOf(guard, "channel");
  if (channel && *channel >= 0 && *channel < 1000) {
    text += ChannelWords(*channel, channels, at && *at > 0);
  }
  return text + " (" + name + ")";
}

}  // namespace host
