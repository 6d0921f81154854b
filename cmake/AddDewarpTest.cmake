# add_dewarp_test(NAME <name> SOURCES <files> [GL] [INTERNALS] [LONG] [SECONDS <n>] [LIBRARIES <targets>])
#
# One GoogleTest program, one CTest entry. GL tests get Mesa without a window system and exit 77 (skipped)
# where no context is to be had. Tests link the library as hosts do, and so see what it exports; INTERNALS ones
# are made of its objects and see everything. LONG tests are left out of `./test` and run in `./test --full` (label `long`);
# a program with a short and a long form gets a second entry, with that label and its own environment.
# SECONDS, about what it takes: the longest tests begin first, so that no processor is idle at the end.
find_package(GTest REQUIRED)

set(TEST_PATHS TEST_SOURCE_DIR="${PROJECT_SOURCE_DIR}/tests" SAMPLES_DIR="${PROJECT_SOURCE_DIR}/samples")

# What every test includes is read once: it takes most of a test's compile time.
add_library(dewarp_test_pch OBJECT ${PROJECT_SOURCE_DIR}/tests/support/Precompiled.cpp)
target_link_libraries(dewarp_test_pch PRIVATE GTest::gtest)
target_compile_definitions(dewarp_test_pch PRIVATE ${TEST_PATHS})
target_precompile_headers(dewarp_test_pch PRIVATE
    <algorithm> <cmath> <cstdlib> <cstring> <functional> <map> <random> <string> <vector> <gtest/gtest.h>)

# Programs that only `./test --full` runs are built when it does.
add_custom_target(long_tests)

function(add_dewarp_test)
    cmake_parse_arguments(ARG "GL;INTERNALS;LONG" "NAME;SECONDS" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${ARG_NAME} ${ARG_SOURCES})
    target_link_libraries(${ARG_NAME} PRIVATE dewarp_test_support ${ARG_LIBRARIES} GTest::gtest
        $<IF:$<BOOL:${ARG_INTERNALS}>,lumor_dewarp_objects,lumor_dewarp>)
    if(ARG_GL)
        target_link_libraries(${ARG_NAME} PRIVATE dewarp_gl_test_main)
        # The recording layer looks for the driver's libraries behind the program, which takes nothing else of
        # them where it is made of the library's objects.
        target_link_options(${ARG_NAME} PRIVATE -Wl,--no-as-needed)
    else()
        target_link_libraries(${ARG_NAME} PRIVATE GTest::gtest_main)
    endif()
    target_compile_definitions(${ARG_NAME} PRIVATE ${TEST_PATHS})
    target_precompile_headers(${ARG_NAME} REUSE_FROM dewarp_test_pch)
    set_target_properties(${ARG_NAME} PROPERTIES DEFINE_SYMBOL ""
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests ENABLE_EXPORTS ON)
    add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
    if(ARG_GL)
        set_tests_properties(${ARG_NAME} PROPERTIES
            LABELS gl SKIP_RETURN_CODE 77 ENVIRONMENT "EGL_PLATFORM=surfaceless;LIBGL_ALWAYS_SOFTWARE=1")
    else()
        set_tests_properties(${ARG_NAME} PROPERTIES LABELS unit)
    endif()
    if(ARG_LONG)
        set_property(TEST ${ARG_NAME} APPEND PROPERTY LABELS long)
        set_target_properties(${ARG_NAME} PROPERTIES EXCLUDE_FROM_ALL ON)
        add_dependencies(long_tests ${ARG_NAME})
    endif()
    if(ARG_SECONDS)
        set_property(TEST ${ARG_NAME} PROPERTY COST ${ARG_SECONDS})
    endif()
endfunction()
