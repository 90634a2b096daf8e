# Finds the HDF5 that orvio is built on: the C library, shared, serial, 1.14.5 or a later 1.14. Serves orvio's own build
# and, installed beside orvioConfig.cmake, every project that uses orvio.
#
# Looks where CMake looks for everything (HDF5_ROOT, CMAKE_PREFIX_PATH, the system), then in the user's cache folder,
# where scripts/setup keeps the one it builds. What is there but does not fit is passed over, and named in
# OrvioHDF5_NOT_FOUND_MESSAGE if nothing else turns up.
#
# Defines the imported targets orvio::hdf5 and, for who calls none of its functions, orvio::hdf5_headers, OrvioHDF5_FOUND and OrvioHDF5_VERSION.
# HDF5's own package files are not used: some distributions ship none, and CMake's FindHDF5 settles for the first
# version it meets.

set(_orvio_hdf5_oldest 1.14.5)
set(_orvio_hdf5_first_refused 1.15)

# The cache folder that scripts/setup fills. The name is fixed in the installed copy of this file.
set(_orvio_hdf5_folder "@ORVIO_HDF5_FOLDER@")
if(_orvio_hdf5_folder MATCHES "^@")
  file(SHA256 "${CMAKE_CURRENT_LIST_DIR}/hdf5-recipe.txt" _orvio_hdf5_key)
  string(SUBSTRING "${_orvio_hdf5_key}" 0 12 _orvio_hdf5_key)
  file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/hdf5-recipe.txt" _orvio_hdf5_folder REGEX "^version ")
  string(REPLACE "version " "hdf5-" _orvio_hdf5_folder "${_orvio_hdf5_folder}-${_orvio_hdf5_key}")
endif()
if(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
  set(_orvio_hdf5_cache "$ENV{XDG_CACHE_HOME}/orvio/${_orvio_hdf5_folder}")
else()
  set(_orvio_hdf5_cache "$ENV{HOME}/.cache/orvio/${_orvio_hdf5_folder}")
endif()

# Sets `result` in the caller to "" if the HDF5 of this header and library will do, otherwise to the reason why not, and
# OrvioHDF5_VERSION to its version.
function(_orvio_judge_hdf5 include library result)
  if(NOT include OR NOT library)
    set(${result} "none" PARENT_SCOPE)
    return()
  endif()
  set(version)
  foreach(part MAJOR MINOR RELEASE)
    file(STRINGS "${include}/H5public.h" line REGEX "^#define H5_VERS_${part}[ \t]+[0-9]+")
    string(REGEX REPLACE "^#define H5_VERS_${part}[ \t]+([0-9]+).*" "\\1" number "${line}")
    list(APPEND version "${number}")
  endforeach()
  string(REPLACE ";" "." version "${version}")
  set(OrvioHDF5_VERSION "${version}" PARENT_SCOPE)
  set(parallel)
  if(EXISTS "${include}/H5pubconf.h")
    file(STRINGS "${include}/H5pubconf.h" parallel REGEX "^#define H5_HAVE_PARALLEL[ \t]+1")
  endif()
  if(version VERSION_LESS _orvio_hdf5_oldest OR NOT version VERSION_LESS _orvio_hdf5_first_refused)
    set(${result} "version ${version} in ${include}" PARENT_SCOPE)
  elseif(parallel)
    set(${result} "the MPI build ${version} in ${include}" PARENT_SCOPE)
  elseif(library MATCHES "\\.a$")
    set(${result} "only a static library, ${library}" PARENT_SCOPE)
  else()
    set(${result} "" PARENT_SCOPE)
  endif()
endfunction()

# An old build folder may remember an HDF5 that is gone.
if(OrvioHDF5_INCLUDE_DIR AND NOT (EXISTS "${OrvioHDF5_INCLUDE_DIR}/H5public.h" AND EXISTS "${OrvioHDF5_LIBRARY}"))
  unset(OrvioHDF5_INCLUDE_DIR CACHE)
  unset(OrvioHDF5_LIBRARY CACHE)
endif()
find_path(OrvioHDF5_INCLUDE_DIR H5public.h
  HINTS "${HDF5_ROOT}" ENV HDF5_ROOT PATH_SUFFIXES include hdf5/serial include/hdf5/serial)
find_library(OrvioHDF5_LIBRARY NAMES hdf5 hdf5_serial
  HINTS "${HDF5_ROOT}" ENV HDF5_ROOT PATH_SUFFIXES lib lib64 hdf5/serial)
_orvio_judge_hdf5("${OrvioHDF5_INCLUDE_DIR}" "${OrvioHDF5_LIBRARY}" _orvio_hdf5_refused)

if(_orvio_hdf5_refused)
  set(_orvio_hdf5_usual_places "${_orvio_hdf5_refused}")
  unset(OrvioHDF5_INCLUDE_DIR CACHE)
  unset(OrvioHDF5_LIBRARY CACHE)
  find_path(OrvioHDF5_INCLUDE_DIR H5public.h PATHS "${_orvio_hdf5_cache}/include" NO_DEFAULT_PATH)
  find_library(OrvioHDF5_LIBRARY hdf5 PATHS "${_orvio_hdf5_cache}/lib" NO_DEFAULT_PATH)
  _orvio_judge_hdf5("${OrvioHDF5_INCLUDE_DIR}" "${OrvioHDF5_LIBRARY}" _orvio_hdf5_refused)
  if(_orvio_hdf5_refused)
    # Forgotten, so that the next run looks again instead of remembering what was refused.
    unset(OrvioHDF5_INCLUDE_DIR CACHE)
    unset(OrvioHDF5_LIBRARY CACHE)
  endif()
endif()

set(OrvioHDF5_FOUND FALSE)
if(_orvio_hdf5_refused)
  set(OrvioHDF5_NOT_FOUND_MESSAGE
    "orvio needs HDF5 ${_orvio_hdf5_oldest} or a later 1.14 (C library, shared, serial).\n"
    "  In the usual places: ${_orvio_hdf5_usual_places}. In ${_orvio_hdf5_cache}: none.\n"
    "  Run scripts/setup of orvio, which builds it once, or install it and name its folder with -DHDF5_ROOT=...")
  string(REPLACE ";" "" OrvioHDF5_NOT_FOUND_MESSAGE "${OrvioHDF5_NOT_FOUND_MESSAGE}")
  if(OrvioHDF5_FIND_REQUIRED)
    message(FATAL_ERROR "${OrvioHDF5_NOT_FOUND_MESSAGE}")
  endif()
else()
  set(OrvioHDF5_FOUND TRUE)
  if(NOT TARGET orvio::hdf5)
    add_library(orvio::hdf5 SHARED IMPORTED)
    set_target_properties(orvio::hdf5 PROPERTIES
      IMPORTED_LOCATION "${OrvioHDF5_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${OrvioHDF5_INCLUDE_DIR}")
    add_library(orvio::hdf5_headers INTERFACE IMPORTED)
    set_target_properties(orvio::hdf5_headers PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${OrvioHDF5_INCLUDE_DIR}")
  endif()
  if(NOT OrvioHDF5_FIND_QUIETLY AND NOT OrvioHDF5_REPORTED STREQUAL OrvioHDF5_LIBRARY)
    message(STATUS "HDF5 ${OrvioHDF5_VERSION}: ${OrvioHDF5_LIBRARY}")
    set(OrvioHDF5_REPORTED "${OrvioHDF5_LIBRARY}" CACHE INTERNAL "the HDF5 that was last told of")
  endif()
endif()
mark_as_advanced(OrvioHDF5_INCLUDE_DIR OrvioHDF5_LIBRARY)
