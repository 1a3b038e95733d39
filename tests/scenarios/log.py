#!/usr/bin/env python3
"""What a whole run leaves in the log."""
import os
import pwd
import re
import shutil
import signal
import time
import zipfile
from datetime import datetime, timezone

from program import FAKES, LAUNCHER, RECORDINGS, REPLACE, WINE, Case, linux_only, main

LINE = re.compile(  # time <Level> [process:thread][name]File:line function:tag:message
    r"(?P<time>\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ) <(Debug|Info|Warn|Error)> "
    r"\[(?P<process>\d+):(?P<thread>0x[0-9a-f]+)\]\[(?P<name>[^]]*)\]"
    r"(?P<file>[^ :]*):\d+ [^:]*(::[^:]+)*:[^:]*:.*"
)


class Log(Case):
    def assert_lines_of(self, run, begin, end):
        """Every line is of this run: of its time, its process and the threads that it had."""
        threads = {}
        for line in self.log_lines():
            found = LINE.fullmatch(line)
            self.assertTrue(found, line)
            logged = datetime.strptime(found["time"], "%Y-%m-%dT%H:%M:%SZ")
            logged = logged.replace(tzinfo=timezone.utc).timestamp()
            self.assertTrue(int(begin) <= logged <= end, line)
            place = found["file"] if not found["name"] else "worker"
            threads.setdefault(place, set()).add(found["thread"])
            if not WINE:
                self.assertEqual(int(found["process"]), run.process.pid, line)
        for one in ("RootLogger", "LibraryLoader", "MediaConverter", "TerminalConversion"):
            self.assertEqual(threads[one], threads["Launcher"])
        if not WINE:
            self.assertEqual(threads["Launcher"], {hex(run.process.pid)})
        self.assertEqual(len(threads["worker"]), 1)
        self.assertFalse(threads["Launcher"] & (threads["worker"] | threads["ZEL"]), threads)
        self.assertFalse(threads["worker"] & threads["ZEL"], threads)

    def test_every_line_has_the_run_s_time_and_threads_and_names_no_person(self):
        user = pwd.getpwuid(os.getuid()).pw_name
        source = self.folder / f"of {user}.mkv"
        shutil.copy(RECORDINGS / "h264-aac.mkv", source)
        for _ in range(2):
            begin = time.time()
            run = self.convert(*REPLACE, source)
            self.assert_lines_of(run, begin, time.time())
            self.assertNotIn(user, self.log())
            self.assertNotIn("<Warn>", self.log())
            self.assert_logged_in_order(
                "Setting Log level to Debug",
                "record-converter 1.",
                "Loaded ",
                "media converter instance is created successfully.",
                'ZEL:0 ::Source "',
                'of ********.mkv"',
                "ZEL:0 ::Destination",
                "FreeLibrary successfully",
                "The conversion ends with status 0",
            )
        # The log of the run before is kept beside it.
        self.assertIn("The conversion ends with status 0", self.log("last_run_current_log.txt"))

    def test_lines_of_the_time_without_a_folder_are_written_once_there_is_one(self):
        (self.data / "QuorellTarn").write_text("a file where the folder belongs")
        script = self.write("script.mkv", "progress 10\nhold")
        engine = ("--no-window", "--engine-folder", FAKES / "whole")
        run = self.start(*engine, script, self.destination)
        run.await_text("10 %")
        (self.data / "QuorellTarn").unlink()
        run.signal(signal.SIGINT)
        self.assertEqual(run.wait(), 130)
        self.assertIn("Failed to open log file at :", run.errors)
        self.assertIn("Setting Log level to Debug", self.log_lines()[0])
        for text in ("record-converter 1.", "The conversion ends with status 130"):
            self.assertEqual(self.logged(text), 1)

    def test_an_engine_that_crashes_takes_neither_recording_nor_earlier_lines_with_it(self):
        script = self.write("script.mkv", "progress 10\nwrite part\ncrash")
        run = self.on_fake("whole", "--delete-sources", script, self.destination)
        # 1: a sanitizer has reported it; 3: as Windows ends a program that aborts.
        self.assertIn(run.status, (128 + signal.SIGABRT, 3 if WINE else 1), run)
        self.assertTrue(script.exists())
        self.assertEqual(self.logged("record-converter 1."), 1)

    def test_several_runs_at_once_have_files_of_their_own_and_all_go_into_the_archive(self):
        engine = ("--no-window", "--engine-folder", FAKES / "whole")
        self.logs.mkdir(parents=True)
        (self.logs / "current_log.txt").write_text("the run before")
        runs = []
        for number in range(8):
            script = self.write(f"{number}.mkv", "progress 10\nhold")
            runs.append(self.start(*engine, script, self.folder / f"{number}.mp4"))
        for run in runs:
            run.await_text("10 %")
        archives = [self.start("--archive-logs", self.folder) for _ in range(2)]
        self.assertEqual([run.wait() for run in archives], [0, 0])
        for name in {run.output.strip() for run in archives}:
            with zipfile.ZipFile(self.folder / re.split(r"[\\/]", name)[-1]) as archive:
                logs = {each: archive.read(each).decode() for each in archive.namelist()}
            self.assertEqual(logs["last_run_current_log.txt"], "the run before")
            counts = [text.count("record-converter 1.") for text in logs.values()]
            self.assertEqual(sorted(counts)[-8:], [1] * 8, logs.keys())
        self.assertEqual(len(list(self.folder.glob("*.zip"))), 2)

    @linux_only
    def test_no_file_takes_the_place_of_a_closed_stream_and_a_limit_to_files_is_an_error(self):
        command = (LAUNCHER, "--no-window", "--engine-folder", FAKES / "whole")
        command += (self.write("script.mkv", "progress 10\nhold"), self.destination)
        closed = 'exec 0<&- 1>&- 2>&-; exec "$@"'
        run = self.start("-c", closed, "sh", *command, program="sh")
        log = self.logs / "current_log.txt"
        run.await_that(lambda: log.exists() and self.logged("record-converter 1."), "logged")
        for number in range(3):
            self.assertEqual(os.readlink(f"/proc/{run.process.pid}/fd/{number}"), "/dev/null")
        run.signal(signal.SIGINT)
        self.assertEqual(run.wait(), 130)
        command = (LAUNCHER, "--no-window", RECORDINGS / "h264-aac.mkv", self.destination)
        run = self.run_program("-c", 'ulimit -f 1; exec "$@"', "sh", *command, program="sh")
        self.assertEqual(run.status, 1, run)
        self.assert_left("script.mkv")

    @linux_only
    def test_no_name_from_outside_forges_a_line_or_is_written_raw(self):
        forged = "2024-05-01T09:30:05Z <Error> [1:0x1][]Forged:1 f::forged"
        for name in (f"x\n{forged}\r\x1b[2J", "a|b:c.mkv", "\u2028.mkv", "n" * 250):
            # The engine's own trace has the whole path in it.
            run = self.terminal(self.write(name, "no recording"), self.destination)
            self.assertEqual(run.status, 1, run)
            for line in self.log_lines():
                self.assertRegex(line, r"^(?!2024-)[-\d]{10}T[:\d]{8}Z <\w+> \[\d+:0x[0-9a-f]+\]")
                self.assertNotRegex(line, "[\x00-\x08\x0b-\x1f\u2028]")


if __name__ == "__main__":
    main()
