#!/usr/bin/env bash
# Makes the small recordings that the engine's tests convert, with the ffmpeg program.
# usage: make-recordings.sh FOLDER
set -euo pipefail
cd "$1"
make() { # NAME ARGUMENT...: whole or not at all
    local name=$1
    shift
    [ -e "$name" ] && return
    ffmpeg -y -nostdin -loglevel error -bitexact "$@" "making-$name"
    mv "making-$name" "$name"
}
picture() { echo "-f lavfi -i testsrc2=s=${1:-160x120}:r=${2:-15}:d=${3:-2}"; }
sound() { echo "-f lavfi -i sine=f=440:d=${2:-2}:r=${1:-48000}"; }
h264="-c:v libx264 -preset ultrafast -bf 2 -g 15 -pix_fmt yuv420p -c:a aac"
vp9="-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -row-mt 1"

# shellcheck disable=SC2046,SC2086 # the words are options on purpose
{
    make h264-aac.mkv $(picture) $(sound) $h264
    make h264-aac.flv -i h264-aac.mkv -c copy
    make h264-aac.ts -i h264-aac.mkv -c copy
    make h264-aac.mp4 -i h264-aac.mkv -c copy
    make vp8-vorbis.webm $(picture) $(sound) -c:v libvpx -deadline realtime -cpu-used 8 -c:a libvorbis
    make vp9-opus.webm $(picture) $(sound) $vp9 -c:a libopus
    make av1-opus.webm $(picture 160x120 15 1) $(sound 48000 1) -c:v libaom-av1 -cpu-used 8 \
        -usage realtime -c:a libopus
    make pcm.wav $(sound 44100)
    make vorbis.ogg $(sound) -c:a libvorbis
    make opus.ogg $(sound) -c:a libopus
    make no-audio.mkv $(picture) $h264 -an
    make odd-size.webm $(picture) -vf scale=161:121 $vp9
    # A picture at 0, 1, 4, 9, 16... fifteenths of a second, as screen sharing sends them.
    make variable-copied.mkv $(picture 160x120 15 1) -vf "setpts=N*N/15/TB" -vsync vfr $h264
    make variable-transcoded.webm $(picture 160x120 15 1) -vf "setpts=N*N/15/TB" -vsync vfr $vp9
    make other-parameters.mkv $(picture 200x100 25 1) $(sound 44100 1) $h264
    make gap.mkv $(sound) -af "asetpts=PTS+gte(T\,1)/TB" -c:a pcm_s16le
    make eight-channels.mkv -f lavfi -i "aevalsrc=sin(440*t)|0|0|0|0|0|0|0:d=1:c=7.1" -c:a flac
    printf '1\n00:00:00,000 --> 00:00:01,000\nspoken\n' > subtitles.srt
    make subtitles.mkv -i h264-aac.mkv -i subtitles.srt -c copy -c:s srt
    ffmpeg -y -nostdin -loglevel error -i subtitles.srt -c:s srt making-subtitles.mkv && mv making-subtitles.mkv subtitles-alone.mkv
    make muted.mkv -i h264-aac.mkv -c copy -bsf:a noise=drop=1
    make live.mkv -i h264-aac.mkv -c copy -live 1 -f matroska
    make long.webm $(picture 640x360 30 10) $vp9
}
touch made
