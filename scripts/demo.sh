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
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=true
cmake --preset release -DRECORD_CONVERTER_TESTS=OFF >build/configure-release.log 2>&1 || {
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

log_folder=${XDG_DATA_HOME:-$HOME/.local/share}/QuorellTarn/Logs/record-converter
destination=${files[${#files[@]} - 1]}
program=$root/build/release/bin/record-converter

# Shows the window on a display of its own, takes a picture of it, and closes it as a user would.
convert_on_hidden_display() {
    local picture=$1
    shift
    "$program" "$@" &
    local pid=$!
    # The log's last line of a conversion; the notice then takes a second to slide in.
    while kill -0 "$pid" 2>/dev/null &&
        ! grep -qsE "\[$pid:.*(recording convert (completed|error)|Failed to start)" \
            "$log_folder/current_log.txt"; do
        sleep 0.2
    done
    sleep 2
    import -window root "$picture"
    local window
    window=$(xdotool search --name '^Obrix$' 2>/dev/null | head -n 1 || true)
    [ -z "$window" ] || xdotool key --window "$window" Escape 2>/dev/null || true
    wait "$pid"
}

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    echo "Converting. The notice closes by its button, by Escape, or by itself after a minute."
    "$program" "${files[@]}"
else
    mkdir -p "$root/build/demo"
    picture=$root/build/demo/notice.png
    export program log_folder
    echo "Converting, with the notice on a hidden display."
    xvfb-run -a -s "-screen 0 1280x720x24" \
        bash -c "$(declare -f convert_on_hidden_display)"'; convert_on_hidden_display "$@"' \
        demo "$picture" "${files[@]}"
    echo "Picture of the notice: $picture"
fi

echo "Result: $destination"
ffprobe -hide_banner -loglevel error -show_entries format=duration:stream=codec_type,codec_name \
    -of compact "$destination"
echo "Log:    $log_folder/current_log.txt"
