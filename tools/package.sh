# shellcheck shell=sh
# ./dev package: archives for those who build on the library. Sourced by ./dev.

package_version() {
    sed -n 's/^project(ScalerIsp VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt
}

# package_readme FOLDER KIND: a line that begins with @linux@ or @macos@ is for that kind only.
package_readme() {
    sed -e "s/^@$2@//" -e '/^@[a-z]*@/d' -e "s/@VERSION@/$(package_version)/g" \
        packaging/package-readme.md.in >"$1/README.md"
}

# package_archive FOLDER: checksums, then the archive; the same input gives the same bytes.
package_archive() {
    cp LICENSE "$1/"
    # shellcheck disable=SC2094 # SHA256SUMS itself is not read
    (cd "$1" && find . -type f ! -name SHA256SUMS | LC_ALL=C sort | xargs sha256sum >SHA256SUMS)
    name=$(basename "$1")
    run tar --sort=name --owner=0 --group=0 --numeric-owner --mtime=@0 --mode=go=rX,u=rwX \
        -C build/package -cf "build/package/$name.tar" "$name"
    run gzip -9nf "build/package/$name.tar"
    echo "build/package/$name.tar.gz"
}

package_linux() {
    package=build/package/ScalerIsp-$(package_version)-linux-$(uname -m)
    rm -rf "$package"
    configure release -B build/package/build -DSCALER_ISP_HOST=OFF -DSCALER_ISP_SIMULATOR=OFF
    build build/package/build
    run cmake --install build/package/build --prefix "$PWD/$package" --strip
    package_readme "$package" linux
    package_archive "$package"
}

package_macos() {
    [ -e "$macos_library" ] || dev_macos library
    package=build/package/ScalerIsp-$(package_version)-macos-universal
    rm -rf "$package"
    run cmake --install build/macos/universal --prefix "$PWD/$package"
    rm -rf "$package/share" "${package:?}/bin" # virtual scaler and ispctl are for developers
    cp "$macos_library" "$package/lib/"
    cp packaging/macos/module.modulemap "$package/include/"
    package_readme "$package" macos
    package_archive "$package"
}

dev_package() {
    if on_a_mac; then
        echo "./dev package: the archives are made on Linux, where their bytes are always the same" >&2
        exit 2
    fi
    mkdir -p build/package
    step "package linux" package_linux
    step "package macos" package_macos
    step "check archives" run python3 -B tests/package/check_archives.py build/package \
        "$(package_version)" build/macos/sysroot
    ls build/package/*.tar.gz
}
