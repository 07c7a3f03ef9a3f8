// What a voice activity detector misses and what it takes for speech, against segments marked by
// hand: a table of the bandwidth that it saves and of its errors, in dB below the speech and below
// the rest.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>

#include "bench/enhancement/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "harness/read_block.h"
#include "harness/stdio_file.h"

using harness::ReadBlock;
using harness::StdioFile;

namespace {

// Samples, by what the two markers say of them.
struct Counts {
  int faultyCount = 0;  // Speech that the detector missed.
  int falseCount = 0;   // Sound where there is no speech.
  int speechLen = 0;
  int vadLen = 0;
  int totalLen = 0;
};

// In dB; 1e-8 of a sample keeps it finite when there is none.
double Alarm(int count, int length) { return 20 * log10((count + 1e-8) / length); }

// Not a number when there is nothing at all.
double Saving(int totalLen, int length) {
  return static_cast<double>(totalLen - length) / static_cast<double>(totalLen);
}

// The name without its extension.
// Deliberate: the last four characters, whatever they are. Of a name that has fewer nothing is
// left.
std::string Stem(const char* name) {
  const std::string text(name);
  return text.size() < 4 ? std::string() : text.substr(0, text.size() - 4);
}

}  // namespace

// Measures a file of three channels: a recording, the detector's markers and those set by hand.
// Leaves what the detector and what a perfect one would let through beside it.
// Deliberate: `ref` is never opened; the reference is a channel of `in`. PESQ is not computed.
void TestMeasureVAD(const char* /*ref*/, const char* in, double* BWSaving, double* optBWSaving,
                    double* PESQ, double* optPESQ, double* faultyAlarm, double* falseAlarm) {
  zuwebrtc::WavReader reader(in);
  if (reader.num_channels() != 3) abort();
  const std::string optName = Stem(in) + "_opt.wav";
  const std::string vadName = Stem(in) + "_vad.wav";
  zuwebrtc::WavWriter optWriter(optName, reader.sample_rate(), 1);
  zuwebrtc::WavWriter vadWriter(vadName, reader.sample_rate(), 1);

  Counts n;
  short samples[3];
  while (ReadBlock(reader, samples, 3)) {
    const auto& [audio, vad, reference] = samples;
    short vadSample = 0;
    short optSample = 0;
    // Deliberate: markers that are neither 0 nor 30000 count in the total alone.
    if (vad == 30000 && reference == 30000) {
      ++n.vadLen;
      ++n.speechLen;
      vadSample = optSample = audio;
    } else if (vad == 30000 && reference == 0) {
      ++n.vadLen;
      ++n.falseCount;
      vadSample = audio;
    } else if (vad == 0 && reference == 30000) {
      ++n.speechLen;
      ++n.faultyCount;
      optSample = audio;
    }
    ++n.totalLen;
    optWriter.WriteSamples(&optSample, 1);
    vadWriter.WriteSamples(&vadSample, 1);
  }

  *faultyAlarm = Alarm(n.faultyCount, n.speechLen);
  *falseAlarm = Alarm(n.falseCount, n.totalLen - n.speechLen);
  *BWSaving = Saving(n.totalLen, n.vadLen);
  *optBWSaving = Saving(n.totalLen, n.speechLen);
  *PESQ = 0;
  *optPESQ = 0;
}

// Measures the files that a description lists, each with its segments, and writes a line of the
// report for each. Savings are in per cent, alarms in dB.
void TestVAD(const char* version) {
  const std::string reportName = "F:/Stream/vad/output/report_" + std::string(version) + ".txt";
  StdioFile report(reportName.c_str(), "wt");
  report.Print(
      "Input filename\t\tBW Saving(%%)\topt BW Saving(%%)\tPESQ\t\topt PESQ\t\tFaulty "
      "Alarm(dB)\t\tFalse Alarm(dB)\n");
  StdioFile description("F:/Stream/vad/input/vad_input_description.txt", "rt");
  int fileCount = 0;
  description.Scan("%d\n", &fileCount);

  for (int i = 0; i < fileCount; ++i) {
    char tmp[256];
    if (description.Scan("%255s", tmp) != 1) break;
    const std::string in = "F:/Stream/vad/input/" + std::string(tmp);
    const std::string out = "F:/Stream/vad/output/" + std::string(tmp);
    int segmentCount = 0;
    description.Scan("%d,", &segmentCount);
    if (segmentCount > 15) abort();
    int speechSegment[31];
    std::fill(std::begin(speechSegment), std::end(speechSegment), -1);
    for (int k = 0; k < segmentCount; ++k) {
      description.Scan("%d,%d,", &speechSegment[2 * k], &speechSegment[2 * k + 1]);
    }
    description.Scan("\n");

    TestVADProcessRefined(in.c_str(), out.c_str(), speechSegment, 0);
    double BWSaving = 0, optBWSaving = 0, PESQ = 0, optPESQ = 0, faultyAlarm = 0, falseAlarm = 0;
    TestMeasureVAD(in.c_str(), out.c_str(), &BWSaving, &optBWSaving, &PESQ, &optPESQ, &faultyAlarm,
                   &falseAlarm);
    report.Print("%s\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\t\t%04f\n", tmp, 100 * BWSaving,
                 100 * optBWSaving, PESQ, optPESQ, faultyAlarm, falseAlarm);
  }
  description.Close();
  report.Close();
}
