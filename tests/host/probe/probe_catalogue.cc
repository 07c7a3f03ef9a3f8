// A catalogue of routines that do what routines should not, for the tests of the host.

#include <algorithm>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "probe_routines.h"

namespace harness {

namespace {

const FileUse kPcmOutput = {
    .name = "out.pcm", .container = Container::kHeaderless, .rate = 8000, .channels = 1};
const FileUse kFloatOutput = {.name = "/sdcard/out.f32",
                              .container = Container::kHeaderless,
                              .samples = SampleType::kFloat32,
                              .rate = 8000,
                              .channels = 2};
const FileUse kWaveOutput = {.name = "out.wav", .container = Container::kWave};
const FileUse kPcmInput = {.name = "{inFile}",
                           .container = Container::kHeaderless,
                           .rate = 8000,
                           .channels = 1,
                           .blockBytes = 160};

std::vector<FileUse> OutputFor(ArgumentWords words) {
  return {{.name = "for-" + std::string(words[0])}};
}

// Each line is the name of a file.
std::vector<FileUse> LinesOf(std::string_view text) {
  std::vector<FileUse> files;
  for (size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
    files.push_back({.name = std::string(text.substr(0, end))});
    text.remove_prefix(end + 1);
  }
  return files;
}

std::string LackingWord(ArgumentWords words) {
  return words[0] == "gold" ? "this engine has no gold" : "";
}

const FileUse kOptionalInput = {.name = "{inFile}",
                                .container = Container::kHeaderless,
                                .rate = 8000,
                                .channels = 1,
                                .blockBytes = 160,
                                .optional = true};

// 40 files of 8 kHz.
std::vector<FileUse> List(const std::string& start) {
  std::vector<FileUse> files;
  for (int i = 0; i < 40; ++i) {
    FileUse file = kPcmOutput;
    file.name = start + std::to_string(i) + ".pcm";
    file.pattern = start + "<n>.pcm";
    files.push_back(file);
  }
  return files;
}

std::vector<FileUse> ListInputs() {
  std::vector<FileUse> files = List("list/in");
  for (const char* name : {"list/far0.pcm", "list/far1.pcm"}) {
    FileUse file = kPcmOutput;
    file.name = name;
    file.pattern = "list/far<n>.pcm";
    file.beside = true;
    files.push_back(file);
  }
  return files;
}

FileUse Pcm16k(const std::string& name) {
  return {.name = name, .container = Container::kHeaderless, .rate = 16000, .channels = 1};
}

const FileUse kMarks = {
    .name = "marks.pcm", .container = Container::kHeaderless, .rate = 8000, .channels = 2};
constexpr harness::SoundUse kMarking[] = {{.noSound = "markers, not sound", .speechMarks = 1}};

FileUse ReadInPart() {
  FileUse use = kPcmInput;
  use.partRead = "nobody needs the rest";
  return use;
}

uint64_t UpToX(ArgumentWords /*words*/, std::span<unsigned char> bytes) {
  const auto end = std::find(bytes.begin(), bytes.end(), 'x');
  return static_cast<uint64_t>(end - bytes.begin());
}

std::string NoChoice(ArgumentWords words) {
  constexpr std::string_view kChoices[] = {"0", "7", "255", "256"};
  return std::ranges::find(kChoices, words[0]) == std::end(kChoices) ? "argument 1 is no choice"
                                                                     : "";
}

std::string Seven(ArgumentWords /*words*/) { return "7"; }

constexpr harness::UnusedArgument kSeven[] = {{"number", "the number of days", Seven}};

constexpr harness::GuardOff kWithoutLevel[] = {{"level", "its gain is free"}};
constexpr harness::SoundUse kBroken[] = {{.input = "in.pcm", .off = kWithoutLevel}};

constexpr harness::ResultLine kResults[] = {
    {.name = "delay", .unit = "ms", .stands = harness::Stands::kLogged, .line = "delay: *, #"},
    {.name = "tempo", .unit = "BPM", .line = "bpm=#"},
    {.name = "beats",
     .unit = "beats",
     .better = harness::Better::kHigher,
     .stands = harness::Stands::kWritten,
     .line = "b=#",
     .takes = harness::Takes::kCount,
     .file = "beats.txt"},
    {.name = "errors", .unit = "1", .better = harness::Better::kLower, .line = "error #"}};

std::vector<CatalogueRow> AllRows() {
  return {
      {.declared = declared::Nothing,
       .exercises = "a line that may not be broken, whatever its length is, when nobody looks "
                    "at it on a terminal"},
      {.declared = declared::Helper, .helper = true, .exercises = "help"},
      {.declared = declared::Echo, .exercises = "arguments"},
      {.declared = declared::PrintAndLog},
      {.declared = declared::PrintPartOfALine},
      {.declared = declared::Break,
       .inputs = {Pcm16k("in.pcm")},
       .outputs = {Pcm16k("broken.pcm")},
       .sounds = kBroken},
      {.declared = declared::Measure, .outputs = {{.name = "beats.txt"}}, .results = kResults},
      {.declared = declared::Crash},
      {.declared = declared::CrashIn},
      {.declared = declared::Abort},
      {.declared = declared::Throw},
      {.declared = declared::ExitEarly},
      {.declared = declared::Hang, .outputs = {{.name = "pid"}}},
      {.declared = declared::WriteNothing, .outputs = {kPcmOutput}},
      {.declared = declared::WriteEmpty, .outputs = {kPcmOutput}},
      {.declared = declared::WritePcm, .outputs = {kPcmOutput}},
      {.declared = declared::WriteTooMuch, .outputs = {kPcmOutput}},
      {.declared = declared::FlushTooMuch, .outputs = {kPcmOutput}},
      {.declared = declared::WriteNotFinite, .outputs = {kFloatOutput}},
      {.declared = declared::WriteLoud, .outputs = {kFloatOutput}},
      {.declared = declared::WriteNoWave, .outputs = {kWaveOutput}},
      {.declared = declared::LeaveOpen, .outputs = {kPcmOutput}},
      {.declared = declared::Copy,
       .exercises = "a declared input and output",
       .inputs = {kPcmInput},
       .outputs = {{.name = "{outFile}",
                    .container = Container::kHeaderless,
                    .rate = 8000,
                    .channels = 1}}},
      {.declared = declared::ReadAll, .inputs = {{.name = "{inFile}"}}},
      {.declared = declared::ReadAndLeaveOpen, .inputs = {{.name = "{inFile}"}}},
      {.declared = declared::ReadBoth, .inputs = {{.name = "{first}"}, {.name = "{second}"}}},
      {.declared = declared::PrintCoreLimit},
      {.declared = declared::ReadList,
       .inputs = {{.name = "list.txt", .optional = true}},
       .listed = LinesOf},
      {.declared = declared::StatOf},
      {.declared = declared::Spoil, .inputs = {{.name = "{inFile}"}}},
      {.declared = declared::WriteBytes, .outputs = {kPcmOutput}},
      {.declared = declared::WriteHugeFloats, .outputs = {kFloatOutput}},
      {.declared = declared::WriteWave, .outputs = {kWaveOutput}},
      {.declared = declared::WriteTo, .outputs = {{.name = "{outFile}"}}},
      {.declared = declared::ChangeRights, .outputs = {{.name = "{outFile}"}}},
      {.declared = declared::OpenAs},
      {.declared = declared::WriteItsProcess, .outputs = {{.name = "pid"}}},
      {.declared = declared::PrintForEver},
      {.declared = declared::LogForEver},
      {.declared = declared::PrintMuch},
      {.declared = declared::LogMuch},
      {.declared = declared::LeaveDaemon},
      {.declared = declared::Allocate},
      {.declared = declared::NeedNothing,
       .lacking = [](ArgumentWords) { return std::string("this engine has nothing"); }},
      {.declared = declared::WriteFor,
       .outputs = {{.name = "for-it"}},
       .outputsFor = OutputFor,
       .lacking = LackingWord},
      {.declared = declared::WorkOn, .outputs = {kPcmOutput}},
      {.declared = declared::PlayOn, .outputs = {kPcmOutput}, .runsOn = 10},
      {.declared = declared::StandStill, .outputs = {kPcmOutput}, .neverReturns = true},
      {.declared = declared::RecordForEver, .outputs = {kPcmOutput}, .neverReturns = true},
      {.declared = declared::GoWithout,
       .nullable = "inFile",
       .inputs = {kOptionalInput},
       .outputs = {kPcmOutput}},
      {.declared = declared::CopyList, .inputs = ListInputs(), .outputs = List("list/out")},
      {.declared = declared::HangOn, .inputs = {kPcmInput}, .outputs = {kPcmOutput}},
      {.declared = declared::CopyIfThere,
       .inputs = {{.name = "fixed.in", .optional = true}},
       .outputs = {{.name = "{outFile}"}}},
      {.declared = declared::ReportOnList,
       .inputs = {{.name = "list.txt", .optional = true, .needed = true}},
       .outputs = {{.name = "{outFile}"}}},
      {.declared = declared::PlayWhatIsNone,
       .inputs = {{.name = "{inFile}", .container = Container::kRecording}}},
      {.declared = declared::ReadSome, .inputs = {kPcmInput}},
      {.declared = declared::ReadSomeOnPurpose, .inputs = {ReadInPart()}},
      {.declared = declared::DecodeSome, .inputs = {{.name = "{inFile}", .streamEnd = UpToX}}},
      {.declared = declared::HaveSaid},
      {.declared = declared::Choose, .exercises = "0|7, 0_7, 0*7 and 0<7", .fruitless = NoChoice},
      {.declared = declared::UseSeven, .unused = kSeven},
      {.declared = declared::Mark, .outputs = {kMarks}, .sounds = kMarking},
      {.declared = declared::AppendTo, .outputs = {{.name = "{outFile}", .appended = true}}},
      {.declared = declared::WriteUnless,
       .inputs = {{.name = "spare.in", .optional = true, .dispensable = true}},
       .outputs = {{.name = "out", .fullBytes = 100}},
       .fruitless =
           [](ArgumentWords words) {
             return std::string(words[0] == "nothing" ? "argument 1 of 2 is nothing" : "");
           }},
      {.declared = declared::TakeTurn},
      {.declared = declared::TakeTurnOnDevice, .device = Device::kRender},
      {.declared = declared::TakeTurnByClock, .seconds = 0.1},
      {.declared = declared::TakeTurnAndPlay, .runsOn = 10},
      {.declared = declared::OpenByAnyName},
      {.declared = declared::OpenOutside}};
}

}  // namespace

std::span<const CatalogueRow> Catalogue() {
  static const std::vector<CatalogueRow> rows = AllRows();
  return rows;
}

}  // namespace harness
