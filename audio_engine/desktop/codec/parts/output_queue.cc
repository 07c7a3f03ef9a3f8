#include "desktop/codec/parts/output_queue.h"

#include <algorithm>
#include <cstring>

#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kMaxWaitingBytes = size_t{1} << 20;

}  // namespace

OutputQueue::OutputQueue(const PacketHeader& header) : m_header(header), m_unitBytes(0) {
  m_waiting.reserve(kMaxWaitingBytes);
}

OutputQueue::OutputQueue(size_t unitBytes) : m_unitBytes(unitBytes) {
  m_waiting.reserve(kMaxWaitingBytes);
}

void OutputQueue::Begin(unsigned char* out, size_t room) {
  m_out = out;
  m_room = room;
  m_given = 0;
  size_t bytes = 0;
  if (m_header) {
    while (bytes < m_waiting.size()) {
      const size_t packet =
          m_header->Read(m_waiting.data() + bytes, m_waiting.size() - bytes).packetBytes;
      if (packet == 0 || bytes + packet > room) break;
      bytes += packet;
    }
  } else {
    bytes = Fitting(m_waiting.size());
  }
  Give(m_waiting.data(), bytes);
  m_waiting.erase(m_waiting.begin(), m_waiting.begin() + Offset(bytes));
}

bool OutputQueue::Add(const unsigned char* data, size_t bytes) {
  const size_t now = m_waiting.empty() ? Fitting(bytes) : 0;
  Give(data, now);
  const size_t later = bytes - now;
  if (m_waiting.size() + later > kMaxWaitingBytes) return false;
  m_waiting.insert(m_waiting.end(), data + now, data + bytes);
  return true;
}

// Returns how many of these bytes have room now. A packet has room as a whole or not at all.
size_t OutputQueue::Fitting(size_t bytes) const {
  const size_t left = m_room - m_given;
  if (bytes <= left) return bytes;
  return m_header ? 0 : left / m_unitBytes * m_unitBytes;
}

void OutputQueue::Give(const unsigned char* data, size_t bytes) {
  if (bytes == 0) return;
  memcpy(m_out + m_given, data, bytes);
  m_given += bytes;
}

}  // namespace desktop
