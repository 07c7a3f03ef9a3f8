#include "engine_api/common/wav_file_writer.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <climits>
#include <cstring>

#include "desktop/common/wav_header.h"
#include "engine_api/platform/log.h"
#include "wave/wave_file.h"

namespace {

desktop::WavFormat FormatOf(const WavHeader& header) {
  return {static_cast<int>(header.sampleRate), header.channels, header.bitsPerSample};
}

}  // namespace

CWavFileWriter::CWavFileWriter(int sampleRate, int channels, int bitsPerSample,
                               const std::string& fileName)
    : m_wavHeader(std::bit_cast<WavHeader>(wave::Header(sampleRate, channels, bitsPerSample, 0))),
      m_FileName(fileName) {
  m_ofs = desktop::CreateWav(m_FileName.c_str(), FormatOf(m_wavHeader), desktop::WavBuffer::kNone);
  m_notWav = m_ofs == nullptr ? 1 : 0;
}

CWavFileWriter::~CWavFileWriter() { desktop::FinishWav(m_ofs, FormatOf(m_wavHeader)); }

void CWavFileWriter::Write(const void* data, int bytes) {
  if (m_ofs == nullptr || bytes <= 0) return;

  const size_t kept = desktop::AppendToWav(m_ofs, m_FileName.c_str(), FormatOf(m_wavHeader), data,
                                           static_cast<size_t>(bytes));
  if (kept > 0) {
    m_startrecordFlag = true;
    m_startLength = m_nTotalBytes;
    // The counters stop at 2 GiB; the header is made from the length of the file.
    m_nTotalBytes += std::min(static_cast<int>(kept), INT_MAX - m_nTotalBytes);
    m_endLength = m_nTotalBytes;
  }
  if (m_ofs == nullptr) m_notWav = 1;
}
