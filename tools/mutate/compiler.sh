#!/bin/sh
# Compiles as ./dev test does, so that unchanged sources come from the compiler cache. MUTATE_FLAGS is for a
# changed source: what it is warned of is no error there.
# shellcheck disable=SC2086
exec ccache "$@" ${MUTATE_FLAGS-}
