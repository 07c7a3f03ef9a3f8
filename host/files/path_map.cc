#include "files/path_map.h"

#include <stdio_ext.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/printable.h"

namespace host {

// The linker's names for a wrapped function and for what it wraps (--wrap).
extern "C" {
FILE* RealFopen(const char* name, const char* mode) __asm__("__real_fopen");
FILE* RealFopen64(const char* name, const char* mode) __asm__("__real_fopen64");
int RealFclose(FILE* file) __asm__("__real_fclose");
FILE* WrapFopen(const char* name, const char* mode) __asm__("__wrap_fopen");
FILE* WrapFopen64(const char* name, const char* mode) __asm__("__wrap_fopen64");
int WrapFclose(FILE* file) __asm__("__wrap_fclose");
}

namespace {

FileActivity* g_activity = nullptr;  // Set while names are mapped.

bool HasDrive(std::string_view name) {
  return name.size() >= 2 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0]));
}

void CreateParents(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), 0777);  // Opening the file tells what has failed.
  }
}

using Open = FILE* (*)(const char* name, const char* mode);

FILE* OpenMapped(Open open, const char* name, const char* mode) {
  if (g_activity == nullptr || name == nullptr) return open(name, mode);
  const std::optional<std::string> place = PlaceInWorkspace(name);
  if (!place) {
    fprintf(stderr, "not opened, because it leads out of the workspace: %s\n",
            Printable(name).c_str());
    errno = EACCES;
    return nullptr;
  }
  if (strpbrk(mode, "wa") != nullptr) CreateParents(*place);
  FILE* const file = open(place->c_str(), mode);
  if (file != nullptr) ++g_activity->opened;
  return file;
}

void NoteWriteFailure(int error) {
  int none = 0;
  g_activity->writeFailure.compare_exchange_strong(none, error);
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

void MapOpenedFiles(FileActivity* activity) { g_activity = activity; }

int FlushOpenedFiles() {
  errno = 0;
  return fflush(nullptr) == 0 ? 0 : errno;
}

FILE* WrapFopen(const char* name, const char* mode) { return OpenMapped(RealFopen, name, mode); }

FILE* WrapFopen64(const char* name, const char* mode) {
  return OpenMapped(RealFopen64, name, mode);
}

// A routine does not look at what becomes of its writes; a full disk shows here.
int WrapFclose(FILE* file) {
  const bool written = g_activity != nullptr && file != nullptr && __fwritable(file) != 0;
  const bool failed = written && ferror(file) != 0;
  const int result = RealFclose(file);
  if (written && (failed || result != 0)) NoteWriteFailure(result != 0 ? errno : ENOSPC);
  return result;
}

}  // namespace host
