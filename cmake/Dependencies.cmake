# SPDX-License-Identifier: GPL-3.0-or-later
# Third-party packages. scripts/setup installs every one of them.
find_package(Threads REQUIRED)
find_package(pugixml CONFIG REQUIRED)
find_package(ZLIB REQUIRED)
# Linked in where there is a static library: the plug-in then depends on one package less.
add_library(m_xml INTERFACE)
target_link_libraries(m_xml INTERFACE $<IF:$<TARGET_EXISTS:pugixml::static>,pugixml::static,pugixml::pugixml>)

if(WIN32)
    find_package(FFTW3f CONFIG REQUIRED)
    target_include_directories(FFTW3::fftw3f INTERFACE ${FFTW3f_INCLUDE_DIRS})
    add_library(m_fft ALIAS FFTW3::fftw3f)
else()
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(fftw3f REQUIRED fftw3f)
    # The static library, built position-independent. The plug-in frees every plan of the package when
    # it is unloaded; were the package shared, a host that uses it would lose its own plans.
    find_library(KESTRUNE_FFTW3F_STATIC libfftw3f.a HINTS ${fftw3f_LIBRARY_DIRS} REQUIRED)
    add_library(m_fft INTERFACE)
    target_link_libraries(m_fft INTERFACE ${KESTRUNE_FFTW3F_STATIC} m)
    target_include_directories(m_fft SYSTEM INTERFACE ${fftw3f_INCLUDE_DIRS})
endif()

if(KESTRUNE_TOOLS AND NOT WIN32)
    find_package(CLI11 CONFIG REQUIRED)
    find_package(nlohmann_json CONFIG REQUIRED)
    pkg_check_modules(sndfile REQUIRED IMPORTED_TARGET sndfile)
endif()
if(KESTRUNE_BENCHMARKS)
    find_package(benchmark CONFIG REQUIRED)
endif()
if(BUILD_TESTING AND WIN32)
    # Debian ships GoogleTest for Windows only as sources.
    set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    foreach(target gtest gtest_main gmock gmock_main)
        if(NOT TARGET GTest::${target})
            add_library(GTest::${target} ALIAS ${target})
        endif()
    endforeach()
elseif(BUILD_TESTING)
    find_package(GTest CONFIG REQUIRED)
    # Drum loops that are free to use. A machine that has them elsewhere names their folder.
    find_path(KESTRUNE_LOOPS loop_amen.flac PATHS /usr/share/sonic-pi/samples NO_DEFAULT_PATH REQUIRED)
endif()
