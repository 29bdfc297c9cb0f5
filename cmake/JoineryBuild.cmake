# Settings that every target shares, and the functions that make rooms and their tests.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Sql Svg Test LinguistTools)
find_package(Threads REQUIRED)

find_program(CCACHE ccache)
if(CCACHE)
    # Precompiled headers are cached only when these are told not to matter.
    set(sloppiness pch_defines,time_macros,include_file_mtime,include_file_ctime)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=${sloppiness} CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}
        CCACHE_NOHASHDIR=1 ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

add_library(joinery_flags INTERFACE)
target_compile_options(joinery_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    # Qt 5 writes a shortcut as Qt::CTRL + Qt::Key_R.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-enum-enum-conversion>
    $<$<BOOL:${JOINERY_WERROR}>:-Werror>
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:${CCACHE}>>:-fpch-preprocess>
    $<$<AND:$<CXX_COMPILER_ID:Clang>,$<BOOL:${CCACHE}>>:SHELL:-Xclang -fno-pch-timestamp>)
target_compile_definitions(joinery_flags INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS
    # Qt's own asserts stand in every build that runs tests.
    $<$<NOT:$<CONFIG:Release>>:QT_FORCE_ASSERTS>)
if(JOINERY_SANITIZE)
    target_compile_options(joinery_flags INTERFACE
        -fsanitize=${JOINERY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
    target_link_options(joinery_flags INTERFACE -fsanitize=${JOINERY_SANITIZE})
endif()
target_include_directories(joinery_flags INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})

# The rooms that must link with Qt Core alone.
set(JOINERY_CORE_ROOMS "" CACHE INTERNAL "")
set(JOINERY_ROOMS "" CACHE INTERNAL "")

# joinery_room(<name> [CORE] [STDONLY] [USES <room>...])
#
# Makes the OBJECT library room_<name> of the sources in the current folder. CORE rooms see Qt Core
# only, STDONLY rooms see no Qt at all, the others see Qt Widgets. USES names the rooms directly
# below; what those use comes along.
function(joinery_room name)
    cmake_parse_arguments(ROOM "CORE;STDONLY" "" "USES" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp
         ${CMAKE_CURRENT_SOURCE_DIR}/*.h ${CMAKE_CURRENT_SOURCE_DIR}/*.ui)
    set(target room_${name})
    if(NOT sources MATCHES "\\.cpp")
        # A room of headers alone still is an object library.
        file(WRITE ${CMAKE_BINARY_DIR}/empty.cpp "// no sources yet\n")
        list(APPEND sources ${CMAKE_BINARY_DIR}/empty.cpp)
    endif()
    add_library(${target} OBJECT ${sources})
    target_link_libraries(${target} PUBLIC joinery_flags)
    target_compile_definitions(${target} PRIVATE JOINERY_BUILDING_LIBRARY)
    if(ROOM_STDONLY)
        set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    elseif(ROOM_CORE)
        target_link_libraries(${target} PUBLIC Qt5::Core Threads::Threads)
        joinery_precompile(${target} core)
    else()
        target_link_libraries(${target} PUBLIC Qt5::Widgets Threads::Threads)
        joinery_precompile(${target} gui)
    endif()
    set(closure ${name})
    foreach(used ${ROOM_USES})
        if(NOT TARGET room_${used})
            message(FATAL_ERROR "room ${name} uses ${used}, which is not a room on a lower floor")
        endif()
        get_target_property(below room_${used} JOINERY_CLOSURE)
        list(APPEND closure ${below})
    endforeach()
    list(REMOVE_DUPLICATES closure)
    set_target_properties(${target} PROPERTIES JOINERY_CLOSURE "${closure}")
    set(JOINERY_ROOMS ${JOINERY_ROOMS} ${name} CACHE INTERNAL "")
    if(ROOM_CORE OR ROOM_STDONLY)
        set(JOINERY_CORE_ROOMS ${JOINERY_CORE_ROOMS} ${name} CACHE INTERNAL "")
    endif()
endfunction()

# One precompiled header for all core rooms and one for all rooms with widgets.
function(joinery_precompile target kind)
    if(NOT TARGET joinery_pch_${kind})
        file(WRITE ${CMAKE_BINARY_DIR}/pch/${kind}.cpp "")
        add_library(joinery_pch_${kind} OBJECT ${CMAKE_BINARY_DIR}/pch/${kind}.cpp)
        target_link_libraries(joinery_pch_${kind} PUBLIC joinery_flags Threads::Threads
                              $<IF:$<STREQUAL:${kind},core>,Qt5::Core,Qt5::Widgets>)
        target_compile_definitions(joinery_pch_${kind} PRIVATE JOINERY_BUILDING_LIBRARY)
        set_target_properties(joinery_pch_${kind} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
        target_precompile_headers(joinery_pch_${kind} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/pch_${kind}.h)
    endif()
    target_precompile_headers(${target} REUSE_FROM joinery_pch_${kind})
endfunction()

# Links the objects of the given rooms, and of all rooms that they use, into a program.
function(joinery_link_rooms target)
    set(all "")
    foreach(room ${ARGN})
        get_target_property(closure room_${room} JOINERY_CLOSURE)
        list(APPEND all ${closure})
    endforeach()
    list(REMOVE_DUPLICATES all)
    foreach(room ${all})
        target_link_libraries(${target} PRIVATE room_${room})
    endforeach()
    target_compile_definitions(${target} PRIVATE JOINERY_BUILDING_LIBRARY)
endfunction()

# joinery_gtest(<name> ROOMS <room>... [LIBS <library>...])
#
# One GoogleTest program of all *_test.cpp in the current folder.
function(joinery_gtest name)
    cmake_parse_arguments(TEST "" "" "ROOMS;LIBS;LABELS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${name} ${sources})
    if(JOINERY_SANITIZE AND "Qt5::Test" IN_LIST TEST_LIBS)
        target_sources(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/offscreen_screen.cpp)
    endif()
    joinery_link_rooms(test_${name} ${TEST_ROOMS})
    target_link_libraries(test_${name} PRIVATE joinery_flags test_support GTest::gtest_main
                          Threads::Threads ${TEST_LIBS})
    target_compile_definitions(test_${name} PRIVATE JOINERY_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}")
    add_test(NAME ${name} COMMAND test_${name})
    set_tests_properties(${name} PROPERTIES LABELS "${TEST_LABELS}" TIMEOUT ${JOINERY_TEST_TIMEOUT}
                         ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# joinery_qtest(<name> ROOMS <room>... [LIBS <library>...])
#
# One Qt Test program for each *_test.cpp in the current folder, run offscreen.
function(joinery_qtest name)
    cmake_parse_arguments(TEST "" "" "ROOMS;LIBS;LABELS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
    foreach(source ${sources})
        get_filename_component(stem ${source} NAME_WE)
        set(target test_${name}_${stem})
        add_executable(${target} ${source})
        if(JOINERY_SANITIZE)
            target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/offscreen_screen.cpp)
        endif()
        joinery_link_rooms(${target} ${TEST_ROOMS})
        target_link_libraries(${target} PRIVATE joinery_flags test_support Qt5::Widgets Qt5::Test
                              Threads::Threads ${TEST_LIBS})
        target_compile_definitions(${target} PRIVATE
                                   JOINERY_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}")
        add_test(NAME ${name}_${stem} COMMAND ${target})
        set_tests_properties(${name}_${stem} PROPERTIES LABELS "${TEST_LABELS}" TIMEOUT ${JOINERY_TEST_TIMEOUT}
                             ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
    endforeach()
endfunction()

# joinery_server_tests(<name>)
#
# Runs the program test_<name>, whose tests end in the name of a server, against each of these in
# turn. The servers start in tests/live/with_servers.sh; one that is not installed is skipped.
function(joinery_server_tests name)
    foreach(server PostgreSQL MariaDB)
        string(TOLOWER ${server} suffix)
        add_test(NAME ${name}_${suffix}
                 COMMAND ${CMAKE_SOURCE_DIR}/tests/live/with_servers.sh ${suffix}
                         $<TARGET_FILE:test_${name}> --gtest_filter=*/${server})
        set_tests_properties(${name}_${suffix} PROPERTIES SKIP_RETURN_CODE 77)
    endforeach()
    add_test(NAME ${name}_sqlite COMMAND test_${name} --gtest_filter=*/SQLite)
    set_tests_properties(${name}_postgresql ${name}_mariadb ${name}_sqlite PROPERTIES
                         LABELS live TIMEOUT ${JOINERY_TEST_TIMEOUT})
endfunction()
