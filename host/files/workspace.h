#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/file_before.h"
#include "files/file_use.h"

namespace host {

// A file that a routine declares, and where it is in the workspace of a run.
struct FilePlace {
  FileUse use;

  // The name as the routine opens it, its arguments filled in, and the path as the host opens it,
  // which is empty when the name leads out of the workspace.
  std::string name;
  std::string path;

  // Relative to the workspace.
  std::string place = {};
};

// Returns the names of the declared parameters of a routine, in their order.
std::vector<std::string> ParameterNames(std::string_view parameters);

// Returns the places of the declared files when a routine runs in `workspace` with these arguments.
std::vector<FilePlace> PlaceFiles(std::span<const FileUse> uses, std::string_view parameters,
                                  std::span<const std::string_view> arguments,
                                  const std::string& workspace);

// Why a declared input cannot be read.
struct InputFault {
  bool missing = false;
  std::string text;  // "No such file or directory"
};

// Returns nothing when the input is a regular file that can be opened.
std::optional<InputFault> FindInputFault(const FilePlace& input);

// How an output came through a run.
enum class OutputState { kWritten, kOutside, kAbsent, kNotAFile, kStale, kEmpty };

// What an output was before a run.
class OutputBefore {
 public:
  // Reads the file as FileBefore does, and waits until its dates tell.
  explicit OutputBefore(const FilePlace& output);

  OutputState StateNow() const;

  // What the file held; 0 when there was none.
  uint64_t Bytes() const { return m_before.Bytes(); }

 private:
  std::string m_path;
  FileBefore m_before;
};

}  // namespace host
