#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

namespace desktop {

// Counts in the engine are sizes; those of its interface, and of some libraries, are signed or 32
// bits wide. What lies outside the range of the other type becomes the end of that range.

// A signed count as a size; a negative one is 0.
constexpr size_t Size(int64_t count) { return static_cast<size_t>(std::max<int64_t>(count, 0)); }

// A size as a signed count of at most INT_MAX.
constexpr int Count(size_t size) { return static_cast<int>(std::min<size_t>(size, INT_MAX)); }

// A signed count as one of 32 bits without a sign, such as a rate in Hz; a negative one is 0.
constexpr uint32_t Unsigned(int count) { return static_cast<uint32_t>(std::max(count, 0)); }

// A size as an offset, for iterators.
constexpr std::ptrdiff_t Offset(size_t size) { return static_cast<std::ptrdiff_t>(size); }

// The number that a count is, and the quotient of two counts.
constexpr double Real(size_t count) { return static_cast<double>(count); }
constexpr double Ratio(size_t part, size_t whole) { return Real(part) / Real(whole); }

}  // namespace desktop
