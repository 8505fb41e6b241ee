# SPDX-License-Identifier: GPL-3.0-or-later
# m_options: what every own source is compiled with. Flags come with this target, never globally.
# The plain defaults build the plug-in alone, with any compiler and few packages; the presets set what
# developers want.
include(CMakeDependentOption)
option(KESTRUNE_WERROR "Take warnings for errors" OFF)
option(BUILD_TESTING "Build the tests" OFF)
option(KESTRUNE_BENCHMARKS "Build the benchmarks" OFF)
# Tests and benchmarks run parts of the tools.
cmake_dependent_option(KESTRUNE_TOOLS "Build kestrune-render and the other tools" OFF
    "NOT BUILD_TESTING;NOT KESTRUNE_BENCHMARKS" ON)
set(KESTRUNE_MARCH "" CACHE STRING "The least processor, as -march= takes it; the compiler's own when empty")
set(KESTRUNE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

# The kernels choose their instruction set themselves (KESTRUNE_ISA).
set(kestrune_isa $<TARGET_PROPERTY:KESTRUNE_ISA>)
set(kestrune_march $<IF:$<BOOL:${kestrune_isa}>,${kestrune_isa},${KESTRUNE_MARCH}>)

add_library(m_options INTERFACE)
target_compile_features(m_options INTERFACE cxx_std_20)
target_include_directories(m_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(m_options INTERFACE
    $<$<BOOL:${kestrune_march}>:-march=${kestrune_march}>
    # Fused multiply-add would give every machine its own rounding.
    -ffp-contract=off
    -fvisibility=hidden -fvisibility-inlines-hidden
    $<$<CONFIG:Release>:-O3>
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wdouble-promotion
    -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef
    -Wnull-dereference $<$<BOOL:${KESTRUNE_WERROR}>:-Werror>
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op -Wuseless-cast>)

if(KESTRUNE_SANITIZE)
    set(kestrune_sanitize_flags -fsanitize=${KESTRUNE_SANITIZE} -fno-omit-frame-pointer)
    if(KESTRUNE_SANITIZE MATCHES "undefined")
        list(APPEND kestrune_sanitize_flags -fno-sanitize-recover=undefined)
    endif()
    target_compile_options(m_options INTERFACE ${kestrune_sanitize_flags})
    target_link_options(m_options INTERFACE ${kestrune_sanitize_flags})
    # The optimiser sees null pointers on paths that the sanitizers' own checks add.
    target_compile_options(m_options INTERFACE -Wno-null-dereference)
endif()
