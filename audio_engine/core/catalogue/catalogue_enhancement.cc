// Speech enhancement, noise and voice activity.

#include "bench/enhancement/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/file_use.h"
#include "catalogue/noizeus_files.h"
#include "catalogue/vad_files.h"

namespace harness {

namespace {

constexpr const char* kAlgorithms[] = {"aec", "denoise_light", "denoise", "mcra2", "off"};
constexpr int kOff = 4;
constexpr int kForeign = 3;

int Number(std::string_view word) {
  Argument<int> number;
  number.Parse(word);
  return number.Value();
}

// A file whose absence ends in outputs that say nothing.
FileUse Needed(FileUse use, std::string without) {
  use.needed = true;
  return Optional(std::move(use), std::move(without));
}

// What algorithm `ns` is scored by.
std::vector<FileUse> ScoredFiles(int ns) {
  return Join({NoizeusClean(), ns == kOff ? NoizeusNoisy() : NoizeusProcessed(kAlgorithms[ns])});
}

std::vector<FileUse> ScoredFilesFor(ArgumentWords words) { return ScoredFiles(Number(words[0])); }

std::vector<FileUse> ResultsFor(ArgumentWords words) {
  const int ms = Number(words[1]);
  return NoizeusResults(ms == 0   ? "avg_snr"
                        : ms == 1 ? "speech_snr"
                                  : "",
                        kAlgorithms[Number(words[0])]);
}

std::string NoAlgorithm(ArgumentWords words) {
  const int ns = Number(words[0]);
  if (ns >= 0 && ns <= kOff) return "";
  return "argument 1 of 2 must be 0 (aec), 1 (denoise_light), 2 (denoise), 3 (mcra2) or 4 (off), "
         "not \"" +
         std::string(words[0]) + "\"";
}

// What nothing in the bench writes: tables of it stay empty where it is missing.
std::vector<FileUse> Foreign(std::vector<FileUse> uses) {
  for (FileUse& use : uses) {
    use.optional = true;
    use.needed = false;
    use.dispensable = true;
    use.without = "its tables hold no figures";
  }
  return uses;
}

std::vector<FileUse> AllScoredFiles() {
  std::vector<std::vector<FileUse>> lists = {ScoredFiles(kOff)};
  for (int ns = 0; ns < kOff; ++ns) {
    const std::vector<FileUse> files = NoizeusProcessed(kAlgorithms[ns]);
    lists.push_back(ns == kForeign ? Foreign(files) : files);
  }
  return Join(lists);
}

std::vector<FileUse> AllResults() {
  std::vector<std::vector<FileUse>> lists;
  for (const char* const algorithm : kAlgorithms) {
    for (const char* const measure : {"avg_snr", "speech_snr"}) {
      lists.push_back(NoizeusResults(measure, algorithm));
    }
  }
  return Join(lists);
}

// In general words, for readers.
std::vector<FileUse> ScoredFilesOfAny() {
  std::vector<FileUse> processed = NoizeusProcessed("<algorithm>");
  processed.front().remark = "for \"off\" the noisy sentences of NOIZEUS/in instead";
  return Join({NoizeusClean(), processed});
}

std::vector<FileUse> DenoisedFiles() {
  return Join({NoizeusProcessed("denoise"), NoizeusProcessed("denoise_light")});
}

const CatalogueRow kRows[] = {
    {.declared = declared::TestNoizeus,
     .exercises = "wrapper: TestNoizeusEx over ns 0..4, ms 0 and 1",
     .inputs = MadeOnce<AllScoredFiles>,
     .outputs = MadeOnce<AllResults>,
     .after = {"TestAECNsNoizeus", "TestDenoiseProcessNoizeus"}},
    {.declared = declared::TestAGCProcess,
     .exercises = "WebRTC-style AGC (WebRtcAgc_*) with virtual microphone",
     .inputs = {TakenFor("{pSrcFileName}", kMono16, 320, WaveHeader::kCopied)},
     .outputs = {WithForeignHeader(Wave("{pDstFileName}"))}},
    {.declared = declared::TestVADProcess,
     .exercises = "voice activity detection (CVoiceDetectionEx, WebRtcVad_*), writing gated "
                  "audio and per-frame results",
     .inputs = {Optional(TakenFor("{pSrcFileName}", kMono16, 320, WaveHeader::kCopied),
                         "the routine prints \"Open Source File Error..\" and leaves no output")},
     .outputs = {WithForeignHeader(Wave("{pDstFileName}")),
                 WithForeignHeader(Wave("{pResultFileName}"))}},
    {.declared = declared::MeasureAverageSNR,
     .helper = true,
     .exercises = "average SNR of processed against clean raw PCM"},
    {.declared = declared::MeasureSpeechSNR,
     .helper = true,
     .exercises = "SNR over the speech segments of sentence no"},
    {.declared = declared::TestNoizeusEx,
     .exercises = "NOIZEUS evaluation of one suppression setting, one measure; result text files",
     .inputs = MadeOnce<ScoredFilesOfAny>,
     .outputs = NoizeusResults("<measure>", "<algorithm>"),
     .inputsFor = ScoredFilesFor,
     .outputsFor = ResultsFor,
     .unfit = NoAlgorithm},
    {.declared = declared::TestZUAudioProcessing,
     .exercises = "SoftwareAec processing chain with VAD result logging",
     .inputs = {ReadInPart(TakenFor("{pFarendFileName}", kMono16, 320, WaveHeader::kCopied),
                           "it may be longer than the near end"),
                WithFirst(TakenFor("{pNearendFileName}", kMono16, 320, WaveHeader::kSkipped))},
     .outputs = {WithForeignHeader(Wave("{pOutFileName}"))}},
    {.declared = declared::TestHPFProcess,
     .exercises = "high-pass filter over a WAVE file",
     .inputs = {AnyWave("{pSrcFileName}")},
     .outputs = {AnyWave("{pDstFileName}")}},
    {.declared = declared::TestVADProcessRefined,
     .exercises = "VAD with segment list and shift",
     .inputs = {MonoWave("{in}")},
     .outputs = {Wave("{out}")}},
    {.declared = declared::TestVadResult,
     .exercises = "VAD over \"swb_ref_16kHz.wav\" writing \"vad_out.wav\" and \"vad_result.wav\"",
     .inputs = {TreatedWave("swb_ref_16kHz.wav", {.leastRate = 8000, .mostRate = 48000})},
     .outputs = {AnyWave("vad_out.wav"), AnyWave("vad_result.wav")}},
    {.declared = declared::TestMeasureVAD,
     .calledBy = "TestVAD",
     .exercises = "VAD quality measures (bandwidth saving, PESQ, false and faulty alarm)"},
    {.declared = declared::TestVAD,
     .exercises = "batch VAD evaluation writing a tab-separated results table",
     .inputs = {Needed(Text("F:/Stream/vad/input/vad_input_description.txt"),
                       "the report has its heading alone")},
     .outputs = {Text("F:/Stream/vad/output/report_{version}.txt")},
     .listed = VadRecordings},
    {.declared = declared::TestSpeexAgc,
     .exercises = "ZUAudio::AudioAgc over \"music.wav\" into \"agc_out.wav\"",
     .inputs = {TreatedWave("music.wav", kCallRates)},
     .outputs = {AnyWave("agc_out.wav")}},
    {.declared = declared::TestWebrtcAgc,
     .exercises = "ZUAudio::WebrtcAgc over \"niannujiao_44100_1.wav\" into \"agc_out.wav\"",
     .inputs = {TreatedWave("niannujiao_44100_1.wav", kCallRates)},
     .outputs = {AnyWave("agc_out.wav")}},
    {.declared = declared::TestDenoiseProcessNoizeus,
     .exercises = "CAudioDenoise (normal and light) over the NOIZEUS corpus",
     .inputs = MadeOnce<NoizeusNoisy>,
     .outputs = MadeOnce<DenoisedFiles>},
    {.declared = declared::TestDenoiseProcess,
     .exercises = "CAudioDenoise over \"ns_in.wav\" into \"ns_out.wav\"",
     .inputs = {TreatedWave("ns_in.wav", {.leastRate = 8000, .mostRate = 48000})},
     .outputs = {AnyWave("ns_out.wav")}},
};

}  // namespace

std::span<const CatalogueRow> EnhancementRows() { return kRows; }

}  // namespace harness
