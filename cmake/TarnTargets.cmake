# What every target of the house shares: warnings, paths kept out of binaries, GoogleTest, suites as ctest entries.

add_library(tarn_warnings INTERFACE)
target_compile_options(tarn_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wswitch-enum
    $<$<BOOL:${TARN_WARNINGS_ARE_ERRORS}>:-Werror>
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)

if(WIN32)
    add_library(tarn_windows INTERFACE)
    # Windows 7 and later; the ANSI functions, as the interface is 8-bit.
    target_compile_definitions(tarn_windows INTERFACE
        WINVER=0x0601 _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
    target_link_options(tarn_windows INTERFACE -static)
endif()

# Debian's GoogleTest comes as source, so that each target builds its own.
if(TARN_TESTS AND NOT TARGET GTest::gtest_main)
    set(INSTALL_GTEST OFF)
    set(BUILD_GMOCK ON)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    foreach(library IN ITEMS gtest gtest_main gmock)
        target_compile_options(${library} PRIVATE -O0 -g0)
    endforeach()
endif()

# Registers each suite of a test program with ctest, found by reading its sources: a program for Windows
# cannot be asked at build time. Extra arguments go to add_test's properties.
function(tarn_add_suites target runner)
    cmake_parse_arguments(arg "" "PREFIX" "SOURCES;PROPERTIES" ${ARGN})
    set(suites)
    foreach(source IN LISTS arg_SOURCES)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
        file(STRINGS ${source} lines REGEX "^(TEST|TEST_F|TEST_P|TYPED_TEST)\\(")
        foreach(line IN LISTS lines)
            string(REGEX REPLACE "^[A-Z_]+\\(([A-Za-z0-9_]+).*" "\\1" suite "${line}")
            list(APPEND suites ${suite})
        endforeach()
    endforeach()
    list(REMOVE_DUPLICATES suites)
    foreach(suite IN LISTS suites)
        add_test(NAME ${arg_PREFIX}${suite}
            COMMAND ${runner} $<TARGET_FILE:${target}> --gtest_filter=${suite}.*:*/${suite}.* --gtest_brief=1)
        if(arg_PROPERTIES)
            set_tests_properties(${arg_PREFIX}${suite} PROPERTIES ${arg_PROPERTIES})
        endif()
    endforeach()
endfunction()
