// Codecs and the preparation of quality scoring.

#include "bench/codec/routines.h"
#include "harness/catalogue/catalogue_rows.h"

namespace harness {

std::vector<CatalogueRow> CodecRows() {
  return {
      {.declared = declared::TestZUStreamToAAC, .exercises = "wrapper: calls TestAACStreamToAAC"},
      {.declared = declared::TestAudioEncode,
       .exercises = "AudioLocalCodec encoder then decoder: \"audio_test.pcm\" to \"out.enc\" to "
                    "\"dec.pcm\""},
      {.declared = declared::TestZUEAACCodec,
       .exercises = "CreateAudioCodec enhanced-AAC encode and decode of a 44.1 kHz stereo file"},
      {.declared = declared::TestZUEldCodec,
       .exercises = "CreateAudioCodec AAC-ELD encode/decode, prints \"encoderSize = %d\""},
      {.declared = declared::TestEncodeFile,
       .exercises = "AudioLocalCodec::CreateAudioEncoder over a raw file"},
      {.declared = declared::TestDecodeFile,
       .exercises = "AudioLocalCodec::CreateAudioDecoder of the given type"},
      {.declared = declared::TestSilkPackerOut,
       .exercises = "AudioProcessor decoding of packed frames (\"packer.out\" to \"packer.pcm\")"},
      {.declared = declared::TestAACStreamToAAC,
       .exercises = "TransZUStreamToAAC conversion \"packer.48k.aac\" to \"48k.aac\""},
      {.declared = declared::TestVADCodecMosByVADResult,
       .exercises = "encode/decode gated by VAD results, for MOS"},
      {.declared = declared::TestZUAudioProcessor,
       .exercises = "AudioProcessor encoding of a WAVE file to a stream file"},
      {.declared = declared::TestZUEncode,
       .exercises = "encode a WAVE file with a raw codec id, timed"},
      {.declared = declared::TestZUDecode,
       .exercises = "decode a stream file to WAVE (CWavFileWriter), timed"},
      {.declared = declared::newTestZUEncode, .exercises = "encode with bit rate and sample rate"},
      {.declared = declared::newTestZUDecode, .exercises = "decode at a given sample rate"},
      {.declared = declared::TestZUCodecNew, .exercises = "resample, encode, decode chain for MOS"},
      {.declared = declared::TestMockVADMos, .exercises = "resample, VAD, codec chain for MOS"},
      {.declared = declared::calAACMos,
       .exercises =
           "AAC chain writing the WAVE files \"%s%d_%d_%d.ref.wav\", \"%s%d_%d_%d.enc.wav\", "
           "\"%s%d_%d_%d.dec.wav\", \"%s%d_%d_%d.deg.wav\" and \"%s%d_%d_%d.res.wav\""},
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
