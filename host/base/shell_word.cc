#include "base/shell_word.h"

namespace host {

std::string ShellWord(const std::string& word) {
  const bool plain = word.find_first_not_of(
                         "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./-") ==
                     std::string::npos;
  if (plain && !word.empty()) return word;
  std::string quoted = "'";
  for (const char letter : word) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

}  // namespace host
