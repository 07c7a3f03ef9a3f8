#include <iterator>

#include "base/json_parts.h"
#include "demo/band.h"
#include "demo/call.h"
#include "demo/demo_all.h"
#include "demo/demo_cases.h"
#include "demo/material.h"
#include "harness/noizeus_cases.h"

namespace host {

namespace {

// None of what is told depends on the rate, but for roundings of less than a sample.
constexpr int kRate = 16000;

Json Stretches(const std::vector<Stretch>& stretches) {
  Json list = Json::array();
  for (const Stretch& each : stretches) list.push_back({each.begin, each.end});
  return list;
}

Json BandTruth() {
  const BandMusic band = PlayBand(kRate, kMusicSeconds, kBandTempo);
  return {{"seconds", kMusicSeconds}, {"tempo", kBandTempo}, {"beats", band.beats}};
}

Json SongTruth() {
  Json notes = Json::array();
  for (const SungNote& note : Sing(kRate, kMusicSeconds).notes) {
    notes.push_back({{"begin", note.at.begin}, {"end", note.at.end}, {"midi", note.midi}});
  }
  return {{"seconds", kMusicSeconds}, {"notes", notes}};
}

Json CallTruth() {
  const Call call = MakeCall(kRate);
  return {{"delay", call.delay},
          {"echo_gain", call.echoGain},
          {"far_alone", Stretches({{0, call.doubleTalk.begin}})},
          {"double_talk", Stretches({call.doubleTalk})},
          {"near_talk", Stretches(call.nearTalk)}};
}

Json SentenceTruth() {
  const Sentences sentences;
  Json list = Json::array();
  for (int i = 0; i < harness::kNoizeusSentences; ++i) {
    list.push_back(Stretches(sentences.Spoken(i)));
  }
  return {{"snr", harness::kNoizeusLevels}, {"noises", harness::kNoizeusNoises}, {"speech", list}};
}

}  // namespace

Truths DemoTruthsOf(std::string_view input) {
  const auto sound = SoundOf(input);
  if (sound == Sound::kNear) return {{.name = "delay", .unit = "ms", .value = 1000 * kCallDelay}};
  if (sound == Sound::kBand) return {{.name = "tempo", .unit = "BPM", .value = kBandTempo}};
  return {};
}

std::string DemoTruth() {
  const Speech speech = Speak(kRate, kSpeechSeconds, kSpeaker);
  const Json truth = {
      {"schema_version", 1},
      {"units", {{"time", "s"}, {"tempo", "1/min"}, {"snr", "dB"}, {"echo_gain", "dB"}}},
      {"melody", {{"seconds", 8}, {"tempo", 150}}},
      {"speech", {{"seconds", kSpeechSeconds}, {"speech", Stretches(speech.spoken)}}},
      {"noisy",
       {{"seconds", kSpeechSeconds}, {"snr", kNoisySnr}, {"speech", Stretches(speech.spoken)}}},
      {"song", SongTruth()},
      {"band", BandTruth()},
      {"call", CallTruth()},
      {"sentences", SentenceTruth()}};
  return JsonText(truth);
}

}  // namespace host
