#include "suite/shard.h"

#include <charconv>
#include <system_error>

#include "base/usage_error.h"

namespace host {

namespace {

bool ParseNumber(std::string_view word, size_t& number) {
  const char* const end = word.data() + word.size();
  const auto [last, error] = std::from_chars(word.data(), end, number);
  return error == std::errc() && last == end;
}

}  // namespace

uint64_t Fnv1a(std::string_view text) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const char letter : text) {
    hash ^= static_cast<unsigned char>(letter);
    hash *= 0x100000001b3;
  }
  return hash;
}

bool Shard::Holds(std::string_view id) const { return of == 0 || Fnv1a(id) % of == index - 1; }

Shard ParseShard(const std::string& word) {
  Shard shard;
  const size_t slash = word.find('/');
  if (slash == std::string::npos ||
      !ParseNumber(std::string_view(word).substr(0, slash), shard.index) ||
      !ParseNumber(std::string_view(word).substr(slash + 1), shard.of) || shard.index < 1 ||
      shard.index > shard.of) {
    throw UsageError{"--shard must be I/N with I from 1 to N, not \"" + word + "\""};
  }
  return shard;
}

}  // namespace host
