#pragma once

#include <sys/types.h>

#include <string>

namespace host {

// Files that are written whole at a path of the user's. All that fails sets errno.

// Returns the file that a path names after all symbolic links, whether it exists or not. Only the
// kernel follows them, as it does for those who write there: where everybody may put links, it
// follows nobody else's. Returns an empty path when it does not.
std::string FollowLinks(const std::string& path);

// Atomically replaces the file at `path`, which is no link, or creates it. Returns false on
// failure.
bool ReplaceFile(const std::string& path, mode_t mode, const std::string& text);

// Returns whether the file can be replaced. Changes nothing.
bool CanReplace(const std::string& path);

// Writes over the file at `path`, or creates it: for a folder or a disk that takes no new file.
// False on failure; nothing is done to a file that has another name as well (EMLINK), nor through a
// link.
bool OverwriteFile(const std::string& path, const std::string& text);

// Returns whether there is a file that can be written over. Changes nothing.
bool CanOverwrite(const std::string& path);

// Takes the file at `path` away, or its content where its folder does not let it go; the content of
// one that has another name stays.
void DiscardFile(const std::string& path);

}  // namespace host
