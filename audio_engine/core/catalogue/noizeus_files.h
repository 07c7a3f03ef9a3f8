#pragma once

#include <string>
#include <vector>

#include "catalogue/files.h"

namespace harness {

// The files of the NOIZEUS corpus, headerless at 8 kHz, list by list. Of a batch's inputs some may
// be missing: the routines score or clean what is there.

// The 30 clean sentences.
std::vector<FileUse> NoizeusClean();

// The 960 noisy ones.
std::vector<FileUse> NoizeusNoisy();

// What an algorithm made of these; its name as in the files.
std::vector<FileUse> NoizeusProcessed(const std::string& algorithm);

// The eight tables of one measure of one algorithm.
std::vector<FileUse> NoizeusResults(const std::string& measure, const std::string& algorithm);

// One list after the other.
std::vector<FileUse> Join(const std::vector<std::vector<FileUse>>& lists);

}  // namespace harness
