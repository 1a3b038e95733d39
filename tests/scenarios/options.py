#!/usr/bin/env python3
"""Options whose effect other programs have to see: in the file that is made, in the manual and in
the shells."""
import json
import re
import shlex
import shutil
import subprocess
import unittest

from make_recordings import Maker
from program import BUILD, RECORDINGS, ROOT, WINE, Case, linux_only, main

make = Maker(RECORDINGS)


def tool(*command, **options):
    return subprocess.check_output(command, text=True, **options)


class Made(Case):
    def boxes(self):
        """The file's outermost boxes, in order."""
        traced = tool("ffprobe", "-v", "trace", self.destination, stderr=subprocess.STDOUT)
        return re.findall(r"type:'(\w+)' parent:'root'", traced)

    def content(self):
        """What a foreign demuxer finds: every packet's time and hash, tags and chapters."""
        shown = "-show_entries", "stream=codec_name:chapter:format_tags", "-of", "json"
        copy = "-v", "error", "-i", self.destination, "-map", "0", "-c", "copy", "-f", "framemd5"
        return tool("ffmpeg", *copy, "-"), json.loads(
            tool("ffprobe", "-v", "error", *shown, self.destination)
        )

    def test_fast_start_moves_the_index_and_nothing_else(self):
        names = "h264-aac.mkv", "vp8-vorbis.webm", "chapters.mkv", "subtitles.mkv", "cover.m4a"
        for name in names[: 2 if WINE else None]:
            with self.subTest(name=name):
                self.destination.unlink(missing_ok=True)
                self.convert(make(name))
                self.assertEqual(self.boxes()[-2:], ["mdat", "moov"])
                plain = self.content()
                self.convert("--fast-start", "--overwrite", make(name))
                self.assertEqual(self.boxes()[:2], ["ftyp", "moov"])
                self.assertEqual(self.content(), plain)
                decoded = "ffmpeg", "-v", "error", "-i", self.destination, "-f", "null", "-"
                self.assertEqual(tool(*decoded, stderr=subprocess.STDOUT), "")
                self.assert_left("out.mp4")

    def test_quality_changes_what_is_transcoded_alone(self):
        def made(quality, name):
            self.destination.unlink(missing_ok=True)
            self.convert("--quality", quality, make(name))
            return self.destination.read_bytes()

        self.assertEqual(made("small", "h264-aac.mkv"), made("high", "h264-aac.mkv"))
        sizes = [len(made(each, "vp8-vorbis.webm")) for each in ("small", "normal", "high")]
        self.assertEqual(sizes, sorted(set(sizes)))


@linux_only
class Beside(Case):
    """What the build makes of the table of options, for other programs."""

    MANUAL = BUILD / "share/man/man1/record-converter.1"
    BASH = BUILD / "share/bash-completion/completions/record-converter"
    ZSH = BUILD / "share/zsh/vendor-completions/_record-converter"

    def setUp(self):
        super().setUp()
        self.help = self.run_program("--help").output
        self.options = re.findall(r"(?m)^  (--[a-z-]+)", self.help)

    def test_the_help_and_the_manual_name_every_option_and_number(self):
        self.assertGreater(len(self.options), 12)
        for line in self.help.splitlines():
            self.assertLessEqual(len(line), 80 if "Logs" not in line else 999)
        self.assertEqual(tool("mandoc", "-Tlint", "-Wwarning", self.MANUAL), "")
        manual = tool("mandoc", "-Tutf8", "-Owidth=999", self.MANUAL)
        manual = re.sub(".\b", "", manual)
        for option in self.options:
            self.assertIn(f" {option}", manual)
        header = (ROOT / "engine/support/ErrorCode.h").read_text()
        numbers = re.findall(r"= (2\d{4}),", header)
        self.assertGreater(len(numbers), 20)
        for number in (*numbers, "-100", "0", "1", "2", "3", "130"):
            run = self.run_program("--explain", number)
            self.assertRegex(run.output, rf"{number}: \w.*\.\n$")
            self.assertIn(run.output.split(": ", 1)[1].strip().lower(), manual.lower())

    def test_bash_completes_options_their_words_and_folders(self):
        (self.folder / "a folder").mkdir()
        (self.folder / "a file").touch()

        def complete(*words):
            script = (
                f"compopt() {{ :; }}; . {self.BASH}; COMP_WORDS=({shlex.join(words)}); "
                'COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _record_converter; printf "%s\\n" '
                '"${COMPREPLY[@]}"'
            )
            return tool("bash", "-euc", script, cwd=self.folder).split("\n")[:-1]

        self.assertEqual(complete("record-converter", "--fa"), ["--fast-start"])
        self.assertEqual(complete("record-converter", "--"), self.options)
        for words, found in (
            (["--quality", ""], ["small", "normal", "high"]),
            (["--theme", "=", "d"], ["dark"]),
            (["--theme", "="], ["light", "dark"]),
            (["--to", "a"], ["a folder"]),
            (["--explain", "2000"], [f"2000{last}" for last in range(1, 10)]),
            (["--each", "a"], [""]),
        ):
            self.assertEqual(complete("record-converter", *words), found)

    @unittest.skipUnless(shutil.which("zsh"), "no zsh")
    def test_zsh_takes_its_completion(self):
        script = "compdef() {}; _arguments() { print -rl -- $@ }; . $1"
        told = tool("zsh", "-fc", script, "zsh", self.ZSH)
        for option in self.options:
            self.assertRegex(told, rf"(?m)^{option}=?\[\S.*")


if __name__ == "__main__":
    main()
