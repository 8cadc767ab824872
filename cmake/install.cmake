# What `make install PREFIX=...` puts into the prefix. Nothing in it says where the prefix is, so it may be moved.
include(CMakePackageConfigHelpers)
set(vox_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VOX)
set(vox_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(vox_tools vox-info vox-run)

install(TARGETS vox vox_static ${vox_tools} vox-run-report
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/vox DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")

# The tools find the library beside them.
file(RELATIVE_PATH vox_lib_from_bin /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set_target_properties(${vox_tools} PROPERTIES INSTALL_RPATH "$ORIGIN/${vox_lib_from_bin}")
set_target_properties(vox-run-report PROPERTIES INSTALL_RPATH "$ORIGIN")

# find_package(VOX)
configure_package_config_file(cmake/VOXConfig.cmake.in ${PROJECT_BINARY_DIR}/VOXConfig.cmake
  INSTALL_DESTINATION ${vox_cmake_dir}
  PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VOXConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VOXConfig.cmake ${PROJECT_BINARY_DIR}/VOXConfigVersion.cmake
              ${PROJECT_SOURCE_DIR}/cmake/openmp.cmake
  DESTINATION ${vox_cmake_dir})

# pkg-config: vox for libvox.so; vox-static for libvox.a beside shared system libraries, which no flag of
# pkg-config asks for. The runtime goes by its file name, for which no development package is needed.
file(RELATIVE_PATH vox_prefix_from_pc /prefix/${vox_pkgconfig_dir} /prefix)
string(REGEX REPLACE "/$" "" vox_prefix_from_pc ${vox_prefix_from_pc})
file(REAL_PATH ${VOX_OPENMP_LIBRARY} vox_openmp_file)
get_filename_component(vox_openmp_file ${vox_openmp_file} NAME)
set(vox_static_libs "-l:${vox_openmp_file} -lm -ldl")
foreach(name vox vox-static)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${vox_pkgconfig_dir})
endforeach()
