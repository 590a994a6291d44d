# shellcheck shell=sh
# How ./dev shows what it does: one line per step. What the commands of a step print goes to a file of its
# own in build/log; the last lines of it appear if the step fails. With --verbose everything is printed.
# Sourced by ./dev.

step_log_directory=build/log
step_last_lines=60
step_depth=0 # a step may use others: only the outermost has a line and a file

# Prints a program with its arguments, then runs it, without the descriptors that belong to a step.
run() {
    printf '+ %s\n' "$*"
    "$@" 3>&- 4>&-
}

# step NAME COMMAND...: runs a command or function as a step. Not for a pipeline: it changes where this shell
# writes. The command runs in this shell and under its "set -e", so that a step of several commands ends
# with the first that fails.
step() {
    step_begin "$1"
    shift
    "$@"
    step_end
}

step_begin() {
    step_depth=$((step_depth + 1))
    [ "$step_depth" -eq 1 ] || return 0
    step_name=$1 step_started=$(date +%s)
    if [ -n "$verbose" ]; then
        printf '== %s\n' "$step_name"
        return 0
    fi
    mkdir -p "$step_log_directory"
    step_log=$step_log_directory/$(printf '%s' "$step_name" | tr -c 'A-Za-z0-9_.-' '-').log
    printf '%s ... ' "$step_name"
    exec 3>&1 4>&2 >"$step_log" 2>&1
}

step_end() {
    step_depth=$((step_depth - 1))
    [ "$step_depth" -eq 0 ] || return 0
    step_seconds=$(($(date +%s) - step_started))
    if [ -n "$verbose" ]; then
        printf '== %s: passed (%d s)\n' "$step_name" "$step_seconds"
        return 0
    fi
    exec >&3 2>&4 3>&- 4>&-
    printf 'passed (%d s)\n' "$step_seconds"
}

# At the end of ./dev, whatever the reason: a step that has not ended has failed.
step_report() {
    step_status=$?
    if [ "$step_depth" -gt 0 ] && [ -z "$verbose" ]; then
        exec >&3 2>&4
        printf 'FAILED (status %d)\n' "$step_status"
        tail -n "$step_last_lines" "$step_log"
        printf '== %s failed with status %d; all of its output: %s\n' "$step_name" "$step_status" "$step_log"
    elif [ "$step_depth" -gt 0 ]; then
        printf '== %s failed with status %d\n' "$step_name" "$step_status"
    fi
    exit "$step_status"
}
trap step_report EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
