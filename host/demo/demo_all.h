#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/rows.h"
#include "results/truth.h"

namespace host {

// Writes an input for every routine that reads any into a workspace, next to a description of what
// is true of them, demo/truth.json. The PCM is the same on every machine; coded streams are made by
// the engine at hand, each by a run of this program. A file that is there already is left alone.
// Returns what was done, for the user, a line for each file and list. Throws UsageError.
std::string PlaceAllDemos(const std::string& workspace);

// The words with which a routine runs on the demo's files; nothing where there are none for it.
std::optional<std::vector<std::string>> DemoWords(const CatalogueRow& row);

// Makes the sounds that PlaceDemosOf writes, for this process and those that come of it.
void RenderDemosOf(const CatalogueRow& row);

// Writes only what one routine reads with these words, coded streams included.
void PlaceDemosOf(const CatalogueRow& row, const std::string& workspace);

// Where PlaceDemosOf puts what should be left of an input that something is to be taken out of: a
// WAVE in the same workspace. `place` is that of the input.
std::string TruthPlace(const std::string& place);

// What a routine should find out of an input of this name: the delay of the call's echo, the tempo
// of the band. Nothing for others.
Truths DemoTruthsOf(std::string_view input);

// What is true of the demo's sounds, as JSON: tempo, beats, notes, delay, signal-to-noise ratios,
// where somebody speaks.
std::string DemoTruth();

}  // namespace host
