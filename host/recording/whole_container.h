#pragma once

#include <cstdio>
#include <string>

namespace host {

// Why a WAVE, RF64, AIFF or CAF file is shorter than it says: "is not whole: it announces 9000
// bytes, there are 44". Empty for a whole one, for one whose length was left open, and for every
// other kind of file.
std::string ShortContainer(FILE* file);

}  // namespace host
