# shellcheck shell=sh
# ./dev lint: checks that only read the sources; they take seconds. Sourced by ./dev.

tracked() {
    git -c safe.directory='*' ls-files "$@"
}

tracked_sources() {
    tracked '*.cpp' '*.h' '*.c'
}

check_format() {
    tracked_sources | run xargs "$clang_format" --dry-run --Werror
}

check_includes() {
    run python3 tools/check_includes.py
}

check_words() {
    run python3 tools/check_forbidden_words.py
}

check_quirks() {
    run python3 tools/check_quirks.py
}

# Pages against the tables that they show; what commands print is step "shown" of ./dev check.
check_docs() {
    run python3 tools/quirks.py --check
    run python3 tools/comm_table.py --check
    run python3 tools/doc_tables.py --check
}

# What is delivered, and what its users begin with. What was found for a source is kept as long as it does not
# change.
check_cppcheck() {
    mkdir -p build/cppcheck
    tracked 'scaler_isp/*.cpp' 'ispctl/*.cpp' 'simulator/*.cpp' 'templates/*.c' 'templates/*.cpp' \
        'examples/*.c' 'examples/*.cpp' |
        run cppcheck --quiet -j "$jobs" --std=c++20 --std=c99 --enable=warning,performance,portability \
            --suppressions-list=tools/cppcheck.suppressions --error-exitcode=1 \
            --cppcheck-build-dir=build/cppcheck -I . -I ispctl -I simulator --file-list=-
}

# The C that users begin with, and the headers in C; docs/testing.md says why not C++.
check_analyzer() {
    on_a_mac && return 0
    tracked 'templates/*.c' 'examples/*.c' 'tests/abi/*.c' |
        run xargs -n 1 gcc -std=c99 -O1 -Wall -Wextra -fanalyzer -Werror -I . -c -o /dev/null
}

# Sourced files are checked along with dev: they use its variables.
check_shell() {
    run shellcheck --external-sources --check-sourced dev
    tracked '*.sh' .ci/run | xargs grep -l '^#!' | run xargs shellcheck
}

check_python() {
    tracked '*.py' | run xargs flake8
}

check_spelling() {
    tracked | run xargs codespell
}

lint_steps="format includes words quirks docs cppcheck analyzer shell python spelling"

dev_lint() {
    run_steps lint "$lint_steps" "$@"
}
