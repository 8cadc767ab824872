# vox_openmp: LLVM's OpenMP runtime, called through its compiler interface (serv/parallel.cpp), so no
# compiler flag is needed and the library's code is the same with every compiler.
find_library(VOX_OPENMP_LIBRARY NAMES omp libomp.so.5
  PATHS /usr/lib/llvm-19/lib /usr/lib/llvm-18/lib /usr/lib/llvm-17/lib /usr/lib/llvm-16/lib
        /usr/lib/llvm-15/lib /usr/lib/llvm-14/lib
  REQUIRED)
add_library(vox_openmp UNKNOWN IMPORTED)
set_target_properties(vox_openmp PROPERTIES IMPORTED_LOCATION ${VOX_OPENMP_LIBRARY})
