#include "desktop/files/sound_file.h"

// Files that libsndfile reads.

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "desktop/common/counts.h"
#include "wave/wave_file.h"

namespace desktop {

namespace {

sf_count_t Length(void* data) {
  auto* const file = static_cast<FILE*>(data);
  const off_t at = ftello(file);
  fseeko(file, 0, SEEK_END);
  const off_t length = ftello(file);
  fseeko(file, at, SEEK_SET);
  return length;
}

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
  auto* const file = static_cast<FILE*>(data);
  return fseeko(file, offset, whence) == 0 ? ftello(file) : -1;
}

sf_count_t ReadBytes(void* to, sf_count_t bytes, void* data) {
  return Offset(fread(to, 1, Size(bytes), static_cast<FILE*>(data)));
}

sf_count_t WriteNothing(const void* /*from*/, sf_count_t /*bytes*/, void* /*data*/) { return 0; }

sf_count_t Tell(void* data) { return ftello(static_cast<FILE*>(data)); }

struct CloseSound {
  void operator()(SNDFILE* sound) const { sf_close(sound); }
};
using Sound = std::unique_ptr<SNDFILE, CloseSound>;

// Returns whether the file begins as one of a known kind does.
bool HasKnownStart(FILE* file) {
  unsigned char start[4] = {};
  rewind(file);
  if (fread(start, 1, sizeof start, file) != sizeof start) return false;
  for (const char* known : {"RIFF", "RIFX", "RF64", "FORM", "fLaC", "OggS", "caff"}) {
    if (memcmp(start, known, sizeof start) == 0) return true;
  }
  return memcmp(start, "ID3", 3) == 0 || (start[0] == 0xff && (start[1] & 0xe0) == 0xe0);
}

// Returns whether it is a valid WAVE file whose samples are coded in a way that nothing here
// decodes.
bool IsWaveOfOtherCoding(FILE* file) {
  const wave::Parsed parsed = wave::Find(file, Size(Length(file)));
  return parsed.audio && parsed.audio->coding != wave::Coding::kPcm &&
         parsed.audio->coding != wave::Coding::kFloat;
}

class SoundFile : public FileSource {
 public:
  SoundFile(File file, Sound sound, const SF_INFO& info)
      : m_file(std::move(file)),
        m_sound(std::move(sound)),
        m_rate(Unsigned(info.samplerate)),
        m_channels(Unsigned(info.channels)),
        m_frames(Size(info.frames)) {}

  uint32_t Rate() const override { return m_rate; }
  uint32_t Channels() const override { return m_channels; }
  size_t Frames() const override { return m_frames; }

  size_t Read(short* samples, size_t frames) override {
    size_t done = 0;
    while (done < frames) {
      const size_t part = std::min(frames - done, std::size(m_floats) / m_channels);
      const sf_count_t got = sf_readf_float(m_sound.get(), m_floats, Offset(part));
      if (got <= 0) break;
      const size_t count = m_channels * Size(got);
      short* const out = samples + done * m_channels;
      for (size_t i = 0; i < count; ++i) out[i] = ToShort(m_floats[i]);
      done += Size(got);
    }
    m_read += done;
    m_ended = done < frames;
    return done;
  }

  bool Failed() const override { return m_ended && m_read < Frames(); }

  bool Rewind() override {
    m_read = 0;
    m_ended = false;
    return sf_seek(m_sound.get(), 0, SEEK_SET) == 0;
  }

 private:
  static short ToShort(float sample) {
    if (std::isnan(sample)) return 0;
    return static_cast<short>(std::lrint(std::clamp(sample * 32768.0F, -32768.0F, 32767.0F)));
  }

  File m_file;
  Sound m_sound;
  const uint32_t m_rate;
  const uint32_t m_channels;
  const size_t m_frames;
  // Frames that were read since the start, and whether there are no more.
  size_t m_read = 0;
  bool m_ended = false;
  float m_floats[4096];
};

}  // namespace

FileFault OpenSoundFile(File file, std::unique_ptr<FileSource>* source) {
  const bool known = HasKnownStart(file.get());
  rewind(file.get());
  SF_VIRTUAL_IO io = {Length, Seek, ReadBytes, WriteNothing, Tell};
  SF_INFO info = {};
  Sound sound(sf_open_virtual(&io, SFM_READ, &info, file.get()));
  if (sound == nullptr) {
    if (IsWaveOfOtherCoding(file.get())) return FileFault::kNoDecoder;
    return known ? FileFault::kDamaged : FileFault::kUnknownKind;
  }
  if (info.samplerate < 1 || info.samplerate > 768000 || info.channels < 1 || info.channels > 64) {
    return FileFault::kDamaged;
  }
  *source = std::make_unique<SoundFile>(std::move(file), std::move(sound), info);
  return FileFault::kNone;
}

}  // namespace desktop
