# What the resources of our modules are made of.

# vl_rc_language(LANGID) splits a language identifier for a resource script: VL_RC_PRIMARY, VL_RC_SUB, VL_RC_LANGUAGE.
macro(vl_rc_language langid)
  math(EXPR VL_RC_PRIMARY "${langid} & 0x3FF" OUTPUT_FORMAT HEXADECIMAL)
  math(EXPR VL_RC_SUB "${langid} >> 10" OUTPUT_FORMAT HEXADECIMAL)
  string(REGEX REPLACE "^0x" "" VL_RC_LANGUAGE ${langid})
endmacro()

# vl_version_resource(SCRIPT FILE name DESCRIPTION text [LANGID 0x0409] [PROGRAM] [ICON])
#
# Writes a script with the version information of one of our files into the current binary folder. The language is
# neutral if none is given; FILE is the name of the file, a library unless PROGRAM is given. ICON adds the product's.
function(vl_version_resource script)
  cmake_parse_arguments(arg "PROGRAM;ICON" "FILE;DESCRIPTION;LANGID" "" ${ARGN})
  if(NOT arg_LANGID)
    set(arg_LANGID 0x0000)
  endif()
  vl_rc_language(${arg_LANGID})
  set(VL_RC_FILETYPE VFT_DLL)
  if(arg_PROGRAM)
    set(VL_RC_FILETYPE VFT_APP)
  endif()
  set(VL_RC_ICON)
  if(arg_ICON)
    set(VL_RC_ICON "1 ICON \"product.ico\"")
  endif()
  set(VL_RC_FILE ${arg_FILE})
  string(REGEX REPLACE "\\.[^.]*$" "" VL_RC_NAME ${arg_FILE})
  set(VL_RC_DESCRIPTION "${arg_DESCRIPTION}")
  configure_file(${CMAKE_SOURCE_DIR}/src/resources/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${script} @ONLY)
endfunction()

# vl_add_version(TARGET DESCRIPTION text [ICON]) gives a program or library its version information and, if it is said,
# the product's icon. Elsewhere than on Windows it does nothing.
function(vl_add_version target)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(arg "ICON" "DESCRIPTION" "" ${ARGN})
  get_target_property(name ${target} OUTPUT_NAME)
  if(NOT name)
    set(name ${target})
  endif()
  set(options LANGID 0x0409)
  set(file ${name}.dll)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(file ${name}.exe)
    list(APPEND options PROGRAM)
  endif()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}_version.rc)
  if(arg_ICON)
    list(APPEND options ICON)
    target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/src/resources)
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS ${CMAKE_BINARY_DIR}/src/resources/product.ico)
    add_dependencies(${target} vl_product_picture)
  endif()
  vl_version_resource(${name}_version.rc FILE ${file} DESCRIPTION "${arg_DESCRIPTION}" ${options})
  target_sources(${target} PRIVATE ${script})
endfunction()

# vl_page(FILE LANGUAGE TITLE NOTE) writes the page that a browser shows while it opens a logon.
function(vl_page file VL_PAGE_LANGUAGE VL_PAGE_TITLE VL_PAGE_NOTE)
  configure_file(${CMAKE_SOURCE_DIR}/src/resources/qlinkload.htm.in ${CMAKE_CURRENT_BINARY_DIR}/${file} @ONLY)
endfunction()

# vl_resource_module(NAME scripts...) is a DLL of resources alone: no code, no entry point.
function(vl_resource_module name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" LINKER_LANGUAGE C)
  target_link_options(${name} PRIVATE -nostdlib -Wl,-e,0 -s -Wl,--no-insert-timestamp)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src)
endfunction()

# vl_add_language(LANGUAGE LANGID DESCRIPTION text PAGE_TITLE text PAGE_NOTE text)
#
# The language file bin/<LANGUAGE>/VLOnlineIDs.dll.mui, made from src/resources/lang/<LANGUAGE>.rc. The target is
# vl_language_<LANGUAGE>, and part of vl_languages. The global property VL_LANGUAGES lists all of them, for what ships
# and what tests them.
function(vl_add_language language langid)
  cmake_parse_arguments(arg "" "DESCRIPTION;PAGE_TITLE;PAGE_NOTE" "" ${ARGN})
  set(source ${CMAKE_SOURCE_DIR}/src/resources)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${language})
  set(target vl_language_${language})
  vl_rc_language(${langid})
  set(VL_RC_FILE VLOnlineIDs.dll.mui)
  configure_file(${source}/language.rc.in ${folder}/language.rc @ONLY)
  vl_page(${language}/qlinkload.htm ${language} "${arg_PAGE_TITLE}" "${arg_PAGE_NOTE}")
  vl_version_resource(${language}/version.rc FILE VLOnlineIDs.dll.mui LANGID ${langid} DESCRIPTION "${arg_DESCRIPTION}")
  add_custom_command(OUTPUT ${folder}/VLOnlineIDs.dll.mui.bin
    COMMAND Python3::Interpreter ${source}/generate/mui.py
      language VLOnlineIDs.dll ${PROJECT_VERSION} ${source}/resourceids.h ${language} ${folder}/VLOnlineIDs.dll.mui.bin
    DEPENDS ${source}/generate/mui.py ${source}/resourceids.h VERBATIM)
  vl_resource_module(${target} ${folder}/language.rc)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME VLOnlineIDs.dll SUFFIX .mui LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/${language})
  target_include_directories(${target} PRIVATE ${folder} ${source})
  set(parts ${folder}/VLOnlineIDs.dll.mui.bin ${folder}/qlinkload.htm ${folder}/version.rc ${source}/lang/${language}.rc
    ${source}/resourceids.h)
  set_source_files_properties(${folder}/language.rc PROPERTIES OBJECT_DEPENDS "${parts}")
  if(NOT TARGET vl_languages)
    add_custom_target(vl_languages)
  endif()
  add_dependencies(vl_languages ${target})
  set_property(GLOBAL APPEND PROPERTY VL_LANGUAGES ${language})
endfunction()
