# Cross compiles for 64-bit Windows with Debian's mingw-w64 (everything linked in; Windows' own threads,
# so that no other thread library comes into the programs that load the module).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(tool_prefix x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${tool_prefix}-gcc-win32)
set(CMAKE_CXX_COMPILER ${tool_prefix}-g++-win32)
set(CMAKE_RC_COMPILER ${tool_prefix}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${tool_prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run)
