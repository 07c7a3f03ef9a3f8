#pragma once

#include <string>

namespace host {

// Shows the page of a folder of results, or of `report --folder`, or the page that is the file
// itself: in the browser, or where there is no way to call one at an address that is printed, until
// Ctrl-C. A page that is not there yet, or is older than the results, is written. Returns the exit
// code. Throws UsageError.
int OpenPage(const std::string& path);

}  // namespace host
