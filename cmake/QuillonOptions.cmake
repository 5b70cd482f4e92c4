# Flags that every target of ours is built with, kept in one interface target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(QUILLON_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")
option(QUILLON_TIDY "Run clang-tidy beside the compiler" OFF)

# ccache when it is there: for precompiled headers it needs to be told what it may overlook, and
# relative paths let a second clone profit from the first.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=true
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    ${CCACHE_PROGRAM})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  else()
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
endif()

add_library(quillon_options INTERFACE)
target_compile_options(quillon_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  -Wno-sign-conversion -fstack-protector-strong)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Version 12 takes the assignment of an optional text for an overflow. The sanitizers look for
  # real ones.
  target_compile_options(quillon_options INTERFACE -Wno-stringop-overflow)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_definitions(quillon_options INTERFACE _FORTIFY_SOURCE=2)
endif()
if(QUILLON_SANITIZE)
  add_compile_options(-fsanitize=${QUILLON_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${QUILLON_SANITIZE})
endif()
if(QUILLON_TIDY)
  find_program(CLANG_TIDY_PROGRAM clang-tidy REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY ${CLANG_TIDY_PROGRAM} --quiet --warnings-as-errors=*)
endif()
