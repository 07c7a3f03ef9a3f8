#include "recording/whole_container.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/counted.h"
#include "wave/wave_file.h"

namespace host {

namespace {

constexpr int kMaxChunks = 10000;

struct Head {
  unsigned char bytes[32] = {};
  size_t count = 0;

  bool Has(size_t at, std::string_view text) const {
    return at + text.size() <= count && memcmp(bytes + at, text.data(), text.size()) == 0;
  }
};

Head ReadAt(int file, uint64_t at) {
  Head head;
  const ssize_t count = pread(file, head.bytes, sizeof head.bytes, static_cast<off_t>(at));
  head.count = count > 0 ? static_cast<size_t>(count) : 0;
  return head;
}

uint64_t BigEndian(const unsigned char* bytes, int count) {
  uint64_t value = 0;
  for (int i = 0; i < count; ++i) value = value << 8U | bytes[i];
  return value;
}

uint64_t LittleEndian(const unsigned char* bytes, int count) {
  uint64_t value = 0;
  while (count-- > 0) value = value << 8U | bytes[count];
  return value;
}

std::string Shortage(uint64_t announced, uint64_t there) {
  // A pad byte at the end is often left out.
  if (announced <= there + 1) return "";
  return "is not whole: it announces " + Counted(announced, "byte") + ", " + ThereAre(there);
}

// Where the chunks of a CAF file end, by what they announce; that of the samples may be open.
uint64_t EndOfCaf(int file, uint64_t fileBytes) {
  constexpr uint64_t kMax = uint64_t{1} << 62U;
  uint64_t at = 8;
  for (int i = 0; i < kMaxChunks && at + 12 <= fileBytes; ++i) {
    const Head chunk = ReadAt(file, at);
    const uint64_t bytes = BigEndian(chunk.bytes + 4, 8);
    if (bytes == UINT64_MAX) return fileBytes;
    at += 12 + std::min(bytes, kMax);
  }
  return at;
}

}  // namespace

std::string ShortContainer(FILE* file) {
  struct stat status = {};
  if (fstat(fileno(file), &status) != 0) return "";
  const auto there = static_cast<uint64_t>(status.st_size);
  const Head head = ReadAt(fileno(file), 0);
  if (head.Has(0, "RIFF") && head.Has(8, "WAVE")) {
    const wave::Parsed found = wave::Find(file, there);
    if (!found.audio) return std::string("cannot be read: ") + found.fault;
    if (found.audio->announcedBytes <= found.audio->bytes) return "";
    return Shortage(found.audio->offset + found.audio->announcedBytes, there);
  }
  if (head.Has(0, "RF64") && head.Has(12, "ds64") && head.count >= 28) {
    const uint64_t announced = LittleEndian(head.bytes + 20, 8);
    return announced > UINT64_MAX - 8 ? "" : Shortage(announced + 8, there);
  }
  if (head.Has(0, "FORM") && (head.Has(8, "AIFF") || head.Has(8, "AIFC"))) {
    return Shortage(BigEndian(head.bytes + 4, 4) + 8, there);
  }
  if (head.Has(0, "caff")) return Shortage(EndOfCaf(fileno(file), there), there);
  return "";
}

}  // namespace host
