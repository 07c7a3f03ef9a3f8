#pragma once

#include <string>
#include <vector>

// What has to be done to `before` to make it `after`, in order: "- line" for what is only in
// `before`, "+ line" for what is only in `after`. As few lines as possible; those of long middles
// are not compared one by one, all of one side come ahead of all of the other.
std::vector<std::string> Difference(const std::vector<std::string>& before,
                                    const std::vector<std::string>& after);
