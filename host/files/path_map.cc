#include "files/path_map.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <set>

#include "base/printable.h"
#include "files/beneath.h"

// These are the linker's names for a wrapped function and for what it wraps (--wrap).
extern "C" {
FILE* RealFopen(const char* name, const char* mode) __asm__("__real_fopen");
FILE* RealFopen64(const char* name, const char* mode) __asm__("__real_fopen64");
size_t RealFread(void* items, size_t size, size_t count, FILE* file) __asm__("__real_fread");
size_t RealFwrite(const void* items, size_t size, size_t count,
                  FILE* file) __asm__("__real_fwrite");
int RealFflush(FILE* file) __asm__("__real_fflush");
int RealFclose(FILE* file) __asm__("__real_fclose");
int RealStat(const char* name, struct stat* status) __asm__("__real_stat");
FILE* WrapFopen(const char* name, const char* mode) __asm__("__wrap_fopen");
FILE* WrapFopen64(const char* name, const char* mode) __asm__("__wrap_fopen64");
size_t WrapFread(void* items, size_t size, size_t count, FILE* file) __asm__("__wrap_fread");
size_t WrapFwrite(const void* items, size_t size, size_t count,
                  FILE* file) __asm__("__wrap_fwrite");
int WrapFflush(FILE* file) __asm__("__wrap_fflush");
int WrapFclose(FILE* file) __asm__("__wrap_fclose");
int WrapStat(const char* name, struct stat* status) __asm__("__wrap_stat");
}

namespace host {

namespace {

FileActivity* g_activity = nullptr;  // Set while names are mapped.
int g_workspace = -1;                // The folder.

// The mapped files that are open, by name.
struct OpenFile {
  std::string name;
  std::string place;   // In the workspace.
  uint64_t taken = 0;  // Bytes, by fread.
};

struct OpenFiles {
  std::mutex mutex;
  std::map<FILE*, OpenFile> names;
  std::map<std::string, FilePosition*> read;  // By place; null for those without room.
  std::set<std::string> closed;               // The names of those that have been.
};

// Lives until the process ends, because files may be closed by static destructors.
OpenFiles& AllOpenFiles() {
  static auto* const files = new OpenFiles;
  return *files;
}

std::string NameOf(FILE* file) {
  OpenFiles& files = AllOpenFiles();
  const std::scoped_lock lock(files.mutex);
  const auto found = files.names.find(file);
  return found == files.names.end() ? "" : found->second.name;
}

// Counts what was read from a file.
void CountRead(FILE* file, size_t bytes) {
  OpenFiles& files = AllOpenFiles();
  const std::scoped_lock lock(files.mutex);
  const auto found = files.names.find(file);
  if (found != files.names.end()) found->second.taken += bytes;
}

// Notes how far a file has been read that is open for nothing else. The lock is held.
void NoteRead(FILE* file, const OpenFile& open, OpenFiles& files) {
  if (__fwritable(file) != 0) return;
  const auto position = static_cast<uint64_t>(std::max<off_t>(ftello(file), 0));
  const uint64_t bytes = std::max(position, open.taken);
  const auto [known, isNew] = files.read.try_emplace(open.place);
  if (isNew) {
    known->second = g_activity->NoteRead(open.place, bytes);
  } else if (known->second != nullptr) {
    known->second->bytes = std::max(known->second->bytes, bytes);
  }
}

// Returns and forgets the name of a file that is about to be closed, after which its address may be
// that of another.
std::string ForgetName(FILE* file) {
  OpenFiles& files = AllOpenFiles();
  const std::scoped_lock lock(files.mutex);
  const auto found = files.names.extract(file);
  if (found.empty()) return "";
  NoteRead(file, found.mapped(), files);
  if (files.closed.insert(found.mapped().name).second) ++g_activity->done;
  return found.mapped().name;
}

bool HasDrive(std::string_view name) {
  return name.size() >= 2 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0]));
}

bool Writes(const char* mode) { return strpbrk(mode, "wa+") != nullptr; }

// Returns the flags of open for a mode of fopen that writes.
int Flags(std::string_view mode) {
  int flags = mode.find('+') != std::string_view::npos ? O_RDWR : O_WRONLY;
  if (mode.front() == 'w') flags |= O_CREAT | O_TRUNC;
  if (mode.front() == 'a') flags |= O_CREAT | O_APPEND;
  if (mode.find('x') != std::string_view::npos) flags |= O_EXCL;
  if (mode.find('e') != std::string_view::npos) flags |= O_CLOEXEC;
  return flags;
}

FILE* OpenForWriting(const std::string& place, const char* mode) {
  if (mode[0] != 'r' && CreateParentsBeneath(g_workspace, place) != 0) return nullptr;
  const int descriptor = OpenToWriteBeneath(g_workspace, place, Flags(mode), 0666);
  if (descriptor < 0) return nullptr;
  FILE* const file = fdopen(descriptor, mode);
  if (file == nullptr) close(descriptor);
  return file;
}

using Open = FILE* (*)(const char* name, const char* mode);

FILE* Refuse(const char* name, const char* reason = "it leads out of the workspace") {
  fprintf(stderr, "not opened, because %s: %s\n", reason, Printable(name).c_str());
  errno = EACCES;
  return nullptr;
}

FILE* OpenMapped(Open open, const char* name, const char* mode) {
  if (g_activity == nullptr || name == nullptr) return open(name, mode);
  const std::optional<std::string> place = PlaceInWorkspace(name);
  if (!place) return Refuse(name);
  FILE* const file = Writes(mode) ? OpenForWriting(*place, mode) : open(place->c_str(), mode);
  if (file == nullptr) {
    const int error = errno;
    if (Writes(mode) || error != ENOENT) g_activity->NoteOpenFault(*place, error);
    errno = error;
    if (error == EMLINK) return Refuse(name, "it has another name, a hard link");
    return error == EXDEV ? Refuse(name) : nullptr;
  }
  ++g_activity->opened;
  OpenFiles& files = AllOpenFiles();
  const std::scoped_lock lock(files.mutex);
  files.names[file] = {.name = name, .place = *place};
  return file;
}

// Notes why a transfer stopped short. A wrong direction is a matter of the routine, and files that
// are not mapped have no name.
void NoteFault(FirstFault& fault, std::string_view name, int error) {
  if (error != EBADF && !name.empty()) fault.Note(name, error);
}

// Notes a fault of what was transferred by other means than fread and fwrite, which shows in the
// end.
void NoteErrorFlag(FILE* file, std::string_view name) {
  if (ferror(file) == 0) return;
  const bool written = __fwritable(file) != 0;
  NoteFault(written ? g_activity->writeFault : g_activity->readFault, name, EIO);
}

}  // namespace

std::optional<std::string> PlaceInWorkspace(std::string_view name) {
  std::string place(name);
  const bool drive = HasDrive(name);
  const bool rooted = drive || name.starts_with('/');
  if (drive) {
    place[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(place[0])));
    place[1] = '/';
    for (char& letter : place) {
      if (letter == '\\') letter = '/';
    }
  }

  std::string joined;
  for (size_t begin = 0; begin < place.size();) {
    const size_t end = std::min(place.find('/', begin), place.size());
    const std::string_view part = std::string_view(place).substr(begin, end - begin);
    if (part == "..") return std::nullopt;
    if (!part.empty() && part != ".") {
      if (!joined.empty()) joined += '/';
      joined += part;
    }
    begin = end + 1;
  }
  return rooted ? joined : place;
}

void MapOpenedFiles(FileActivity* activity) {
  g_workspace = OpenFolder(".");
  g_activity = activity;
}

void StopMapping() { g_activity = nullptr; }

void FlushOpenedFiles() {
  OpenFiles& files = AllOpenFiles();
  const std::scoped_lock lock(files.mutex);  // None of them is closed meanwhile.
  for (const auto& [file, open] : files.names) {
    if (__fwritable(file) != 0 && RealFflush(file) != 0) {
      NoteFault(g_activity->writeFault, open.name, errno);
    }
    NoteErrorFlag(file, open.name);
    NoteRead(file, open, files);
  }
  RealFflush(nullptr);  // Standard output too.
}

}  // namespace host

FILE* WrapFopen(const char* name, const char* mode) {
  return host::OpenMapped(RealFopen, name, mode);
}

FILE* WrapFopen64(const char* name, const char* mode) {
  return host::OpenMapped(RealFopen64, name, mode);
}

// Asks for the file that opening the name would open. A name that leads out of the workspace is
// refused without a line, which opening it writes.
int WrapStat(const char* name, struct stat* status) {
  if (host::g_activity == nullptr || name == nullptr) return RealStat(name, status);
  const std::optional<std::string> place = host::PlaceInWorkspace(name);
  if (place) return RealStat(place->c_str(), status);
  errno = EACCES;
  return -1;
}

size_t WrapFread(void* items, size_t size, size_t count, FILE* file) {
  const size_t done = RealFread(items, size, count, file);
  if (done > 0 && host::g_activity != nullptr) host::CountRead(file, done * size);
  if (done < count && host::g_activity != nullptr && ferror(file) != 0) {
    const int error = errno;
    host::NoteFault(host::g_activity->readFault, host::NameOf(file), error);
    errno = error;
  }
  return done;
}

size_t WrapFwrite(const void* items, size_t size, size_t count, FILE* file) {
  const size_t done = RealFwrite(items, size, count, file);
  if (done < count && host::g_activity != nullptr && ferror(file) != 0) {
    const int error = errno;
    host::NoteFault(host::g_activity->writeFault, host::NameOf(file), error);
    errno = error;
  }
  return done;
}

int WrapFflush(FILE* file) {
  const int result = RealFflush(file);
  if (result != 0 && file != nullptr && host::g_activity != nullptr) {
    const int error = errno;
    host::NoteFault(host::g_activity->writeFault, host::NameOf(file), error);
    errno = error;
  }
  return result;
}

// Notes what the routine, which does not look at what becomes of its reads and writes, would miss:
// a full disk shows here.
int WrapFclose(FILE* file) {
  if (host::g_activity == nullptr || file == nullptr) return RealFclose(file);
  const std::string name = host::ForgetName(file);
  host::NoteErrorFlag(file, name);
  const int result = RealFclose(file);
  const int error = errno;
  if (result != 0) host::NoteFault(host::g_activity->writeFault, name, error);
  errno = error;
  return result;
}
