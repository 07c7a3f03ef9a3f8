#pragma once

#include <map>
#include <span>
#include <vector>

#include "compare/pair_results.h"

namespace host {

// Pairs the figures of cases, one after the other.
class CasePairing {
 public:
  // They outlive the object, which adds to the results.
  CasePairing(const ResultSet& a, const ResultSet& b, PairedResults& results);

  // A case that is in both.
  void Add(const ComparedCase& a, const ComparedCase& b);

 private:
  // A figure by the numbers that A and B have in common.
  struct Entry {
    size_t kind;
    int file;
    int channel;
    double value;
    double truth;
  };
  using Entries = std::span<const Entry>;

  // The sums of one measure over the files and channels of a case.
  struct Sums {
    double a = 0;
    double b = 0;
    size_t count = 0;
  };

  void FillNames();
  std::vector<size_t> KindsOf(const ResultSet& set);
  std::vector<Entry> EntriesOf(const ComparedCase& one, bool ofB) const;
  int NameOfB(int number) const;
  std::string FileText(int number) const;
  void PairOutputs(const ComparedCase& a, const ComparedCase& b);
  void PairGuards(const ComparedCase& a, const ComparedCase& b);
  void PairFigures(const ComparedCase& a, const ComparedCase& b);
  void PairGroup(Entries a, Entries b);
  void PairChannels(Entries a, Entries b);
  void AddPair(const Entry& a, const Entry& b);
  void AddGone(const Entry& entry);
  void AddNew(const Entry& entry);
  void EndCase(const ComparedCase& a, const ComparedCase& b);
  PairedMeasure& Times(const MeasureKind& kind);

  const ResultSet& m_a;
  const ResultSet& m_b;
  PairedResults& m_results;
  TextTable m_names;            // Of A, then of B.
  std::vector<int> m_namesOfB;  // Numbers in m_names by those of B.
  std::vector<MeasureKind> m_kinds;
  std::vector<size_t> m_kindsOfA;  // Indices into m_kinds by those of A.
  std::vector<size_t> m_kindsOfB;
  std::string m_case;            // The id of the one at hand.
  std::vector<int> m_goneFiles;  // Of that case.
  std::vector<int> m_newFiles;
  // By kind, and whether they are distances from the truth.
  std::map<std::pair<size_t, bool>, Sums> m_sums;
  std::map<std::pair<size_t, bool>, size_t> m_places;  // In the results.
};

}  // namespace host
