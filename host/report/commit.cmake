# Writes the commit of a checkout into a header, when it has changed:
#   cmake -D SOURCE=FOLDER -D HEADER=FILE -P commit.cmake
# Empty where there is no checkout, as in an unpacked archive. "-dirty" tells of changes since.
cmake_minimum_required(VERSION 3.25)

set(ENV{GIT_OPTIONAL_LOCKS} 0)
execute_process(
  COMMAND git -c safe.directory=${SOURCE} -C ${SOURCE} describe --always --dirty --abbrev=12
          --exclude=*
  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
if(failed)
  set(commit "")
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#pragma once\n\ninline constexpr const char* kCommit = \"@commit@\";\n"
     @ONLY)
