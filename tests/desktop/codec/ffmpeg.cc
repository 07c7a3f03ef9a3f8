#include "desktop/codec/ffmpeg.h"

#include <cstdlib>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

int NumberAt(const std::string& bytes, size_t at, size_t count) {
  int number = 0;
  for (size_t i = count; i > 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
  }
  return number;
}

}  // namespace

Decoded DecodeWithFfmpeg(const std::string& adts) {
  const TemporaryDirectory directory;
  Decoded decoded;
  // NOLINTNEXTLINE(bugprone-command-processor): fixed text
  if (std::system("command -v ffmpeg > where 2>&1") != 0) return decoded;
  decoded.available = true;
  WriteFile("in.aac", adts);
  // NOLINTNEXTLINE(bugprone-command-processor): fixed text
  const int status = std::system(
      "ffmpeg -nostdin -v error -xerror -i in.aac -bitexact -c:a pcm_s16le out.wav 2> said");
  decoded.complaints = ReadFile("said");
  const std::string wav = ReadFile("out.wav");
  if (status != 0 || wav.size() < 44) decoded.complaints += "no samples";
  if (wav.size() < 44) return decoded;
  decoded.channels = NumberAt(wav, 22, 2);
  decoded.rate = NumberAt(wav, 24, 4);
  decoded.seconds = static_cast<double>(wav.size() - 44) / 2 / decoded.channels / decoded.rate;
  return decoded;
}
