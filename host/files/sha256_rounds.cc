#include "files/sha256_rounds.h"

#include <bit>

#ifdef __x86_64__
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace host {

namespace {

constexpr size_t kBlockBytes = 64;

alignas(16) constexpr std::array<uint32_t, 64> kRounds = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t BigEndian(const unsigned char* bytes) {
  return uint32_t{bytes[0]} << 24U | uint32_t{bytes[1]} << 16U | uint32_t{bytes[2]} << 8U |
         uint32_t{bytes[3]};
}

void TakeBlock(Sha256State& state, const unsigned char* block) {
  std::array<uint32_t, 64> words = {};
  for (size_t i = 0; i < 16; ++i) words[i] = BigEndian(block + 4 * i);
  for (size_t i = 16; i < words.size(); ++i) {
    const uint32_t early = words[i - 15];
    const uint32_t late = words[i - 2];
    words[i] = words[i - 16] + words[i - 7] +
               (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3U) +
               (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10U);
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (size_t i = 0; i < words.size(); ++i) {
    const uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                           ((e & f) ^ (~e & g)) + kRounds[i] + words[i];
    const uint32_t second =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const std::array<uint32_t, 8> added = {a, b, c, d, e, f, g, h};
  for (size_t i = 0; i < added.size(); ++i) state[i] += added[i];
}

#ifdef __x86_64__

#define HOST_WITH_SHA __attribute__((target("sha,ssse3,sse4.1")))

bool HasInstructions() {
  constexpr unsigned kSha = 1U << 29U;
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kSha) != 0 &&
         __builtin_cpu_supports("ssse3") != 0 && __builtin_cpu_supports("sse4.1") != 0;
}

HOST_WITH_SHA __m128i Load(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

// Four rounds at a time. The instructions want the state as the words A, B, E, F and C, D, G, H,
// the first one highest.
HOST_WITH_SHA void TakeBlockFast(__m128i& abef, __m128i& cdgh, const unsigned char* block) {
  const __m128i bigEndian = _mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203);
  const __m128i abefBefore = abef;
  const __m128i cdghBefore = cdgh;
  __m128i words[4];
  for (size_t i = 0; i < kRounds.size() / 4; ++i) {
    __m128i& word = words[i % 4];
    if (i < 4) {
      word = _mm_shuffle_epi8(Load(block + 16 * i), bigEndian);
    } else {
      const __m128i last = words[(i + 3) % 4];
      const __m128i early = _mm_sha256msg1_epu32(word, words[(i + 1) % 4]);
      const __m128i middle = _mm_alignr_epi8(last, words[(i + 2) % 4], 4);
      word = _mm_sha256msg2_epu32(_mm_add_epi32(early, middle), last);
    }
    const __m128i added = _mm_add_epi32(word, Load(&kRounds[4 * i]));
    cdgh = _mm_sha256rnds2_epu32(cdgh, abef, added);
    abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(added, 0x0E));
  }
  abef = _mm_add_epi32(abef, abefBefore);
  cdgh = _mm_add_epi32(cdgh, cdghBefore);
}

HOST_WITH_SHA void TakeBlocksFast(Sha256State& state, const unsigned char* blocks, size_t count) {
  const __m128i badc = _mm_shuffle_epi32(Load(state.data()), 0xB1);
  const __m128i efgh = _mm_shuffle_epi32(Load(state.data() + 4), 0x1B);
  __m128i abef = _mm_alignr_epi8(badc, efgh, 8);
  __m128i cdgh = _mm_blend_epi16(efgh, badc, 0xF0);
  for (size_t i = 0; i < count; ++i) TakeBlockFast(abef, cdgh, blocks + i * kBlockBytes);
  const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state.data()), _mm_blend_epi16(feba, dchg, 0xF0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state.data() + 4), _mm_alignr_epi8(dchg, feba, 8));
}

#endif

}  // namespace

void TakeSha256BlocksPlainly(Sha256State& state, const unsigned char* blocks, size_t count) {
  for (size_t i = 0; i < count; ++i) TakeBlock(state, blocks + i * kBlockBytes);
}

void TakeSha256Blocks(Sha256State& state, const unsigned char* blocks, size_t count) {
#ifdef __x86_64__
  static const bool hasInstructions = HasInstructions();
  if (hasInstructions) {
    TakeBlocksFast(state, blocks, count);
    return;
  }
#endif
  TakeSha256BlocksPlainly(state, blocks, count);
}

}  // namespace host
