#pragma once

#include <cstdio>
#include <memory>

namespace desktop {

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

// An open file that is closed at the end of its owner.
using File = std::unique_ptr<FILE, CloseFile>;

}  // namespace desktop
