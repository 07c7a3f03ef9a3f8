#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/invoke.h"
#include "harness/declared.h"

// The catalogue: one row per routine of the bench, in one table that the host, the documents and
// the tests share.

namespace harness {

// What a routine belongs to.
enum class Group { kHarness, kAec, kEnhancement, kCodec, kEffects, kMixing };

// What a file is.
enum class Container {
  kOther,       // A stream or a text: only its length says something.
  kHeaderless,  // Interleaved samples and nothing else.
  kWave,        // WAVE; format, rate and channels stand in its header.
  kRecording    // What a player of the engine opens: WAVE, FLAC, Ogg, MP3 or AAC by its content.
};

// The samples of headerless audio.
enum class SampleType { kPcm16, kFloat32 };

// What a routine takes for the header of a WAVE input.
enum class WaveHeader {
  kRead,     // What the engine's reader finds, whatever chunks there are.
  kSkipped,  // The first 44 bytes; all that follows are samples.
  kCopied,   // The same, and an output begins with these bytes.
  kSamples   // Nothing: the file is read from its first byte.
};

// What comes of a WAVE input in another format than the declared one.
enum class OtherFormat {
  kAsItIs,   // Its samples are taken for such of the declared format.
  kAborts,   // The routine ends its process.
  kNoOutput  // The routine returns without an output.
};

// A rate in Hz and a channel count, each 0 for any.
struct WaveFormat {
  int rate = 0;
  int channels = 0;
};

// A file that a routine reads or writes.
struct FileUse {
  std::string name = {};  // As the routine opens it; "{parameter}" where an argument names it.
  Container container = Container::kOther;
  SampleType samples = SampleType::kPcm16;  // Headerless audio only, full scale of floats at 1.
  // Of headerless audio, Hz; of a WAVE input those that are right, 0 when any is.
  int rate = 0;
  int channels = 0;
  // Bytes of samples that an input must hold for one pass of the loop. 0 when anything will do, or
  // when the block follows from the header.
  int blockBytes = 0;
  // The block of a WAVE where it follows from the header: rate * channels samples a second for so
  // many ms, rounded down. An output consists of whole ones, also where they are no whole frames,
  // as 441 samples of 22050 Hz stereo; an input must hold one. 0 when it does not follow so.
  int blockMs = 0;
  int mostBlockSamples = 8192;  // Of a larger block the routine reads nothing.
  // An input without which, or with less than a block of which, the routine has an outcome of its
  // own.
  bool optional = false;
  bool needed = false;  // An optional input without which the outputs are there and say nothing.
  bool dispensable = false;  // An optional input without which the outputs are as they should be.
  bool mayBeEmpty = false;   // An output that is as it should be without content.
  // An input that is read alongside another one, as a far end with its near end, so that in lists
  // of files their duration counts once.
  bool beside = false;
  // An output with so many bytes of samples, or of content where it is no audio, is full: the
  // routine leaves out what more there would be. 0: it never is.
  uint64_t fullBytes = 0;
  // An output whose WAVE header is on purpose that of another file: its lengths need not fit.
  bool foreignHeader = false;
  // Of WAVE inputs:
  WaveHeader header = WaveHeader::kRead;
  OtherFormat otherFormat = OtherFormat::kAsItIs;
  WaveFormat alsoRight = {};  // A second format that is as right as the declared one.
  int leastRate = 0;          // Below it, Hz, every rate is another format.
  // Whose format is right: the name of another input, or, for readers, what the words of a run
  // name.
  std::string formatOf = {};
  bool headerlessToo = false;  // Samples without a header do as well.
  std::string content = {};    // What a file of kOther holds: "text", "AAC stream".
  bool appended = false;       // An output that a run adds to.
  std::string pattern = {};  // Of the list of files that it belongs to; empty when it stands alone.
  std::string remark = {};   // For its reader, such as that nothing in the bench writes an input.
};

// The audio devices without which a routine cannot run.
enum class Device { kNone, kCapture, kRender, kBoth };

// What a row takes from the declaration of its routine.
struct Declaration {
  template <auto function>
  Declaration(const Routine<function>& routine)  // NOLINT(*-explicit-*): rows name the routine.
      : words(routine.words),
        built(true),
        run(Invoke<function>),
        argumentFault(ArgumentFault<function>) {}
  Declaration(const Helper& helper) : words(helper.words), built(true) {}  // NOLINT(*-explicit-*)
  Declaration(const Planned& planned) : words(planned.words) {}            // NOLINT(*-explicit-*)

  Words words;
  bool built = false;  // Part of this unit today.
  // Runs the routine, one word for each parameter. Null for what cannot be run by itself.
  void (*run)(ArgumentWords words) = nullptr;
  // Why the words do not fit its parameters, empty when they do. Null like `run`.
  std::string (*argumentFault)(ArgumentWords words) = nullptr;
};

struct CatalogueRow {
  Declaration declared;
  bool helper = false;  // No test of its own: returns something to the routines that call it.
  std::string_view calledBy = {};  // The routines that call it, where no command line can.
  std::string_view exercises = {};
  std::string_view nullable = {};  // The parameter for which the word "none" is a null name.
  std::vector<FileUse> inputs = {};
  std::vector<FileUse> outputs = {};
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
  Device device = Device::kNone;
  double seconds = 0;  // How long a run takes by the clock; 0: as fast as its input is processed.
  // How long what the routine has started may run on after it has returned, in seconds, such as a
  // player that is heard to its end; 0: nothing runs on.
  double runsOn = 0;
  // Whether it returns never, so that a run of it ends when its time is up.
  bool neverReturns = false;
  Group group = Group::kHarness;
};

// All rows, group by group.
std::span<const CatalogueRow> Catalogue();

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
