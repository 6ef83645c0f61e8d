# netserver_library(NAME OBJECTS ... HEADERS DIR EXPORTS FILE [EXPORT_NAME NAME] [USES ...] [LIBRARIES ...])
#
# A library of the project, of both kinds from the same objects: NAME-static and NAME-shared, installed under one file
# name. NAME itself is the kind that BUILD_SHARED_LIBS chooses. HEADERS is the folder of the public headers, EXPORTS the
# linker's list of what a program can reach in the shared library. USES are other libraries of the project, whose
# headers and names users get too; LIBRARIES are third-party targets.
function(netserver_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "HEADERS;EXPORTS;EXPORT_NAME" "OBJECTS;USES;LIBRARIES")
  set(export_name "${name}")
  if(arg_EXPORT_NAME)
    set(export_name "${arg_EXPORT_NAME}")
  endif()
  set(objects "")
  foreach(object IN LISTS arg_OBJECTS)
    list(APPEND objects $<TARGET_OBJECTS:${object}>)
  endforeach()

  foreach(kind static shared)
    set(target ${name}-${kind})
    string(TOUPPER ${kind} KIND)
    add_library(${target} ${KIND} ${objects})
    add_library(NetServer::${export_name}-${kind} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
      OUTPUT_NAME ${name}
      EXPORT_NAME ${export_name}-${kind}
      LINKER_LANGUAGE CXX
      VERSION ${PROJECT_VERSION}
      SOVERSION ${PROJECT_VERSION_MAJOR})
    target_include_directories(${target} INTERFACE
      $<BUILD_INTERFACE:${arg_HEADERS}>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/netserver>)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:netserver_options> ${arg_LIBRARIES})
    foreach(use IN LISTS arg_USES)
      target_link_libraries(${target} PUBLIC ${use}-${kind})
    endforeach()
  endforeach()

  target_link_options(${name}-shared PRIVATE "LINKER:--version-script=${arg_EXPORTS}")
  set_target_properties(${name}-shared PROPERTIES LINK_DEPENDS "${arg_EXPORTS}" INSTALL_RPATH "\$ORIGIN")
  if(NOT NETSERVER_SANITIZE) # a sanitizer's names are in the program
    target_link_options(${name}-shared PRIVATE LINKER:--no-undefined)
  endif()

  if(BUILD_SHARED_LIBS)
    set(kind shared)
  else()
    set(kind static)
  endif()
  add_library(${name} ALIAS ${name}-${kind})
  add_library(NetServer::${export_name} ALIAS ${name}-${kind})
endfunction()
