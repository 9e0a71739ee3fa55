# Helpers for content tools and data steps.
#
# ashen_tool(<name> <sources...>): an optimised executable in build/bin linked
# against the SDL-free core.
function(ashen_tool name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ashen_core_tools)
  target_compile_options(${name} PRIVATE ${ASHEN_WARNINGS} -O2)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${ASHEN_BIN_DIR})
endfunction()

# ashen_data_step(<name> COMMAND <cmd...> DEPENDS <files/targets...>)
# Runs the command when a dependency changes and records a stamp; every stamp is a
# dependency of the game data. Generators write into ${ASHEN_STAGE_DIR}:
#   stage/<pack>/...   for pack in ini script role ui face items skill tiles
#                      (each folder becomes the archive data/<pack>.vrn)
#   stage/loose/...    copied as is into the game folder (data/, map/, sound/, music/)
function(ashen_data_step name)
  cmake_parse_arguments(S "" "" "COMMAND;DEPENDS" ${ARGN})
  set(stamp ${ASHEN_STAGE_DIR}/stamps/${name}.stamp)
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${ASHEN_STAGE_DIR}/stamps
    COMMAND ${S_COMMAND}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${S_DEPENDS}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    COMMENT "Generating game data: ${name}"
    VERBATIM)
  # A target per step lets the game data (defined in another directory) order
  # itself after the step; the stamp file then carries the file-level dependency.
  add_custom_target(data_${name} DEPENDS ${stamp})
  set_property(GLOBAL APPEND PROPERTY ASHEN_DATA_STAMPS ${stamp})
  set_property(GLOBAL APPEND PROPERTY ASHEN_DATA_TARGETS data_${name})
endfunction()
