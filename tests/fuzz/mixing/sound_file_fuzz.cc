// Files of all kinds that a player opens, as they come from broken cards.

#include <sndfile.h>

#include <algorithm>

#include "desktop/files/open_audio_file.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/mixing/sources.h"
#include "support/file_bytes.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

extern const int kIterations = 6000;

// libsndfile 1.2.0 loses a vorbis_info and its codec_setup_info where the head of an Ogg stream is
// damaged.
size_t LostByLibraries() { return 6000; }
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:vorbis_info_init"; }

namespace {

// A short tone as libsndfile writes it.
std::string Sound(int format, int channels) {
  SF_INFO info = {};
  info.samplerate = 16000;
  info.channels = channels;
  info.format = format;
  SNDFILE* const sound = sf_open("sound", SFM_WRITE, &info);
  if (sound == nullptr) return "";
  const std::vector<short> tone = Tone(440, 9000, 16000, 600, channels);
  sf_write_short(sound, tone.data(), static_cast<sf_count_t>(tone.size()));
  sf_close(sound);
  return ReadFile("sound");
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"",
          WavBytes({.channels = 2, .rate = 44100}, Tone(440, 9000, 44100, 300, 2)),
          Sound(SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1),
          Sound(SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 1),
          Sound(SF_FORMAT_WAV | SF_FORMAT_GSM610, 1),
          Sound(SF_FORMAT_RF64 | SF_FORMAT_PCM_24, 2),
          Sound(SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 2),
          Sound(SF_FORMAT_CAF | SF_FORMAT_ALAC_16, 1),
          Sound(SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 2),
          Sound(SF_FORMAT_OGG | SF_FORMAT_VORBIS, 1),
          Sound(SF_FORMAT_OGG | SF_FORMAT_OPUS, 1),
          Sound(SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 1)};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz", std::string(data, data + size));
  std::unique_ptr<desktop::FileSource> source;
  const desktop::FileFault fault = desktop::OpenAudioFile("fuzz", &source);
  REQUIRE((fault == desktop::FileFault::kNone) == (source != nullptr));
  REQUIRE(fault != desktop::FileFault::kCannotOpen);
  // What a decoder makes of damage may depend on what it has decoded before.
  const std::string start(data, data + std::min<size_t>(size, 4));
  const bool plain = start == "RIFF" || start == "RF64" || start == "FORM";
  if (source != nullptr) ReadTwice(*source, 20000, plain);
  return 0;
}
