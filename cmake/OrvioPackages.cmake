# Debian packages, one per component: the library, what is needed to build with it, and the program. scripts/package
# configures, builds and packs; CPack alone does so in a build folder that was configured with -DORVIO_PACKAGES=ON
# -DCMAKE_INSTALL_PREFIX=/usr.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvio)
set(CPACK_PACKAGE_VENDOR "The orvio developers")
set(CPACK_PACKAGE_CONTACT "The orvio developers <developers@orvio.invalid>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_PROGRAMS_DEPENDS library)
if(TARGET orv)
  list(APPEND CPACK_COMPONENTS_ALL programs)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)  # on the very version that it was built with
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE orvio)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)

# --- Names and descriptions: a summary in the first line, then paragraphs with a dot between them.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME "liborvio${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvio-dev)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME orv-tools)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION science)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(about "ORV files hold what a crash, structural or fluid solver leaves
behind, stored in HDF5: meshes, variables, states and their results.
.")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "simulation results in ORV files (shared library)
${about}
The library reads and writes them for C++ programs.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "simulation results in ORV files (development files)
${about}
Headers, and what CMake and pkg-config need to find the library.")
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION "simulation results in ORV files (program)
${about}
The program orv shows, checks and repairs them, and imports the results of
other programs.")

# --- Which HDF5. The one that comes along is in a package of ours; of the others dpkg-shlibdeps knows the packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src")
if(ORVIO_BUNDLE_HDF5)
  get_filename_component(hdf5_folder "${OrvioHDF5_LIBRARY}" DIRECTORY)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${hdf5_folder}")
else()
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libhdf5-dev (>= 1.14.5)")
endif()

# --- What dpkg does with the library: others who link it depend on its package, and the loader's cache is refreshed.
# CPack would also name the HDF5 that comes along to others.
set(debian "${PROJECT_BINARY_DIR}/debian")
file(WRITE "${debian}/shlibs" "liborvio ${PROJECT_VERSION_MAJOR} ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} "
  "(>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})\n")
file(WRITE "${debian}/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${debian}/shlibs;${debian}/triggers")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# --- Licences and the log of changes, where Debian has them. Whoever installs without packages has them elsewhere.
file(READ "${PROJECT_SOURCE_DIR}/LICENSE" copyright)
if(ORVIO_BUNDLE_HDF5)
  file(READ "${ORVIO_HDF5_LICENCE}" hdf5_licence)
  string(APPEND copyright "\n\nThe package ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} also holds the library of HDF5 "
    "${OrvioHDF5_VERSION}, and liborvio-dev its headers. Their licence:\n\n${hdf5_licence}")
endif()
file(WRITE "${debian}/copyright" "${copyright}")
file(ARCHIVE_CREATE OUTPUT "${debian}/changelog.gz" PATHS "${PROJECT_SOURCE_DIR}/CHANGELOG.md" FORMAT raw
  COMPRESSION GZip COMPRESSION_LEVEL 9 MTIME 0)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" name)
  install(FILES "${debian}/copyright" "${debian}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}" COMPONENT ${component}
    EXCLUDE_FROM_ALL)
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/liborvio-dev"
  COMPONENT development EXCLUDE_FROM_ALL PATTERN data EXCLUDE)

include(CPack)
