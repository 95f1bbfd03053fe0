# vl_add_test(NAME SOURCES file... LIBS library... [ARGS argument...])
#
# One GoogleTest program. A Windows program runs under Wine in its own clone of the base prefix, so that no other
# program sees its registry, files, objects and windows. Its cases are counted from build/<preset>/results.
function(vl_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS;ARGS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  if(WIN32)
    target_link_libraries(${name} PRIVATE vl_build_flags ${arg_LIBS} vl_test_support)
    set(runner ${CMAKE_SOURCE_DIR}/scripts/in-prefix.sh)
  else()
    target_link_libraries(${name} PRIVATE vl_build_flags ${arg_LIBS} gtest_main)
    set(runner)
  endif()
  add_test(NAME ${name}
    COMMAND ${runner} $<TARGET_FILE:${name}> --gtest_brief=1 --gtest_output=xml:${name}.xml ${arg_ARGS}
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/results)
endfunction()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/results)

# vl_add_transcripts(TOOL FOLDER)
#
# Runs each transcript (*.t) in the folder as a test: commands as a person types them, and all that they print.
function(vl_add_transcripts tool folder)
  file(GLOB files CONFIGURE_DEPENDS ${folder}/*.t)
  foreach(file ${files})
    get_filename_component(name ${file} NAME_WE)
    add_test(NAME ${tool}_${name}_transcript
      COMMAND ${CMAKE_SOURCE_DIR}/tests/support/transcript.sh $<TARGET_FILE_DIR:${tool}> ${file})
  endforeach()
endfunction()
