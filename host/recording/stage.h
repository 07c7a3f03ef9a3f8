#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "recording/form.h"
#include "recording/rendering.h"
#include "recording/staged_record.h"

namespace host {

// A recording of the user's for a place in a workspace.
struct StageInput {
  std::string source = {};  // Its path.
  std::string place = {};   // Relative to the workspace.
  Form form = {};
  // Inputs of one number other than 0 are brought to the format of the first of them, and made
  // softer by the same amount.
  int group = 0;
  std::optional<RawForm> raw = {};  // Of this one without a header; as is wished when not given.
};

// How recordings are taken, as far as there is a choice.
struct StageWishes {
  std::optional<RawForm> raw = {};  // Of those without a header.
  std::optional<ChannelChoice> channels = {};
  Cut cut = {};
  bool force = false;  // Replace what stage has not put there.
};

struct Staging {
  std::vector<StagedFile> files = {};
  std::optional<RecordingFault> fault =
      {};  // A whole sentence; no file has been put in place then.
};

// Puts recordings into a workspace, which exists, each in the form in which it is taken, and
// records that. A file that has the form is copied. What is there already is replaced only where
// the record says that it was put there, and it has not been changed since. Gives up as soon as
// `goOn` returns false.
Staging StageRecordings(const std::string& workspace, std::span<const StageInput> inputs,
                        const StageWishes& wishes, const std::function<bool()>& goOn);

}  // namespace host
