#include "run/command_words.h"

#include <array>
#include <charconv>
#include <utility>

namespace host {

namespace {

// The shortest text that is read as the same number.
std::string NumberWord(double number) {
  std::array<char, 32> text = {};
  const auto [end, error] = std::to_chars(text.begin(), text.end(), number);
  return {text.begin(), end};
}

std::string RawWord(const RawForm& raw) {
  const auto name = [&raw] {
    switch (raw.samples) {
      case RawForm::Samples::kS16:
        return "s16";
      case RawForm::Samples::kS24:
        return "s24";
      case RawForm::Samples::kS32:
        return "s32";
      case RawForm::Samples::kF32:
        return "f32";
    }
    return "";
  };
  return std::to_string(raw.rate) + "," + std::to_string(raw.channels) + "," + name();
}

class Words {
 public:
  void Flag(bool given, const char* option) {
    if (given) m_words.emplace_back(option);
  }

  void Value(const char* option, const std::string& value) {
    m_words.emplace_back(option);
    m_words.push_back(value);
  }

  void Seconds(const char* option, const std::optional<double>& value) {
    if (value) Value(option, NumberWord(*value));
  }

  void Add(const std::string& word) { m_words.push_back(word); }

  std::vector<std::string> Take() { return std::move(m_words); }

 private:
  std::vector<std::string> m_words = {"audio_bench", "run"};
};

void AddWishes(const StageWishes& wishes, Words& words) {
  if (wishes.raw) words.Value("--raw", RawWord(*wishes.raw));
  if (wishes.channels) {
    words.Value("--channels", *wishes.channels == ChannelChoice::kFirst ? "first" : "mean");
  }
  if (wishes.cut.start > 0) words.Value("--start", NumberWord(wishes.cut.start));
  words.Seconds("--seconds", wishes.cut.seconds);
  words.Flag(wishes.force, "--force");
}

}  // namespace

std::vector<std::string> CommandWords(const Case& what) {
  Words words;
  if (!what.temporary) words.Value("--work", what.work);
  words.Seconds("--timeout-s", what.timeout);
  words.Seconds("--linger-s", what.linger);
  words.Flag(what.debug, "--debug");
  if (!what.engine.empty()) words.Value("--engine", what.engine);
  words.Flag(what.engineOnly, "--engine-only");
  words.Flag(what.strict, "--strict");
  words.Flag(what.figures, "--figures");
  words.Flag(what.wav, "--wav");
  for (const std::string& in : what.in) words.Value("--in", in);
  for (const std::string& out : what.out) words.Value("--out", out);
  AddWishes(what.wishes, words);
  // After this word nothing is taken for an option.
  words.Add("--");
  words.Add(what.routine);
  for (const std::string& argument : what.arguments) words.Add(argument);
  return words.Take();
}

}  // namespace host
