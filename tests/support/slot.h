#pragma once

#include <cstddef>
#include <cstring>

// The place of an operation in the table of a class, where a destructor takes the first two. In the
// ABI of the targets a pointer to a virtual operation holds its offset there, plus 1.
template <typename Operation>
size_t Slot(Operation operation) {
  size_t offset = 0;
  memcpy(&offset, &operation, sizeof offset);
  return (offset - 1) / sizeof(void*);
}
