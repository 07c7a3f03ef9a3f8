# Writes, into FOLDER, the sources and options that lead calls of the engine's interface (see
# CMakeLists.txt). Needs NM, OBJECTS, a file of the names of the desktop engine's objects, and API, the
# folder of the interface's headers.

cmake_policy(VERSION 3.25)

# The functions of one facility: what an object defines for others, its own namespace left out.
file(STRINGS ${OBJECTS} objects)
set(facilities "")
set(doors "")
foreach(object IN LISTS objects)
  cmake_path(SET object NORMALIZE "${object}")
  if(NOT object MATCHES "/desktop_engine\\.dir/([a-z]+/[a-z_0-9]+)\\.cc\\.[a-z]+$")
    continue()
  endif()
  set(facility ${CMAKE_MATCH_1})
  if(EXISTS "${API}/${facility}.h")
    list(APPEND facilities ${facility})
    list(APPEND doors ${object})
  endif()
endforeach()

set(index 0)
set(options "")
set(calls "")
set(declarations "")
set(targets "")
set(names "")
set(lines "")
set(wrapped "")
set(plain "")
foreach(facility object IN ZIP_LISTS facilities doors)
  execute_process(COMMAND ${NM} --defined-only --extern-only --format=posix ${object}
                  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n ]+ T [^\n]*" functions "${symbols}")
  list(TRANSFORM functions REPLACE " .*" "")
  list(FILTER functions EXCLUDE REGEX "^_ZN?K?7desktop")
  list(SORT functions)
  foreach(name IN LISTS functions)
    string(APPEND options "--wrap=${name}\n")
    string(APPEND calls "    {\"${facility}\", \"${name}\"},\n")
    string(APPEND declarations "HIDDEN void Own${index}() __asm__(\"__real_${name}\");\n")
    string(APPEND names "    \"${name}\",\n")
    string(APPEND lines "${facility} ${name}\n")
    string(APPEND targets "    reinterpret_cast<void*>(&Own${index}),\n")
    string(APPEND wrapped "__asm__(\"engine_jump __wrap_${name}, hidden, ${index}\");\n")
    string(APPEND plain "__asm__(\"engine_jump ${name}, protected, ${index}\");\n")
    math(EXPR index "${index} + 1")
  endforeach()
endforeach()
if(index EQUAL 0)
  message(FATAL_ERROR "No function of the interface is defined by the objects of ${OBJECTS}")
endif()

# write(NAME TEXT): a file that is left alone where it says so already.
function(write name text)
  file(CONFIGURE OUTPUT ${FOLDER}/${name} CONTENT "@text@" @ONLY NEWLINE_STYLE LF)
endfunction()

# The doorway gives its targets to a program that was made of the same list alone.
string(SHA256 digest "${calls}")
set(head "#include \"facilities/jump.h\"

#define HIDDEN __attribute__((visibility(\"hidden\")))

extern \"C\" {
__attribute__((visibility(\"default\"))) void** audio_engine_doorway_${digest}(void* const* own);
extern HIDDEN void* targets[];
")

write(engine_calls.rsp "${options}")
write(engine_calls.cc "#include \"facilities/engine_calls.h\"
${head}${declarations}}
void* targets[] = {
${targets}};
${wrapped}
namespace facilities {
namespace {
void* const kOwn[] = {
${targets}};
constexpr EngineCall kCalls[] = {
${calls}};
}
std::span<const EngineCall> EngineCalls() { return kCalls; }
std::span<void*> EngineTargets() { return targets; }
std::span<void*> LibraryTargets() { return {audio_engine_doorway_${digest}(kOwn), ${index}}; }
}
")
write(engine_doorway.cc "#include <cstring>
#include \"engine_api/common/built_in.h\"
${head}}
void* targets[${index}] = {};
${plain}
namespace {
void* const* g_own = nullptr;
constexpr const char* kNames[] = {
${names}};
}
void** audio_engine_doorway_${digest}(void* const* own) {
  g_own = own;
  return targets;
}
void* AudioEngineBuiltIn(const char* name) {
  for (size_t i = 0; g_own != nullptr && i < ${index}; ++i) {
    if (std::strcmp(kNames[i], name) == 0) return g_own[i];
  }
  return nullptr;
}
")
write(facilities.txt "${lines}")
