#include "catalogue/catalogue_text.h"

#include <algorithm>
#include <vector>

#include "base/suggest.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "files/path_map.h"
#include "files/workspace.h"

namespace host {

std::string_view GroupName(Group group) {
  switch (group) {
    case Group::kHarness:
      return "Harness";
    case Group::kAec:
      return "Echo cancellation";
    case Group::kEnhancement:
      return "Speech enhancement, noise and voice activity";
    case Group::kCodec:
      return "Codecs and quality evaluation";
    case Group::kEffects:
      return "Effects and music processing";
    case Group::kMixing:
      return "Mixing, recording, playback and whole engines";
  }
  return "";
}

std::string_view GroupWord(Group group) {
  switch (group) {
    case Group::kHarness:
      return "harness";
    case Group::kAec:
      return "aec";
    case Group::kEnhancement:
      return "enhancement";
    case Group::kCodec:
      return "codec";
    case Group::kEffects:
      return "effects";
    case Group::kMixing:
      return "mixing";
  }
  return "";
}

std::string_view ContainerName(Container container) {
  switch (container) {
    case Container::kOther:
      return "other";
    case Container::kHeaderless:
      return "headerless";
    case Container::kWave:
      return "wave";
    case Container::kRecording:
      return "recording";
  }
  return "";
}

std::string_view SampleTypeName(SampleType samples) {
  switch (samples) {
    case SampleType::kPcm16:
      return "pcm16";
    case SampleType::kFloat32:
      return "float32";
  }
  return "";
}

std::string_view DeviceName(const CatalogueRow& row) {
  switch (row.device) {
    case Device::kNone:
      return "none";
    case Device::kCapture:
      return "capture";
    case Device::kRender:
      return "render";
    case Device::kBoth:
      return "capture and render";
  }
  return "";
}

std::string Declaration(const CatalogueRow& row) {
  const harness::Words& words = row.declared.words;
  return std::string(words.result) + " " + std::string(words.name) + "(" +
         std::string(words.parameters) + ")";
}

std::string Availability(const CatalogueRow& row) {
  if (!row.calledBy.empty()) return "called by " + std::string(row.calledBy);
  return row.helper ? "helper" : "available";
}

std::string LackingHere(const CatalogueRow& row, const Engine* only) {
  const harness::Words& words = row.declared.words;
  const std::string lacking = words.parameters.empty() ? harness::Lacking(row, {}) : "";
  return lacking.empty() && only != nullptr ? NotInEngine(*only, words.name) : lacking;
}

bool CanBeRun(const CatalogueRow& row, const Engine* only) {
  return row.declared.run != nullptr && !row.helper && LackingHere(row, only).empty();
}

std::string Duration(const CatalogueRow& row) {
  if (row.neverReturns) return "until it is stopped: after 10 s, or --timeout-s";
  if (row.runsOn > 0) {
    return "what it starts runs on after it has returned: for up to " + Seconds(row.runsOn) +
           ", or --linger-s";
  }
  return row.seconds > 0 ? Seconds(row.seconds) : "as fast as its input is processed";
}

std::string FileFormat(const FileUse& use) {
  if (use.container == Container::kOther) return use.content.empty() ? "any content" : use.content;
  if (use.container == Container::kWave) return "16-bit WAVE";
  if (use.container == Container::kRecording) return "WAVE, FLAC, Ogg, MP3 or AAC";
  const std::string samples =
      use.samples == SampleType::kPcm16 ? "16-bit samples" : "32-bit float samples";
  return samples + ", " + Hertz(use.rate) + ", " + Channels(use.channels);
}

std::string RightFormat(const FileUse& use) {
  const auto words = [](int rate, int channels) {
    if (rate > 0 && channels > 0) return Hertz(rate) + ", " + Channels(channels);
    if (rate > 0) return Hertz(rate) + ", any channel count";
    return channels > 0 ? Channels(channels) + ", any rate" : "any rate and channel count";
  };
  if (!use.formatOf.empty()) return "the rate and channel count of " + use.formatOf;
  if (use.leastRate > 0) return "a rate of " + Hertz(use.leastRate) + " or more";
  if (use.rate == 0 && use.alsoRight.channels > 0) {
    return Channels(use.channels) + " or " + words(0, use.alsoRight.channels);
  }
  const std::string second =
      use.alsoRight.rate > 0 ? " or " + words(use.alsoRight.rate, use.alsoRight.channels) : "";
  return words(use.rate, use.channels) + second;
}

std::string InputFormat(const FileUse& use) {
  if (use.container != Container::kWave) return FileFormat(use);
  const std::string format = FileFormat(use) + ", " + RightFormat(use);
  return use.headerlessToo ? format + ", or its samples alone" : format;
}

namespace {

// "8000, 16000 or 32000 Hz"
std::string Rates(std::span<const int> rates) {
  std::string text;
  for (size_t i = 0; i < rates.size(); ++i) {
    if (i > 0) text += i + 1 == rates.size() ? " or " : ", ";
    text += std::to_string(rates[i]);
  }
  return text + " Hz";
}

std::string TakenRates(const FileUse& use) {
  if (use.rate > 0) return Hertz(use.rate);
  const harness::Treated& treated = use.treated;
  if (!treated.rates.empty()) return Rates(treated.rates);
  const int least = std::max(treated.leastRate, use.leastRate);
  if (treated.mostRate > 0) {
    return std::to_string(least) + " to " + Hertz(treated.mostRate);
  }
  return least > 0 ? Hertz(least) + " or more" : "any rate";
}

std::string TakenChannels(const FileUse& use) {
  const int second = use.alsoRight.rate == 0 ? use.alsoRight.channels : 0;
  if (use.channels > 0) {
    return Channels(use.channels) + (second > 0 ? " or " + Channels(second) : "");
  }
  if (use.treated.mostChannels == 2) return "mono or stereo";
  if (use.treated.mostChannels > 0) return "up to " + Channels(use.treated.mostChannels);
  return "any channel count";
}

}  // namespace

std::string TakenFormat(const FileUse& use) {
  if (use.container == Container::kRecording) {
    return FileFormat(use) + "; any rate; any channel count";
  }
  if (use.container == Container::kHeaderless) {
    const std::string samples =
        use.samples == SampleType::kPcm16 ? "16-bit samples" : "32-bit float samples";
    return samples + " without a header; " + Hertz(use.rate) + "; " + Channels(use.channels);
  }
  if (use.container != Container::kWave) return FileFormat(use);
  std::string text = "16-bit WAVE; ";
  if (!use.formatOf.empty()) {
    text += "the rate and channel count of " + use.formatOf;
  } else {
    text += TakenRates(use) + "; " + TakenChannels(use);
    if (use.alsoRight.rate > 0) {
      text += ", or " + Hertz(use.alsoRight.rate) + "; " + Channels(use.alsoRight.channels);
    }
  }
  return use.headerlessToo ? text + ", or its samples alone" : text;
}

RunFiles FilesOf(const CatalogueRow& row, std::span<const std::string> arguments) {
  if (arguments.empty()) return {row.inputs, row.outputs};
  const std::vector<std::string_view> words(arguments.begin(), arguments.end());
  const std::string fault = row.declared.argumentFault == nullptr
                                ? "takes no arguments of a command line"
                                : harness::ArgumentFault(row, words);
  if (!fault.empty()) {
    throw UsageError{std::string(row.declared.words.name) + " " + fault + ": " + Declaration(row)};
  }
  const auto filled = [&](const std::vector<FileUse>& uses) {
    std::vector<FileUse> named;
    for (const FilePlace& place : PlaceFiles(uses, row.declared.words.parameters, words, "")) {
      named.push_back(place.use);
      named.back().name = place.name;
    }
    return named;
  };
  return {filled(harness::Inputs(row, words)), filled(harness::Outputs(row, words))};
}

std::vector<FileGroup> GroupFiles(const std::vector<FileUse>& uses) {
  std::vector<FileGroup> groups;
  for (const FileUse& use : uses) {
    const auto group = std::find_if(groups.begin(), groups.end(), [&](const FileGroup& each) {
      return !use.pattern.empty() && each.use.pattern == use.pattern;
    });
    if (group != groups.end()) {
      ++group->files;
      continue;
    }
    groups.push_back({use});
    if (!use.pattern.empty()) groups.back().use.name = use.pattern;
  }
  return groups;
}

std::optional<std::string> KnownPlace(const FileUse& use) {
  if (use.name.find('{') != std::string::npos) return std::nullopt;
  return PlaceInWorkspace(use.name);
}

std::vector<std::string_view> RoutinesAlike(std::string_view word) {
  std::vector<std::string_view> names;
  for (const CatalogueRow& each : Catalogue()) names.push_back(each.declared.words.name);
  return NamesAlike(word, names);
}

std::string Suggestion(std::string_view word) {
  const std::vector<std::string_view> alike = RoutinesAlike(word);
  if (alike.empty()) return "; \"audio_bench list\" names them all";
  std::string suggestion;
  for (const std::string_view name : alike) {
    suggestion += suggestion.empty() ? "; did you mean " : " or ";
    suggestion += name;
  }
  return suggestion + "?";
}

const CatalogueRow& FindRow(std::string_view routine) {
  const auto rows = Catalogue();
  const auto row = std::find_if(rows.begin(), rows.end(), [routine](const CatalogueRow& each) {
    return each.declared.words.name == routine;
  });
  if (row != rows.end()) return *row;
  throw UsageError{"no routine is called \"" + std::string(routine) + "\"" + Suggestion(routine)};
}

}  // namespace host
