#pragma once

#include <functional>

#include "files/sha256.h"

namespace host {

// Digests of files that this process has read before. A recording is asked for again and again: by
// what tells whether a case has changed, by what stages it, and by the report.

// As DigestOf, but without reading a file that is, by all that its dates say, the one whose digest
// is known.
FileDigest KnownDigestOf(int file, const std::function<bool()>& goOn);

// Notes the digest of an open file that this process has just made, and that nobody else writes to
// yet.
void NoteDigest(int file, const FileDigest& digest);

}  // namespace host
