#include "engines/shared_library.h"

#include <link.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "base/usage_error.h"
#include "files/regular_file.h"
#include "files/sha256.h"

namespace host {

namespace {

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);
using Note = ElfW(Nhdr);
using Bytes = std::span<const unsigned char>;

constexpr size_t kMostBytes = size_t{1} << 30U;

// A file whose contents are of no use as a library.
struct Damaged {};

#if __ELF_NATIVE_CLASS == 64
constexpr unsigned char kClass = ELFCLASS64;
#else
constexpr unsigned char kClass = ELFCLASS32;
#endif

#if defined(__x86_64__)
constexpr int kMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr int kMachine = EM_AARCH64;
#else
#error "the number of this processor in a library's header is not known here"
#endif

Bytes Part(Bytes file, uint64_t at, uint64_t length) {
  if (at > file.size() || length > file.size() - at) throw Damaged();
  return file.subspan(at, length);
}

// The records that fill a part, or what of it holds whole ones.
template <typename Record>
std::vector<Record> Records(Bytes part) {
  std::vector<Record> records(part.size() / sizeof(Record));
  if (!records.empty()) memcpy(records.data(), part.data(), records.size() * sizeof(Record));
  return records;
}

std::vector<Section> Sections(Bytes file, const Header& header) {
  if (header.e_shentsize != sizeof(Section)) throw Damaged();
  return Records<Section>(Part(file, header.e_shoff, header.e_shnum * sizeof(Section)));
}

Bytes Content(Bytes file, const Section& section) {
  return Part(file, section.sh_offset, section.sh_size);
}

std::string NameAt(Bytes names, size_t at) {
  if (at >= names.size()) throw Damaged();
  const Bytes rest = names.subspan(at);
  const void* const end = memchr(rest.data(), 0, rest.size());
  if (end == nullptr) throw Damaged();
  return {rest.data(), static_cast<const unsigned char*>(end)};
}

bool IsExported(const Symbol& symbol) {
  const unsigned binding = symbol.st_info >> 4U;
  const unsigned visibility = symbol.st_other & 3U;
  return symbol.st_shndx != SHN_UNDEF && binding != STB_LOCAL &&
         (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

void AddExported(Bytes symbols, Bytes names, std::set<std::string>& exported) {
  for (const Symbol& symbol : Records<Symbol>(symbols)) {
    if (IsExported(symbol)) exported.insert(NameAt(names, symbol.st_name));
  }
}

std::string Hexadecimal(Bytes bytes) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

// The build id among the notes of a section; empty when it is not there.
std::string BuildId(Bytes notes) {
  constexpr std::string_view kOwner("GNU\0", 4);
  const auto padded = [](uint64_t length) { return (length + 3) / 4 * 4; };
  while (notes.size() >= sizeof(Note)) {
    Note note;
    memcpy(&note, notes.data(), sizeof note);
    const Bytes owner = Part(notes, sizeof note, note.n_namesz);
    const Bytes content = Part(notes, sizeof note + padded(note.n_namesz), note.n_descsz);
    const bool isGnu = std::equal(owner.begin(), owner.end(), kOwner.begin(), kOwner.end());
    if (note.n_type == NT_GNU_BUILD_ID && isGnu) return Hexadecimal(content);
    const uint64_t length = sizeof note + padded(note.n_namesz) + padded(note.n_descsz);
    notes = notes.subspan(std::min<uint64_t>(length, notes.size()));
  }
  return "";
}

// Throws UsageError for what is not for this processor.
Header HeaderOf(Bytes file, const std::string& path) {
  if (file.size() < sizeof(Header) || memcmp(file.data(), ELFMAG, SELFMAG) != 0) {
    throw UsageError{path + " is no shared library: it is no ELF file"};
  }
  Header header;
  memcpy(&header, file.data(), sizeof header);
  if (header.e_ident[EI_CLASS] != kClass || header.e_machine != kMachine) {
    throw UsageError{path + " is a library for another processor"};
  }
  if (header.e_type != ET_DYN) throw UsageError{path + " is an ELF file, but no shared library"};
  return header;
}

SharedLibrary Read(Bytes file, const Header& header) {
  SharedLibrary library;
  const std::vector<Section> sections = Sections(file, header);
  for (const Section& section : sections) {
    if (section.sh_type == SHT_DYNSYM) {
      if (section.sh_link >= sections.size()) throw Damaged();
      AddExported(Content(file, section), Content(file, sections[section.sh_link]),
                  library.exported);
    }
    if (section.sh_type == SHT_NOTE && library.buildId.empty()) {
      library.buildId = BuildId(Content(file, section));
    }
  }
  return library;
}

}  // namespace

std::string OwnBuildId() {
  std::string found;
  const auto look = [](dl_phdr_info* program, size_t /*bytes*/, void* result) {
    for (const ElfW(Phdr) & part : std::span(program->dlpi_phdr, program->dlpi_phnum)) {
      if (part.p_type != PT_NOTE) continue;
      // The loader tells addresses as numbers.
      const auto* const notes =
          // NOLINTNEXTLINE(performance-no-int-to-ptr)
          reinterpret_cast<const unsigned char*>(program->dlpi_addr + part.p_vaddr);
      std::string& id = *static_cast<std::string*>(result);
      if (id.empty()) id = BuildId({notes, part.p_memsz});
    }
    return 1;  // The program itself comes first, and is all that is asked for.
  };
  dl_iterate_phdr(look, &found);
  return found;
}

SharedLibrary ReadSharedLibrary(const std::string& path) {
  const TextRead content = ReadText(path, kMostBytes, [] { return true; });
  if (!content.fault.empty()) throw UsageError{"cannot read " + path + ": " + content.fault};
  const Bytes file(reinterpret_cast<const unsigned char*>(content.text.data()),
                   content.text.size());
  const Header header = HeaderOf(file, path);
  try {
    SharedLibrary library = Read(file, header);
    Sha256 hash;
    hash.Add(file);
    library.digest = hash.Digest();
    return library;
  } catch (const Damaged&) {
    throw UsageError{path + " is a damaged library: its tables lie beyond its end"};
  }
}

}  // namespace host
