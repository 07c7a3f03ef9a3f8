#pragma once

#include <cstdio>
#include <vector>

// Makes a file of these values.
template <typename T>
void WriteValues(const char* name, const std::vector<T>& values) {
  FILE* const file = fopen(name, "wb");
  if (!values.empty()) fwrite(values.data(), sizeof(T), values.size(), file);
  fclose(file);
}
