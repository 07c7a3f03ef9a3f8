#include <cstdio>
#include <map>

#include "fuzz/left_behind.h"

extern "C" {
FILE* __real_fopen(const char* name, const char* mode);
FILE* __wrap_fopen(const char* name, const char* mode);
FILE* __wrap_fopen64(const char* name, const char* mode);
int __real_fclose(FILE* file);
int __wrap_fclose(FILE* file);
int __real_setvbuf(FILE* file, char* buffer, int mode, size_t size);
int __wrap_setvbuf(FILE* file, char* buffer, int mode, size_t size);
}

namespace {

// With the buffer that harness::StdioFile gives a stream, and gives up with it.
std::map<FILE*, char*>& OpenStreams() {
  static std::map<FILE*, char*> streams;
  return streams;
}

}  // namespace

FILE* __wrap_fopen(const char* name, const char* mode) {
  FILE* const file = __real_fopen(name, mode);
  if (file != nullptr) OpenStreams().emplace(file, nullptr);
  return file;
}

FILE* __wrap_fopen64(const char* name, const char* mode) { return __wrap_fopen(name, mode); }

int __wrap_setvbuf(FILE* file, char* buffer, int mode, size_t size) {
  OpenStreams().at(file) = buffer;
  return __real_setvbuf(file, buffer, mode, size);
}

int __wrap_fclose(FILE* file) {
  OpenStreams().erase(file);
  return __real_fclose(file);
}

void CloseLeftStreams() {
  for (const auto& [file, buffer] : OpenStreams()) {
    __real_fclose(file);
    delete[] buffer;
  }
  OpenStreams().clear();
}
