# One static library per layer folder, linked in one direction only:
#   common <- log <- synclink <- docactions <- overlay <- addin
# A folder's library links the one to its left, so an #include that points
# up the layers has nothing to link against (and tests/layers.sh refuses it).
#
# qsync_layer(<folder> [PURE <files>...] [WINDOWS <files>...] [BELOW <folder>])
#   PURE     platform-independent files, built everywhere
#   WINDOWS  the Win32 side, built for Windows only
#   BELOW    the layer this one builds on
function(qsync_layer folder)
  cmake_parse_arguments(ARG "" "BELOW" "PURE;WINDOWS" ${ARGN})
  set(sources ${ARG_PURE})
  if(WIN32)
    list(APPEND sources ${ARG_WINDOWS})
  endif()
  set(target qsync_${folder})
  if(sources)
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
    set(scope PUBLIC)
  else()
    # Nothing of this layer builds on this platform (yet).
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${CMAKE_SOURCE_DIR})
    set(scope INTERFACE)
  endif()
  if(ARG_BELOW)
    target_link_libraries(${target} ${scope} qsync_${ARG_BELOW})
  endif()
  # The platform-independent sources of every layer, with full paths, for
  # the instrumented copy the fuzz targets link.
  foreach(file ${ARG_PURE})
    set_property(GLOBAL APPEND PROPERTY QSYNC_PURE_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/${file})
  endforeach()
endfunction()
