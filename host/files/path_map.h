#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "files/file_activity.h"

namespace host {

// The names that routines open, mapped into the workspace. fopen, fopen64 and stat are wrapped at
// link time, and fread, fwrite, fflush and fclose to notice what cannot be read or written, so
// neither the unit nor the engine knows of it. Nothing else that takes the name of a file may be
// called there. Code in shared libraries is not reached.

// Returns where a file of this name is, relative to the workspace: "sdcard/x" for "/sdcard/x",
// "C/x/y" for "c:\x\y"; a relative name is its own place. Returns nothing for a name with a ".." in
// it, which would lead out of the workspace.
std::optional<std::string> PlaceInWorkspace(std::string_view name);

// From now on this process, whose current directory is the workspace, opens every file at its place
// in there, and creates missing parent folders of files that it writes. A name that leads out of
// the workspace fails with EACCES and a line on stderr, and so does one that would be written
// through a symbolic link that leads out of it. `activity` outlives the process.
void MapOpenedFiles(FileActivity* activity);

// From now on names are not mapped any more.
void StopMapping();

// Writes what the files that are still open buffer, and notes in the activity what cannot be
// written or could not be read.
void FlushOpenedFiles();

}  // namespace host
