#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>

namespace harness {

// A stdio stream that may not be open. One that is not open reads and writes nothing and ignores
// seeking and closing, so that a routine need not ask whether its files exist.
class StdioFile {
 public:
  StdioFile(const char* name, const char* mode);
  ~StdioFile() { Close(); }
  StdioFile(const StdioFile&) = delete;
  StdioFile& operator=(const StdioFile&) = delete;

  // As fread and fwrite: the number of whole items of `size` bytes moved, 0 when not open.
  size_t Read(void* data, size_t size, size_t count);
  size_t Write(const void* data, size_t size, size_t count);

  // As fprintf; nothing when not open.
  void Print(const char* format, ...) __attribute__((format(printf, 2, 3)));

  // As fscanf: the number of values read, EOF when not open.
  int Scan(const char* format, ...) __attribute__((format(scanf, 2, 3)));

  // As fseek.
  void Seek(long offset, int origin);

  // The bytes of the file, by going to its end and back to its start. 0 when not open, and for what
  // does not count as a file of the bench: a folder, or 2 GiB and more.
  int Size();

  void Close();

  // Gives the stream up without closing it, for routines that leave a file open on purpose.
  void LeaveOpen();

  // The stream, null when not open.
  FILE* get() const { return m_file; }

 private:
  FILE* m_file;
  std::unique_ptr<char[]> m_buffer;  // The stream's own, in use until it is closed.
};

}  // namespace harness
