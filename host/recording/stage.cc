#include "recording/stage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <list>

#include "recording/foreign_target.h"
#include "recording/staged_item.h"

namespace host {

namespace {

using Fault = std::optional<RecordingFault>;

class Stager {
 public:
  Stager(const std::string& workspace, std::span<const StageInput> inputs,
         const StageWishes& wishes, const std::function<bool()>& goOn)
      : m_workspace(workspace), m_wishes(wishes) {
    for (const StageInput& input : inputs) m_items.emplace_back(workspace, input, wishes, goOn);
  }

  Fault Run() {
    if (auto fault = RefuseForeign()) return fault;
    const auto each = [this](Fault (Stager::*step)(StagedItem&)) -> Fault {
      for (StagedItem& item : m_items) {
        if (auto fault = (this->*step)(item)) return fault;
      }
      return std::nullopt;
    };
    for (const auto step : {&Stager::Open, &Stager::Choose, &Stager::Write, &Stager::Soften,
                            &Stager::Complete, &Stager::Publish}) {
      if (auto fault = each(step)) return fault;
    }
    if (AddToStagedRecord(m_workspace, Files())) return std::nullopt;
    return RecordingFault{
        RecordingFault::Kind::kOutput,
        "cannot write " + m_workspace + "/" + kStagedRecord + ": " + strerror(errno)};
  }

  std::vector<StagedFile> Files() const {
    std::vector<StagedFile> files;
    for (const StagedItem& item : m_items) files.push_back(item.staged());
    return files;
  }

 private:
  Fault RefuseForeign() const {
    if (m_wishes.force) return std::nullopt;
    const std::vector<StagedFile> earlier = ReadStagedRecord(m_workspace);
    for (const StagedItem& item : m_items) {
      const std::string foreign = ForeignTarget(m_workspace, item.input().place, earlier);
      if (!foreign.empty()) return RecordingFault{RecordingFault::Kind::kAsked, foreign};
    }
    return std::nullopt;
  }

  // The first input of the group; the item itself where it has none.
  const StagedItem& Leader(const StagedItem& item) const {
    return *std::find_if(m_items.begin(), m_items.end(), [&](const StagedItem& other) {
      const int group = item.input().group;
      return &other == &item || (group != 0 && other.input().group == group);
    });
  }

  Fault Open(StagedItem& item) { return item.Open(); }

  Fault Choose(StagedItem& item) {
    const StagedItem& leader = Leader(item);
    return item.Choose(&leader == &item ? std::nullopt : std::optional(leader.Wanted()));
  }

  Fault Write(StagedItem& item) { return item.Write(1); }

  // All of a group by what the loudest of them needs.
  Fault Soften(StagedItem& item) {
    double gain = 1;
    for (const StagedItem& other : m_items) {
      if (&Leader(other) == &Leader(item)) gain = std::min(gain, other.SafeGain());
    }
    return gain < 1 ? item.Write(gain) : std::nullopt;
  }

  Fault Complete(StagedItem& item) { return item.Complete(); }
  Fault Publish(StagedItem& item) { return item.Publish(); }

  const std::string& m_workspace;
  const StageWishes& m_wishes;
  std::list<StagedItem> m_items;  // Which stay where they are.
};

}  // namespace

Staging StageRecordings(const std::string& workspace, std::span<const StageInput> inputs,
                        const StageWishes& wishes, const std::function<bool()>& goOn) {
  Stager stager(workspace, inputs, wishes, goOn);
  if (auto fault = stager.Run()) return {.fault = std::move(fault)};
  return {.files = stager.Files()};
}

}  // namespace host
