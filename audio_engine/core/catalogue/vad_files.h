#pragma once

#include <string_view>
#include <vector>

#include "catalogue/files.h"

namespace harness {

// The recordings that a description of the voice activity batch lists, up to the entry at which the
// batch itself ends. The description is a number of files; then for each its name, and numbers with
// a comma after each: how many segments it has, and their starts and lengths. Without one of
// them the batch aborts, so that they are no list of which some may be missing.
std::vector<FileUse> VadRecordings(std::string_view description);

}  // namespace harness
