# Shared by both Windows toolchains: posix threads, so that the standard library has its own.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${TARN_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARN_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TARN_TRIPLE}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${TARN_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
