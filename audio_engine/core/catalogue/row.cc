#include "catalogue/row.h"

#include <algorithm>

namespace harness {

namespace {

// The words as the routine's arguments take them: "none" for a nullable one has no data.
std::vector<std::string_view> WithNull(const CatalogueRow& row, ArgumentWords words) {
  std::vector<std::string_view> taken(words.begin(), words.end());
  const std::vector<Parameter> parameters = Parameters(row.declared.words);
  for (size_t i = 0; i < std::min(taken.size(), parameters.size()); ++i) {
    if (parameters[i].name == row.nullable && taken[i] == "none") taken[i] = {};
  }
  return taken;
}

}  // namespace

std::string ArgumentFault(const CatalogueRow& row, ArgumentWords words) {
  const std::string fault = row.declared.argumentFault(WithNull(row, words));
  return fault.empty() && row.unfit != nullptr ? row.unfit(words) : fault;
}

std::vector<FileUse> Inputs(const CatalogueRow& row, ArgumentWords words) {
  return row.inputsFor != nullptr ? row.inputsFor(words) : row.inputs.All();
}

std::vector<FileUse> Outputs(const CatalogueRow& row, ArgumentWords words) {
  return row.outputsFor != nullptr ? row.outputsFor(words) : row.outputs.All();
}

std::string Lacking(const CatalogueRow& row, ArgumentWords words) {
  return row.lacking != nullptr ? row.lacking(words) : "";
}

std::string Fruitless(const CatalogueRow& row, ArgumentWords words) {
  return row.fruitless != nullptr ? row.fruitless(words) : "";
}

void Run(const CatalogueRow& row, ArgumentWords words) { row.declared.run(WithNull(row, words)); }

const SoundUse* FindSound(std::span<const SoundUse> sounds, std::string_view output) {
  for (const SoundUse& sound : sounds) {
    if (output.ends_with(sound.output)) return &sound;
  }
  return nullptr;
}

std::vector<Parameter> Parameters(const Words& words) {
  std::vector<Parameter> parameters;
  std::string_view rest = words.parameters;
  while (!rest.empty()) {
    const std::string_view one = rest.substr(0, rest.find(", "));
    const size_t space = one.rfind(' ');
    parameters.push_back({one.substr(0, space), one.substr(space + 1)});
    rest.remove_prefix(std::min(one.size() + 2, rest.size()));
  }
  return parameters;
}

}  // namespace harness
