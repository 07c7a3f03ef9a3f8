#include "harness/stdio_file.h"

#include <climits>
#include <cstdarg>

namespace harness {

namespace {

constexpr size_t kBufferBytes = 65536;  // The usual page a call costs more than the copying.

}  // namespace

StdioFile::StdioFile(const char* name, const char* mode) : m_file(fopen(name, mode)) {
  if (m_file == nullptr) return;
  m_buffer.reset(new char[kBufferBytes]);
  setvbuf(m_file, m_buffer.get(), _IOFBF, kBufferBytes);
}

size_t StdioFile::Read(void* data, size_t size, size_t count) {
  return m_file != nullptr ? fread(data, size, count, m_file) : 0;
}

size_t StdioFile::Write(const void* data, size_t size, size_t count) {
  return m_file != nullptr ? fwrite(data, size, count, m_file) : 0;
}

void StdioFile::Print(const char* format, ...) {
  if (m_file == nullptr) return;
  va_list arguments;
  va_start(arguments, format);
  vfprintf(m_file, format, arguments);
  va_end(arguments);
}

int StdioFile::Scan(const char* format, ...) {
  if (m_file == nullptr) return EOF;
  va_list arguments;
  va_start(arguments, format);
  const int read = vfscanf(m_file, format, arguments);
  va_end(arguments);
  return read;
}

void StdioFile::Seek(long offset, int origin) {
  if (m_file != nullptr) fseek(m_file, offset, origin);
}

int StdioFile::Size() {
  if (m_file == nullptr) return 0;
  fseek(m_file, 0, SEEK_END);
  const long size = ftell(m_file);
  fseek(m_file, 0, SEEK_SET);
  return size >= 0 && size <= INT_MAX ? static_cast<int>(size) : 0;
}

void StdioFile::Close() {
  if (m_file != nullptr) fclose(m_file);
  m_file = nullptr;
  m_buffer.reset();
}

void StdioFile::LeaveOpen() {
  m_file = nullptr;
  m_buffer.release();  // The stream goes on using it.
}

}  // namespace harness
