#pragma once

#include <string>
#include <vector>

#include "base/json_parts.h"
#include "report_page/page_run.h"
#include "report_page/player.h"

namespace host {

// What a page has beside its template: the data, and the recordings.
struct PageData {
  Json json = {};
  std::vector<PageAudio> audio = {};
  size_t recordings = 0;  // That there are, in the cases of the page,
  size_t leftOut = 0;     // and how many of them are not in it.
};

struct PageLimits {
  double excerpt = 6;         // s
  size_t bytes = 20'000'000;  // Of data and recordings together.
  double megabytes = 20;      // Of the page as a whole, as was asked for.
  bool all = false;           // All recordings, whatever they take.
};

// The first line of the page: "77 routines: 75 pass, 1 fails, 1 is worse than baseline:X".
std::string PageSentence(const PageRun& run);

// The data without players. `run` keeps no more than its cases.
Json DataWithoutPlayers(const PageRun& run);

// Data and recordings within the limits: of those that failed, are worse, warned or undecided
// first, then of the best, then of a few that are the same.
PageData MakePageData(const PageRun& run, const PageLimits& limits);

}  // namespace host
