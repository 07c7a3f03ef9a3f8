// What the software canceller makes of recordings and of cases made from them: echo_recordings
// FOLDER, which holds aec, noizeus and speech16k. ERLE where the far end talks alone, the signal to
// error ratio of double talk before and after, and how much the level of a near end alone changes.

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>

#include "echo_cases.h"
#include "engine_api/aec/software_aec.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = kRate / 100;
constexpr int kMaxLag = 400;

double CpuSeconds() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec) * 1e-6;
}

double g_cpu = 0;
double g_audio = 0;

zuwebrtc::AudioFrame Frame(const Samples& samples, size_t at) {
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = kRate;
  frame.num_channels_ = 1;
  frame.samples_per_channel_ = kBlock;
  std::copy_n(samples.begin() + static_cast<ptrdiff_t>(at), kBlock, frame.data_);
  return frame;
}

Samples Cancel(const Samples& far, const Samples& near) {
  SoftwareAec module;
  Samples out(near.size());
  const double before = CpuSeconds();
  for (size_t at = 0; at + kBlock <= std::min(far.size(), near.size()); at += kBlock) {
    zuwebrtc::AudioFrame render = Frame(far, at);
    module.ProcessRenderAudio(render, false);
    zuwebrtc::AudioFrame capture = Frame(near, at);
    module.ProcessCaptureAudio(capture, false, true);
    std::copy_n(capture.data_, kBlock, out.begin() + static_cast<ptrdiff_t>(at));
  }
  g_cpu += CpuSeconds() - before;
  g_audio += static_cast<double>(near.size()) / kRate;
  return out;
}

double Seconds(const Samples& samples) { return static_cast<double>(samples.size()) / kRate; }

// At the lag that gives the most.
double BestSdr(const Samples& wanted, const Samples& out) {
  double best = -100;
  for (int lag = 0; lag <= kMaxLag; lag += 16) {
    best = std::max(best, SdrDb(wanted, out, kRate, 0, lag));
  }
  return best;
}

// Less the lag.
double Erle(const Samples& far, const Samples& echo, double from) {
  Samples out = Cancel(far, echo);
  out.erase(out.begin(), out.begin() + 112);
  return LossDb(echo, out, kRate, from, Seconds(echo));
}

double NearAlone(const Samples& far, const Samples& near) {
  Samples out = Cancel(far, near);
  out.erase(out.begin(), out.begin() + 112);
  return -LossDb(near, out, kRate, 0, Seconds(near));
}

struct Sums {
  double erle = 0;
  double sdr = 0;
  double gain = 0;
  double leastGain = 100;
  double nearAlone = 0;
};

void Measure(const std::vector<EchoCase>& cases) {
  Sums sums;
  for (const EchoCase& one : cases) {
    const Samples both = Sum(one.echo, one.near);
    const double before = BestSdr(one.near, both);
    const double after = BestSdr(one.near, Cancel(one.far, both));
    const double erle = Erle(one.far, one.echo, 0);
    const double alone = NearAlone(Samples(one.far.size()), one.near);
    printf("%-62s ERLE %5.1f  double talk %5.1f -> %5.1f (%+5.1f)  near alone %+5.2f\n",
           one.name.c_str(), erle, before, after, after - before, alone);
    sums.erle += erle;
    sums.sdr += after;
    sums.gain += after - before;
    sums.leastGain = std::min(sums.leastGain, after - before);
    sums.nearAlone = std::max(sums.nearAlone, std::abs(alone));
  }
  const auto count = static_cast<double>(cases.size());
  printf("mean: ERLE %.1f, double talk %.1f (%+.1f, least %+.1f); near alone at most %.2f\n",
         sums.erle / count, sums.sdr / count, sums.gain / count, sums.leastGain, sums.nearAlone);
}

void MeasureRecordings(const std::string& folder) {
  for (const std::string name : {"fs01", "fs05"}) {
    const Samples far = ReadSpeech(folder, "aec/" + name + "_farend");
    const Samples near = ReadSpeech(folder, "aec/" + name + "_nearend");
    printf("%s: ERLE %.1f, from 5 s %.1f\n", name.c_str(), Erle(far, near, 0), Erle(far, near, 5));
  }
  const Samples wanted = ReadSpeech(folder, "aec/syn9499_truth_nearend_speech");
  const Samples near = ReadSpeech(folder, "aec/syn9499_nearend");
  const Samples far = ReadSpeech(folder, "aec/syn9499_farend");
  printf("syn9499: double talk %.1f -> %.1f; ERLE of its echo %.1f\n", BestSdr(wanted, near),
         BestSdr(wanted, Cancel(far, near)),
         Erle(far, ReadSpeech(folder, "aec/syn9499_truth_echo"), 0));
  printf("ns01: near alone %+.2f\n",
         NearAlone(ReadSpeech(folder, "aec/ns01_farend"), ReadSpeech(folder, "aec/ns01_nearend")));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: echo_recordings FOLDER\n");
    return 2;
  }
  printf("recordings\n");
  MeasureRecordings(argv[1]);
  printf("made, to adjust to\n");
  Measure(MakeEchoCases(argv[1], false));
  printf("made, to judge by\n");
  Measure(MakeEchoCases(argv[1], true));
  printf("cost: %.2f %% of a core\n", 100 * g_cpu / g_audio);
  return 0;
}
