#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build folder, a process per core; remembers what passed.

Usage: scripts/tidy.py BUILD_FOLDER [PATH_PREFIX...]

A source is looked at again when its text, a header of ours that it includes, its compile command,
a .clang-tidy or clang-tidy itself has changed. What has passed is kept in BUILD_FOLDER/tidy.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

# What GCC is told that the clang that Debian ships does not understand, and what to say instead.
FOR_CLANG = {"-std=c++23": "-std=c++2b", "-fno-gnu-unique": "", "-Wno-maybe-uninitialized": ""}


def header_lists(build: pathlib.Path, root: pathlib.Path) -> dict[str, list[str]]:
    """What ninja knows each object to include, of our own files."""
    known: dict[str, list[str]] = {}
    listing = subprocess.run(
        ["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=False
    ).stdout
    headers: list[str] = []
    for line in listing.splitlines():
        if not line.startswith(" "):
            headers = known.setdefault(line.split(":")[0], []) if line else []
            continue
        path = os.path.normpath(build / line.strip())
        if path.startswith(f"{root}{os.sep}"):
            headers.append(path)
    return known


def main() -> int:
    build = pathlib.Path(sys.argv[1]).resolve()
    root = pathlib.Path(__file__).resolve().parent.parent
    prefixes = tuple(str(root / prefix) + os.sep for prefix in sys.argv[2:]) or (f"{root}{os.sep}",)
    passed = build / "tidy"
    passed.mkdir(exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    settings = [root / ".clang-tidy", *(root / prefix / ".clang-tidy" for prefix in sys.argv[2:])]
    common = version + str(FOR_CLANG).encode()
    common += b"".join(path.read_bytes() for path in settings if path.exists())
    headers = header_lists(build, root)

    def key_of(entry: dict) -> str | None:
        includes = headers.get(entry.get("output") or object_of(entry))
        if not includes:
            return None  # not built yet: nothing is known of its headers
        digest = hashlib.sha256(common + entry["command"].encode())
        for path in sorted({entry["file"], *includes}):
            try:
                digest.update(path.encode() + pathlib.Path(path).read_bytes())
            except FileNotFoundError:
                return None
        return digest.hexdigest()

    def object_of(entry: dict) -> str:
        words = shlex.split(entry["command"])
        return words[words.index("-o") + 1]

    def check(entry: dict) -> tuple[str, bool, str]:
        key = key_of(entry)
        if key and (passed / key).exists():
            return entry["file"], True, ""
        run = subprocess.run(
            ["clang-tidy", "-p", passed, "--quiet", entry["file"]],
            capture_output=True,
            text=True,
            check=False,
        )
        if run.returncode == 0:
            if key:
                (passed / key).touch()
            return entry["file"], True, ""
        # The count of what system headers hold says nothing.
        noise = re.compile(r"^\d+ (warnings?|errors?).* generated|^Suppressed |^Use -header-filter")
        text = "\n".join(
            line for line in (run.stdout + run.stderr).splitlines() if not noise.match(line)
        )
        return entry["file"], False, text

    commands = json.loads((build / "compile_commands.json").read_text())
    for entry in commands:
        words = (FOR_CLANG.get(word, word) for word in entry["command"].split(" "))
        entry["command"] = " ".join(words)
    (passed / "compile_commands.json").write_text(json.dumps(commands))
    entries = {
        entry["file"]: entry
        for entry in commands
        if entry["file"].startswith(prefixes) and not entry["file"].startswith(f"{root}/build/")
    }
    failures = 0
    # The largest first, so that the last ones to end are short.
    order = sorted(entries.values(), key=lambda entry: -os.path.getsize(entry["file"]))
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        for file, good, text in pool.map(check, order):
            if not good:
                failures += 1
                print(text or f"{file}: clang-tidy failed without a word", flush=True)
    print(f"clang-tidy: {len(entries)} files, {failures} with findings")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
