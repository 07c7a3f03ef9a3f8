#include "base/units.h"
#include "base/wrap_text.h"
#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"

namespace host {

namespace {

constexpr size_t kWidth = 100;
constexpr size_t kIndent = 16;

std::string Line(std::string_view label, std::string_view text) {
  std::string head = "  " + std::string(label);
  head.resize(kIndent, ' ');
  return WrapText(text, head, kIndent, kWidth);
}

std::string FileLines(std::string_view label, const FileGroup& group) {
  const FileUse& use = group.use;
  std::string format = label == "input" ? InputFormat(use) : FileFormat(use);
  if (group.files > 1) format += "; " + std::to_string(group.files) + " files";
  if (use.blockBytes > 0) format += "; at least " + Bytes(static_cast<uint64_t>(use.blockBytes));
  if (use.blockBytes == 0 && use.blockMs > 0 && label == "input") {
    format += "; at least " + std::to_string(use.blockMs) + " ms";
  }
  if (use.optional) format += "; optional";
  if (use.appended) format += "; a run adds to it";
  std::string lines = Line(label, use.name) + Line("", format);
  const auto place = KnownPlace(use);
  if (place) lines += Line("", "in the workspace: " + *place);
  if (!use.remark.empty()) lines += Line("", use.remark);
  return lines;
}

// Which guards say nothing of which outputs, and why.
std::string GuardLines(const CatalogueRow& row) {
  std::string lines;
  const auto add = [&](std::string_view output, const std::string& text) {
    lines += Line(lines.empty() ? "guards" : "",
                  (output.empty() ? "" : std::string(output) + ": ") + text);
  };
  for (const harness::SoundUse& sound : row.sounds) {
    if (!sound.noSound.empty()) add(sound.output, "none: " + std::string(sound.noSound));
    for (const harness::GuardOff& off : sound.off) {
      add(sound.output, (off.warns ? "only a warning: " : "without ") + std::string(off.guard) +
                            ": " + std::string(off.reason));
    }
  }
  return lines;
}

}  // namespace

std::string Describe(std::string_view routine) {
  const CatalogueRow& row = FindRow(routine);
  std::string text = std::string(row.declared.words.name) + "\n";
  text += Line("declaration", Declaration(row));
  text += Line("group", GroupName(row.group));
  text += Line("exercises", row.exercises);
  for (const FileGroup& input : GroupFiles(row.inputs)) text += FileLines("input", input);
  for (const FileGroup& output : GroupFiles(row.outputs)) text += FileLines("output", output);
  text += GuardLines(row);
  if (row.helper) return text + Line("status", "helper: called by routines, not run by itself");
  text += Line("device", DeviceName(row));
  text += Line("duration", Duration(row));
  const std::string lacking = LackingHere(row);
  return text + Line("status", lacking.empty() ? Availability(row) : "lacking: " + lacking);
}

}  // namespace host
