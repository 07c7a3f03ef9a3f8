#include "engine_api/platform/place_string.h"

std::string GetPlaceString(const char* function, const char* file, int line) {
  std::string place = function != nullptr ? function : "";
  place += " (";
  if (file != nullptr) place += file;
  return place + ":" + std::to_string(line) + ")";
}
