# shellcheck shell=sh
# What each ./dev command needs; the one place where packages are named. Sourced by ./dev.
#
# One row for each need:
#   commands   the ./dev commands that need it, joined by commas; runs_tests has those that need all of test's
#   probe      what shows that it is there: cmd:NAME a program, linux:NAME one that only Linux needs,
#              inc:FILE a header, file:PATH a file
#   apt        package of Debian 12, whose versions are the pinned ones
#   brew       formula of Homebrew, or - where macOS brings it
needs() {
    cat <<'ROWS'
test,lint,check,demo,bench,macos,package cmd:c++                                                  g++                       -
test,check,demo,bench,macos,package,fuzz cmd:cmake                                                cmake                     cmake
test,check,demo,bench,macos,package,fuzz cmd:ninja                                                ninja-build               ninja
test,check,demo,bench,macos,package      inc:CLI/CLI.hpp                                          libcli11-dev              cli11
test,check,demo,bench,macos,package,fuzz inc:nlohmann/json.hpp                                    nlohmann-json3-dev        nlohmann-json
test,check,demo,bench,macos,package,fuzz inc:fmt/format.h                                         libfmt-dev                fmt
test,check,demo,bench                    inc:mbedtls/pk.h                                         libmbedtls-dev            mbedtls@2
test,check                               inc:openssl/evp.h                                        libssl-dev                openssl@3
test,demo,check,macos,package            cmd:openssl                                              openssl                   openssl@3
test,check,bench,macos,package           inc:gtest/gtest.h                                        libgtest-dev              googletest
test,check,bench,macos,package           inc:gmock/gmock.h                                        libgmock-dev              googletest
test,check,bench                         inc:benchmark/benchmark.h                                libbenchmark-dev          google-benchmark
test,lint,check,bench,macos,package,fuzz cmd:python3                                              python3                   python@3
test,check                               cmd:jsonschema                                           python3-jsonschema        -
test,check,package                       cmd:mandoc                                               mandoc                    mandoc
test,check                               cmd:zsh                                                  zsh                       -
test,check                               cmd:fish                                                 fish                      fish
test,check                               cmd:node                                                 nodejs                    node
test,check,package                       cmd:pkg-config                                           pkg-config                pkg-config
test,check,bench,macos,package           file:/usr/share/i18n/charmaps                            locales                   -
test,lint,check,format,package,fuzz      cmd:git                                                  git                       git
lint,check                               cmd:shellcheck                                           shellcheck                shellcheck
lint,check                               cmd:flake8                                               flake8                    flake8
check                                    cmd:cppcheck                                             cppcheck                  cppcheck
lint,check                               cmd:codespell                                            codespell                 codespell
check,fuzz,coverage                      cmd:clang++-14                                           clang-14                  llvm@14
check,fuzz,coverage                      file:/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux         libclang-rt-14-dev        -
fuzz                                     cmd:llvm-symbolizer-14                                   llvm-14                   llvm@14
check,coverage                           cmd:llvm-cov-14                                          llvm-14                   llvm@14
mutate                                   cmd:ccache                                               ccache                    ccache
check                                    cmd:clang-tidy-14                                        clang-tidy-14             llvm@14
lint,check,format                        cmd:clang-format-14                                      clang-format-14           llvm@14
macos,package                            linux:clang-19                                           clang-19                  -
macos,package                            linux:ld64.lld-19                                        lld-19                    -
macos,package                            linux:llvm-lipo-19                                       llvm-19                   -
macos,package                            linux:npm                                                npm                       -
package                                  inc:tree_sitter/api.h                                    libtree-sitter-dev        -
package                                  cmd:readelf                                              binutils                  -
macos,package                            linux:qemu-aarch64                                       qemu-user                 -
macos,package                            file:/usr/aarch64-linux-gnu/include/stdio.h              libc6-dev-arm64-cross     -
macos,package                            file:/usr/lib/gcc-cross/aarch64-linux-gnu/12             libgcc-12-dev-arm64-cross -
ROWS
}

# On a Mac programs of the pinned LLVM carry no version in their names.
if [ "$(uname -s)" = Darwin ]; then
    llvm=$(brew --prefix llvm@14 2>/dev/null || true)/bin
    clang_format=$llvm/clang-format clang_tidy=$llvm/clang-tidy clangxx=$llvm/clang++ clang=$llvm/clang
    llvm_cov=$llvm/llvm-cov llvm_profdata=$llvm/llvm-profdata
else
    clang_format=clang-format-14 clang_tidy=clang-tidy-14 clangxx=clang++-14 clang=clang-14
    llvm_cov=llvm-cov-14 llvm_profdata=llvm-profdata-14
fi

has_header() {
    for folder in /usr/include /usr/include/*-linux-gnu /usr/local/include /opt/homebrew/include \
        /opt/homebrew/opt/openssl@3/include /usr/local/opt/openssl@3/include; do
        [ -e "$folder/$1" ] && return 0
    done
    return 1
}

is_there() {
    case $1 in
    cmd:*-14) command -v "${1#cmd:}" >/dev/null 2>&1 || [ -x "${llvm:-/nowhere}/clang" ] ;;
    cmd:*) command -v "${1#cmd:}" >/dev/null 2>&1 ;;
    linux:*) command -v "${1#linux:}" >/dev/null 2>&1 || [ "$(uname -s)" = Darwin ] ;;
    inc:*) has_header "${1#inc:}" ;;
    file:*) [ -e "${1#file:}" ] || [ "$(uname -s)" = Darwin ] ;;
    esac
}

# Whether a command needs all that "test" needs, besides its own rows.
runs_tests() {
    [ "$1" = coverage ] || [ "$1" = mutate ] || [ "$1" = generate ]
}

# Prints the packages that a command still lacks, of the column apt or brew.
lacking() {
    needs | while read -r commands probe apt brew; do
        case ",$commands," in
        *",$1,"*) ;;
        *,test,*) runs_tests "$1" || continue ;;
        *) continue ;;
        esac
        is_there "$probe" && continue
        if [ "$2" = apt ]; then echo "$apt"; else echo "$brew"; fi
    done | grep -v '^-$' | sort -u | tr '\n' ' '
}

install_with_apt() {
    # shellcheck disable=SC2086
    run $sudo apt-get update -q || exit 2
    # shellcheck disable=SC2086
    run $sudo env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends $packages || exit 2
}

install_with_brew() {
    # shellcheck disable=SC2086
    run brew install $packages || exit 2
}

# Installs what a command lacks; ends with 2 where that cannot be done here.
install_lacking() {
    if command -v apt-get >/dev/null 2>&1; then
        packages=$(lacking "$1" apt)
        [ -n "$packages" ] || return 0
        if [ "$(id -u)" -eq 0 ]; then
            sudo=
        elif command -v sudo >/dev/null 2>&1; then
            sudo=sudo
        else
            echo "./dev $1 needs packages that are missing here. As root:" >&2
            echo "    apt-get update && apt-get install --no-install-recommends $packages" >&2
            exit 2
        fi
        step "install missing packages" install_with_apt
    else
        packages=$(lacking "$1" brew)
        [ -n "$packages" ] || return 0
        if ! command -v brew >/dev/null 2>&1; then
            echo "./dev $1 needs: $packages" >&2
            echo "Neither apt-get nor Homebrew is here (https://brew.sh)." >&2
            exit 2
        fi
        step "install missing packages" install_with_brew
    fi
    left=$(lacking "$1" apt)
    if [ -n "$left" ]; then
        echo "./dev $1: still missing after the installation: $left" >&2
        exit 2
    fi
}
