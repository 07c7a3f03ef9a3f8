#pragma once

#include <functional>
#include <string>

#include "catalogue/rows.h"
#include "engines/engine.h"

namespace host {

// Which routines to list: those that every given condition holds for.
struct ListFilter {
  // A pattern of the name, "Test*Reverb*", whose capitals do not matter, and the word of a group,
  // "codec". An empty one lets all pass.
  std::string glob = {};
  std::string group = {};

  // Whether only those are listed that can be run.
  bool available = false;

  // Whose library has to have all that a routine asks for, for the routine to be one that can be
  // run; null: what it lacks is taken from the desktop engine.
  const Engine* only = nullptr;
};

// Throws UsageError when there is no such group; empty stands for all.
void CheckGroup(const std::string& group);

// Whether a row passes the filter. Throws UsageError when the group is none, or no row passes.
std::function<bool(const CatalogueRow&)> Selector(const ListFilter& filter);

}  // namespace host
