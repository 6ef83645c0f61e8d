# Warnings, sanitizers and the widths of the C library as one interface target that every target of the project links.

add_library(netserver_options INTERFACE)
target_compile_options(netserver_options INTERFACE -Wall -Wextra -Wconversion -Wshadow
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  $<$<BOOL:${NETSERVER_WERROR}>:-Werror>)

# 32-bit devices have files beyond 2 GiB, file systems that number their files beyond 4294967295, and times after 2038.
target_compile_definitions(netserver_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)

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
