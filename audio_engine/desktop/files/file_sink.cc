#include "desktop/files/file_sink.h"

#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/files/adts_writer.h"
#include "desktop/files/wave_writer.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace desktop {

namespace {

enum class Kind { kNone, kAac, kWave };

Kind KindOf(const char* name) {
  const size_t length = name != nullptr ? strlen(name) : 0;
  if (length < 4) return Kind::kNone;
  const char* const ending = name + length - 4;
  if (strcasecmp(ending, ".wav") == 0) return Kind::kWave;
  return strcasecmp(ending, ".aac") == 0 ? Kind::kAac : Kind::kNone;
}

}  // namespace

bool FileSink::IsWritable(const char* name) {
  const Kind kind = KindOf(name);
  return kind == Kind::kWave || (kind == Kind::kAac && IsBuiltIn(Coder::kAacLc));
}

std::unique_ptr<FileSink> FileSink::Create(const char* name, DeviceFormat format, bool append) {
  if (!IsWritable(name)) {
    LogRefusal("%s: cannot write such a file: %s", name != nullptr ? name : "",
               KindOf(name) == Kind::kAac ? "there is no AAC library"
                                          : "its name ends neither in .aac nor in .wav");
    return nullptr;
  }
  errno = 0;
  auto writer = KindOf(name) == Kind::kAac ? OpenAdtsWriter(name, format, append)
                                           : OpenWaveWriter(name, format, append);
  if (writer == nullptr) {
    LogRefusal("%s: cannot write the audio file: %s", name,
               errno != 0 ? strerror(errno) : "not a file or not a format to go on with");
    return nullptr;
  }
  return std::make_unique<FileSink>(name, format, std::move(writer));
}

FileSink::FileSink(const char* name, DeviceFormat format, std::unique_ptr<FileWriter> writer)
    : m_name(name), m_format(format), m_writer(std::move(writer)) {
  const DeviceFormat target = m_writer->Format();
  if (target.rate == format.rate && target.channels == format.channels) return;
  m_resampler = std::make_unique<Resampler>(format.rate, format.channels, target.rate,
                                            target.channels, kMaxBlockFrames);
  m_converted.resize(m_resampler->MaxFramesFor(kMaxBlockFrames) * target.channels);
}

FileSink::~FileSink() { Finish(); }

bool FileSink::Write(const short* samples, size_t frames) {
  while (m_good && frames > 0) {
    const size_t part = std::min(frames, kMaxBlockFrames);
    if (m_resampler != nullptr) {
      const size_t got = m_resampler->Convert(samples, part, m_converted.data());
      m_writer->Add(m_converted.data(), got);
    } else {
      m_writer->Add(samples, part);
    }
    samples += part * m_format.channels;
    frames -= part;
    m_unflushed += part;
    if (m_unflushed < m_format.rate / 5) continue;
    m_unflushed = 0;
    m_good = Note(m_writer->Flush());
  }
  return m_good;
}

bool FileSink::Finish() {
  if (m_writer == nullptr) return m_good;
  if (m_good) m_good = Note(m_writer->Finish());
  m_writer = nullptr;
  return m_good;
}

bool FileSink::Note(bool good) {
  if (!good) OutputDebugInfo("%s: cannot write further: %s", m_name.c_str(), strerror(errno));
  return good;
}

}  // namespace desktop
