# fetch_node_packages(SOURCE TARGET WHY_NOT): fills TARGET/node_modules with what SOURCE/package-lock.json
# names, once for each state of that file. WHY_NOT is empty, or says in words why they are not there.
# Sets NODE_PROGRAM and NODE_VERSION.
function(fetch_node_packages source target why_not)
  set(${why_not} "" PARENT_SCOPE)
  find_program(NODE_PROGRAM NAMES node nodejs)
  find_program(NPM_PROGRAM npm)
  if(NOT NODE_PROGRAM OR NOT NPM_PROGRAM)
    set(${why_not} "Node.js and npm are not there" PARENT_SCOPE)
    return()
  endif()
  execute_process(COMMAND ${NODE_PROGRAM} --version OUTPUT_VARIABLE version
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  string(REPLACE "v" "" version "${version}")
  set(NODE_VERSION "${version}" PARENT_SCOPE)
  if(version VERSION_LESS 18)
    set(${why_not} "Node.js is '${version}' and has to be 18 or later" PARENT_SCOPE)
    return()
  endif()

  # A new lock file, and nothing else, makes this step and what is built from it run again.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source}/package-lock.json)
  file(SHA256 ${source}/package-lock.json lock)
  set(stamp ${target}/node_modules.stamp)
  if(EXISTS ${stamp} AND EXISTS ${target}/node_modules)
    file(READ ${stamp} stamped)
    if(stamped STREQUAL lock)
      return()
    endif()
  endif()

  message(STATUS "Fetching the Node.js packages for ${target}")
  file(COPY ${source}/package.json ${source}/package-lock.json DESTINATION ${target})
  execute_process(
    COMMAND ${NPM_PROGRAM} ci --ignore-scripts --no-audit --no-fund --prefer-offline
            --fetch-retries=1 --fetch-timeout=60000
    WORKING_DIRECTORY ${target} TIMEOUT 300
    RESULT_VARIABLE failed OUTPUT_FILE ${target}/npm.log ERROR_FILE ${target}/npm.log)
  if(failed)
    file(REMOVE_RECURSE ${target}/node_modules)
    set(${why_not} "npm could not fetch its packages (${target}/npm.log)" PARENT_SCOPE)
    return()
  endif()
  file(WRITE ${stamp} ${lock})
endfunction()
