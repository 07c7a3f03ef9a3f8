#pragma once

#include <any>
#include <cstdarg>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <typeindex>
#include <vector>

// A WAVE file of the fake engine.
struct FakeWav {
  int rate = 0;
  int channels = 0;
  std::vector<short> samples = {};
};

// The recording fake: every engine operation, and every stdio operation on a file, is one line of
// `calls`, in order. Every object has an identity, its class and a number from 1 in the order of
// creation, and every line names it:
//   WavReader#1(near.wav)   WavReader#1.ReadSamples(160) = 160   ~WavReader#1
//   FIRFilter::Create(3, 1765) = FIRFilter#1      WebRtcAec_Process(#1, 160, 0) = 0
// What an operation answers is scripted in a struct of its facility's fake header:
//   engine.script<FirFilterScript>().filter = ...
// Files live in memory and time is virtual. One object is current at a time, the newest; without
// one, as when the fake is an engine library of its own, a default one is.
class FakeEngine {
 public:
  FakeEngine();
  ~FakeEngine();
  FakeEngine(const FakeEngine&) = delete;
  FakeEngine& operator=(const FakeEngine&) = delete;

  static FakeEngine& Current();

  // True while a test has an object of its own: then stdio is recorded and files are in memory.
  static bool HasCurrent();

  // The answers of one facility, as default-constructed until a test changes them.
  template <typename Script>
  Script& script();

  // Appends a line of any length to `calls`; any thread.
  void Record(const char* format, ...) __attribute__((format(printf, 2, 3), nonnull(2)));

  // Gives an object its identity and returns it: "FIRFilter#1". For factories, which record a call
  // of their own.
  std::string Identify(const void* object, const std::string& what);

  // Gives an object its identity and records its construction: "WavReader#1(near.wav)".
  void Born(const void* object, const std::string& what, const char* arguments, ...)
      __attribute__((format(printf, 4, 5), nonnull(4)));

  // Records an operation of an object: "WavReader#1.ReadSamples(160) = 160".
  void Call(const void* object, const char* format, ...)
      __attribute__((format(printf, 3, 4), nonnull(3)));

  // Records the end of an object, "~WavReader#1". The process ends when it is none that lives.
  void Died(const void* object);

  // Ends an identity without a line, for handles whose release is recorded as a call.
  void Forget(const void* object);

  // "WavReader#1", or the number alone as C functions write their handles: "#1". "null" for null,
  // "unknown" for what has no identity.
  std::string NameOf(const void* object) const;
  std::string HandleOf(const void* object) const;

  // A name for a buffer where it matters that two calls get the same one: "@1" for the first
  // address asked for, "@2" for the next new one.
  std::string Buffer(const void* data);

  // `answer`, or `failure` in its place when operations fail.
  template <typename T>
  T Answer(T answer, T failure) const {
    return failing == Failing::kNothing ? answer : failure;
  }
  bool Fails() const { return failing != Failing::kNothing; }
  bool HasNone() const { return failing == Failing::kEverything; }

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

  std::vector<std::string> calls;

  // What fails: nothing, every operation that can, or also every factory and every question that
  // has an answer for "none". A failed operation says so and changes nothing. Delays and verdicts
  // cannot fail.
  enum class Failing { kNothing, kOperations, kEverything };
  Failing failing = Failing::kNothing;

  std::map<std::string, std::shared_ptr<std::string>> files;
  std::set<std::string> unwritable;  // Names that cannot be opened for writing.
  bool diskFull = false;             // Whether fwrite writes nothing, to any file.
  std::string printed;               // What has been printed on stdout.
  // WAVE files for the engine's readers; what its writers wrote is also in `files` once finished.
  std::map<std::string, FakeWav> wavs;
  std::map<std::string, int> live;  // Objects alive by class; classes without any are not in it.
  uint32_t nowMs = 0;               // Virtual time; sleeping moves it on.
  std::function<void()> onSleep;    // What happens elsewhere while a routine sleeps.

 private:
  struct Identity {
    std::string what;
    int number;
  };
  void Append(std::string line);

  mutable std::recursive_mutex m_mutex;
  std::map<const void*, Identity> m_identities;
  std::map<std::string, int> m_counts;  // Objects of each class so far.
  std::map<const void*, int> m_buffers;
  std::map<std::type_index, std::any> m_scripts;
  FakeEngine* m_before;
};

// Ends the process when an operation is used as no caller may use it.
void RequireOrDie(bool condition, const char* rule);

// A text in quotes, with its line ends and tabs written as \n and \t.
std::string Quoted(const char* text);

// What printf makes of its arguments.
std::string Formatted(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

// A printf format in quotes and its arguments, as recorded: `"%d, %s\n", 5, near`.
std::string FormatAndArguments(const char* format, va_list arguments)
    __attribute__((format(printf, 1, 0)));

template <typename Script>
Script& FakeEngine::script() {
  const std::lock_guard lock(m_mutex);
  std::any& held = m_scripts[typeid(Script)];
  if (!held.has_value()) held = Script();
  return std::any_cast<Script&>(held);
}

template <typename T>
std::vector<T> FakeEngine::Values(const std::string& name) const {
  const std::string bytes = Bytes(name);
  RequireOrDie(bytes.size() % sizeof(T) == 0, "a file of whole values");
  std::vector<T> values(bytes.size() / sizeof(T));
  bytes.copy(reinterpret_cast<char*>(values.data()), bytes.size());
  return values;
}
