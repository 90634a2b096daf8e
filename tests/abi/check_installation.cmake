# Installs BUILD, moves the result, and builds a copy of EXAMPLES against it by CMake and by pkg-config, as C++17 and
# without a warning. The programs must write what they are to write, and print what the files hold.

include("${CMAKE_CURRENT_LIST_DIR}/run.cmake")

run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/first")
file(RENAME "${SCRATCH}/first" "${SCRATCH}/moved")
set(prefix "${SCRATCH}/moved")
if(EXISTS "${prefix}/bin/orv")
  run("${prefix}/bin/orv" --help)
endif()

# Every public header is there, in its folder.
file(GLOB_RECURSE headers RELATIVE "${HEADERS}" "${HEADERS}/*.h" "${HEADERS}/*.hpp")
foreach(header IN LISTS headers ITEMS orvio/orvio_export.h)
  if(NOT EXISTS "${prefix}/include/${header}")
    message(FATAL_ERROR "${header} is not installed")
  endif()
endforeach()

# Stresses of the two shells in their first layer, then those of an imported result.
function(expect_values program file text)
  run("${program}" "${file}")
  string(FIND "${output}" "${text}" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "${program} ${file} did not print \"${text}\":\n${output}")
  endif()
endfunction()

# Runs the examples, which are in a folder.
function(use_examples folder)
  foreach(writer write_model_classes write_model)
    run("${folder}/${writer}" "${SCRATCH}/model.orv")
    foreach(reader read_values read_values_classes)
      expect_values("${folder}/${reader}" "${SCRATCH}/model.orv" "11 200\n12 212\n")
    endforeach()
  endforeach()
  run("${folder}/history" "${SCRATCH}/model.orv" STRESS_SXX 12)
  if(NOT output STREQUAL "time STRESS_SXX@1 STRESS_SXX@2\n0.5 112 118\n1 212 218\n")
    message(FATAL_ERROR "history printed of the model:\n${output}")
  endif()
endfunction()

file(COPY "${EXAMPLES}/" DESTINATION "${SCRATCH}/examples" FILES_MATCHING PATTERN "*.cpp" PATTERN "CMakeLists.txt"
  PATTERN data EXCLUDE)
set(warnings -Wall -Wextra -Werror)
list(JOIN warnings " " flags)
run("${CMAKE_COMMAND}" -G Ninja -S "${SCRATCH}/examples" -B "${SCRATCH}/cmake" "-DCMAKE_CXX_COMPILER=${COMPILER}"
  "-DCMAKE_PREFIX_PATH=${prefix}" "-DHDF5_ROOT=${HDF5_ROOT}" -DCMAKE_CXX_STANDARD=17 -DCMAKE_CXX_EXTENSIONS=OFF
  "-DCMAKE_CXX_FLAGS=${flags}")
run("${CMAKE_COMMAND}" --build "${SCRATCH}/cmake")
use_examples("${SCRATCH}/cmake")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig:${HDF5_LIBRARIES}/pkgconfig:$ENV{PKG_CONFIG_PATH}")
run(pkg-config --cflags --libs orvio)
separate_arguments(flags UNIX_COMMAND "${output}")
file(MAKE_DIRECTORY "${SCRATCH}/by_pkg_config")
foreach(example read_values write_model history read_values_classes write_model_classes)
  run("${COMPILER}" -std=c++17 ${warnings} "${SCRATCH}/examples/${example}.cpp" -o "${SCRATCH}/by_pkg_config/${example}"
    ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")
endforeach()
use_examples("${SCRATCH}/by_pkg_config")

if(EXISTS "${prefix}/bin/orv")
  run("${prefix}/bin/orv" values "${SCRATCH}/model.orv" --var STRESS_SXX --states last --csv)
  if(NOT output STREQUAL "id,layer,STRESS_SXX [MPa]\n11,1,200\n11,2,206\n12,1,212\n12,2,218\n")
    message(FATAL_ERROR "orv values printed of the model:\n${output}")
  endif()
  run("${prefix}/bin/orv" import "${EXAMPLES}/data/plate_impact.frd.gz" "${SCRATCH}/plate.orv")
  expect_values("${SCRATCH}/cmake/read_values" "${SCRATCH}/plate.orv" "\n771 232.128\n")
endif()

file(REMOVE_RECURSE "${SCRATCH}")
