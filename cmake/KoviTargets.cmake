# Helpers that keep every directory's CMakeLists.txt down to the names that matter.

# kovi_area_library(NAME DEPENDS dep...) — one static library from the .cpp files
# of the calling directory. Include paths are rooted at the repository, so code
# includes "KoviKit/foundation/Calendar.h".
function(kovi_area_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
endfunction()

# kovi_test(NAME LABEL unit|integration SOURCES a.cpp... DEPENDS lib...)
# One GoogleTest executable; every test case becomes a CTest test with the label.
function(kovi_test name)
  cmake_parse_arguments(ARG "" "LABEL;TIMEOUT" "SOURCES;DEPENDS" ${ARGN})
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} kovi_test_support GTest::gmock GTest::gtest_main)
  # GoogleTest, GoogleMock and nlohmann/json are parsed once for every suite.
  # A precompiled header is only valid under the options it was built with,
  # and the desktop libraries' flags bring -pthread, so every suite and the
  # header are compiled with it.
  target_compile_options(${name} PRIVATE -pthread)
  target_precompile_headers(${name} REUSE_FROM kovi_test_pch)
  gtest_discover_tests(${name}
    PROPERTIES LABELS ${ARG_LABEL} TIMEOUT ${ARG_TIMEOUT}
    DISCOVERY_TIMEOUT 60)
endfunction()

# kovi_fuzzer(NAME SOURCE file.cpp DEPENDS lib...) — a libFuzzer target. With
# KOVI_LIBFUZZER (clang) it links -fsanitize=fuzzer; otherwise it links a small
# driver that replays the seed corpus in fuzz/corpus/NAME, and CTest runs that
# replay so every fuzz entry point is exercised on every build.
function(kovi_fuzzer name)
  cmake_parse_arguments(ARG "" "SOURCE" "DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCE})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  if(KOVI_LIBFUZZER)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_link_libraries(${name} PRIVATE kovi_fuzz_replay)
    set(corpus ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    add_test(NAME ${name}.replay COMMAND ${name} ${corpus})
    set_tests_properties(${name}.replay PROPERTIES LABELS unit TIMEOUT 120)
  endif()
endfunction()

# kovi_benchmark(NAME SOURCES a.cpp... DEPENDS lib...) — a Google Benchmark program.
function(kovi_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} benchmark::benchmark)
  set_property(GLOBAL APPEND PROPERTY KOVI_BENCHMARKS ${name})
endfunction()

# kovi_add_child_directories() — adds every immediate subdirectory of the
# calling directory that has a CMakeLists.txt, so a new test, fuzz or bench
# folder needs no registration.
function(kovi_add_child_directories)
  file(GLOB children LIST_DIRECTORIES true CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*)
  foreach(child IN LISTS children)
    if(IS_DIRECTORY ${child} AND EXISTS ${child}/CMakeLists.txt)
      add_subdirectory(${child})
    endif()
  endforeach()
endfunction()
