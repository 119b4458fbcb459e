# Compiler flags that every target of ours shares, behind one interface target, `ombrelune_flags`.

option(OMBRELUNE_LTO "Link-time optimisation" OFF)
option(OMBRELUNE_TESTS "Build the tests and benchmarks" OFF)
option(OMBRELUNE_CHECK_LOCK_RANKS "Check that locks are taken in the order of their ranks" OFF)
option(OMBRELUNE_WERROR "Let warnings end the build; packages, built by any compiler, do not" ON)
option(OMBRELUNE_FUZZ "Build the libFuzzer entry points (needs Clang)" OFF)
set(OMBRELUNE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

find_program(OMBRELUNE_CCACHE ccache)
if(OMBRELUNE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER ${OMBRELUNE_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${OMBRELUNE_CCACHE})
endif()

add_library(ombrelune_flags INTERFACE)
target_include_directories(ombrelune_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ombrelune_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough $<$<BOOL:${OMBRELUNE_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 falsely reports overlapping copies in its own std::string.
    target_compile_options(ombrelune_flags INTERFACE -Wno-restrict)
endif()
# Debug and sanitizer builds always check lock ranks.
if(OMBRELUNE_CHECK_LOCK_RANKS OR OMBRELUNE_SANITIZE)
    target_compile_definitions(ombrelune_flags INTERFACE OMBRELUNE_CHECK_LOCK_RANKS)
else()
    target_compile_definitions(ombrelune_flags INTERFACE
        $<$<CONFIG:Debug>:OMBRELUNE_CHECK_LOCK_RANKS>)
endif()
if(OMBRELUNE_SANITIZE)
    target_compile_definitions(ombrelune_flags INTERFACE OMBRELUNE_SANITIZED)
endif()

if(OMBRELUNE_LTO)
    include(CheckIPOSupported)
    check_ipo_supported()
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Two link jobs; more only queue on a small machine.
        add_link_options(-flto=2)
    endif()
endif()

if(OMBRELUNE_SANITIZE)
    add_compile_options(-fsanitize=${OMBRELUNE_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${OMBRELUNE_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND OMBRELUNE_SANITIZE MATCHES "undefined")
        # Clang's vptr check opens a pipe, which fails in a test that has used up all file descriptors.
        add_compile_options(-fno-sanitize=vptr)
        add_link_options(-fno-sanitize=vptr)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND OMBRELUNE_SANITIZE MATCHES "thread")
        # The sanitizer handles the standard library's fences through its atomics.
        add_compile_options(-Wno-tsan)
    endif()
endif()

if(OMBRELUNE_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "the fuzz entry points need Clang: cmake --preset asan")
endif()
