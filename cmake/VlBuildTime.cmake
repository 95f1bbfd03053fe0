# VL_BUILD_DATE and VL_BUILD_TIME, as in "Jul 14 2017" and "15:59:04": the commit's time in UTC, so that two builds of
# one commit are equal to the byte. SOURCE_DATE_EPOCH overrides it; outside a work tree it is now.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND git log -1 --format=%ct
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE vl_commit_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(vl_commit_time)
    set(ENV{SOURCE_DATE_EPOCH} ${vl_commit_time})
  endif()
endif()
string(TIMESTAMP VL_BUILD_DATE "%b %d %Y" UTC)
string(REPLACE " 0" "  " VL_BUILD_DATE "${VL_BUILD_DATE}")
string(TIMESTAMP VL_BUILD_TIME "%H:%M:%S" UTC)
