// Files that libsndfile reads.

#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

#include "base/units.h"
#include "recording/recording.h"

namespace host {

namespace {

struct CloseSound {
  void operator()(SNDFILE* sound) const { sf_close(sound); }
};
using Sound = std::unique_ptr<SNDFILE, CloseSound>;

// Where the library is in a file. It may close a descriptor that it is given, so it is given none.
struct Place {
  int file = -1;
  sf_count_t at = 0;
};

Place& PlaceOf(void* data) { return *static_cast<Place*>(data); }

sf_count_t LengthOf(void* data) {
  struct stat status = {};
  return fstat(PlaceOf(data).file, &status) == 0 ? status.st_size : 0;
}

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
  Place& place = PlaceOf(data);
  const sf_count_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? place.at : LengthOf(data);
  if (offset < -from) return -1;
  place.at = from + offset;
  return place.at;
}

sf_count_t ReadBytes(void* to, sf_count_t bytes, void* data) {
  Place& place = PlaceOf(data);
  const ssize_t count = pread(place.file, to, static_cast<size_t>(bytes), place.at);
  if (count > 0) place.at += count;
  return std::max<sf_count_t>(count, 0);
}

sf_count_t WriteNothing(const void* /*from*/, sf_count_t /*bytes*/, void* /*data*/) { return 0; }

sf_count_t Tell(void* data) { return PlaceOf(data).at; }

struct Name {
  int format;
  const char* name;
};

constexpr Name kContainers[] = {{SF_FORMAT_WAV, "WAVE"},  {SF_FORMAT_WAVEX, "WAVE"},
                                {SF_FORMAT_RF64, "RF64"}, {SF_FORMAT_AIFF, "AIFF"},
                                {SF_FORMAT_CAF, "CAF"},   {SF_FORMAT_FLAC, "FLAC"},
                                {SF_FORMAT_OGG, "Ogg"},   {SF_FORMAT_MPEG, "MPEG"},
                                {SF_FORMAT_AU, "AU"},     {SF_FORMAT_W64, "W64"}};

constexpr Name kSamples[] = {{SF_FORMAT_PCM_S8, "8-bit"},
                             {SF_FORMAT_PCM_U8, "8-bit"},
                             {SF_FORMAT_PCM_16, "16-bit"},
                             {SF_FORMAT_PCM_24, "24-bit"},
                             {SF_FORMAT_PCM_32, "32-bit"},
                             {SF_FORMAT_FLOAT, "32-bit float"},
                             {SF_FORMAT_DOUBLE, "64-bit float"},
                             {SF_FORMAT_ULAW, "mu-law"},
                             {SF_FORMAT_ALAW, "A-law"},
                             {SF_FORMAT_IMA_ADPCM, "IMA ADPCM"},
                             {SF_FORMAT_MS_ADPCM, "MS ADPCM"},
                             {SF_FORMAT_GSM610, "GSM 6.10"},
                             {SF_FORMAT_VORBIS, "Vorbis"},
                             {SF_FORMAT_OPUS, "Opus"},
                             {SF_FORMAT_ALAC_16, "16-bit ALAC"},
                             {SF_FORMAT_ALAC_20, "20-bit ALAC"},
                             {SF_FORMAT_ALAC_24, "24-bit ALAC"},
                             {SF_FORMAT_ALAC_32, "32-bit ALAC"},
                             {SF_FORMAT_MPEG_LAYER_I, "layer I"},
                             {SF_FORMAT_MPEG_LAYER_II, "layer II"},
                             {SF_FORMAT_MPEG_LAYER_III, "layer III (MP3)"}};

template <size_t kCount>
std::string NameOf(const Name (&names)[kCount], int format, const char* other) {
  const auto* const found = std::find_if(std::begin(names), std::end(names),
                                         [&](const Name& each) { return each.format == format; });
  return found != std::end(names) ? found->name : other;
}

class SoundRecording : public Recording {
 public:
  SoundRecording(std::unique_ptr<Place> place, Sound sound, const SF_INFO& info)
      : m_place(std::move(place)),
        m_sound(std::move(sound)),
        m_format({.container = NameOf(kContainers, info.format & SF_FORMAT_TYPEMASK, "a file"),
                  .samples = NameOf(kSamples, info.format & SF_FORMAT_SUBMASK, "coded samples"),
                  .rate = info.samplerate,
                  .channels = info.channels}) {
    // How long MPEG audio is says only a header that many files lack.
    const bool known = (info.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_MPEG && info.frames >= 0 &&
                       info.frames < SF_COUNT_MAX;
    if (known) m_format.frames = static_cast<uint64_t>(info.frames);
  }

  const RecordingFormat& Format() const override { return m_format; }

  size_t Read(double* samples, size_t frames) override {
    const sf_count_t count =
        sf_readf_double(m_sound.get(), samples, static_cast<sf_count_t>(frames));
    const size_t read = count > 0 ? static_cast<size_t>(count) : 0;
    m_read += read;
    if (read < frames) m_ended = true;
    return read;
  }

  std::string Fault() const override {
    if (!m_ended) return "";
    const auto seconds = [this](uint64_t frames) {
      return Seconds(static_cast<double>(frames) / m_format.rate);
    };
    if (m_format.frames && m_read < *m_format.frames) {
      return "is not whole: " + seconds(m_read) + " of " + seconds(*m_format.frames) +
             " can be read";
    }
    if (sf_error(m_sound.get()) == SF_ERR_NO_ERROR) return "";
    return "cannot be read beyond " + seconds(m_read) + ": " + sf_strerror(m_sound.get());
  }

 private:
  std::unique_ptr<Place> m_place;
  Sound m_sound;
  RecordingFormat m_format;
  uint64_t m_read = 0;  // Frames.
  bool m_ended = false;
};

}  // namespace

OpenedRecording OpenSoundRecording(int file) {
  auto place = std::make_unique<Place>(Place{.file = file});
  SF_VIRTUAL_IO io = {LengthOf, Seek, ReadBytes, WriteNothing, Tell};
  SF_INFO info = {};
  Sound sound(sf_open_virtual(&io, SFM_READ, &info, place.get()));
  if (sound == nullptr) return {.fault = "is of no kind that is known"};
  if (info.samplerate < 1 || info.samplerate > kMaxRate || info.channels < 1 ||
      info.channels > kMaxRecordedChannels) {
    return {.fault = "is damaged: " + std::to_string(info.samplerate) + " Hz, " +
                     std::to_string(info.channels) +
                     (info.channels == 1 ? " channel" : " channels")};
  }
  return {.recording = std::make_unique<SoundRecording>(std::move(place), std::move(sound), info)};
}

}  // namespace host
