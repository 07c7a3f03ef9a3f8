// Codecs and the preparation of quality scoring.

#include <climits>
#include <string>
#include <utility>

#include "bench/codec/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/codec_needs.h"
#include "catalogue/file_use.h"
#include "catalogue/stream_ends.h"
#include "engine_api/codec/codec_format.h"

namespace harness {

namespace {

constexpr const char* kNoStream =
    "the routine logs \"can not open aac+ file\" and leaves no output";

// Samples or frames of which the routine keeps at most so many bytes as an int counts, in whole
// frames: with room for less than the longest, 120 ms of 48 kHz stereo, it may be full.
FileUse Full(FileUse use) {
  use.fullBytes = INT_MAX - 120 * 48 * 2 * 2 + 1;
  return use;
}

// A codec has one format; samples of another one would be coded at the wrong speed.
FileUse OnlyRight(FileUse use) {
  use.onlyRight = true;
  return use;
}

// For readers: what a codec takes, which the words of a run name.
FileUse AsTheCodec(FileUse use) {
  use.formatOf = "the codec";
  return OnlyRight(std::move(use));
}

// The detector takes it for 16 kHz mono, whatever the codec's format is.
FileUse PreprocessedSpeech() {
  FileUse use = Optional(TakenFor("{refFile}.preproc.wav", {}, 320, WaveHeader::kCopied),
                         "only the resampled reference is made; the other files hold no samples");
  use.remark = "nothing in the bench writes it";
  use.alsoTakenFor = kMono16;
  return use;
}

// The files of a case, which begin alike.
std::vector<FileUse> QualityCase(const std::string& name) {
  return {AnyWave(name + ".res.wav"), AnyWave(name + ".ref.wav"),
          Other(name + ".enc.wav", "coded audio"), Full(Wave(name + ".dec.wav"))};
}

// Of the codec whose id is word number `index`, counted from 0.
AudioStreamFormat FormatOfWord(ArgumentWords words, size_t index) {
  Argument<int> codecId;
  codecId.Parse(words[index]);
  return FormatFromRawCodecId(codecId.Value());
}

// What counts in the place of a bit rate or a rate that is taken and not used.
template <size_t index, auto field>
std::string OfFormat(ArgumentWords words) {
  const AudioStreamFormat format = FormatOfWord(words, index);
  return format.iCodec == kAudioCodecUnknown ? "" : std::to_string(format.*field);
}

constexpr std::string_view kBitRateOfId = "the bit rate of the codec id";
constexpr std::string_view kRateOfId = "the rate of the codec id";

constexpr UnusedArgument kUnusedToEncode[] = {
    {"brate", kBitRateOfId, OfFormat<2, &AudioStreamFormat::iBitRate>},
    {"sRate", kRateOfId, OfFormat<2, &AudioStreamFormat::iSampleRate>}};
constexpr UnusedArgument kUnusedToDecode[] = {
    {"sRate", kRateOfId, OfFormat<2, &AudioStreamFormat::iSampleRate>}};
constexpr UnusedArgument kUnusedInCase[] = {
    {"wavOutFileName", "names after the format and the bit rate"},
    {"bitRate", "the bit rate of the codec id; it goes into the names of the files alone",
     OfFormat<2, &AudioStreamFormat::iBitRate>},
    {"sRate", kRateOfId, OfFormat<2, &AudioStreamFormat::iSampleRate>}};

FileUse Stream(std::string name, uint64_t (*end)(ArgumentWords words, StreamBytes bytes)) {
  FileUse use = Other(std::move(name), "coded audio");
  use.streamEnd = end;
  return use;
}

std::vector<FileUse> QualityCaseFor(ArgumentWords words) {
  const AudioStreamFormat format = FormatOfWord(words, 2);
  return QualityCase(std::to_string(format.iSampleRate) + "_" +
                     std::to_string(format.iNumOfChannels) + "_{bitRate}");
}

FileUse ForCodec(std::string name) {
  FileUse use = Wave(std::move(name));
  use.blockBytes = 2;
  return AsTheCodec(std::move(use));
}

// In the format of the id that is word number `index`, and only in that where it is a codec's.
FileUse InFormatOfId(FileUse use, ArgumentWords words, size_t index) {
  const AudioStreamFormat format = FormatOfWord(words, index);
  if (format.iSampleRate > 0) use.rate = format.iSampleRate;
  if (format.iNumOfChannels > 0) use.channels = format.iNumOfChannels;
  use.formatBy = "codec/codec_format";
  return UnknownRawId(words, index).empty() ? OnlyRight(std::move(use)) : use;
}

// Whatever the format, the samples are encoded, the last frame filled up with silence.
std::vector<FileUse> EncodedInputFor(ArgumentWords words) {
  return {InFormatOfId(TakenFor("{wavInFileName}", {}, 2, WaveHeader::kRead), words, 2)};
}

std::vector<FileUse> MockInputsFor(ArgumentWords words) {
  return {AnyWave("{refFile}"), InFormatOfId(PreprocessedSpeech(), words, 1)};
}

// The routine ends without a word when its input is in another format than the codec.
std::vector<FileUse> GatedInputFor(ArgumentWords words) {
  const AudioStreamFormat format = FormatOfWord(words, 3);
  const int frameBytes = 2 * format.iSamplesOfFrame * format.iNumOfChannels;
  FileUse use =
      InFormatOfId(TakenFor("{pSrcFileName}", {}, frameBytes, WaveHeader::kRead), words, 3);
  use.otherFormat = OtherFormat::kNoOutput;
  return {use};
}

// Two formats have an encoder; of another one nothing comes. The block is the encoder's own.
FileUse EncodedByItsFormat() {
  FileUse use = TakenFor("{pSrcFileName}", kStereo44, 0, WaveHeader::kSkipped);
  use.alsoRight = kMono16;
  use.otherFormat = OtherFormat::kNoOutput;
  return OnlyRight(use);
}

const CatalogueRow kRows[] = {
    {.declared = declared::TestZUStreamToAAC,
     .exercises = "wrapper: calls TestAACStreamToAAC",
     .inputs = {Optional(Other("packer.48k.aac", "coded audio"), kNoStream)},
     .outputs = {Full(Other("48k.aac", "AAC stream"))},
     .lacking = NeedsFamily<kAudioCodecAACHIGH>},
    {.declared = declared::TestAudioEncode,
     .exercises = "AudioLocalCodec encoder then decoder: \"audio_test.pcm\" to \"out.enc\" to "
                  "\"dec.pcm\"",
     .inputs = {Optional(Headerless("audio_test.pcm", 44100, 2),
                         "the routine prints \"Can't Open Input File!\"; out.enc is empty")},
     .outputs = {Other("out.enc", "coded audio"), Headerless("dec.pcm", 44100, 2)},
     .lacking = NeedsType<AudioLocalCodec::AAC_ELD_CODEC>},
    {.declared = declared::TestZUEAACCodec,
     .exercises = "CreateAudioCodec enhanced-AAC encode and decode of a 44.1 kHz stereo file",
     .inputs = {OnlyRight(TakenFor("F:\\44100_2_new1.wav", kStereo44, 8192, WaveHeader::kSamples))},
     .outputs = {Other("F:\\44100_2_out.aac", "AAC stream"),
                 Headerless("F:\\44100_2_out.pcm", 44100, 2)},
     .lacking = NeedsFamily<kAudioCodecAAC>},
    {.declared = declared::TestZUEldCodec,
     .exercises = "CreateAudioCodec AAC-ELD encode/decode, prints \"encoderSize = %d\"",
     .inputs = {Headerless("yedegangqinqu_Fs32000_Ch1.pcm", 32000, 1)},
     .outputs = {Other("eld_out.aac", "coded audio")},
     .lacking = NeedsFamily<kAudioCodecEldAAC>},
    {.declared = declared::TestEncodeFile,
     .exercises = "AudioLocalCodec::CreateAudioEncoder over a raw file",
     .inputs = {EncodedByItsFormat()},
     .outputs = {Other("{pDstFileName}", "coded audio")}},
    {.declared = declared::TestDecodeFile,
     .exercises = "AudioLocalCodec::CreateAudioDecoder of the given type",
     .inputs = {Stream("{pSrcFileName}", PacketStreamEnd)},
     .outputs = {Other("{pDstFileName}", "headerless samples")},
     .lacking = NeedsTypeOfWord<2>},
    {.declared = declared::TestSilkPackerOut,
     .exercises = "AudioProcessor decoding of packed frames (\"packer.out\" to \"packer.pcm\")",
     .inputs = {Optional(Stream("packer.out", PackedStreamEnd), "packer.pcm is empty")},
     .outputs = {Headerless("packer.pcm", 16000, 1)},
     .lacking = NeedsFamily<kAudioCodecSilk>},
    {.declared = declared::TestAACStreamToAAC,
     .exercises = "TransZUStreamToAAC conversion \"packer.48k.aac\" to \"48k.aac\"",
     .inputs = {Optional(Other("packer.48k.aac", "coded audio"), kNoStream)},
     .outputs = {Full(Other("48k.aac", "AAC stream"))},
     .lacking = NeedsFamily<kAudioCodecAACHIGH>},
    {.declared = declared::TestVADCodecMosByVADResult,
     .exercises = "encode/decode gated by VAD results, for MOS",
     .inputs = {ForCodec("{pSrcFileName}")},
     .outputs = {Wave("{pDstFileName}"), Wave("{pVadResultFile}")},
     .inputsFor = GatedInputFor,
     .lacking = NeedsRawIdOfWord<3>,
     .fruitless = NoCodecOfWord<3>,
     .codecIds = CodecIds},
    {.declared = declared::TestZUAudioProcessor,
     .exercises = "AudioProcessor encoding of a WAVE file to a stream file",
     .inputs = {OnlyRight(TakenFor("player.wav", kStereo44, 8192, WaveHeader::kRead))},
     .outputs = {Other("player.aac", "AAC stream")},
     .lacking = NeedsFamily<kAudioCodecAAC>},
    {.declared = declared::TestZUEncode,
     .exercises = "encode a WAVE file with a raw codec id, timed",
     .inputs = {ForCodec("{wavInFileName}")},
     .outputs = {Other("{encodedFileName}", "coded audio")},
     .inputsFor = EncodedInputFor,
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .codecIds = CodecIds},
    {.declared = declared::TestZUDecode,
     .exercises = "decode a stream file to WAVE (CWavFileWriter), timed",
     .inputs = {Stream("{encodedFileName}", DecodedStreamEnd)},
     .outputs = {Full(Wave("{decodedWavFileName}"))},
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .codecIds = CodecIds},
    {.declared = declared::newTestZUEncode,
     .exercises = "encode with bit rate and sample rate",
     .inputs = {ForCodec("{wavInFileName}")},
     .outputs = {Other("{encodedFileName}", "coded audio")},
     .inputsFor = EncodedInputFor,
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .unused = kUnusedToEncode,
     .codecIds = CodecIds},
    {.declared = declared::newTestZUDecode,
     .exercises = "decode at a given sample rate",
     .inputs = {Stream("{encodedFileName}", NewDecodedStreamEnd)},
     .outputs = {Full(Wave("{decodedWavFileName}"))},
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .unused = kUnusedToDecode,
     .codecIds = CodecIds},
    {.declared = declared::TestZUCodecNew,
     .exercises = "resample, encode, decode chain for MOS",
     .inputs = {ForCodec("{wavInFileName}")},
     .outputs = {Other("{wavOutFileName}.enc", "coded audio"),
                 Full(Wave("{wavOutFileName}.dec.wav")), Wave("{wavOutFileName}")},
     .inputsFor = EncodedInputFor,
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .codecIds = CodecIds},
    {.declared = declared::TestMockVADMos,
     .exercises = "resample, VAD, codec chain for MOS",
     .inputs = {AnyWave("{refFile}"), AsTheCodec(PreprocessedSpeech())},
     .outputs = {Wave("{refFile}.resample.wav"), Other("{refFile}.codec.wav.enc", "coded audio"),
                 Full(Wave("{refFile}.codec.wav.dec.wav")), Wave("{refFile}.codec.wav"),
                 WithForeignHeader(Wave("{refFile}.vad.wav")),
                 WithForeignHeader(Wave("{refFile}.vadresult.wav")),
                 Other("{refFile}.vadCodec.wav.enc", "coded audio"),
                 Full(Wave("{refFile}.vadCodec.wav.dec.wav")), Wave("{refFile}.vadCodec.wav")},
     .inputsFor = MockInputsFor,
     .lacking = NeedsRawIdOfWord<1>,
     .fruitless = NoCodecOfWord<1>,
     .codecIds = CodecIds},
    {.declared = declared::calAACMos,
     .exercises =
         "AAC chain writing the WAVE files \"%s%d_%d_%d.ref.wav\", \"%s%d_%d_%d.enc.wav\", "
         "\"%s%d_%d_%d.dec.wav\", \"%s%d_%d_%d.deg.wav\" and \"%s%d_%d_%d.res.wav\"",
     .inputs = {AnyWave("{wavInFileName}")},
     .outputs = QualityCase("{rate}_{channels}_{bitRate}"),
     .outputsFor = QualityCaseFor,
     .lacking = NeedsRawIdOfWord<2>,
     .fruitless = NoCodecOfWord<2>,
     .unused = kUnusedInCase,
     .codecIds = CodecIds},
    {.declared = declared::GetCodecFrameLength,
     .helper = true,
     .exercises = "frame length from a stream header"},
    {.declared = declared::encoderFromRawCodecId,
     .helper = true,
     .exercises = "creates an encoder for a raw codec id"},
    {.declared = declared::decoderFromRawCodecId,
     .helper = true,
     .exercises = "creates a decoder for a raw codec id"},
};

}  // namespace

std::span<const CatalogueRow> CodecRows() { return kRows; }

}  // namespace harness
