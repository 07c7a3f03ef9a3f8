#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/aligned_table.h"
#include "base/printable.h"
#include "compare/comparison_forms.h"

namespace host {

namespace {

constexpr size_t kMaxRows = 50;

// The verdicts that the last line names, and whether they hold among all measures.
constexpr std::pair<Change, bool> kTold[] = {{Change::kWorse, true},     {Change::kChanged, true},
                                             {Change::kBetter, true},    {Change::kWorse, false},
                                             {Change::kChanged, false},  {Change::kBetter, false},
                                             {Change::kUndecided, false}};

std::string Plain(double value) {
  char text[32];
  snprintf(text, sizeof text, "%.4g", value);
  return text;
}

std::string Signed(double value) {
  char text[32];
  snprintf(text, sizeof text, "%+.3g", value);
  return value == 0 ? "0" : text;
}

std::string Counted(size_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string Direction(const MeasureComparison& measure) {
  if (measure.toTruth) return "from truth";
  return measure.kind.better == "none" ? "-" : measure.kind.better;
}

std::string VerdictText(const MeasureComparison& measure) {
  std::string text = ChangeName(measure.verdict);
  if (IsWorse(measure.verdict) && !measure.holds) text += " (by itself)";
  if (measure.verdict == Change::kUndecided) {
    text += measure.more ? ", " + std::to_string(*measure.more) + " more would tell" : "";
  }
  return text + (measure.untrusted ? ", untrusted" : "");
}

std::vector<std::string> MeasureRow(const MeasureComparison& measure) {
  const std::string interval =
      measure.interval ? Signed(measure.low) + " .. " + Signed(measure.high) : "too few";
  const std::string cases = std::to_string(measure.count) +
                            (measure.clusters ? " in " + std::to_string(*measure.clusters) : "");
  const std::string won =
      measure.kind.better == "none" && !measure.toTruth
          ? std::to_string(measure.losses) + " changed"
          : std::to_string(measure.wins) + " / " + std::to_string(measure.losses);
  const std::string worst =
      measure.worstCase.empty() ? "" : measure.worstCase + " " + Signed(measure.worst);
  return {measure.kind.name,
          measure.kind.unit,
          Direction(measure),
          Plain(measure.a),
          Plain(measure.b),
          Signed(measure.difference),
          interval,
          Plain(measure.margin),
          cases,
          won,
          Plain(measure.p),
          VerdictText(measure),
          worst};
}

// A table whose column "verdict" is painted.
std::string Painted(AlignedTable& table, const std::vector<std::string>& heads,
                    const Paint& paint) {
  const auto verdict = std::find(heads.begin(), heads.end(), "verdict") - heads.begin();
  return "\n" + table.Text(paint, static_cast<size_t>(verdict));
}

std::string MeasureTable(const std::vector<MeasureComparison>& measures, const Paint& paint) {
  if (measures.empty()) return "";
  const std::vector<std::string> heads = {"measure", "unit",    "better",    "A",     "B",
                                          "B - A",   "95 %",    "margin",    "cases", "won / lost",
                                          "p",       "verdict", "worst case"};
  AlignedTable table(heads);
  for (const MeasureComparison& each : measures) table.Add(MeasureRow(each));
  return Painted(table, heads, paint);
}

std::string TimeTable(const std::vector<TimeComparison>& times, const Paint& paint) {
  if (times.empty()) return "";
  const std::vector<std::string> heads = {"time",  "unit",   "A", "B", "B / A", "half of the cases",
                                          "cases", "verdict"};
  AlignedTable table(heads);
  for (const TimeComparison& each : times) {
    const bool known = each.ratio > 0;
    table.Add({each.name, each.unit, Plain(each.a), Plain(each.b), known ? Plain(each.ratio) : "-",
               known ? Plain(each.quartiles[0]) + " .. " + Plain(each.quartiles[1]) : "-",
               std::to_string(each.count), each.verdict ? ChangeName(*each.verdict) : "-"});
  }
  return Painted(table, heads, paint);
}

// Lines of one kind, of which many are cut short.
std::string Lines(const std::string& kind, const std::vector<std::string>& lines) {
  std::string text;
  for (size_t i = 0; i < std::min(lines.size(), kMaxRows); ++i) {
    text +=
        kind + std::string(kind.size() < 8 ? 8 - kind.size() : 1, ' ') + Printable(lines[i]) + "\n";
  }
  if (lines.size() > kMaxRows) {
    text += "and " + std::to_string(lines.size() - kMaxRows) + " more\n";
  }
  return text;
}

std::string Losses(const Comparison& comparison) {
  std::vector<std::string> fallen;
  for (const FallenVerdict& each : comparison.fallen) {
    fallen.push_back(each.caseId + "  " + each.a + " -> " + each.b);
  }
  const std::string text = Lines("fallen", fallen) + Lines("guard", PlaceTexts(comparison.guards)) +
                           Lines("gone", PlaceTexts(comparison.gone));
  return text.empty() ? "" : "\n" + text;
}

std::string News(const std::vector<OnlyThere>& added) {
  const std::string text = Lines("new", PlaceTexts(added));
  return text.empty() ? "" : "\n" + text;
}

std::string OriginLine(const std::string& side, const ResultOrigin& origin) {
  return side + "  " + Printable(origin.path) + "  " + Printable(origin.engine) + "  " +
         Printable(origin.started) + "\n";
}

bool NothingChanged(const Comparison& comparison) {
  const auto equal = [](const MeasureComparison& each) {
    return each.verdict == Change::kSame && each.low == 0 && each.high == 0;
  };
  return comparison.verdict == Change::kSame && comparison.added.empty() &&
         comparison.otherBytes == 0 &&
         std::all_of(comparison.measures.begin(), comparison.measures.end(), equal);
}

// The measures of this verdict, each with its difference where it is one: "si_sdr (-1.3 dB), lsd".
std::string NamesOf(const std::vector<MeasureComparison>& measures, Change verdict, bool holds) {
  constexpr size_t kMaxNames = 3;
  std::string text;
  size_t count = 0;
  for (const MeasureComparison& each : measures) {
    if (each.verdict != verdict || each.holds != holds || ++count > kMaxNames) continue;
    text += (text.empty() ? "" : ", ") + Printable(each.kind.name);
    if (verdict == Change::kUndecided) continue;
    text += " (" + Signed(each.difference) + " " + Printable(each.kind.unit) + ")";
  }
  return count > kMaxNames ? text + " and " + std::to_string(count - kMaxNames) + " more" : text;
}

// What the verdict comes from: "1 verdict fell, 2 guards are new".
std::string Reasons(const Comparison& comparison) {
  std::vector<std::string> reasons;
  const auto add = [&](size_t count, const std::string& one, const std::string& several) {
    if (count > 0) reasons.push_back(Counted(count, one, several));
  };
  add(comparison.fallen.size(), "verdict fell", "verdicts fell");
  add(comparison.guards.size(), "guard is new", "guards are new");
  add(comparison.gone.size(), "thing is gone", "things are gone");
  for (const auto& [verdict, holds] : kTold) {
    const std::string names = NamesOf(comparison.measures, verdict, holds);
    if (names.empty()) continue;
    const bool alone = verdict != Change::kUndecided && !holds;
    reasons.push_back(names + " " + ChangeName(verdict) + (alone ? " by itself" : ""));
  }
  for (const TimeComparison& each : comparison.times) {
    if (each.verdict && IsWorse(*each.verdict)) reasons.push_back(each.name + " worse");
  }
  std::string text;
  for (const std::string& each : reasons) text += (text.empty() ? ": " : ", ") + each;
  return text;
}

}  // namespace

std::string PlaceText(const std::string& caseId, const std::string& file, const std::string& name) {
  return caseId + (file.empty() ? "" : "  " + file) + (name.empty() ? "" : "  " + name);
}

std::string ComparisonSummary(const Comparison& comparison) {
  std::string text = ChangeName(comparison.verdict) + Reasons(comparison) + " (" +
                     Counted(comparison.cases, "case", "cases");
  if (comparison.files > 0) {
    text += ", " + std::to_string(comparison.sameBytes) + " of " +
            Counted(comparison.files, "file", "files") + " the same byte for byte";
  }
  return text + ")\n";
}

std::string TextComparison(const Comparison& comparison, const Paint& paint) {
  // Its first word is the verdict.
  const std::string summary = ComparisonSummary(comparison);
  const size_t end = std::min(summary.find_first_of(" :"), summary.size());
  std::string last = paint.Word(summary.substr(0, end)) + summary.substr(end);
  if (NothingChanged(comparison)) return last;
  std::string text = OriginLine("A", comparison.a) + OriginLine("B", comparison.b) +
                     Losses(comparison) + MeasureTable(comparison.measures, paint) +
                     TimeTable(comparison.times, paint) + News(comparison.added);
  const bool single = std::any_of(
      comparison.measures.begin(), comparison.measures.end(),
      [](const MeasureComparison& each) { return IsWorse(each.verdict) && !each.holds; });
  if (single) {
    text +=
        "\n(by itself): chance makes one of so many measures read worse often enough; it does not "
        "decide\n";
  }
  return text + "\n" + last;
}

}  // namespace host
