#pragma once

#include <functional>
#include <string>

namespace host {

// Why a file has not the bytes with this SHA-256, as what follows its name: "is gone", "has changed
// since the run". Empty when it has them. Gives up as soon as `goOn` returns false, and says so.
std::string Changed(const std::string& path, const std::string& digest,
                    const std::function<bool()>& goOn);

}  // namespace host
