// Echo cancellation.

#include <string>
#include <utility>

#include "bench/aec/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/file_use.h"
#include "catalogue/noizeus_files.h"

namespace harness {

namespace {

// What is as it should be without content.
FileUse Empty(FileUse use) {
  use.mayBeEmpty = true;
  return use;
}

constexpr const char* kRecordings[] = {
    "ns_in_32000",    "ns_step_32000", "sp01_airport_sn5", "sp22_street_sn10", "sp22_train_sn10",
    "sp22_train_sn5", "mirela_ns_off", "wrpcmin32000",     "wrpcmin_ka",       "after_aec"};

// One file for each of the recordings, with its name for every '*'.
std::vector<FileUse> ForRecordings(const std::string& name) {
  std::vector<FileUse> files;
  const auto filled = [&name](const std::string& recording) {
    std::string text;
    for (const char letter : name) text += letter == '*' ? recording : std::string(1, letter);
    return text;
  };
  for (const char* const recording : kRecordings) {
    files.push_back(TreatedWave(filled(recording), kCallRates));
    files.back().pattern = filled("<recording>");
  }
  return files;
}

// The files of a list of the corpus as WAVEs, in a folder of their own beneath it if that is given.
std::vector<FileUse> AsWaves(std::vector<FileUse> files, const std::string& folder = "") {
  const auto moved = [&folder](const std::string& name) {
    const size_t end = folder.empty() ? 0 : name.rfind('/') + 1;
    return name.substr(0, end) + folder + name.substr(end, name.size() - end - 4) + ".wav";
  };
  for (FileUse& file : files) {
    const std::string pattern = moved(file.pattern);
    file = AnyWave(moved(file.name));
    file.pattern = pattern;
  }
  return files;
}

// A pair of 16 kHz mono, one frame of 10 ms at a time.
FileUse Framed(std::string name, WaveHeader header) {
  return TakenFor(std::move(name), kMono16, 320, header);
}

// The far end may lack a header: it is read from its first byte.
FileUse FarEndWithoutHeader() {
  FileUse use =
      Optional(Framed("{pFarendFileName}", WaveHeader::kSamples), "the far end is silence");
  use.partRead = "it may be longer than the near end";
  use.headerlessToo = true;
  return use;
}

// A WAVE that goes to the engine in frames of its own format, while an output has this one.
FileUse ForOutputOf(std::string name, WaveFormat format) {
  FileUse use = AnyWave(std::move(name));
  use.rate = format.rate;
  use.channels = format.channels;
  return use;
}

// What is left of it when the near end has come to its end is not needed.
FileUse FarEnd(FileUse use) {
  return ReadInPart(std::move(use), "it may be longer than the near end");
}

constexpr UnusedArgument kUnusedDelay[] = {{"echoDelay", "the delay that the canceller finds"}};

std::vector<FileUse> CleanedFiles() { return NoizeusProcessed("aec"); }
std::vector<FileUse> NoisyWaves() { return AsWaves(NoizeusNoisy()); }
std::vector<FileUse> DenoisedWaves() { return AsWaves(NoizeusProcessed("denoise"), "rev3.2.50/"); }

const CatalogueRow kRows[] = {
    {.declared = declared::TestEchoDelayEst,
     .exercises = "echo-delay estimator (CEchoDelayEst) over far/near raw PCM; logs "
                  "\"TestEchoDelayEst: %d, %d\"",
     .inputs = {FarEnd(Framed("{pFarendFileName}", WaveHeader::kSkipped)),
                WithFirst(Framed("{pNearendFileName}", WaveHeader::kSkipped))}},
    {.declared = declared::TestEchoDelayEstAndAEC,
     .exercises = "delay estimator feeding the WebRTC-style echo canceller (WebRtcAec_*), timed",
     .inputs = {FarEnd(Framed("{pFarendFileName}", WaveHeader::kSkipped)),
                WithFirst(Framed("{pNearendFileName}", WaveHeader::kCopied))},
     .outputs = {WithForeignHeader(Wave("{pOutFileName}"))}},
    {.declared = declared::TestZUAECNSProcess,
     .calledBy = "TestTemp",
     .exercises = "the engine's mobile echo canceller (AecMobile_*) with band splitting through "
                  "zuwebrtc::AudioBuffer"},
    {.declared = declared::TestTemp,
     .exercises = "runs TestZUAECNSProcess on \"wrpcmin.pcm\" into \"NSout.pcm\"",
     .inputs = {Headerless("wrpcmin.pcm", 8000, 1, 160)},
     .outputs = {Headerless("NSout.pcm", 8000, 1)}},
    {.declared = declared::TestAECNsNoizeus,
     .exercises = "runs TestZUAECNSProcess over the NOIZEUS corpus into "
                  "\"NOIZEUS/out/sp%02d_%s_sn%d_aec.pcm\"",
     .inputs = MadeOnce<NoizeusNoisy>,
     .outputs = MadeOnce<CleanedFiles>},
    {.declared = declared::TestZUAECProcess,
     .exercises = "mobile echo canceller on far/near files with a fixed echo delay",
     .nullable = "pFarendFileName",
     .inputs = {FarEndWithoutHeader(),
                WithFirst(Framed("{pNearendFileName}", WaveHeader::kCopied))},
     .outputs = {WithForeignHeader(Wave("{pOutFileName}"))},
     .unused = kUnusedDelay},
    {.declared = declared::TestAECProcess,
     .exercises = "WebRTC-style echo canceller (WebRtcAec_*) with a fixed echo delay",
     .inputs = {FarEnd(Headerless("{pFarendFileName}", 16000, 1, 320)),
                WithFirst(Headerless("{pNearendFileName}", 16000, 1, 320))},
     .outputs = {Headerless("{pOutFileName}", 16000, 1)}},
    {.declared = declared::TestZUAec,
     .exercises = "AecModule (software SoftwareAec or CreateHardwareAec) over WAVE files, with "
                  "resampling",
     .inputs = {TreatedWave("{inNearFile}", kCallRates),
                InFormatOf("{inNearFile}", FarEnd(TreatedWave("{inFarFile}", kCallRates)),
                           OtherFormat::kNoOutput)},
     .outputs = {Wave("{outNearFile}")}},
    {.declared = declared::TestAecDenoiseInternal,
     .exercises = "the echo path's noise suppressor (Ns_*) over one WAVE file",
     .inputs = {TreatedWave("{in}", kCallRates)},
     .outputs = {AnyWave("{out}")}},
    {.declared = declared::TestAecDenoiseNOIZEUS,
     .exercises = "TestAecDenoiseInternal over the NOIZEUS corpus (WAVE)",
     .inputs = MadeOnce<NoisyWaves>,
     .outputs = MadeOnce<DenoisedWaves>},
    {.declared = declared::TestAecDenoise,
     .exercises = "TestAecDenoiseInternal over a fixed list of named recordings",
     .inputs = ForRecordings("in/*.wav"),
     .outputs = ForRecordings("out/rev3.2.250/*_out_rev3.2.250.wav")},
    {.declared = declared::TestHardwareAec,
     .exercises = "CreateHardwareAec with AGC and denoise enabled, \"noise_in.wav\" to \"out.wav\"",
     .inputs = {ForOutputOf("noise_in.wav", {32000, 1})},
     .outputs = {Wave("out.wav")}},
    {.declared = declared::TestSoftAec,
     .exercises = "SoftwareAec over files in \"music_delay/\"",
     .inputs = {ForOutputOf("music_delay/findcap.wav", kMono16),
                WithFirst(FarEnd(ForOutputOf("music_delay/findreceive.wav", kMono16)))},
     .outputs = {Wave("music_delay/out.wav"), Empty(Text("music_delay/echo_metrics.txt"))}},
    {.declared = declared::TestEchoDetection,
     .exercises = "residual echo detection (echo_detection_*) over far/near WAVE files",
     .inputs = {FarEnd(TakenFor("C:\\aecfiles\\farend.wav", kMono16, 2, WaveHeader::kSamples)),
                WithFirst(
                    TakenFor("C:\\aecfiles\\nearend.wav", kMono16, 2, WaveHeader::kSamples))}},
    {.declared = declared::TestRecord,
     .exercises = "CAecFileWriter recording of far/out data and echo-detection start",
     .inputs = {Optional(Headerless("F:\\sample\\test.pcm", 16000, 1, 400),
                         "the routine prints \"Can't Open Input File!\" and leaves no output"),
                WithFirst(Dispensable(Headerless("F:\\sample\\test2.pcm", 16000, 1),
                                      "near.wav holds no samples; the others are whole"))},
     .outputs = {Wave("far.wav"), Empty(Wave("near.wav")), Wave("out.wav"),
                 Empty(Text("delay.txt")), Text("log.txt")},
     .runsOn = 2},
};

}  // namespace

std::span<const CatalogueRow> AecRows() { return kRows; }

}  // namespace harness
