#include "support/file_bytes.h"

#include <fstream>
#include <iterator>

void WriteFile(const std::filesystem::path& name, const std::string& bytes) {
  // Some file systems wait for the disk when a file is truncated and written anew.
  std::filesystem::remove(name);
  std::ofstream(name, std::ios::binary) << bytes;
}

std::string ReadFile(const std::filesystem::path& name) {
  std::ifstream file(name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}
