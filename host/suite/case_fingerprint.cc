#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>

#include "files/fingerprint.h"
#include "files/known_digest.h"
#include "files/sha256.h"
#include "report/origin.h"
#include "suite/case_work.h"
#include "suite/shard.h"

namespace host {

namespace {

namespace fs = std::filesystem;

std::string DigestOfText(const std::string& text) {
  Sha256 hash;
  hash.Add(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
  return hash.Digest();
}

std::string DigestOfFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return "";
  const FileDigest digest = KnownDigestOf(file, [] { return true; });
  close(file);
  return digest.digest;
}

// Of a file, or of all files in a folder with their names.
std::string DigestOfSource(const std::string& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) return DigestOfFile(path);
  std::vector<std::string> files;
  for (fs::recursive_directory_iterator each(path, error), end; !error && each != end;
       each.increment(error)) {
    if (each->is_regular_file(error)) files.push_back(each->path());
  }
  std::sort(files.begin(), files.end());
  std::string text;
  for (const std::string& file : files) text += file + '\0' + DigestOfFile(file) + '\n';
  return DigestOfText(text);
}

Json Optional(const std::optional<double>& value) { return value ? Json(*value) : Json(); }

constexpr uintmax_t kLong = 100'000'000;  // Bytes that take too long while all else waits.

}  // namespace

SharedSources::SharedSources(const std::vector<SuiteCase>& cases) {
  for (const SuiteCase& one : cases) {
    for (const auto& [name, source] : one.inputs) m_shared.push_back(Fnv1a(source));
  }
  std::sort(m_shared.begin(), m_shared.end());
  size_t shared = 0;
  for (size_t i = 1; i < m_shared.size(); ++i) {
    const bool counted = shared > 0 && m_shared[shared - 1] == m_shared[i];
    if (m_shared[i] == m_shared[i - 1] && !counted) m_shared[shared++] = m_shared[i];
  }
  m_shared.resize(shared);
  m_shared.shrink_to_fit();
}

void SharedSources::ReadOf(const SuiteCase& one) const {
  for (const auto& [name, source] : one.inputs) {
    if (!std::binary_search(m_shared.begin(), m_shared.end(), Fnv1a(source))) continue;
    std::error_code error;
    const bool brief = fs::is_regular_file(source, error) && fs::file_size(source, error) < kLong;
    if (brief && !error) DigestOfFile(source);
  }
}

std::string OriginText(const Engine& engine) {
  const Json origin = OriginJson(engine);
  return Json({origin["bench"], origin["engine"], Fingerprint("/proc/self/exe")}).dump();
}

std::string CaseFingerprint(const SuitePlace& suite, size_t at) {
  const SuiteCase& one = suite.cases[at];
  Json inputs = Json::array();
  for (const auto& [name, source] : one.inputs) {
    inputs.push_back({name, source, DigestOfSource(source)});
  }
  for (const NamedSources* const sources : {&one.reference, &one.far, &one.near}) {
    inputs.push_back(Json::array());
    for (const auto& [name, source] : *sources) {
      inputs.back().push_back({name, source, DigestOfSource(source)});
    }
  }
  Json before = Json::array();
  for (const size_t each : suite.order.Before(at)) before.push_back(CaseFingerprint(suite, each));
  Json scorers = Json::array();
  for (const Scorer& each : one.scorers) {
    scorers.push_back({each.name, each.folder, each.command, each.pattern, each.unit, each.better,
                       each.rates, each.seconds});
  }
  Json truths = Json::array();
  for (const Truth& each : one.truths) truths.push_back({each.name, each.unit, each.value});
  const Json all = {suite.origin,
                    one.routine,
                    one.arguments,
                    one.measures,
                    scorers,
                    truths,
                    inputs,
                    one.sameAs,
                    one.engineOnly,
                    one.strict,
                    Optional(one.timeout),
                    Optional(one.linger),
                    before};
  return DigestOfText(all.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace host
