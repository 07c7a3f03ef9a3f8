#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "fake_engine/fake_engine.h"
#include "support/wav_bytes.h"

// One run of each routine: the words, and files and answers with which it goes through its loops a
// few times.

// The rows that a command line can run.
std::vector<const harness::CatalogueRow*> RunnableRows();

// The words of a row's one run. A row with parameters for which none are written down has too few,
// and its test says so.
std::vector<std::string_view> WordsOf(const harness::CatalogueRow& row);

// Its files with the words in place of "{parameter}".
std::vector<std::string> InputsOf(const harness::CatalogueRow& row);
std::vector<std::string> OutputsOf(const harness::CatalogueRow& row);

// Answers as of an engine that works.
void SetAnswers(FakeEngine& engine);

// Puts all inputs in place, WAVE files in this format.
void PutInputs(FakeEngine& engine, const harness::CatalogueRow& row, const WavFormat& format = {});
