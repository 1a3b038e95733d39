#!/usr/bin/env python3
"""Calls of the real program that fail, programs that are killed, libraries planted beside them:
whatever happens, either the recording or its whole conversion is there."""
import errno
import os
import re
import shutil
import signal
import subprocess
import time

from program import BUILD, KILLED, LAUNCHER, REPLACE, RUNTIME, WINE
from program import Case, library_file, linux_only, main, seeded

RECORDING = BUILD / "tests/faults/recording.mkv"


def is_reached(case):
    """Under Wine it is Wine's server that opens, closes, renames and removes files, and the first
    reads are Wine's own."""
    call, path, first = (case if isinstance(case, str) else case[0]).split()[:3]
    return not WINE or call in ("write", "fsync") or (call == "read" and first != "1")


class Faulty(Case):
    """Converts a recording of some megabytes, with calls of the process made to fail."""

    whole = b""  # what a run without faults makes of it

    def setUp(self):
        super().setUp()
        self.source = self.folder / "meeting.mkv"
        self.arguments = [
            "--no-window",
            *REPLACE,
            "--delete-sources",
            self.source,
            self.destination,
        ]
        self.again()
        if not Faulty.whole:
            begin = time.monotonic()
            self.assertEqual(self.convert_faulty().status, 0)
            Faulty.duration = time.monotonic() - begin
            Faulty.whole = self.destination.read_bytes()
            self.again()

    def again(self):
        self.destination.unlink(missing_ok=True)
        shutil.copy(RECORDING, self.source)

    def rules(self, rules):
        """An environment in which calls fail, as FaultyCalls.cpp reads the rules."""
        return {
            "LD_PRELOAD": str(BUILD / "tests/faults/libFaultyCalls.so"),
            "FAULTY_CALLS": rules,
            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0",
        }

    def convert_faulty(self, rules="", *options):
        return self.run_program(*options, *self.arguments, **self.rules(rules))

    def has_source(self):
        return self.source.exists() and self.source.read_bytes() == RECORDING.read_bytes()

    def has_result(self):
        return self.destination.exists() and self.destination.read_bytes() == self.whole

    def assert_tidy(self):
        self.assertLessEqual(set(self.files_left()), {"meeting.mkv", "out.mp4"})

    def assert_next_run_ends_the_job(self):
        self.assertTrue(self.has_result() or self.has_source(), "lost")
        ended = self.has_result() and not self.source.exists()
        self.assertIn(self.convert_faulty().status, (0, 2 if ended else 0))
        self.assertFalse(self.source.exists())
        self.assertTrue(self.has_result())
        self.assert_tidy()


class Conversion(Faulty):
    FAILING = [
        ("read meeting.mkv 1 1", "EIO", 20009),
        ("read meeting.mkv 9 9", "EIO", 20009),
        ("read meeting.mkv 20 0", "ESTALE", 20009),
        # Full at the start, in the middle, and for the index at the end, with room again later.
        ("write .part 1 0", "ENOSPC", 20025),
        ("write .part 3 0", "ENOSPC", 20025),
        ("write .part 3 3", "ENOSPC", 20025),
        ("write .part 5 0", "EIO", 20026),
        ("flush .part 1 1", "EIO", 20026),  # told once, and not by the fsync that follows
        ("fsync .part 1 1", "EIO", 20026),
        ("read .part 1 1", "EIO", 20027),  # while it is verified
        ("read .part 9 0", "EIO", 20027),
        ("write .part 1 1", "drop", 20027),
        ("write .part 50 50", "drop", 20027),
        ("write .part 100 0", "drop", 20027),
        ("open .part 1 1", "ENOSPC", 20025),
        ("open .part 1 1", "EMFILE", 20026),
        ("open .part 1 1", "EROFS", 20023),
        ("close .part 1 1", "EIO", 20026),
        ("rename .part 1 0", "EACCES", 20023),
        ("rename .part 1 0", "ENOSPC", 20025),
        # While what was written is moved behind the index.
        ("read .part 2 2", "EIO", 20026, "--fast-start"),
        ("write .part 180 180", "ENOSPC", 20025, "--fast-start"),
        ("write .part 180 180", "drop", 20027, "--fast-start"),
    ]

    def test_a_failed_call_leaves_the_recording_and_an_older_destination(self):
        for calls, error, code, *options in filter(is_reached, self.FAILING):
            with self.subTest(calls=calls, error=error):
                self.again()
                self.write("out.mp4", "older")
                run = self.convert_faulty(f"{calls} {getattr(errno, error, error)}", *options)
                self.assertEqual(run.status, 1, run)
                self.assertIn("The conversion failed", run.errors)
                self.assertIn(f"error {code}: ", run.errors)
                self.assertTrue(self.has_source())
                self.assertEqual(self.destination.read_bytes(), b"older")
                self.assert_tidy()

    def test_short_and_interrupted_calls_change_nothing(self):
        run = self.convert_faulty(
            "write .part 1 0 short;read meeting.mkv 1 0 short;read .part 1 0 short;"
            + f"fsync .part 1 2 {errno.EINTR}" * (not WINE)  # which takes it for a failure
        )
        self.assertEqual(run.status, 0, run)
        self.assertTrue(self.has_result())
        self.assert_left("out.mp4")

    @linux_only
    def test_both_files_stay_when_the_folder_is_not_synced_or_the_recording_not_deleted(self):
        # The second fsync on the folder's own path: its temporary has a longer one.
        for rules, said in (
            (f"fsync {self.folder} 2 0 {errno.EIO}", "20026"),
            (f"unlink meeting.mkv 1 0 {errno.EIO}", "cannot be deleted"),
            (f"rename .part 1 0 {self.source}", "20008"),  # it changes after it was compared
        ):
            self.again()
            run = self.convert_faulty(rules)
            self.assertTrue(run.status == 1 and said in run.errors, run)
            self.assertTrue(self.has_source() and self.has_result())

    def test_a_disk_that_is_full_costs_neither_the_recording_nor_an_older_destination(self):
        disk = self.folder / "disk"
        disk.mkdir()
        mount = ["mount", "-t", "tmpfs", "-o", "size=1m", "tmpfs", disk]
        if subprocess.call(mount, stderr=subprocess.DEVNULL):
            self.skipTest("mounting a file system needs more rights")
        self.addCleanup(subprocess.check_call, ["umount", "-l", disk])
        (disk / "out.mp4").write_text("older")
        self.arguments[-1] = disk / "out.mp4"
        self.environment["XDG_DATA_HOME"] = str(disk)  # the log is on it, too
        run = self.run_program(*self.arguments)
        self.assertEqual(run.status, 1, run)
        self.assertIn("20025", run.errors)
        self.assertEqual((disk / "out.mp4").read_text(), "older")
        self.assertTrue(self.has_source())
        self.assertFalse(list(disk.glob(".*")) + list(disk.glob("*.part")))


class Kill(Faulty):
    POINTS = ["open .part 1", "write .part 1", "write .part 2", "write .part 6", "fsync .part 1"]
    POINTS += ["close .part 1", "read .part 1", "read .part 2", "rename .part 1"]
    POINTS += ["unlink meeting.mkv 1", "write current_log.txt 2"]

    def test_before_a_call_loses_nothing_and_the_next_run_ends_the_job(self):
        for point in filter(is_reached, self.POINTS):
            with self.subTest(point=point):
                self.again()
                run = self.convert_faulty(f"{point} 0 kill")
                self.assertEqual(run.status, KILLED, run)
                self.assertTrue(self.has_source(), "deleted before the call")
                self.assert_next_run_ends_the_job()

    def test_at_random_moments_loses_nothing_and_the_next_run_ends_the_job(self):
        moments, longest, killed = seeded(), self.duration, 0
        enough = time.monotonic() + 60
        while killed < 10 or (killed < 50 and time.monotonic() < enough):
            self.again()
            delay = moments.uniform(0, longest)
            with self.subTest(delay=delay):
                run = self.start(*self.arguments)
                time.sleep(delay)  # not a wait for something: the moment is the test
                run.signal(signal.SIGKILL)
                if run.wait() == KILLED:
                    killed += 1
                else:
                    longest *= 0.9  # it had ended: the first one was slow
                self.assert_next_run_ends_the_job()


class LogFaults(Faulty):
    def messages(self, rules):
        """What a run logs, without what changes from run to run: times, numbers of threads, and
        the lines of the logger's own worker, which come wherever the threads' race puts them."""
        script = self.write("script.mkv", "progress 10\nwrite done\nprogress 100")
        arguments = (*REPLACE, script, self.destination)
        run = self.on_fake("whole", *arguments, **self.rules(rules))
        self.assertEqual(run.status, 0, run)
        self.assertEqual("Failed to write log file at :" in run.errors, bool(rules), run)
        lines = (each for each in self.log_lines() if "addBlockedString" not in each)
        return [re.sub(r"^.*?\]\[|0x[0-9a-f]+", "", each) for each in lines]

    def test_every_line_arrives_once_and_in_order_when_writes_fail_for_a_while(self):
        undisturbed = self.messages("")
        self.assertGreater(len(undisturbed), 8)
        for rules in (
            "write current_log.txt 1 1 5",
            "write current_log.txt 2 3 28",
            "write current_log.txt 1 1 short;write current_log.txt 2 3 28",
        ):
            with self.subTest(rules=rules):
                self.assertEqual(self.messages(rules), undisturbed)

    def test_a_log_that_can_never_be_written_does_not_hold_the_conversion_up(self):
        run = self.convert_faulty("write current_log.txt 1 0 28")
        self.assertEqual(run.status, 0, run)
        self.assertIn("Failed to write log file at :", run.errors)
        self.assertTrue(self.has_result())


@linux_only
class Planting(Faulty):
    def plant(self, folder, origin=None):
        """Puts libraries into a folder under every name that the program looks for."""
        for name in map(library_file, ("mediaconverter", "zelclient", "zelcore")):
            planted = BUILD / "tests/faults" / library_file("PlantedLibrary")
            shutil.copy(origin / name if origin else planted, folder / name)

    def test_nothing_beside_the_program_in_the_working_folder_or_a_search_path_is_loaded(self):
        programs, marker = self.folder / "bin", self.data / "loaded"
        programs.mkdir()
        self.plant(programs)
        self.plant(self.folder)
        shutil.copy(LAUNCHER, programs)
        (self.folder / "runtime").symlink_to(RUNTIME)
        self.environment["PLANTED_MARKER"] = str(marker)
        search = {name: f"{self.folder}:{programs}" for name in ("LD_LIBRARY_PATH", "PATH")}
        program = programs / LAUNCHER.name
        run = self.terminal(self.source, self.destination, program=program, **search)
        self.assertEqual((run.status, marker.exists(), self.has_result()), (0, False, True), run)
        # Only in the engine folder itself: there it is taken, and so would have told.
        self.destination.unlink()
        run = self.terminal("--engine-folder", programs, self.source, self.destination)
        self.assertEqual((run.status, marker.exists()), (2, True))

    def test_a_runtime_folder_that_others_can_write_is_warned_about(self):
        folder = self.folder / "engine"
        folder.mkdir()
        self.plant(folder, RUNTIME)
        for mode in (0o755, 0o777):
            folder.chmod(mode)
            self.destination.unlink(missing_ok=True)
            run = self.terminal("--engine-folder", folder, self.source, self.destination)
            self.assertEqual(run.status, 0, run)
            self.assertEqual(self.logged("can be changed by other users") > 0, mode == 0o777)


if __name__ == "__main__":
    main()
