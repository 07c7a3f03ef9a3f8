#include "report_page/player.h"

#include <algorithm>
#include <cmath>

#include "audio_measures/loudness.h"
#include "base/units.h"
#include "measure/sound.h"
#include "report_page/comparison_in_time.h"
#include "report_page/excerpt.h"
#include "report_page/flac_text.h"

namespace host {

namespace {

// A recording of the player as it is held while the player is made.
struct Heard {
  const PlayedFile* file = nullptr;
  SoundPart part = {};    // At its own rate,
  SoundPart beside = {};  // and at that of the output.
  std::optional<double> delay = {};
  FrameRange range = {};
};

// That of the other run has the same name.
std::string Named(const PlayedFile& file) { return file.label + " " + file.name; }

const GuardMark* FirstMark(const PlayedOutput& output) {
  const auto rank = [](const GuardMark& mark) { return mark.fails ? 0 : mark.isNew ? 1 : 2; };
  const auto first =
      std::ranges::min_element(output.marks, [&](const GuardMark& one, const GuardMark& other) {
        return std::pair(rank(one), one.at) < std::pair(rank(other), other.at);
      });
  return first == output.marks.end() ? nullptr : &*first;
}

class PlayerMaker {
 public:
  PlayerMaker(const PlayedOutput& output, double seconds, std::string prefix)
      : m_output(output), m_seconds(seconds), m_prefix(std::move(prefix)) {}

  Player Make() {
    if (!ReadAll()) return std::move(m_player);
    const double place = FindPlace();
    m_range = RangeAround(Output().part, place, m_seconds);
    for (Heard& each : m_heard) {
      each.range = RangeBeside(m_range, Output().part.rate, each.delay.value_or(0), each.part.rate);
    }
    Json versions = Json::array();
    for (const Heard& each : m_heard) versions.push_back(VersionJson(each));
    const SoundPart& output = Output().part;
    m_player.json = {{"title", m_output.title},
                     {"start", static_cast<double>(m_range.first) / output.rate},
                     {"seconds", static_cast<double>(m_range.count) / output.rate},
                     {"whole", output.Whole()},
                     {"marks", MarksJson()},
                     {"versions", std::move(versions)},
                     {"difference", Difference()},
                     {"curves", Curves()}};
    return std::move(m_player);
  }

 private:
  Heard& Output() { return m_heard.front(); }

  Heard* Find(std::string_view key) {
    const auto found =
        std::ranges::find_if(m_heard, [&](const Heard& each) { return each.file->key == key; });
    return found == m_heard.end() ? nullptr : &*found;
  }

  // False where the output itself cannot be read.
  bool ReadAll() {
    const GuardMark* const mark = FirstMark(m_output);
    const double place = mark == nullptr ? 0 : mark->at;
    for (const PlayedFile& file : m_output.files) {
      try {
        SoundPart part = ReadSoundPart(file.source, place);
        const int rate = m_heard.empty() ? part.rate : Output().part.rate;
        SoundPart beside = AtRate(part, rate);
        m_heard.push_back({.file = &file, .part = std::move(part), .beside = std::move(beside)});
      } catch (const UnreadableSound& error) {
        m_player.notes.push_back(Named(file) + " cannot be heard: it " + FaultWords(error.fault));
        if (m_heard.empty()) return false;
      }
      const SoundPart& part = m_heard.back().part;
      if (m_heard.back().file == &file && part.notFinite > 0) {
        m_player.notes.push_back(Named(file) + " holds " + std::to_string(part.notFinite) +
                                 (part.notFinite == 1
                                      ? " sample that is no number; it plays as silence"
                                      : " samples that are no numbers; they play as silence"));
      }
    }
    return !m_heard.empty();
  }

  // Faults are what follows the name of a file, or what the system says.
  static std::string FaultWords(const std::string& fault) {
    const bool follows = !fault.empty() && std::islower(static_cast<unsigned char>(fault[0])) != 0;
    return follows ? fault : "cannot be read (" + fault + ")";
  }

  // The loudspeaker, and what was said, run beside the input.
  void FindDelays(double place) {
    for (Heard& each : m_heard) {
      if (&each == &Output()) {
        each.delay = 0;
      } else if (each.file->key != "far" && each.file->key != "near") {
        each.delay = DelayAgainst(Output().beside, each.beside, place);
      }
    }
    const Heard* const input = Find("input");
    for (Heard& each : m_heard) {
      const bool waits = each.file->key == "far" || each.file->key == "near";
      if (!waits) continue;
      each.delay =
          input != nullptr ? input->delay : DelayAgainst(Output().beside, each.beside, place);
    }
  }

  double FindPlace() {
    const GuardMark* const mark = FirstMark(m_output);
    double place = mark != nullptr ? mark->at : LoudestPlace(Output().part);
    FindDelays(place);
    if (mark != nullptr) return place;
    for (const char* const key : {"against", "reference", "input"}) {
      const Heard* const other = Find(key);
      if (other == nullptr || !other->delay) continue;
      if (std::string_view(key) == "input" && !m_output.faithful) continue;
      const auto worst = LargestDifference(Output().beside, other->beside, *other->delay);
      if (!worst) continue;
      // Of a drifting output the delay there is another one.
      FindDelays(*worst);
      return *worst;
    }
    return place;
  }

  Json VersionJson(const Heard& heard) {
    const auto cut = CutFrames(heard.part, heard.range.first, heard.range.count);
    const FlacFile flac = EncodeFlac(cut, heard.part.rate, heard.part.bits);
    Json audio;
    if (flac.fault.empty()) {
      audio = m_prefix + "-" + heard.file->key;
      m_player.audio.push_back({audio.get<std::string>(), Base64(flac.bytes)});
    } else {
      m_player.notes.push_back(Named(*heard.file) + " cannot be heard: " + flac.fault);
    }
    if (flac.gain < 0) {
      m_player.notes.push_back(Named(*heard.file) + " goes beyond full scale and plays " +
                               Attenuation(-flac.gain) + " softer than it is");
    }
    const auto loudness = LoudnessOf(cut, heard.part.rate);
    return {{"key", heard.file->key},
            {"label", heard.file->label},
            {"file", heard.file->name},
            {"audio", std::move(audio)},
            {"href", Json()},
            {"rate", heard.part.rate},
            {"channels", heard.part.channels.size()},
            {"lufs", loudness ? Json(*loudness + flac.gain) : Json()},
            {"gain", flac.gain},
            {"delay", heard.delay ? Json(*heard.delay) : Json()}};
  }

  static std::optional<double> LoudnessOf(const std::vector<std::vector<float>>& cut, int rate) {
    audio_measures::Loudness meter(static_cast<int>(cut.size()), rate);
    std::vector<float> frames;
    for (size_t i = 0; i < cut.front().size(); ++i) {
      for (const std::vector<float>& channel : cut) frames.push_back(channel[i]);
    }
    meter.Add(frames);
    return meter.Integrated().value;
  }

  Json MarksJson() const {
    Json marks = Json::array();
    for (const GuardMark& mark : m_output.marks) {
      marks.push_back({{"at", mark.at},
                       {"channel", mark.channel ? Json(*mark.channel) : Json()},
                       {"name", mark.name}});
    }
    return marks;
  }

  // The one that tells most: the other run, else what the output should be, else its input.
  Json Difference() {
    for (const char* const key : {"against", "reference", "input"}) {
      const Heard* const other = Find(key);
      if (other == nullptr || !other->delay) continue;
      Json json = DifferenceJson(Output().beside, other->beside, m_range, *other->delay);
      if (!json.is_null()) json["of"] = {"output", key};
      return json;
    }
    return {};
  }

  Json Curves() {
    Json curves = Json::array();
    const Heard* const input = Find("input");
    const Heard* const far = Find("far");
    const Heard* const near = Find("near");
    if (far != nullptr && input != nullptr) {
      const EchoSounds sounds = {.far = &far->beside,
                                 .input = &input->beside,
                                 .near = near == nullptr ? nullptr : &near->beside,
                                 .delay = input->delay.value_or(0)};
      const Json curve = EchoLossCurve(Output().beside, sounds, m_range);
      if (!curve.is_null()) curves.push_back(curve);
    }
    const Heard* const reference = m_output.faithful ? input : Find("reference");
    if (reference != nullptr && reference->delay) {
      const Json curve = SnrCurve(Output().beside, reference->beside, m_range, *reference->delay);
      if (!curve.is_null()) curves.push_back(curve);
    }
    return curves;
  }

  const PlayedOutput& m_output;
  double m_seconds;
  std::string m_prefix;
  std::vector<Heard> m_heard;
  FrameRange m_range = {};
  Player m_player;
};

}  // namespace

Player MakePlayer(const PlayedOutput& output, double seconds, const std::string& prefix) {
  return PlayerMaker(output, seconds, prefix).Make();
}

}  // namespace host
