// Linked with --wrap=fopen: names under "/sdcard" mean those under "sdcard" in the current
// directory.

#include <cstdio>
#include <string>

extern "C" {
FILE* __real_fopen(const char* name, const char* mode);
FILE* __wrap_fopen(const char* name, const char* mode);
FILE* __wrap_fopen64(const char* name, const char* mode);
}

FILE* __wrap_fopen(const char* name, const char* mode) {
  std::string mapped = name;
  if (mapped.starts_with("/sdcard/")) mapped.erase(0, 1);
  return __real_fopen(mapped.c_str(), mode);
}

FILE* __wrap_fopen64(const char* name, const char* mode) { return __wrap_fopen(name, mode); }
