#!/bin/sh
# Makes a macOS sysroot: headers and stubs that fetch_inputs.sh has fetched, the stubs of libc++ and
# libiconv from this directory, packages for programs (packages/), and bin/ with the programs that clang and
# dsymutil call by plain name.
#
#   make_sysroot.sh NPM-LIB LIBCXX-HEADERS MBEDTLS-SOURCES FMT-SOURCES LIBSYSTEM-STUB LLVM-BIN SYSROOT
set -eu
here=$(cd "$(dirname "$0")" && pwd)
npm_lib=$1 libcxx=$2 mbedtls=$3 fmt=$4 libsystem=$5 llvm_bin=$6 sysroot=$7

rm -rf "$sysroot"
mkdir -p "$sysroot/usr/include/c++" "$sysroot/usr/lib" "$sysroot/bin"
cp -r "$npm_lib/libc/include/any-macos-any/." "$sysroot/usr/include/"
cp "$libsystem" "$sysroot/usr/lib/libSystem.tbd"
cp -r "$libcxx" "$sysroot/usr/include/c++/v1"
# Debian disables Apple's availability annotations; enabled, they make a symbol that is newer than the
# oldest supported macOS a compile-time error.
sed -i 's|^#define _LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS.*||' \
    "$sysroot/usr/include/c++/v1/__config_site"
cp "$here/libiconv.2.tbd" "$here/libc++.1.tbd" "$sysroot/usr/lib/"
ln -s libiconv.2.tbd "$sysroot/usr/lib/libiconv.tbd"
ln -s libc++.1.tbd "$sysroot/usr/lib/libc++.tbd"
# Without MaximumDeploymentTarget clang ignores the file.
cat >"$sysroot/SDKSettings.json" <<'JSON'
{"CanonicalName":"macosx14.0","DisplayName":"macOS 14.0","Version":"14.0","MaximumDeploymentTarget":"14.0.99","DefaultDeploymentTarget":"14.0"}
JSON
# Packages for programs: headers that Debian installs, described for macOS.
for headers in CLI nlohmann fmt; do
    cp -r "/usr/include/$headers" "$sysroot/usr/include/"
done
for package in "$here"/packages/*Config.cmake; do
    name=$(basename "$package" Config.cmake)
    mkdir -p "$sysroot/usr/lib/cmake/$name"
    cp "$package" "$sysroot/usr/lib/cmake/$name/"
done
mkdir "$sysroot/usr/src"
cp -r "$mbedtls" "$sysroot/usr/src/mbedtls"
cp -r "$fmt" "$sysroot/usr/src/fmt"
ln -s "$llvm_bin/llvm-lipo" "$sysroot/bin/lipo"
ln -s "$llvm_bin/dsymutil" "$sysroot/bin/dsymutil"
