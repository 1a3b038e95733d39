#!/usr/bin/env bash
# Builds the fuzzing programs and runs each for a while, one on each core.
# Usage: scripts/fuzz.sh SECONDS [NAME...]     (no name: all of them)
# FUZZ_SEED=N repeats the way that a run took; without it each run takes another.
# What a run finds worth keeping stays in build/fuzz/corpus; an input that fails is left in
# build/fuzz/findings and printed, and the exit status is 1. To make it a seed, fix the fault and
# copy the input to fuzz/corpus/NAME.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:?usage: scripts/fuzz.sh SECONDS [NAME...]}
shift
build=build/fuzz

mkdir -p build
cmake --preset fuzz >build/configure-fuzz.log 2>&1 || {
    cat build/configure-fuzz.log
    exit 1
}
cmake --build --preset fuzz
names=("$@")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(cd "$build/fuzzers" && printf '%s\n' *)

# Recordings are binary and easily made: the seeds for the engine are not kept.
make_recordings() {
    local to=$1
    [ ! -e "$to/made" ] || return 0
    mkdir -p "$to"
    local ffmpeg=(ffmpeg -y -nostdin -loglevel error -bitexact)
    local picture=(-f lavfi -i testsrc2=s=32x32:r=5:d=0.6) sound=(-f lavfi -i sine=d=0.6:r=8000)
    "${ffmpeg[@]}" "${picture[@]}" "${sound[@]}" -c:v mpeg4 -c:a aac "$to/seed.mkv"
    "${ffmpeg[@]}" -i "$to/seed.mkv" -c copy "$to/seed.mp4"
    "${ffmpeg[@]}" -i "$to/seed.mkv" -c copy "$to/seed.ts"
    "${ffmpeg[@]}" -i "$to/seed.mkv" -c copy "$to/seed.avi"
    "${ffmpeg[@]}" "${picture[@]}" -c:v flv "$to/seed.flv"
    "${ffmpeg[@]}" "${picture[@]}" "${sound[@]}" -c:v libvpx -c:a libopus "$to/seed.webm"
    "${ffmpeg[@]}" "${sound[@]}" -c:a libopus "$to/seed.ogg"
    "${ffmpeg[@]}" "${sound[@]}" "$to/seed.wav"
    touch "$to/made"
}

run_one() {
    local name=$1 seeds=fuzz/corpus/$1 log=$build/findings/$1.log
    [ -d "$seeds" ] || seeds=$build/seeds/$1
    mkdir -p "$build/corpus/$name" "$build/findings/$name"
    if "$build/fuzzers/$name" -max_total_time="$seconds" -timeout=20 -seed="${FUZZ_SEED:-0}" -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$build/findings/$name/" \
        "$build/corpus/$name" "$seeds" >"$log" 2>&1; then
        echo "fuzz: $name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") runs, nothing found"
    else
        tail -n 60 "$log"
        echo "fuzz: $name FAILED, input in $build/findings/$name"
        return 1
    fi
}

make_recordings "$build/seeds/source"
mkdir -p "$build/findings"
status=0
running=0
for name in "${names[@]}"; do
    if [ "$running" -ge "$(nproc)" ]; then
        wait -n || status=1
        running=$((running - 1))
    fi
    run_one "$name" &
    running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
    wait -n || status=1
    running=$((running - 1))
done
exit $status
