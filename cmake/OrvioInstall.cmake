# What is installed: the library with its headers, the program, the CMake package, the pkg-config files, and with
# ORVIO_BUNDLE_HDF5 the HDF5 in use. All of it can be moved as a whole. The components are those of the Debian packages.

include(CMakePackageConfigHelpers)
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/orvio")
set(private_folder "${CMAKE_INSTALL_LIBDIR}/orvio")
set(generated "${PROJECT_BINARY_DIR}/package")

# --- The library and the program. They find each other, and an HDF5 that comes along, wherever they are moved to. Any
# other HDF5 outside the system's folders is found at run time where it was found when building.
if(ORVIO_BUNDLE_HDF5)
  set_target_properties(orvio PROPERTIES INSTALL_RPATH "$ORIGIN/orvio")
else()
  set_target_properties(orvio PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
endif()
install(TARGETS orvio EXPORT orvio LIBRARY COMPONENT library NAMELINK_COMPONENT development)
foreach(folder "${PROJECT_SOURCE_DIR}/include" "${PROJECT_BINARY_DIR}/include")  # orvio_export.h is in the second
  install(DIRECTORY "${folder}/orvio" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
endforeach()

if(TARGET orv)
  file(RELATIVE_PATH from_bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
  set(places "$ORIGIN/${from_bin_to_lib}")
  if(ORVIO_BUNDLE_HDF5)
    list(APPEND places "$ORIGIN/${from_bin_to_lib}/orvio")
  else()
    set_target_properties(orv PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
  endif()
  set_target_properties(orv PROPERTIES INSTALL_RPATH "${places}")  # it looks at files with HDF5 itself, too
  install(TARGETS orv RUNTIME COMPONENT programs)
endif()

# --- HDF5. Its headers depend on the machine as its library does, so they stand beside it.
if(ORVIO_BUNDLE_HDF5)
  file(REAL_PATH "${OrvioHDF5_LIBRARY}" hdf5_library)
  get_filename_component(hdf5_file "${hdf5_library}" NAME)
  execute_process(COMMAND "${CMAKE_OBJDUMP}" -p "${hdf5_library}" OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
  if(NOT dynamic MATCHES "SONAME +([^ \n]+)")
    message(FATAL_ERROR "${hdf5_library} has no SONAME, so it cannot be installed with orvio. Use another HDF5 or "
      "-DORVIO_BUNDLE_HDF5=OFF.")
  endif()
  set(hdf5_soname "${CMAKE_MATCH_1}")
  find_file(ORVIO_HDF5_LICENCE COPYING REQUIRED NO_DEFAULT_PATH HINTS "${OrvioHDF5_INCLUDE_DIR}/../share"
    DOC "HDF5's licence, which has to go wherever its library goes")
  mark_as_advanced(ORVIO_HDF5_LICENCE)

  file(MAKE_DIRECTORY "${generated}")
  file(CREATE_LINK "${hdf5_file}" "${generated}/${hdf5_soname}" SYMBOLIC)
  file(CREATE_LINK "${hdf5_soname}" "${generated}/libhdf5.so" SYMBOLIC)
  file(GLOB hdf5_headers "${OrvioHDF5_INCLUDE_DIR}/H5*.h" "${OrvioHDF5_INCLUDE_DIR}/hdf5.h")
  install(FILES "${hdf5_library}" DESTINATION "${private_folder}" COMPONENT library)
  if(NOT hdf5_file STREQUAL hdf5_soname)
    install(FILES "${generated}/${hdf5_soname}" DESTINATION "${private_folder}" COMPONENT library)
  endif()
  install(FILES "${generated}/libhdf5.so" DESTINATION "${private_folder}" COMPONENT development)
  install(FILES ${hdf5_headers} DESTINATION "${private_folder}/include" COMPONENT development)
  install(FILES "${ORVIO_HDF5_LICENCE}" DESTINATION "${CMAKE_INSTALL_DOCDIR}" RENAME COPYING.hdf5 COMPONENT licence)
  # CMake does neither for files that are not its own targets.
  install(CODE "set(hdf5 \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${private_folder}/${hdf5_file}\")
    file(RPATH_REMOVE FILE \"\${hdf5}\")
    if(CMAKE_INSTALL_DO_STRIP)
      execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-unneeded \"\${hdf5}\" COMMAND_ERROR_IS_FATAL ANY)
    endif()" COMPONENT library)
endif()

# --- The CMake package.
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/orvioConfig.cmake.in" "${generated}/orvioConfig.cmake"
  INSTALL_DESTINATION "${package_folder}" PATH_VARS private_folder)
write_basic_package_version_file("${generated}/orvioConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
set(ORVIO_HDF5_FOLDER "${_orvio_hdf5_folder}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/FindOrvioHDF5.cmake" "${generated}/FindOrvioHDF5.cmake" @ONLY)

install(EXPORT orvio NAMESPACE orvio:: FILE orvioTargets.cmake DESTINATION "${package_folder}" COMPONENT development)
install(FILES "${generated}/orvioConfig.cmake" "${generated}/orvioConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT development)
if(NOT ORVIO_BUNDLE_HDF5)
  install(FILES "${generated}/FindOrvioHDF5.cmake" DESTINATION "${package_folder}" COMPONENT development)
endif()

# --- The pkg-config file. pkg-config resolves ${pcfiledir} itself: the file stays right wherever the installation is
# moved to. Hosts link HDF5 only if they call it.
file(RELATIVE_PATH ORVIO_PC_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ORVIO_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  string(PREPEND ORVIO_PC_PREFIX "\${pcfiledir}/")
endif()
set(ORVIO_PC_REQUIRES "Requires.private: hdf5 >= 1.14.5, hdf5 < 1.15\n")
set(ORVIO_PC_INCLUDE)
if(ORVIO_BUNDLE_HDF5)
  set(ORVIO_PC_REQUIRES)
  set(ORVIO_PC_INCLUDE " -I\${libdir}/orvio/include")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/orvio.pc.in" "${generated}/orvio.pc" @ONLY)
install(FILES "${generated}/orvio.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT licence)
