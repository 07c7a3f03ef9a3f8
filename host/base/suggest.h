#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace host {

// Returns up to three of the names that are similar to `word`, the most similar first. A name is
// similar when up to a quarter of the letters differ, two that changed places counting as one, or
// when it contains the word (three letters or more). Capitals do not matter.
std::vector<std::string_view> NamesAlike(std::string_view word,
                                         std::span<const std::string_view> names);

}  // namespace host
