#include "compare/case_pairing.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "compare/machine_figures.h"

namespace host {

namespace {

// From good to bad; what has not run is neither.
int Rank(const std::string& verdict) {
  if (verdict == "pass") return 0;
  if (verdict == "warn") return 1;
  if (verdict == "fail") return 3;
  return verdict == "error" ? 4 : 2;
}

bool Has(const std::vector<int>& list, int number) {
  return std::find(list.begin(), list.end(), number) != list.end();
}

// The figure over all channels; null when there is none.
const auto* OverAll(const auto& entries) {
  const bool has = !entries.empty() && entries.front().channel == TextTable::kNone;
  return has ? &entries.front() : nullptr;
}

}  // namespace

CasePairing::CasePairing(const ResultSet& a, const ResultSet& b, PairedResults& results)
    : m_a(a), m_b(b), m_results(results), m_names(a.texts) {
  FillNames();
  m_kindsOfA = KindsOf(a);
  m_kindsOfB = KindsOf(b);
}

void CasePairing::FillNames() {
  for (size_t i = 0; i < m_b.texts.size(); ++i) {
    m_namesOfB.push_back(m_names.Number(m_b.texts.Text(static_cast<int>(i))));
  }
  if (!m_a.origin.report) return;
  // The outputs of two runs are the same things whatever they are called.
  const auto& a = m_a.cases.front().outputs;
  const auto& b = m_b.cases.front().outputs;
  if (a.size() != b.size()) return;
  for (size_t i = 0; i < a.size(); ++i) m_namesOfB[static_cast<size_t>(b[i].name)] = a[i].name;
}

std::vector<size_t> CasePairing::KindsOf(const ResultSet& set) {
  std::vector<size_t> places;
  for (const MeasureKind& kind : set.kinds) {
    const auto there = std::find(m_kinds.begin(), m_kinds.end(), kind);
    places.push_back(static_cast<size_t>(there - m_kinds.begin()));
    if (there == m_kinds.end()) m_kinds.push_back(kind);
  }
  return places;
}

int CasePairing::NameOfB(int number) const {
  return number == TextTable::kNone ? number : m_namesOfB[static_cast<size_t>(number)];
}

std::string CasePairing::FileText(int number) const {
  return number == TextTable::kNone ? "" : m_names.Text(number);
}

std::vector<CasePairing::Entry> CasePairing::EntriesOf(const ComparedCase& one, bool ofB) const {
  const std::vector<size_t>& kinds = ofB ? m_kindsOfB : m_kindsOfA;
  std::vector<Entry> entries;
  entries.reserve(one.figures.size());
  for (const ComparedFigure& figure : one.figures) {
    if (std::isnan(figure.value)) continue;  // As if it were not there.
    entries.push_back({.kind = kinds[static_cast<size_t>(figure.kind)],
                       .file = ofB ? NameOfB(figure.file) : figure.file,
                       .channel = figure.channel,
                       .value = figure.value,
                       .truth = figure.truth});
  }
  const auto place = [](const Entry& entry) {
    return std::tuple(entry.kind, entry.file, entry.channel);
  };
  std::stable_sort(entries.begin(), entries.end(),
                   [&](const Entry& a, const Entry& b) { return place(a) < place(b); });
  // Of several figures of one thing, which no suite leaves, the first.
  const auto same = [&](const Entry& a, const Entry& b) { return place(a) == place(b); };
  entries.erase(std::unique(entries.begin(), entries.end(), same), entries.end());
  return entries;
}

void CasePairing::Add(const ComparedCase& a, const ComparedCase& b) {
  m_case = a.id;
  m_sums.clear();
  if (Rank(b.verdict) > Rank(a.verdict)) {
    m_results.fallen.push_back({m_case, a.verdict, b.verdict});
  }
  PairOutputs(a, b);
  PairGuards(a, b);
  PairFigures(a, b);
  EndCase(a, b);
}

void CasePairing::PairOutputs(const ComparedCase& a, const ComparedCase& b) {
  const auto byName = [](const ComparedOutput& one, const ComparedOutput& other) {
    return one.name < other.name;
  };
  std::vector<ComparedOutput> inA = a.outputs;
  std::vector<ComparedOutput> inB = b.outputs;
  for (ComparedOutput& each : inB) each.name = NameOfB(each.name);
  std::stable_sort(inA.begin(), inA.end(), byName);
  std::stable_sort(inB.begin(), inB.end(), byName);
  m_goneFiles.clear();
  m_newFiles.clear();
  for (auto one = inA.begin(), other = inB.begin(); one != inA.end() || other != inB.end();) {
    if (other == inB.end() || (one != inA.end() && byName(*one, *other))) {
      m_goneFiles.push_back(one->name);
      m_results.gone.push_back({m_case, FileText((one++)->name)});
    } else if (one == inA.end() || byName(*other, *one)) {
      m_newFiles.push_back(other->name);
      m_results.added.push_back({m_case, FileText((other++)->name)});
    } else {
      const bool known = !one->sha256.empty() && !other->sha256.empty();
      ++m_results.files;
      if (known) ++(one->sha256 == other->sha256 ? m_results.sameBytes : m_results.otherBytes);
      ++one;
      ++other;
    }
  }
}

void CasePairing::PairGuards(const ComparedCase& a, const ComparedCase& b) {
  for (const ComparedGuard& guard : b.guards) {
    const ComparedGuard named = {NameOfB(guard.name), NameOfB(guard.file)};
    if (std::find(a.guards.begin(), a.guards.end(), named) != a.guards.end()) continue;
    m_results.guards.push_back({m_case, FileText(named.file), m_names.Text(named.name)});
  }
}

void CasePairing::PairFigures(const ComparedCase& a, const ComparedCase& b) {
  const std::vector<Entry> inA = EntriesOf(a, false);
  const std::vector<Entry> inB = EntriesOf(b, true);
  const auto groupBefore = [](const Entry& one, const Entry& other) {
    return std::tie(one.kind, one.file) < std::tie(other.kind, other.file);
  };
  for (auto one = inA.begin(), other = inB.begin(); one != inA.end() || other != inB.end();) {
    const bool fromB = one == inA.end() || (other != inB.end() && groupBefore(*other, *one));
    const Entry& first = fromB ? *other : *one;
    const auto endA = std::upper_bound(one, inA.end(), first, groupBefore);
    const auto endB = std::upper_bound(other, inB.end(), first, groupBefore);
    PairGroup({one, endA}, {other, endB});
    one = endA;
    other = endB;
  }
}

void CasePairing::PairGroup(Entries a, Entries b) {
  if (b.empty()) {
    AddGone(a.front());
  } else if (a.empty()) {
    AddNew(b.front());
  } else if (OverAll(a) != nullptr && OverAll(b) != nullptr) {
    AddPair(*OverAll(a), *OverAll(b));
  } else {
    PairChannels(a, b);
  }
}

void CasePairing::PairChannels(Entries a, Entries b) {
  const Entry* gone = nullptr;
  const Entry* added = nullptr;
  const auto find = [](Entries among, int channel) {
    return std::ranges::find(among, channel, &Entry::channel);
  };
  for (const Entry& one : a) {
    const auto other = find(b, one.channel);
    if (other == b.end()) {
      gone = &one;
    } else {
      AddPair(one, *other);
    }
  }
  for (const Entry& other : b) {
    if (find(a, other.channel) == a.end()) added = &other;
  }
  if (gone != nullptr) AddGone(*gone);
  if (added != nullptr) AddNew(*added);
}

void CasePairing::AddPair(const Entry& a, const Entry& b) {
  const double truthOfA = std::isnan(a.truth) ? b.truth : a.truth;
  const double truthOfB = std::isnan(b.truth) ? a.truth : b.truth;
  const bool toTruth = !std::isnan(truthOfA) && m_kinds[a.kind].better == "none";
  Sums& sums = m_sums[{a.kind, toTruth}];
  sums.a += toTruth ? std::abs(a.value - truthOfA) : a.value;
  sums.b += toTruth ? std::abs(b.value - truthOfB) : b.value;
  ++sums.count;
}

void CasePairing::AddGone(const Entry& entry) {
  if (IsOfTheMachine(m_kinds[entry.kind]) || Has(m_goneFiles, entry.file)) return;
  m_results.gone.push_back({m_case, FileText(entry.file), m_kinds[entry.kind].name});
}

void CasePairing::AddNew(const Entry& entry) {
  if (IsOfTheMachine(m_kinds[entry.kind]) || Has(m_newFiles, entry.file)) return;
  m_results.added.push_back({m_case, FileText(entry.file), m_kinds[entry.kind].name});
}

PairedMeasure& CasePairing::Times(const MeasureKind& kind) {
  for (PairedMeasure& each : m_results.times) {
    if (each.kind == kind) return each;
  }
  return m_results.times.emplace_back(PairedMeasure{.kind = kind});
}

void CasePairing::EndCase(const ComparedCase& a, const ComparedCase& b) {
  const size_t at = m_results.cases.size();
  m_results.cases.push_back(&a);
  for (const auto& [key, sums] : m_sums) {
    const MeasureKind& kind = m_kinds[key.first];
    const auto count = static_cast<double>(sums.count);
    const FigurePair pair = {at, sums.a / count, sums.b / count};
    if (IsOfTheMachine(kind)) {
      Times(kind).pairs.push_back(pair);
      continue;
    }
    const auto [place, isNew] = m_places.try_emplace(key, m_results.measures.size());
    if (isNew) m_results.measures.push_back({.kind = kind, .toTruth = key.second});
    m_results.measures[place->second].pairs.push_back(pair);
  }
  for (const auto& [name, inA, inB] :
       {std::tuple("elapsed", a.elapsed, b.elapsed), {"cpu", a.cpu, b.cpu}}) {
    if (std::isnan(inA) || std::isnan(inB)) continue;
    std::vector<FigurePair>& pairs = Times({.name = name, .unit = "s", .better = "lower"}).pairs;
    // The figure of the same name is the same time.
    if (pairs.empty() || pairs.back().at != at) pairs.push_back({at, inA, inB});
  }
}

}  // namespace host
