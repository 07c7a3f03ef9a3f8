#include "run/collect_results.h"

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "files/audio_figures.h"
#include "files/regular_file.h"
#include "results/table_results.h"

namespace host {

namespace {

constexpr size_t kMaxTextBytes = 16'000'000;

// The texts among the outputs, each read once.
class Texts {
 public:
  Texts(const RunReport& report, Limits& limits) {
    for (const FileReport& output : report.outputs) m_outputs[output.place.name] = &output;
    m_goOn = [&limits] { return limits.Check() == Limits::Stop::kNone; };
  }

  TextRead Of(const std::string& name) const {
    const auto found = m_outputs.find(name);
    if (found == m_outputs.end()) return {.fault = "the run has no such file"};
    const FileReport& output = *found->second;
    if (output.state == OutputState::kEmpty) return {};
    if (output.state != OutputState::kWritten) return {.fault = "the file was not written"};
    return ReadText(output.place.path, kMaxTextBytes, m_goOn);
  }

 private:
  std::map<std::string, const FileReport*> m_outputs;
  std::function<bool()> m_goOn;
};

void ReadLines(const Texts& texts, LineResults& lines) {
  std::string last;
  for (const harness::ResultLine& declared : lines.declared()) {
    if (declared.stands != Stands::kWritten || declared.file == last) continue;
    last = declared.file;
    const TextRead read = texts.Of(last);
    if (read.fault.empty()) {
      lines.Read(last, read.text);
    } else {
      lines.Miss(last, read.fault);
    }
  }
}

std::vector<Result> ReadTables(const Plan& plan, const Texts& texts) {
  if (plan.row->tables == nullptr) return {};
  std::vector<TableText> tables;
  for (ResultTable& table : plan.row->tables(harness::Outputs(*plan.row, plan.Words()))) {
    TextRead read = texts.Of(table.file);
    tables.push_back({.table = std::move(table)});
    if (read.fault.empty()) {
      tables.back().text = std::move(read.text);
    } else {
      tables.back().reason = read.fault;
    }
  }
  return TableResults(tables);
}

// Of the audio outputs that stand alone.
std::vector<Result> Lengths(const RunReport& report) {
  std::vector<Result> lengths;
  for (const FileReport& output : report.outputs) {
    if (!output.audio || !output.place.use.pattern.empty()) continue;
    lengths.push_back({.name = kLength,
                       .value = output.audio->Seconds(),
                       .unit = "s",
                       .file = output.place.name});
  }
  return lengths;
}

// The share of an output in which a detector has marked speech, in one pass.
Result SpeechShare(const FileReport& output, int channel, const std::function<bool()>& goOn) {
  Result share = {.name = "speech_share", .unit = "%", .file = output.place.name};
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenRegular(output.place.path), fclose);
  const auto channels = static_cast<size_t>(output.audio->channels);
  uint64_t frames = 0;
  uint64_t marked = 0;
  const auto count = [&](std::span<const float> block) {
    for (size_t i = static_cast<size_t>(channel); i < block.size(); i += channels) {
      ++frames;
      if (block[i] > 0.5F) ++marked;
    }
    return goOn();
  };
  const std::string fault = file == nullptr ? "it cannot be opened"
                                            : ForEachSampleBlock(file.get(), *output.audio, count);
  if (!fault.empty() || frames == 0) {
    share.reason = fault.empty() ? "there are no samples" : fault;
  } else {
    share.value = 100.0 * static_cast<double>(marked) / static_cast<double>(frames);
  }
  return share;
}

// Of the outputs in which a detector marks speech.
std::vector<Result> SpeechShares(const Plan& plan, const RunReport& report, Limits& limits) {
  const auto goOn = [&limits] { return limits.Check() == Limits::Stop::kNone; };
  std::vector<Result> shares;
  for (const FileReport& output : report.outputs) {
    const harness::SoundUse* const sound =
        harness::FindSound(plan.row->sounds, output.place.use.name);
    if (sound == nullptr || sound->speechMarks < 0 || !output.audio || !output.audio->samples)
      continue;
    if (output.audio->channels <= sound->speechMarks) continue;
    shares.push_back(SpeechShare(output, sound->speechMarks, goOn));
  }
  return shares;
}

// How the devices kept up, of a routine that uses any.
std::vector<Result> Gaps(const Plan& plan, const ChildOutcome& outcome) {
  if (plan.row->device == Device::kNone) return {};
  std::vector<Result> gaps;
  const auto add = [&](const char* name, uint64_t DeviceGaps::*count) {
    gaps.push_back({.name = name, .unit = "times", .better = Better::kLower});
    if (outcome.deviceGaps) {
      gaps.back().value = static_cast<double>((*outcome.deviceGaps).*count);
    } else {
      gaps.back().reason = outcome.end == ChildOutcome::End::kReturned
                               ? "the engine does not tell"
                               : "the routine did not return";
    }
  };
  add("underruns", &DeviceGaps::underruns);
  add("overruns", &DeviceGaps::overruns);
  return gaps;
}

}  // namespace

std::vector<Result> CollectResults(const Plan& plan, LineResults heard, const RunReport& report,
                                   Limits& limits) {
  const Texts texts(report, limits);
  ReadLines(texts, heard);
  std::vector<Result> results = heard.Take();
  for (const std::vector<Result>& more :
       {ReadTables(plan, texts), SpeechShares(plan, report, limits), Gaps(plan, *report.outcome),
        Lengths(report)}) {
    results.insert(results.end(), more.begin(), more.end());
  }
  return results;
}

}  // namespace host
