#include "base/units.h"
#include "base/wrap_text.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"
#include "harness/format_name.h"

namespace host {

namespace {

using harness::FormatName;

constexpr size_t kWidth = 100;
constexpr size_t kIndent = 16;

std::string Line(std::string_view label, std::string_view text) {
  std::string head = "  " + std::string(label);
  head.resize(kIndent, ' ');
  return WrapText(text, head, kIndent, kWidth);
}

std::string FileLines(std::string_view label, const FileGroup& group) {
  const FileUse& use = group.use;
  std::string format = label == "input" ? TakenFormat(use) : FileFormat(use);
  if (group.files > 1) format += "; " + std::to_string(group.files) + " files";
  if (use.blockBytes > 0) format += "; at least " + Bytes(static_cast<uint64_t>(use.blockBytes));
  if (use.blockBytes == 0 && use.blockMs > 0 && label == "input") {
    format += "; at least " + std::to_string(use.blockMs) + " ms";
  }
  if (use.optional) format += "; optional";
  if (label == "output") format += use.appended ? "; a run adds to it" : "; replaced";
  std::string lines = Line(label, use.name) + Line("", format);
  const auto place = KnownPlace(use);
  if (place) lines += Line("", "in the workspace: " + *place);
  if (!use.without.empty()) lines += Line("", "without it: " + use.without);
  if (use.onlyRight) lines += Line("", "in another format it is refused before the run");
  if (use.alsoTakenFor.rate > 0) {
    lines += Line("", "a part of the routine takes it for " + Hertz(use.alsoTakenFor.rate) + ", " +
                          Channels(use.alsoTakenFor.channels) + ", whatever it is in");
  }
  if (!use.partRead.empty()) lines += Line("", "may be read in part: " + use.partRead);
  if (!use.remark.empty()) lines += Line("", use.remark);
  return lines;
}

std::string UnusedLines(const CatalogueRow& row) {
  std::string lines;
  for (const harness::UnusedArgument& unused : row.unused) {
    lines +=
        Line(lines.empty() ? "not used" : "",
             std::string(unused.parameter) + ": what counts is " + std::string(unused.instead));
  }
  return lines;
}

// A table of the codec ids; nothing for a row that takes none.
std::string CodecLines(const CatalogueRow& row) {
  if (row.codecIds == nullptr) return "";
  std::string lines;
  const auto add = [&](const std::string& text) {
    std::string head = lines.empty() ? "  codec ids" : "";
    head.resize(kIndent, ' ');
    lines += head + text + "\n";
  };
  add(FormatName("%3s  %-10s  %7s  %-8s  %10s  %s", "id", "codec", "Hz", "channels", "bit/s",
                 "header of a frame"));
  for (const harness::CodecId& each : row.codecIds()) {
    add(FormatName("%3d  %-10s  %7d  %-8s  %10d  %s%s", each.id, each.codec.c_str(), each.rate,
                   Channels(each.channels).c_str(), each.bitRate, each.header.c_str(),
                   each.lacking.empty() ? "" : "; lacking here"));
  }
  return lines;
}

constexpr harness::SoundUse kUsual;

// Which guards say nothing of which outputs, or another thing than usual, and why.
std::string GuardLines(const CatalogueRow& row) {
  std::string lines;
  const auto add = [&](std::string_view output, const std::string& text) {
    lines += Line(lines.empty() ? "guards" : "",
                  (output.empty() ? "" : std::string(output) + ": ") + text);
  };
  for (const harness::SoundUse& sound : row.sounds) {
    if (sound.leastLevel != kUsual.leastLevel || sound.mostLevel != kUsual.mostLevel) {
      add(sound.output, FormatName("level from %.0f to %.0f dB against the input", sound.leastLevel,
                                   sound.mostLevel));
    }
    if (sound.lengthFactor != kUsual.lengthFactor) {
      add(sound.output, FormatName("%.3g times as long as the input", sound.lengthFactor));
    }
    if (!sound.noSound.empty()) add(sound.output, "none: " + std::string(sound.noSound));
    for (const harness::GuardOff& off : sound.off) {
      add(sound.output, (off.warns ? "only a warning: " : "without ") + std::string(off.guard) +
                            ": " + std::string(off.reason));
    }
  }
  return lines;
}

}  // namespace

std::string Describe(std::string_view routine, std::span<const std::string> arguments,
                     const Engine* only) {
  const CatalogueRow& row = FindRow(routine);
  const RunFiles files = FilesOf(row, arguments);
  std::string text = std::string(row.declared.words.name) + "\n";
  text += Line("declaration", Declaration(row));
  text += Line("group", GroupName(row.group));
  text += Line("exercises", row.exercises);
  for (const FileGroup& input : GroupFiles(files.inputs)) text += FileLines("input", input);
  for (const FileGroup& output : GroupFiles(files.outputs)) text += FileLines("output", output);
  text += UnusedLines(row);
  text += CodecLines(row);
  text += GuardLines(row);
  if (row.helper) return text + Line("status", "helper: called by routines, not run by itself");
  text += Line("device", DeviceName(row));
  text += Line("duration", Duration(row));
  const std::string lacking = LackingHere(row, only);
  return text + Line("status", lacking.empty() ? Availability(row) : "lacking: " + lacking);
}

}  // namespace host
