#include "demo/sound_file.h"

#include <cstdint>
#include <map>
#include <tuple>

#include "wave/wave_file.h"

namespace host {

SoundFile::SoundFile(Sound sound, const harness::WaveFormat& format) {
  const std::vector<int16_t> samples = Render(sound, format.rate, format.channels);
  const auto pcm = std::as_bytes(std::span(samples));
  const auto header = wave::Header(format.rate, format.channels, 16, pcm.size());
  const auto head = std::as_bytes(std::span(header));
  m_bytes.assign(head.begin(), head.end());
  m_bytes.insert(m_bytes.end(), pcm.begin(), pcm.end());
}

std::span<const std::byte> SoundFile::Bytes(bool headerless) const {
  return std::span(m_bytes).subspan(headerless ? wave::kHeaderBytes : 0);
}

const FileDigest& SoundFile::Digest(bool headerless) {
  std::optional<FileDigest>& digest = m_digests[headerless ? 1 : 0];
  if (!digest) {
    const auto bytes = Bytes(headerless);
    Sha256 hash;
    hash.Add(std::span(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
    digest = FileDigest{.digest = hash.Digest(), .bytes = bytes.size(), .fault = {}};
  }
  return *digest;
}

SoundFile& SoundFileOf(Sound sound, const harness::WaveFormat& format) {
  static std::map<std::tuple<Sound, int, int>, SoundFile> files;
  const std::tuple key(sound, format.rate, format.channels);
  const auto known = files.find(key);
  return known != files.end() ? known->second
                              : files.emplace(key, SoundFile(sound, format)).first->second;
}

const Sentences& AllSentences() {
  static const Sentences sentences;
  return sentences;
}

}  // namespace host
