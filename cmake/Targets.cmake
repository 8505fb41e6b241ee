# SPDX-License-Identifier: GPL-3.0-or-later
# The two kinds of target that the folders define.
option(KESTRUNE_QUICK "Compile several sources at a time and headers in advance" OFF)

# m_library(NAME SOURCES file... HEADERS file... [LINK target...] [PRIVATE_LINK target...])
# One folder's static library. Each of its headers must compile alone (all_verify_interface_header_sets).
function(m_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;LINK;PRIVATE_LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
    target_link_libraries(${name} PUBLIC m_options ${arg_LINK} PRIVATE ${arg_PRIVATE_LINK})
    set_target_properties(${name} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        UNITY_BUILD ${KESTRUNE_QUICK}
        VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

# m_test(NAME SOURCES file... LINK target...)
# A GoogleTest program whose cases ctest lists one by one, labelled with the program's name.
function(m_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE m_options ${arg_LINK} GTest::gmock GTest::gtest GTest::gtest_main)
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    if(KESTRUNE_QUICK)
        target_precompile_headers(${name} REUSE_FROM m_test_headers)
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT 600 LABELS ${name})
endfunction()
