# vl_build_flags carries what every target of ours compiles with; third-party code does not get it.
# Line tables for who debugs a dump; make package puts them in an archive of their own. No path of the build is in them,
# nor in third-party code.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG -g1")
add_compile_options("$<$<CONFIG:Release>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.>")
add_library(vl_build_flags INTERFACE)
target_include_directories(vl_build_flags INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/include)
target_compile_options(vl_build_flags INTERFACE
  -Wall -Wextra -Wpedantic $<$<BOOL:${VL_WERROR}>:-Werror> -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
  -Wcast-align -Woverloaded-virtual -Wnull-dereference -Wformat=2 -Wextra-semi
  -Wzero-as-null-pointer-constant -Wundef -fstack-protector-strong)
target_link_options(vl_build_flags INTERFACE -fstack-protector-strong)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vl_build_flags INTERFACE
    -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wuseless-cast)
endif()
if(WIN32)
  target_link_options(vl_build_flags INTERFACE -Wl,--no-insert-timestamp)
  target_compile_definitions(vl_build_flags INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
else()
  # A build's id is made from its symbols, too, and those name files as the compiler was called with them.
  target_link_options(vl_build_flags INTERFACE -Wl,--build-id=none)
endif()
if(VL_CHECKS)
  target_compile_definitions(vl_build_flags INTERFACE _GLIBCXX_ASSERTIONS)
  target_compile_options(vl_build_flags INTERFACE -fsanitize=undefined -fsanitize-undefined-trap-on-error)
endif()
if(VL_COVERAGE)
  # Threads that count the same branch without atomic steps leave negative counts, which gcovr refuses.
  target_compile_options(vl_build_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(vl_build_flags INTERFACE --coverage)
endif()
if(VL_SANITIZE)
  set(vl_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(vl_build_flags INTERFACE ${vl_sanitizers})
  target_link_options(vl_build_flags INTERFACE ${vl_sanitizers})
endif()
if(VL_FUZZ)
  target_compile_options(vl_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
