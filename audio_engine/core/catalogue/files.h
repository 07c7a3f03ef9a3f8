#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The files of a routine, as the catalogue declares them.

namespace harness {

// What a file is.
enum class Container {
  kOther,       // A stream or a text: only its length says something.
  kHeaderless,  // Interleaved samples and nothing else.
  kWave,        // WAVE; format, rate and channels stand in its header.
  kRecording    // What a player of the engine opens: WAVE, FLAC, Ogg, MP3 or AAC by its content.
};

// The samples of headerless audio.
enum class SampleType { kPcm16, kFloat32 };

// What a routine takes for the header of a WAVE input.
enum class WaveHeader {
  kRead,     // What the engine's reader finds, whatever chunks there are.
  kSkipped,  // The first 44 bytes; all that follows are samples.
  kCopied,   // The same, and an output begins with these bytes.
  kSamples   // Nothing: the file is read from its first byte.
};

// What comes of a WAVE input in another format than the declared one.
enum class OtherFormat {
  kAsItIs,   // Its samples are taken for such of the declared format.
  kAborts,   // The routine ends its process.
  kNoOutput  // The routine returns without an output.
};

// A rate in Hz and a channel count, each 0 for any.
struct WaveFormat {
  int rate = 0;
  int channels = 0;
};

// The formats of a WAVE in which an engine treats the sound; another one it leaves alone, or
// refuses, at the latest while the routine runs.
struct Treated {
  std::span<const int> rates = {};  // Hz, in rising order; empty: all within these limits.
  int leastRate = 0;                // Hz; 0: none.
  int mostRate = 0;
  int mostChannels = 0;  // 0: any.
};

// A file that a routine reads or writes.
struct FileUse {
  std::string name = {};  // As the routine opens it; "{parameter}" where an argument names it.
  Container container = Container::kOther;
  SampleType samples = SampleType::kPcm16;  // Headerless audio only, full scale of floats at 1.
  // Of headerless audio, Hz; of a WAVE input those that are right, 0 when any is.
  int rate = 0;
  int channels = 0;
  // Bytes of samples that an input must hold for one pass of the loop. 0 when anything will do, or
  // when the block follows from the header.
  int blockBytes = 0;
  // The block of a WAVE where it follows from the header: rate * channels samples a second for so
  // many ms, rounded down. An output consists of whole ones, also where they are no whole frames,
  // as 441 samples of 22050 Hz stereo; an input must hold one. 0 when it does not follow so.
  int blockMs = 0;
  int mostBlockSamples = 8192;  // Of a larger block the routine reads nothing.
  // An input without which, or with less than a block of which, the routine has an outcome of its
  // own.
  bool optional = false;
  bool needed = false;  // An optional input without which the outputs are there and say nothing.
  std::string without = {};  // What comes of a run without an optional input, for readers.
  bool dispensable = false;  // An optional input without which the outputs are as they should be.
  bool mayBeEmpty = false;   // An output that is as it should be without content.
  // An input that is read alongside another one, as a far end with its near end, so that in lists
  // of files their duration counts once.
  bool beside = false;
  // An input that belongs to the first one, as a far end does to its near end: a recording that is
  // taken for it is brought to the format of that one, and made softer by the same amount.
  bool withFirst = false;
  // An output with so many bytes of samples, or of content where it is no audio, is full: the
  // routine leaves out what more there would be. 0: it never is.
  uint64_t fullBytes = 0;
  // An output whose WAVE header is on purpose that of another file: its lengths need not fit.
  bool foreignHeader = false;
  // Of WAVE inputs:
  WaveHeader header = WaveHeader::kRead;
  OtherFormat otherFormat = OtherFormat::kAsItIs;
  WaveFormat alsoRight = {};  // A second format that is as right as the declared one.
  Treated treated = {};
  int leastRate = 0;  // Below it, Hz, every rate is another format.
  // Whether a run on another format is refused: a codec would take its samples for longer or
  // shorter ones than they are, or for those of other channels, and nothing of use would come out.
  bool onlyRight = false;
  // The facility of the engine that says which format that is, since another engine may say another
  // one; empty where the routine itself does.
  std::string_view formatBy = {};
  // What a part of the routine takes the samples for, whatever the right format is.
  WaveFormat alsoTakenFor = {};
  // Whose format is right: the name of another input, or, for readers, what the words of a run
  // name.
  std::string formatOf = {};
  bool headerlessToo = false;  // Samples without a header do as well.
  std::string content = {};    // What a file of kOther holds: "text", "AAC stream".
  bool appended = false;       // An output that a run adds to.
  // Why a run may leave a part of an input unread; empty when it reads all of it.
  std::string partRead = {};
  // Of a stream that is decoded up to the first frame that is none: how many of its bytes that is,
  // with the words of a run. Null: of all of them.
  uint64_t (*streamEnd)(std::span<const std::string_view> words,
                        std::span<unsigned char> bytes) = nullptr;
  std::string pattern = {};  // Of the list of files that it belongs to; empty when it stands alone.
  std::string remark = {};   // For its reader, such as that nothing in the bench writes an input.
};

}  // namespace harness
