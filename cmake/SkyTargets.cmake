# How a folder becomes a target. A new file in a folder is built without a word here.

# sky_library(NAME [OBJECT] [FOLDER folder] [LIBRARIES ...]): a static library of the sources beside the calling
# CMakeLists.txt, or below it in FOLDER. With OBJECT its objects are linked whole.
function(sky_library name)
  cmake_parse_arguments(arg "OBJECT" "FOLDER" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${arg_FOLDER}/*.cpp")
  if(arg_OBJECT)
    add_library(${name} OBJECT ${sources})
  else()
    add_library(${name} STATIC ${sources})
  endif()
  target_link_libraries(${name} PUBLIC sky_options ${arg_LIBRARIES})
endfunction()

# sky_program(NAME SOURCES ... [PLATFORM native|fake] [SCREEN] LIBRARIES ...): an executable on one platform. The platform's
# objects are linked whole, so the libraries may call it in any order. With SCREEN it has windows and drawing; the fake
# platform always has.
function(sky_program name)
  cmake_parse_arguments(arg "SCREEN" "PLATFORM" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT arg_PLATFORM)
    set(arg_PLATFORM native)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE sky_options platform_${arg_PLATFORM} ${arg_LIBRARIES})
  if(arg_SCREEN)
    target_link_libraries(${name} PRIVATE platform_screen)
  endif()
endfunction()

# All tests that run several threads at once.
add_custom_target(threaded_tests)

# sky_test(NAME FOLDERS ... [PLATFORM native|fake] [THREADED] [SCREEN] [TIMEOUT seconds] LIBRARIES ...): a GoogleTest program
# of all sources in some folders, run by CTest as one test. Its counts are left in results/NAME.json. One that is THREADED is
# also built and run under the thread sanitizer. One with a SCREEN runs in a virtual display of its own.
function(sky_test name)
  cmake_parse_arguments(arg "THREADED;SCREEN" "PLATFORM;TIMEOUT" "FOLDERS;LIBRARIES" ${ARGN})
  set(sources)
  foreach(folder IN LISTS arg_FOLDERS)
    file(GLOB found CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp")
    list(APPEND sources ${found})
  endforeach()
  set(screen)
  if(arg_SCREEN)
    set(screen SCREEN)
  endif()
  sky_program(${name} ${screen} PLATFORM ${arg_PLATFORM} SOURCES ${sources}
              LIBRARIES ${arg_LIBRARIES} gmock gtest_main)
  # Most of the time that a test takes to build goes into making its own code fast, checked and easy to step through, and
  # there is no need: what it tests is built in full.
  target_compile_options(${name} PRIVATE -O0 -g1)
  if(SKY_SANITIZE MATCHES undefined)
    target_compile_options(${name} PRIVATE -fno-sanitize=undefined)
  endif()
  # The results' path is relative: what is absolute here is not so for a Windows program.
  set(results --gtest_output=json:results/${name}.json)
  if(arg_SCREEN)
    # The display starts the program, so CMake does not put the emulator in front of it.
    add_test(NAME ${name} WORKING_DIRECTORY "${CMAKE_BINARY_DIR}"
             COMMAND "${CMAKE_SOURCE_DIR}/tools/display" ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}> ${results})
  else()
    add_test(NAME ${name} COMMAND ${name} ${results} WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 600)
  endif()
  if(arg_THREADED)
    add_dependencies(threaded_tests ${name})
    set_tests_properties(${name} PROPERTIES LABELS threaded)
  endif()
  # Tests write no setting of the person who runs them, nor of suites that run beside them.
  set(own "${CMAKE_BINARY_DIR}/own/${name}")
  set(environment
    "XDG_CONFIG_HOME=${own}"
    "TSAN_OPTIONS=halt_on_error=1:suppressions=${CMAKE_SOURCE_DIR}/tests/races.txt"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/leaks.txt:print_suppressions=0")
  if(NOT WIN32)
    # An emulator may keep there what serves all suites.
    list(APPEND environment "XDG_RUNTIME_DIR=${own}")
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${environment}")
endfunction()
