#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace host {

// The names that somebody who wrote `word` may have meant, the likeliest first, three at the most:
// few letters differ (capitals aside), or the word is part of the name.
std::vector<std::string_view> NamesAlike(std::string_view word,
                                         std::span<const std::string_view> names);

}  // namespace host
