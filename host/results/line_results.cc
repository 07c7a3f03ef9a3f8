#include "results/line_results.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "results/line_form.h"

namespace host {

namespace {

using harness::Takes;

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return (*middle + *std::min_element(middle + 1, values.end())) / 2;
}

std::string NoLine(const ResultLine& declared) {
  switch (declared.stands) {
    case Stands::kPrinted:
      return "the routine printed no such line";
    case Stands::kLogged:
      return "no such line is in the log";
    case Stands::kWritten:
      break;
  }
  return "no such line is in the file";
}

}  // namespace

LineResults::LineResults(std::span<const ResultLine> declared)
    : m_declared(declared), m_found(declared.size()) {}

void LineResults::Hear(Stands where, std::string_view bytes) {
  LineCutter& cutter = where == Stands::kPrinted ? m_printed : m_logged;
  cutter.Add(bytes, [&](std::string_view line) {
    TakeLine(where, "", where == Stands::kLogged ? WithoutTime(line) : line);
  });
}

void LineResults::Read(std::string_view file, std::string_view text) {
  LineCutter cutter;
  cutter.Add(text, [&](std::string_view line) { TakeLine(Stands::kWritten, file, line); });
}

void LineResults::Miss(std::string_view file, std::string_view reason) {
  for (size_t i = 0; i < m_declared.size(); ++i) {
    if (m_declared[i].stands == Stands::kWritten && m_declared[i].file == file) {
      m_found[i].missing = reason;
    }
  }
}

void LineResults::TakeLine(Stands where, std::string_view file, std::string_view line) {
  for (size_t i = 0; i < m_declared.size(); ++i) {
    const ResultLine& declared = m_declared[i];
    if (declared.stands != where || declared.file != file) continue;
    const auto figures = ReadLine(declared.line, line);
    if (!figures) continue;
    Found& found = m_found[i];
    const bool share = declared.takes == Takes::kShare;
    const double value = share ? 100 * figures->figure / figures->sum : figures->figure;
    if (declared.takes != Takes::kMedian) found.values.clear();
    found.values.push_back(value);
    found.sum += value;
    ++found.count;
  }
}

void LineResults::MissHeard(std::string_view reason) {
  for (size_t i = 0; i < m_declared.size(); ++i) {
    if (m_declared[i].stands != Stands::kWritten) m_found[i].missing = reason;
  }
}

double LineResults::ValueOf(const ResultLine& declared, const Found& found) {
  switch (declared.takes) {
    case Takes::kLast:
    case Takes::kShare:
      return found.values.back();
    case Takes::kSum:
      return found.sum;
    case Takes::kMean:
      return found.sum / static_cast<double>(found.count);
    case Takes::kMedian: {
      const auto notFinite = [](double value) { return !std::isfinite(value); };
      const auto odd = std::find_if(found.values.begin(), found.values.end(), notFinite);
      return odd == found.values.end() ? Median(found.values) : *odd;
    }
    case Takes::kCount:
      break;
  }
  return static_cast<double>(found.count);
}

std::vector<Result> LineResults::Take() const {
  std::vector<Result> results;
  for (size_t i = 0; i < m_declared.size(); ++i) {
    const ResultLine& declared = m_declared[i];
    const Found& found = m_found[i];
    Result result = {.name = std::string(declared.name),
                     .unit = std::string(declared.unit),
                     .better = declared.better,
                     .file = std::string(declared.file)};
    if (!found.missing.empty()) {
      result.reason = found.missing;
    } else if (found.count == 0 && declared.takes != Takes::kCount) {
      result.reason = NoLine(declared);
    } else if (const double value = ValueOf(declared, found); std::isfinite(value)) {
      result.value = value;
    } else {
      result.reason = "the line gives no number";
    }
    results.push_back(std::move(result));
  }
  return results;
}

}  // namespace host
