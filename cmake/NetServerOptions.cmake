# Warnings and sanitizers as one interface target that every target of the project links.

add_library(netserver_options INTERFACE)
target_compile_options(netserver_options INTERFACE -Wall -Wextra -Wconversion -Wshadow
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  $<$<BOOL:${NETSERVER_WERROR}>:-Werror>)

if(NETSERVER_SANITIZE STREQUAL "address")
  set(NETSERVER_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(NETSERVER_SANITIZE STREQUAL "thread")
  set(NETSERVER_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT NETSERVER_SANITIZE STREQUAL "")
  message(FATAL_ERROR "NETSERVER_SANITIZE must be empty, address or thread, not '${NETSERVER_SANITIZE}'")
endif()
target_compile_options(netserver_options INTERFACE ${NETSERVER_SANITIZE_FLAGS})
target_link_options(netserver_options INTERFACE ${NETSERVER_SANITIZE_FLAGS})

# Counted atomically: threads run the same lines.
if(NETSERVER_COVERAGE)
  target_compile_options(netserver_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(netserver_options INTERFACE --coverage)
endif()

# The fuzzer sees which code an input reaches.
if(NETSERVER_BUILD_FUZZ)
  target_compile_options(netserver_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
