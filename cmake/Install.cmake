# cmake --install installs the programs and manuals; cpack builds a Debian package from them.

include(GNUInstallDirs)
# Debian wants manuals and changelogs compressed, without the time of the build in them.
function(nerix_install_compressed source name destination)
  set(compressed ${PROJECT_BINARY_DIR}/install/${name}.gz)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/install)
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  install(FILES ${compressed} DESTINATION ${destination})
endfunction()

install(TARGETS Executables_NerixVerifierHash RUNTIME)
nerix_install_compressed(${PROJECT_SOURCE_DIR}/docs/NerixVerifierHash.1 NerixVerifierHash.1 ${CMAKE_INSTALL_MANDIR}/man1)
set(NERIX_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
if(NERIX_HOST_PLATFORM)
  install(TARGETS Executables_NerixHost RUNTIME)
  nerix_install_compressed(${PROJECT_SOURCE_DIR}/docs/NerixHost.1 NerixHost.1 ${CMAKE_INSTALL_MANDIR}/man1)
  # bash-completion and fish look for a file named after the program.
  foreach(program IN ITEMS NerixHost NerixVerifierHash)
    install(FILES docs/NerixHost.completion DESTINATION ${NERIX_COMPLETIONS} RENAME ${program})
    install(FILES docs/NerixHost.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
      RENAME ${program}.fish)
  endforeach()
  # Debian's zsh looks in site-functions below /usr/local, in vendor-completions below /usr.
  foreach(directory IN ITEMS site-functions vendor-completions)
    install(FILES docs/NerixHost.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${directory} RENAME _NerixHost)
  endforeach()
endif()
set(CPACK_PACKAGE_NAME nerix-verifier-hash)
set(NERIX_DOCUMENTS ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_PACKAGE_NAME})
install(FILES README.md docs/copyright DESTINATION ${NERIX_DOCUMENTS})
# Where the README looks for them.
install(DIRECTORY docs/ DESTINATION ${NERIX_DOCUMENTS}/docs FILES_MATCHING PATTERN "*.md")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Fold a file tree into one 64-bit value")
# Library packages are renamed between releases, so our package is valid only for the release it was built on.
cmake_host_system_information(RESULT NERIX_RELEASE QUERY DISTRIB_INFO)
set(CPACK_PACKAGE_DESCRIPTION
  "Compares two installations by one value and, when they differ, entry by entry.\nBuilt on and for ${NERIX_RELEASE_PRETTY_NAME}.")
set(CPACK_DEBIAN_PACKAGE_RELEASE "1~${NERIX_RELEASE_ID}${NERIX_RELEASE_VERSION_ID}")
set(NERIX_PACKAGE_CONTACT "Nerix developers <developers@nerix.invalid>" CACHE STRING "Who answers for the Debian package")
set(CPACK_PACKAGE_CONTACT ${NERIX_PACKAGE_CONTACT})
configure_file(docs/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
nerix_install_compressed(${PROJECT_BINARY_DIR}/changelog changelog.Debian ${NERIX_DOCUMENTS})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
if(NOT CMAKE_CROSSCOMPILING)
  # Derive the dependencies from the binaries.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  # Label the package for the target architecture; the build machine's packages cannot tell us the target's dependencies.
  set(NERIX_MACHINE ${CMAKE_CXX_COMPILER_TARGET}) # clang -dumpmachine would report the build machine
  if(NOT NERIX_MACHINE)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -dumpmachine OUTPUT_VARIABLE NERIX_MACHINE OUTPUT_STRIP_TRAILING_WHITESPACE)
  endif()
  execute_process(COMMAND dpkg-architecture -t${NERIX_MACHINE} -qDEB_HOST_ARCH
    OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
    message(WARNING "no dpkg-architecture, or it does not know ${NERIX_MACHINE}: "
      "cpack would label the package for this machine; set CPACK_DEBIAN_PACKAGE_ARCHITECTURE")
  endif()
endif()
include(CPack)
