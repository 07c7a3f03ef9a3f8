#pragma once

#include "files/file_use.h"
#include "recording/form.h"

namespace host {

// The form in which a routine takes an input.
Form FormOf(const FileUse& input);

}  // namespace host
