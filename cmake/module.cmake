# One folder = one library target + one test program that links only what the folder may include.
# Folders are named from the root, wherever the call stands.

# pellux_library(core/os USES target... ROOMS room...)
# The sources are the folder's own *.cpp, those of its folder for the platform, and those of its rooms.
function(pellux_library folder)
    cmake_parse_arguments(arg "" "" "USES;PRIVATE_USES;ROOMS" ${ARGN})
    string(REPLACE "/" "_" name ${folder})
    set(place ${CMAKE_SOURCE_DIR}/${folder})
    set(patterns)
    foreach(part . linux ${arg_ROOMS})
        list(APPEND patterns ${place}/${part}/*.cpp ${place}/${part}/*.h)
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    add_library(pellux_${name} STATIC ${sources})
    target_include_directories(pellux_${name} PUBLIC ${CMAKE_SOURCE_DIR})
    target_link_libraries(pellux_${name} PUBLIC pellux_options ${arg_USES} PRIVATE ${arg_PRIVATE_USES})
endfunction()

# pellux_tests(core/os USES target...)
# The program is built from tests/core/os/*.cpp and runs under CTest, one entry per test program.
function(pellux_tests folder)
    if(NOT PELLUX_TESTS)
        return()
    endif()
    cmake_parse_arguments(arg "" "" "USES;NEEDS" ${ARGN})
    string(REPLACE "/" "_" name ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
    add_executable(${name}_tests ${sources})
    target_link_libraries(${name}_tests PRIVATE ${arg_USES} GTest::gtest_main)
    if(arg_NEEDS)
        add_dependencies(${name}_tests ${arg_NEEDS})
    endif()
    target_compile_definitions(${name}_tests PRIVATE
        PELLUX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" PELLUX_BINARY_DIR="${CMAKE_BINARY_DIR}")
    add_test(NAME ${folder} COMMAND ${name}_tests)
    set_tests_properties(${folder} PROPERTIES
        ENVIRONMENT "VELMORA_DIR=${CMAKE_BINARY_DIR}/velmora" TIMEOUT 600)
endfunction()

# pellux_window_tests(windows/app USES target... NEEDS target...)
# As pellux_tests, from tests/windows/app/*_test.cpp; windows are shown on no screen.
function(pellux_window_tests folder)
    if(NOT PELLUX_TESTS)
        return()
    endif()
    cmake_parse_arguments(arg "" "" "USES;NEEDS" ${ARGN})
    if(NOT TARGET pellux_window_answers)
        add_library(pellux_window_answers STATIC tests/windows/toolkit/scripted_answers.cpp
            tests/windows/toolkit/window_main.cpp)
        target_link_libraries(pellux_window_answers PUBLIC pellux_window_robot GTest::gtest)
    endif()
    string(REPLACE "/" "_" name ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*_test.cpp)
    add_executable(${name}_tests ${sources})
    target_link_libraries(${name}_tests PRIVATE ${arg_USES} pellux_window_answers)
    if(arg_NEEDS)
        add_dependencies(${name}_tests ${arg_NEEDS})
    endif()
    target_compile_definitions(${name}_tests PRIVATE
        PELLUX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" PELLUX_BINARY_DIR="${CMAKE_BINARY_DIR}")
    add_test(NAME ${folder} COMMAND ${name}_tests)
    set_tests_properties(${folder} PROPERTIES ENVIRONMENT
        "VELMORA_DIR=${CMAKE_BINARY_DIR}/velmora;QT_QPA_PLATFORM=offscreen;QTEST_DISABLE_STACK_DUMP=1"
        TIMEOUT 600)
endfunction()

# pellux_bench(name USES target...): bench/name.cpp
function(pellux_bench name)
    if(NOT PELLUX_BENCH)
        return()
    endif()
    cmake_parse_arguments(arg "" "" "USES;NEEDS" ${ARGN})
    add_executable(bench_${name} bench/${name}.cpp)
    target_link_libraries(bench_${name} PRIVATE ${arg_USES} benchmark::benchmark)
    target_compile_definitions(bench_${name} PRIVATE
        PELLUX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" PELLUX_BINARY_DIR="${CMAKE_BINARY_DIR}")
    if(arg_NEEDS)
        add_dependencies(bench_${name} ${arg_NEEDS})
    endif()
endfunction()

# pellux_fuzz(name USES target...): fuzz/name.cpp with its kept corpus fuzz/corpus/name
# With the tests it is run on these inputs and on changed ones, by any compiler.
function(pellux_fuzz name)
    cmake_parse_arguments(arg "" "" "USES" ${ARGN})
    if(PELLUX_FUZZ)
        add_executable(fuzz_${name} fuzz/${name}.cpp)
        target_link_libraries(fuzz_${name} PRIVATE ${arg_USES})
        target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    elseif(PELLUX_TESTS)
        if(NOT TARGET pellux_corpus)
            add_library(pellux_corpus OBJECT tests/support/corpus_main.cpp)
            target_link_libraries(pellux_corpus PRIVATE pellux_core_os)
        endif()
        add_executable(corpus_${name} fuzz/${name}.cpp)
        target_link_libraries(corpus_${name} PRIVATE ${arg_USES} pellux_corpus)
        add_test(NAME fuzz/${name} COMMAND corpus_${name} ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name})
    endif()
endfunction()
