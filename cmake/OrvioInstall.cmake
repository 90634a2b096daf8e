# The CMake package and the pkg-config file, so that others find what was installed. Both can be moved with the rest.

include(CMakePackageConfigHelpers)
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/orvio")
set(generated "${PROJECT_BINARY_DIR}/package")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/orvioConfig.cmake.in" "${generated}/orvioConfig.cmake"
  INSTALL_DESTINATION "${package_folder}")
# Before 1.0 a new minor version may break what was built with an older one.
write_basic_package_version_file("${generated}/orvioConfigVersion.cmake" COMPATIBILITY SameMinorVersion)

set(ORVIO_HDF5_FOLDER "${_orvio_hdf5_folder}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/FindOrvioHDF5.cmake" "${generated}/FindOrvioHDF5.cmake" @ONLY)

# pkg-config resolves ${pcfiledir} itself: the file stays right wherever the installation is moved to.
file(RELATIVE_PATH ORVIO_PC_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ORVIO_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  string(PREPEND ORVIO_PC_PREFIX "\${pcfiledir}/")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/orvio.pc.in" "${generated}/orvio.pc" @ONLY)

install(EXPORT orvio NAMESPACE orvio:: FILE orvioTargets.cmake DESTINATION "${package_folder}")
install(FILES "${generated}/orvioConfig.cmake" "${generated}/orvioConfigVersion.cmake"
  "${generated}/FindOrvioHDF5.cmake" DESTINATION "${package_folder}")
install(FILES "${generated}/orvio.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
