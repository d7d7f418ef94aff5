# Holds the arrows between folders that are libraries: everything in such a library, linked with what it names and
# nothing else. A call against the direction leaves an undefined symbol, whichever program uses the library.
function(trk_check_arrows library)
  if(BUILD_TESTING AND NOT WIN32)
    add_executable(${library}_arrows ${PROJECT_SOURCE_DIR}/cmake/arrows.cpp)
    target_link_libraries(${library}_arrows PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,${library}>)
  endif()
endfunction()
