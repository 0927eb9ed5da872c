# Settings that every target of the project shares, and the helpers that make targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "-O3 -DNDEBUG")

add_library(vx_settings INTERFACE)
# A product and a sum round separately: no contraction, no fast-math, on any target.
target_compile_options(vx_settings INTERFACE -Wall -Wextra -Werror -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees phantom overflows in inlined standard and vector headers.
  target_compile_options(vx_settings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds -Wno-restrict>)
endif()
target_include_directories(vx_settings INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
if(VX_SANITIZE)
  target_compile_options(vx_settings INTERFACE
    -fsanitize=${VX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vx_settings INTERFACE -fsanitize=${VX_SANITIZE})
endif()

# vx_test(NAME SOURCES...): a GoogleTest program over the library's objects, so that tests reach
# internal functions as well as exported ones.
function(vx_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE vx_settings vxkernel_objects vxplatform vx_test_support
                        GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 600)
endfunction()
