#include "files/fingerprint.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

class FingerprintTest : public testing::Test {
 protected:
  static uint64_t Of(const std::string& bytes) {
    WriteFile("file", bytes);
    return Fingerprint("file");
  }

  TemporaryDirectory m_directory;
};

TEST_F(FingerprintTest, IsZeroOnlyForWhatCannotBeRead) {
  EXPECT_EQ(Fingerprint("missing"), 0U);
  EXPECT_EQ(Fingerprint("."), 0U);
  EXPECT_NE(Of(""), 0U);
}

TEST_F(FingerprintTest, StaysTheSameAsLongAsTheBytesDo) {
  const std::string bytes(70'000, 'a');
  const uint64_t first = Of(bytes);
  EXPECT_EQ(Of(bytes), first);
  std::filesystem::rename("file", "moved");
  EXPECT_EQ(Fingerprint("moved"), first);
}

// Zeros are also what fills up the last eight bytes.
TEST_F(FingerprintTest, TellsLengthsApart) {
  EXPECT_NE(Of(""), Of(std::string(1, '\0')));
  EXPECT_NE(Of(std::string(1, '\0')), Of(std::string(2, '\0')));
  EXPECT_NE(Of(std::string(65536, '\0')), Of(std::string(65537, '\0')));
}

TEST_F(FingerprintTest, SeesEachByteOfAFile) {
  const std::string bytes(2 * 65536 + 9, 'a');
  const uint64_t unchanged = Of(bytes);
  for (const size_t at : {0U, 7U, 8U, 65535U, 65536U, 131071U, 131072U, 131079U, 131080U}) {
    std::string changed = bytes;
    changed[at] = 'b';
    EXPECT_NE(Of(changed), unchanged) << "byte " << at;
  }
}

TEST_F(FingerprintTest, TellsTheOrderOfBytesApart) {
  EXPECT_NE(Of("firstsecondthird"), Of("dthirdsefirstcon"));
  for (const size_t apart : {8U, 16U, 24U, 32U, 40U}) {
    const std::string first(apart, 'a');
    const std::string second(apart, 'b');
    EXPECT_NE(Of(first + second), Of(second + first)) << apart << " bytes apart";
  }
}

// Of one that is longer than 256 blocks of 64 KiB it reads as many, the first and the last among
// them.
TEST_F(FingerprintTest, SeesBothEndsOfALongFile) {
  constexpr size_t kBytes = 256 * 65536 + 1;
  const auto put = [](size_t at, char byte) {
    std::fstream file("long", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(at));
    file.put(byte);
  };
  WriteFile("long", "");
  std::filesystem::resize_file("long", kBytes);
  const uint64_t unchanged = Fingerprint("long");
  for (const size_t at : {size_t{0}, kBytes - 1}) {
    put(at, 'b');
    EXPECT_NE(Fingerprint("long"), unchanged) << "byte " << at;
    put(at, '\0');
    EXPECT_EQ(Fingerprint("long"), unchanged);
  }
}

}  // namespace
}  // namespace host
