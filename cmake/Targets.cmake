# One target per folder, named after its path: Common/Utils/Errors is Common_Utils_Errors.

# nerix_library(NAME SOURCES file... [LINKS target...])
# A folder's library. It never links the platform: programs link HostPlatform (or the device's libraries),
# unit tests link Tests/Fakes in its place.
function(nerix_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC nerix_settings ${ARG_LINKS} PRIVATE nerix_warnings)
endfunction()

# nerix_program(NAME SOURCES file... [LINKS target...]) A folder's program; the executable is named after the last part of
# the path.
function(nerix_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set_target_properties(${name} PROPERTIES OUTPUT_NAME ${folder})
  target_link_libraries(${name} PRIVATE nerix_settings nerix_warnings ${ARG_LINKS})
  if(NERIX_HOST_PLATFORM)
    target_link_libraries(${name} PRIVATE HostPlatform)
  else()
    target_link_libraries(${name} PRIVATE ${NERIX_PLATFORM_LIBRARIES})
  endif()
endfunction()
