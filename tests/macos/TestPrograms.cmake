# Tests as Mach-O programs, which the loader runs: the targets scaler_isp_unit_tests, the library's, and
# scaler_isp_program_tests, those of the virtual scaler and of ispctl, in a tree that has both. For one
# processor, the first of the tree, because a second slice would take the same time again, and without debug
# information. test_exclusions.txt names the files and tests that are left out.
set(SCALER_ISP_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest (Debian: googletest)")
if(NOT EXISTS ${SCALER_ISP_GOOGLETEST}/googlemock/src/gmock-all.cc)
    message(FATAL_ERROR "tests: no sources of GoogleTest in ${SCALER_ISP_GOOGLETEST} (libgtest-dev, googletest)")
endif()
list(GET CMAKE_OSX_ARCHITECTURES 0 first_arch)
set(CMAKE_OSX_ARCHITECTURES ${first_arch})
# Thread-local variables are found by a function of the compiler's library, which the loader offers; dyld's own
# way would need assembly in it.
add_compile_options(-g0 -femulated-tls)
# For arm64, ld64.lld 19 writes an entry without unwind information at the address of a function that follows an
# object file without code, and exceptions end there; not if it removes what nothing refers to.
add_link_options(LINKER:-U,___emutls_get_address LINKER:-dead_strip)

set(googletest ${SCALER_ISP_GOOGLETEST}/googletest)
set(googlemock ${SCALER_ISP_GOOGLETEST}/googlemock)
find_package(Threads REQUIRED)
add_library(scaler_isp_googletest STATIC EXCLUDE_FROM_ALL
    ${googletest}/src/gtest-all.cc ${googlemock}/src/gmock-all.cc)
target_include_directories(scaler_isp_googletest PRIVATE ${googletest} ${googlemock})
target_include_directories(scaler_isp_googletest SYSTEM PUBLIC ${googletest}/include ${googlemock}/include)
target_compile_features(scaler_isp_googletest PUBLIC cxx_std_20)
target_compile_options(scaler_isp_googletest PRIVATE -O0 -w) # its own warnings are not ours
target_link_libraries(scaler_isp_googletest PUBLIC Threads::Threads)
add_library(GTest::gmock ALIAS scaler_isp_googletest)
add_subdirectory(support EXCLUDE_FROM_ALL)

# test_programs(TARGET FOLDERS...): TARGET builds all test programs of these folders of tests/.
function(test_programs TARGET)
    add_custom_target(${TARGET})
    foreach(folder IN LISTS ARGN)
        get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
        list(FILTER targets INCLUDE REGEX "^test_")
        add_dependencies(${TARGET} ${targets})
    endforeach()
endfunction()

add_subdirectory(unit EXCLUDE_FROM_ALL)
test_programs(scaler_isp_unit_tests unit)
if(TARGET ispctl AND TARGET virtual_isp)
    find_package(Python3 COMPONENTS Interpreter QUIET)
    add_subdirectory(simulator EXCLUDE_FROM_ALL)
    add_subdirectory(ispctl EXCLUDE_FROM_ALL)
    test_programs(scaler_isp_program_tests simulator ispctl ispctl/doctor ispctl/check)
endif()
