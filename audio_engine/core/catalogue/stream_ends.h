#pragma once

#include <cstdint>
#include <span>

#include "catalogue/invoke.h"

// How much of a stream of coded frames a routine decodes that stops at the first that is none, by
// its words and all of the stream: the bytes up to there.

namespace harness {

using StreamBytes = std::span<unsigned char>;

// Of TestZUDecode and newTestZUDecode.
uint64_t DecodedStreamEnd(ArgumentWords words, StreamBytes bytes);
uint64_t NewDecodedStreamEnd(ArgumentWords words, StreamBytes bytes);

// Of frames that begin with a two-byte header, in which the length stands beside a mark.
uint64_t PackedStreamEnd(ArgumentWords words, StreamBytes bytes);

// Of packets after their length in two bytes.
uint64_t PacketStreamEnd(ArgumentWords words, StreamBytes bytes);

}  // namespace harness
