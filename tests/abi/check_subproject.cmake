# Has orvio as a part of the host in CONSUMER, BY add_subdirectory or FetchContent, from its sources in ORVIO. Shown is
# that the host configures and generates with nothing of its own changed, that its source compiles as C++17 against the
# sources' headers, that its link has the library in it, and that nothing is installed unless asked for. The library is
# not compiled again, which takes minutes; with ORVIO_TEST_WHOLE_SUBPROJECT in the environment it is, and the host runs.

include("${CMAKE_CURRENT_LIST_DIR}/run.cmake")

function(expect_match text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "${what}:\n${text}")
  endif()
endfunction()

set(build "${SCRATCH}/build")
run("${CMAKE_COMMAND}" -G Ninja -S "${CONSUMER}" -B "${build}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DBY=${BY}"
  "-DORVIO=${ORVIO}" "-DHDF5_ROOT=${HDF5_ROOT}")

# A host that installs gets what it installs itself. Without any rule CMake writes the log of its files alone.
run("${CMAKE_COMMAND}" --install "${build}" --prefix "${SCRATCH}/installed")
if(EXISTS "${SCRATCH}/installed")
  message(FATAL_ERROR "orvio installs what the host has not asked for")
endif()

run("${CMAKE_COMMAND}" --build "${build}" --target CMakeFiles/consumer.dir/main.cpp.o)
run("${NINJA}" -C "${build}" -t commands consumer)
expect_match("${output}" "-std=c\\+\\+17 [^\n]*consumer.dir/main.cpp.o" "the host is not compiled as it asks for")
expect_match("${output}" "-std=c\\+\\+20 [^\n]*filer_lifecycle.cpp.o" "the library is not compiled as it has to be")
expect_match("${output}" "-o consumer [^\n]*liborvio\\.so" "the host does not link the library")
if(DEFINED ENV{ORVIO_TEST_WHOLE_SUBPROJECT})
  run("${CMAKE_COMMAND}" --build "${build}")
  run("${build}/consumer")
endif()

run("${CMAKE_COMMAND}" -DORVIO_INSTALL=ON "${build}")
file(GLOB_RECURSE scripts "${build}/cmake_install.cmake")
set(rules)
foreach(script IN LISTS scripts)
  file(READ "${script}" text)
  string(APPEND rules "${text}")
endforeach()
expect_match("${rules}" "liborvio\\.so\\.1" "the host asks for the installation of orvio and does not get it")
file(REMOVE_RECURSE "${SCRATCH}")
