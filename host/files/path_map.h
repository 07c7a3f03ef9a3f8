#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// The names that routines open, mapped into the workspace. fopen and fopen64 (and fclose, to notice
// a full disk) are wrapped at link time, so neither the unit nor the engine knows of it. Code in
// shared libraries is not reached.

// What a process with mapped files has done with them, in memory that another one may watch.
struct FileActivity {
  std::atomic<uint64_t> opened = 0;   // Files opened so far.
  std::atomic<int> writeFailure = 0;  // errno of the first file that could not be written whole.
};

// Where a file of this name is, relative to the workspace: "sdcard/x" for "/sdcard/x", "C/x/y" for
// "c:\x\y"; a relative name is its own place. Nothing for a name with a ".." in it, which would
// lead out of the workspace.
std::optional<std::string> PlaceInWorkspace(std::string_view name);

// From now on this process, whose current directory is the workspace, opens every file at its place
// in there, and creates missing parent folders of files that it writes. A name that leads out of
// the workspace fails with EACCES and a line on stderr. `activity` outlives the process.
void MapOpenedFiles(FileActivity* activity);

// Writes what all open files still buffer. 0, or errno when not all of it can be written.
int FlushOpenedFiles();

}  // namespace host
