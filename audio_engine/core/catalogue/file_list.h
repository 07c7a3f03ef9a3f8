#pragma once

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include "catalogue/files.h"

namespace harness {

// The files of a row. A long list is made when it is first asked for, so that a process which does
// not ask starts at once.
class FileList {
 public:
  using value_type = FileUse;
  using const_iterator = std::vector<FileUse>::const_iterator;
  using Make = const std::vector<FileUse>& (*)();

  FileList() = default;
  FileList(std::initializer_list<FileUse> files) : m_files(files) {}
  FileList(std::vector<FileUse> files) : m_files(std::move(files)) {}  // NOLINT(*-explicit-*)
  FileList(Make later) : m_later(later) {}                             // NOLINT(*-explicit-*)

  const std::vector<FileUse>& All() const { return m_later != nullptr ? m_later() : m_files; }
  operator const std::vector<FileUse>&() const { return All(); }  // NOLINT(*-explicit-*)

  const_iterator begin() const { return All().begin(); }
  const_iterator end() const { return All().end(); }
  size_t size() const { return All().size(); }
  bool empty() const { return All().empty(); }
  const FileUse& front() const { return All().front(); }
  const FileUse& at(size_t index) const { return All().at(index); }
  const FileUse& operator[](size_t index) const { return All()[index]; }

  // Whether it is made when it is first asked for.
  bool IsMadeLater() const { return m_later != nullptr; }

 private:
  std::vector<FileUse> m_files;
  Make m_later = nullptr;
};

// A list that is made once, by a function without arguments.
template <auto make>
const std::vector<FileUse>& MadeOnce() {
  static const std::vector<FileUse> files = make();
  return files;
}

}  // namespace harness
