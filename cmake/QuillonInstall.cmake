# Installation and export: find_package(Quillon) gives Quillon::quillon and Quillon::store.
include(CMakePackageConfigHelpers)
install(TARGETS quillon quillon_store EXPORT QuillonTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The image stack is loaded by its name, so whatever links the installed library must know where.
install(TARGETS quillon_images LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/quillon)
target_link_options(quillon INTERFACE
  "$<INSTALL_INTERFACE:-Wl,-rpath,$<INSTALL_PREFIX>/${CMAKE_INSTALL_LIBDIR}/quillon>")
install(EXPORT QuillonTargets NAMESPACE Quillon:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
configure_package_config_file(cmake/QuillonConfig.cmake.in ${PROJECT_BINARY_DIR}/QuillonConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillonConfig.cmake ${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
install(FILES cmake/QuillonDependencies.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)
install(DIRECTORY resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/quillon
  PATTERN README.md EXCLUDE PATTERN "*.py" EXCLUDE PATTERN icons.txt EXCLUDE)
