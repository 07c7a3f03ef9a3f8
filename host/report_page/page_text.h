#pragma once

#include <string>
#include <string_view>

#include "report_page/page_data.h"

namespace host {

// The lines of the template in whose place data and recordings come.
inline constexpr std::string_view kDataMarker = "<!--DATA-->";
inline constexpr std::string_view kAudioMarker = "<!--AUDIO-->";

// The page. Whatever stands in the data stays text: "<" is an escape in it, so that it ends no
// element. Throws UsageError when the template lacks a marker.
std::string PageText(std::string_view page, const PageData& data);

}  // namespace host
