#pragma once

// The direction of a codec object.
enum AudioLibraryCodecMode { kAudioLibraryDecoder = 0, kAudioLibraryEncoder = 1 };
