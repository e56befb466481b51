# Rooms: folders of which each may include only those that it stands on. Every room is found through a
# folder of its own in the build tree, so that an #include of a room that is not named under USES does
# not compile.

# Lets `target` and all that link it include the headers of the folder `path`, written with that path.
function(korvane_own_headers target path)
  string(REPLACE "/" "-" doors "${path}")
  set(doors "${PROJECT_BINARY_DIR}/rooms/${doors}")
  get_filename_component(parent "${doors}/${path}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${path}" "${doors}/${path}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${doors}>")
endfunction()

# A room of a house: korvane_room(host/line FILES serial_line USES host/base Qt5::SerialPort) makes the
# target korvane_host_line of host/line/serial_line.cpp. Names with a slash under USES are rooms, which
# have to stand already; the others are targets.
function(korvane_room path)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "FILES;USES")
  string(REPLACE "/" "_" name "korvane_${path}")
  get_filename_component(folder "${path}" NAME)
  list(TRANSFORM room_FILES PREPEND "${folder}/")
  list(TRANSFORM room_FILES APPEND ".cpp")
  add_library(${name} OBJECT ${room_FILES})
  korvane_own_headers(${name} "${path}")
  foreach(used IN LISTS room_USES)
    if(used MATCHES "/")
      string(REPLACE "/" "_" used "korvane_${used}")
      if(NOT TARGET ${used})
        message(FATAL_ERROR "${path} stands on ${used}, which stands above it or nowhere")
      endif()
    endif()
    target_link_libraries(${name} PUBLIC ${used})
  endforeach()
  target_link_libraries(${name} PRIVATE korvane_warnings)
  # Default visibility: what a shared library of rooms exports is for its export list to say.
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET default)
endfunction()

# A static library of all the named rooms.
function(korvane_house name)
  list(TRANSFORM ARGN REPLACE "/" "_" OUTPUT_VARIABLE rooms)
  list(TRANSFORM rooms PREPEND "korvane_")
  add_library(${name} STATIC)
  target_link_libraries(${name} PUBLIC ${rooms})
endfunction()
