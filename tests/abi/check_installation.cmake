# Installs BUILD, moves the result, and builds CONSUMER and the program of EXAMPLES against it by CMake and by
# pkg-config; the programs must run, and the examples must print what the files hold.

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

# Stresses of the two shells in their first layer, then those of an imported result.
function(expect_values file text)
  run("${SCRATCH}/cmake/read_values" "${file}")
  string(FIND "${output}" "${text}" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "read_values ${file} did not print \"${text}\":\n${output}")
  endif()
endfunction()
run("${SCRATCH}/cmake/write_model" "${SCRATCH}/model.orv")
expect_values("${SCRATCH}/model.orv" "11 200\n12 212\n")
if(EXISTS "${prefix}/bin/orv")
  run("${prefix}/bin/orv" values "${SCRATCH}/model.orv" --var STRESS_SXX --states last --csv)
  if(NOT output STREQUAL "id,layer,STRESS_SXX\n11,1,200\n11,2,206\n12,1,212\n12,2,218\n")
    message(FATAL_ERROR "orv values printed of the model:\n${output}")
  endif()
  run("${prefix}/bin/orv" import "${EXAMPLES}/data/plate_impact.frd.gz" "${SCRATCH}/plate.orv")
  expect_values("${SCRATCH}/plate.orv" "\n771 232.128\n")
endif()

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig:${HDF5_LIBRARIES}/pkgconfig:$ENV{PKG_CONFIG_PATH}")
run(pkg-config --cflags --libs orvio)
separate_arguments(flags UNIX_COMMAND "${output}")
run("${COMPILER}" -std=c++17 "${CONSUMER}/main.cpp" -o "${SCRATCH}/by_pkg_config" ${flags}
  "-Wl,-rpath,${prefix}/${LIBDIR}")
run("${SCRATCH}/by_pkg_config")

file(REMOVE_RECURSE "${SCRATCH}")
