# vox_options: how every object of the library is compiled. vox_host_options: the same warnings for
# tests, tools and benchmarks, which may use the C++ library, exceptions and RTTI.
add_library(vox_host_options INTERFACE)
target_compile_features(vox_host_options INTERFACE cxx_std_20 c_std_99)
target_compile_options(vox_host_options INTERFACE
  -Wall -Wextra -Wshadow -Wpointer-arith -Wcast-qual -Wwrite-strings
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
  $<$<BOOL:${VOX_WERROR}>:-Werror>)
target_include_directories(vox_host_options INTERFACE
  ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/generated)

add_library(vox_options INTERFACE)
target_link_libraries(vox_options INTERFACE vox_host_options)
target_compile_options(vox_options INTERFACE
  -fPIC -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden -fno-exceptions -fno-rtti -fno-threadsafe-statics>
  -fno-math-errno -ffunction-sections -fdata-sections
  # A switch over the code paths must stay code: as a table of addresses it would cost the dynamic
  # linker one relocation per routine and path when the library is loaded.
  $<$<CXX_COMPILER_ID:GNU>:-fno-tree-switch-conversion> $<$<CXX_COMPILER_ID:Clang>:-fno-jump-tables>)

# Sanitizers apply to the library, its tests and its tools alike.
if(VOX_SANITIZE)
  add_compile_options(-fsanitize=${VOX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VOX_SANITIZE})
endif()
if(VOX_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
