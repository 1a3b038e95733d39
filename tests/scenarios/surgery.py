"""Does to recordings what no program does on purpose."""

import struct
import subprocess
from pathlib import Path


def write(made, content):
    made.write_text(content)


def join(made, *recordings):
    made.write_bytes(b"".join(Path(each).read_bytes() for each in recordings))


def append(made, recording, content):
    made.write_bytes(Path(recording).read_bytes() + content)


def cut(made, recording, share):
    content = Path(recording).read_bytes()
    made.write_bytes(content[: int(len(content) * share)])


def cut_front(made, recording, share):
    content = Path(recording).read_bytes()
    made.write_bytes(content[int(len(content) * share) // 188 * 188 :])


def fill(made, recording, begin, end, value):
    content = bytearray(Path(recording).read_bytes())
    begin, end = (int(len(content) * share) for share in (begin, end))
    content[begin:end] = bytes([value]) * (end - begin)
    made.write_bytes(content)


def replace(made, recording, old, new):
    content = Path(recording).read_bytes()
    assert old in content
    made.write_bytes(content.replace(old, new, 1))


def concatenate(made, *recordings):
    """Copies the packets of one after the other under the first one's header."""
    names = made.with_suffix(".txt")
    names.write_text("".join(f"file '{each}'\n" for each in recordings))
    run = ["ffmpeg", "-y", "-nostdin", "-loglevel", "error", "-f", "concat", "-safe", "0"]
    subprocess.run([*run, "-i", names, "-c", "copy", made], check=True)
    names.unlink()


def damage_cluster_time(made, recording, number, value):
    """Overwrites each byte of the time of one of a WebM recording's clusters."""
    content = bytearray(Path(recording).read_bytes())
    at = -1
    for _ in range(number + 1):
        at = content.index(b"\x1f\x43\xb6\x75", at + 1)
    at = content.index(b"\xe7", at)
    size = content[at + 1] & 0x7F
    assert 1 <= size <= 8
    content[at + 2 : at + 2 + size] = bytes([value]) * size
    made.write_bytes(content)


def flv_tags(content):
    """Of an FLV file: each tag's kind, time in milliseconds and data."""
    at = 13
    while at < len(content):
        size = int.from_bytes(content[at + 1 : at + 4], "big")
        time = int.from_bytes(content[at + 7 : at + 8] + content[at + 4 : at + 7], "big")
        yield content[at], time, content[at + 11 : at + 11 + size]
        at += 15 + size


def write_flv(made, header, tags):
    content = bytearray(header)
    for kind, time, data in tags:
        stamp, size = time.to_bytes(4, "big"), len(data)
        content += bytes([kind]) + size.to_bytes(3, "big") + stamp[1:] + stamp[:1] + bytes(3)
        content += data + (11 + size).to_bytes(4, "big")
    made.write_bytes(content)


def join_flv(made, first, second, later):
    """The tags of one after the other's; the second's come later by so many milliseconds."""
    contents = [Path(each).read_bytes() for each in (first, second)]
    tags = [*flv_tags(contents[0])]
    # All but the second's description of the whole.
    tags += ((k, later + time, data) for k, time, data in flv_tags(contents[1]) if k != 18)
    write_flv(made, contents[0][:13], tags)


def shift_flv_sound(made, recording, begin, by):
    content = Path(recording).read_bytes()
    tags = ((k, t + by * (k == 8 and t >= begin), data) for k, t, data in flv_tags(content))
    write_flv(made, content[:13], tags)


class Box:
    """Of an MP4 file."""

    PARENTS = b"moov trak mdia minf stbl".split()

    def __init__(self, kind, content):
        self.kind, self.content = kind, content
        self.boxes = Box.all(content) if kind in Box.PARENTS else None

    @staticmethod
    def all(content):
        boxes, at = [], 0
        while at < len(content):
            size, kind = struct.unpack_from(">I4s", content, at)
            boxes.append(Box(kind, content[at + 8 : at + size]))
            at += size
        return boxes

    def __getitem__(self, path):
        box = self
        for kind in path.encode().split():
            box = next(each for each in box.boxes if each.kind == kind)
        return box

    def __bytes__(self):
        content = self.content if self.boxes is None else b"".join(map(bytes, self.boxes))
        return struct.pack(">I4s", 8 + len(content), self.kind) + content


def join_mp4(made, first, second):
    """One video track that has two sample descriptions."""
    files = [Box.all(Path(each).read_bytes()) for each in (first, second)]
    top = [{box.kind: box for box in boxes} for boxes in files]
    tables = [each[b"moov"]["trak mdia minf stbl"] for each in top]
    data = b"".join(each[b"mdat"].content for each in top)
    begin = len(bytes(top[0][b"ftyp"])) + 8
    # Where the samples of each lie now: the media data of both files stand behind each other.
    moved = []
    for boxes, before in zip(files, (0, len(top[0][b"mdat"].content))):
        old = 8
        for box in boxes:
            if box.kind == b"mdat":
                break
            old += len(bytes(box))
        moved.append(begin + before - old)

    def words(kind, part, skip):
        content = tables[part][kind].content[skip:]
        return [each for (each,) in struct.iter_unpack(">I", content)]

    def table(kind, head, entries, entry_words=1):
        numbers = [*head, len(entries) // entry_words, *entries]
        tables[0][kind].content = struct.pack(f">{len(numbers)}I", *numbers)

    chunks, samples = len(words("stco", 0, 8)), words("stsz", 0, 8)[0]
    later = words("stsc", 1, 8)
    later[0::3] = (each + chunks for each in later[0::3])
    later[2::3] = (2 for _ in later[2::3])
    table("stsc", [0], words("stsc", 0, 8) + later, 3)
    table("stts", [0], words("stts", 0, 8) + words("stts", 1, 8), 2)
    table("stss", [0], words("stss", 0, 8) + [each + samples for each in words("stss", 1, 8)])
    table("stsz", [0, 0], words("stsz", 0, 12) + words("stsz", 1, 12))
    offsets = ([each + moved[part] for each in words("stco", part, 8)] for part in (0, 1))
    table("stco", [0], sum(offsets, []))
    descriptions = b"".join(each["stsd"].content[8:] for each in tables)
    tables[0]["stsd"].content = struct.pack(">II", 0, 2) + descriptions
    moov = top[0][b"moov"]
    track = moov["trak"]
    track.boxes = [box for box in track.boxes if box.kind != b"edts"]
    for box, at in ((moov["mvhd"], 16), (track["tkhd"], 20), (track["mdia mdhd"], 16)):
        (length,) = struct.unpack_from(">I", box.content, at)
        box.content = box.content[:at] + struct.pack(">I", 2 * length) + box.content[at + 4 :]
    made.write_bytes(bytes(top[0][b"ftyp"]) + bytes(Box(b"mdat", data)) + bytes(moov))


def lose_chunks(made, recording, begin, end):
    """Of an MP4's first track, the index says of some chunks that they lie beyond the end."""
    top = Box.all(Path(recording).read_bytes())
    table = next(box for box in top if box.kind == b"moov")["trak mdia minf stbl stco"]
    offsets = [each for (each,) in struct.iter_unpack(">I", table.content[8:])]
    for number in range(int(len(offsets) * begin), int(len(offsets) * end)):
        offsets[number] = 0x7FFFFFFF
    table.content = table.content[:8] + struct.pack(f">{len(offsets)}I", *offsets)
    made.write_bytes(b"".join(map(bytes, top)))
