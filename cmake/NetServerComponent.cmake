# netserver_component(NAME SOURCES ... [DIRS ...] [USES ...] [LIBRARIES ...])
#
# A component is a folder whose objects end up in the netserver library. It sees its own headers (the folder and DIRS
# below it), the public headers, and the headers of the components it USES with all that those use; an include of
# anything else does not compile. LIBRARIES are third-party targets.
set(NETSERVER_COMPONENTS "" CACHE INTERNAL "components of the netserver library")

function(netserver_component name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DIRS;USES;LIBRARIES")
  add_library(${name} OBJECT ${arg_SOURCES})
  target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  foreach(dir IN LISTS arg_DIRS)
    target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/${dir}")
  endforeach()
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE netserver_options ${arg_LIBRARIES})
  set(components ${NETSERVER_COMPONENTS} ${name})
  set(NETSERVER_COMPONENTS "${components}" CACHE INTERNAL "components of the netserver library")
endfunction()
