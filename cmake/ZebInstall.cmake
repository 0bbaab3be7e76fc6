# SPDX-License-Identifier: Apache-2.0
# Install rules: headers, both libraries, a CMake package (find_package(zebcv)
# gives zebcv::zebcv and zebcv::zebcore) and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS zebcv zebcv_static zebcore EXPORT zebcvTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT zebcvTargets NAMESPACE zebcv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zebcv)

configure_package_config_file(cmake/zebcvConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/zebcvConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zebcv)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/zebcvConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zebcvConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/zebcvConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zebcv)

install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

configure_file(cmake/zebcv.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zebcv.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zebcv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
