# Compiler settings that hold for every target of ours, gathered in the interface target `sky_options`.

set(SKY_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
option(SKY_TESTS "Build the tests" ON)
option(SKY_BENCH "Build the benchmarks" OFF)
option(SKY_FUZZ "Build the fuzzers (clang only)" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(SKY_CCACHE ccache)
if(SKY_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${SKY_CCACHE}")
endif()

find_package(Threads REQUIRED)

add_library(sky_options INTERFACE)
target_include_directories(sky_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_link_libraries(sky_options INTERFACE Threads::Threads)
target_compile_options(sky_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-align
  -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Werror
  # Results must not depend on which instructions the compiler finds.
  -ffp-contract=off
  -fno-rtti)

# What the sanitizers and the system need is asked of every target, also of the test framework's.
if(SKY_SANITIZE)
  add_compile_options(-fsanitize=${SKY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SKY_SANITIZE})
  if(SKY_SANITIZE MATCHES undefined)
    # The vptr check asks for run-time type information, which the product does without.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

if(SKY_FUZZ)
  # Coverage of everything a fuzzer reaches guides it.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00 UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
  # The version of debugging information that Wine's debug help library reads.
  add_compile_options(-gdwarf-4)
endif()
