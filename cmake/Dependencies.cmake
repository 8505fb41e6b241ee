# SPDX-License-Identifier: GPL-3.0-or-later
# Third-party packages. scripts/setup installs every one of them.
find_package(Threads REQUIRED)
find_package(pugixml CONFIG REQUIRED)
find_package(ZLIB REQUIRED)

if(WIN32)
    # Debian ships GoogleTest for Windows only as sources.
    set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    find_package(FFTW3f CONFIG REQUIRED)
    target_include_directories(FFTW3::fftw3f INTERFACE ${FFTW3f_INCLUDE_DIRS})
    add_library(m_fft ALIAS FFTW3::fftw3f)
    foreach(target gtest gtest_main gmock gmock_main)
        if(NOT TARGET GTest::${target})
            add_library(GTest::${target} ALIAS ${target})
        endif()
    endforeach()
else()
    find_package(GTest CONFIG REQUIRED)
    find_package(benchmark CONFIG REQUIRED)
    find_package(CLI11 CONFIG REQUIRED)
    find_package(nlohmann_json CONFIG REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(fftw3f REQUIRED fftw3f)
    # The static library, which Debian builds position-independent: the plug-in then depends on no
    # package of the machine it runs on.
    find_library(KESTRUNE_FFTW3F_STATIC libfftw3f.a HINTS ${fftw3f_LIBRARY_DIRS} REQUIRED)
    add_library(m_fft INTERFACE)
    target_link_libraries(m_fft INTERFACE ${KESTRUNE_FFTW3F_STATIC} m)
    target_include_directories(m_fft SYSTEM INTERFACE ${fftw3f_INCLUDE_DIRS})
    pkg_check_modules(sndfile REQUIRED IMPORTED_TARGET sndfile)
endif()
