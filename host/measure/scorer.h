#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A program of the user's that says in a figure how good a recording is: a measure that is not the
// bench's own.
struct Scorer {
  std::string name = {};
  std::string folder = {};                // Of the file that declares it, absolute.
  std::vector<std::string> command = {};  // With {output}, {rate} and the like.
  std::string pattern = {};               // ECMAScript; its first group is the figure.
  std::string unit = {};
  std::string better = "none";  // "higher", "lower", "none"
  std::vector<int> rates = {};  // Hz; none: any.
  double seconds = 60;          // It is ended after that.

  bool operator==(const Scorer&) const = default;
};

using Scorers = std::vector<Scorer>;

// Null when there is none of that name.
const Scorer* FindScorer(std::span<const Scorer> scorers, std::string_view name);

// What braces in a command stand for: the files as the scorer finds them where it runs, their rate,
// and its own folder.
std::map<std::string, std::string> ScorerWords(const Scorer& scorer, int rate);

}  // namespace host
