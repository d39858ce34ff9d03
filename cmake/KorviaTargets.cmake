# korvia_library(NAME KIND sources...): a library with the project's flags and precompiled headers.
function(korvia_library name kind)
  add_library(${name} ${kind} ${ARGN})
  target_link_libraries(${name} PRIVATE korvia_flags)
  target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch_${KORVIA_PCH}.h)
endfunction()

# Tests of the same libraries, which see the same definitions, share precompiled headers: the first one compiles
# them. Libraries with few tests are not worth it.
function(korvia_precompile_test name first)
  set(many korvia_show_internal sarnhawk_core console_desk)
  set(harmless PkgConfig::HWY Qt5::Gui)
  list(REMOVE_ITEM ARGN ${harmless})
  if(NOT first IN_LIST many OR ARGN)
    return()
  endif()
  get_property(owner GLOBAL PROPERTY korvia_precompiled_for_${first})
  if(owner)
    target_precompile_headers(${name} REUSE_FROM ${owner})
  else()
    target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch_test.h)
    set_property(GLOBAL PROPERTY korvia_precompiled_for_${first} ${name})
  endif()
endfunction()

# korvia_test(NAME [LABELS label...] [ENVIRONMENT VAR=value...] SOURCES ... LIBRARIES ...):
# a QtTest program registered with CTest on the offscreen platform. Those with the label "release" are what
# korvia_release_tests builds.
function(korvia_test name)
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} Qt5::Test korvia_flags)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  korvia_precompile_test(${name} ${arg_LIBRARIES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  if("release" IN_LIST arg_LABELS)
    add_dependencies(korvia_release_tests ${name})
  endif()
  add_test(NAME ${name} COMMAND ${name})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  if("film" IN_LIST arg_LABELS)
    list(APPEND arg_ENVIRONMENT "TSAN_OPTIONS=${KORVIA_TSAN_OPTIONS_FOR_FILMS}")
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT}
    LABELS "${arg_LABELS}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${KORVIA_TEST_ENVIRONMENT};${arg_ENVIRONMENT}")
endfunction()

set(KORVIA_TSAN_OPTIONS
  "suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan.supp:ignore_noninstrumented_modules=1:halt_on_error=0:exitcode=66")

# While it makes the decoders of a film with sound, GStreamer holds more locks than the search for deadlocks counts.
set(KORVIA_TSAN_OPTIONS_FOR_FILMS "${KORVIA_TSAN_OPTIONS}:detect_deadlocks=0")

set(KORVIA_TEST_ENVIRONMENT
  "QT_LOGGING_RULES=qt.*=false"
  # A show plays on the default output: not where somebody runs its tests
  "PULSE_SERVER=unix:/nonexistent/pulse"
  "PIPEWIRE_REMOTE=/nonexistent/pipewire"
  "ALSA_CONFIG_PATH=/nonexistent/alsa.conf"
  # GLib's slices hand the same memory to another thread without an allocation that a sanitizer sees
  "G_SLICE=always-malloc"
  # gst-plugin-scanner would run uninstrumented plugins under the sanitizers' preload
  "ASAN_OPTIONS=detect_leaks=1:fast_unwind_on_malloc=1:detect_stack_use_after_return=0"
  "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
  "UBSAN_OPTIONS=print_stacktrace=1"
  "TSAN_OPTIONS=${KORVIA_TSAN_OPTIONS}")
