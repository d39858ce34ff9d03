# Language level, warnings, sanitizers, output folders and the compiler cache.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)

# Modules are loaded from the folder of the console library, so everything lies in one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH "$ORIGIN")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

set(KORVIA_SANITIZE "" CACHE STRING "address (with undefined), thread, or empty")
option(KORVIA_ENGINE_ONLY "Build only the show module and its tests" OFF)

# Frame kernels are useless to test at -O0; -O1 keeps sanitizer reports readable and the tests quick.
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g1 -fno-omit-frame-pointer" CACHE STRING "" FORCE)

add_library(korvia_flags INTERFACE)
target_compile_options(korvia_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wunused -Wduplicated-cond -Wlogical-op -Wformat=2 -Werror)
if(KORVIA_SANITIZE)
  # Sanitizers make GCC report reads that cannot happen.
  target_compile_options(korvia_flags INTERFACE -Wno-maybe-uninitialized)
endif()
target_compile_definitions(korvia_flags INTERFACE QT_NO_CAST_FROM_ASCII_WARNINGS QT_DEPRECATED_WARNINGS)

if(KORVIA_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(KORVIA_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread)
  add_link_options(-fsanitize=thread)
endif()

# There are hundreds of test programs, and gold links them in a third of the time.
find_program(GOLD_LINKER ld.gold)
if(KORVIA_SANITIZE AND GOLD_LINKER)
  add_link_options(-fuse-ld=gold)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE_PROGRAM})
  # Without it the cache cannot see through a precompiled header.
  add_compile_options(-fpch-preprocess)
endif()
