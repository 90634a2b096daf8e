# Manual pages and shell completions of orv. The program prints both itself: they say what it says.

set(ORVIO_BUILD_MAN AUTO CACHE STRING "Make the manual pages of orv with help2man: AUTO where it is installed, ON or OFF")
set_property(CACHE ORVIO_BUILD_MAN PROPERTY STRINGS AUTO ON OFF)

set(texts "${PROJECT_BINARY_DIR}/texts")
file(MAKE_DIRECTORY "${texts}/man" "${texts}/completions")  # what is not built yet installs as nothing

set(completions)
foreach(shell bash zsh fish)
  set(script "${texts}/completions/orv.${shell}")
  add_custom_command(OUTPUT "${script}" COMMAND orv completion ${shell} > "${script}" DEPENDS orv VERBATIM)
  list(APPEND completions "${script}")
endforeach()
add_custom_target(orv_completions ALL DEPENDS ${completions})
if(ORVIO_INSTALL)
  set(shells "${CMAKE_INSTALL_DATADIR}")
  install(FILES "${texts}/completions/orv.bash" DESTINATION "${shells}/bash-completion/completions" RENAME orv
    COMPONENT programs OPTIONAL)
  install(FILES "${texts}/completions/orv.zsh" DESTINATION "${shells}/zsh/site-functions" RENAME _orv
    COMPONENT programs OPTIONAL)
  install(FILES "${texts}/completions/orv.fish" DESTINATION "${shells}/fish/vendor_completions.d"
    COMPONENT programs OPTIONAL)
endif()

if(NOT ORVIO_BUILD_MAN)
  return()
endif()
find_program(ORVIO_HELP2MAN help2man)
mark_as_advanced(ORVIO_HELP2MAN)
if(NOT ORVIO_HELP2MAN)
  if(NOT ORVIO_BUILD_MAN STREQUAL AUTO)
    message(FATAL_ERROR "help2man is not installed. Install it, or leave the manual pages out with -DORVIO_BUILD_MAN=OFF.")
  endif()
  message(STATUS "help2man is not installed: no manual pages of orv")
  return()
endif()

# One page per command. Which there are, the program knows best.
set(pages_made "${texts}/man.stamp")
add_custom_command(OUTPUT "${pages_made}"
  COMMAND "${PROJECT_SOURCE_DIR}/scripts/man" "$<TARGET_FILE:orv>" "${PROJECT_VERSION}" "${texts}/man"
  COMMAND "${CMAKE_COMMAND}" -E touch "${pages_made}"
  DEPENDS orv "${PROJECT_SOURCE_DIR}/scripts/man" VERBATIM)
add_custom_target(orv_manual ALL DEPENDS "${pages_made}")
if(ORVIO_INSTALL)
  install(DIRECTORY "${texts}/man/" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT programs
    FILES_MATCHING PATTERN "*.1")
endif()
