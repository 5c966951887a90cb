# The string table.
#
# murcoredata-strings.tsv is the single source of the table (id, key, English
# text). GenStrings, a small host program, turns it into
#   ${CMAKE_BINARY_DIR}/generated/murcoredata/gen-strings/StringIds.h
#   ${CMAKE_BINARY_DIR}/generated/murcoredata/gen-strings/StringTable.cpp
# at build time. Include this file from the top-level CMakeLists.txt (before the
# library target is defined); it sets
#   MURCOREDATA_GENSTRINGS_SOURCES     the generated source and header, to add to the library
#   MURCOREDATA_GENERATED_INCLUDE_DIR  the directory to put on the include path, so that
#                                      "murcoredata/gen-strings/StringIds.h" resolves
#
# When cross-compiling, the generator must run on the build machine: build it
# natively and pass its path in MURCOREDATA_GENSTRINGS_EXECUTABLE.

set(MURCOREDATA_GENSTRINGS_EXECUTABLE "" CACHE FILEPATH
  "Prebuilt GenStrings to use instead of building murcoredata_genstrings (needed when cross-compiling)")

set(_murcoredata_genstrings_dir "${CMAKE_CURRENT_LIST_DIR}")
set(_murcoredata_genstrings_table "${_murcoredata_genstrings_dir}/murcoredata-strings.tsv")
set(MURCOREDATA_GENERATED_INCLUDE_DIR "${CMAKE_BINARY_DIR}/generated")
set(_murcoredata_genstrings_out "${MURCOREDATA_GENERATED_INCLUDE_DIR}/murcoredata/gen-strings")

if(MURCOREDATA_GENSTRINGS_EXECUTABLE)
  set(_murcoredata_genstrings_command "${MURCOREDATA_GENSTRINGS_EXECUTABLE}")
  set(_murcoredata_genstrings_depends "${MURCOREDATA_GENSTRINGS_EXECUTABLE}")
else()
  if(CMAKE_CROSSCOMPILING)
    message(FATAL_ERROR "Cross-compiling: set MURCOREDATA_GENSTRINGS_EXECUTABLE to a GenStrings built for this machine")
  endif()
  add_executable(murcoredata_genstrings "${_murcoredata_genstrings_dir}/GenStrings.cpp")
  set_target_properties(murcoredata_genstrings PROPERTIES
    CXX_STANDARD 17
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(murcoredata_genstrings PRIVATE -Wall -Wextra)
  endif()
  # Naming the target in COMMAND and DEPENDS makes the table depend on the
  # generator's binary, so a change to GenStrings.cpp regenerates it.
  set(_murcoredata_genstrings_command murcoredata_genstrings)
  set(_murcoredata_genstrings_depends murcoredata_genstrings)
endif()

add_custom_command(
  OUTPUT
    "${_murcoredata_genstrings_out}/StringIds.h"
    "${_murcoredata_genstrings_out}/StringTable.cpp"
  COMMAND ${_murcoredata_genstrings_command} "${_murcoredata_genstrings_table}" "${_murcoredata_genstrings_out}"
  DEPENDS "${_murcoredata_genstrings_table}" ${_murcoredata_genstrings_depends}
  COMMENT "Generating the string table from murcoredata-strings.tsv"
  VERBATIM)

set(MURCOREDATA_GENSTRINGS_SOURCES
  "${_murcoredata_genstrings_out}/StringTable.cpp"
  "${_murcoredata_genstrings_out}/StringIds.h")

unset(_murcoredata_genstrings_dir)
unset(_murcoredata_genstrings_table)
unset(_murcoredata_genstrings_out)
unset(_murcoredata_genstrings_command)
unset(_murcoredata_genstrings_depends)
