#pragma once

#include <string>
#include <vector>

#include "base/paint.h"
#include "compare/comparison.h"

namespace host {

// The forms of a comparison.

// For readers, the worst first: tables, and a line with the verdict. One line where nothing has
// changed.
std::string TextComparison(const Comparison& comparison, const Paint& paint = {});

// The verdict and what it is made of, in one line: "worse: 1 verdict fell (30 cases, ...)".
std::string ComparisonSummary(const Comparison& comparison);

// For programs; compare.schema.json describes it.
std::string JsonComparison(const Comparison& comparison);

// A row for each measure, time, guard and missing thing.
std::string CsvComparison(const Comparison& comparison);

// A test case for each measure, and one each for what is gone, has fallen, or is a new guard.
std::string JunitComparison(const Comparison& comparison);

// The place of something, for readers: "aec-1 out.wav si_sdr".
std::string PlaceText(const std::string& caseId, const std::string& file, const std::string& name);

// The places of guards, or of things that one side only has.
template <class Placed>
std::vector<std::string> PlaceTexts(const std::vector<Placed>& all) {
  std::vector<std::string> texts;
  for (const Placed& each : all) texts.push_back(PlaceText(each.caseId, each.file, each.name));
  return texts;
}

}  // namespace host
