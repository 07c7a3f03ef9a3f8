#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "results/line_cutter.h"
#include "results/result.h"

namespace host {

using harness::ResultLine;
using harness::Stands;

// The figures in the lines that a routine prints, logs and writes, read as they come.
class LineResults {
 public:
  // The declared lines must stay.
  explicit LineResults(std::span<const ResultLine> declared = {});

  // A part of what it prints or logs.
  void Hear(Stands where, std::string_view bytes);

  // A whole text that it has written.
  void Read(std::string_view file, std::string_view text);

  // A text that could not be read, and why: nothing is known of its figures.
  void Miss(std::string_view file, std::string_view reason);

  // What it prints and logs is not heard, for this reason.
  void MissHeard(std::string_view reason);

  // What has been found, one result for each declared line.
  std::vector<Result> Take() const;

  std::span<const ResultLine> declared() const { return m_declared; }

 private:
  struct Found {
    std::vector<double> values = {};  // All of them for a median; else the last one.
    double sum = 0;
    size_t count = 0;
    std::string missing = {};
  };

  void TakeLine(Stands where, std::string_view file, std::string_view line);
  static double ValueOf(const ResultLine& declared, const Found& found);

  std::span<const ResultLine> m_declared;
  std::vector<Found> m_found;
  LineCutter m_printed;
  LineCutter m_logged;
};

}  // namespace host
