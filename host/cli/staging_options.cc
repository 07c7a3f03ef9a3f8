#include "cli/staging_options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

#include "cli/seconds_word.h"

namespace host {

namespace {

struct RawName {
  std::string_view name;
  RawForm::Samples samples;
};

constexpr RawName kRawNames[] = {{"s16", RawForm::Samples::kS16},
                                 {"s24", RawForm::Samples::kS24},
                                 {"s32", RawForm::Samples::kS32},
                                 {"f32", RawForm::Samples::kF32}};

// The number up to the next comma, which is taken off; nothing for one that is not from 1 to `max`.
std::optional<int> TakeNumber(std::string_view& words, int max) {
  int number = 0;
  const auto [last, error] = std::from_chars(words.begin(), words.end(), number);
  if (error != std::errc() || last == words.end() || *last != ',') return std::nullopt;
  words.remove_prefix(static_cast<size_t>(last - words.begin()) + 1);
  if (number < 1 || number > max) return std::nullopt;
  return number;
}

}  // namespace

std::optional<RawForm> ParseRawForm(std::string_view words) {
  const std::optional<int> rate = TakeNumber(words, kMaxRate);
  const std::optional<int> channels = rate ? TakeNumber(words, kMaxRecordedChannels) : rate;
  if (!channels) return std::nullopt;
  for (const RawName& each : kRawNames) {
    if (each.name == words) {
      return RawForm{.rate = *rate, .channels = *channels, .samples = each.samples};
    }
  }
  return std::nullopt;
}

namespace {

std::string ChannelsProblem(const std::string& word) {
  return word == "first" || word == "mean" ? "" : "is neither first nor mean: " + word;
}

std::string StartProblem(const std::string& word) {
  return word == "0" ? "" : SecondsProblem(word);
}

}  // namespace

std::string RawFormProblem(const std::string& word) {
  if (ParseRawForm(word)) return "";
  return "not RATE,CHANNELS,s16|s24|s32|f32: " + word;
}

void StagingOptions::AddTo(CLI::App& command, Case& what) {
  command
      .add_option("--in", what.in,
                  "Put a recording in the place of an input: WAVE, FLAC, AIFF, CAF, Ogg, MP3, AAC")
      ->type_name("[NAME=]FILE")
      ->allow_extra_args(false);
  command.add_option("--raw", m_raw, "What samples without a header are: RATE,CHANNELS,s16")
      ->type_name("FORM")
      ->check(RawFormProblem);
  command
      .add_option("--channels", m_channels,
                  "Take the first channels, or the mean of all, where there are others than wanted")
      ->type_name("first|mean")
      ->check(ChannelsProblem);
  command.add_option("--start", what.wishes.cut.start, "Take recordings from here on, in seconds")
      ->type_name("S")
      ->check(StartProblem);
  command.add_option("--seconds", what.wishes.cut.seconds, "Take so many seconds of them")
      ->type_name("S")
      ->check(SecondsProblem);
  command.add_flag("--force", what.wishes.force,
                   "Replace files in their places that were not put there by stage");
}

void StagingOptions::Take(Case& what) const {
  if (!m_raw.empty()) what.wishes.raw = ParseRawForm(m_raw);
  if (m_channels == "first") what.wishes.channels = ChannelChoice::kFirst;
  if (m_channels == "mean") what.wishes.channels = ChannelChoice::kMean;
}

}  // namespace host
