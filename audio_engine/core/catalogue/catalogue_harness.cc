// The entry, TestSilkMos and the helpers.

#include "bench/codec/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/hrtf_files.h"
#include "catalogue/routines.h"
#include "harness/log_sinks.h"
#include "harness/pcm_readers.h"
#include "harness/sample_conversion.h"

namespace harness {

namespace {

const CatalogueRow kRows[] = {
    {.declared = declared::RunTestCase,
     .exercises = "entry; runs the selected test (TestHRTF)",
     .inputs = {kHrtfInput},
     .outputs = {kHrtfOutput}},
    {.declared = declared::TestSilkMos,
     .exercises = "placeholder: builds a default NetCodecStreamFormat only"},
    {.declared = declared::PrintSdkLog,
     .helper = true,
     .exercises = "engine log sink to \"sdk_log.txt\"; internal to the unit"},
    {.declared = declared::DebugLogFunction,
     .helper = true,
     .exercises = "debug log sink to \"audio_engine.log\""},
    {.declared = declared::ConvertToFloatForWebrtc,
     .helper = true,
     .exercises = "sample conversion"},
    {.declared = declared::ConvertToShortForWebrtc,
     .helper = true,
     .exercises = "sample conversion"},
    {.declared = declared::ReadChunk,
     .helper = true,
     .exercises = "chunk reader for the HRTF test"},
    {.declared = declared::ReadPCMFromFileToMix,
     .helper = true,
     .exercises = "reader for the block mixer test"},
};

}  // namespace

std::span<const CatalogueRow> HarnessRows() { return kRows; }

}  // namespace harness
