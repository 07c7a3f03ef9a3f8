#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "catalogue/rows.h"
#include "files/workspace.h"

namespace host {

// Which file of a routine a file of the user's is for.
struct NamedFile {
  size_t index = 0;  // Of the routine's inputs or outputs.
  std::string path = {};
};

struct NamedFiles {
  std::vector<NamedFile> files = {};      // In the order of the routine's.
  std::vector<std::string> folders = {};  // For those that are a list.
};

// What the words after --in or --out (`option`) name: "NAME=FILE", where NAME is the name of one of
// the routine's files, its last component, or the parameter that names it; or a file, for the first
// of them that has none yet, or a folder where that one belongs to a list. `lists`: the first of
// the files is a text that lists others, which a folder serves. Throws UsageError.
NamedFiles NameFiles(const std::string& option, std::span<const std::string> words,
                     std::span<const FilePlace> places, bool lists = false);

// The arguments of a routine. Where only those that name no file are given, the others are filled
// in: their files are called after their parameters.
std::vector<std::string> CompleteArguments(const CatalogueRow& row,
                                           std::span<const std::string> arguments,
                                           std::span<const std::string> in);

// The parameters of a routine that name no file, in their order.
std::vector<std::string> OtherParameters(const CatalogueRow& row);

}  // namespace host
