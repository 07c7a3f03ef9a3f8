#pragma once

#include <functional>
#include <string>
#include <vector>

#include "files/workspace.h"
#include "run/named_files.h"

namespace host {

// The recordings in a folder for the inputs that belong to a list: each by its place in the
// workspace, or the end of that, whatever the file is called after its last dot; else by its base
// name alone, anywhere in the folder. What is not there is left out. Throws UsageError where two
// files go by one base name, and where there is none at all. Calls `goOn` again and again, which
// may throw.
std::vector<NamedFile> FindListed(const std::string& folder, const std::vector<FilePlace>& inputs,
                                  const std::function<void()>& goOn);

// The file in a folder that goes by the name of an input; empty when there is none. Throws as
// above.
std::string FindFile(const std::string& folder, const FilePlace& input,
                     const std::function<void()>& goOn);

}  // namespace host
