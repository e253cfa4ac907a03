# Compile through ccache when it is there; a launcher given on the command line wins.
find_program(TME_CCACHE ccache)
mark_as_advanced(TME_CCACHE)
if(TME_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${TME_CCACHE}")
endif()
