# shellcheck shell=sh
# ./dev macos: the universal library, built, inspected and run. Sourced by ./dev.
#
# On Linux it is cross-built and both halves run in a loader (tests/macos); on a Mac Xcode's tools build it
# and the tests run as everywhere.

macos_out=build/macos/out
macos_library=$macos_out/libScalerIsp.dylib
macos_llvm=/usr/lib/llvm-19/bin
macos_cache=${SCALER_ISP_CACHE:-${XDG_CACHE_HOME:-${HOME:-$PWD/build}/.cache}/scaler-isp}

on_a_mac() { [ "$(uname -s)" = Darwin ]; }

# Object files and archives carry no times; clang would hand Linux folders to the Mach-O linker.
macos_environment() {
    ZERO_AR_DATE=1
    export ZERO_AR_DATE
    unset LIBRARY_PATH
}

# macos_sysroot: inputs by hash from the cache or the network, and the sysroot made of them.
macos_sysroot() {
    echo "+ packaging/macos/fetch_inputs.sh $macos_cache"
    inputs=$(packaging/macos/fetch_inputs.sh "$macos_cache") || exit 2
    macos_npm=$(echo "$inputs" | sed -n 1p)
    run packaging/macos/make_sysroot.sh "$macos_npm" "$(echo "$inputs" | sed -n 2p)" \
        "$(echo "$inputs" | sed -n 3p)" "$(echo "$inputs" | sed -n 4p)" "$(echo "$inputs" | sed -n 5p)" \
        "$macos_llvm" "$PWD/build/macos/sysroot"
}

# macos_build FOLDER OPTIONS...: for every object of two architectures clang leaves an empty folder among
# the temporary files.
macos_build() {
    build_folder=$1
    shift
    mkdir -p build/macos/tmp
    run env TMPDIR="$PWD/build/macos/tmp" cmake --build "$build_folder" -j "$jobs" "$@"
    rm -rf build/macos/tmp
}

macos_library() {
    macos_environment
    if on_a_mac; then
        configure macos-native
    else
        macos_sysroot
        configure macos
    fi
    macos_build build/macos/universal
    macos_ship
}

# The file that ships: debug information beside it, local symbols out of it.
macos_ship() {
    bin=
    if ! on_a_mac; then
        bin=$macos_llvm/
        PATH=$PWD/build/macos/sysroot/bin:$PATH
    fi
    rm -rf "$macos_out"
    mkdir -p "$macos_out"
    run dsymutil --oso-prepend-path "$PWD/build/macos/universal/" -o "$macos_library.dSYM" \
        build/macos/universal/lib/libScalerIsp.dylib
    cp build/macos/universal/lib/libScalerIsp.dylib "$macos_library"
    if on_a_mac; then
        run strip -x -S "$macos_library"
        run codesign --force --sign - "$macos_library"
    else
        run "${bin}llvm-strip" -x -S "$macos_library" # signs again
    fi
}

# macos_unoptimised TARGET: a target for x86_64 without optimisation, in a tree of its own, so that nothing of it
# can be delivered. Both slices as delivered take three times as long.
macos_unoptimised() {
    macos_environment
    PATH=$PWD/build/macos/sysroot/bin:$PATH
    configure macos -B build/macos/ispctl -DMACOS_ARCHS=x86_64 -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS_NONE=-g0 \
        -DBUILD_TESTING=ON -DSCALER_ISP_HOST=ON -DSCALER_ISP_SIMULATOR=ON
    macos_build build/macos/ispctl --target "$1"
}

# ispctl compiles and links for macOS; the step x86_64 runs it.
macos_ispctl() {
    on_a_mac && return 0
    macos_unoptimised ispctl
}

# Only on request, because it takes long: the tests of the virtual scaler and of ispctl.
macos_tests() {
    on_a_mac && return 0 # there the tree has them
    macos_unoptimised scaler_isp_program_tests
    macos_run_programs x86_64 tests ispctl
}

# Only on request, because emulation takes long: the library's unit tests for the other processor.
macos_unit_arm64() {
    on_a_mac && return 0
    macos_environment
    PATH=$PWD/build/macos/sysroot/bin:$PATH
    configure macos -B build/macos/unit_arm64 -DMACOS_ARCHS=arm64 -DSCALER_ISP_SIMULATOR=OFF
    macos_build build/macos/unit_arm64 --target scaler_isp_unit_tests
    macos_run_programs arm64 unit_arm64 unit_arm64
}

# ispctl as it is delivered, in the tree of the library; the steps that run the loader then test it, too. It
# takes minutes to compile, so it is built only on request.
macos_programs() {
    macos_environment
    if on_a_mac; then
        echo "./dev macos programs: on Linux only; Homebrew's libraries are for one processor" >&2
        return 0
    fi
    PATH=$PWD/build/macos/sysroot/bin:$PATH
    configure macos -DSCALER_ISP_HOST=ON
    macos_build build/macos/universal
}

# The library's unit tests; the step that runs the loader on x86_64 runs them.
macos_unit() {
    macos_environment
    on_a_mac && return 0 # there the tree has them
    PATH=$PWD/build/macos/sysroot/bin:$PATH
    macos_build build/macos/universal --target scaler_isp_unit_tests
}

# The library once more, from a copy of the sources in another folder: the same bytes.
macos_again() {
    macos_environment
    on_a_mac && return 0
    rm -rf build/macos/again
    mkdir -p build/macos/again/elsewhere
    cp -R CMakeLists.txt CMakePresets.json scaler_isp packaging build/macos/again/elsewhere/
    configure macos -S build/macos/again/elsewhere -B build/macos/again/build \
        -DMACOS_SYSROOT="$PWD/build/macos/sysroot" -DBUILD_TESTING=OFF -DSCALER_ISP_SIMULATOR=OFF
    macos_build build/macos/again/build --target ScalerIsp
    run "$macos_llvm/llvm-strip" -x -S build/macos/again/build/lib/libScalerIsp.dylib
    run cmp build/macos/again/build/lib/libScalerIsp.dylib "$macos_library"
    echo "the same bytes from another folder"
}

macos_inspection() {
    native=
    if on_a_mac; then native=--native; fi
    # shellcheck disable=SC2086
    run python3 -B tests/macos/check_library.py "$macos_library" \
        build/macos/universal/lib/libScalerIsp.dylib build/macos/sysroot . $native
    # shellcheck disable=SC2086
    run python3 -B tests/macos/check_numbers.py "$macos_library" $native
    run python3 -B tests/macos/check_inspection.py "$macos_library" \
        build/macos/universal/lib/libScalerIsp.dylib build/macos/sysroot .
}

# Only on request: a check must not change the tree.
macos_numbers() {
    if on_a_mac; then
        echo "./dev macos numbers: those of the file that ships, which is built on Linux" >&2
        exit 2
    fi
    run python3 -B tests/macos/check_numbers.py "$macos_library" --write
}

# macos_runtime ARCH: libc++ and the unwinder for the loader, built once and kept in the cache.
macos_runtime() {
    made_from=$({ cat tests/macos/build_runtime.sh packaging/macos/*.sh packaging/macos/*.tbd
        "$macos_llvm/clang" --version; } | sha256sum | cut -c1-16)
    macos_runtime=$macos_cache/runtime-$made_from-$1
    [ -d "$macos_runtime" ] && return 0
    run tests/macos/build_runtime.sh "$macos_npm" "$PWD/build/macos/sysroot" "$macos_llvm" "$1" \
        "$macos_runtime" "$jobs"
}

# macos_ispctl_for ARCH: ispctl as the last step has built it; nothing if none did.
macos_ispctl_for() {
    set -- "$1" build/macos/universal/bin/ispctl build/macos/ispctl/bin/ispctl
    if [ "$1" = arm64 ]; then set -- "$1" "$2"; fi
    shift
    # shellcheck disable=SC2012
    newest=$(ls -t "$@" 2>/dev/null | head -n 1)
    echo "${newest:+$PWD/$newest}"
}

macos_emulator="qemu-aarch64 -L /usr/aarch64-linux-gnu"

# macos_loader ARCH [FOLDER [TREE]]: the loader and its tests, for one processor, in FOLDER (ARCH) of build/macos;
# among them are the test programs of TREE, if any.
macos_loader() {
    arch=$1 loader=build/macos/${2:-$1} test_tree=${3:-}
    macos_environment
    macos_npm=$(packaging/macos/fetch_inputs.sh "$macos_cache" | sed -n 1p)
    macos_runtime "$arch"
    if [ "$arch" = arm64 ]; then
        set -- -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 \
            -DCMAKE_C_COMPILER="$macos_llvm/clang" -DCMAKE_C_COMPILER_TARGET=aarch64-linux-gnu \
            -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld "-DMACOS_LAUNCHER=$macos_emulator"
    else
        set --
    fi
    run cmake -S tests/macos -B "$loader" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DMACOS_BUILD="$PWD/build/macos/universal" -DMACOS_LIBRARY="$PWD/$macos_library" \
        -DMACOS_ISPCTL="$(macos_ispctl_for "$arch")" -DMACOS_RUNTIME="$macos_runtime" \
        -DMACOS_TESTS="${test_tree:+$PWD/build/macos/$test_tree/tests}" "$@"
    build "$loader"
}

# macos_run_programs ARCH STEP TREE: the test programs of TREE, in the loader; the results are those of STEP alone.
macos_run_programs() {
    macos_loader "$1" "run_$2" "$3"
    suite "build/macos/run_$2" -L test_program
}

# macos_run ARCH [TREE]: the suite on the unmodified file, in the loader.
macos_run() {
    if on_a_mac; then
        macos_environment
        suite build/macos/universal -R blackbox
        return 0
    fi
    macos_loader "$1" "$@"
    suite "build/macos/$1"
}

macos_x86_64() {
    macos_run x86_64 universal
}

macos_arm64() {
    macos_run arm64
}

all_macos="library again inspection unit ispctl x86_64 arm64"
named_macos="unit_arm64 tests programs numbers"

# "--write" renews the table of docs/macos.md from what has run; without it the table must say just that.
dev_macos() {
    macos_write=
    for word in "$@"; do
        shift
        if [ "$word" = --write ]; then macos_write=--write; else set -- "$@" "$word"; fi
    done
    # shellcheck disable=SC2086
    [ $# -gt 0 ] || set -- $all_macos
    for step in "$@"; do
        case " $all_macos $named_macos " in
        *" $step "*) ;;
        *)
            echo "./dev macos: no step is called $step; there are: $all_macos $named_macos" >&2
            exit 2
            ;;
        esac
        if [ "$step" != library ] && [ ! -e "$macos_library" ]; then
            echo "./dev macos $step: $macos_library is not there yet; run ./dev macos library" >&2
            exit 2
        fi
        step "macos $step" "macos_$step"
    done
    # shellcheck disable=SC2086
    on_a_mac || python3 -B tools/where_it_ran.py $macos_write
    echo "== macos: all passed ($*)"
}
