# shellcheck shell=sh
# ./dev fuzz: the fuzz targets, built with libFuzzer. Sourced by ./dev.

fuzz_run() {
    fuzz_status=0
    run python3 -B tools/fuzz.py build/fuzz "$@" || fuzz_status=$?
    return "$fuzz_status"
}

dev_fuzz() {
    configure fuzz -DCMAKE_C_COMPILER="$clang" -DCMAKE_CXX_COMPILER="$clangxx"
    build build/fuzz --target scaler_isp_fuzz
    step "fuzz ${1:-all}" fuzz_run "$@"
    # The figures are what one runs it for.
    [ -n "$verbose" ] || grep -v '^+ ' "$step_log"
}
