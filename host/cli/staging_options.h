#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "run/case.h"

namespace CLI {
class App;
}

namespace host {

// The options of a command that take recordings in.
class StagingOptions {
 public:
  // Declares them. `what` outlives the command.
  void AddTo(CLI::App& command, Case& what);

  // Fills in what the options do not set by themselves.
  void Take(Case& what) const;

 private:
  std::string m_raw;
  std::string m_channels;
};

// The form in a word like "44100,2,s16"; nothing when it is none.
std::optional<RawForm> ParseRawForm(std::string_view words);

// Why a word is no description of samples without a header, "44100,2,s16"; empty when it is.
std::string RawFormProblem(const std::string& word);

}  // namespace host
