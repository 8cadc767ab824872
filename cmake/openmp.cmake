# VOX::openmp: LLVM's OpenMP runtime, called through its compiler interface (serv/parallel.cpp), so no compiler
# flag is needed and the library's code is the same with every compiler. This file is installed beside
# VOXConfig.cmake, since a program that links the static library needs the runtime too.
find_library(VOX_OPENMP_LIBRARY NAMES omp libomp.so.5
  PATHS /usr/lib/llvm-19/lib /usr/lib/llvm-18/lib /usr/lib/llvm-17/lib /usr/lib/llvm-16/lib
        /usr/lib/llvm-15/lib /usr/lib/llvm-14/lib)
mark_as_advanced(VOX_OPENMP_LIBRARY)
add_library(VOX::openmp UNKNOWN IMPORTED)
set_target_properties(VOX::openmp PROPERTIES IMPORTED_LOCATION "${VOX_OPENMP_LIBRARY}")
