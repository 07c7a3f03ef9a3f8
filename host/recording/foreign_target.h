#pragma once

#include <string>
#include <vector>

#include "recording/staged_record.h"

namespace host {

// Why what is in a place of the workspace is not to be replaced: it was not put there by stage, or
// was changed since. Empty when it may be, or when nothing is there. `earlier` is the record.
std::string ForeignTarget(const std::string& workspace, const std::string& place,
                          const std::vector<StagedFile>& earlier);

}  // namespace host
