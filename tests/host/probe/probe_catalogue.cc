// A catalogue of routines that do what routines should not, for the tests of the host.

#include "harness/catalogue/catalogue.h"
#include "harness/catalogue/invoke.h"
#include "probe_routines.h"

namespace {

constexpr FileUse kPcmOutput = {
    .name = "out.pcm", .encoding = Encoding::kPcm16, .rate = 8000, .channels = 1};
constexpr FileUse kFloatOutput = {
    .name = "/sdcard/out.f32", .encoding = Encoding::kFloat32, .rate = 8000, .channels = 2};
constexpr FileUse kWaveOutput = {.name = "out.wav", .encoding = Encoding::kWave};
constexpr FileUse kPcmInput = {.name = "{inFile}",
                               .encoding = Encoding::kPcm16,
                               .rate = 8000,
                               .channels = 1,
                               .blockBytes = 160};

std::vector<CatalogueRow> AllRows() {
  return {
      {.routine = "Nothing", .exercises = "nothing", .built = true, .run = Invoke<Nothing>},
      {.routine = "NotBuilt", .exercises = "nothing yet", .inputs = {kPcmInput}},
      {.routine = "Helper", .helper = true, .exercises = "help", .built = true},
      {.routine = "Echo",
       .parameters = "const char* text, char* more, bool flag, int number",
       .exercises = "arguments",
       .built = true,
       .run = Invoke<Echo>},
      {.routine = "PrintAndLog", .built = true, .run = Invoke<PrintAndLog>},
      {.routine = "PrintPartOfALine", .built = true, .run = Invoke<PrintPartOfALine>},
      {.routine = "Crash", .built = true, .run = Invoke<Crash>},
      {.routine = "Abort", .built = true, .run = Invoke<Abort>},
      {.routine = "Throw", .built = true, .run = Invoke<Throw>},
      {.routine = "ExitEarly", .built = true, .run = Invoke<ExitEarly>},
      {.routine = "Hang", .built = true, .run = Invoke<Hang>, .outputs = {{.name = "pid"}}},
      {.routine = "WriteNothing", .built = true, .run = Invoke<Nothing>, .outputs = {kPcmOutput}},
      {.routine = "WriteEmpty", .built = true, .run = Invoke<WriteEmpty>, .outputs = {kPcmOutput}},
      {.routine = "WritePcm", .built = true, .run = Invoke<WritePcm>, .outputs = {kPcmOutput}},
      {.routine = "WriteTooMuch",
       .built = true,
       .run = Invoke<WriteTooMuch>,
       .outputs = {kPcmOutput}},
      {.routine = "WriteNotFinite",
       .built = true,
       .run = Invoke<WriteNotFinite>,
       .outputs = {kFloatOutput}},
      {.routine = "WriteLoud", .built = true, .run = Invoke<WriteLoud>, .outputs = {kFloatOutput}},
      {.routine = "WriteNoWave",
       .built = true,
       .run = Invoke<WriteNoWave>,
       .outputs = {kWaveOutput}},
      {.routine = "LeaveOpen", .built = true, .run = Invoke<LeaveOpen>, .outputs = {kPcmOutput}},
      {.routine = "Copy",
       .parameters = "const char* inFile, const char* outFile",
       .exercises = "a declared input and output",
       .built = true,
       .run = Invoke<Copy>,
       .inputs = {kPcmInput},
       .outputs =
           {{.name = "{outFile}", .encoding = Encoding::kPcm16, .rate = 8000, .channels = 1}}},
      {.routine = "OpenByAnyName", .built = true, .run = Invoke<OpenByAnyName>},
      {.routine = "OpenOutside", .built = true, .run = Invoke<OpenOutside>},
  };
}

}  // namespace

std::span<const CatalogueRow> Catalogue() {
  static const std::vector<CatalogueRow> rows = AllRows();
  return rows;
}
