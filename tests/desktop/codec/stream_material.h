#pragma once

#include <string>
#include <vector>

// What TransZUStreamToAAC makes of the stream; empty when nothing came of it.
std::string Converted(const std::string& stream);

// The packets as one stream.
std::string Join(const std::vector<std::string>& packets);
