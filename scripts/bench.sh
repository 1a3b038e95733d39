#!/usr/bin/env bash
# Measures our speed beside that of the peers, ours and theirs in turn, and prints one table.
# Usage: scripts/bench.sh [--record] [NAME...]
#   NAME      log-call-1 log-call-4 log-lines log-scrub queue-post convert-copy convert-floor
#             convert-transcode convert-parts start archive growth      (none: all)
#   --record  also puts the table into docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."

all=(log-call-1 log-call-4 log-lines log-scrub queue-post convert-copy convert-floor
    convert-transcode convert-parts start archive growth)
names=()
record=false
for argument in "$@"; do
    if [ "$argument" = --record ]; then
        record=true
    elif [[ " ${all[*]} " == *" $argument "* ]]; then
        names+=("$argument")
    else
        echo "bench.sh: no benchmark named '$argument' (${all[*]})" >&2
        exit 2
    fi
done
[ ${#names[@]} -gt 0 ] || names=("${all[@]}")

scripts/setup.sh build bench
mkdir -p build
cmake --preset release -B build/bench -DRECORD_CONVERTER_BENCHMARKS=ON \
    -DRECORD_CONVERTER_TESTS=OFF >build/configure-bench.log 2>&1 || {
    cat build/configure-bench.log
    exit 1
}
cmake --build build/bench --target benchmarks >build/build-benchmarks.log 2>&1 || {
    cat build/build-benchmarks.log
    exit 1
}

data=$PWD/build/bench-data
programs=$PWD/build/bench/benchmarks
mkdir -p "$data/inputs"
# What the measured programs log stays out of the user's own log folder.
export XDG_DATA_HOME=$data/data-home
mkdir -p "$XDG_DATA_HOME"

encode() {
    ffmpeg -nostdin -hide_banner -loglevel error -y "$@"
}

# make_input FILE COMMAND...: runs the command with a name to write to, once.
make_input() {
    local file=$data/inputs/$1
    shift
    [ -e "$file" ] && return
    echo "Making ${file##*/}, once" >&2
    "$@" "${file%/*}/new-${file##*/}"
    mv "${file%/*}/new-${file##*/}" "$file"
}

# A minute like that of a recorded meeting: 720p at 3 Mbit/s, and sound. Repeated without encoding
# it again, it makes recordings of any length.
make_minute() {
    encode -f lavfi -i "testsrc2=size=1280x720:rate=30:duration=60,noise=alls=12:allf=t" \
        -f lavfi -i "sine=frequency=440:duration=60" -c:v libx264 -preset ultrafast -bf 0 -g 60 \
        -b:v 3M -maxrate 3M -bufsize 3M -pix_fmt yuv420p -c:a aac -ac 2 -b:a 128k "$1"
}

make_webm() {
    encode -i "$data/inputs/minute.mkv" -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -row-mt 1 \
        -b:v 2M -c:a libopus -b:a 96k "$1"
}

# repeat TIMES FILE
repeat() {
    encode -stream_loop $(($1 - 1)) -i "$data/inputs/minute.mkv" -c copy "$2"
}

# The number of minutes that make up so many megabytes.
minutes_of() {
    echo $(($1 * 1000000 / $(stat -c %s "$data/inputs/minute.mkv") + 1))
}

make_recording() {
    make_input "recording-$1.mkv" repeat "$(minutes_of "$1")"
}

make_inputs() {
    case "$1" in
        convert-* | growth | start) make_input minute.mkv make_minute ;;&
        convert-copy | convert-floor | growth) make_recording 1000 ;;&
        convert-transcode) make_input minute.webm make_webm ;;
        convert-parts)
            for part in 1 2 3 4 5 6 7 8; do
                make_input "part$part.mkv" repeat 3
            done
            ;;
        growth)
            make_recording 100
            make_recording 4000
            ;;
    esac
}

# run NAME: prints table rows and notes.
run() {
    local name=$1
    case "$name" in
        log-call-*) "$programs/bench-log-call" --data "$data" "$name" ;;
        log-lines | log-scrub) "$programs/bench-log-lines" --data "$data" "$name" ;;
        convert-*) "$programs/bench-convert" --data "$data" "$name" ;;
        start) xvfb-run -a "$programs/bench-start" --data "$data" ;;
        *) "$programs/bench-$name" --data "$data" ;;
    esac
}

describe_machine() {
    echo "- Command: \`scripts/bench.sh${*:+ $*}\`, $(date -u +%Y-%m-%d\ %H:%M) UTC, at $(git describe --always --dirty)"
    echo "- Machine: $(nproc) processors ($(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n1))," \
        "$(awk '/MemTotal/ { printf "%.0f", $2 / 1e6 }' /proc/meminfo) GB memory," \
        "Linux $(uname -r), $(sed -n 's/^PRETTY_NAME=//p' /etc/os-release | tr -d '"')"
    echo "- Load average before: $load_before, after: $(cut -d' ' -f1-3 /proc/loadavg)"
    dpkg-query -W -f='${Package} ${Version}, ' g++ libspdlog-dev libfmt-dev libboost-dev ffmpeg zip \
        qt6-base-dev zlib1g | sed 's/^/- Versions: /; s/, $/\n/'
}

load_before=$(cut -d' ' -f1-3 /proc/loadavg)
results=$data/results.txt
: >"$results"
failed=()
for name in "${names[@]}"; do
    make_inputs "$name"
    run "$name" | tee -a "$results" | grep '^|' >&2 || failed+=("$name")
done

table=$data/table.md
{
    describe_machine "${names[@]}"
    echo
    echo "| name | ours | theirs | ratio | goal | spread (lowest–highest of the runs) |"
    echo "|---|---|---|---|---|---|"
    grep '^|' "$results"
    echo
    sed -n 's/^note: /- /p' "$results"
} >"$table"
echo
cat "$table"

if $record; then
    page=docs/performance.md
    sed -i -e '/<!-- table begins -->/,/<!-- table ends -->/{//!d}' \
        -e "/<!-- table begins -->/r $table" "$page"
fi
if [ ${#failed[@]} -gt 0 ]; then
    echo "bench.sh: failed: ${failed[*]}" >&2
    exit 1
fi
