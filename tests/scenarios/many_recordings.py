#!/usr/bin/env python3
"""Converts recordings that chance makes, far more than a test run has time for.

usage: RC_BUILD=build/release tests/scenarios/many_recordings.py times|damage COUNT [SEED]
  times   pictures at irregular times, transcoded and copied: every one is converted as it is
  damage  recordings of many kinds with damaged, missing and moved bytes: no crash, no run over
          20 s, no more than 1 GB, and nothing less than what ffmpeg decodes is called complete
Ctrl-C ends it and says how many there were.
"""
import random
import resource
import shlex
import subprocess
import sys
import tempfile
import traceback
from pathlib import Path

import comparison
import oracle
import recipes
from make_recordings import Maker
from program import LAUNCHER, RECORDINGS

make = Maker(RECORDINGS)
CODERS = {
    "webm": (recipes.VP8, recipes.VP9),
    "mkv": (recipes.H264, recipes.MJPEG, recipes.VP8),
    "mp4": (recipes.H264 + " -video_track_timescale 90000",),
    "flv": (recipes.H264,),
}
KINDS = """h264-aac.mkv h264-aac.flv h264-aac.ts h264-aac.mp4 faststart.mp4 vp8-vorbis.webm
    vp9-opus.webm av1-opus.webm mjpeg-pcm.avi mpeg2-mp2.mpg pcm.wav vorbis.ogg opus.ogg live.mkv
    fragments.mp4 hevc.mkv""".split()
SECONDS, BYTES = 20, 1 << 30


def convert(source, destination):
    """The exit status and what was said; the limits end a run that exceeds them."""

    def limit():
        resource.setrlimit(resource.RLIMIT_DATA, (BYTES, BYTES))

    command = [LAUNCHER, "--no-window", source, destination]
    run = subprocess.run(command, capture_output=True, timeout=SECONDS, preexec_fn=limit)
    return run.returncode, run.stderr.decode(errors="replace")


def irregular(chance, folder):
    """Odd gaps, most of them short, at an odd count of pictures."""
    kind = chance.choice(list(CODERS))
    gaps = [
        chance.choice((0.001, 0.02, 0.0667, 0.34, 1.3)) * chance.uniform(0.5, 2) for _ in "12345"
    ]
    times = recipes.irregular(*gaps, count=chance.randrange(2, 40))
    words = (recipes.picture("160x90", times=times), chance.choice(CODERS[kind]), recipes.VARIABLE)
    source, destination = folder / f"source.{kind}", folder / "out.mp4"
    make.carry_out(source, *words)
    status, said = convert(source, destination)
    if status != 0:
        return f"status {status}: {said}"
    found = comparison.differences(oracle.look(source), oracle.look(destination))
    return "\n".join(found + [f"{kind}: {shlex.join(map(str, times))}"]) if found else ""


def spoil(chance, content):
    for _ in range(chance.randrange(1, 6)):
        at = chance.randrange(len(content))
        length = min(len(content) - at, chance.choice((1, 4, 100, 5000)))
        way = chance.randrange(5)
        if way == 0:
            content[at : at + length] = chance.randbytes(length)
        elif way == 1:
            content[at : at + length] = bytes(length)
        elif way == 2:
            del content[at : at + length]
        elif way == 3:
            content[at:at] = content[at : at + length]
        else:
            content[at] ^= 1 << chance.randrange(8)


def amount(seen, kind):
    """How many pictures there are, or for how many seconds there is sound."""
    if kind == "video":
        return sum(len(each.pictures) for each in seen.of(kind))
    return sum(end - begin for each in seen.of(kind) for begin, end in each.heard)


def damaged(chance, folder):
    whole = make(chance.choice(KINDS))
    content = bytearray(whole.read_bytes())
    spoil(chance, content)
    source, destination = folder / f"source{whole.suffix}", folder / "out.mp4"
    source.write_bytes(content)
    status, said = convert(source, destination)
    if status not in (0, 1, 3):
        return f"{whole.name}: status {status}: {said}"
    if [each for each in folder.iterdir() if each not in (source, destination)]:
        return f"{whole.name}: leaves {sorted(folder.iterdir())}"
    if status == 0:
        # What damage has doubled, ffmpeg decodes twice.
        here, *there = map(oracle.look, (destination, source, whole))
        for kind, slack in (("video", 0), ("audio", 0.1)):
            wanted = min(amount(each, kind) for each in there)
            if amount(here, kind) < wanted - slack:
                return f"{whole.name}: {kind} {amount(here, kind)} of {wanted}"
    return ""


def main():
    what, count = {"times": irregular, "damage": damaged}[sys.argv[1]], int(sys.argv[2])
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else random.randrange(1 << 32)
    bad = 0
    for number in range(count):
        with tempfile.TemporaryDirectory() as name:
            try:
                wrong = what(random.Random(seed + number), Path(name))
            except (subprocess.SubprocessError, ValueError):
                wrong = traceback.format_exc(limit=1)
            except KeyboardInterrupt:
                count = number
                break
        if wrong:
            bad += 1
            print(f"seed {seed + number}: {wrong}", flush=True)
    print(f"{count} recordings from seed {seed} on, {bad} of them wrong")
    sys.exit(bad > 0)


if __name__ == "__main__":
    main()
