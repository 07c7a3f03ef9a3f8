#pragma once

#include "catalogue/catalogue.h"
#include "files/file_use.h"

// The names of the bench's catalogue, as the host uses them.

namespace host {

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Device;
using harness::Group;

}  // namespace host
