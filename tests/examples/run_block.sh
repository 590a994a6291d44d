#!/bin/sh
# run_block.sh PAGE BINARIES: runs the lines that PAGE shows as a "sh" block, each of which must succeed,
# in a new folder and with BINARIES first in the path.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# shellcheck disable=SC2016 # backquotes of the page
sed -n '/^```sh$/,/^```$/{/^```/!p;}' "$1" >"$folder/lines"
[ -s "$folder/lines" ] || {
    echo "$1 shows no lines to run" >&2
    exit 1
}
cd "$folder"
PATH=$2:$PATH sh -eux lines
