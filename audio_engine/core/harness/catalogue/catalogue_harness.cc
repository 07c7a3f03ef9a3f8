// The entry, TestSilkMos and the helpers.

#include "harness/catalogue/catalogue_rows.h"
#include "harness/catalogue/hrtf_files.h"
#include "harness/catalogue/invoke.h"
#include "harness/catalogue/routines.h"
#include "harness/catalogue/run_test_case.h"

std::vector<CatalogueRow> HarnessRows() {
  return {
      {.routine = "RunTestCase",
       .exercises = "entry; runs the selected test (TestHRTF)",
       .built = true,
       .run = Invoke<RunTestCase>,
       .inputs = {kHrtfInput},
       .outputs = {kHrtfOutput}},
      {.routine = "TestSilkMos",
       .exercises = "placeholder: builds a default NetCodecStreamFormat only",
       .built = true,
       .run = Invoke<TestSilkMos>},
      {.routine = "PrintSdkLog",
       .parameters = "const char* pLogStr",
       .helper = true,
       .exercises = "engine log sink to \"sdk_log.txt\"; internal to the unit",
       .built = true},
      {.routine = "DebugLogFunction",
       .parameters = "const char* pLogStr",
       .helper = true,
       .exercises = "debug log sink to \"audio_engine.log\"",
       .built = true},
      {.routine = "ConvertToFloatForWebrtc",
       .parameters = "const short* src, float* dst, int count",
       .helper = true,
       .exercises = "sample conversion",
       .built = true},
      {.routine = "ConvertToShortForWebrtc",
       .parameters = "const float* src, short* dst, int count",
       .helper = true,
       .exercises = "sample conversion",
       .built = true},
      {.routine = "ReadChunk",
       .result = "bool",
       .parameters = "FILE* file, short* interleaved, float* interleavedFloat, "
                     "zuwebrtc::ChannelBuffer<float>* buffer",
       .helper = true,
       .exercises = "chunk reader for the HRTF test",
       .built = true},
      {.routine = "ReadPCMFromFileToMix",
       .parameters = "FILE* stream, std::string& block, std::vector<std::string*>& blocks",
       .helper = true,
       .exercises = "reader for the block mixer test",
       .built = true},
  };
}
