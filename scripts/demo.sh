#!/usr/bin/env bash
# Sets the machine up, builds, and converts a recording.
# Usage: scripts/demo.sh [SOURCE... DESTINATION]
# Without arguments it makes a short recording of its own and converts that.
set -euo pipefail
caller=$PWD
cd "$(dirname "$0")/.."
root=$PWD

if [ $# -eq 1 ]; then
    echo "demo.sh: name at least one source and a destination, or nothing at all" >&2
    exit 2
fi

scripts/setup.sh build
mkdir -p build
cmake --preset release >build/configure-release.log 2>&1 || {
    cat build/configure-release.log
    exit 1
}
cmake --build --preset release --target demo

if [ $# -gt 0 ]; then
    cd "$caller"
    files=("$@")
else
    work=$root/build/demo
    mkdir -p "$work"
    files=("$work/meeting.mkv" "$work/meeting.mp4")
    echo "Making a ten-second recording, moving picture and tone: ${files[0]}"
    ffmpeg -hide_banner -loglevel error -y \
        -f lavfi -i testsrc2=size=1280x720:rate=30:duration=10 \
        -f lavfi -i sine=frequency=440:duration=10 \
        -c:v libx264 -preset veryfast -pix_fmt yuv420p -c:a aac "${files[0]}"
fi

"$root/build/release/bin/record-converter" --no-window "${files[@]}"

destination=${files[${#files[@]} - 1]}
log_root=${XDG_DATA_HOME:-$HOME/.local/share}/QuorellTarn/Logs/record-converter
echo "Result: $destination"
ffprobe -hide_banner -loglevel error -show_entries format=duration:stream=codec_type,codec_name \
    -of compact "$destination"
echo "Log:    $log_root/current_log.txt"
