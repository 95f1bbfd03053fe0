# GoogleTest, CLI11 and zlib come from the distribution's packages, JsonCpp, PCRE2 and minizip from its source packages
# (scripts/setup.sh).
include(FetchContent)
set(vl_third_party ${CMAKE_SOURCE_DIR}/build/third-party)
if(NOT EXISTS ${vl_third_party}/include)
  message(FATAL_ERROR "build/third-party is missing: 'scripts/setup.sh build test' makes it")
endif()

# Only the tests need GoogleTest: without its package there are none, and the product builds all the same.
set(vl_googletest /usr/src/googletest)
if(EXISTS ${vl_googletest}/CMakeLists.txt)
  set(VL_TESTS ON)
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${vl_googletest} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()

add_library(vl_cli11 INTERFACE)
target_include_directories(vl_cli11 SYSTEM INTERFACE ${vl_third_party}/include)

# SHA-256 where the platform has none; linked in, so that a tool needs nothing on the machine that it is copied to.
if(NOT WIN32)
  find_library(VL_MD_LIBRARY libmd.a REQUIRED)
  add_library(vl_md INTERFACE)
  target_link_libraries(vl_md INTERFACE ${VL_MD_LIBRARY})
endif()

# The settings document's parser, in exactly this release, checked by its hash: number and text conversions differ
# between releases, and a document must read the same everywhere.
foreach(option WITH_TESTS WITH_POST_BUILD_UNITTEST WITH_PKGCONFIG_SUPPORT WITH_CMAKE_PACKAGE)
  set(JSONCPP_${option} OFF CACHE INTERNAL "")
endforeach()
set(BUILD_SHARED_LIBS OFF CACHE INTERNAL "")
set(BUILD_OBJECT_LIBS OFF CACHE INTERNAL "")
FetchContent_Declare(jsoncpp SYSTEM
  URL ${vl_third_party}/libjsoncpp_1.9.5.orig.tar.gz
  URL_HASH SHA256=f409856e5920c18d0c2fb85276e24ee607d2a09b5e7d5f0a371368903c275da2
  DOWNLOAD_EXTRACT_TIMESTAMP ON)
FetchContent_MakeAvailable(jsoncpp)

# Regular expressions of 8-bit texts, built as its NON-AUTOTOOLS-BUILD says: without a compiler of machine code, and without
# its own project, which would bring tests, programs and what they need.
FetchContent_Declare(pcre2
  URL ${vl_third_party}/pcre2_10.42.orig.tar.gz
  URL_HASH SHA256=c33b418e3b936ee3153de2c61cc638e7e4fe3156022a5c77d0711bcbb9d64f1f
  DOWNLOAD_EXTRACT_TIMESTAMP ON)
FetchContent_Populate(pcre2)
set(vl_pcre2 ${CMAKE_BINARY_DIR}/pcre2)
configure_file(${pcre2_SOURCE_DIR}/src/config.h.generic ${vl_pcre2}/config.h COPYONLY)
configure_file(${pcre2_SOURCE_DIR}/src/pcre2.h.generic ${vl_pcre2}/pcre2.h COPYONLY)
configure_file(${pcre2_SOURCE_DIR}/src/pcre2_chartables.c.dist ${vl_pcre2}/pcre2_chartables.c COPYONLY)
set(vl_pcre2_sources ${vl_pcre2}/pcre2_chartables.c)
foreach(part auto_possess compile context error extuni find_bracket jit_compile match match_data newline ord2utf
    pattern_info script_run string_utils study tables ucd valid_utf xclass)
  list(APPEND vl_pcre2_sources ${pcre2_SOURCE_DIR}/src/pcre2_${part}.c)
endforeach()
add_library(vl_pcre2 STATIC ${vl_pcre2_sources})
target_include_directories(vl_pcre2 SYSTEM PUBLIC ${vl_pcre2} PRIVATE ${pcre2_SOURCE_DIR}/src)
target_compile_definitions(vl_pcre2 PUBLIC PCRE2_STATIC PCRE2_CODE_UNIT_WIDTH=8
  PRIVATE HAVE_CONFIG_H SUPPORT_PCRE2_8 SUPPORT_UNICODE)

# Compressed files; linked in like libmd.
add_library(vl_zlib INTERFACE)
if(WIN32)
  target_link_libraries(vl_zlib INTERFACE z)
else()
  find_library(VL_Z_LIBRARY libz.a REQUIRED)
  target_link_libraries(vl_zlib INTERFACE ${VL_Z_LIBRARY})
endif()

# ZIP archives: vlhost writes them, its test reads them.
if(WIN32)
  FetchContent_Declare(minizip SYSTEM
    URL ${vl_third_party}/minizip_1.1.orig.tar.xz
    URL_HASH SHA256=7d8da446d3b6799e7851f077a66551a46b80fc3de708549e79dbd3e49e842ba1
    DOWNLOAD_EXTRACT_TIMESTAMP ON)
  FetchContent_MakeAvailable(minizip) # it has no build of its own
  add_library(vl_minizip STATIC ${minizip_SOURCE_DIR}/ioapi.c ${minizip_SOURCE_DIR}/unzip.c
    ${minizip_SOURCE_DIR}/zip.c)
  target_compile_definitions(vl_minizip PRIVATE NOCRYPT NOUNCRYPT)
  target_compile_options(vl_minizip PRIVATE -w)
  target_include_directories(vl_minizip SYSTEM PUBLIC ${minizip_SOURCE_DIR})
  target_link_libraries(vl_minizip PUBLIC vl_zlib)
endif()
