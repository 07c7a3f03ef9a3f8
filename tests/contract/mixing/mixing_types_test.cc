// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <cstdint>
#include <type_traits>

#include "engine_api/effects/beat_track_notify.h"
#include "engine_api/mixing/audio_block_mixer.h"
#include "engine_api/mixing/audio_capture_notify.h"
#include "engine_api/mixing/audio_channel.h"
#include "engine_api/mixing/audio_engine.h"
#include "engine_api/mixing/audio_file_player.h"
#include "engine_api/mixing/audio_frame_packer_notify.h"
#include "engine_api/mixing/audio_frame_player_notify.h"
#include "engine_api/mixing/audio_record_mixer.h"
#include "engine_api/mixing/audio_source.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/karaoke_file_mixer_notify.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/mixing/push_pcm_module.h"
#include "engine_api/mixing/speech_msg_player.h"
#include "engine_api/mixing/speech_msg_player_notify.h"

static_assert(AudioSourceTypeMic == 0 && AudioSourceTypeOuterPCM == 1 && AudioSourceTypeMix == 2);

static_assert(AudioEngineFeatureVOIP == 0 && AudioEngineFeatureCommon == 1 &&
              AudioEngineFeatureSpeechMsg == 2 && AudioEngineFeatureLiveBroadcast == 3 &&
              AudioEngineFeatureHDVOIP == 4 && AudioEngineKaraokeOffLine == 5 &&
              TotalFeatureMode == 6);

static_assert(AudioSaverOnlyCapture == 0 && AudioSaverOnlyRender == 1 && AudioSaverBoth == 2 &&
              AusioSaverOnlyCaptureOri == 3);

static_assert(AudioSaverFileAppend == 0 && AudioSaverFileOverride == 1);

static_assert(PLAYER_OPEN_SUCCESS == 0 && PLAYER_CREATE_FILE_DECODER_FAILED == -1 &&
              PLAYER_OPEN_FILE_DECODER_FAILED == -2 && PLAYER_OPEN_FILE_FORMAT_NOT_SUPPORT == -3 &&
              PLAYER_OPEN_FILE_PATH_ERROR == -4);

static_assert(std::is_same_v<AudioBlockList, std::vector<std::string*>>);

static_assert(std::is_constructible_v<CAudioBlockMixer, int, int>);

static_assert(std::is_same_v<decltype(&CAudioBlockMixer::Process),
                             void (CAudioBlockMixer::*)(const AudioBlockList&, std::string&)>);

static_assert(std::is_same_v<decltype(&AudioRecordMixer::PushAudioFrame),
                             void (AudioRecordMixer::*)(zuwebrtc::AudioFrame*, unsigned)>);

static_assert(std::is_same_v<decltype(&AudioRecordMixer::GetMixedAudioFrame),
                             void (AudioRecordMixer::*)(zuwebrtc::AudioFrame&)>);

static_assert(
    std::is_same_v<decltype(&IKaraokeFileMixer::Open), bool (IKaraokeFileMixer::*)(char*, char*)>);

static_assert(std::is_same_v<decltype(&IKaraokeFileMixer::SetReverbFv3Param),
                             void (IKaraokeFileMixer::*)(NreverbFv3Parameter)>);

static_assert(std::is_same_v<decltype(&IKaraokeFileMixer::SetLimiterParam),
                             void (IKaraokeFileMixer::*)(LimiterParam)>);

static_assert(
    std::is_same_v<decltype(&IKaraokeFileMixer::Start), bool (IKaraokeFileMixer::*)(char*)>);

static_assert(std::is_same_v<decltype(&IKaraokeRecorder::SetLineInfo),
                             void (IKaraokeRecorder::*)(ScoreLineInfo*, int)>);

static_assert(std::is_same_v<decltype(&IKaraokeRecorder::SetScoreTimeRange),
                             void (IKaraokeRecorder::*)(ScoreTimeRange*, uint32_t, int8_t*)>);

static_assert(std::is_same_v<decltype(CreateAudioEngine),
                             IAudioEngine*(const char*, int, const char*, void (*)(const char*))>);

static_assert(std::is_same_v<decltype(&IAudioCapture::Open),
                             bool (IAudioCapture::*)(uint32_t, uint32_t, uint32_t)>);

static_assert(std::is_same_v<decltype(&IAudioFilePlayer::Open),
                             FilePlayerOpenStatus (IAudioFilePlayer::*)(char*)>);

static_assert(
    std::is_same_v<decltype(ISpeechMsgPlayer::CreateAudioPlayer), ISpeechMsgPlayer*(const char*)>);

static_assert(
    std::is_same_v<decltype(&IAudioChannel::StartPacker),
                   bool (IAudioChannel::*)(IAudioFramePackerNotify*, int, int, int, int, int)>);

static_assert(std::is_same_v<decltype(&IAudioChannel::StartPlay),
                             bool (IAudioChannel::*)(IAudioFramePlayerNotify*, uint32_t, uint32_t,
                                                     uint32_t)>);

static_assert(
    std::is_same_v<decltype(&IAudioChannel::StopPlay), void (IAudioChannel::*)(uint32_t)>);

static_assert(std::is_same_v<decltype(IPushPcmModule::CreatePuchPcmModule),
                             IPushPcmModule*(unsigned, unsigned, unsigned)>);

static_assert(std::is_same_v<decltype(IPushPcmModule::MakeStreamInfo),
                             std::string(unsigned*, unsigned*, unsigned*, unsigned*, unsigned)>);

static_assert(std::is_same_v<decltype(AudioFrameData::frameData), uint8_t[1024]> &&
              std::is_same_v<decltype(AudioFrameData::frameLength), uint16_t> &&
              std::is_same_v<decltype(AudioFrameData::frameIndex), uint32_t> &&
              std::is_same_v<decltype(AudioFrameData::codecType), uint8_t>);

// Initialisers with names have to keep the order of the fields.
static_assert(sizeof(FramePlayerFeedbackInfo{.acceleratePlay = true,
                                             .fasterPlayOn = true,
                                             .stretchPlay = true,
                                             .isFakeAudioFrame = true,
                                             .accelerateMS = 0.1,
                                             .stretchMS = 0.1,
                                             .playDelayMS = 0.1}) == 4 * sizeof(double));

static_assert(sizeof(ScoreLineInfo{.lineIdx = 1, .lineStartTime = 0.5F, .lineEndTime = 1.5F}) ==
              sizeof(int) + 2 * sizeof(float));

static_assert(
    sizeof(ScoreTimeRange{
        .beginTime = 0.5F, .endTime = 1.5F, .lineID = 2, .lineEnd = 1, .midiValue = -1}) ==
    5 * sizeof(float));

static_assert(std::is_same_v<decltype(ScoreTimeRange::lineID), uint32_t> &&
              std::is_same_v<decltype(ScoreTimeRange::lineEnd), uint8_t> &&
              std::is_same_v<decltype(ScoreTimeRange::midiValue), int>);

namespace {

// An operation of a callback interface, as an engine calls it.
template <typename Class, typename Result, typename... Arguments>
using Operation = Result (Class::*)(Arguments...);

static_assert(std::is_same_v<decltype(&IAudioCaptureNotify::OnCaptureAudioData),
                             Operation<IAudioCaptureNotify, void, const void*, uint32_t, uint8_t,
                                       VADResultKind, uint32_t>>);
static_assert(std::is_same_v<decltype(&IAudioCaptureNotify::OnCaptureVolumeVisual),
                             Operation<IAudioCaptureNotify, bool, const uint32_t&>>);

static_assert(
    std::is_same_v<decltype(&ISpeechMsgPlayerNotify::OnAudioPlayStatus),
                   Operation<ISpeechMsgPlayerNotify, void, uint32_t, uint32_t, uint32_t>>);
static_assert(std::is_same_v<decltype(&ISpeechMsgPlayerNotify::OnAudioPlayError),
                             Operation<ISpeechMsgPlayerNotify, void>>);
static_assert(std::is_same_v<decltype(&ISpeechMsgPlayerNotify::OnFirstStartPlayData),
                             Operation<ISpeechMsgPlayerNotify, void>>);
static_assert(std::is_same_v<decltype(&ISpeechMsgPlayerNotify::OnStopPlayData),
                             Operation<ISpeechMsgPlayerNotify, void, uint32_t, uint32_t>>);
static_assert(std::is_same_v<decltype(&ISpeechMsgPlayerNotify::OnReachMaxPlayTime),
                             Operation<ISpeechMsgPlayerNotify, void, uint32_t, uint32_t>>);

static_assert(std::is_same_v<decltype(&IAudioFramePackerNotify::OnPackAudioFrame),
                             Operation<IAudioFramePackerNotify, void, const uint8_t*, uint32_t,
                                       VADResultKind, uint32_t, uint8_t>>);
static_assert(std::is_same_v<decltype(&IAudioFramePackerNotify::OnAudioCaptureVolume),
                             Operation<IAudioFramePackerNotify, void, uint32_t>>);

static_assert(std::is_same_v<decltype(&IAudioFramePlayerNotify::OnPullAudioFrame),
                             Operation<IAudioFramePlayerNotify, bool, uint32_t, AudioFrameData&,
                                       bool, FramePlayerFeedbackInfo&>>);
static_assert(std::is_same_v<decltype(&IAudioFramePlayerNotify::OnAudioVolume),
                             Operation<IAudioFramePlayerNotify, bool, uint32_t, uint32_t>>);
static_assert(std::is_same_v<decltype(&IAudioFramePlayerNotify::OnAudioRenderPTS),
                             Operation<IAudioFramePlayerNotify, bool, uint32_t, uint32_t>>);
static_assert(std::is_same_v<decltype(&IAudioFramePlayerNotify::OnAudioAncData),
                             Operation<IAudioFramePlayerNotify, int, char**, int*, int>>);

static_assert(std::is_same_v<decltype(&IKaraokeFileMixerNotify::OnFileMixerState),
                             Operation<IKaraokeFileMixerNotify, void, uint32_t, uint32_t>>);
static_assert(std::is_same_v<decltype(&IKaraokeFileMixerNotify::OnFinishMixer),
                             Operation<IKaraokeFileMixerNotify, void>>);

static_assert(std::is_same_v<decltype(&IBeatTrackNotify::NotifyBeat),
                             Operation<IBeatTrackNotify, void, int, float>>);
static_assert(std::is_same_v<decltype(&IBeatTrackNotify::NotifyStartFive),
                             Operation<IBeatTrackNotify, void>>);

}  // namespace
