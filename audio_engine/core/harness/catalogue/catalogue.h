#pragma once

#include <span>
#include <string_view>
#include <vector>

// The catalogue: one row per routine of the bench, in one table that the host, the documents and
// the tests share.

// What a routine belongs to.
enum class Group { kHarness, kEcho, kEnhancement, kCodec, kEffects, kMixing };

// How the bytes of a file are to be read.
enum class Encoding {
  kOther,    // A stream or a text: only its length says something.
  kPcm16,    // Headerless 16-bit integers.
  kFloat32,  // Headerless 32-bit floats, full scale at 1.
  kWave      // WAVE; rate and channels stand in its header.
};

// A file that a routine reads or writes.
struct FileUse {
  std::string_view name = {};  // As the routine opens it; "{parameter}" where an argument names it.
  Encoding encoding = Encoding::kOther;
  int rate = 0;        // Hz; headerless audio only.
  int channels = 0;    // Headerless audio only.
  int blockBytes = 0;  // What an input must hold for one pass of the loop; 0 when anything will do.
};

// The audio devices without which a routine cannot run.
enum class Device { kNone, kCapture, kRender, kBoth };

// What is asked of a runner: to run the routine, or only whether it could.
enum class Ask { kToRun, kWhetherArgumentsFit };

// Runs a routine with its arguments, one word each in the declared order. False, and nothing is
// run, when they do not fit its parameters.
using Runner = bool (*)(Ask ask, std::span<const std::string_view> arguments);

struct CatalogueRow {
  std::string_view routine = {};
  std::string_view result = "void";  // As declared.
  std::string_view parameters = {};  // As declared, separated by ", "; empty for none.
  bool helper = false;               // Called by routines; not run by itself.
  std::string_view exercises = {};
  bool built = false;    // Part of this unit today.
  Runner run = nullptr;  // Null for a helper, and until the routine is built.
  std::vector<FileUse> inputs = {};
  std::vector<FileUse> outputs = {};
  Device device = Device::kNone;
  double seconds = 0;  // How long a run takes by the clock; 0: as fast as its input is processed.
  Group group = Group::kHarness;
};

// All rows, group by group.
std::span<const CatalogueRow> Catalogue();
