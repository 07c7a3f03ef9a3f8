#pragma once

#include <filesystem>
#include <string>

// Makes `name` hold exactly `bytes`.
void WriteFile(const std::filesystem::path& name, const std::string& bytes);

// All bytes of `name`; none when it is missing.
std::string ReadFile(const std::filesystem::path& name);
