#include "recording/delivery.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "files/regular_file.h"
#include "files/whole_file.h"
#include "recording/copy_bytes.h"
#include "recording/placed_file.h"
#include "recording/staging_steps.h"

namespace host {

namespace {

namespace fs = std::filesystem;
using FaultKind = RecordingFault::Kind;
using Kind = WrittenForm::Kind;

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

// In lower case, with its dot.
std::string EndingOf(const std::string& path) {
  std::string ending = fs::path(path).extension();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return ending;
}

std::optional<Kind> KindOf(const std::string& path) {
  const std::string ending = EndingOf(path);
  if (ending == ".wav") return Kind::kWave;
  if (ending == ".raw" || ending == ".pcm") return Kind::kHeaderless;
  if (ending == ".flac") return Kind::kFlac;
  if (ending == ".ogg") return Kind::kVorbis;
  return std::nullopt;
}

// Whether a file of this container is already what the name ends in.
bool IsAlready(const DeliveredOutput& output, const std::string& to) {
  if (output.container == Container::kOther || EndingOf(output.path) == EndingOf(to)) return true;
  const std::optional<Kind> kind = KindOf(to);
  return (output.container == Container::kWave && kind == Kind::kWave) ||
         (output.container == Container::kHeaderless && kind == Kind::kHeaderless);
}

// The samples in the output, whatever its header says of its length.
RawForm RawSamples(const AudioLayout& audio) {
  return {.rate = audio.rate,
          .channels = audio.channels,
          .samples =
              audio.samples == SampleType::kPcm16 ? RawForm::Samples::kS16 : RawForm::Samples::kF32,
          .offset = audio.offset,
          .bytes = audio.bytes / static_cast<uint64_t>(audio.frameBytes) *
                   static_cast<uint64_t>(audio.frameBytes)};
}

WrittenForm FormOf(const AudioLayout& audio, Kind kind) {
  using Samples = WrittenForm::Samples;
  const bool floats = audio.samples != SampleType::kPcm16;
  Samples samples = floats ? Samples::kFloat32 : Samples::kPcm16;
  if (kind == Kind::kFlac && floats) samples = Samples::kPcm24;
  if (kind == Kind::kVorbis) samples = Samples::kFloat32;
  return {.kind = kind, .samples = samples, .rate = audio.rate, .channels = audio.channels};
}

// Writes the output in another kind.
std::optional<RecordingFault> Convert(FILE* source, const DeliveredOutput& output, Kind kind,
                                      int target, const std::function<bool()>& goOn,
                                      std::vector<StagingStep>& steps) {
  if (!output.audio || !output.audio->samples) {
    return RecordingFault{FaultKind::kInput, "holds no audio that can be converted"};
  }
  const WrittenForm form = FormOf(*output.audio, kind);
  Rendering rendering({.source = source,
                       .raw = RawSamples(*output.audio),
                       .conversion = {.rate = form.rate, .channels = form.channels},
                       .form = form,
                       .target = target},
                      goOn);
  if (auto fault = rendering.Write(1)) return fault;
  const double gain = rendering.SafeGain();
  if (gain < 1) {
    if (auto fault = rendering.Write(gain)) return fault;
  }
  steps = StepsOf({.from = {.rate = form.rate, .channels = form.channels},
                   .to = form,
                   .dithered = rendering.Dithered(),
                   .gain = gain});
  return std::nullopt;
}

// The place of a file at a path, and the rights of the one that is there.
struct Place {
  std::string folder = {};
  std::string name = {};
  std::optional<mode_t> mode = {};
  std::string fault = {};
};

Place PlaceAt(const std::string& to) {
  const std::string real = FollowLinks(to);
  if (real.empty()) return {.fault = strerror(errno)};
  struct stat status;
  Place place;
  if (stat(real.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) return {.fault = "there is something else than a file"};
    place.mode = status.st_mode & 0777U;
  }
  const fs::path path(real);
  place.folder = path.has_parent_path() ? path.parent_path().string() : ".";
  place.name = path.filename();
  return place;
}

}  // namespace

std::string EndingFault(const std::string& to, Container container, const std::string& own) {
  if (container == Container::kOther || KindOf(to) || EndingOf(own) == EndingOf(to)) return "";
  const std::string ending = EndingOf(to);
  return "cannot write " + to + ": " +
         (ending.empty() ? "it has no ending" : "\"" + ending + "\" stands for no kind of file") +
         "; there are .wav, .flac, .ogg and .raw";
}

std::string PlaceFault(const std::string& to) {
  Place place = PlaceAt(to);
  if (place.fault.empty()) {
    struct stat folder;
    const char* const path = place.folder.c_str();
    const bool found = stat(path, &folder) == 0;
    if (found && !S_ISDIR(folder.st_mode)) {
      place.fault = FaultText(ENOTDIR);
    } else if (!found || access(path, W_OK | X_OK) != 0) {
      place.fault = FaultText(errno);
    }
  }
  return place.fault.empty() ? "" : "cannot write " + to + ": " + place.fault;
}

Delivery DeliverOutput(const DeliveredOutput& output, const std::string& to,
                       const std::function<bool()>& goOn) {
  const auto blame = [&](const RecordingFault& fault) -> Delivery {
    if (fault.kind == FaultKind::kStopped) return {.fault = fault};
    const bool ofOutput = fault.kind == FaultKind::kInput;
    return {.fault =
                RecordingFault{fault.kind, ofOutput ? "output " + output.path + " " + fault.text
                                                    : "cannot write " + to + ": " + fault.text}};
  };
  const std::unique_ptr<FILE, CloseFile> source(OpenRegular(output.path));
  if (source == nullptr) {
    return blame({FaultKind::kInput, "cannot be read: " + FaultText(errno)});
  }
  const Place place = PlaceAt(to);
  if (!place.fault.empty()) return blame({FaultKind::kOutput, place.fault});
  PlacedFile file(place.folder, place.name);
  if (file.descriptor() < 0) return blame({FaultKind::kOutput, file.fault()});

  Delivery delivery;
  std::optional<RecordingFault> fault;
  const std::optional<Kind> kind = KindOf(to);
  if (IsAlready(output, to) || !kind) {
    fault = CopyBytes(fileno(source.get()), file.descriptor(), goOn);
    delivery.steps = {{.name = "copy", .text = "copied as it is"}};
  } else {
    fault = Convert(source.get(), output, *kind, file.descriptor(), goOn, delivery.steps);
  }
  if (fault) return blame(*fault);
  if (place.mode) fchmod(file.descriptor(), *place.mode);
  const std::string unpublished = file.Publish();
  if (!unpublished.empty()) return blame({FaultKind::kOutput, unpublished});
  return delivery;
}

}  // namespace host
