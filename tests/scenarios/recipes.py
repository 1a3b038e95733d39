"""What the recordings of the tests are made of.

The picture of a recording flashes white and its sound beeps at each full second. Below the flash
a row of bars counts the pictures in binary, and under it lie patches of known colours.
"""

import shlex
from itertools import pairwise

import surgery

COLOURS = "red lime blue yellow white black gray 0xC08060".split()


def picture(size="320x180", rate=15, seconds=4, times=(), after="null"):
    """ffmpeg's words for the picture; with times, one at each of them."""
    width, height = (int(each) for each in size.split("x"))

    def box(x, y, columns, rows, colour, when="1"):
        place = f"x={x * width // 16}:y={y * height // 9}"
        extent = f"w={columns * width // 16}:h={rows * height // 9}"
        return f"drawbox={place}:{extent}:color={colour}:t=fill:enable='{when}'"

    clock = "null"
    if times:
        rate, seconds = 100, len(times) / 100
        steps = (f"+gte(N,{n})*{b - a:.6f}" for n, (a, b) in enumerate(pairwise(times), 1))
        clock = f"settb=1/1000,setpts='({times[0]}{''.join(steps)}+0.0001)/TB'"
    parts = [
        f"color=c=0x202020:s={size}:r={rate}:d={seconds},format=yuv444p,{clock}",
        box(0, 0, 16, 4, "white", "lt(mod(t+0.0005,1),0.13)"),
        *(box(2 * bit, 4, 2, 1, "0xA0A0A0", f"bitand(n,{1 << bit})") for bit in range(8)),
        *(box(2 * number, 5, 2, 4, colour) for number, colour in enumerate(COLOURS)),
        after,
    ]
    return "-f lavfi -i " + shlex.quote(",".join(parts))


def sound(seconds=4, rate=48000, layout="stereo", channels=2, volume=1, clock="t"):
    """A faint tone throughout and a loud one at each second, each channel fainter than the one
    before. The fourth of several channels is for low tones alone."""
    voices = []
    for number in range(channels):
        tone = 80 if number == 3 else 880
        faint, loud = (f"sin(2*PI*{each}*{clock})" for each in (tone / 4, tone))
        loudness = volume * (1 - number / 10)
        voices.append(f"{loudness:.2f}*(0.04*{faint}+0.5*{loud}*lt(mod({clock}+0.0001,1),0.1))")
    wave = "|".join(voices).replace(",", r"\,")
    return "-f lavfi -i " + shlex.quote(f"aevalsrc={wave}:d={seconds}:s={rate}:c={layout}")


def irregular(*gaps, count=40):
    """Times of pictures from the gaps between them, over and over."""
    times = [0]
    while len(times) < count:
        times.append(times[-1] + gaps[(len(times) - 1) % len(gaps)])
    return times


SCREEN = irregular(0.34, 0.01, 0.05, 0.5, 0.1, 0.03, 0.04, 0.13, 0.7, 0.1, count=20)
LATE_SECOND = [0, *(0.34 + number / 15 for number in range(50))]
H264 = "-c:v libx264 -preset ultrafast -bf 2 -g 15 -pix_fmt yuv420p"
H264_AAC = H264 + " -c:a aac"
VP8 = "-c:v libvpx -deadline realtime -cpu-used 8 -b:v 2M -g 15"
VP9 = "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -row-mt 1 -b:v 2M -g 15"
MJPEG = "-c:v mjpeg -q:v 3 -pix_fmt yuvj420p"
MPEG2 = "-c:v mpeg2video -q:v 3 -c:a mp2"
VARIABLE = "-fps_mode vfr -enc_time_base:v 1:1000"
COPY = "-map 0 -c copy"
BT709 = "-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv"
TO_709 = "scale=in_color_matrix=bt601:out_color_matrix=bt709"
FRAGMENTED = COPY + " -movflags frag_keyframe+empty_moov+default_base_moof"
KEY = "0123456789abcdef0123456789abcdef"
ENCRYPT = f"-encryption_scheme cenc-aes-ctr -encryption_key {KEY} -encryption_kid {KEY}"
CHAPTERS = """;FFMETADATA1
title=Weekly
artist=Someone
comment=Recorded in room 4
date=2024-05-01
[CHAPTER]
TIMEBASE=1/1000
START=0
END=1500
title=Greeting
[CHAPTER]
TIMEBASE=1/1000
START=1500
END=4000
title=Decisions
"""
SPOKEN = "1\n00:00:00,500 --> 00:00:01,500\nspoken\n\n2\n00:00:02,000 --> 00:00:03,000\nanswered\n"

# name: words for ffmpeg, or a function of surgery.py with what it is handed; names in braces are
# other recordings.
RECIPES = {
    # The ordinary ones
    "h264-aac.mkv": (picture(), sound(), H264_AAC),
    "h264-aac.flv": ("-i {h264-aac.mkv}", COPY),
    "h264-aac.ts": ("-i {h264-aac.mkv}", COPY),
    "h264-aac.mp4": ("-i {h264-aac.mkv}", COPY),
    "faststart.mp4": ("-i {h264-aac.mkv}", COPY, "-movflags faststart"),
    "vp8-vorbis.webm": (picture(), sound(), VP8, "-c:a libvorbis"),
    "vp9-opus.webm": (picture(), sound(), VP9, "-c:a libopus"),
    "av1-opus.webm": (
        *(picture(seconds=2), sound(2)),
        "-c:v libaom-av1 -cpu-used 8 -usage realtime -c:a libopus",
    ),
    "mjpeg-pcm.avi": (picture(), sound(), MJPEG, "-c:a pcm_s16le"),
    "mpeg4-mp3.avi": (picture(rate=25), sound(rate=44100), "-c:v mpeg4 -q:v 3 -c:a libmp3lame"),
    "mpeg2-mp2.mpg": (picture(rate=25), sound(), MPEG2),
    "pcm.wav": (sound(rate=44100),),
    "flac.mka": (sound(),),
    "vorbis.ogg": (sound(), "-c:a libvorbis"),
    "opus.ogg": (sound(), "-c:a libopus"),
    "no-audio.mkv": (picture(), H264),
    "live.mkv": ("-i {h264-aac.mkv}", COPY, "-live 1 -f matroska"),
    "odd-size.webm": (picture("321x181"), VP9),
    "long.webm": (picture("640x360", 30, 10), VP9),
    # Times of pictures as browsers and screen recorders have them
    **{
        f"screen.{name}": (picture(times=SCREEN), sound(), words, VARIABLE)
        for name, words in {
            "vp8.webm": VP8 + " -c:a libopus",
            "vp9.webm": VP9 + " -c:a libopus",
            "mjpeg.mkv": MJPEG + " -c:a aac",
            "h264.mkv": H264_AAC,
            "h264.mp4": H264_AAC + " -video_track_timescale 90000",
            "h264.flv": H264_AAC,
        }.items()
    },
    "late-second.webm": (picture(times=LATE_SECOND), VP8, VARIABLE),
    "late-second.mp4": (picture(times=LATE_SECOND), H264, VARIABLE),
    "far.flv": (
        picture(times=irregular(0.001, 2.251, 0.002, 0.114, 0.034, count=33)),
        *(H264, VARIABLE),
    ),
    "one-a-second.webm": (picture(rate=1, seconds=40), VP8, "-g 300"),
    "same-millisecond.mkv": (
        picture(times=irregular(0.0666, 0.0002)),
        *(H264, "-fps_mode vfr -enc_time_base:v 1:10000"),
    ),
    # Times that start again, jump or start before zero
    "runs.ts": (surgery.join, "{h264-aac.ts}", "{h264-aac.ts}"),
    "runs.mpg": (surgery.join, "{mpeg2-mp2.mpg}", "{mpeg2-mp2.mpg}"),
    "runs.flv": (surgery.join_flv, "{h264-aac.flv}", "{h264-aac.flv}", 0),
    "other-serial.ogg": ("-i {vorbis.ogg}", COPY, "-serial_offset 77"),
    "runs.ogg": (surgery.join, "{vorbis.ogg}", "{other-serial.ogg}"),
    "clusters.webm": (picture(), sound(), VP8, "-c:a libopus -cluster_time_limit 1000"),
    "cluster-late.webm": (surgery.damage_cluster_time, "{clusters.webm}", 2, 0xFF),
    "cluster-early.webm": (surgery.damage_cluster_time, "{clusters.webm}", 2, 0),
    "wrap.ts": ("-i {h264-aac.mkv}", COPY, "-muxdelay 0 -output_ts_offset 95442"),
    "negative.mkv": ("-itsoffset -1.6 -i {h264-aac.mkv}", COPY, "-avoid_negative_ts disabled"),
    "gap.mkv": (sound(), "-af 'asetpts=PTS+1.5*gte(T\\,2)/TB' -c:a pcm_s16le"),
    "late-sound.flv": (
        *(picture(seconds=7.5), sound(8, 44100, clock="(t-0.5*gte(t,4))"), H264),
        "-c:a pcm_s16le",
    ),
    "overlap.flv": (surgery.shift_flv_sound, "{late-sound.flv}", 4000, -500),
    "drift.mkv": (
        *(picture(seconds=10, after="setpts=PTS*1.009"), sound(10)),
        f"{VP8} {VARIABLE} -af asetpts=PTS*1.009 -c:a libopus",
    ),
    "days.mkv": ("-i {h264-aac.mkv}", COPY, "-bsf setts=ts='TS+259200000*gte(N\\,30)'"),
    "day-of-sound.mkv": (sound(2, channels=1, layout="mono"), "-c:a libopus", "-f matroska"),
    "jump.mkv": ("-i {day-of-sound.mkv}", COPY, "-bsf setts=ts='TS+82800000*gte(N\\,50)'"),
    # Codec data, colours and formats
    "small.flv": (picture("160x90"), sound(), H264_AAC),
    "new-header.flv": (surgery.join_flv, "{h264-aac.flv}", "{small.flv}", 4100),
    "plain.mp4": (picture(seconds=2), H264, "-crf 11 -bf 0 -video_track_timescale 15360"),
    # Of the same profile; the codec data are as long and differ in what the quality begins with.
    "coarse.mp4": (picture(seconds=2), H264, "-crf 40 -bf 0 -video_track_timescale 15360"),
    "cabac.mp4": (
        *(picture(seconds=2), H264.replace("ultrafast", "medium")),
        "-bf 0 -video_track_timescale 15360",
    ),
    "two-descriptions.mp4": (surgery.join_mp4, "{plain.mp4}", "{cabac.mp4}"),
    "rgb.mkv": (picture(after="format=gbrp"), "-c:v libx264rgb -preset ultrafast -g 15"),
    "full-range.mkv": (
        picture(after="scale=out_range=pc,format=yuvj420p"),
        *(H264.replace("yuv420p", "yuvj420p"), "-color_range pc"),
    ),
    "full-range.webm": (picture(after="scale=out_range=pc"), VP9, "-color_range pc"),
    "bt709.mkv": (picture(after=TO_709), H264, BT709),
    "bt709.webm": (picture(after=TO_709), VP9, BT709),
    "bt709-mjpeg.mkv": (
        picture(after="scale=in_color_matrix=bt601:out_color_matrix=bt709:out_range=pc"),
        *(MJPEG, BT709.replace("tv", "pc")),
    ),
    "smpte170m.webm": (
        *(picture(), VP9),
        "-colorspace smpte170m -color_primaries smpte170m -color_trc smpte170m -color_range tv",
    ),
    "interlaced.mpg": (
        picture("320x192", 50, after="interlace=scan=tff"),
        *(sound(), MPEG2, "-flags +ildct+ilme -top 1"),
    ),
    "hevc.mkv": (
        picture(),
        "-c:v libx265 -pix_fmt yuv420p -preset ultrafast -x265-params log-level=none:keyint=15",
    ),
    "hevc.ts": ("-i {hevc.mkv}", COPY),
    "high-10.mkv": (picture(), sound(), H264_AAC.replace("yuv420p", "yuv420p10le")),
    "4-2-2.mkv": (picture(), H264.replace("yuv420p", "yuv422p")),
    "4-4-4.mkv": (picture(), H264.replace("yuv420p", "yuv444p")),
    "lossless.mkv": (picture(), H264 + " -qp 0"),
    "upright.mp4": (picture(seconds=2), sound(2), H264_AAC),
    "sideways.mp4": ("-i {turned.mp4}", COPY, "-metadata:s:v rotate=90"),
    "turned.mp4": (picture(seconds=2, after="transpose=clock"), sound(2), H264_AAC),
    "turned-mjpeg.mov": (picture(seconds=2, after="transpose=clock"), MJPEG),
    "sideways-mjpeg.mov": ("-i {turned-mjpeg.mov}", COPY, "-metadata:s:v rotate=90"),
    "lying.mp4": ("-i {upright.mp4}", COPY, "-metadata:s:v rotate=90"),
    "anamorphic.mp4": (picture(seconds=2, after="setsar=4/3"), sound(2), H264_AAC),
    "anamorphic.webm": (picture(seconds=2, after="setsar=4/3"), VP8),
    "320.webm": (picture("320x180", seconds=1.2), VP8),
    "640.webm": (picture("640x360", seconds=1.2), VP8),
    "grows.webm": (surgery.concatenate, "{320.webm}", "{640.webm}", "{320.webm}"),
    # More than one picture and one sound
    "spoken.srt": (surgery.write, SPOKEN),
    "chapters.txt": (surgery.write, CHAPTERS),
    "subtitles.mkv": (
        "-i {h264-aac.mkv} -i {spoken.srt} -map 0 -map 1 -c copy -c:s srt",
        "-metadata:s:s:0 language=ger",
    ),
    "subtitles.mp4": ("-i {subtitles.mkv}", COPY, "-c:s mov_text"),
    "subtitles.webm": ("-i {vp9-opus.webm} -i {spoken.srt} -map 0 -map 1 -c copy -c:s webvtt",),
    "styled.mkv": ("-i {subtitles.mkv} -map 0:s -map 0:v -map 0:a -c copy -c:s ass",),
    "unstyled.mkv": (surgery.replace, "{styled.mkv}", b"\x63\xa2", b"\x42\xf1"),
    "subtitles-alone.mkv": ("-i {spoken.srt} -c:s srt",),
    "chapters.mkv": ("-i {h264-aac.mkv} -i {chapters.txt} -map_metadata 1", COPY),
    "chapters.webm": ("-i {vp9-opus.webm} -i {chapters.txt} -map_metadata 1", COPY),
    "cover.png": (picture(seconds=0.1), "-frames:v 1"),
    "cover.m4a": (
        "-i {pcm.wav} -i {cover.png} -map 0 -map 1 -c:v copy -c:a aac",
        "-disposition:v attached_pic -metadata title=Song",
    ),
    "cover.mkv": ("-i {h264-aac.mkv} -attach {cover.png} -metadata:s:t mimetype=image/png", COPY),
    "cover.tiff": ("-i {cover.png}",),
    "tiff.mkv": ("-i {h264-aac.mkv} -attach {cover.tiff} -metadata:s:t mimetype=image/tiff", COPY),
    "location.mov": (
        "-i {h264-aac.mkv} -metadata make=Maker -metadata model=Camera",
        *(COPY, "-metadata location=+48.2082+016.3738/ -metadata title=Walk"),
    ),
    "languages.mkv": (
        *(picture(), sound(), sound(volume=0.5), "-map 0 -map 1 -map 2", H264_AAC),
        "-metadata:s:a:0 language=eng -metadata:s:a:1 language=ger",
    ),
    **{
        f"sound-{layout}.mka": (sound(2, layout=layout, channels=channels), "-c:a flac")
        for layout, channels in {"mono": 1, "3.0": 3, "5.1": 6, "6.1": 7, "7.1": 8}.items()
    },
    # Parts
    "other-parameters.mkv": (picture("400x200", 25, 2), sound(2, 44100), H264_AAC),
    "muted.mkv": ("-i {h264-aac.mkv}", COPY, "-bsf:a noise=drop=1"),
    "empty.wav": ("-i {pcm.wav} -t 0",),
    "tiny.mkv": (picture(seconds=0.2), H264),
    # Damaged, cut, encrypted or refused
    "zeros.ts": (surgery.append, "{h264-aac.ts}", b"\0" * 100_000),
    "fragments.mp4": ("-i {h264-aac.mkv}", FRAGMENTED),
    "fragments.mov": ("-i {h264-aac.mkv}", FRAGMENTED),
    **{
        f"cut-{name}": (surgery.cut, "{" + name + "}", 0.6)
        for name in (
            *("fragments.mp4", "fragments.mov", "h264-aac.mkv", "live.mkv"),
            "faststart.mp4",
            *("h264-aac.mp4", "pcm.wav", "vp8-vorbis.webm", "mjpeg-pcm.avi"),
        )
    },
    **{
        f"hole-{name}": (surgery.fill, "{" + name + "}", 0.45, 0.55, 0)
        for name in (
            *("h264-aac.mkv", "faststart.mp4", "h264-aac.ts", "h264-aac.flv"),
            *("vp8-vorbis.webm", "mjpeg-pcm.avi"),
        )
    },
    **{
        f"noisy-{name}": (
            "-i {" + name + "}",
            *(COPY, "-bsf:v noise=amount='if(between(n\\,20\\,34)\\,3\\,0)'"),
        )
        for name in ("h264-aac.mkv", "vp8-vorbis.webm")
    },
    "flac.mkv": (picture(), sound(), H264, "-c:a flac"),
    "dead-sound.mkv": ("-i {flac.mkv}", COPY, "-bsf:a noise=amount=1"),
    "dead-picture.mkv": ("-i {h264-aac.mkv}", COPY, "-bsf:v noise=amount=1"),
    "keyless.mkv": ("-i {h264-aac.mkv}", COPY, "-bsf:v noise=drop=key"),
    "sound-alone.mkv": ("-i {h264-aac.mkv} -vn", COPY),
    "in-order.mp4": (picture(), sound(), H264_AAC, "-bf 0"),
    "lost-chunks.mp4": (surgery.lose_chunks, "{in-order.mp4}", 0.45, 0.55),
    "late-key.ts": (surgery.cut_front, "{h264-aac.ts}", 0.3),
    "nothing.mp4": (surgery.write, ""),
    "minutes.mp4": (surgery.write, "Minutes of the meeting\nNothing was decided.\n"),
    "playlist.mp4": (surgery.write, "#EXTM3U\n#EXTINF:2,\n{h264-aac.ts}\n#EXT-X-ENDLIST\n"),
    "header.mkv": (surgery.cut, "{h264-aac.mkv}", 0.002),
    "header.mp4": (surgery.cut, "{h264-aac.mp4}", 0.002),
    "encrypted.mp4": ("-i {h264-aac.mkv}", COPY, ENCRYPT),
    "unknown-codec.webm": (surgery.replace, "{vp9-opus.webm}", b"V_VP9", b"V_QQ9"),
    "wide.mkv": (picture("16400x16", seconds=0.2), MJPEG),
    "large.mkv": (picture("1920x1080", seconds=0.4), "-c:v mjpeg -q:v 5 -pix_fmt yuvj420p"),
}
