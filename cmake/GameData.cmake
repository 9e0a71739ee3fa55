# Assembles build/game from the staged outputs of every data step.
set(ASHEN_PACKS ini script role ui face items skill tiles)

# Text content (INI layouts, registries, scripts) is authored in UTF-8 with LF
# line ends under content/ini and content/script; the game reads GBK with CR LF.
file(GLOB_RECURSE ASHEN_INI_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/content/ini/*)
file(GLOB_RECURSE ASHEN_SCRIPT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/content/script/*)
if(TARGET textc)
  ashen_data_step(ini_text
    COMMAND $<TARGET_FILE:textc> ${CMAKE_SOURCE_DIR}/content/ini ${ASHEN_STAGE_DIR}/ini
    DEPENDS textc ${ASHEN_INI_SOURCES})
  if(IS_DIRECTORY ${CMAKE_SOURCE_DIR}/content/script)
    ashen_data_step(script_text
      COMMAND $<TARGET_FILE:textc> ${CMAKE_SOURCE_DIR}/content/script ${ASHEN_STAGE_DIR}/script
      DEPENDS textc ${ASHEN_SCRIPT_SOURCES})
  endif()
endif()

get_property(ASHEN_DATA_STAMPS GLOBAL PROPERTY ASHEN_DATA_STAMPS)
set(ASHEN_GAME_OUTPUTS)
if(TARGET vrn)
  foreach(pack ${ASHEN_PACKS})
    set(out ${ASHEN_GAME_DIR}/data/${pack}.vrn)
    add_custom_command(OUTPUT ${out}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${ASHEN_STAGE_DIR}/${pack} ${ASHEN_GAME_DIR}/data
      COMMAND $<TARGET_FILE:vrn> pack ${ASHEN_STAGE_DIR}/${pack} ${out}
      DEPENDS vrn ${ASHEN_DATA_STAMPS}
      COMMENT "Packing data/${pack}.vrn"
      VERBATIM)
    list(APPEND ASHEN_GAME_OUTPUTS ${out})
  endforeach()
endif()

set(ASHEN_LOOSE_STAMP ${ASHEN_STAGE_DIR}/loose.stamp)
add_custom_command(OUTPUT ${ASHEN_LOOSE_STAMP}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${ASHEN_STAGE_DIR}/loose
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${ASHEN_STAGE_DIR}/loose ${ASHEN_GAME_DIR}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${ASHEN_GAME_DIR}/saves ${ASHEN_GAME_DIR}/screenshot
          ${ASHEN_GAME_DIR}/sound ${ASHEN_GAME_DIR}/music ${ASHEN_GAME_DIR}/map ${ASHEN_GAME_DIR}/data
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/content/game.ini ${ASHEN_GAME_DIR}/game.ini
  COMMAND ${CMAKE_COMMAND} -E touch ${ASHEN_LOOSE_STAMP}
  DEPENDS ${ASHEN_DATA_STAMPS} ${CMAKE_SOURCE_DIR}/content/game.ini
  COMMENT "Copying loose game files"
  VERBATIM)
list(APPEND ASHEN_GAME_OUTPUTS ${ASHEN_LOOSE_STAMP})

# The font (Latin and CJK glyphs) and its licence, from Debian's fonts-wqy-microhei.
set(ASHEN_FONT_SRC /usr/share/fonts/truetype/wqy/wqy-microhei.ttc)
set(ASHEN_FONT_LICENSE /usr/share/doc/fonts-wqy-microhei/copyright)
add_custom_command(OUTPUT ${ASHEN_GAME_DIR}/data/seguibk.ttf
  COMMAND ${CMAKE_COMMAND} -E make_directory ${ASHEN_GAME_DIR}/data
  COMMAND ${CMAKE_COMMAND} -E copy ${ASHEN_FONT_SRC} ${ASHEN_GAME_DIR}/data/seguibk.ttf
  COMMAND ${CMAKE_COMMAND} -E copy ${ASHEN_FONT_LICENSE} ${ASHEN_GAME_DIR}/data/seguibk-LICENSE.txt
  DEPENDS ${ASHEN_FONT_SRC}
  VERBATIM)
list(APPEND ASHEN_GAME_OUTPUTS ${ASHEN_GAME_DIR}/data/seguibk.ttf)

add_custom_target(game_data ALL DEPENDS ${ASHEN_GAME_OUTPUTS})
get_property(ASHEN_DATA_TARGETS GLOBAL PROPERTY ASHEN_DATA_TARGETS)
if(ASHEN_DATA_TARGETS)
  add_dependencies(game_data ${ASHEN_DATA_TARGETS})
endif()
add_dependencies(ashen-oath game_data)
