#pragma once

#include <string>
#include <string_view>

namespace host {

// The catalogue as documents.

// For readers: the routines group by group, then the helpers, in lines of at most `width` columns.
std::string ListAsText(int width);

// The document docs/catalogue.md.
std::string ListAsMarkdown();

// For programs.
std::string ListAsJson();

// All that is known of one routine. Throws UsageError when there is none of that name.
std::string Describe(std::string_view routine);

}  // namespace host
