#include "measure/figure_forms.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "base/aligned_table.h"
#include "base/printable.h"
#include "base/units.h"
#include "report/csv_field.h"
#include "report/figure_json.h"

namespace host {

namespace {

constexpr int kMeasureSchema = 1;

// With so many digits that tell.
std::string Digits(double value, int digits) {
  char text[48];
  snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

// The mean over one channel is that of the channel.
bool Repeats(const MeasuredFigure& figure, const MeasuredFile& file) {
  if (file.format.channels != 1 || !figure.channel) return false;
  return std::ranges::any_of(file.figures, [&](const MeasuredFigure& other) {
    return !other.channel && other.name == figure.name;
  });
}

std::string ChannelWord(const MeasuredFigure& figure, const MeasuredFile& file) {
  if (!figure.channel || file.format.channels == 1) return "";
  return ChannelName(*figure.channel, file.format.channels);
}

std::string TextOf(const MeasuredFile& file) {
  const std::string name = Printable(file.figures.front().file);
  if (!file.unreadable.empty()) {
    return name + ": not measured\n  " + Printable(file.unreadable) + "\n";
  }
  std::string text = name + ": " + file.format.Words() + "\n";
  for (const BroughtToRate& each : file.brought) {
    text += "  " + Printable(each.path) + " brought from " + Hertz(each.from) + " to " +
            Hertz(each.to) + "\n";
  }
  AlignedTable table({"  measure", "channel", "value", "unit", "better", ""});
  for (const MeasuredFigure& each : file.figures) {
    if (Repeats(each, file)) continue;
    table.Add({"  " + each.name, ChannelWord(each, file), each.value ? Digits(*each.value, 5) : "-",
               each.unit, each.better, each.reason});
  }
  return text + table.Text();
}

// Which of the measures have not passed their self-test.
std::string UntrustedLine(std::span<const MeasuredFile> files) {
  std::set<std::string> all;
  std::set<std::string> untrusted;
  for (const MeasuredFile& file : files) {
    for (const MeasuredFigure& each : file.figures) {
      all.insert(each.name);
      if (each.untrusted) untrusted.insert(each.name);
    }
  }
  if (untrusted.empty()) return "";
  std::string names;
  for (const std::string& name : untrusted) names += (names.empty() ? "" : ", ") + name;
  return "untrusted, not seen to pass a self-test: " + (untrusted == all ? "all" : names) + "\n";
}

}  // namespace

std::string TextFigures(std::span<const MeasuredFile> files) {
  std::string text;
  for (const MeasuredFile& file : files) text += (text.empty() ? "" : "\n") + TextOf(file);
  return text + UntrustedLine(files);
}

std::string JsonFigures(std::span<const MeasuredFile> files) {
  Json json = {{"schema_version", kMeasureSchema}};
  json["resampled"] = Json::array();
  json["figures"] = Json::array();
  for (const MeasuredFile& file : files) {
    for (const BroughtToRate& each : file.brought) {
      json["resampled"].push_back({{"file", each.path}, {"from", each.from}, {"to", each.to}});
    }
    for (const MeasuredFigure& each : file.figures) json["figures"].push_back(FigureJson(each));
  }
  return JsonText(json);
}

std::string CsvFigures(std::span<const MeasuredFile> files) {
  std::string text = "file,channel,name,value,unit,better,reason,version,untrusted\n";
  for (const MeasuredFile& file : files) {
    for (const MeasuredFigure& each : file.figures) {
      text += CsvField(each.file) + "," + (each.channel ? std::to_string(*each.channel) : "") +
              "," + each.name + "," + (each.value ? Digits(*each.value, 9) : "") + "," +
              CsvField(each.unit) + "," + each.better + "," + CsvField(each.reason) + "," +
              std::to_string(each.version) + "," + (each.untrusted ? "true" : "false") + "\n";
    }
  }
  return text;
}

}  // namespace host
