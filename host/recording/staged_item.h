#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "files/file_state.h"
#include "files/sha256.h"
#include "recording/placed_file.h"
#include "recording/rendering.h"
#include "recording/stage.h"

namespace host {

// One recording on its way into a workspace. The operations are called in their order; each returns
// a fault that is a whole sentence, after which none of the others is called.
class StagedItem {
 public:
  // All outlive this object.
  StagedItem(const std::string& workspace, const StageInput& input, const StageWishes& wishes,
             const std::function<bool()>& goOn);

  std::optional<RecordingFault> Open();

  // Chooses the format, or takes that of another one.
  std::optional<RecordingFault> Choose(std::optional<WaveFormat> given);
  WaveFormat Wanted() const { return m_wanted; }

  // Makes the file; again when it is to be softer.
  std::optional<RecordingFault> Write(double gain);

  // The greatest gain, 1 at most, at which nothing clips.
  double SafeGain() const { return m_rendering ? m_rendering->SafeGain() : 1; }

  // Notes what was done.
  std::optional<RecordingFault> Complete();

  std::optional<RecordingFault> Publish();

  const StageInput& input() const { return m_input; }
  const StagedFile& staged() const { return m_staged; }

 private:
  struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
  };

  const std::optional<RawForm>& Raw() const { return m_input.raw ? m_input.raw : m_wishes.raw; }
  RecordingFault Blame(RecordingFault::Kind kind, const std::string& text) const;
  std::optional<RecordingFault> Render(double gain);
  std::optional<RecordingFault> Copy();

  const std::string& m_workspace;
  const StageInput& m_input;
  const StageWishes& m_wishes;
  const std::function<bool()>& m_goOn;
  std::unique_ptr<FILE, CloseFile> m_file;
  std::optional<FileState> m_before;
  RecordingFormat m_format;
  WaveFormat m_wanted;
  bool m_copied = false;  // Byte for byte.
  double m_gain = 1;
  std::optional<PlacedFile> m_target;
  std::optional<Rendering> m_rendering;
  FileDigest m_made;  // Of what is put in place: of the source, where that is copied.
  StagedFile m_staged;
};

}  // namespace host
