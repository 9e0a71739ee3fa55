# Source sets shared by the engine, the tools and the fuzz targets, each taken
# from folders and a file-name pattern so that no file list is kept twice.
#
# ASHEN_CORE_SOURCES: the SDL-free core that the content tools and the fuzz
# targets link without the display, sound or window code:
#   - every source of src/base/ and src/resources/;
#   - every file-format module, wherever its subsystem lives: src/<folder>/*_file.cpp
#     (the map file in world/, the role file in characters/, the databases in
#     items/, the cursor and WAV files in media/, ...). A format module includes
#     only base/, resources/ and other format modules (the layering test checks it).
file(GLOB_RECURSE ASHEN_CORE_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/src/base/*.cpp
  ${CMAKE_SOURCE_DIR}/src/resources/*.cpp)
file(GLOB ASHEN_FORMAT_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*/*_file.cpp)
list(APPEND ASHEN_CORE_SOURCES ${ASHEN_FORMAT_SOURCES})
list(REMOVE_DUPLICATES ASHEN_CORE_SOURCES)
list(SORT ASHEN_CORE_SOURCES)

# ASHEN_ENGINE_SOURCES: every engine source under src/ except the two entry points.
file(GLOB_RECURSE ASHEN_ENGINE_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(FILTER ASHEN_ENGINE_SOURCES EXCLUDE REGEX "/src/main\\.cpp$|/src/launcher/")
list(SORT ASHEN_ENGINE_SOURCES)
