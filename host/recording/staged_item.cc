#include "recording/staged_item.h"

#include <cerrno>
#include <filesystem>

#include "base/shell_word.h"
#include "files/audio_figures.h"
#include "files/foreign_audio.h"
#include "files/known_digest.h"
#include "files/regular_file.h"
#include "recording/copy_bytes.h"
#include "recording/staging_steps.h"

namespace host {

namespace {

using Kind = RecordingFault::Kind;

// How to make a recording that is read here of one that is not.
std::string Remedy(const std::string& path, FILE* file, bool knownRaw) {
  const std::string_view kind = ForeignAudio(file);
  if (kind == kText || kind == kProgram || (knownRaw && kind.empty())) return "";
  const std::string convert =
      "to convert it: ffmpeg -i " + ShellWord(path) + " -c:a pcm_s16le " + ShellWord(path + ".wav");
  if (!kind.empty()) return "; " + convert;
  return "; of samples without a header say what they are: --raw RATE,CHANNELS,s16|s24|s32|f32; " +
         convert;
}

WrittenForm WrittenAs(const Form& form, WaveFormat format) {
  using Samples = WrittenForm::Samples;
  const bool headerless = form.kind == Form::Kind::kHeaderless;
  return {.kind = headerless ? WrittenForm::Kind::kHeaderless : WrittenForm::Kind::kWave,
          .samples = form.samples == SampleType::kPcm16 ? Samples::kPcm16 : Samples::kFloat32,
          .rate = format.rate,
          .channels = format.channels};
}

}  // namespace

StagedItem::StagedItem(const std::string& workspace, const StageInput& input,
                       const StageWishes& wishes, const std::function<bool()>& goOn)
    : m_workspace(workspace), m_input(input), m_wishes(wishes), m_goOn(goOn) {}

RecordingFault StagedItem::Blame(Kind kind, const std::string& text) const {
  if (kind == Kind::kStopped) return {kind, text};
  if (kind == Kind::kOutput) {
    return {kind, "cannot write " + m_workspace + "/" + m_input.place + ": " + text};
  }
  return {kind, "input " + m_input.source + " " + text};
}

std::optional<RecordingFault> StagedItem::Open() {
  m_file.reset(OpenRegular(m_input.source));
  if (m_file == nullptr) return Blame(Kind::kInput, "cannot be read: " + FaultText(errno));
  m_before.emplace(fileno(m_file.get()));
  const FileDigest digest = KnownDigestOf(fileno(m_file.get()), m_goOn);
  if (digest.fault == kStopped) return Blame(Kind::kStopped, kStopped);
  if (!digest.fault.empty()) return Blame(Kind::kInput, "cannot be read: " + digest.fault);
  m_staged.place = m_input.place;
  m_staged.source = std::filesystem::absolute(m_input.source).lexically_normal();
  m_staged.sourceDigest = digest.digest;
  m_made = digest;
  return std::nullopt;
}

std::optional<RecordingFault> StagedItem::Choose(std::optional<WaveFormat> given) {
  const Form& form = m_input.form;
  if (form.kind == Form::Kind::kBytes) {
    if (!m_wishes.cut.Whole()) return Blame(Kind::kAsked, "is taken as no audio that can be cut");
    m_copied = true;
    m_staged.was = "no audio";
    return std::nullopt;
  }
  const OpenedRecording opened = OpenRecording(m_file.get(), Raw());
  if (opened.recording == nullptr) {
    return Blame(Kind::kInput,
                 opened.fault + Remedy(m_input.source, m_file.get(), Raw().has_value()));
  }
  m_format = opened.recording->Format();
  m_staged.was = m_format.Words();
  if (m_format.frames == 0) return Blame(Kind::kInput, "holds no samples");
  m_wanted = given.value_or(ChooseFormat(form, m_format));
  const std::string fault = ChannelFault(m_format.channels, m_wanted.channels, m_wishes.channels);
  if (!fault.empty()) return Blame(Kind::kAsked, fault);
  m_copied = m_wishes.cut.Whole() && HasForm(m_file.get(), m_format, form, m_wanted);
  return std::nullopt;
}

std::optional<RecordingFault> StagedItem::Write(double gain) {
  if (!m_target) m_target.emplace(m_workspace, m_input.place);
  if (m_target->descriptor() < 0) return Blame(Kind::kOutput, m_target->fault());
  // What is no audio has no level.
  m_copied = m_copied && (gain >= 1 || m_input.form.kind == Form::Kind::kBytes);
  m_gain = gain;
  return m_copied ? Copy() : Render(gain);
}

std::optional<RecordingFault> StagedItem::Copy() {
  const auto fault = CopyBytes(fileno(m_file.get()), m_target->descriptor(), m_goOn);
  if (fault) return Blame(fault->kind, fault->text);
  return std::nullopt;
}

std::optional<RecordingFault> StagedItem::Render(double gain) {
  if (!m_rendering) {
    const Rendering::Task task = {.source = m_file.get(),
                                  .raw = Raw(),
                                  .conversion = {.rate = m_wanted.rate,
                                                 .channels = m_wanted.channels,
                                                 .choice = m_wishes.channels,
                                                 .cut = m_wishes.cut},
                                  .form = WrittenAs(m_input.form, m_wanted),
                                  .target = m_target->descriptor()};
    m_rendering.emplace(task, m_goOn);
  }
  const auto fault = m_rendering->Write(gain);
  if (fault) return Blame(fault->kind, fault->text);
  return std::nullopt;
}

std::optional<RecordingFault> StagedItem::Complete() {
  const bool same = m_before->SameContent(FileState(fileno(m_file.get())));
  if (!same) return Blame(Kind::kInput, "was changed while it was read");
  if (!m_copied) m_made = m_target->Digest();
  if (!m_made.fault.empty()) return Blame(Kind::kOutput, m_made.fault);
  m_staged.digest = m_made.digest;
  m_staged.bytes = m_made.bytes;
  if (m_copied) {
    m_staged.steps = {{.name = "copy", .text = "copied as it is"}};
    return std::nullopt;
  }
  m_staged.steps = StepsOf({.from = m_format,
                            .to = WrittenAs(m_input.form, m_wanted),
                            .choice = m_wishes.channels,
                            .cut = m_wishes.cut,
                            .dithered = m_rendering->Dithered(),
                            .gain = m_gain});
  return std::nullopt;
}

std::optional<RecordingFault> StagedItem::Publish() {
  const std::string fault = m_target->Publish();
  if (!fault.empty()) return Blame(Kind::kOutput, fault);
  NoteDigest(m_target->descriptor(), m_made);
  return std::nullopt;
}

}  // namespace host
