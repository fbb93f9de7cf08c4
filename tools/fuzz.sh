#!/bin/sh
# fuzz.sh SECONDS [TARGET...]: builds the fuzz targets and runs each for so long on its stored corpus, which stays as
# it is. What fails is left in out/fuzz/.
set -eu
cd "$(dirname "$0")/.."
seconds=$1
shift
root=$PWD # absolute paths, since a target may change its folder

cmake --preset fuzz >/dev/null
[ $# -gt 0 ] || set -- $(basename -a -s _fuzz.cpp fuzz/*_fuzz.cpp)
for target; do
    cmake --build --preset fuzz --target "${target}_fuzz"
    found=$root/out/fuzz/found/$target
    mkdir -p "$found"
    log=out/fuzz/$target.log
    dictionary=
    [ ! -f "fuzz/$target.dict" ] || dictionary=-dict=$root/fuzz/$target.dict
    # shellcheck disable=SC2086  # no dictionary, no argument
    if ! "out/fuzz/fuzz/${target}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$root/out/fuzz/$target-" $dictionary "$found" "$root/fuzz/corpus/$target" >"$log" 2>&1; then
        tail -60 "$log" >&2
        echo "fuzz.sh: $target failed on what lies in out/fuzz/$target-*" >&2
        exit 1
    fi
    echo "$target: $(grep '^Done' "$log")"
done
