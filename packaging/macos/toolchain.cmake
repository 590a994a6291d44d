# CMake toolchain: macOS libraries, x86_64 and arm64 at once, from Linux with Debian's clang, lld and
# llvm packages.
#
#   cmake -DCMAKE_TOOLCHAIN_FILE=packaging/macos/toolchain.cmake -DMACOS_SYSROOT=DIRECTORY
#
# DIRECTORY is the sysroot made by make_sysroot.sh. Unset LIBRARY_PATH before configuring and building:
# clang passes its Linux directories to the Mach-O linker.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20.0) # Darwin 20 is macOS 11
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SYSROOT MACOS_ARCHS MACOS_LLVM)
set(MACOS_LLVM 19 CACHE STRING "Major version of the clang, lld and llvm packages")
set(MACOS_ARCHS "x86_64;arm64" CACHE STRING "Architectures to build")
if(NOT MACOS_SYSROOT)
    message(FATAL_ERROR "set MACOS_SYSROOT to the directory that packaging/macos/make_sysroot.sh has made")
endif()
get_filename_component(MACOS_SYSROOT "${MACOS_SYSROOT}" ABSOLUTE)

list(GET MACOS_ARCHS 0 first_arch)
set(CMAKE_SYSTEM_PROCESSOR ${first_arch})
set(CMAKE_OSX_SYSROOT "${MACOS_SYSROOT}" CACHE PATH "" FORCE)
set(CMAKE_OSX_DEPLOYMENT_TARGET 11.0 CACHE STRING "")
set(CMAKE_OSX_ARCHITECTURES "${MACOS_ARCHS}" CACHE STRING "")

set(llvm_bin /usr/lib/llvm-${MACOS_LLVM}/bin)
set(CMAKE_C_COMPILER ${llvm_bin}/clang)
set(CMAKE_CXX_COMPILER ${llvm_bin}/clang++)
set(CMAKE_C_COMPILER_TARGET ${first_arch}-apple-macos11)
set(CMAKE_CXX_COMPILER_TARGET ${first_arch}-apple-macos11)
set(CMAKE_AR ${llvm_bin}/llvm-ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${llvm_bin}/llvm-ranlib CACHE FILEPATH "")
set(CMAKE_NM ${llvm_bin}/llvm-nm CACHE FILEPATH "")
set(CMAKE_STRIP ${llvm_bin}/llvm-strip CACHE FILEPATH "")
set(CMAKE_OTOOL ${llvm_bin}/llvm-otool CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL ${llvm_bin}/llvm-install-name-tool CACHE FILEPATH "")
set(CMAKE_LINKER ${llvm_bin}/ld64.lld CACHE FILEPATH "")

# llvm-ar cannot index universal objects: its archive seems valid, but resolves no symbol.
foreach(language IN ITEMS C CXX)
    set(CMAKE_${language}_ARCHIVE_CREATE
        "${llvm_bin}/llvm-libtool-darwin -static -o <TARGET> <OBJECTS>")
    set(CMAKE_${language}_ARCHIVE_APPEND "false")
    set(CMAKE_${language}_ARCHIVE_FINISH "")
endforeach()

# For several architectures clang calls a program named lipo, which is in bin/ of the sysroot.
set(lipo_path "-B\"${MACOS_SYSROOT}/bin\"")
# No path of the build machine appears in a file. dsymutil extracts the debug information, strip removes it.
string(CONCAT compile_flags "${lipo_path} -g -ffile-compilation-dir=build"
    " -ffile-prefix-map=\"${CMAKE_SOURCE_DIR}\"=.")
set(CMAKE_C_FLAGS_INIT "${compile_flags}")
set(CMAKE_CXX_FLAGS_INIT "${compile_flags} -stdlib=libc++")
foreach(kind IN ITEMS EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT
        "-fuse-ld=lld ${lipo_path} -Wl,-oso_prefix,\"${CMAKE_BINARY_DIR}/\"")
endforeach()
set(CMAKE_USER_MAKE_RULES_OVERRIDE ${CMAKE_CURRENT_LIST_DIR}/after_platform.cmake)
unset(ENV{LIBRARY_PATH})

set(CMAKE_FIND_ROOT_PATH "${MACOS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind IN ITEMS LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
