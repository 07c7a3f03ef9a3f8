#include "files/sha256.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "files/audio_figures.h"
#include "files/sha256_rounds.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

std::string DigestOfText(const std::string& text, size_t blockBytes) {
  Sha256 hash;
  for (size_t at = 0; at < text.size(); at += blockBytes) {
    const std::string block = text.substr(at, blockBytes);
    hash.Add({reinterpret_cast<const unsigned char*>(block.data()), block.size()});
  }
  return hash.Digest();
}

// The examples of FIPS 180-2, appendix B, and what no bytes give.
TEST(Sha256, GivesTheValuesOfTheStandard) {
  EXPECT_EQ(DigestOfText("", 64),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(DigestOfText("abc", 64),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(DigestOfText("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 64),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(DigestOfText(std::string(1000000, 'a'), 4096),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, DoesNotDependOnTheBlocks) {
  for (const size_t length : {54U, 55U, 56U, 63U, 64U, 65U, 119U, 120U, 128U}) {
    const std::string text(length, 'x');
    for (const size_t block : {1U, 7U, 64U, 100U}) {
      EXPECT_EQ(DigestOfText(text, block), DigestOfText(text, 1000)) << length << " " << block;
    }
  }
}

// Whether or not this processor has instructions for it.
TEST(Sha256, IsTheSameOnAnyProcessor) {
  std::mt19937 random(1);
  std::vector<unsigned char> blocks(64 * 50);
  for (unsigned char& byte : blocks) byte = static_cast<unsigned char>(random());
  for (const size_t count : {0U, 1U, 2U, 50U}) {
    Sha256State state = {1, 2, 3, 4, 5, 6, 7, 0xFFFFFFFF};
    Sha256State plain = state;
    TakeSha256Blocks(state, blocks.data(), count);
    TakeSha256BlocksPlainly(plain, blocks.data(), count);
    EXPECT_EQ(state, plain) << count;
  }
}

// The first example of the standard, padded by hand.
TEST(Sha256, GivesTheValueOfTheStandardOnAnyProcessor) {
  std::vector<unsigned char> block(64);
  block[0] = 'a', block[1] = 'b', block[2] = 'c', block[3] = 0x80, block[63] = 24;
  Sha256State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                       0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  TakeSha256BlocksPlainly(state, block.data(), 1);
  EXPECT_EQ(state, (Sha256State{0xba7816bf, 0x8f01cfea, 0x414140de, 0x5dae2223, 0xb00361a3,
                                0x96177a9c, 0xb410ff61, 0xf20015ad}));
}

TEST(Sha256, ReadsAFileFromItsBeginning) {
  const TemporaryDirectory directory;
  WriteFile("abc", "abc");
  FILE* const file = fopen("abc", "rb");
  fgetc(file);
  const FileDigest made = DigestOf(fileno(file), [] { return true; });
  const FileDigest stopped = DigestOf(fileno(file), [] { return false; });
  fclose(file);
  EXPECT_EQ(made.digest, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(made.bytes, 3U);
  EXPECT_EQ(made.fault, "");
  EXPECT_EQ(stopped.fault, kStopped);
}

}  // namespace
}  // namespace host
