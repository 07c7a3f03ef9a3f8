#pragma once

namespace CLI {
class App;
}

namespace host {

struct Request;

// The words after `list` and `describe`.
class ListWords {
 public:
  // Declares both commands.
  ListWords(CLI::App& app, Request& request);

  // Fills in what the options do not set by themselves.
  void Take();

 private:
  void AddList(CLI::App& app);
  void AddDescribe(CLI::App& app);

  Request& m_request;
  bool m_json = false;
  bool m_markdown = false;
};

}  // namespace host
