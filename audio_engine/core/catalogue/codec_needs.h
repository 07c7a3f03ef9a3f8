#pragma once

#include <string>
#include <vector>

#include "catalogue/arguments.h"
#include "catalogue/invoke.h"
#include "catalogue/row.h"
#include "engine_api/codec/local_codec.h"
#include "engine_api/codec/stream_format.h"

// Which codecs the engine at hand lacks, in words for the rows of the catalogue; empty when it has
// what is asked for.

namespace harness {

std::string LackingFamily(ZUAudioCodec family);

// An id that no engine has a codec for lacks nothing: the routines have an outcome for it.
std::string LackingRawId(int codecId);

std::string LackingType(AudioLocalCodec::AudioCodecType type);

// Those that stand for a codec, in rising order.
std::vector<CodecId> CodecIds();

// What is to be said of an id that no engine has a codec for, as word number `index`, counted from
// 0; empty when it stands for a codec.
std::string UnknownRawId(ArgumentWords words, size_t index);

// For rows that always need the same codec.
template <ZUAudioCodec family>
std::string NeedsFamily(ArgumentWords) {
  return LackingFamily(family);
}

template <AudioLocalCodec::AudioCodecType type>
std::string NeedsType(ArgumentWords) {
  return LackingType(type);
}

// For rows whose word number `index`, counted from 0, is a raw codec id or a type.
template <size_t index>
std::string NeedsRawIdOfWord(ArgumentWords words) {
  Argument<int> codecId;
  return codecId.Parse(words[index]) ? LackingRawId(codecId.Value()) : "";
}

template <size_t index>
std::string NoCodecOfWord(ArgumentWords words) {
  return UnknownRawId(words, index);
}

template <size_t index>
std::string NeedsTypeOfWord(ArgumentWords words) {
  Argument<AudioLocalCodec::AudioCodecType> type;
  return type.Parse(words[index]) ? LackingType(type.Value()) : "";
}

}  // namespace harness
