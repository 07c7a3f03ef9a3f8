#pragma once

#include "catalogue/catalogue.h"

// The catalogue's names, as the host uses them.

namespace host {

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Container;
using harness::Device;
using harness::FileUse;
using harness::Group;
using harness::OtherFormat;
using harness::SampleType;
using harness::WaveHeader;

}  // namespace host
