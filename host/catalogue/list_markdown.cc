#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"

namespace host {

namespace {

std::string Code(std::string_view text) { return std::string("`").append(text).append("`"); }

// Escapes the characters that Markdown or HTML would interpret.
std::string Literal(std::string_view text) {
  std::string literal;
  for (const char sign : text) {
    if (sign == '*' || sign == '_' || sign == '|' || sign == '<') literal += '\\';
    literal += sign;
  }
  return literal;
}

std::string Files(const std::vector<FileUse>& uses, std::string (*format)(const FileUse&)) {
  std::string text;
  for (const FileGroup& group : GroupFiles(uses)) {
    if (!text.empty()) text += "<br>";
    text += Code(group.use.name) + " (" + format(group.use);
    if (group.use.optional) text += "; optional";
    if (group.files > 1) text += "; " + std::to_string(group.files) + " files";
    text += ")";
  }
  return text;
}

template <typename Belongs>
std::string Section(std::string_view title, Belongs belongs) {
  std::string rows;
  for (const CatalogueRow& row : Catalogue()) {
    if (!belongs(row)) continue;
    rows += "| " + Code(Declaration(row)) + " | " + Literal(row.exercises) + " | " +
            Files(row.inputs, InputFormat) + " | " + Files(row.outputs, FileFormat) + " | " +
            std::string(DeviceName(row)) + " | " + std::string(Availability(row)) + " |\n";
  }
  if (rows.empty()) return "";
  return "\n## " + std::string(title) +
         "\n\n| routine | exercises | inputs | outputs | device | status |\n"
         "|---|---|---|---|---|---|\n" +
         rows;
}

}  // namespace

std::string ListAsMarkdown(const ListFilter& filter) {
  const auto passes = Selector(filter);
  std::string text =
      "# Catalogue\n\n"
      "Every routine of the bench. Written by `audio_bench list --markdown`; do not edit.\n";
  for (const Group group : kGroups) {
    text += Section(GroupName(group), [&](const CatalogueRow& row) {
      return passes(row) && row.group == group && !row.helper;
    });
  }
  return text +
         Section("Helpers", [&](const CatalogueRow& row) { return passes(row) && row.helper; });
}

}  // namespace host
