#!/usr/bin/env python3
"""Makes the recordings that the tests convert, each when it is first asked for.

usage: make_recordings.py FOLDER [NAME...]
"""
import fcntl
import inspect
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

from recipes import RECIPES


class Maker:
    """Makes recordings in a folder; several processes may use one folder."""

    def __init__(self, folder):
        self.folder = Path(folder).resolve()

    def __call__(self, name):
        self.folder.mkdir(parents=True, exist_ok=True)
        path = self.folder / name
        recipe = RECIPES[name]
        texts = [each for each in recipe if isinstance(each, str)]
        parts = {each: self(each) for each in re.findall(r"{([^ {}]+)}", " ".join(texts))}
        words = [inspect.getsource(each) if callable(each) else repr(each) for each in recipe]
        wanted = "\n".join(words + [f"{each.stat().st_mtime_ns}" for each in parts.values()])
        with open(self.folder / f".{name}.recipe", "a+") as known:
            fcntl.flock(known, fcntl.LOCK_EX)
            known.seek(0)
            if known.read() != wanted or not path.exists():
                made = self.folder / f"making-{name}"
                self.carry_out(made, *(self.filled_in(each, parts) for each in recipe))
                os.replace(made, path)
                known.truncate(0)
                known.write(wanted)
        return path

    @staticmethod
    def filled_in(word, parts):
        for name, path in parts.items() if isinstance(word, str) else ():
            word = word.replace("{" + name + "}", str(path))
        return word

    @staticmethod
    def carry_out(made, first, *rest):
        if callable(first):
            first(made, *rest)
        else:
            words = shlex.split(" ".join((first, *rest)))
            command = ["ffmpeg", "-y", "-nostdin", "-loglevel", "error", "-bitexact"]
            subprocess.run([*command, *words, made], check=True)


if __name__ == "__main__":
    make = Maker(sys.argv[1])
    for each in sys.argv[2:] or RECIPES:
        make(each)
