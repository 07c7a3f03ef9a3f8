#include "measure/score.h"

#include <charconv>
#include <cmath>
#include <regex>
#include <sstream>
#include <string_view>
#include <vector>

#include "base/printable.h"
#include "files/temporary_workspace.h"
#include "measure/sound.h"
#include "process/program.h"
#include "recording/stage.h"
#include "tables/placeholders.h"

namespace host {

namespace {

constexpr size_t kMostPrinted = 1 << 20;
// The library's expressions need so much of the stack for each letter.
constexpr size_t kMostLetters = 4096;

struct Role {
  std::string_view name;  // In braces.
  const MeasuredSource& source;
  const char* missing;
};

bool Names(const Scorer& scorer, std::string_view role) {
  const std::string braced = "{" + std::string(role) + "}";
  for (const std::string& word : scorer.command) {
    if (word.find(braced) != std::string::npos) return true;
  }
  return false;
}

// What the scorer takes of a rate: the source's own, else the next higher one, else the highest.
Form FormFor(const Scorer& scorer) {
  Form form;
  for (const int rate : scorer.rates) form.formats.push_back({.rate = rate});
  return form;
}

// Puts the recordings into a folder, in the rate of the first, all of them softer by the same
// amount where one would clip.
std::optional<RecordingFault> HandOver(const Form& form, const std::vector<Role>& roles,
                                       const std::string& folder,
                                       const std::function<bool()>& goOn) {
  std::vector<StageInput> inputs;
  for (const Role& role : roles) {
    inputs.push_back({.source = role.source.path,
                      .place = std::string(role.name) + ".wav",
                      .form = form,
                      .group = 1,
                      .raw = role.source.raw});
  }
  return StageRecordings(folder, inputs, {}, goOn).fault;
}

// The last figure that fits, which is what a scorer ends with.
std::optional<double> FigureIn(const std::string& printed, const std::string& pattern) {
  const std::regex expression(pattern);
  std::optional<double> figure;
  std::istringstream lines(printed);
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (line.size() > kMostLetters || !std::regex_search(line, match, expression)) continue;
    const std::string text = match[1];
    const size_t sign = text.starts_with('+') ? 1 : 0;
    double value = 0;
    const auto [rest, error] =
        std::from_chars(text.data() + sign, text.data() + text.size(), value);
    if (error == std::errc() && rest == text.data() + text.size() && std::isfinite(value)) {
      figure = value;
    }
  }
  return figure;
}

// The last line with anything in it, for a reason.
std::string LastLine(const std::string& printed) {
  constexpr size_t kMostBytes = 200;
  std::string last;
  std::istringstream lines(printed);
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(" \t\r") != std::string::npos) last = line;
  }
  return Printable(last.substr(0, kMostBytes));
}

}  // namespace

MeasuredFigure NoScore(const Scorer& scorer, const std::string& reason) {
  return {.name = scorer.name, .unit = scorer.unit, .better = scorer.better, .reason = reason};
}

MeasuredFigure Score(const Scorer& scorer, const MeasuredSource& output,
                     const MeasuredAgainst& against, const std::function<bool()>& goOn) {
  // The first of them decides about the rate.
  std::vector<Role> roles = {{"output", output, ""}};
  for (const Role& role :
       {Role{"reference", against.reference, "no reference"},
        Role{"far", against.far, "no far end"}, Role{"near", against.near, "no near end"},
        Role{"input", against.input, "no input"}}) {
    if (!Names(scorer, role.name)) continue;
    if (role.source.path.empty()) return NoScore(scorer, role.missing);
    roles.push_back(role);
  }
  const Form form = FormFor(scorer);
  const int rate = ChooseFormat(form, OpenSound(output.path, output.raw).Format()).rate;
  const TemporaryWorkspace folder;
  if (const auto fault = HandOver(form, roles, folder.path(), goOn)) {
    if (fault->kind == RecordingFault::Kind::kInput) throw UnreadableSound{fault->text};
    return NoScore(scorer, fault->text);
  }
  const auto values = ScorerWords(scorer, rate);
  ProgramCall call = {
      .folder = folder.path(), .seconds = scorer.seconds, .mostBytes = kMostPrinted};
  for (const std::string& word : scorer.command) call.words.push_back(FillIn({word, ""}, values));
  const ProgramEnd end = CallProgram(call, goOn);
  const std::string program = call.words.front();
  if (!end.fault.empty()) {
    const std::string last = LastLine(end.printed);
    return NoScore(scorer, program + " " + end.fault + (last.empty() ? "" : ": " + last));
  }
  const std::optional<double> value = FigureIn(end.printed, scorer.pattern);
  if (!value) return NoScore(scorer, "nothing that " + program + " has printed fits its pattern");
  MeasuredFigure figure = NoScore(scorer, "");
  figure.value = value;
  return figure;
}

}  // namespace host
