#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "demo/voice.h"

namespace host {

// What the demo's files are made of.
enum class Sound {
  kMelody,  // A plucked melody; see DemoRecording. 44.1 kHz stereo whatever is asked for.
  kSpeech,  // Somebody who talks, with pauses.
  kNoisy,   // The same 10 dB above the noise of a street.
  kSong,    // A melody sung on "a".
  kBand,    // Drums, bass and chords of 120 beats a minute.
  kFar,     // Of a call: what the loudspeaker plays
  kNear,    // and what the microphone hears,
  kTalk     // of which this is said there.
};

// What is true of a sound that something is taken out of: what should be left. Nothing for others.
std::optional<Sound> TruthOf(Sound sound);

// Interleaved 16-bit samples, the same bytes on every machine. To several channels: copies; of
// stereo to mono: the mean. Rates of 8000 Hz and more.
std::vector<int16_t> Render(Sound sound, int rate, int channels);

// In seconds, at any rate.
inline constexpr double kSpeechSeconds = 12;
inline constexpr double kMusicSeconds = 15;
inline constexpr double kBandTempo = 120;  // Beats a minute.
inline constexpr double kNoisySnr = 10;    // dB, pauses left out.
inline constexpr uint64_t kSpeaker = 7;    // Who speaks.

// The sentences of the NOIZEUS corpus, as far as its names and levels go: mono at 8 kHz.
class Sentences {
 public:
  Sentences();

  // sentence, place, level: as counted in the corpus, from 0.
  std::vector<int16_t> Clean(int sentence) const;
  std::vector<int16_t> Noisy(int sentence, int place, int level) const;
  const std::vector<Stretch>& Spoken(int sentence) const;

 private:
  std::vector<Speech> m_clean;
  std::vector<std::vector<double>> m_noise;
};

}  // namespace host
