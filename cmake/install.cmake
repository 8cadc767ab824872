# What `make install PREFIX=...` puts into the prefix.
install(TARGETS vox vox_static vox-info
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/vox DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The tools find the library beside them, wherever the prefix is moved.
file(RELATIVE_PATH vox_lib_from_bin /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set_target_properties(vox-info PROPERTIES INSTALL_RPATH "$ORIGIN/${vox_lib_from_bin}")
