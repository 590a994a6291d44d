#!/bin/sh
# Programs several devices at the same time, one process for each interface number, and prints what
# became of them; if runs failed, also the output of the first one:
#
#     sh station.sh FIRMWARE [OPTION OF ispctl run]...
#     sh station.sh monitor.bin --chip panel27
#
# The exit status is the largest one of all runs.
#
# Variables: ISPCTL (the program), DEVICES (how many, at most 19), RECORD (the station file, to which
# the runs of every session are appended), WORK (a directory for the output of each run).
set -eu

if [ $# -eq 0 ] || [ "${1#-}" != "$1" ]; then
    echo "usage: sh station.sh FIRMWARE [OPTION OF ispctl run]..., such as --chip panel27" >&2
    exit 2
fi
firmware=$1
shift
case $firmware in
/*) ;;
*) firmware=$PWD/$firmware ;; # the library resolves relative names against its own directory
esac
ispctl=${ISPCTL:-ispctl}
devices=${DEVICES:-16}
record=${RECORD:-station.jsonl}
work=${WORK:-station-output}
mkdir -p "$work"
work=$(cd "$work" && pwd)
# Other stations may append to the record at this moment: these tags tell the runs apart.
station=$(uname -n)
session=$(date -u +%Y%m%dT%H%M%SZ)-$$

processes=
number=1
while [ "$number" -le "$devices" ]; do
    # The virtual scaler keeps each device in a directory; real hardware does not look at this. The options
    # that are given come last: with a mistyped one there is a record all the same.
    SCALER_ISP_VIRTUAL_DEVICE=$work/device-$number "$ispctl" run --station "$record" \
        --tag station="$station" --tag session="$session" --tag place="$number" "$@" \
        --isp --comm "$number" --fw "$firmware" >"$work/run-$number.txt" 2>&1 &
    processes="$processes $!"
    number=$((number + 1))
done

worst=0
failed= # the first one
number=1
for process in $processes; do
    status=0
    wait "$process" || status=$?
    if [ "$status" -ne 0 ]; then
        failed=${failed:-$number}
    fi
    if [ "$status" -gt "$worst" ]; then
        worst=$status
    fi
    number=$((number + 1))
done

# A usage error has no record: then there is no file, or nothing of this session in it.
grep -F "\"session\":\"$session\"" "$record" 2>/dev/null |
    grep -F "\"station\":\"$station\"" >"$work/session.jsonl" || :
if [ -s "$work/session.jsonl" ]; then
    "$ispctl" log summary "$work/session.jsonl"
fi
if [ -n "$failed" ]; then
    echo "station.sh: the run of place $failed failed; $work/run-$failed.txt says" >&2
    tail -n 40 "$work/run-$failed.txt" >&2
fi
exit "$worst"
