// Codecs and the preparation of quality scoring.

#include <climits>

#include "bench/codec/routines.h"
#include "engine_api/codec/codec_format.h"
#include "harness/catalogue/catalogue_rows.h"
#include "harness/catalogue/codec_needs.h"
#include "harness/catalogue/file_use.h"

namespace harness {

namespace {

// Samples or frames of which the routine keeps at most so many bytes as an int counts, in whole
// frames: with room for less than the longest, 120 ms of 48 kHz stereo, it may be full.
FileUse Full(FileUse use) {
  use.fullBytes = INT_MAX - 120 * 48 * 2 * 2 + 1;
  return use;
}

FileUse PreprocessedSpeech() {
  FileUse use = Optional(Wave("{refFile}.preproc.wav"));
  use.remark = "16000 Hz mono; nothing in the bench writes it";
  return use;
}

// The files of a case, which begin alike.
std::vector<FileUse> QualityCase(const std::string& name) {
  return {Wave(name + ".res.wav"),
          Wave(name + ".ref.wav"),
          {.name = name + ".enc.wav"},
          Full(Wave(name + ".dec.wav"))};
}

// Of the codec whose id is word number `index`, counted from 0.
AudioStreamFormat FormatOfWord(ArgumentWords words, size_t index) {
  Argument<int> codecId;
  codecId.Parse(words[index]);
  return FormatFromRawCodecId(codecId.Value());
}

std::vector<FileUse> QualityCaseFor(ArgumentWords words) {
  const AudioStreamFormat format = FormatOfWord(words, 2);
  return QualityCase(std::to_string(format.iSampleRate) + "_" +
                     std::to_string(format.iNumOfChannels) + "_{bitRate}");
}

// The routine ends without a word when its input is in another format than the codec.
std::vector<FileUse> InputInFormatOfCodec(ArgumentWords words) {
  const AudioStreamFormat format = FormatOfWord(words, 3);
  FileUse input = Wave("{pSrcFileName}");
  input.rate = format.iSampleRate;
  input.channels = format.iNumOfChannels;
  return {input};
}

}  // namespace

std::vector<CatalogueRow> CodecRows() {
  return {
      {.declared = declared::TestZUStreamToAAC,
       .exercises = "wrapper: calls TestAACStreamToAAC",
       .inputs = {Optional({.name = "packer.48k.aac"})},
       .outputs = {Full({.name = "48k.aac"})},
       .lacking = NeedsFamily<kAudioCodecAACHIGH>},
      {.declared = declared::TestAudioEncode,
       .exercises = "AudioLocalCodec encoder then decoder: \"audio_test.pcm\" to \"out.enc\" to "
                    "\"dec.pcm\"",
       .inputs = {Optional(Headerless("audio_test.pcm", 44100, 2))},
       .outputs = {{.name = "out.enc"}, Headerless("dec.pcm", 44100, 2)},
       .lacking = NeedsType<AudioLocalCodec::AAC_ELD_CODEC>},
      {.declared = declared::TestZUEAACCodec,
       .exercises = "CreateAudioCodec enhanced-AAC encode and decode of a 44.1 kHz stereo file",
       .inputs = {Wave("F:\\44100_2_new1.wav")},
       .outputs = {{.name = "F:\\44100_2_out.aac"}, Headerless("F:\\44100_2_out.pcm", 44100, 2)},
       .lacking = NeedsFamily<kAudioCodecAAC>},
      {.declared = declared::TestZUEldCodec,
       .exercises = "CreateAudioCodec AAC-ELD encode/decode, prints \"encoderSize = %d\"",
       .inputs = {Headerless("yedegangqinqu_Fs32000_Ch1.pcm", 32000, 1)},
       .outputs = {{.name = "eld_out.aac"}},
       .lacking = NeedsFamily<kAudioCodecEldAAC>},
      {.declared = declared::TestEncodeFile,
       .exercises = "AudioLocalCodec::CreateAudioEncoder over a raw file",
       .inputs = {Wave("{pSrcFileName}")},
       .outputs = {{.name = "{pDstFileName}"}}},
      {.declared = declared::TestDecodeFile,
       .exercises = "AudioLocalCodec::CreateAudioDecoder of the given type",
       .inputs = {{.name = "{pSrcFileName}"}},
       .outputs = {{.name = "{pDstFileName}"}},
       .lacking = NeedsTypeOfWord<2>},
      {.declared = declared::TestSilkPackerOut,
       .exercises = "AudioProcessor decoding of packed frames (\"packer.out\" to \"packer.pcm\")",
       .inputs = {Optional({.name = "packer.out"})},
       .outputs = {Headerless("packer.pcm", 16000, 1)},
       .lacking = NeedsFamily<kAudioCodecSilk>},
      {.declared = declared::TestAACStreamToAAC,
       .exercises = "TransZUStreamToAAC conversion \"packer.48k.aac\" to \"48k.aac\"",
       .inputs = {Optional({.name = "packer.48k.aac"})},
       .outputs = {Full({.name = "48k.aac"})},
       .lacking = NeedsFamily<kAudioCodecAACHIGH>},
      {.declared = declared::TestVADCodecMosByVADResult,
       .exercises = "encode/decode gated by VAD results, for MOS",
       .inputs = {Wave("{pSrcFileName}")},
       .outputs = {Wave("{pDstFileName}"), Wave("{pVadResultFile}")},
       .inputsFor = InputInFormatOfCodec,
       .lacking = NeedsRawIdOfWord<3>,
       .fruitless = NoCodecOfWord<3>},
      {.declared = declared::TestZUAudioProcessor,
       .exercises = "AudioProcessor encoding of a WAVE file to a stream file",
       .inputs = {Wave("player.wav")},
       .outputs = {{.name = "player.aac"}},
       .lacking = NeedsFamily<kAudioCodecAAC>},
      {.declared = declared::TestZUEncode,
       .exercises = "encode a WAVE file with a raw codec id, timed",
       .inputs = {Wave("{wavInFileName}")},
       .outputs = {{.name = "{encodedFileName}"}},
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
      {.declared = declared::TestZUDecode,
       .exercises = "decode a stream file to WAVE (CWavFileWriter), timed",
       .inputs = {{.name = "{encodedFileName}"}},
       .outputs = {Full(Wave("{decodedWavFileName}"))},
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
      {.declared = declared::newTestZUEncode,
       .exercises = "encode with bit rate and sample rate",
       .inputs = {Wave("{wavInFileName}")},
       .outputs = {{.name = "{encodedFileName}"}},
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
      {.declared = declared::newTestZUDecode,
       .exercises = "decode at a given sample rate",
       .inputs = {{.name = "{encodedFileName}"}},
       .outputs = {Full(Wave("{decodedWavFileName}"))},
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
      {.declared = declared::TestZUCodecNew,
       .exercises = "resample, encode, decode chain for MOS",
       .inputs = {Wave("{wavInFileName}")},
       .outputs = {{.name = "{wavOutFileName}.enc"},
                   Full(Wave("{wavOutFileName}.dec.wav")),
                   Wave("{wavOutFileName}")},
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
      {.declared = declared::TestMockVADMos,
       .exercises = "resample, VAD, codec chain for MOS",
       .inputs = {Wave("{refFile}"), PreprocessedSpeech()},
       .outputs = {Wave("{refFile}.resample.wav"),
                   {.name = "{refFile}.codec.wav.enc"},
                   Full(Wave("{refFile}.codec.wav.dec.wav")),
                   Wave("{refFile}.codec.wav"),
                   WithForeignHeader(Wave("{refFile}.vad.wav")),
                   WithForeignHeader(Wave("{refFile}.vadresult.wav")),
                   {.name = "{refFile}.vadCodec.wav.enc"},
                   Full(Wave("{refFile}.vadCodec.wav.dec.wav")),
                   Wave("{refFile}.vadCodec.wav")},
       .lacking = NeedsRawIdOfWord<1>,
       .fruitless = NoCodecOfWord<1>},
      {.declared = declared::calAACMos,
       .exercises =
           "AAC chain writing the WAVE files \"%s%d_%d_%d.ref.wav\", \"%s%d_%d_%d.enc.wav\", "
           "\"%s%d_%d_%d.dec.wav\", \"%s%d_%d_%d.deg.wav\" and \"%s%d_%d_%d.res.wav\"",
       .inputs = {Wave("{wavInFileName}")},
       .outputs = QualityCase("{rate}_{channels}_{bitRate}"),
       .outputsFor = QualityCaseFor,
       .lacking = NeedsRawIdOfWord<2>,
       .fruitless = NoCodecOfWord<2>},
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
}

}  // namespace harness
