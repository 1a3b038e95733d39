#!/usr/bin/env python3
"""The launcher on a scripted engine and a scripted product library."""
import os
import pwd
import re
import shutil
import signal
import subprocess
import time
import zipfile

from program import FAKES, WINE, Case, library_file, linux_only, main, native

READY, FAILED, REFUSED, STOPPED = 0, 1, 2, 130
DONE = "progress 0\nprogress 55.5\nwrite done\nprogress 100\nprogress 100"
LOG_FILES = [
    beginning + name
    for beginning in ("", "last_run_")
    for name in ("current_log.txt", "current_log1.txt", "current_log_header.txt")
]


class Launched(Case):
    def setUp(self):
        super().setUp()
        self.environment["QT_QPA_PLATFORM"] = "offscreen"

    def stop(self, shown, *arguments, number=signal.SIGINT, **options):
        """Starts the launcher and sends it a signal once it shows a text."""
        run = self.start(*arguments, **options)
        run.await_text(shown)
        begin = time.monotonic()
        run.signal(number)
        self.assertEqual(run.wait(), STOPPED, run)
        self.assertLess(time.monotonic() - begin, 10)
        return run

    def window(self, order, *arguments, variant="whole", **options):
        """The window's mode, with a product library that follows an order."""
        options = {"FAKE_PRODUCT": order, **options}
        return self.run_program("--engine-folder", FAKES / variant, *arguments, **options)


class Endings(Launched):
    # engine, script, destination before, status, said, are the sources deleted when they are to be
    ENDINGS = [
        ("whole", DONE, None, READY, "100 %\n", True),
        ("whole", "result 4095\nwrite done\nprogress 1e9\nerror 1", None, READY, "out.mp4", True),
        ("no-stop", "write done\nprogress 100\nhold", None, READY, "out.mp4", True),
        ("whole", "progress 60\nprogress nan\nerror -3", "older", FAILED, "its error -3.", False),
        ("whole", "write done\nerror 5\nprogress 100\nerror 6", None, FAILED, "error 5.", False),
        ("whole", "write \nprogress 100", None, FAILED, "wrote no destination", False),
        ("whole", "progress 100", "older", FAILED, "wrote no destination", False),
        ("whole", "result -100", None, FAILED, "did not start", False),
        ("failing-factory", "write done\nprogress 100", None, FAILED, "did not start", False),
        ("no-stop", "error 9\nhold", None, FAILED, "its error 9.", False),
    ]

    def test_the_first_report_decides_and_only_success_deletes_what_it_was_told_to(self):
        for variant, script, older, status, said, deleted in self.ENDINGS:
            for delete in (True, False):
                with self.subTest(variant=variant, script=script, delete=delete):
                    self.destination.unlink(missing_ok=True)
                    if older:
                        self.write("out.mp4", older)
                    sources = self.write("a.mkv", script), self.write("b.mkv")
                    flag = ["--delete-sources"] * delete
                    run = self.on_fake(variant, *flag, *sources, self.destination)
                    self.assertEqual((run.status, run.output), (status, ""), run)
                    self.assertIn(said, run.errors)
                    self.assertNotIn("\r", run.errors)
                    for source in sources:
                        self.assertEqual(source.exists(), not (deleted and delete))
                    self.assertEqual(self.logged(f"The conversion ends with status {status}"), 1)
                    if status == FAILED:
                        self.assertIn("The conversion failed", run.errors)
                        self.assertIn("current_log.txt", run.errors)
                    elif variant == "whole":
                        self.assertEqual(self.destination.read_text(), "done")
                        self.assertEqual(self.logged("FreeLibrary successfully"), 2)

    def test_each_signal_to_stop_leaves_the_sources_and_an_older_destination(self):
        # A stopped engine may still report; one without a stop may have written half of it.
        for number, variant, script, older in [
            (signal.SIGINT, "whole", "progress 20\nhold\nprogress 100", None),
            (signal.SIGTERM, "no-stop", "write part\nprogress 20\nhold", None),
            (signal.SIGHUP, "no-stop", "progress 20\nhold", "older"),
        ]:
            if WINE and number != signal.SIGINT:
                continue
            with self.subTest(number=number, script=script):
                if older:
                    self.write("out.mp4", older)
                source = self.write("a.mkv", script)
                arguments = ("--delete-sources", source, self.destination)
                engine = ("--no-window", "--engine-folder", FAKES / variant)
                run = self.stop("20 %", *engine, *arguments, number=number)
                self.assertIn("Stopped: nothing was converted", run.errors)
                self.assertEqual(source.read_text(), script)
                self.assertEqual(self.destination.exists() and "older", older is not None and older)
                self.assertEqual(self.logged("The conversion ends with status 130"), 1)

    @linux_only
    def test_a_reader_of_the_progress_that_goes_away_stops_nothing(self):
        source = self.write("a.mkv", "progress 20\nprogress 40\n" + DONE)
        reader, writer = os.pipe()
        os.close(reader)
        engine = ("--no-window", "--engine-folder", FAKES / "whole")
        run = self.start(*engine, source, self.destination, streams={"stderr": writer})
        os.close(writer)
        self.assertEqual((run.wait(), self.destination.read_text()), (READY, "done"))

    @linux_only
    def test_a_terminal_shows_a_bar_that_fits_it(self):
        source = self.write("a.mkv", "progress 50\nhold")
        terminal, side = os.openpty()
        self.addCleanup(os.close, terminal)
        subprocess.check_call(["stty", "cols", "50"], stdin=side)
        engine = ("--no-window", "--engine-folder", FAKES / "whole")
        run = self.start(*engine, source, self.destination, streams={"stderr": side})
        os.close(side)
        shown = ""
        while "50 %" not in shown:
            shown += os.read(terminal, 4096).decode()
        run.signal(signal.SIGINT)
        self.assertEqual(run.wait(), STOPPED)
        bar = r"\[(#+)(\.+)\]  50 %  \d+\.\d MB/s  \d+:\d\d left *$"
        full, empty = re.search(bar, shown.split("\r")[-1]).groups()
        self.assertAlmostEqual(len(full), len(empty), delta=1)
        self.assertLess(max(map(len, shown.split("\r"))), 50)


class Refusals(Launched):
    def refused(self, told, *arguments, **options):
        run = self.run_program(*arguments, **options)
        self.assertEqual((run.status, run.output, run.errors.count("\n")), (REFUSED, "", 1), run)
        self.assertTrue(run.errors.startswith("record-converter: "))
        self.assertIn(told, run.errors)

    def test_one_sentence_names_what_stands_in_the_way_and_nothing_is_touched(self):
        source, destination = self.write("a.mkv", DONE), self.destination
        empty = self.folder / "empty"
        empty.mkdir()
        shutil.copy(FAKES / "whole" / library_file("mediaconverter"), self.folder)
        no = "--no-window"
        cases = [
            ("See record-converter --help.", no),
            ('"--quick" is unknown', no, "--quick", source, destination),
            ("There is no recording", no, "|" * 32000, destination),
            ("There is no recording", "gone.mkv", destination),
            ("a??[31m.mkv", no, "a\n\x1b[31m.mkv", destination),
            ("is one of the recordings", no, source, source),
            (
                "CreateMediaConverter",
                no,
                "--engine-folder",
                FAKES / "no-factory",
                source,
                destination,
            ),
            ("There is no window", "--engine-folder", FAKES / "no-stop", source, destination),
            # An engine is taken from its folder, and from no place of the system's search.
            ("There is no ", no, "--engine-folder", empty, source, destination),
            ("empty", no, "--engine-folder", "empty", source, destination),
            ("--engine-folder", no, "--engine-folder", "", source, destination),
            ("is no folder", "--archive-logs", "absent"),
            ("is no folder", "--archive-logs", "a.mkv"),
            ("give no recording with it", "--archive-logs", ".", "a.mkv", "b.mp4"),
        ]
        if not WINE:
            cases += [  # not even root can write there
                ("cannot be written", "--archive-logs", "/proc"),
                ("can not be written", no, source, "/proc/out.mp4"),
                ("\ufffd\ufffd", no, os.fsdecode(b"\xff\xc0\xed\xa0\x80"), destination),
            ]
        for told, *arguments in cases:
            with self.subTest(arguments=arguments, told=told):
                beside = {} if WINE else {"LD_LIBRARY_PATH": str(self.folder)}
                self.refused(told, *arguments, **beside)
                self.assert_left("a.mkv", library_file("mediaconverter"))
        run = self.terminal("--engine-folder", ".", source, destination)
        self.assertEqual(run.status, READY, run)

    @linux_only
    def test_without_a_display_the_terminal_is_named(self):
        source = self.write("a.mkv")
        for x11, wayland in (("", ""), (":987", "none"), ("unix:987.0", "/no"), ("nonsense", "")):
            display = {"DISPLAY": x11, "WAYLAND_DISPLAY": wayland, "QT_QPA_PLATFORM": ""}
            for told in ("no display", "--no-window"):
                self.refused(told, source, self.destination, **display)

    def test_help_and_version_go_to_standard_output_and_leave_no_log(self):
        for option, said in (("--help", "usage: record-converter"), ("--version", "record-conv")):
            run = self.run_program(option)
            self.assertEqual((run.status, run.errors), (READY, ""))
            self.assertTrue(run.output.startswith(said), run)
        self.assertFalse(self.logs.exists())


class WindowMode(Launched):
    """What the launcher hands to the product library, and what is left when that ends."""

    def test_the_sources_that_are_to_stay_are_lent_under_second_names(self):
        source = self.write("a b.mkv", "x")
        run = self.window("delete", "--theme", "dark", source, self.destination)
        self.assertEqual(run.status, READY, run)
        rest = f"4:{native(self.destination)}\n5:2\nended\nsource there\n"
        begin = f"1:{native(FAKES / 'whole')}\n2:\n3:{native(self.folder)}"
        self.assertRegex(run.output, f"(?s){re.escape(begin)}.*{re.escape(rest)}")
        self.assertEqual(source.read_text(), "x")
        self.assert_left("a b.mkv")
        run = self.window("delete", "--delete-sources", source, self.destination)
        said = f"3:{native(source)}\n4:{native(self.destination)}\n5:1\n"
        self.assertIn(said, run.output)
        self.assert_left()

    @linux_only
    def test_a_second_name_is_a_link_in_the_folder_of_the_source_and_plain(self):
        elsewhere = self.folder / "elsewhere"
        elsewhere.mkdir()
        odd = self.write("elsewhere/a|b.mkv", "x")
        run = self.start(
            "--engine-folder", FAKES / "whole", odd, self.destination, FAKE_PRODUCT="hold"
        )
        run.await_text("source there")
        (lent,) = (each for each in self.folder.rglob("*.mkv") if each != odd)
        self.assertIn(f"3:{lent}\n", run.output)
        self.assertTrue(lent.samefile(odd) and lent.is_relative_to(elsewhere))
        run.signal(signal.SIGINT)
        run.wait()
        for flag, status in (("--delete-sources", REFUSED), ("--theme=dark", READY)):
            run = self.window("exit", *flag.split("="), odd, self.destination)
            self.assertEqual((run.status, "a|b.mkv" in run.errors), (status, status == REFUSED))
        self.assert_left("elsewhere/a|b.mkv")

    def test_no_second_name_is_left_however_it_ends(self):
        sources = self.write("a.mkv", "x"), self.write("b.mkv", "y")
        for order, status in (("exit", READY), ("return 0", READY), ("return -1", FAILED)):
            self.assertEqual(self.window(order, *sources, self.destination).status, status)
            self.assert_left("a.mkv", "b.mkv")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)[: 1 if WINE else 3]:
            arguments = ("--engine-folder", FAKES / "whole", *sources, self.destination)
            self.stop("\nsource ", *arguments, number=number, FAKE_PRODUCT="hold")
            self.assert_left("a.mkv", "b.mkv")


class Archive(Launched):
    def test_holds_the_logs_of_this_and_the_previous_run_masked(self):
        user = pwd.getpwuid(os.getuid()).pw_name
        folder = self.folder / f"logs of {user}"
        folder.mkdir()
        source = self.write("a.mkv", DONE)
        for name in ("1.mp4", "2.mp4"):
            self.assertEqual(self.on_fake("whole", source, folder / name).status, READY)
            (folder / name).unlink()
        for name in [*LOG_FILES, "foreign.txt"]:
            if not (self.logs / name).exists():
                (self.logs / name).write_text("content of " + name)
        run = self.run_program("--archive-logs", folder)
        self.assertEqual((run.status, run.errors), (READY, ""), run)
        (archive,) = folder.iterdir()
        self.assertRegex(archive.name, r"^logArchive_[-_0-9]{19}\.zip$")
        self.assertEqual(run.output, native(archive) + "\n")
        with zipfile.ZipFile(archive) as unpacked:
            texts = {name: unpacked.read(name).decode() for name in unpacked.namelist()}
        self.assertEqual(sorted(texts), sorted(LOG_FILES))
        texts["after"] = self.log()
        for name, text in texts.items():
            self.assertNotIn(user, text, name)
        for name in ("current_log.txt", "last_run_current_log.txt", "after"):
            self.assertIn("logs of ********", texts[name])


if __name__ == "__main__":
    main()
