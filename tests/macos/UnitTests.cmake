# The library's unit tests as Mach-O programs, which the loader runs: target scaler_isp_unit_tests. For x86_64
# only, because the second slice would take the same time again, and without debug information. Files and
# tests that are left out are in unit_exclusions.txt.
set(SCALER_ISP_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest (Debian: googletest)")
if(NOT EXISTS ${SCALER_ISP_GOOGLETEST}/googlemock/src/gmock-all.cc)
    message(FATAL_ERROR "tests: no sources of GoogleTest in ${SCALER_ISP_GOOGLETEST} (libgtest-dev, googletest)")
endif()
set(CMAKE_OSX_ARCHITECTURES x86_64)
# Thread-local variables are found by a function of the compiler's library, which the loader offers; dyld's own
# way would need assembly in it.
add_compile_options(-g0 -femulated-tls)
add_link_options(LINKER:-U,___emutls_get_address)

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
add_subdirectory(unit EXCLUDE_FROM_ALL)
add_custom_target(scaler_isp_unit_tests)
get_property(programs DIRECTORY unit PROPERTY BUILDSYSTEM_TARGETS)
list(FILTER programs INCLUDE REGEX "^test_unit_")
add_dependencies(scaler_isp_unit_tests ${programs})
