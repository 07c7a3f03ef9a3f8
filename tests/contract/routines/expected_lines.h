#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

// Tables of what is written down of the routines: a routine's name on a line of its own, and its
// lines after it, each after two spaces. What is expected of a routine that is not in a table is
// nothing.

extern const std::string_view kSaidUsually;
extern const std::string_view kSaidWithoutInputs;

// Files that a run writes beyond those of its row ("+ name"), and those of its row that it does not
// write ("- name"): most of them come from the engine.
extern const std::string_view kFilesUsually;
extern const std::string_view kFilesWithoutInputs;

// Differences from the calls of the usual run, answers left out. With nothing to be had from the
// engine a routine that is not in its table has the differences of failing operations.
extern const std::string_view kWhenOperationsFail;
extern const std::string_view kWhenEverythingFails;
extern const std::string_view kWhenOutputsAreUnwritable;
extern const std::string_view kWhenTheDiskIsFull;

// What is done with the first block of WAVE inputs of some formats.
extern const std::string_view kFirstBlocks;

using LinesOfRoutines = std::map<std::string, std::vector<std::string>, std::less<>>;
LinesOfRoutines Lines(std::string_view table);
