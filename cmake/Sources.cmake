# Source sets shared by the engine, the tools and the fuzz targets, each taken
# from whole folders so that no file list is kept twice.
#
# ASHEN_CORE_SOURCES: the SDL-free core (base/ and resources/), which the content
# tools and the fuzz targets link without the display, sound or window code.
file(GLOB_RECURSE ASHEN_CORE_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/src/base/*.cpp
  ${CMAKE_SOURCE_DIR}/src/resources/*.cpp)
list(SORT ASHEN_CORE_SOURCES)

# ASHEN_ENGINE_SOURCES: every engine source under src/ except the two entry points.
file(GLOB_RECURSE ASHEN_ENGINE_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(FILTER ASHEN_ENGINE_SOURCES EXCLUDE REGEX "/src/main\\.cpp$|/src/launcher/")
list(SORT ASHEN_ENGINE_SOURCES)
