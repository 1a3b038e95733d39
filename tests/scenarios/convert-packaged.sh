#!/usr/bin/env bash
# Packs the build, unpacks the package into a folder with a name beyond ASCII, converts recordings
# with what lies there, and looks at the results with foreign eyes: ffprobe, and grep on the log.
# usage: convert-packaged.sh BUILD_FOLDER RECORDINGS_FOLDER [WINE_SCRIPT WINE_PREFIX]
set -euo pipefail

build=$1 recordings=$2 wine=("${@:3}")
user=$(id -un)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
folder="$work/Größe 会議 😀"
log=QuorellTarn/Logs/record-converter/current_log.txt
fail() { printf '%s\n' "$*" >&2; exit 1; }

# look PROGRAM ARGUMENT...: what a foreign eye says of the package, where that eye is at hand.
look() {
    if command -v "$1" >/dev/null && ! "$@" >"$work/look" 2>&1; then fail "$*: $(cat "$work/look")"; fi
}

# examine FOLDER: the unpacked .deb
examine() {
    look lintian --allow-root --info --pedantic --fail-on error,warning,info "$work"/packages/*.deb
    look desktop-file-validate "$1"/share/applications/*
    look appstreamcli validate --no-net "$1"/share/metainfo/*
    find "$1" -lname '/*' | grep . && fail "these links are not relative"
    look mandoc -Tlint -Wwarning "$1"/share/man/man1/*
}

(cd "$build" && cpack -B "$work/packages") >"$work/cpack" 2>&1 || fail "$(cat "$work/cpack")"
mkdir "$folder"
if [ ${#wine[@]} -gt 0 ]; then
    unzip -q "$work"/packages/*.zip -d "$folder"
    program=$(echo "$folder"/*/bin/record-converter.exe)
    runtime=$(dirname "$program")/../runtime
    log=${wine[1]}/drive_c/users/$user/AppData/Local/$log
    native() { printf 'Z:%s' "${1//\//\\}"; }
else
    dpkg-deb -x "$work"/packages/*.deb "$folder"
    examine "$folder/usr"
    # Its links lead to where the system's Qt lies beside it.
    ln -s "/usr/lib/$(uname -m)-linux-gnu" "$folder/usr/lib"
    program=$folder/usr/bin/record-converter
    runtime=$folder/usr/lib/record-converter/runtime
    export XDG_DATA_HOME=$work/data
    log=$XDG_DATA_HOME/$log
    native() { printf '%s' "$1"; }
fi

# convert SOURCE DESTINATION
convert() {
    "${wine[@]}" "$program" --no-window "$(native "$1")" "$(native "$2")" </dev/null \
        >"$work/output" 2>&1 || fail "not converted: $1: $(cat "$work/output")"
}

# logged TEXT
logged() { grep -qF "$1" "$log" || fail "'$1' is not in the log: $(cat "$log")"; }

# expect FILE CODECS
expect() {
    local found
    found=$(ffprobe -v error -show_entries stream=codec_name:format=duration -of csv=p=0 "$1" |
        tr '\n' ' ')
    [[ $found =~ ^"$2 "(3.9|4.[01]) ]] || fail "$1: $found instead of $2 and four seconds"
}

source="$folder/会議 $user.webm"
cp "$recordings/vp8-vorbis.webm" "$source"
convert "$source" "$folder/transcoded ü.mp4"
expect "$folder/transcoded ü.mp4" "h264 aac"
cmp -s "$recordings/vp8-vorbis.webm" "$source" || fail "the source is not what it was"
logged 'ZEL:0 ::'
logged 'mediaconverter'
logged '会議 ********.webm'
if grep -F "$user" "$log"; then fail "the user's name is in the log"; fi

if [ ${#wine[@]} -gt 0 ]; then
    version=$("${wine[@]}" "$program" --version | grep -oE '[0-9.]+')
    for file in "$program" "$runtime"/{*converter,zelclient,zelcore}.dll; do
        strings -el "$file" | grep -A1 -x ProductVersion | grep -qxF "$version" ||
            fail "$file has another version than $version"
    done
fi

if [ -e "$runtime/librecord-converter.so" ] || [ -e "$runtime/record-converter.dll" ]; then
    cp "$recordings/h264-aac.mkv" "$folder/shown.mkv"
    if [ ${#wine[@]} -gt 0 ]; then
        # A prefix whose first program saw no display never shows a window.
        log=${log/"${wine[1]}"/"$work/wine"}
        wine[1]=$work/wine
        trap 'WINEPREFIX=$work/wine wineserver --kill --wait; rm -rf "$work"' EXIT
    fi
    # shellcheck disable=SC2016 # the words are for the inner shell
    QSG_RHI_BACKEND=opengl xvfb-run -a bash -c 'log=$1; "${@:2}" & for try in {1..900}; do
        sleep 0.1; ! grep -q "recording convert completed" "$log" || break; done
        kill $!; wait $!' show "$log" "${wine[@]}" "$program" \
        "$(native "$folder/shown.mkv")" "$(native "$folder/shown.mp4")" || true
    logged 'recording convert completed'
    expect "$folder/shown.mp4" "h264 aac"
    if grep -iE '<(Warn|Error|Fatal)>.*qml' "$log"; then fail "the window is not whole"; fi
fi
