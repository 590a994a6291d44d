# shellcheck shell=sh
# ./dev package: what a release consists of, for those who use or build on the library. Sourced by ./dev.
#
#   build/package/tree/NAME/      what goes into an archive
#   build/package/NAME.tar.gz ... the release: archives, Package.swift, SBOMs, SHA256SUMS
#
# docs/verify-a-release.md says how a user checks it.

package_folder=build/package
package_llvm=/usr/lib/llvm-19/bin

package_version() {
    sed -n 's/^project(ScalerIsp VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt
}

# The time of everything in a release: that of the commit, so that somebody else's archives have it, too.
package_time() {
    if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
        echo "$SOURCE_DATE_EPOCH"
    else
        git -c safe.directory='*' log -1 --format=%ct 2>/dev/null || echo 0
    fi
}

# package_new NAME: an empty directory for what goes into an archive.
package_new() {
    package=$package_folder/tree/$1
    rm -rf "$package"
    mkdir -p "$package"
}

# package_inputs: the sources of mbed TLS, and the licences of what is compiled in.
package_inputs() {
    package_inputs=$(packaging/macos/fetch_inputs.sh "$macos_cache") || exit 2
    package_mbedtls=$(echo "$package_inputs" | sed -n 3p)
    package_fmt=$(echo "$package_inputs" | sed -n 4p)
    rm -rf "$package_folder/licences"
    mkdir -p "$package_folder/licences"
    cp /usr/share/doc/libcli11-dev/copyright "$package_folder/licences/CLI11.txt"
    cp "$package_fmt/LICENSE.rst" "$package_folder/licences/fmt.txt"
    cp /usr/share/doc/nlohmann-json3-dev/copyright "$package_folder/licences/nlohmann-json.txt"
    cp "$package_mbedtls/LICENSE" "$package_folder/licences/mbedtls.txt"
}

# package_readme KIND: a line that begins with @linux@ or @macos@ is for that kind only.
package_readme() {
    sed -e "s/^@$1@//" -e '/^@[a-z]*@/d' -e "s/@VERSION@/$(package_version)/g" \
        packaging/package-readme.md.in >"$package/README.md"
    cp LICENSE "$package/"
    cp -R "$package_folder/licences" "$package/"
    # shellcheck disable=SC2094 # SHA256SUMS itself is not read
    (cd "$package" && find . -type f ! -name SHA256SUMS | LC_ALL=C sort | tr '\n' '\0' |
        xargs -0 sha256sum >SHA256SUMS)
}

# package_archive FILE: written twice, the second time from a copy, whose times, owners and order of entries
# are others.
package_archive() {
    rm -rf "$package_folder/copy"
    mkdir -p "$package_folder/copy"
    cp -R "$package" "$package_folder/copy/"
    run python3 -B tools/release/write_archive.py --time "$package_seconds" "$package" "$package_folder/$1"
    run python3 -B tools/release/write_archive.py --time "$package_seconds" \
        "$package_folder/copy/$(basename "$package")" "$package_folder/copy/$1"
    run cmp "$package_folder/$1" "$package_folder/copy/$1"
    echo "$1: the same bytes again"
    rm -rf "$package_folder/copy"
}

# Precompiled headers, which depend on whether there is ccache, must not change the bytes.
package_flags="-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON"

# Nothing but the libraries of every Linux is needed: fmt and mbed TLS are compiled from their sources, as for
# macOS. Warnings are errors as in the other trees, whose objects ccache then has.
package_linux() {
    configure release -B build/package-linux "$package_flags" -DSCALER_ISP_WERROR=ON \
        -Dfmt_DIR="$PWD/packaging/macos/packages" -DFMT_SOURCE="$package_fmt" \
        -DMBEDCRYPTO_SOURCE="$package_mbedtls"
    build build/package-linux
    package_new "$package_linux_name"
    run cmake --install build/package-linux --prefix "$PWD/$package" --strip
    package_readme linux
    package_archive "$package_linux_name.tar.gz"
}

# What is installed, but the library and its debug information as they ship.
package_macos() {
    macos_environment
    [ -d build/macos/sysroot/usr/src/fmt ] || macos_sysroot
    PATH=$PWD/build/macos/sysroot/bin:$PATH
    configure macos "$package_flags" -DSCALER_ISP_HOST=ON
    macos_build build/macos/universal --target scaler_isp_demo # what is installed
    macos_ship
    package_new "$package_macos_name"
    run cmake --install build/macos/universal --prefix "$PWD/$package"
    cp "$macos_library" "$package/lib/"
    cp "$macos_library" "$package/share/scaler-isp/virtual/"
    cp -R "$macos_library.dSYM" "$package/lib/"
    for file in "$package/bin/ispctl" "$package/share/scaler-isp/selftest/probe" \
        "$package"/share/scaler-isp/virtual/lib[!S]*.dylib \
        "$package/share/scaler-isp/virtual/libSignVerify.dylib" \
        "$package/share/scaler-isp/virtual/PlugIn/libIsp.dylib"; do
        run "$package_llvm/llvm-strip" -x -S "$file" # signs again
    done
    mkdir "$package/include/ScalerIsp"
    cp packaging/macos/module.modulemap "$package/include/ScalerIsp/"
    package_readme macos
    package_archive "$package_macos_name.tar.gz"
}

# Beside the archives: the bundle of Xcode and the Swift package manager.
package_xcframework() {
    bundle=$package_folder/tree/ScalerIsp.xcframework
    run python3 -B tools/release/make_xcframework.py "$package_folder/tree/$package_macos_name" "$bundle"
    package=$bundle
    package_archive ScalerIsp.xcframework.zip
    python3 -B tools/release/write_package_swift.py packaging/macos/Package.swift.in "$(package_version)" \
        "$package_folder/ScalerIsp.xcframework.zip" ${package_url:+--url "$package_url"} \
        >"$package_folder/Package.swift"
}

# package_list KIND FILE DIRECTORY: what an archive consists of, beside it.
package_list() {
    list=$package_folder/${2%.tar.gz}
    python3 -B tools/release/write_sbom.py --kind "$1" --version "$(package_version)" \
        --time "$package_seconds" "$package_folder/$2" "$package_folder/tree/$3" >"${list%.zip}.spdx.json"
}

# The hashes of everything that is published; their signature is that of the release.
package_sums() {
    package_list linux "$package_linux_name.tar.gz" "$package_linux_name"
    package_list macos "$package_macos_name.tar.gz" "$package_macos_name"
    package_list xcframework ScalerIsp.xcframework.zip ScalerIsp.xcframework
    (cd "$package_folder" && LC_ALL=C sha256sum -- *.gz *.json *.swift *.zip >SHA256SUMS)
    [ -n "$package_key" ] || return 0
    run openssl dgst -sha256 -sign "$package_key" -out "$package_folder/SHA256SUMS.sig" \
        "$package_folder/SHA256SUMS"
    run openssl pkey -in "$package_key" -pubout -out "$package_folder/scaler-isp-release.pub"
}

# Everything once more, from a copy of the sources in another directory, without what compilers remember.
package_again() {
    elsewhere=$package_folder/again/elsewhere
    rm -rf "$package_folder/again"
    mkdir -p "$elsewhere"
    tracked -z | xargs -0 cp --parents -t "$elsewhere"
    run env -C "$elsewhere" CCACHE_DISABLE=1 SOURCE_DATE_EPOCH="$package_seconds" \
        SCALER_ISP_CACHE="$macos_cache" ./dev package --unchecked ${package_url:+--url "$package_url"} --verbose
    run diff "$package_folder/SHA256SUMS" "$elsewhere/$package_folder/SHA256SUMS"
    echo "the same bytes from another directory"
    rm -rf "$package_folder/again"
}

check_linux_archive() {
    run python3 -B tests/package/check_linux_archive.py "$package_folder/$package_linux_name.tar.gz" \
        "$(package_version)"
}

check_macos_archive() {
    macos_loader x86_64
    runtime_x86_64=$macos_runtime
    macos_loader arm64
    run python3 -B tests/package/check_macos_archive.py "$package_folder/$package_macos_name.tar.gz" \
        "$(package_version)" build/macos/sysroot \
        "x86_64=$runtime_x86_64=$PWD/build/macos/x86_64/run_program" \
        "arm64=$macos_runtime=$macos_emulator $PWD/build/macos/arm64/run_program"
}

check_xcframework() {
    run python3 -B tests/package/check_xcframework.py "$package_folder/ScalerIsp.xcframework.zip" \
        "$package_folder/Package.swift" build/macos/sysroot
    grammar=$(tests/package/fetch_swift_grammar.sh "$macos_cache") || exit 2
    run cc -w -O1 -I "$grammar/src" -c -o "$package_folder/swift_parser.o" "$grammar/src/parser.c"
    run cc -w -O1 -I "$grammar/src" -c -o "$package_folder/swift_scanner.o" "$grammar/src/scanner.c"
    run cc -Wall -Wextra -Werror -o "$package_folder/swift_syntax" tests/package/swift_syntax.c \
        "$package_folder/swift_parser.o" "$package_folder/swift_scanner.o" -ltree-sitter
    run python3 -B tests/package/check_swift.py "$package_folder/swift_syntax" \
        examples/host_swift/main.swift "$package_folder/Package.swift"
    rm "$package_folder"/swift_*
}

check_release() {
    run python3 -B tests/package/check_release.py "$package_folder"
}

package_options() {
    package_url='' package_key='' package_twice='' package_write='' package_checks='linux_archive macos_archive xcframework release'
    while [ $# -gt 0 ]; do
        case $1 in
        --url | --sign)
            if [ $# -lt 2 ]; then
                echo "./dev package: $1 needs a value" >&2
                exit 2
            fi
            if [ "$1" = --url ]; then package_url=$2; else package_key=$2; fi
            shift
            ;;
        --twice) package_twice=yes ;;
        --unchecked) package_checks='' ;;
        --write) package_write=--write ;;
        *)
            echo "./dev package: unknown argument $1; there are: --sign KEY.pem, --twice, --unchecked, --url URL, --write" >&2
            exit 2
            ;;
        esac
        shift
    done
    if [ -n "$package_key" ] && ! openssl pkey -in "$package_key" -noout; then
        echo "./dev package: $package_key is no private key that openssl reads; docs/verify-a-release.md" \
            "shows how one is made" >&2
        exit 2
    fi
}

dev_package() {
    if on_a_mac; then
        echo "./dev package: the archives are made on Linux, where their bytes are always the same" >&2
        exit 2
    fi
    package_options "$@"
    mkdir -p "$package_folder"
    package_seconds=$(package_time)
    package_linux_name=ScalerIsp-$(package_version)-linux-$(uname -m)
    package_macos_name=ScalerIsp-$(package_version)-macos-universal
    rm -f "$package_folder"/*.* "$package_folder"/SHA256SUMS*
    rm -rf "$package_folder/checks"
    mkdir "$package_folder/checks"
    step "fetch inputs" package_inputs
    step "package linux" package_linux
    step "package macos" package_macos
    step "package xcframework" package_xcframework
    step "lists and sums" package_sums
    for check in $package_checks; do
        step "check $check" "check_$check"
        echo "$check" >>"$package_folder/checks/passed.txt"
    done
    if [ -n "$package_twice" ]; then
        step "package again" package_again
    fi
    if [ -z "$(git -c safe.directory='*' status --porcelain 2>/dev/null)" ]; then
        package_state=
    else
        package_state=" (from files that are not committed)"
    fi
    echo "== package: build/package holds the release$package_state"
    cat "$package_folder/SHA256SUMS"
    if [ -n "$package_checks" ]; then
        # shellcheck disable=SC2086
        python3 -B tools/where_it_ran.py $package_write
    fi
}
