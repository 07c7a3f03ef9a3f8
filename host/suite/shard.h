#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

// A part of the cases of a suite that can run anywhere: those whose id's hash modulo `of` is
// `index` - 1.
struct Shard {
  size_t index = 1;
  size_t of = 0;  // 0: the whole suite.

  bool Holds(std::string_view id) const;
};

// FNV-1a, 64 bits (Fowler, Noll, Vo).
uint64_t Fnv1a(std::string_view text);

// From "2/8". Throws UsageError when it is none.
Shard ParseShard(const std::string& word);

}  // namespace host
