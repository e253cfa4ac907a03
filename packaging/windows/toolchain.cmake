# Cross-compiles for 64-bit Windows with Debian's MinGW (threads: posix).
# TME_WINDOWS_ROOT: the folder that packaging/windows/dependencies has filled.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT TME_WINDOWS_ROOT)
  set(TME_WINDOWS_ROOT "$ENV{TME_WINDOWS_ROOT}")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TME_WINDOWS_ROOT)
set(CMAKE_FIND_ROOT_PATH "${TME_WINDOWS_ROOT}" /usr/x86_64-w64-mingw32)
set(CMAKE_PREFIX_PATH "${TME_WINDOWS_ROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# moc, rcc and uic run here; they are the distribution's, of the same version.
set(QT_HOST_PATH /usr CACHE PATH "")
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake CACHE PATH "")
