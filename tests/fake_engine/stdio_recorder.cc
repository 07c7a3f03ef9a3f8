// The stdio side of the fake, for programs linked with --wrap for each function below: files are in
// memory while a test has a FakeEngine, and every operation on one of them is recorded under its
// name, and so is what is printed on stdout. Other streams are left alone.

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "fake_engine/fake_engine.h"
#include "fake_engine/stdio_wraps.h"

namespace {

// One open stream: its file may outlive the engine that it was opened under.
struct Cookie {
  explicit Cookie(std::shared_ptr<std::string> file) : bytes(std::move(file)) {}
  std::shared_ptr<std::string> bytes;
  size_t position = 0;
};

struct OpenFile {
  std::string name;
  std::unique_ptr<Cookie> cookie;
};

std::mutex g_mutex;

// Lives as long as the process: what a routine leaves open is flushed at its very end.
std::map<FILE*, OpenFile>& OpenFiles() {
  static auto* const files = new std::map<FILE*, OpenFile>;
  return *files;
}

// Empty for a stream that is neither an open file in memory nor stdout.
std::string NameOf(FILE* stream) {
  if (!FakeEngine::HasCurrent()) return "";
  if (stream == stdout) return "stdout";
  const std::lock_guard lock(g_mutex);
  const auto found = OpenFiles().find(stream);
  return found != OpenFiles().end() ? found->second.name : std::string();
}

ssize_t ReadCookie(void* opaque, char* data, size_t size) {
  auto* cookie = static_cast<Cookie*>(opaque);
  const size_t start = std::min(cookie->position, cookie->bytes->size());
  const size_t read = cookie->bytes->copy(data, size, start);
  cookie->position = start + read;
  return static_cast<ssize_t>(read);
}

ssize_t WriteCookie(void* opaque, const char* data, size_t size) {
  auto* cookie = static_cast<Cookie*>(opaque);
  if (cookie->bytes->size() < cookie->position + size) {
    cookie->bytes->resize(cookie->position + size);
  }
  cookie->bytes->replace(cookie->position, size, data, size);
  cookie->position += size;
  return static_cast<ssize_t>(size);
}

int SeekCookie(void* opaque, off64_t* offset, int origin) {
  auto* cookie = static_cast<Cookie*>(opaque);
  off64_t base = 0;
  if (origin == SEEK_CUR) base = static_cast<off64_t>(cookie->position);
  if (origin == SEEK_END) base = static_cast<off64_t>(cookie->bytes->size());
  if (base + *offset < 0) return -1;
  *offset += base;
  cookie->position = static_cast<size_t>(*offset);
  return 0;
}

// The file that a mode opens, null when it cannot be opened.
std::shared_ptr<std::string> FileFor(FakeEngine& engine, const std::string& name, char mode) {
  if (mode == 'r') return engine.HasFile(name) ? engine.files[name] : nullptr;
  if (engine.unwritable.count(name) > 0) return nullptr;
  if (mode == 'a' && engine.HasFile(name)) return engine.files[name];
  return engine.files[name] = std::make_shared<std::string>();
}

__attribute__((format(scanf, 2, 0))) int Scan(FILE* stream, const char* format, va_list arguments) {
  const int read = __real_vfscanf(stream, format, arguments);
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fscanf(%s, %s) = %d", name.c_str(), Quoted(format).c_str(), read);
  }
  return read;
}

}  // namespace

FILE* __wrap_fopen(const char* name, const char* mode) {
  if (!FakeEngine::HasCurrent()) return __real_fopen(name, mode);
  FakeEngine& engine = FakeEngine::Current();
  const auto bytes = FileFor(engine, name, mode[0]);
  engine.Record("fopen(%s, %s)%s", name, mode, bytes != nullptr ? "" : " = null");
  if (bytes == nullptr) return nullptr;
  const cookie_io_functions_t functions = {ReadCookie, WriteCookie, SeekCookie, nullptr};
  auto cookie = std::make_unique<Cookie>(bytes);
  FILE* stream = fopencookie(cookie.get(), mode, functions);
  const std::lock_guard lock(g_mutex);
  OpenFiles()[stream] = {name, std::move(cookie)};
  return stream;
}

int __wrap_fclose(FILE* stream) {
  const std::string name = NameOf(stream);
  if (name.empty()) return __real_fclose(stream);
  FakeEngine::Current().Record("fclose(%s)", name.c_str());
  std::unique_lock lock(g_mutex);
  const auto file = OpenFiles().extract(stream);  // Closing still needs it.
  lock.unlock();
  return __real_fclose(stream);
}

size_t __wrap_fread(void* data, size_t size, size_t count, FILE* stream) {
  const size_t items = __real_fread(data, size, count, stream);
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fread(%s, %zu, %zu) = %zu", name.c_str(), size, count, items);
  }
  return items;
}

size_t __wrap_fwrite(const void* data, size_t size, size_t count, FILE* stream) {
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fwrite(%s, %zu, %zu)", name.c_str(), size, count);
    if (FakeEngine::Current().diskFull) return 0;
  }
  return __real_fwrite(data, size, count, stream);
}

int __wrap_fflush(FILE* stream) {
  const std::string name = stream != nullptr ? NameOf(stream) : std::string();
  if (!name.empty()) FakeEngine::Current().Record("fflush(%s)", name.c_str());
  return __real_fflush(stream);
}

int __wrap_fseek(FILE* stream, long offset, int origin) {
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fseek(%s, %ld, %d)", name.c_str(), offset, origin);
  }
  return __real_fseek(stream, offset, origin);
}

long __wrap_ftell(FILE* stream) {
  const long position = __real_ftell(stream);
  const std::string name = NameOf(stream);
  if (!name.empty()) FakeEngine::Current().Record("ftell(%s) = %ld", name.c_str(), position);
  return position;
}

int __wrap_feof(FILE* stream) {
  const int atEnd = __real_feof(stream);
  const std::string name = NameOf(stream);
  if (!name.empty()) FakeEngine::Current().Record("feof(%s) = %d", name.c_str(), atEnd != 0);
  return atEnd;
}

int __wrap_fputc(int character, FILE* stream) {
  const std::string name = NameOf(stream);
  if (!name.empty()) FakeEngine::Current().Record("fputc(%s, %d)", name.c_str(), character);
  return __real_fputc(character, stream);
}

int __wrap_fputs(const char* text, FILE* stream) {
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fputs(%s, %s)", name.c_str(), Quoted(text).c_str());
  }
  return __real_fputs(text, stream);
}

int __wrap_fgetc(FILE* stream) {
  const int character = __real_fgetc(stream);
  const std::string name = NameOf(stream);
  if (!name.empty()) FakeEngine::Current().Record("fgetc(%s) = %d", name.c_str(), character);
  return character;
}

char* __wrap_fgets(char* text, int size, FILE* stream) {
  char* const line = __real_fgets(text, size, stream);
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fgets(%s, %d) = %s", name.c_str(), size,
                                 line != nullptr ? Quoted(line).c_str() : "null");
  }
  return line;
}

int __wrap_vfprintf(FILE* stream, const char* format, va_list arguments) {
  const std::string name = NameOf(stream);
  if (!name.empty()) {
    FakeEngine::Current().Record("fprintf(%s, %s)", name.c_str(),
                                 FormatAndArguments(format, arguments).c_str());
  }
  return __real_vfprintf(stream, format, arguments);
}

int __wrap_fprintf(FILE* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int written = __wrap_vfprintf(stream, format, arguments);
  va_end(arguments);
  return written;
}

int __wrap_vfscanf(FILE* stream, const char* format, va_list arguments) {
  return Scan(stream, format, arguments);
}

int __wrap___isoc99_vfscanf(FILE* stream, const char* format, va_list arguments) {
  return Scan(stream, format, arguments);
}

int __wrap_fscanf(FILE* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int read = Scan(stream, format, arguments);
  va_end(arguments);
  return read;
}

int __wrap___isoc99_fscanf(FILE* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int read = Scan(stream, format, arguments);
  va_end(arguments);
  return read;
}

int __wrap_printf(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  if (FakeEngine::HasCurrent()) {
    FakeEngine::Current().Record("printf(%s)", FormatAndArguments(format, arguments).c_str());
    FakeEngine::Current().printed += Formatted(format, arguments);
  }
  const int written = __real_vfprintf(stdout, format, arguments);
  va_end(arguments);
  return written;
}

int __wrap_puts(const char* text) {
  if (FakeEngine::HasCurrent()) {
    FakeEngine::Current().Record("puts(%s)", Quoted(text).c_str());
    FakeEngine::Current().printed += std::string(text) + "\n";
  }
  return __real_puts(text);
}

int __wrap_putchar(int character) {
  if (FakeEngine::HasCurrent()) FakeEngine::Current().Record("putchar(%d)", character);
  return __real_putchar(character);
}

int __wrap_mkdir(const char* name, mode_t mode) {
  if (FakeEngine::HasCurrent()) FakeEngine::Current().Record("mkdir(%s)", name);
  return __real_mkdir(name, mode);
}
