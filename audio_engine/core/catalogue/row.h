#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/file_list.h"
#include "catalogue/files.h"
#include "catalogue/invoke.h"
#include "catalogue/results.h"
#include "catalogue/sounds.h"
#include "harness/declared.h"

// What the catalogue says of one routine, and how it is run with the words of a command line.

namespace harness {

// What a routine belongs to.
enum class Group { kHarness, kAec, kEnhancement, kCodec, kEffects, kMixing };

// The audio devices without which a routine cannot run.
enum class Device { kNone, kCapture, kRender, kBoth };

// What a row takes from the declaration of its routine.
struct Declaration {
  template <auto function>
  Declaration(const Routine<function>& routine)  // NOLINT(*-explicit-*): rows name the routine.
      : words(routine.words), run(Invoke<function>), argumentFault(ArgumentFault<function>) {}
  Declaration(const Helper& helper) : words(helper.words) {}  // NOLINT(*-explicit-*)

  Words words;
  // Runs the routine, one word for each parameter. Null for what cannot be run by itself.
  void (*run)(ArgumentWords words) = nullptr;
  // Why the words do not fit its parameters, empty when they do. Null like `run`.
  std::string (*argumentFault)(ArgumentWords words) = nullptr;
};

// An argument that a routine takes and does not use.
struct UnusedArgument {
  std::string_view parameter = {};
  std::string_view instead = {};  // What counts in its place: "the bit rate of the codec id".
  // The value of that, as a word; empty for none. Null: it has no value of this kind.
  std::string (*used)(ArgumentWords words) = nullptr;
};

// What a raw codec id stands for.
struct CodecId {
  int id = 0;
  std::string codec = {};
  int rate = 0;  // Hz
  int channels = 0;
  int bitRate = 0;           // bit/s
  std::string header = {};   // Of each frame of a stream without extra headers.
  std::string lacking = {};  // Why the engine at hand has no such codec; empty when it has.
};

struct CatalogueRow {
  Declaration declared;
  bool helper = false;  // No test of its own: returns something to the routines that call it.
  std::string_view calledBy = {};  // The routines that call it, where no command line can.
  std::string_view exercises = {};
  std::string_view nullable = {};  // The parameter for which the word "none" is a null name.
  FileList inputs = {};
  FileList outputs = {};
  // The inputs of one run, where they follow from the words. Null: `inputs`.
  std::vector<FileUse> (*inputsFor)(ArgumentWords words) = nullptr;
  // The outputs of one run, where more than a name in them follows from the words. Null: `outputs`.
  std::vector<FileUse> (*outputsFor)(ArgumentWords words) = nullptr;
  // The further inputs that the content of the first one, a text, names. Null: none.
  std::vector<FileUse> (*listed)(std::string_view text) = nullptr;
  // What is wrong with words that fit their types; empty when the routine takes them. Null:
  // nothing.
  std::string (*unfit)(ArgumentWords words) = nullptr;
  // Why the engine at hand cannot do what the words ask for, a codec without its library for
  // example; empty when it can. Null: it always can.
  std::string (*lacking)(ArgumentWords words) = nullptr;
  // Why nothing comes out of words that the routine takes all the same, a codec id that stands for
  // no codec for example; empty when something does. Null: it always does.
  std::string (*fruitless)(ArgumentWords words) = nullptr;
  std::span<const UnusedArgument> unused = {};
  // Where a word is a raw codec id: those that stand for a codec. Null: none is.
  std::vector<CodecId> (*codecIds)() = nullptr;
  // The figures in what it prints, logs and writes as text.
  std::span<const ResultLine> results = {};
  // The tables among the outputs of one run. Null: none.
  std::vector<ResultTable> (*tables)(std::span<const FileUse> outputs) = nullptr;
  // What its audio outputs are made from. An output that none of them names has no guards.
  std::span<const SoundUse> sounds = {};
  Device device = Device::kNone;
  double seconds = 0;  // How long a run takes by the clock; 0: as fast as its input is processed.
  // How long what the routine has started may run on after it has returned, in seconds, such as a
  // player that is heard to its end; 0: nothing runs on.
  double runsOn = 0;
  // Whether it returns never, so that a run of it ends when its time is up.
  bool neverReturns = false;
  // The routines whose outputs it reads, so that it runs after them where many are run.
  std::vector<std::string_view> after = {};
  Group group = Group::kHarness;
};

// Why the words of a command line do not fit a row that can be run; empty when they do.
std::string ArgumentFault(const CatalogueRow& row, ArgumentWords words);

// The inputs and the outputs of a run with words that fit.
std::vector<FileUse> Inputs(const CatalogueRow& row, ArgumentWords words);
std::vector<FileUse> Outputs(const CatalogueRow& row, ArgumentWords words);

// Why the engine at hand cannot do what words that fit ask for; empty when it can.
std::string Lacking(const CatalogueRow& row, ArgumentWords words);

// Why nothing comes out of a run with words that fit; empty when something does.
std::string Fruitless(const CatalogueRow& row, ArgumentWords words);

// Runs a row with words that fit.
void Run(const CatalogueRow& row, ArgumentWords words);

// The parameters of a signature, one by one: type and name.
struct Parameter {
  std::string_view type;
  std::string_view name;
};
std::vector<Parameter> Parameters(const Words& words);

}  // namespace harness
