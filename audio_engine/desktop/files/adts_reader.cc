#include "desktop/files/adts_reader.h"

#include <algorithm>
#include <cstring>

namespace desktop {

namespace {

// Returns the length of the packet that starts with these 7 bytes; 0 for none.
size_t PacketBytes(const unsigned char* header) {
  if (header[0] != 0xff || (header[1] & 0xf6) != 0xf0) return 0;
  const size_t bytes = (size_t{header[3]} & 3) << 11 | size_t{header[4]} << 3 | header[5] >> 5;
  return bytes > 7 ? bytes : 0;
}

// Returns the length of an ID3 tag (version 2) at the start of a file.
size_t TagBytes(const unsigned char* start) {
  if (memcmp(start, "ID3", 3) != 0) return 0;
  size_t bytes = 0;
  for (int i = 6; i < 10; ++i) bytes = bytes << 7 | (start[i] & 0x7f);
  return bytes + 10;
}

size_t ReadAt(FILE* file, size_t offset, unsigned char* bytes, size_t count) {
  if (fseeko(file, static_cast<off_t>(offset), SEEK_SET) != 0) return 0;
  return fread(bytes, 1, count, file);
}

}  // namespace

bool IsAdts(FILE* file) {
  unsigned char start[10] = {};
  ReadAt(file, 0, start, sizeof start);
  const size_t first = TagBytes(start);
  unsigned char header[7] = {};
  size_t bytes = 0;
  if (ReadAt(file, first, header, sizeof header) == sizeof header) bytes = PacketBytes(header);
  bool is = bytes > 0;
  if (is) {
    const size_t got = ReadAt(file, first + bytes, header, sizeof header);
    is = got < sizeof header || PacketBytes(header) > 0;
  }
  rewind(file);
  return is;
}

AdtsReader::AdtsReader(FILE* file) : m_file(file) { rewind(file); }

size_t AdtsReader::Next(const unsigned char** packet) {
  while (true) {
    if (m_count - m_at < 2 * (kMaxPacketBytes + kHeaderBytes)) Fill();
    if (m_count - m_at < kHeaderBytes) return 0;
    const size_t bytes = PacketBytes(m_bytes + m_at);
    if (bytes == 0 || !IsConfirmed(bytes)) {
      ++m_at;
      continue;
    }
    *packet = m_bytes + m_at;
    m_at += bytes;
    m_end = m_before + m_at;
    return bytes;
  }
}

void AdtsReader::Fill() {
  memmove(m_bytes, m_bytes + m_at, m_count - m_at);
  m_before += m_at;
  m_count -= m_at;
  m_at = 0;
  m_count += fread(m_bytes + m_count, 1, sizeof m_bytes - m_count, m_file);
}

bool AdtsReader::IsConfirmed(size_t packetBytes) const {
  const size_t next = m_at + packetBytes;
  if (next > m_count) return false;
  // Less than a header is the beginning of a packet that was cut off.
  return m_count - next < kHeaderBytes || PacketBytes(m_bytes + next) > 0;
}

}  // namespace desktop
