#include "selftest/build_ids.h"

#include <elf.h>
#include <link.h>

#include <cstring>
#include <span>

#include "audio_measures/measure.h"

namespace host {

namespace {

constexpr char kDigits[] = "0123456789abcdef";

std::string Hexadecimal(std::span<const unsigned char> bytes) {
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

size_t Padded(size_t size) { return (size + 3) & ~size_t{3}; }

// The build id among the notes of a segment, or nothing.
std::string IdAmong(std::span<const unsigned char> notes) {
  while (notes.size() >= sizeof(ElfW(Nhdr))) {
    ElfW(Nhdr) header = {};
    memcpy(&header, notes.data(), sizeof header);
    const size_t id = sizeof header + Padded(header.n_namesz);
    const size_t end = id + Padded(header.n_descsz);
    if (end > notes.size()) return {};
    if (header.n_type == NT_GNU_BUILD_ID) return Hexadecimal(notes.subspan(id, header.n_descsz));
    notes = notes.subspan(end);
  }
  return {};
}

struct Search {
  uintptr_t measures = 0;  // An address within the library of measures.
  bool first = true;       // The program comes before its libraries.
  std::string program = {};
  std::string library = {};
};

int LookAt(dl_phdr_info* info, size_t /*size*/, void* data) {
  Search& search = *static_cast<Search*>(data);
  bool holdsMeasures = false;
  std::string id;
  for (const ElfW(Phdr) & part : std::span(info->dlpi_phdr, info->dlpi_phnum)) {
    const uintptr_t begin = info->dlpi_addr + part.p_vaddr;
    if (part.p_type == PT_LOAD) {
      holdsMeasures |= search.measures >= begin && search.measures < begin + part.p_memsz;
    }
    if (part.p_type == PT_NOTE && id.empty()) {
      // NOLINTNEXTLINE(performance-no-int-to-ptr)
      id = IdAmong({reinterpret_cast<const unsigned char*>(begin), part.p_memsz});
    }
  }
  if (search.first) search.program = id;
  if (holdsMeasures) search.library = id;
  search.first = false;
  return 0;
}

}  // namespace

std::string BuildIds() {
  static const std::string ids = [] {
    // The names of the measures stand in the library, while their list is on the heap.
    const char* const name = audio_measures::AllMeasures().front().name.data();
    Search search = {.measures = reinterpret_cast<uintptr_t>(name)};
    dl_iterate_phdr(LookAt, &search);
    const bool both = !search.program.empty() && !search.library.empty();
    return both ? search.program + "-" + search.library : std::string();
  }();
  return ids;
}

}  // namespace host
