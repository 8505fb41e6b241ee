# SPDX-License-Identifier: GPL-3.0-or-later
# Tool chain: 64-bit Windows from Linux. Everything is linked statically, so that the library needs
# nothing but what Windows brings along.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries that scripts/setup cross-built from source packages, one folder each.
if(DEFINED ENV{XDG_CACHE_HOME})
    set(kestrune_cache "$ENV{XDG_CACHE_HOME}/kestrune/deps")
else()
    set(kestrune_cache "$ENV{HOME}/.cache/kestrune/deps")
endif()
file(GLOB kestrune_windows_libraries LIST_DIRECTORIES true "${kestrune_cache}/windows-*")
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${kestrune_windows_libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)

foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
endforeach()

# Tests run on this machine.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine")
