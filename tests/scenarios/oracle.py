"""Looks at a recording as a person would: the ffmpeg program decodes it, and what is shown and
heard is kept with its times."""

import array
import json
import re
import subprocess
import tempfile
from dataclasses import dataclass, field, replace
from pathlib import Path

WINDOW = 0.005  # seconds of sound that are judged together
COLUMNS, ROWS = 16, 9
JITTER = 0.02  # sound that is off by less is played on without a break
HOLE = 0.04
LONGEST = 3600  # seconds of sound that are laid out


@dataclass
class Picture:
    time: float
    cells: bytes  # RGB of the middle of each cell
    size: tuple
    aspect: float  # as shown

    @property
    def light(self):
        return sum(self.cells) / len(self.cells)


@dataclass
class Track:
    kind: str
    codec: str
    tag: str
    language: str
    stream: dict
    packets: list
    pictures: list = field(default_factory=list)
    begin: float = 0  # of the sound
    levels: list = field(default_factory=list)  # of each window, all channels together
    channels: list = field(default_factory=list)  # the level of each, summed up over the seconds
    text: str = ""

    @property
    def flashes(self):
        """When the picture turns white."""
        light = [each.light for each in self.pictures]
        limit = (min(light, default=0) + max(light, default=0)) / 2
        before = [0, *light]
        return [p.time for p, a, b in zip(self.pictures, before, light) if a <= limit < b]

    @property
    def beeps(self):
        return self.spans(max(self.levels, default=0) * 0.3)

    @property
    def heard(self):
        """Without holes that nobody notices."""
        found = []
        for begin, end in self.spans(200):
            if found and begin - found[-1][1] < HOLE:
                begin = found.pop()[0]
            found.append((begin, end))
        return found

    def spans(self, limit):
        """From when to when the sound is louder; two windows decide, one alone does not."""
        found, begin, is_loud = [], 0, False
        levels = self.levels + [0, 0]
        for number, pair in enumerate(zip(levels, levels[1:])):
            if is_loud != (pair[0] > limit) and is_loud != (pair[1] > limit):
                if is_loud:
                    found.append((self.begin + begin * WINDOW, self.begin + number * WINDOW))
                begin, is_loud = number, not is_loud
        return found

    def moved(self, by):
        pictures = [replace(each, time=each.time + by) for each in self.pictures]
        return replace(self, pictures=pictures, begin=self.begin + by)

    def followed_by(self, later):
        """A later one's pictures and sound, at their own times."""
        if not self.levels:
            later = replace(later, pictures=self.pictures + later.pictures)
            return replace(later, packets=self.packets + later.packets)
        silence = round((later.begin - self.begin) / WINDOW) - len(self.levels)
        return replace(
            self,
            pictures=self.pictures + later.pictures,
            packets=self.packets + later.packets,
            levels=self.levels[: len(self.levels) + min(0, silence)] + [0] * silence + later.levels,
            channels=[a + b for a, b in zip(self.channels, later.channels)],
        )


@dataclass
class Seen:
    tracks: list
    chapters: list
    tags: dict
    damage: list  # what ffmpeg has to say against it
    format: dict
    covers: list
    length: float = 0

    def of(self, kind):
        return [each for each in self.tracks if each.kind == kind]

    def followed_by(self, later):
        tracks, rest, end = [], list(later.tracks), self.length
        for track in self.tracks:
            same = next((each for each in rest if each.kind == track.kind), None)
            if same:
                rest.remove(same)
                track = track.followed_by(same.moved(end))
            tracks.append(track)
        tracks += [each.moved(end) for each in rest]
        return replace(self, tracks=tracks, length=end + later.length)


def probe(path):
    """What ffprobe knows without decoding."""
    what = "-show_streams -show_chapters -show_format -show_packets -show_data_hash crc32"
    command = ["ffprobe", "-v", "quiet", *what.split(), "-of", "json", path]
    return json.loads(subprocess.run(command, capture_output=True).stdout or "{}")


def look(path, crop="", patience=120):
    """Everything that a file shows, or only a part (W:H:X:Y) of each picture, by ffmpeg's word."""
    known = probe(path)
    found = Seen([], [], {}, ["ffprobe finds nothing in it"], {}, [])
    if not known.get("streams"):
        return found
    with tempfile.TemporaryDirectory() as folder:
        command = ["ffmpeg", "-nostdin", "-hide_banner", "-nostats", "-i", path]
        for stream in known["streams"]:
            number, kind = stream["index"], stream["codec_type"]
            packets = [each for each in known["packets"] if each["stream_index"] == number]
            if stream["disposition"]["attached_pic"]:
                found.covers.append(packets[0]["data_hash"])
                continue
            if kind == "video":
                crops = f"crop={crop}," if crop else ""
                size = f"scale={3 * COLUMNS}x{3 * ROWS}:flags=area,format=rgb24"
                words = f"-vf showinfo@{number}=checksum=0,{crops}{size} -fps_mode passthrough"
                words += " -f rawvideo"
            elif kind == "audio":
                words = f"-af aformat=s16,ashowinfo@{number} -f s16le"
            elif kind == "subtitle":
                words = "-c:s srt -f srt"
            else:
                continue
            command += ["-map", f"0:{number}", *words.split(), f"{folder}/{number}"]
            language = stream.get("tags", {}).get("language", "und")
            codec, tag = stream.get("codec_name", "none"), stream["codec_tag_string"]
            found.tracks.append(Track(kind, codec, tag, language, stream, packets))
        run = subprocess.run(command, capture_output=True, timeout=patience)
        said = run.stderr.decode(errors="replace").splitlines()
        shown = {}
        for line in said:
            if match := re.match(r"\[a?showinfo@(\d+) .*? n: *\d+ pts: *\S+ +pts_time:(\S+)", line):
                shown.setdefault(int(match[1]), []).append((float(match[2]), line))
        for track in found.tracks:
            out = Path(folder, str(track.stream["index"]))
            data = out.read_bytes() if out.exists() else b""
            frames = shown.get(track.stream["index"], [])
            if track.kind == "video":
                see(track, frames, data)
            elif track.kind == "audio":
                hear(track, frames, data)
            else:
                track.text = data.decode(errors="replace")
    bad = (
        r"^\[(?!a?showinfo|rawvideo|s16le).*(error|invalid|corrupt|missing|non.?monoton|concealing)"
    )
    found.damage = [line for line in said if re.search(bad, line, re.I)]
    for each in known["chapters"]:
        title = each.get("tags", {}).get("title", "")
        found.chapters.append((round(float(each["start_time"]), 2), title))
    found.format = known["format"]
    found.tags = {name.lower(): text for name, text in found.format.get("tags", {}).items()}
    ends = (
        float(each["pts_time"]) + float(each.get("duration_time", 0))
        for track in found.tracks
        for each in track.packets
        if "pts_time" in each
    )
    found.length = max(ends, default=0) - float(found.format.get("start_time", 0))
    return found


def see(track, frames, data):
    row_size, size = 9 * COLUMNS, 27 * COLUMNS * ROWS
    for number, (time, line) in enumerate(frames[: len(data) // size]):
        cells = bytearray(3 * COLUMNS * ROWS)
        for row in range(ROWS):
            at = number * size + (3 * row + 1) * row_size
            line_of_cells = data[at : at + row_size]
            for colour in range(3):
                begin = row * 3 * COLUMNS
                cells[begin + colour : begin + 3 * COLUMNS : 3] = line_of_cells[3 + colour :: 9]
        width, height = map(int, re.search(r" s:(\d+)x(\d+)", line).groups())
        over, under = map(int, re.search(r" sar:(\d+)/(\d+)", line).groups())
        aspect = width / height * (over / under if over else 1)
        track.pictures.append(Picture(time, bytes(cells), (width, height), aspect))


def hear(track, frames, data):
    """Lays the samples out on the line of time, as a player does. What overlaps is skipped."""
    if not frames:
        return
    rate, count = int(track.stream["sample_rate"]), int(track.stream["channels"])
    window = int(rate * WINDOW)
    samples = array.array("h", data)
    track.begin = frames[0][0]
    blocks, sums, at, end = {}, [0] * count, 0, 0
    for time, line in frames:
        length = int(re.search(r"nb_samples:(\d+)", line)[1])
        begin, next_at = round((time - track.begin) * rate), at + length
        if abs(begin - end) < JITTER * rate:
            begin = end
        at += max(0, end - begin)
        begin = max(begin, end)
        while at < next_at:
            block = begin // window
            size = min(next_at - at, (block + 1) * window - begin)
            piece = samples[at * count : (at + size) * count]
            for channel in range(count):
                power = sum(map(abs, piece[channel::count]))
                sums[channel] += power
                blocks[block] = blocks.get(block, 0) + power
            at, begin = at + size, begin + size
        at, end = next_at, max(begin, end)
    last = min(max(blocks, default=-1), int(LONGEST / WINDOW))
    track.levels = [blocks.get(number, 0) / (window * count) for number in range(last + 1)]
    track.channels = [each / rate for each in sums]
