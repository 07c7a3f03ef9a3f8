#pragma once

#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

// The words after a command, each told apart once: which are options, which are their values, and
// which are neither.
class Words {
 public:
  // `command` declares the options.
  Words(const CLI::App& command, std::span<const std::string> words);

  // The first thing that is wrong with them; empty when nothing is.
  const std::string& fault() const { return m_fault; }

  // The options, each with its value after a "=", or, after a short one, in the next word.
  const std::vector<std::string>& options() const { return m_options; }

  // What is neither option nor value: before "--", and after it.
  const std::vector<std::string>& free() const { return m_free; }
  const std::vector<std::string>& literal() const { return m_literal; }

  // The values of an option, as often as it is given.
  std::vector<std::string> Values(const std::string& option) const;

 private:
  void Take(const std::string& option, const std::string& value);
  void Refuse(const std::string& fault);

  std::string m_fault;
  std::vector<std::string> m_options;
  std::vector<std::string> m_free;
  std::vector<std::string> m_literal;
};

}  // namespace host
