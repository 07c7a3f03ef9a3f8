#pragma once

#include <string>

namespace host {

// "decoder 3.2.0, encoder 4.0.1": the parts of libfdk-aac have versions of their own. Only in
// builds with AAC.
std::string FdkAacVersion();

}  // namespace host
