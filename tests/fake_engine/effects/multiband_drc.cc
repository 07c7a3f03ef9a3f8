#include "engine_api/effects/multiband_drc.h"

#include "fake_engine/effects/frame_effect.h"
#include "fake_engine/fake_engine.h"

struct MultibandDrc::Impl {};

MultibandDrc::MultibandDrc() { FakeEngine::Current().Born(this, "MultibandDrc", "%s", ""); }

MultibandDrc::~MultibandDrc() { FakeEngine::Current().Died(this); }

void MultibandDrc::Init() { FakeEngine::Current().Call(this, "Init()"); }

void MultibandDrc::Process(zuwebrtc::AudioFrame& frame) { ProcessFakeFrame(this, frame); }
