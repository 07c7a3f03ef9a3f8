#pragma once

#include <string>
#include <vector>

#include "support/talk.h"

// What a canceller is measured on: 16 kHz, mono.
struct EchoCase {
  std::string name;
  Samples far;
  Samples echo;  // With the noise of the room.
  Samples near;  // What the near talker says; empty in recordings of echo alone.
};

// The 16 kHz speech of a folder of recordings, by its name there.
Samples ReadSpeech(const std::string& folder, const std::string& name);

// Rooms, delays, loudspeakers and talkers made from the recordings of far and near ends in
// `folder`: one set to adjust to, and one, of other talkers, rooms and delays, to judge by.
std::vector<EchoCase> MakeEchoCases(const std::string& folder, bool judges);
