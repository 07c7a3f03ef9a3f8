#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/paint.h"
#include "catalogue/list_filter.h"

namespace host {

// The catalogue as documents.

// Returns the catalogue for readers: the routines group by group, then the helpers, in lines of at
// most `width` columns; SIZE_MAX for one line each.
std::string ListAsText(const ListFilter& filter, size_t width, const Paint& paint = {});

// Returns the document docs/catalogue.md.
std::string ListAsMarkdown(const ListFilter& filter);

// Returns the catalogue for programs.
std::string ListAsJson(const ListFilter& filter);

// All three throw UsageError when the filter lets nothing pass.

// Returns all that is known of one routine. Throws UsageError when there is none of that name.
std::string Describe(std::string_view routine);

}  // namespace host
