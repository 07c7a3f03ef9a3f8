#pragma once

#include <string>
#include <vector>

#include "measure/measure.h"

namespace CLI {
class App;
}

namespace host {

// The words after `measure`.
class MeasureWords {
 public:
  // Declares the command.
  MeasureWords(CLI::App& app, MeasureOptions& options);

  // Fills in what the options do not set by themselves. Throws UsageError.
  void Take();

 private:
  MeasureOptions& m_options;
  std::vector<std::string> m_measures;  // "si_sdr,stoi"
  std::string m_raw;
};

}  // namespace host
