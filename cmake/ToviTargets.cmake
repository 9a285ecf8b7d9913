# Project-wide compiler settings, and one function per sort of target so that each folder's
# CMakeLists.txt says only what is in it and whom it knows.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    # Precompiled headers carry the time at which they were made.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
                    # GCC 12 warns about its own std::string (bug 105651).
                    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(TOVI_WERROR)
    add_compile_options(-Werror)
endif()
# Functions are found at the start of a program: finding one later saves registers, and with them
# perhaps a part of a key, on the stack.
add_link_options(-Wl,-z,relro,-z,now)
if(TOVI_SANITIZERS)
    add_compile_options(-fsanitize=${TOVI_SANITIZERS} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer
                        # GCC 12 sees uninitialised optionals in instrumented code that has none.
                        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=${TOVI_SANITIZERS})
else()
    add_compile_options(-fstack-protector-strong)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        add_compile_definitions(_FORTIFY_SOURCE=2)
    endif()
endif()

# tovi_library(NAME SOURCES file… [USES target…] [PRIVATE target…])
# USES are the targets whose headers the library's own headers include; PRIVATE ones appear in
# its sources only.
function(tovi_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_USES} PRIVATE ${ARG_PRIVATE})
endfunction()

# The same for a library of QObjects.
function(tovi_qt_library name)
    tovi_library(${name} ${ARGN})
    # Qt 6.4's moc stops at GCC 12's <concepts>, which it need not know.
    set_target_properties(${name} PROPERTIES AUTOMOC ON
                          AUTOMOC_MOC_OPTIONS -D_GLIBCXX_CONCEPTS)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
    target_link_libraries(${name} PUBLIC Qt6::Core)
endfunction()

function(tovi_executable name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARG_USES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

# tovi_plain_executable(NAME SOURCES file… USES target…): a program built as for its users, without
# sanitizers, which is why it takes the sources of what it uses and not the project's libraries.
function(tovi_plain_executable name)
    tovi_executable(${name} ${ARGN})
    if(TOVI_SANITIZERS)
        target_compile_options(${name} PRIVATE -fno-sanitize=all -O2)
        target_link_options(${name} PRIVATE -fno-sanitize=all)
    endif()
endfunction()

# Precompiled headers serve only programs compiled with the same flags.
set(test_flags -fPIC -pthread)

# tovi_test(NAME SOURCES file… USES target…): one GoogleTest program; every case is a CTest test.
function(tovi_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARG_USES} GTest::gmock GTest::gtest_main)
    target_compile_options(${name} PRIVATE ${test_flags})
    target_precompile_headers(${name} REUSE_FROM tovi_test_headers)
    target_compile_definitions(${name} PRIVATE TOVI_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data")
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()

# The same for a program whose cases need a QCoreApplication.
function(tovi_qt_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES} ${CMAKE_SOURCE_DIR}/tests/support/QtTestMain.cpp)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARG_USES} GTest::gmock GTest::gtest Qt6::Test)
    target_compile_options(${name} PRIVATE ${test_flags})
    target_precompile_headers(${name} REUSE_FROM tovi_test_headers)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
