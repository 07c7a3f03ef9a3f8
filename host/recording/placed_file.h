#pragma once

#include <memory>
#include <optional>
#include <string>

#include "files/new_file.h"
#include "files/sha256.h"

namespace host {

// A file that is made for a place in a folder, and appears there whole or not at all.
class PlacedFile {
 public:
  // `place` is relative to the folder, in which the folders above it are made.
  PlacedFile(const std::string& folder, const std::string& place);
  ~PlacedFile();
  PlacedFile(PlacedFile&& other) noexcept;
  PlacedFile& operator=(PlacedFile&&) = delete;

  // To be written to; -1 when there is none.
  int descriptor() const { return m_file ? m_file->descriptor() : -1; }

  // Why there is none, in words.
  const std::string& fault() const { return m_fault; }

  // Of what has been written.
  FileDigest Digest() const;

  // Puts it in its place, in place of what is there. Returns why that failed; empty when it did
  // not.
  std::string Publish();

 private:
  int m_parent = -1;
  std::unique_ptr<NewFile> m_file;
  std::string m_fault;
};

}  // namespace host
