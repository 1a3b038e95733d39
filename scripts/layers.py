#!/usr/bin/env python3
"""Fails on an include that points up or sideways.

The order is read from docs/architecture.md: each block that begins with ```layers names folders
from top to bottom. A file may include what stands in its own folder, and what stands in a lower
line than its folder in any of the blocks, or can be reached that way.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
OUTSIDE_SRC = ("engine/", "launcher/")  # elsewhere the path of an include begins below src/
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')


def order() -> dict[str, set[str]]:
    """For each folder all that stand below it."""
    below: dict[str, set[str]] = {}
    text = (ROOT / "docs/architecture.md").read_text()
    for block in re.findall(r"^```layers\n(.*?)^```", text, re.DOTALL | re.MULTILINE):
        lines = [line.split() for line in block.splitlines()]
        for number, line in enumerate(lines):
            for folder in line:
                below.setdefault(folder, set()).update(*lines[number + 1 :])
    for middle in below:
        for folder, lower in below.items():
            if middle in lower:
                lower |= below[middle]
    circles = sorted(folder for folder, lower in below.items() if folder in lower)
    if not below or circles:
        sys.exit(f"layers.py: docs/architecture.md gives no order ({', '.join(circles)})")
    return below


def layer(path: str, layers: dict[str, set[str]]) -> str:
    """The longest name in the order that the path begins with."""
    found = (name for name in layers if re.match(re.escape(name) + r"[/.]", path))
    return max(found, key=len, default="")


def main() -> int:
    layers = order()
    faults = 0
    files = (each for top in ("src", "engine", "launcher") for each in (ROOT / top).rglob("*.*"))
    for file in sorted(each for each in files if each.suffix in (".h", ".cpp")):
        path = file.relative_to(ROOT).as_posix()
        own = layer(path, layers)
        for number, line in enumerate(file.read_text().splitlines(), 1):
            if not (match := INCLUDE.match(line)):
                continue
            name = match[1]
            other = layer(name if name.startswith(OUTSIDE_SRC) else "src/" + name, layers)
            if not own or not other or (other != own and other not in layers[own]):
                print(f'{path}:{number}: "{name}": {other or "?"} is not below {own or "?"}')
                faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
