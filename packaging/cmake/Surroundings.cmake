# What a build of its own decides for itself, and a project that includes this one decides for us: build type,
# directories of the installation, testing. There nothing is cached or changed but what begins with
# SCALER_ISP_.

if(PROJECT_IS_TOP_LEVEL)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
    endif()
    # C is for tests, but its compiler and flags may be given for a tree without them, too.
    enable_language(C)
    # Always lib, never lib/x86_64-linux-gnu: plug-ins and hosts name the library by path. A value of the
    # command line without a type must not become a path below the working directory, as it would by
    # set(... CACHE PATH).
    if(NOT DEFINED CMAKE_INSTALL_LIBDIR)
        set(CMAKE_INSTALL_LIBDIR lib CACHE PATH "Directory of the library below the prefix")
    endif()
    include(GNUInstallDirs)
    include(CTest)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    set(scaler_isp_testing ${BUILD_TESTING})
else()
    # As GNUInstallDirs, without its entries in the cache.
    foreach(directory IN ITEMS BIN:bin LIB:lib INCLUDE:include DATA:share)
        string(REGEX MATCH "^(.*):(.*)$" matched ${directory})
        set(name ${CMAKE_MATCH_1}DIR)
        if(NOT CMAKE_INSTALL_${name})
            set(CMAKE_INSTALL_${name} ${CMAKE_MATCH_2})
        endif()
        set(CMAKE_INSTALL_FULL_${name} ${CMAKE_INSTALL_${name}})
        cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_FULL_${name}
            BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE)
    endforeach()
    # Tests that somebody asked for are built whatever BUILD_TESTING says about the others.
    set(scaler_isp_testing FALSE)
    if(SCALER_ISP_TESTS STREQUAL "ON" OR SCALER_ISP_BENCH STREQUAL "ON")
        enable_language(C)
        enable_testing()
        set(scaler_isp_testing TRUE)
    endif()
endif()

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

# A build directory looks like an installation, so that ispctl finds the library there. A library alone goes
# where the surrounding project puts its libraries.
set(scaler_isp_output_directory "${PROJECT_BINARY_DIR}/lib")
if(CMAKE_LIBRARY_OUTPUT_DIRECTORY AND NOT PROJECT_IS_TOP_LEVEL
        AND SCALER_ISP_HOST STREQUAL "OFF" AND SCALER_ISP_SIMULATOR STREQUAL "OFF")
    set(scaler_isp_output_directory "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
endif()
