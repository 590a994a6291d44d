#!/bin/sh
# Builds what the loader puts under the library on Linux: libc++ and the unwinder as Mach-O libraries, with
# the interface that they have on macOS, where both belong to the system. For tests only.
#
#   build_runtime.sh NPM-LIB SYSROOT LLVM-BIN ARCH FOLDER JOBS  -> FOLDER/libc++.1.dylib, FOLDER/libunwind.dylib
set -eu
sources=$1 sysroot=$2 llvm_bin=$3 arch=$4 folder=$5 jobs=$6
unset LIBRARY_PATH
objects=$folder.objects
mkdir -p "$objects"

common="--target=$arch-apple-macos11 -isysroot $sysroot -O2 -fPIC -DNDEBUG -w"
config="-D_LIBCPP_ABI_VERSION=1 -D_LIBCPP_ABI_NAMESPACE=__1 -D_LIBCPP_HARDENING_MODE_DEFAULT=2
    -D_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_PSTL_CPU_BACKEND_SERIAL"
cxx="$common $config -nostdinc++ -std=c++20 -fvisibility=hidden -fvisibility-inlines-hidden
    -D_LIBCPP_BUILDING_LIBRARY"
libcxx="$cxx -DLIBCXX_BUILDING_LIBCXXABI -I $sources/libcxx/include -I $sources/libcxxabi/include
    -I $sources/libcxx/src -I $sources/libcxx/src/include"
libcxxabi="$cxx -D_LIBCXXABI_BUILDING_LIBRARY -I $sources/libcxxabi/include -I $sources/libcxx/include
    -I $sources/libcxx/src"
unwind="$common -D_LIBUNWIND_IS_NATIVE_ONLY -I $sources/libunwind/include -I $sources/libunwind/src"

# One line for each file: the object, then the command without its output.
# shellcheck disable=SC2086 # the variables hold several words each
commands() {
    for file in "$sources"/libcxx/src/*.cpp "$sources"/libcxx/src/ryu/*.cpp \
        "$sources"/libcxx/src/filesystem/*.cpp; do
        echo "cxx-$(basename "$file") $llvm_bin/clang++" $libcxx -c "$file"
    done
    for file in "$sources"/libcxxabi/src/*.cpp; do
        case $file in
        *cxa_noexception.cpp | *cxa_thread_atexit.cpp) ;; # the other half of an either-or
        *) echo "abi-$(basename "$file") $llvm_bin/clang++" $libcxxabi -c "$file" ;;
        esac
    done
    echo "unwind-libunwind.cpp $llvm_bin/clang++" $unwind $config -nostdinc++ -isystem \
        "$sources/libcxx/include" -fno-exceptions -fno-rtti -std=c++17 \
        -c "$sources/libunwind/src/libunwind.cpp"
    for file in UnwindLevel1.c UnwindLevel1-gcc-ext.c UnwindRegistersRestore.S \
        UnwindRegistersSave.S; do
        echo "unwind-$file $llvm_bin/clang" $unwind -funwind-tables -c "$sources/libunwind/src/$file"
    done
}

# link FILE INSTALL-NAME OBJECTS...
link() {
    file=$1 name=$2
    shift 2
    "$llvm_bin/clang++" --target="$arch-apple-macos11" -isysroot "$sysroot" -fuse-ld=lld -dynamiclib \
        -nostdlib++ "$@" -o "$file" -Wl,-install_name,"$name"
}

# shellcheck disable=SC2016 # for the inner shell
commands | xargs -P "$jobs" -L 1 sh -c 'object=$1/$2.o; shift 2; "$@" -o "$object"' sh "$objects"
rm -rf "$folder.new"
mkdir -p "$folder.new"
link "$folder.new/libc++.1.dylib" /usr/lib/libc++.1.dylib "$objects"/cxx-*.o "$objects"/abi-*.o
link "$folder.new/libunwind.dylib" /usr/lib/system/libunwind.dylib "$objects"/unwind-*.o
mv "$folder.new" "$folder"
rm -rf "$objects"
