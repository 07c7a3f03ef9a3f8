#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "recording/conversion.h"
#include "recording/recording_writer.h"

namespace host {

// What keeps a file from being made of another one.
struct RecordingFault {
  enum class Kind {
    kInput,   // The file that is read.
    kOutput,  // The place that is written to.
    kAsked,   // What was asked for does not go together with the file.
    kStopped
  };
  Kind kind;
  std::string text;  // As what follows the name of the file.
};

// A recording that is written in another form, as often as its level asks for it.
class Rendering {
 public:
  struct Task {
    FILE* source = nullptr;  // Like `target` it outlives this object.
    std::optional<RawForm> raw = {};
    Conversion conversion = {};
    WrittenForm form = {};
    int target = -1;
  };

  // Gives up as soon as `goOn` returns false.
  Rendering(const Task& task, std::function<bool()> goOn);

  // Writes the whole file, multiplied by `gain`. To 16 bits it is dithered where the samples have
  // more, or get more by the gain.
  std::optional<RecordingFault> Write(double gain);

  // After Write: the greatest gain, 1 at most, at which nothing clips.
  double SafeGain() const;

  bool Dithered() const { return m_dithered; }

 private:
  std::optional<RecordingFault> Attempt(double gain);

  Task m_task;
  std::function<bool()> m_goOn;
  bool m_inexact = false;  // The samples have more precision than the form.
  bool m_dithered = false;
  WrittenLevel m_level;
};

}  // namespace host
