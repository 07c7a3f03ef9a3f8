#pragma once

#include <functional>
#include <string>

#include "files/file_use.h"

namespace host {

// Where and by how much a file differs from what it was, in words: of audio the time, the channel
// and the level of the first difference and of the greatest one, and the difference in length; of a
// text the first line; of others the first byte. `use` says what both are. Gives up as soon as
// `goOn` returns false, and says so.
std::string FirstDifference(const std::string& before, const std::string& now, const FileUse& use,
                            const std::function<bool()>& goOn);

}  // namespace host
