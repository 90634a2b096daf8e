# Installs BUILD, moves the result, and builds CONSUMER and the program of EXAMPLES against it by CMake and by
# pkg-config; the programs must run, and the example must print what the imported result holds.

file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    string(JOIN " " command ${ARGN})
    message(FATAL_ERROR "failed (${status}): ${command}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/first")
file(RENAME "${SCRATCH}/first" "${SCRATCH}/moved")
set(prefix "${SCRATCH}/moved")
if(EXISTS "${prefix}/bin/orv")
  run("${prefix}/bin/orv" --help)
endif()

run("${CMAKE_COMMAND}" -G Ninja -S "${CONSUMER}" -B "${SCRATCH}/cmake" "-DCMAKE_CXX_COMPILER=${COMPILER}"
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DHDF5_ROOT=${HDF5_ROOT}" "-DEXAMPLES=${EXAMPLES}")
run("${CMAKE_COMMAND}" --build "${SCRATCH}/cmake")
run("${SCRATCH}/cmake/consumer")
if(EXISTS "${prefix}/bin/orv")
  run("${prefix}/bin/orv" import "${EXAMPLES}/data/plate_impact.frd.gz" "${SCRATCH}/plate.orv")
  run("${SCRATCH}/cmake/read_values" "${SCRATCH}/plate.orv")
  string(FIND "${output}" "\n1.35936e-07 -4.97746e-06 -5.76251\n" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "the example did not print the displacement of the middle of the plate:\n${output}")
  endif()
endif()

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig:${HDF5_LIBRARIES}/pkgconfig:$ENV{PKG_CONFIG_PATH}")
run(pkg-config --cflags --libs orvio)
separate_arguments(flags UNIX_COMMAND "${output}")
run("${COMPILER}" -std=c++17 "${CONSUMER}/main.cpp" -o "${SCRATCH}/by_pkg_config" ${flags}
  "-Wl,-rpath,${prefix}/${LIBDIR}")
run("${SCRATCH}/by_pkg_config")

file(REMOVE_RECURSE "${SCRATCH}")
