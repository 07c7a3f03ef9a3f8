#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "demo/material.h"

namespace host {

// How each routine runs on the demo's files, and what these files are.

// A routine with its words. One that takes no words, and reads files of fixed names, has one too.
struct DemoCase {
  std::string_view routine;
  std::vector<std::string_view> arguments = {};
};

// One for every routine that can be run by itself, in the catalogue's order.
const std::vector<DemoCase>& DemoCases();

// What belongs into a file that routines open by this name; nothing for what is no sound of ours.
std::optional<Sound> SoundOf(std::string_view name);

// Which recording of the corpus of noisy speech a name is; nothing for any other name.
struct SentenceName {
  int number;      // From 0, as all of these.
  int place = -1;  // -1: clean.
  int level = 0;
};
std::optional<SentenceName> SentenceOf(std::string_view name);

// The text that belongs into a file of this name; empty for what is no text of ours.
std::string_view TextOf(std::string_view name);

// A coded stream, made by a routine from the demo's sounds. It writes the file itself.
struct StreamMaker {
  std::string_view stream;
  std::string_view routine;
  std::vector<std::string_view> arguments;
};
const std::vector<StreamMaker>& StreamMakers();

}  // namespace host
