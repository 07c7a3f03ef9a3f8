#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

// A WAVE file of the fake engine.
struct FakeWav {
  int rate = 0;
  int channels = 0;
  std::vector<short> samples = {};
};

// The recording fake: every engine operation, and every stdio operation on a file, is one line of
// `calls`, in order; what an operation answers comes from the scripts below. Files live in memory
// and time is virtual. One object is current at a time, the newest; without one, as when the fake
// is an engine library of its own, a default one is.
class FakeEngine {
 public:
  FakeEngine();
  ~FakeEngine();
  FakeEngine(const FakeEngine&) = delete;
  FakeEngine& operator=(const FakeEngine&) = delete;

  static FakeEngine& Current();

  // True while a test has an object of its own: then stdio is recorded and files are in memory.
  static bool HasCurrent();

  // Appends a line to `calls`; any thread.
  void Record(const char* format, ...) __attribute__((format(printf, 2, 3), nonnull(2)));

  // The calls that contain `part`.
  std::vector<std::string> CallsWith(const std::string& part) const;

  // Puts a file in place; reading a name that was not put finds no file.
  void PutFile(const std::string& name, const std::string& bytes);
  void PutSamples(const std::string& name, const std::vector<short>& samples);
  bool HasFile(const std::string& name) const;

  // What has arrived in a file: what stdio still buffers has not.
  std::string Bytes(const std::string& name) const;

  // The content of a file as stored values of T; the length must fit.
  template <typename T>
  std::vector<T> Values(const std::string& name) const;

  // One more or one less live object of a class; "FIRFilter", for example.
  void Born(const std::string& what);
  void Died(const std::string& what);

  std::vector<std::string> calls;
  std::map<std::string, std::shared_ptr<std::string>> files;
  std::set<std::string> unwritable;  // Names that cannot be opened for writing.
  std::map<std::string, FakeWav> wavs;
  std::map<std::string, int> live;  // Objects alive by class; classes without any are not in it.
  uint32_t nowMs = 0;               // Virtual time; sleeping moves it on.

  // The table's answer: fills both ears, may move the position, gives the number of taps.
  std::function<unsigned(int* azimuth, int* elevation, short* left, short* right)> hrtf;
  unsigned hrtfAvailability = 0;

  // What filter number `filter` (from 1, in the order of creation) does to one block.
  std::function<void(int filter, const float* in, size_t length, float* out)> fir;

  std::vector<std::vector<float>> firCoefficients;  // As given to each FIRFilter::Create.

 private:
  mutable std::mutex m_mutex;
  FakeEngine* m_before;
};

// Ends the process when an operation is used as no caller may use it.
void RequireOrDie(bool condition, const char* rule);

template <typename T>
std::vector<T> FakeEngine::Values(const std::string& name) const {
  const std::string bytes = Bytes(name);
  RequireOrDie(bytes.size() % sizeof(T) == 0, "a file of whole values");
  std::vector<T> values(bytes.size() / sizeof(T));
  bytes.copy(reinterpret_cast<char*>(values.data()), bytes.size());
  return values;
}
