#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/paint.h"
#include "catalogue/list_filter.h"
#include "engines/engine.h"

namespace host {

// The catalogue as documents.

// Returns the catalogue for readers: the routines group by group, then the helpers, in lines of at
// most `width` columns; SIZE_MAX for one line each.
std::string ListAsText(const ListFilter& filter, size_t width, const Paint& paint = {});

// Returns the document docs/catalogue.md.
std::string ListAsMarkdown(const ListFilter& filter);

// Returns the catalogue for programs, with which engine answers for what.
std::string ListAsJson(const ListFilter& filter, const Engine& engine);

// All three throw UsageError when the filter lets nothing pass.

// Both return all that is known of one routine, with arguments of what a run with them reads and
// writes. They throw UsageError when there is none of that name, or the arguments do not fit it.
// `only` as in ListFilter.
std::string Describe(std::string_view routine, std::span<const std::string> arguments = {},
                     const Engine* only = nullptr);
std::string DescribeAsJson(std::string_view routine, std::span<const std::string> arguments,
                           const Engine* only = nullptr);

}  // namespace host
