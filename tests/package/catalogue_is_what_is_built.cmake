# The rows of the catalogue are the routines and helpers that the unit's objects define, all of them
# and no others. Needs AUDIO_BENCH, NM and OBJECTS, a file of object names.

execute_process(COMMAND ${AUDIO_BENCH} list --json OUTPUT_VARIABLE json COMMAND_ERROR_IS_FATAL ANY)
string(JSON rows GET "${json}" routines)
string(JSON count LENGTH "${rows}")
math(EXPR last "${count} - 1")
set(listed)
foreach(index RANGE ${last})
  string(JSON name GET "${rows}" ${index} routine)
  list(APPEND listed ${name})
endforeach()

file(STRINGS ${OBJECTS} objects)
execute_process(COMMAND ${NM} --demangle --defined-only ${objects}
                OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
# Functions of the unit that other files can call and whose names are those of the catalogue.
string(REGEX MATCHALL
  " T (Test|newTest|Measure|cal|Accelerate|Stretch|RunTestCase|PrintSdkLog|DebugLogFunction|ConvertTo|ReadChunk|ReadPCM|GetCodecFrameLength|encoderFromRaw|decoderFromRaw)[A-Za-z0-9_]*\\("
  defined "${symbols}")
list(TRANSFORM defined REPLACE " T (.*)\\(" "\\1")

set(unlisted ${defined})
list(REMOVE_ITEM unlisted ${listed})
set(missing ${listed})
list(REMOVE_ITEM missing ${defined})
if(NOT defined OR unlisted OR missing)
  message(FATAL_ERROR "Defined but not listed: ${unlisted}\n"
                      "Listed but not defined: ${missing}")
endif()
