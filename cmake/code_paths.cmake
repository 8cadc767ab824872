# The code paths, lowest first: the one list from which kernels, dispatch tables and tests are made.
#
# A row is: name | compiler flags | /proc/cpuinfo words that its code needs, and for a step between two code
# paths, which only the families have that choose by kernel set (serv/kernel_sets.hpp): | set. Instead of flags,
# "as above" says that a row's kernels would be those of the row above, byte for byte, and are these.
#
# cnr_def stands beside def for reproducible results and is no processor type. Only fused multiplications and
# additions could tell the two apart, of which SSE2 has none.
set(_vox_avx2_flags "-mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mpclmul")
set(_vox_avx2_words "avx2 fma bmi1 bmi2 abm pclmulqdq")
set(VOX_CODE_PATH_TABLE
  "def        | -msse2                                                                    | sse2"
  "cnr_def    | as above                                                                  | sse2"
  "ssse3      | -mssse3                                                                   | ssse3"
  "sse41      | -msse4.1                                                                  | sse4_1 | set"
  "sse42      | -msse4.2 -mpopcnt                                                         | sse4_2 popcnt"
  "avx        | -mavx                                                                     | avx"
  "avx2       | ${_vox_avx2_flags}                                                        | ${_vox_avx2_words}"
  "avx512_zel | ${_vox_avx2_flags} -mavx512f -mavx512cd                                   | ${_vox_avx2_words} avx512f avx512cd"
  "avx512     | ${_vox_avx2_flags} -mavx512f -mavx512cd -mavx512dq -mavx512bw -mavx512vl  | ${_vox_avx2_words} avx512f avx512cd avx512dq avx512bw avx512vl"
)

file(READ /proc/cpuinfo _vox_cpuinfo LIMIT 16384)
string(REGEX MATCH "flags[^\n]*" _vox_cpuinfo "${_vox_cpuinfo}")
separate_arguments(_vox_cpuinfo UNIX_COMMAND "${_vox_cpuinfo}")

set(VOX_CODE_PATHS "")
set(VOX_KERNEL_SETS "")
set(VOX_RUNNABLE_PATHS "")
set(VOX_RUNNABLE_SETS "")
set(_vox_shared "")
foreach(row IN LISTS VOX_CODE_PATH_TABLE)
  string(REGEX REPLACE " *\\| *" ";" cells "${row}")
  list(GET cells 0 name)
  string(STRIP "${name}" name)
  list(GET cells 1 flags)
  list(GET cells 2 words)
  if(flags STREQUAL "as above")
    list(APPEND _vox_shared ${name})
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  separate_arguments(words UNIX_COMMAND "${words}")
  list(APPEND VOX_KERNEL_SETS ${name})
  set(VOX_PATH_FLAGS_${name} ${flags})
  list(REMOVE_ITEM words ${_vox_cpuinfo})
  if(NOT words)
    list(APPEND VOX_RUNNABLE_SETS ${name})
  endif()
  if("set" IN_LIST cells)
    continue()
  endif()
  list(APPEND VOX_CODE_PATHS ${name})
  if(NOT words)
    list(APPEND VOX_RUNNABLE_PATHS ${name})
  endif()
endforeach()

# VOX_PATHS of these are built, def always. A path that is not built runs the kernels of the next lower one
# that is; its name, its processor type and its thread counts stay its own.
set(_vox_wanted def ${VOX_PATHS})
if("best" IN_LIST _vox_wanted)
  list(REMOVE_ITEM _vox_wanted best)
  list(GET VOX_RUNNABLE_PATHS -1 best)
  list(APPEND _vox_wanted ${best})
endif()
set(unknown ${_vox_wanted})
list(REMOVE_ITEM unknown ${VOX_CODE_PATHS})
if(unknown)
  message(FATAL_ERROR "VOX_PATHS: no code path is named ${unknown}")
endif()
set(_vox_path_list "")
set(_vox_set_list "")
set(_vox_borrowing_path_list "")
set(_vox_borrowing_set_list "")
set(VOX_BUILT_PATHS "")
set(VOX_BUILT_SETS "")
foreach(path IN LISTS VOX_KERNEL_SETS)
  if(NOT path IN_LIST _vox_shared AND (NOT VOX_PATHS OR path IN_LIST _vox_wanted))
    list(APPEND VOX_BUILT_SETS ${path})
    set(copy ${path})
    if(path IN_LIST VOX_CODE_PATHS)
      list(APPEND VOX_BUILT_PATHS ${path})
    endif()
  endif()
  set(lists _vox_set_list)
  if(path IN_LIST VOX_CODE_PATHS)
    list(APPEND lists _vox_path_list)
  endif()
  if(NOT path STREQUAL copy)
    list(TRANSFORM lists REPLACE "(_vox_)(.*)" "\\0;\\1borrowing_\\2")
  endif()
  foreach(list IN LISTS lists)
    string(APPEND ${list} " \\\n    X(${path}, ${copy}, __VA_ARGS__)")
  endforeach()
endforeach()
message(STATUS "Code paths: ${VOX_BUILT_PATHS}; this machine can run: ${VOX_RUNNABLE_PATHS}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/code_path_list.hpp.in
               ${PROJECT_BINARY_DIR}/generated/serv/code_path_list.hpp @ONLY)

# Checked kernels take minutes to compile, and all paths' are the same templates. So def's are checked for
# undefined behaviour, but for alignment and null in every element's access, and others for addresses, by
# calls. A family's VOX_UNCHECKED_KERNELS leaves its kernels out: those whose tests put every operand beside
# protected pages, and that take minutes each.
set(_vox_checked -O1 -fno-sanitize=undefined --param=asan-instrumentation-with-call-threshold=0)
set(_vox_checked_def -O1 -fno-sanitize=address,alignment,null)
set(_vox_unchecked -O1 -g0 -fno-sanitize=all)

# vox_add_kernels(<family> [SETS] <sources...>): compiles each kernel source once per path that is built, with
# SETS once per kernel set, and adds the objects to the library. In the source, VOX_KERNEL(<family>, <routine>)
# names the copy. A family's VOX_KERNEL_FLAGS come after those of the path.
function(vox_add_kernels family)
  cmake_parse_arguments(ARG "SETS" "" "" ${ARGN})
  set(copies ${VOX_BUILT_PATHS})
  if(ARG_SETS)
    set(copies ${VOX_BUILT_SETS})
  endif()
  foreach(path IN LISTS copies)
    set(target ${family}_kernels_${path})
    add_library(${target} OBJECT ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${target} PRIVATE vox_options)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O3> ${VOX_PATH_FLAGS_${path}}
      ${VOX_KERNEL_FLAGS})
    if(VOX_FUZZ)
      # checked throughout, as everything else that a fuzzer runs
    elseif(VOX_UNCHECKED_KERNELS AND VOX_SANITIZE MATCHES "address|undefined")
      target_compile_options(${target} PRIVATE ${_vox_unchecked})
    elseif(VOX_SANITIZE AND path STREQUAL "def")
      target_compile_options(${target} PRIVATE ${_vox_checked_def})
    elseif(VOX_SANITIZE)
      target_compile_options(${target} PRIVATE ${_vox_checked})
    endif()
    target_compile_definitions(${target} PRIVATE VOX_PATH=${path})
    set_property(GLOBAL APPEND PROPERTY VOX_OBJECTS ${target})
    set_property(GLOBAL APPEND PROPERTY VOX_KERNEL_OBJECTS ${target})
  endforeach()
endfunction()
