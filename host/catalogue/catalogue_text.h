#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"
#include "engines/engine.h"

namespace host {

// Rows of the catalogue as words for readers and documents.

inline constexpr Group kGroups[] = {Group::kHarness, Group::kAec,     Group::kEnhancement,
                                    Group::kCodec,   Group::kEffects, Group::kMixing};

std::string_view GroupName(Group group);  // As a title: "Codecs and quality evaluation".
std::string_view GroupWord(Group group);  // As one word: "codec".
std::string_view ContainerName(Container container);
std::string_view SampleTypeName(SampleType samples);

// "void TestHRTF()"
std::string Declaration(const CatalogueRow& row);

// "available", "helper", or the routines that call it: "called by TestTemp".
std::string Availability(const CatalogueRow& row);

// Returns why the engine at hand cannot run a routine without parameters; empty when it can, and
// when it takes the arguments to tell. With `only`, also why the library of that engine cannot
// without the desktop engine; then the parameters do not matter.
std::string LackingHere(const CatalogueRow& row, const Engine* only = nullptr);

// Returns whether `run` can run it by itself, with some arguments at least; `only` as above.
bool CanBeRun(const CatalogueRow& row, const Engine* only = nullptr);

// "none", "capture".
std::string_view DeviceName(const CatalogueRow& row);

// "as fast as its input is processed", or how long a run takes.
std::string Duration(const CatalogueRow& row);

// "16-bit samples, 44100 Hz, stereo"
std::string FileFormat(const FileUse& use);

// As FileFormat, and for a WAVE input also which rates and channel counts are right: "16-bit WAVE,
// 16000 Hz, mono".
std::string InputFormat(const FileUse& use);

// The right rates and channel counts alone: "16000 Hz, mono", "mono, any rate", "any rate and
// channel count".
std::string RightFormat(const FileUse& use);

// All that is taken of an input, width, rates and channels: "16-bit WAVE; 8000, 16000 or 32000 Hz;
// mono".
std::string TakenFormat(const FileUse& use);

// What a run of a routine reads and writes, the names filled in where there are arguments. Throws
// UsageError when these do not fit.
struct RunFiles {
  std::vector<FileUse> inputs;
  std::vector<FileUse> outputs;
};
RunFiles FilesOf(const CatalogueRow& row, std::span<const std::string> arguments);

// The files of a row as a reader wants them: one entry for each list, with its pattern as the name.
struct FileGroup {
  FileUse use;
  uint64_t files = 1;
};
std::vector<FileGroup> GroupFiles(const std::vector<FileUse>& uses);

// Returns the path of a declared file in the workspace; nothing when an argument names the file.
std::optional<std::string> KnownPlace(const FileUse& use);

// Returns up to three routines whose names are similar to `word`, the most similar first.
std::vector<std::string_view> RoutinesAlike(std::string_view word);

// Returns the same as the end of a message: "; did you mean TestVAD or TestDrc?", or, when no name
// is similar, a hint at the list.
std::string Suggestion(std::string_view word);

// Returns the row of a routine. Throws UsageError with suggestions when there is none.
const CatalogueRow& FindRow(std::string_view routine);

}  // namespace host
