#include "process/crash_stack.h"

#include <cxxabi.h>
#include <elfutils/libdwfl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace host {

namespace {

constexpr size_t kMaxLines = 40;

struct EndDwfl {
  void operator()(Dwfl* dwfl) const { dwfl_end(dwfl); }
};

// Only what the modules hold themselves: looking further might ask a server.
int FindNoDebugFile(Dwfl_Module* /*module*/, void** /*data*/, const char* /*name*/,
                    Dwarf_Addr /*base*/, const char* /*file*/, const char* /*link*/,
                    GElf_Word /*checksum*/, char** /*found*/) {
  return -1;
}

// One call, in words.
struct Call {
  std::string function = {};  // Empty when it has no name.
  std::string source = {};    // "drc.cc:120"; empty when that is not known.
  std::string place = {};     // "audio_bench+0x1234"

  std::string Text() const {
    std::string text = function.empty() ? "?" : function;
    if (!source.empty()) text += "  " + source;
    return place.empty() ? text : text + "  " + place;
  }
};

std::string LastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string Demangled(const char* name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> plain(
      abi::__cxa_demangle(name, nullptr, nullptr, &status), free);
  return plain == nullptr ? name : plain.get();
}

// The modules of this process and their names.
class Modules {
 public:
  Modules() {
    m_callbacks.find_elf = dwfl_linux_proc_find_elf;
    m_callbacks.find_debuginfo = FindNoDebugFile;
    m_dwfl.reset(dwfl_begin(&m_callbacks));
    if (m_dwfl == nullptr) return;
    dwfl_report_begin(m_dwfl.get());
    dwfl_linux_proc_report(m_dwfl.get(), getpid());
    dwfl_report_end(m_dwfl.get(), nullptr, nullptr);
  }

  // The call at an address.
  Call At(uintptr_t address) const {
    Dwfl_Module* const module =
        m_dwfl == nullptr ? nullptr : dwfl_addrmodule(m_dwfl.get(), address);
    if (module == nullptr) return {};
    Call call;
    if (const char* const name = dwfl_module_addrname(module, address); name != nullptr) {
      call.function = Demangled(name);
    }
    if (Dwfl_Line* const line = dwfl_module_getsrc(module, address); line != nullptr) {
      int number = 0;
      const char* const file = dwfl_lineinfo(line, nullptr, &number, nullptr, nullptr, nullptr);
      if (file != nullptr) call.source = LastPart(file) + ":" + std::to_string(number);
    }
    const char* const path =
        dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    Dwarf_Addr offset = address;
    dwfl_module_relocate_address(module, &offset);
    char hexadecimal[32];
    snprintf(hexadecimal, sizeof hexadecimal, "+0x%llx", static_cast<unsigned long long>(offset));
    call.place = LastPart(path == nullptr ? "" : path) + hexadecimal;
    return call;
  }

 private:
  Dwfl_Callbacks m_callbacks = {};
  std::unique_ptr<Dwfl, EndDwfl> m_dwfl;
};

// How many of the calls are the routine's: not those that were there before it.
size_t RoutineCalls(const CrashCalls& noted) {
  size_t count = std::min(noted.count.load(), CrashCalls::kMax);
  size_t before = std::min(noted.countBefore, CrashCalls::kMax);
  while (count > 0 && before > 0 && noted.calls[count - 1] == noted.before[before - 1]) {
    --count;
    --before;
  }
  return count;
}

// Where the process was, the innermost call first, without those that noted it. A return address
// may be the start of the next function: what is meant is the call before it.
std::vector<uintptr_t> Addresses(const CrashCalls& noted) {
  const size_t count = RoutineCalls(noted);
  std::vector<uintptr_t> addresses;
  for (size_t i = 0; i < count; ++i) {
    const auto address = reinterpret_cast<uintptr_t>(noted.calls[i]);
    if (address == noted.at && noted.at != 0) {
      addresses = {noted.at};
    } else {
      addresses.push_back(address - 1);
    }
  }
  return addresses;
}

}  // namespace

std::string CrashStack(const CrashCalls& noted) {
  const std::vector<uintptr_t> addresses = Addresses(noted);
  const Modules modules;
  std::string text;
  size_t lines = 0;
  for (size_t i = 0; i < addresses.size() && lines < kMaxLines; ++lines) {
    const Call call = modules.At(addresses[i]);
    size_t next = i + 1;
    while (next < addresses.size() && !call.function.empty() &&
           modules.At(addresses[next]).function == call.function) {
      ++next;
    }
    text += "  #" + std::to_string(i) + "  " + call.Text();
    if (next - i > 1) text += "  (" + std::to_string(next - i) + " times)";
    text += "\n";
    i = next;
  }
  return text;
}

}  // namespace host
