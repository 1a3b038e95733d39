"""Makes two forgeries of a signed library: one with a bit changed after the signing, and another
library that carries its certificate table.
usage: forge.py SIGNED OTHER CHANGED BORROWED"""

import struct
import sys
from pathlib import Path

SECURITY_DIRECTORY = 4  # "PE Format": an offset into the file and a size


def entry_offset(image: bytes) -> int:
    header = struct.unpack_from("<I", image, 0x3C)[0]
    return header + 24 + 112 + 8 * SECURITY_DIRECTORY


signed, other = (Path(name).read_bytes() for name in sys.argv[1:3])

changed = bytearray(signed)
changed[0x50] ^= 1  # in the text for DOS: nobody runs it, and the digest covers it
Path(sys.argv[3]).write_bytes(changed)

start, size = struct.unpack_from("<II", signed, entry_offset(signed))
borrowed = bytearray(other + bytes(-len(other) % 8))
struct.pack_into("<II", borrowed, entry_offset(borrowed), len(borrowed), size)
Path(sys.argv[4]).write_bytes(borrowed + signed[start : start + size])
