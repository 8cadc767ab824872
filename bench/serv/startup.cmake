# The three programs of startup.cpp; --no-as-needed keeps the libraries that nothing calls.
add_executable(startup_empty startup_empty.c)
add_executable(startup_openmp startup_empty.c)
target_link_options(startup_openmp PRIVATE -Wl,--no-as-needed)
target_link_libraries(startup_openmp PRIVATE VOX::openmp)
add_executable(startup_vox startup_empty.c)
target_link_options(startup_vox PRIVATE -Wl,--no-as-needed)
target_link_libraries(startup_vox PRIVATE vox)
add_executable(bench_startup startup.cpp)
target_link_libraries(bench_startup PRIVATE vox_host_options)
target_compile_definitions(bench_startup PRIVATE
  STARTUP_EMPTY="$<TARGET_FILE:startup_empty>"
  STARTUP_OPENMP="$<TARGET_FILE:startup_openmp>"
  STARTUP_VOX="$<TARGET_FILE:startup_vox>")
add_dependencies(bench_startup startup_empty startup_openmp startup_vox)
