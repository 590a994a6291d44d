#!/bin/sh
# Checks an installation on the machine that it is on, and what our pages assume about the system:
#
#   sh run.sh [--report FILE]
#
# It needs nothing but the system, and changes nothing but the report. Without --report that is
# scaler-isp-selftest.txt in the working directory. Status 0: all required checks passed (assumptions may differ);
# 1: one has not; 2: nothing was checked.
#
# SELFTEST_LAUNCHER holds words to be put in front of each program of the installation, without spaces inside.
# The tests run the macOS installation on Linux with it.
set -eu
user_lang=${LANG-} user_lc_all=${LC_ALL-} user_lc_ctype=${LC_CTYPE-}
LC_ALL=C
export LC_ALL
unset SCALER_ISP_VIRTUAL_DEVICE # the user's own device must not be touched

here=$(cd "$(dirname "$0")" && pwd -P)
prefix=$(cd "$here/../../.." && pwd -P)
virtual=$(cd "$here/.." && pwd -P)/virtual
ispctl=$prefix/bin/ispctl
probe=$here/probe
tab=$(printf '\t')
report=scaler-isp-selftest.txt

stop() {
    echo "selftest: $*" >&2
    exit 2
}

# ---- results: processor, environment, kind, group, check, outcome and detail in a line ----

# add KIND GROUP CHECK OUTCOME DETAIL
add() {
    printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$processor" "$environment" "$1" "$2" "$3" "$4" \
        "$(printf '%s' "$5" | tr '\t\n' '  ' | cut -c1-500)" >>"$results"
}

# require GROUP CHECK COMMAND...: the detail is what the command prints.
require() {
    group=$1 check=$2
    shift 2
    if printed=$("$@" 2>&1 </dev/null); then
        add required "$group" "$check" passed "$printed"
    else
        add required "$group" "$check" failed "$printed"
    fi
}

# note GROUP CHECK COMMAND...
note() {
    group=$1 check=$2
    shift 2
    add noted "$group" "$check" - "$("$@" 2>&1 </dev/null || true)"
}

has() {
    command -v "$1" >/dev/null 2>&1
}

# ---- the files ----

programs_of_installation() {
    for file in "$prefix"/lib/libScalerIsp.* "$ispctl" "$probe" "$virtual"/*.dylib "$virtual"/*.so \
        "$virtual"/PlugIn/libIsp.dylib; do
        if [ -f "$file" ]; then echo "$file"; fi
    done
}

check_sums() {
    if has sha256sum; then
        (cd "$prefix" && sha256sum -c SHA256SUMS 2>&1 | grep -v ': OK$')
    else
        (cd "$prefix" && shasum -a 256 -c SHA256SUMS 2>&1 | grep -v ': OK$')
    fi
}

sums_are_right() {
    wrong=$(check_sums || true)
    echo "${wrong:-all files as they were packed}"
    [ -z "$wrong" ]
}

# is_for PROCESSORS FILE: the headers of the file name each of them; of Mach-O files all are signed.
is_for() {
    # shellcheck disable=SC2086
    image=$($SELFTEST_LAUNCHER "$probe" image "$2")
    echo "$image"
    for wanted in $1; do
        case "$image " in *" $wanted "*) ;; *) return 1 ;; esac
    done
    case $image in "Mach-O "*" signed" | "ELF "*) return 0 ;; *) return 1 ;; esac
}

lists_processors() {
    listed=$(lipo -archs "$2")
    echo "$listed"
    for wanted in $1; do
        case " $listed " in *" $wanted "*) ;; *) return 1 ;; esac
    done
}

# What the programs of the system say of a file. Without Apple's command line tools, lipo and otool would open
# a window that offers to install them.
check_with_tools() {
    if has codesign; then
        require files "codesign $1" codesign --verify --strict --verbose=2 "$file"
        note files "signature of $1" codesign --display --verbose=2 "$file"
        note files "quarantine of $1" xattr -p com.apple.quarantine "$file"
    fi
    if has xcode-select && xcode-select -p >/dev/null 2>&1; then
        require files "lipo $1" lists_processors "$processors" "$file"
        note files "otool $1" otool -L "$file"
    fi
    if has readelf && [ "$(uname -s)" = Linux ] && [ -z "$SELFTEST_LAUNCHER" ]; then
        note files "readelf $1" readelf --dynamic "$file"
    fi
}

check_files() {
    processors=$processor
    if [ -f "$prefix/SHA256SUMS" ]; then
        require files "SHA256SUMS" sums_are_right
        if [ -f "$prefix/lib/libScalerIsp.dylib" ]; then processors="x86_64 arm64"; fi
    fi
    programs_of_installation >"$work/programs.txt"
    while IFS= read -r file; do
        require files "image of ${file#"$prefix"/}" is_for "$processors" "$file"
        check_with_tools "${file#"$prefix"/}"
    done <"$work/programs.txt"
}

# ---- ispctl ----

run_ispctl() {
    # shellcheck disable=SC2086
    SCALER_ISP_VIRTUAL_DEVICE=$work/device $launcher "$ispctl" "$@"
}

programs_device() {
    rm -rf "$work/device"
    run_ispctl run --virtual --isp --fw "$work/fw.bin" && cmp "$work/fw.bin" "$work/device/flash.bin"
}

refuses_missing_file() {
    status=0
    run_ispctl run --virtual --isp --fw "$work/missing.bin" || status=$?
    [ "$status" -eq 4 ]
}

check_ispctl() {
    if [ ! -f "$ispctl" ]; then
        add noted ispctl installed - "no"
        return 0
    fi
    # Complete banks, so that the flash has the same length.
    dd if="$probe" of="$work/fw.bin" bs=65536 count=1 conv=sync 2>/dev/null
    require ispctl "--version" run_ispctl --version
    require ispctl "paths --virtual" run_ispctl paths --virtual
    require ispctl "run --virtual --isp" programs_device
    require ispctl "run with a missing file" refuses_missing_file
    note ispctl "doctor --virtual" run_ispctl doctor --virtual
}

# ---- the groups of the probe, each in a process, a directory and an environment of its own ----

# Without a locale: as in an application that was started from Finder.
in_environment() {
    (
        unset LANG LC_ALL LC_COLLATE LC_CTYPE LC_MESSAGES LC_MONETARY LC_NUMERIC LC_TIME
        if [ "$environment" != none ]; then
            LC_ALL=$environment
            export LC_ALL
        fi
        # shellcheck disable=SC2086
        exec $launcher "$@"
    )
}

# run_group GROUP ENVIRONMENT
run_group() {
    environment=$2
    directory=$work/$processor.$1.$2
    mkdir "$directory"
    cp -R "$virtual" "$directory.library"
    : >"$directory.txt"
    status=0
    in_environment "$probe" "$1" "$directory.txt" "$directory" "$directory.library" \
        >"$directory.out" 2>&1 </dev/null || status=$?
    sed -e '/^end/d' -e "s|^|$processor$tab$environment$tab|" "$directory.txt" >>"$results"
    if [ "$status" -eq 0 ] && grep -q '^end' "$directory.txt"; then
        add required "$1" "runs to its end" passed ""
    else
        add required "$1" "runs to its end" failed "status $status: $(tail -n 5 "$directory.out")"
    fi
    rm -rf "$directory.library"
    environment=-
}

check_processor() {
    checked=yes
    check_ispctl
    utf8=C.UTF-8
    if [ "$(uname -s)" = Darwin ]; then utf8=en_US.UTF-8; fi
    run_group calls none
    run_group calls "$utf8"
    for each in loading realpath names iconv threads locale; do
        run_group "$each" none
    done
    run_group locale "$utf8"
}

# The processors of a Mac, the machine's first; Rosetta may be missing.
check_mac() {
    for processor in arm64 x86_64; do
        if arch "-$processor" /usr/bin/true 2>/dev/null; then
            launcher="arch -$processor"
            check_processor
        else
            add noted processor "$processor" - "cannot run here"
        fi
    done
    [ -n "$checked" ] || stop "neither slice can be run"
}

# ---- the report ----

# Neither the directory of the installation nor the temporary one: both may name a user.
without_directories() {
    WORK=$work PREFIX=$prefix awk '
        function replaced(text, from, to,    done, at) {
            for (done = ""; (at = index(text, from)) > 0; text = substr(text, at + length(from))) {
                done = done substr(text, 1, at - 1) to
            }
            return done text
        }
        { print replaced(replaced($0, ENVIRON["WORK"], "DIR"), ENVIRON["PREFIX"], "PREFIX") }'
}

describe_machine() {
    echo "system:      $(uname -srm)"
    if has sw_vers; then
        echo "version:     $(sw_vers | tr '\t\n' '  ')"
        echo "processor:   $(sysctl -n machdep.cpu.brand_string 2>&1), $(sysctl -n hw.model 2>&1)"
        echo "translated:  $(sysctl -n sysctl.proc_translated 2>/dev/null || echo no)"
    elif [ -r /etc/os-release ]; then
        echo "version:     $(sed -n 's/^PRETTY_NAME=//p' /etc/os-release)"
    fi
    device=$(df -P "$work" | awk 'NR == 2 { print $1 }')
    echo "volume:      $(mount 2>/dev/null | awk -v device="$device" '$1 == device' | head -n 1)"
    echo "environment: LANG=$user_lang LC_ALL=$user_lc_all LC_CTYPE=$user_lc_ctype"
    echo "launcher:    ${SELFTEST_LAUNCHER:-none}"
    echo "version of the installation: $(tr '\n' ' ' <"$work/version.txt")"
}

print_table() {
    awk -F '\t' '
        { key = $1 "\t" $2 "\t" $4 }
        !(key in seen) { seen[key] = 1; order[++keys] = key }
        { count[key, $6]++ }
        END {
            form = "%-9s %-12s %-9s %8s %8s %12s %8s\n"
            printf form, "processor", "environment", "group", "passed", "failed", "as assumed", "differs"
            for (i = 1; i <= keys; i++) {
                split(order[i], part, "\t")
                printf form, part[1], part[2], part[3], count[order[i], "passed"] + 0, \
                    count[order[i], "failed"] + 0, count[order[i], "as assumed"] + 0, \
                    count[order[i], "differs"] + 0
            }
        }' "$results"
}

# rows_with OUTCOME TITLE
rows_with() {
    awk -F '\t' -v outcome="$1" -v title="$2" '
        $6 == outcome && !shown++ { print "\n" title }
        $6 == outcome { print "  " $1 " " $2 " " $4 ": " $5 ": " $7 }' "$results"
}

count_of() {
    awk -F '\t' -v outcome="$1" '$6 == outcome { count++ } END { print count + 0 }' "$results"
}

print_results() {
    print_table
    rows_with failed "Failed:"
    rows_with differs "Differs from what our pages assume:"
    printf '\nselftest: %d required checks passed, %d failed; %d assumptions hold, %d differ\n' \
        "$(count_of passed)" "$(count_of failed)" "$(count_of 'as assumed')" "$(count_of differs)"
}

write_report() {
    {
        echo "ScalerIsp self-test"
        describe_machine
        echo
        print_results
        printf '\nEvery result: processor, environment, kind, group, check, outcome, detail\n'
        cat "$results"
    } | without_directories >"$report"
}

# ---- here it begins ----

read_arguments() {
    while [ $# -gt 0 ]; do
        case $1 in
        --report)
            [ $# -ge 2 ] || stop "--report needs a file"
            report=$2
            shift
            ;;
        *) stop "unknown argument $1; usage: sh run.sh [--report FILE]" ;;
        esac
        shift
    done
    case $report in /*) ;; *) report=$PWD/$report ;; esac
}

# Lines are not quoted for what stands in the path of this directory.
make_work_directory() {
    work=$(mktemp -d "${TMPDIR:-/tmp}/selftest.XXXXXX") || stop "no directory for temporary files"
    work=$(cd "$work" && pwd -P)
    case $work in
    *[!A-Za-z0-9/._-]*)
        rmdir "$work"
        work=$(mktemp -d /tmp/selftest.XXXXXX) || stop "no directory for temporary files"
        work=$(cd "$work" && pwd -P)
        ;;
    esac
    trap 'rm -rf "$work" || true' EXIT
    trap 'exit 130' INT TERM
}

SELFTEST_LAUNCHER=${SELFTEST_LAUNCHER-}
launcher=$SELFTEST_LAUNCHER
environment=-
checked=
read_arguments "$@"
[ -f "$probe" ] || stop "$probe is missing; unpack the archive again"
[ -d "$virtual" ] || stop "$virtual is missing; unpack the archive again"
if [ -e "$report" ] && [ ! -f "$report" ]; then
    stop "$report is not a regular file; name another with --report FILE"
fi
(: >"$report") 2>/dev/null || stop "$report cannot be written; name another file with --report FILE"
make_work_directory
results=$work/results.txt
: >"$results"
# shellcheck disable=SC2086
processor=$($launcher "$probe" processor) || stop "$probe cannot be run; share/doc/scaler-isp/selftest.md says what may prevent it"
run_ispctl --version >"$work/version.txt" 2>/dev/null || echo "not known" >"$work/version.txt"
check_files
if [ "$(uname -s)" = Darwin ] && [ -z "$launcher" ]; then
    check_mac
else
    check_processor
fi
write_report
print_results
echo "The report is in $report."
[ "$(count_of failed)" -eq 0 ]
