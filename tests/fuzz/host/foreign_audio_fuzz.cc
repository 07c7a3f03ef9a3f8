// The first bytes of files that should hold headerless samples.

#include <algorithm>
#include <cctype>

#include "files/foreign_audio.h"
#include "files/framed_audio.h"
#include "fuzz/fuzz_target.h"
#include "support/file_bytes.h"
#include "support/wav_bytes.h"

extern const int kIterations = 30000;

std::vector<std::string> Seeds() {
  const std::string adts = "\xFF\xF1\x50\x80\x01\x7F\xFC____";
  const std::string mp3 = "\xFF\xFB\x90\x64" + std::string(413, 'm');
  std::string program = "MZ" + std::string(98, '\0') + std::string("PE\0\0", 4);
  program[0x3C] = 100;
  return {"",
          "words, one after another\n",
          WavBytes({}, {1, 2, 3}),
          adts + adts + adts + adts,
          mp3 + mp3 + mp3 + mp3,
          program,
          std::string("\xCE\xFA\xED\xFE\x07\0\0\0\x03\0\0\0\x02\0\0\0", 16) + std::string(20, '\0'),
          std::string("\0\0\0\x20", 4) + "ftypM4A ",
          SampleBytes({0, 0, 1, -1, 300, -300})};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const size_t head = std::min(size, host::kFramedHeadBytes);
  const std::vector<unsigned char> bytes(data, data + head);
  const std::string_view kind = host::ForeignAudio(bytes);

  WriteFile("fuzz", std::string(data, data + size));
  FILE* const file = fopen("fuzz", "rb");
  fseek(file, 0, SEEK_END);
  REQUIRE(host::ForeignAudio(file) == kind);
  REQUIRE(ftell(file) == 0);
  fclose(file);

  // Fewer than four bytes say nothing, and nothing but an MP4 file begins with silence.
  if (size < 4) REQUIRE(kind.empty() || kind == host::kText);
  const std::string start(data, data + std::min<size_t>(size, 4));
  if (start == std::string(4, '\0')) REQUIRE(kind.empty() || kind == "an MP4 file");
  if (start == "fLaC") REQUIRE(kind == "a FLAC file");
  if (kind == host::kText) {
    for (const unsigned char byte : bytes) REQUIRE(byte >= 0x20 || std::isspace(byte) != 0);
  }
  return 0;
}
