"""What of a source is not in what was made of it, in words."""

import re
from dataclasses import dataclass, replace

from oracle import COLUMNS, WINDOW

# What says nothing has the limited range.
UNSAID = {"color_range": "tv"}
COLOUR_TAGS = "color_range color_space color_transfer color_primaries".split()
SAMPLE_ENTRIES = {"h264": "avc1", "hevc": "hvc1", "aac": "mp4a", "mov_text": "tx3g"}
WIDELY_PLAYED = "Constrained Baseline", "Baseline", "Main", "High"
TICK = 0.0021  # two milliseconds, and what the containers' clocks round
SEAM = 0.1  # where times start again, nothing says how long the picture before lasts
EDGE = 0.02  # codecs blur where a sound begins and ends
KEY_DISTANCE = 5.1
BRIGHTNESS = 10  # of 255, by which a patch of colour may be off


@dataclass
class Wish:
    """How the destination may differ from the source."""

    copied: str = ""  # first letters of the kinds whose packets are the same
    seams: int = 0  # places where times may shift by less than SEAM
    size: tuple = ()
    lost: tuple = ()  # from when to when the source is damaged or cut off
    sync: float = 0.04
    channels: tuple = ()  # how many may be left, the last number is the source's
    fields: str = ""  # the order of fields
    tags: str = ""  # of the file, that are kept


class Comparison:
    """Collects what is wrong."""

    def __init__(self, source, made, wish):
        self.source, self.made, self.wish, self.found = source, made, wish, []
        self.where = ""
        if not wish.lost:
            self.expect(not made.damage, "damaged:", made.damage[:3])
        tracks, wanted = ([(t.kind, t.language) for t in seen.tracks] for seen in (made, source))
        self.expect(tracks == wanted, "tracks", tracks, "instead of", wanted)
        if self.found:
            return
        for what in ("chapters", "covers"):
            here, there = getattr(made, what), getattr(source, what)
            self.expect(here == there, what, here, "instead of", there)
        for tag in wish.tags.split():
            here, there = made.tags.get(tag), source.tags.get(tag)
            self.expect(here == there is not None, tag, here, "instead of", there)
        begin = float(made.format.get("start_time", 0))
        self.expect(abs(begin) < 0.05, "starts at", begin)
        self.shift = 0
        for ours, theirs in zip(made.of("video"), source.of("video")):
            if ours.pictures and theirs.pictures:
                self.shift = ours.pictures[0].time - theirs.pictures[0].time
        for number, (ours, theirs) in enumerate(zip(made.tracks, source.tracks)):
            self.where = f"track {number} ({ours.kind}):"
            self.compare(ours, theirs)
        self.where = ""
        self.compare_sync()

    def expect(self, is_so, *words):
        if not is_so:
            self.found.append(" ".join(str(each) for each in (self.where, *words) if each != ""))
        return is_so

    def compare(self, ours, theirs):
        entry = SAMPLE_ENTRIES.get(ours.codec, ours.tag)
        self.expect(entry == ours.tag, "is tagged", ours.tag, "instead of", entry)
        if ours.kind[0] in self.wish.copied:
            here, there = ([p["data_hash"] for p in t.packets] for t in (ours, theirs))
            self.expect(here == there, "packets are not copied")
        elif ours.kind == "video":
            if not ours.codec == theirs.codec == "hevc":
                self.expect(ours.codec == "h264", "is", ours.codec)
            self.expect(ours.stream["pix_fmt"] in ("yuv420p", "yuvj420p"), ours.stream["pix_fmt"])
            if ours.codec != theirs.codec:
                self.compare_key_frames(ours)
        if ours.kind == "video":
            self.expect(not ours.packets or "K" in ours.packets[0]["flags"], "begins with no key")
            profile = ours.stream.get("profile")
            self.expect(ours.codec != "h264" or profile in WIDELY_PLAYED, "is", profile)
            self.compare_format(ours, theirs)
            self.compare_pictures(ours, theirs)
        elif ours.kind == "audio":
            self.compare_sound(ours, theirs)
        else:
            (mine, times), (yours, wanted) = (split(each.text) for each in (ours, theirs))
            off = [abs(a - b - self.shift) for a, b in zip(times, wanted)]
            self.expect(
                mine == yours and max(off, default=0) < 2 * TICK,
                *(ours.text, "instead of", theirs.text),
            )

    def compare_key_frames(self, ours):
        times = [float(p["pts_time"]) for p in ours.packets if "K" in p["flags"]]
        times.append(max((each.time for each in ours.pictures), default=0))
        distance = max((b - a for a, b in zip(times, times[1:])), default=0)
        self.expect(distance <= KEY_DISTANCE, "key frames are", distance, "s apart")

    def compare_format(self, ours, theirs):
        if not ours.pictures or not theirs.pictures:
            return
        first = theirs.pictures[0]
        size = self.wish.size or tuple((side + 1) // 2 * 2 for side in first.size)
        sizes = {each.size for each in ours.pictures}
        self.expect(sizes == {size}, "sizes", sizes, "instead of", size)
        aspect = size[0] / size[1] if self.wish.size else first.aspect
        if abs(aspect / ours.pictures[0].aspect - 1) > 0.02:
            self.expect(False, "aspect", ours.pictures[0].aspect, "instead of", aspect)
        rgb = theirs.stream.get("color_space") == "gbr"
        for tag in [] if rgb else COLOUR_TAGS:
            here, there = (t.stream.get(tag, UNSAID.get(tag, "unknown")) for t in (ours, theirs))
            self.expect(here == there, tag, here, "instead of", there)
        if self.wish.fields:
            self.expect(ours.stream.get("field_order") == self.wish.fields, "fields", ours.stream)

    def is_lost(self, time):
        return self.wish.lost and self.wish.lost[0] <= time <= self.wish.lost[1]

    def compare_pictures(self, ours, theirs):
        """Each picture at its time, and each looks as it did."""
        if self.wish.lost:
            ours, theirs = (
                replace(t, pictures=[p for p in t.pictures if not self.is_lost(p.time - by)])
                for t, by in ((ours, self.shift), (theirs, 0))
            )
        count = len(ours.pictures), len(theirs.pictures)
        self.expect(count[0] == count[1], count[0], "pictures instead of", count[1])
        late, moved, otherwise = self.shift, [], []
        for number, (mine, yours) in enumerate(zip(ours.pictures, theirs.pictures)):
            off = mine.time - yours.time - late
            if abs(off) > TICK:
                moved.append(f"{number} at {mine.time:.3f} and not {yours.time + late:.3f}")
                late += off
                if len(moved) <= self.wish.seams:
                    self.expect(abs(off) < SEAM, "a seam of", off, "s")
            if max(abs(a - b) for a, b in zip(mine.cells, yours.cells)) > 80:
                otherwise.append(number)
        if len(moved) > self.wish.seams:
            self.expect(False, len(moved), "pictures at other times:", ", ".join(moved[:4]))
        self.expect(not otherwise, len(otherwise), "pictures look otherwise:", otherwise[:5])
        if not min(count):
            return
        for patch in range(8):
            for colour, name in enumerate("red green blue".split()):
                self.compare_patch(ours.pictures, theirs.pictures, patch, colour, name)

    def compare_patch(self, ours, theirs, patch, colour, name):
        # At its edges a patch runs into the next one, so that its best cell decides.
        columns = (2 * patch, 2 * patch + 1)
        cells = [3 * (COLUMNS * row + x) + colour for row in range(5, 9) for x in columns]

        def mean(pictures, cell):
            return sum(each.cells[cell] for each in pictures) / len(pictures)

        off = min((mean(ours, cell) - mean(theirs, cell) for cell in cells), key=abs)
        self.expect(abs(off) < BRIGHTNESS, f"patch {patch} has {off:+.0f} {name}")

    def compare_sound(self, ours, theirs):
        channels = self.wish.channels or (theirs.stream["channels"],)
        count = ours.stream["channels"]
        self.expect(count in channels, count, "channels instead of", channels)
        slack = self.wish.sync + self.wish.seams * SEAM
        spans = [(what, getattr(ours, what), getattr(theirs, what)) for what in ("beeps", "heard")]
        for what, mine, yours in spans:
            mine = [(a - self.shift, b - self.shift) for a, b in mine]
            if self.wish.lost:
                mine, yours = self.around_loss(mine), self.around_loss(yours)
            if not self.expect(
                len(mine) == len(yours), what, show(mine), "instead of", show(yours)
            ):
                continue
            for (begin, end), (was, until) in zip(mine, yours):
                if abs(begin - was) > slack or abs(end - until) > slack + EDGE:
                    self.expect(False, what, show(mine), "instead of", show(yours))
                    break
        if self.wish.lost:
            return
        # Downmixed, the ones in front stay as they are.
        count = 4 if self.wish.channels and count != channels[-1] else count
        ends = [track.begin + len(track.levels) * WINDOW for track in (ours, theirs)]
        if not self.wish.seams and ends[0] - self.shift < ends[1] - WINDOW / 2:
            self.expect(False, "sound ends at", ends[0] - self.shift, "instead of", ends[1])
        for number, (mine, yours) in enumerate(zip(ours.channels[:count], theirs.channels)):
            if not 0.88 < (mine + 1) / (yours + 1) < 1.14:
                self.expect(False, "channel", number, "is as loud as", mine, "instead of", yours)

    def around_loss(self, spans):
        """Without what is heard only where the source is damaged."""
        begin, end = self.wish.lost
        before = [(a, min(b, begin)) for a, b in spans if a < begin]
        return before + [(max(a, end), b) for a, b in spans if b > end]

    def compare_sync(self):
        """A flash and the beep that belongs to it stay together."""
        if self.wish.lost:
            return
        for film, was in zip(self.made.of("video")[:1], self.source.of("video")):
            for sound, wanted in zip(self.made.of("audio"), self.source.of("audio")):
                all_times = film.flashes, sound.beeps, was.flashes, wanted.beeps
                for flash, (beep, _), before, (heard, _) in zip(*all_times):
                    off = flash - beep - before + heard
                    if abs(off) > self.wish.sync:
                        self.expect(False, f"flash at {flash:.3f} s is {off:.3f} s off its beep")


def differences(source, made, **wish):
    return Comparison(source, made, Wish(**wish)).found


def split(text):
    """SubRip's texts, and the times of their beginnings and ends."""
    clock = r"(\d+):(\d+):(\d+),(\d+)"
    times = [
        3600 * int(h) + 60 * int(m) + int(s) + int(ms) / 1000
        for h, m, s, ms in re.findall(clock, text)
    ]
    return re.sub(clock, "", text), times


def show(spans):
    return f"{len(spans)} (" + " ".join(f"{a:.2f}-{b:.2f}" for a, b in spans[:6]) + ")"
