# vox_register_test(<test> <command> [labels...]), and vox_register_test_per_path: the same once per code
# path, with the environment that forces it and its name in VOX_TEST_PATH. Of the paths that are built, all
# are tested that this machine can run; def and the last, which is the best, by what is labelled "slow", or
# "driver" for code that is the same on all paths and calls kernels with tests of their own; the best alone by
# what is labelled "best", where other tests are as strict with the others' kernels. Sanitizers take
# their time: with one, it is the best alone for what is slow. vox_register_test_per_set does it per kernel
# set, with its name in VOX_TEST_SET as well.
#
# vox_add_test(<name> <sources...> [INTERNAL] [PER_PATH | PER_SET] [LABELS ...]): one GoogleTest binary.
#
# It links libvox.so as a user would; INTERNAL links the static library, whose hidden functions a
# test of pure logic may call. PER_PATH registers it once per code path, PER_SET once per kernel set; the
# test's main checks that the path that was asked for is the one that runs. Everything but what is labelled
# "slow" is part of the quick loop (ctest -L quick).
find_package(GTest REQUIRED)
include(GoogleTest)

set(VOX_TESTED_PATHS "")
foreach(path IN LISTS VOX_BUILT_PATHS)
  if(path IN_LIST VOX_RUNNABLE_PATHS)
    list(APPEND VOX_TESTED_PATHS ${path})
  endif()
endforeach()
set(VOX_TESTED_SETS "")
foreach(set IN LISTS VOX_BUILT_SETS)
  if(set IN_LIST VOX_RUNNABLE_SETS)
    list(APPEND VOX_TESTED_SETS ${set})
  endif()
endforeach()
list(GET VOX_TESTED_PATHS -1 VOX_SLOWLY_TESTED_PATHS)
if(VOX_SANITIZE STREQUAL "thread") # races are the drivers', which all paths share
  set(VOX_TESTED_PATHS ${VOX_SLOWLY_TESTED_PATHS})
  set(VOX_TESTED_SETS ${VOX_SLOWLY_TESTED_PATHS})
elseif(NOT VOX_SANITIZE)
  list(PREPEND VOX_SLOWLY_TESTED_PATHS def)
  list(REMOVE_DUPLICATES VOX_SLOWLY_TESTED_PATHS)
endif()

# The setting that forces a path or a set: a processor type, or a reproducibility branch; the path of sse41,
# which is a set alone, is cnr_def.
set(_vox_types def ssse3 sse42 avx avx2 avx512_zel avx512)
set(_vox_type_values 0 2 3 4 5 6 7)
function(vox_path_environment path out)
  list(FIND _vox_types ${path} i)
  if(path STREQUAL "cnr_def")
    set(${out} "VOX_CBWR=COMPATIBLE" PARENT_SCOPE)
  elseif(path STREQUAL "sse41")
    set(${out} "VOX_CBWR=SSE4_1" PARENT_SCOPE)
  else()
    list(GET _vox_type_values ${i} type)
    set(${out} "VOX_DEBUG_CPU_TYPE=${type}" PARENT_SCOPE)
  endif()
endfunction()

add_library(vox_test_support STATIC
  ${PROJECT_SOURCE_DIR}/tests/support/main.cpp
  ${PROJECT_SOURCE_DIR}/tests/support/child.cpp)
target_link_libraries(vox_test_support PUBLIC vox_host_options GTest::gtest)
# What is checked for undefined behaviour is the library: tests would take five times as long to compile.
if(VOX_SANITIZE)
  target_compile_options(vox_test_support PUBLIC -O1 -g1 -fno-sanitize=undefined)
endif()
# Half of a small test's compilation is reading GoogleTest, so that is read once. A compiler cache would take no
# source any more, and does without.
if(CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()
target_precompile_headers(vox_test_support PRIVATE $<$<COMPILE_LANGUAGE:CXX>:<gtest/gtest.h$<ANGLE-R>>)
# Of std::string from a precompiled header g++ 12 says that it copies beyond its own bytes.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vox_test_support PUBLIC $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds>
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow>)
endif()

set(VOX_TEST_ENVIRONMENT
  "OMP_WAIT_POLICY=passive" # threads that spin keep other tests from the processors
  "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp"
  "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
  "ASAN_OPTIONS=intercept_tls_get_addr=0" # LeakSanitizer misreads the blocks of opened libraries
  "UBSAN_OPTIONS=print_stacktrace=1")

function(vox_register_test test command)
  add_test(NAME ${test} COMMAND ${command})
  set(labels ${ARGN})
  if(NOT "slow" IN_LIST labels)
    list(APPEND labels quick)
  endif()
  set_tests_properties(${test} PROPERTIES
    LABELS "${labels}" TIMEOUT 300 ENVIRONMENT "${VOX_TEST_ENVIRONMENT}")
  if("slow" IN_LIST labels) # first, so that none is left alone at the end
    set_tests_properties(${test} PROPERTIES COST 100)
  endif()
endfunction()

function(vox_register_test_per_path test command)
  if("best" IN_LIST ARGN)
    list(GET VOX_SLOWLY_TESTED_PATHS -1 paths)
  elseif("slow" IN_LIST ARGN OR "driver" IN_LIST ARGN)
    set(paths ${VOX_SLOWLY_TESTED_PATHS})
  else()
    set(paths ${VOX_TESTED_PATHS})
  endif()
  foreach(path IN LISTS paths)
    vox_path_environment(${path} setting)
    vox_register_test(${test}.${path} "${command}" ${ARGN})
    set_tests_properties(${test}.${path} PROPERTIES
      ENVIRONMENT "${VOX_TEST_ENVIRONMENT};${setting};VOX_TEST_PATH=${path}")
  endforeach()
endfunction()

function(vox_register_test_per_set test command)
  foreach(set IN LISTS VOX_TESTED_SETS)
    vox_path_environment(${set} setting)
    string(REPLACE sse41 cnr_def path ${set})
    vox_register_test(${test}.${set} "${command}" ${ARGN})
    set_tests_properties(${test}.${set} PROPERTIES
      ENVIRONMENT "${VOX_TEST_ENVIRONMENT};${setting};VOX_TEST_PATH=${path};VOX_TEST_SET=${set}")
  endforeach()
endfunction()

function(vox_add_test name)
  cmake_parse_arguments(ARG "INTERNAL;PER_PATH;PER_SET" "" "LABELS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  if(ARG_INTERNAL)
    set(library vox_static)
  else()
    set(library vox)
  endif()
  target_link_libraries(${name} PRIVATE vox_test_support ${library} Threads::Threads)
  target_precompile_headers(${name} REUSE_FROM vox_test_support)
  if(ARG_PER_PATH)
    vox_register_test_per_path(${name} ${name} ${ARG_LABELS})
  elseif(ARG_PER_SET)
    vox_register_test_per_set(${name} ${name} ${ARG_LABELS})
  else()
    vox_register_test(${name} ${name} ${ARG_LABELS})
  endif()
endfunction()
find_package(Threads REQUIRED)

# vox_doc_example(<document> <language> <file>): writes the document's first code block in that language
# to a file, so that tests build and run what users read.
function(vox_doc_example document language file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${document})
  file(READ ${PROJECT_SOURCE_DIR}/${document} text)
  set(opening "```${language}\n")
  string(FIND "${text}" "${opening}" begin)
  if(begin LESS 0)
    message(FATAL_ERROR "${document} has no example in ${language}")
  endif()
  string(LENGTH "${opening}" skipped)
  math(EXPR begin "${begin} + ${skipped}")
  string(SUBSTRING "${text}" ${begin} -1 text)
  string(FIND "${text}" "```" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()
