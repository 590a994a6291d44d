#!/bin/sh
# tools/demo.sh ISPCTL: shows the main job on the virtual scaler, in a temporary folder and in a few
# seconds. Prints each command before it runs it; ends with 1 where something goes otherwise than shown.
# shellcheck disable=SC2016 # expect expands what it is given
set -eu

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: tools/demo.sh ISPCTL   (the built or installed console)" >&2
    exit 2
fi
ispctl_file=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
D=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$D"' EXIT
trap 'exit 130' INT TERM
LC_ALL=C.UTF-8
SCALER_ISP_VIRTUAL_DEVICE=$D/device
export LC_ALL SCALER_ISP_VIRTUAL_DEVICE
mkdir "$D/device"

ispctl() {
    "$ispctl_file" "$@"
}

# expect STATUS COMMAND: prints the command as it stands here, runs it, and holds its exit status
# against the expected one. $D is not expanded in what is printed. A terminal gets the output as it is,
# with the progress bar; elsewhere it is made the same on every machine.
expect() {
    printf '$ %s\n' "$2"
    status=0
    if [ -t 1 ]; then
        eval "$2" || status=$?
    else
        eval "$2" >"$D/shown" 2>&1 || status=$?
        escape=$(printf '\033')
        sed -e "s|$D|\$D|g" -e "s/$escape\[[0-9;]*m//g" "$D/shown"
    fi
    if [ "$status" -ne "$1" ]; then
        echo "demo: exit status $status where $1 was expected" >&2
        exit 1
    fi
}

say() {
    printf '\n# %s\n' "$1"
}

echo '# A firmware of 300 KiB with its version text at 0xFFE0, and a key pair.'
expect 0 'head -c 307200 /dev/zero | openssl enc -aes-128-ctr -K 0 -iv 0 -out $D/monitor.bin 2>/dev/null'
expect 0 'printf "VS27-2.10\0" | dd of=$D/monitor.bin bs=1 seek=65504 conv=notrunc 2>/dev/null'
expect 0 'openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out $D/sign.pem'
expect 0 'openssl pkey -in $D/sign.pem -pubout -out $D/verify.pem'

say 'Sign it.'
expect 0 'ispctl run --virtual --sign --sw --dsmode 3 --fw $D/monitor.bin --signfile $D/monitor.sig --skfile $D/sign.pem'

say 'Program it, with its signature checked first. The device is a little slow.'
expect 0 'echo "slow 100" > $D/device/faults.txt'
expect 0 'ispctl run --virtual --isp --sw --dsmode 3 --fw $D/monitor.bin --signfile $D/monitor.sig --vkfile $D/verify.pem'

say 'Ask the device for its version, and compare its flash with the file.'
expect 0 'ispctl run --virtual --recordver --flash'
expect 0 'ispctl run --virtual --dumpflash --dumpaddr 0 --dumplen 307200 --dumpname $D/dump.bin'
expect 0 'cmp $D/monitor.bin $D/dump.bin && echo identical'

say 'A file that was changed after signing is refused; nothing is programmed.'
expect 0 'cp $D/monitor.bin $D/changed.bin'
expect 0 'printf "VS27-6.66" | dd of=$D/changed.bin bs=1 seek=65504 conv=notrunc 2>/dev/null'
expect 6 'ispctl run --virtual --isp --sw --dsmode 3 --fw $D/changed.bin --signfile $D/monitor.sig --vkfile $D/verify.pem'
expect 0 'ispctl run --virtual --recordver --flash'

say 'A device that fails at bank 3.'
expect 0 'echo "fail-bank 3 code 0x7003" > $D/device/faults.txt'
expect 1 'ispctl run --virtual --isp --fw $D/monitor.bin'
