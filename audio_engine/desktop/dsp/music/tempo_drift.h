#pragma once

namespace desktop {

// How a tempo moves while its autocorrelation, which is seconds late, does not show it: the second
// order of a phase-locked loop (F. Gardner, "Phaselock Techniques", 2005), closed only by errors
// that stay. Who has played one beat late is caught up with, and the errors shrink; who slows down
// keeps being late. At a steady tempo there is no bend.
class TempoDrift {
 public:
  static constexpr double kMostBend = 0.05;

  // By how much the period is longer than that of the tempo, as a share of it:
  // kMostBend at most, to either side.
  double Bend() const { return m_bend; }

  // Takes by how much later than expected the last beat was, as a share of the period.
  void Take(double error);

 private:
  double m_bend = 0;
  double m_error = 0;  // Of the last beat.
};

}  // namespace desktop
