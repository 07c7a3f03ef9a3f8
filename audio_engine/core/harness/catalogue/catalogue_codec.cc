// Codecs and the preparation of quality scoring.

#include "harness/catalogue/catalogue_rows.h"

std::vector<CatalogueRow> CodecRows() {
  return {
      {.routine = "TestZUStreamToAAC", .exercises = "wrapper: calls TestAACStreamToAAC"},
      {.routine = "TestAudioEncode",
       .exercises = "AudioLocalCodec encoder then decoder: \"audio_test.pcm\" to \"out.enc\" to "
                    "\"dec.pcm\""},
      {.routine = "TestZUEAACCodec",
       .exercises = "CreateAudioCodec enhanced-AAC encode and decode of a 44.1 kHz stereo file"},
      {.routine = "TestZUEldCodec",
       .exercises = "CreateAudioCodec AAC-ELD encode/decode, prints \"encoderSize = %d\""},
      {.routine = "TestEncodeFile",
       .parameters = "char* pSrcFileName, char* pDstFileName",
       .exercises = "AudioLocalCodec::CreateAudioEncoder over a raw file"},
      {.routine = "TestDecodeFile",
       .parameters = "char* pSrcFileName, char* pDstFileName, AudioLocalCodec::AudioCodecType type",
       .exercises = "AudioLocalCodec::CreateAudioDecoder of the given type"},
      {.routine = "TestSilkPackerOut",
       .exercises = "AudioProcessor decoding of packed frames (\"packer.out\" to \"packer.pcm\")"},
      {.routine = "TestAACStreamToAAC",
       .exercises = "TransZUStreamToAAC conversion \"packer.48k.aac\" to \"48k.aac\""},
      {.routine = "TestVADCodecMosByVADResult",
       .parameters = "const char* pSrcFileName, const char* pDstFileName, const char* "
                     "pVadResultFile, int codecId",
       .exercises = "encode/decode gated by VAD results, for MOS"},
      {.routine = "TestZUAudioProcessor",
       .exercises = "AudioProcessor encoding of a WAVE file to a stream file"},
      {.routine = "TestZUEncode",
       .parameters = "const char* wavInFileName, const char* encodedFileName, int codecId, bool "
                     "addExtraHeader",
       .exercises = "encode a WAVE file with a raw codec id, timed"},
      {.routine = "TestZUDecode",
       .parameters = "const char* encodedFileName, const char* decodedWavFileName, int codecId, "
                     "bool extraHeader",
       .exercises = "decode a stream file to WAVE (CWavFileWriter), timed"},
      {.routine = "newTestZUEncode",
       .parameters = "const char* wavInFileName, const char* encodedFileName, int codecId, int "
                     "brate, int sRate, bool addExtraHeader",
       .exercises = "encode with bit rate and sample rate"},
      {.routine = "newTestZUDecode",
       .parameters = "const char* encodedFileName, const char* decodedWavFileName, int codecId, "
                     "int sRate, bool extraHeader",
       .exercises = "decode at a given sample rate"},
      {.routine = "TestZUCodecNew",
       .parameters = "const char* wavInFileName, const char* wavOutFileName, int codecId",
       .exercises = "resample, encode, decode chain for MOS"},
      {.routine = "TestMockVADMos",
       .parameters = "const char* refFile, int codecId",
       .exercises = "resample, VAD, codec chain for MOS"},
      {.routine = "calAACMos",
       .parameters =
           "char* wavInFileName, char* wavOutFileName, int codecId, int bitRate, int sRate",
       .exercises =
           "AAC chain writing the WAVE files \"%s%d_%d_%d.ref.wav\", \"%s%d_%d_%d.enc.wav\", "
           "\"%s%d_%d_%d.dec.wav\", \"%s%d_%d_%d.deg.wav\" and \"%s%d_%d_%d.res.wav\""},
      {.routine = "GetCodecFrameLength",
       .result = "int",
       .parameters = "unsigned char* header, int len",
       .helper = true,
       .exercises = "frame length from a stream header"},
      {.routine = "encoderFromRawCodecId",
       .result = "CAudioCodec*",
       .parameters = "int codecId",
       .helper = true,
       .exercises = "creates an encoder for a raw codec id"},
      {.routine = "decoderFromRawCodecId",
       .result = "CAudioCodec*",
       .parameters = "int codecId",
       .helper = true,
       .exercises = "creates a decoder for a raw codec id"},
  };
}
