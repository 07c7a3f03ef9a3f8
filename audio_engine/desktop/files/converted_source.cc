#include "desktop/files/converted_source.h"

#include <algorithm>

namespace desktop {

namespace {

// Returns how many frames last as long at another rate, rounded.
size_t AtRate(size_t frames, uint32_t rate, uint32_t newRate) {
  return (frames * newRate + rate / 2) / rate;
}

}  // namespace

std::unique_ptr<ConvertedSource> ConvertedSource::Create(std::unique_ptr<FileSource> source,
                                                         DeviceFormat format) {
  std::unique_ptr<ConvertedSource> made(new ConvertedSource(std::move(source), format));
  return made->m_resampler.IsOpen() ? std::move(made) : nullptr;
}

ConvertedSource::ConvertedSource(std::unique_ptr<FileSource> source, DeviceFormat format)
    : m_source(std::move(source)),
      m_format(format),
      m_blockFrames(Resampler::BlockFrames(m_source->Rate(), format.rate)),
      m_resampler(m_source->Rate(), m_source->Channels(), format.rate, format.channels,
                  m_blockFrames),
      m_block(m_blockFrames * m_source->Channels()),
      m_converted(m_resampler.IsOpen() ? m_resampler.MaxFramesFor(m_blockFrames) * format.channels
                                       : 0),
      m_toDrop(m_resampler.IsOpen() ? m_resampler.LagFrames() : 0) {}

size_t ConvertedSource::Frames() const {
  return AtRate(m_source->Frames(), m_source->Rate(), m_format.rate);
}

size_t ConvertedSource::Read(short* samples, size_t frames) {
  size_t done = 0;
  while (done < frames && (m_at < m_end || Refill())) {
    const size_t part = std::min(frames - done, m_end - m_at);
    std::copy_n(m_converted.data() + m_at * m_format.channels, part * m_format.channels,
                samples + done * m_format.channels);
    m_at += part;
    done += part;
  }
  return done;
}

// Returns false at the end: when as many frames were made as the file has at the other rate.
bool ConvertedSource::Refill() {
  m_at = m_end = 0;
  while (m_end == 0) {
    size_t got = m_ended ? 0 : m_source->Read(m_block.data(), m_blockFrames);
    m_sourceRead += got;
    m_ended = m_ended || got < m_blockFrames;
    const size_t whole = AtRate(m_sourceRead, m_source->Rate(), m_format.rate);
    if (m_ended && m_made >= whole) return false;
    if (got == 0) {
      // Silence moves the last samples out of the resampler.
      std::fill(m_block.begin(), m_block.end(), short{0});
      got = m_blockFrames;
    }
    size_t made = m_resampler.Convert(m_block.data(), got, m_converted.data());
    m_at = std::min(m_toDrop, made);
    m_toDrop -= m_at;
    if (m_ended) made = std::min(made, m_at + (whole - m_made));
    m_made += made - m_at;
    m_end = made > m_at ? made : 0;
    if (m_end == 0) m_at = 0;
  }
  return true;
}

}  // namespace desktop
