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
    run python3 -B tools/where_it_ran.py --check
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

lint_steps="format includes words quirks docs shell python spelling"

dev_lint() {
    run_steps lint "$lint_steps" "$@"
}
