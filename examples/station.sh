#!/bin/sh
# Programs several devices at the same time, one process for each interface number, and prints what
# became of them:
#
#     sh station.sh FIRMWARE [OPTION OF ispctl run]...
#     sh station.sh monitor.bin --chip panel27
#
# Variables: ISPCTL (the program), DEVICES (how many, at most 19), RECORD (the station file),
# WORK (a directory for the output of each run).
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

processes=
number=1
while [ "$number" -le "$devices" ]; do
    # The virtual scaler keeps each device in a directory; real hardware does not look at this.
    SCALER_ISP_VIRTUAL_DEVICE=$work/device-$number "$ispctl" run "$@" --station "$record" \
        --tag station="$(uname -n)" --tag place="$number" \
        -- --isp --comm "$number" --fw "$firmware" >"$work/run-$number.txt" 2>&1 &
    processes="$processes $!"
    number=$((number + 1))
done

failed=0
for process in $processes; do
    wait "$process" || failed=$((failed + 1))
done
"$ispctl" log summary "$record"
[ "$failed" -eq 0 ]
