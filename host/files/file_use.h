#pragma once

#include "catalogue/files.h"

// The names of what the catalogue says of a file, as the host uses them.

namespace host {

using harness::Container;
using harness::FileUse;
using harness::OtherFormat;
using harness::SampleType;
using harness::WaveFormat;
using harness::WaveHeader;

}  // namespace host
