#!/usr/bin/env bash
# Takes the pictures in docs/, of real runs on a screen of their own: a conversion in a terminal, and
# each view of the toast in both themes, and in Arabic. Of a build for Windows with Qt each view once, under Wine.
# Usage: scripts/screenshots.sh [BUILD_FOLDER [PICTURE_FOLDER]]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/dev}
program=("$build/bin/record-converter")
pictures=${2:-docs}
if [ -e "${program[0]}.exe" ]; then
    program=(scripts/wine.sh "$PWD/$build/wine" "${program[0]}.exe")
    export QSG_RHI_BACKEND=opengl # with the others of Wine 8 the window stays empty
fi

work=$(mktemp -d)
run=
screen=
end_run() {
    if [ -n "$run" ]; then
        kill -TERM "$run" 2>/dev/null || true
        wait "$run" 2>/dev/null || true
        run=
    fi
}
clean_up() {
    end_run
    [ -z "$screen" ] || kill "$screen" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

mkdir -p "$work/data"
export XDG_DATA_HOME=$work/data

# One that takes a while, as it must be encoded anew, one that is copied, one that is none.
ffmpeg -hide_banner -loglevel error \
    -f lavfi -i testsrc2=size=1280x720:rate=30:duration=45 -c:v mjpeg -q:v 5 \
    "$work/long.mkv"
ffmpeg -hide_banner -loglevel error \
    -f lavfi -i testsrc2=size=320x180:rate=25:duration=2 -c:v libx264 "$work/short.mkv"
echo "no recording" >"$work/broken.mkv"

mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1280x800x24 -noreset -nolisten tcp 3>"$work/display" 2>"$work/screen.log" &
screen=$!
read -r number <"$work/display"
export DISPLAY=:$number
unset QT_QPA_PLATFORM WAYLAND_DISPLAY LC_ALL LANGUAGE

# picture NAME SOURCE OPTION...: runs until the view has slid in, which takes a second.
picture() {
    local name=$1 source=$2 waited=0 geometry left top width
    shift 2
    "${program[@]}" "$@" --overwrite "$work/$source" "$work/result.mp4" 2>"$work/program.log" &
    run=$!
    until LC_ALL=C xwininfo -name Obrix >/dev/null 2>&1; do
        sleep 0.1
        waited=$((waited + 1))
        if [ "$waited" -gt 200 ]; then
            echo "screenshots.sh: $name: no window" >&2
            cat "$work/program.log" >&2
            exit 1
        fi
    done
    sleep 3
    geometry=$(LC_ALL=C xwininfo -name Obrix)
    left=$(awk '/Absolute upper-left X/ { print $NF }' <<<"$geometry")
    top=$(awk '/Absolute upper-left Y/ { print $NF }' <<<"$geometry")
    width=$(awk '/Width:/ { print $NF }' <<<"$geometry")
    # The view is the 72 pixels in the middle of the transparent window.
    import -window root -crop "${width}x72+${left}+$((top + 200))" +repage -strip \
        "$pictures/toast-$name.png"
    end_run
    echo "$pictures/toast-$name.png"
}

# views NAME OPTION...
views() {
    local name=$1
    shift
    picture "converting-$name" long.mkv "$@"
    picture "finished-$name" short.mkv "$@"
    picture "failed-$name" broken.mkv "$@"
}

# A conversion in a terminal, when its bar is at about a third.
terminal() {
    local window bin
    bin=$(realpath "$build/bin")
    cp "$work/long.mkv" "$work/meeting.mkv"
    # shellcheck disable=SC2016 # the words are for the terminal's shell
    (cd "$work" && LC_ALL=C.UTF-8 PATH="$bin:$PATH" exec xterm -geometry 84x4 -fa "DejaVu Sans Mono" \
        -fs 11 -bg "#101418" -fg "#e0e0e0" -T rc-terminal -e sh -c \
        'echo "$ record-converter --no-window meeting.mkv"
        script -qfec "record-converter --no-window meeting.mkv" typescript') &
    run=$!
    until grep -qsE " 3[0-9] %" "$work/typescript"; do
        sleep 0.1
        kill -0 "$run"
    done
    window=$(xdotool search --name '^rc-terminal$')
    import -window "$window" -strip "$pictures/terminal.png"
    end_run
    echo "$pictures/terminal.png"
}

mkdir -p "$pictures"
export LANG=en_US.UTF-8
if [ "${#program[@]}" -gt 1 ]; then
    views windows --theme light
    exit
fi
terminal
views light --theme light
views dark --theme dark
export LANG=ar_EG.UTF-8
views arabic --theme light
