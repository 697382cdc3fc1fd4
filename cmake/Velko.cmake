# How a folder of this project becomes a library, a program or a test.

get_filename_component(VELKO_ROOT ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
add_library(velko_options INTERFACE)
target_compile_features(velko_options INTERFACE cxx_std_20)
target_include_directories(velko_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(velko_options INTERFACE -Wall -Wextra -Wpedantic)
if(VELKO_STRICT)
    target_compile_options(velko_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    target_compile_options(velko_options INTERFACE -Wthread-safety)
endif()
if(VELKO_SANITIZE)
    # The compiler takes what a sanitizer adds for uninitialised, in <regex> for one.
    target_compile_options(velko_options INTERFACE
        -fsanitize=${VELKO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(velko_options INTERFACE -fsanitize=${VELKO_SANITIZE})
endif()

# velko_library(NAME SOURCES a.cpp ... USES other_library ... [PRIVATE_USES ...])
function(velko_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;PRIVATE_USES" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC velko_options ${ARG_USES} PRIVATE ${ARG_PRIVATE_USES})
endfunction()

# velko_program(NAME SOURCES a.cpp ... USES library ...)
function(velko_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE velko_options ${ARG_USES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endfunction()

# velko_test(NAME SOURCES a.cpp ... USES library ... [TIMEOUT seconds])
# One GoogleTest program; each of its suites is a test of its own for ctest, with
# the folder's name before it. The timeout is a suite's.
function(velko_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;USES" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 600)
    endif()
    velko_program(${name} SOURCES ${ARG_SOURCES} USES ${ARG_USES} GTest::gtest_main)
    if(VELKO_SANITIZE MATCHES thread)
        target_sources(${name} PRIVATE ${VELKO_ROOT}/tests/support/TsanSuppressions.cpp)
    endif()
    get_filename_component(area ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
    file(CONFIGURE OUTPUT ${script} CONTENT [[
include(@VELKO_ROOT@/cmake/TestSuites.cmake)
add_suites(@PROJECT_BINARY_DIR@/bin/@name@ @area@ @PROJECT_SOURCE_DIR@ @ARG_TIMEOUT@)
]] @ONLY)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()
