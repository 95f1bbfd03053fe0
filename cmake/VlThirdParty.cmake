# GoogleTest and CLI11 come from the distribution's packages, JsonCpp from its source package (scripts/setup.sh).
include(FetchContent)
set(vl_third_party ${CMAKE_SOURCE_DIR}/build/third-party)

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
