#!/usr/bin/env python3
"""The launcher on a scripted engine and a scripted product library."""
import calendar
import json
import os
import pwd
import re
import shutil
import signal
import subprocess
import time
import unittest
import zipfile
from pathlib import Path

from program import FAKES, LAUNCHER, SANITIZER, WINE, Case
from program import library_file, linux_only, main, name_of, native

READY, FAILED, REFUSED, INCOMPLETE, STOPPED = 0, 1, 2, 3, 130
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
        self.environment["FAKE_PRODUCT"] = "exit"

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
        ("whole", "progress 60\nprogress nan\nerror -3", "older", FAILED, "error -3: as ", False),
        ("whole", "write done\nerror 5\nprogress 100\nerror 6", None, FAILED, "5: as the ", False),
        ("whole", "write \nprogress 100", None, FAILED, "wrote no destination", False),
        ("whole", "progress 100", "older", FAILED, "wrote no destination", False),
        ("whole", "result -100", None, FAILED, "did not start", False),
        ("failing-factory", "write done\nprogress 100", None, FAILED, "did not start", False),
        ("no-stop", "error 9\nhold", None, FAILED, "its error 9.", False),
        ("whole", "lose 2 s\nwrite done\nprogress 100", None, INCOMPLETE, "2 s; the rec", False),
    ]

    def test_the_first_report_decides_and_only_success_deletes_what_it_was_told_to(self):
        for variant, script, older, status, said, deleted in self.ENDINGS:
            for delete in (True, False):
                with self.subTest(variant=variant, script=script, delete=delete):
                    self.destination.unlink(missing_ok=True)
                    if older:
                        self.write("out.mp4", older)
                    sources = self.write("a.mkv", script), self.write("b.mkv")
                    flags = ["--delete-sources"] * delete + ["--overwrite"] * bool(older)
                    run = self.on_fake(variant, *flags, *sources, self.destination)
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
                        self.assertIn("out.mp4", run.errors)
                        self.assertEqual(self.destination.read_text(), "done")
                        self.assertEqual(self.logged("FreeLibrary successfully"), 2)

    @unittest.skipIf(not WINE, "two systems' compilers, one system")
    def test_an_engine_that_another_compiler_made_for_another_abi_is_bound(self):
        one, two, empty = self.write("1", "one "), self.write("2", "two"), self.write("0")
        for sources, starts, status, said, film in (
            ([one], "single\n", READY, "100 %\n", "one "),
            ([one, two], "", READY, "100 %\n", "one two"),
            ([one, empty], "", FAILED, "20 %\nThe conversion failed", None),
        ):
            with self.subTest(film=film):
                run = self.on_fake("foreign", "--overwrite", *sources, self.destination)
                self.assertEqual(run.status, status, run)
                # The launcher itself keeps mediaconverter to its end.
                self.assertEqual(run.output, starts + "zelclient unloaded\n")
                self.assertIn(said, run.errors)
                if film:
                    self.assertEqual(self.destination.read_text(), film)
                levels = ("Error", "Warn", "Info", "Debug")
                traced = [f"<{level}> [^\n]*ZEL:0 ::at {n}\n" for n, level in enumerate(levels)]
                self.assertRegex(self.log(), "(?s)" + ".*".join(traced))

    def test_each_signal_to_stop_leaves_the_sources_and_an_older_destination(self):
        # A stopped engine may still report. What one without a stop has written under the
        # destination's name may be another run's by now: it is named, and stays.
        for number, variant, script, older, left in [
            (signal.SIGINT, "whole", "progress 20\nhold\nprogress 100", None, None),
            (signal.SIGTERM, "no-stop", "write part\nprogress 20\nhold", None, "part"),
            (signal.SIGHUP, "no-stop", "progress 20\nhold", "older", "older"),
        ]:
            if WINE and number != signal.SIGINT:
                continue
            with self.subTest(number=number, script=script):
                if older:
                    self.write("out.mp4", older)
                source = self.write("a.mkv", script)
                arguments = ("--overwrite", "--delete-sources", source, self.destination)
                engine = ("--no-window", "--engine-folder", FAKES / variant)
                run = self.stop("20 %", *engine, *arguments, number=number)
                self.assertIn("Stopped: nothing was converted", run.errors)
                self.assertEqual(source.read_text(), script)
                exists = self.destination.exists()
                self.assertEqual(self.destination.read_text() if exists else None, left)
                self.assertEqual("may be unfinished" in run.errors, left == "part")
                self.destination.unlink(missing_ok=True)
                self.assertEqual(self.logged("The conversion ends with status 130"), 1)

    def test_a_failure_names_the_log_of_its_own_run(self):
        first, second = self.write("a.mkv", "progress 20\nhold"), self.write("b.mkv", "error 7")
        engine = ("--engine-folder", FAKES / "whole")
        run = self.start("--no-window", *engine, first, self.destination)
        run.await_text("20 %")
        failed = self.on_fake("whole", second, self.folder / "b.mp4")
        self.assertIn("run2_current_log.txt", failed.errors)

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


class OneSource(Launched):
    def test_becomes_an_mp4_beside_it_and_never_replaces_one(self):
        for name, made in (("a.mkv", "a.mp4"), ("b.mp4", "b (converted).mp4"), ("1.2", "1.2.mp4")):
            source = self.write(name, DONE)
            for options, status in (((), READY), ((), REFUSED), (("--overwrite",), READY)):
                run = self.on_fake("whole", *options, source)
                self.assertEqual((run.status, made in run.errors), (status, True), run)
            self.assertEqual(source.read_text(), DONE)
            self.assertEqual((self.folder / made).read_text(), "done")

    def test_the_engine_hears_what_was_chosen(self):
        chosen = "--fast-start", "--quality", "small"
        source = self.write("a.mkv", "settings\nprogress 100")
        self.assertEqual(self.on_fake("whole", *chosen, source, self.destination).status, READY)
        self.assertEqual(self.destination.read_text(), "fast-start=on quality=small ")
        for option in (chosen[:1], chosen[1:]):
            for mode in (["--no-window"], []):
                engine = "--engine-folder", FAKES / "no-stop", "--overwrite"
                run = self.run_program(*mode, *engine, *option, source, self.destination)
                self.assertEqual(run.status, REFUSED, run)
                self.assertIn(f"This media engine knows no {option[0]}", run.errors)


class Each(Launched):
    """Many recordings in one run."""

    def each(self, *arguments, variant="whole"):
        run = self.run_program("--engine-folder", FAKES / variant, "--each", *arguments)
        self.events = [json.loads(line) for line in run.output.splitlines()]
        ends = [event for event in self.events if event["event"] == "end"]
        self.ends = [(name_of(each["sources"][0]), each["result"]) for each in ends]
        return run

    def test_every_recording_of_a_folder_becomes_a_file_whatever_becomes_of_the_others(self):
        folder, to = self.folder / "d", self.folder / "to"
        folder.mkdir()
        to.mkdir()
        odd = 'o"\\.mkv' if WINE else os.fsdecode(b'o\xff"\\\n.mkv')
        lost = "lose 2 s\nwrite done\nprogress 50\nprogress 100"
        for name, content in (
            ("A.mkv", DONE),
            ("a.webm", DONE),
            ("b.mkv", "error 5"),
            ("c.mkv", lost),
            ("content", "OggS\n" + DONE),
            ("done.mp4", DONE),
            ("notes.txt", DONE),
            (".part.mkv", DONE),
            *([] if WINE else [(odd, DONE)]),
        ):
            (folder / name).write_text(content)
        last = self.write("last.mp4", DONE)
        flags = "--json", "--delete-sources"
        run = self.each(*flags, folder, "gone.mkv", folder / "A.mkv", last, "--to", to)
        expected = [
            ("A.mkv", "complete"),
            ("a.webm", "complete"),
            ("b.mkv", "failed"),
            ("c.mkv", "incomplete"),
            ("content", "complete"),
            *([] if WINE else [(odd, "refused")]),
            ("gone.mkv", "refused"),
            ("last.mp4", "complete"),
        ]
        self.assertEqual((run.status, self.ends), (FAILED, expected), run)
        made = ["A.mp4", "a (2).mp4", "c.mp4", "content.mp4", "last (converted).mp4"]
        self.assertEqual(sorted(each.name for each in to.iterdir()), sorted(made))
        kept = {".part.mkv", "b.mkv", "c.mkv", "done.mp4", "notes.txt"} | (set() if WINE else {odd})
        self.assertEqual({each.name for each in folder.iterdir()}, kept)
        self.assertFalse(last.exists())
        lines = run.errors.splitlines()
        count = len(expected)
        for number, (line, (name, result)) in enumerate(zip(lines, expected), 1):
            self.assertTrue(line.startswith(f'{number}/{count} "'), line)
        self.assertIn('b.mkv" failed: The engine failed with its error 5: as the script', lines[2])
        self.assertTrue(lines[3].endswith('c.mp4": 2 s'), lines[3])
        refused = count - 6
        words = (
            f"{count} recordings: 4 ready, 1 not complete, {refused} refused, 1 failed, 1 left out"
        )
        self.assertTrue(lines[count].startswith(words), lines[count])
        self.assertEqual(len(lines), count + 2, run)

        begun = [event for event in self.events if event["event"] == "start"]
        self.assertEqual([each["number"] for each in begun][-1], count)
        self.assertIn({"event": "losses", "text": "2 s"}, self.events)
        self.assertIn({"event": "progress", "percent": 100}, self.events)
        failure = next(each for each in self.events if each.get("result") == "failed")
        self.assertEqual((failure["error"], failure["reason"]), (5, "as the script says"))
        summary = self.events[-1]
        self.assertEqual((summary["event"], summary["status"]), ("summary", FAILED))
        self.assertEqual([name_of(each) for each in summary["leftOut"]], ["done.mp4"])
        self.assertRegex(run.output, r"\A[ -~\n]*\Z")

    def test_the_worst_status_is_that_of_the_run(self):
        other = self.write("z.mp4", DONE)
        ready, lost = self.write("1.mkv", DONE), self.write("2.mkv", "lose x\n" + DONE)
        for status, sources in (
            (READY, [ready]),
            (INCOMPLETE, [lost, ready]),
            # Neither another recording of the run nor what it has made is replaced.
            (REFUSED, [ready, self.write("z.mkv", DONE), other]),
            (FAILED, ["gone.mkv", self.write("3.mkv", "error 5"), lost]),
        ):
            for variant in ("whole", "no-stop"):
                if variant == "no-stop" and status == INCOMPLETE:
                    continue  # it cannot tell
                run = self.each("--overwrite", *sources, variant=variant)
                self.assertEqual(run.status, status, run)
                self.assertEqual(run.errors.count("\n"), len(sources) + 1 + (status == FAILED))
        self.assertEqual(other.read_text(), DONE)
        empty = self.folder / "empty"
        empty.mkdir()
        run = self.each(empty)
        self.assertEqual((run.status, run.errors), (READY, "Nothing to convert.\n"))
        self.assertEqual(self.each(ready, "--to", self.folder / "absent").status, REFUSED)

    def test_an_interruption_names_what_was_not_begun(self):
        sources = [self.write("1.mkv", DONE), self.write("2.mkv", "progress 20\nhold")]
        sources += [self.write("3.mkv", DONE), self.write("4.mkv", DONE)]
        for variant in ("whole", "no-stop"):
            engine = "--engine-folder", FAKES / variant
            run = self.stop('"percent":20}', *engine, "--overwrite", "--each", "--json", *sources)
            for told in ('2.mkv" stopped', 'not begun: "', "1 ready, 1 stopped, 2 not begun."):
                self.assertIn(told, run.errors)
            summary = json.loads(run.output.splitlines()[-1])
            self.assertEqual([name_of(each) for each in summary["notBegun"]], ["3.mkv", "4.mkv"])
            self.assertEqual([(self.folder / f"{i}.mp4").exists() for i in (1, 2, 3)], [1, 0, 0])


class Refusals(Launched):
    def refused(self, told, *arguments, **options):
        run = self.run_program(*arguments, **options)
        self.assertEqual((run.status, run.output, run.errors.count("\n")), (REFUSED, "", 1), run)
        self.assertTrue(run.errors.startswith("record-converter: "))
        self.assertIn(told, run.errors)

    def test_one_sentence_names_what_stands_in_the_way_and_nothing_is_touched(self):
        source, destination = self.write("a.mkv", DONE), self.destination
        last = self.write("b.mp4", "recording")
        empty = self.folder / "empty"
        empty.mkdir()
        shutil.copy(FAKES / "whole" / library_file("mediaconverter"), self.folder)
        no = "--no-window"
        cases = [
            ("See record-converter --help.", no),
            ('"--quick" is unknown', no, "--quick", source, destination),
            ("There is no recording", no, "|" * 32000, destination),
            ("There is no recording", "gone.mkv", destination),
            ("a\\n\\x1b[31m\\u202e.mkv", no, "a\n\x1b[31m\u202e.mkv", destination),
            ("is one of the recordings", no, source, source),
            # The destination is forgotten: the last recording is none.
            ("replace it with --overwrite", no, "--delete-sources", source, last),
            ("replace it with --overwrite", source, last),
            (
                "CreateMediaConverter",
                no,
                "--engine-folder",
                FAKES / "no-factory",
                source,
                destination,
            ),
            ("There is no window", "--engine-folder", FAKES / "no-instance", source, destination),
            # An engine is taken from its folder, and from no place of the system's search.
            ("There is no ", no, "--engine-folder", empty, source, destination),
            ("empty", no, "--engine-folder", "empty", source, destination),
            ("--engine-folder", no, "--engine-folder", "", source, destination),
            ("is no folder", "--archive-logs", "absent"),
            ("is no folder", "--archive-logs", "a.mkv"),
            ("give no recording with it", "--archive-logs", ".", "a.mkv", "b.mp4"),
            ("with --each", no, empty),
            ("with --each", no, source, source, last),
            ("no exit status and no error", "--explain", "77"),
        ]
        if not WINE:
            cases += [  # not even root can write there
                ("cannot be written", "--archive-logs", "/proc"),
                ("cannot be written", no, source, "/proc/out.mp4"),
                ("is a pipe or a device", no, "/dev/zero", destination),
                ("is a link", no, "--overwrite", source, "link.mp4"),
                ("\\xff\\xc0", no, os.fsdecode(b"\xff\xc0\xed\xa0\x80"), destination),
            ]
            (self.folder / "link.mp4").symlink_to("nowhere.mp4")
        left = self.files_left()
        for told, *arguments in cases:
            with self.subTest(arguments=arguments, told=told):
                beside = {} if WINE else {"LD_LIBRARY_PATH": str(self.folder)}
                self.refused(told, *arguments, **beside)
                self.assert_left(*left)
        run = self.terminal("--engine-folder", ".", source, destination)
        self.assertEqual(run.status, READY, run)

    @unittest.skipIf(SANITIZER, "which looks into /proc itself")
    @linux_only
    def test_without_proc_no_engine_is_taken_from_beside_the_working_folder(self):
        (self.folder / "runtime").symlink_to(FAKES / "whole")
        (self.folder / "bin").mkdir()
        hidden = ["unshare", "-m", "sh", "-c", 'umount -l /proc && cd bin && exec "$@"', "sh"]
        if subprocess.call([*hidden, "true"], cwd=self.folder, stderr=subprocess.DEVNULL):
            self.skipTest("hiding /proc needs more rights")
        arguments = (LAUNCHER, "--no-window", self.write("a.mkv", DONE), self.destination)
        self.refused("Where this program lies", *hidden[1:], *arguments, program=hidden[0])

    @linux_only
    def test_without_a_display_the_terminal_is_named(self):
        source, whole = self.write("a.mkv"), FAKES / "whole"
        for x11, wayland, system in (
            ("", "", ""),
            (":987", "none", ""),
            ("unix:987.0", "/no", "xcb"),
            ("localhost:987", "", ""),
            ("nonsense", "", "wayland"),
        ):
            display = {"DISPLAY": x11, "WAYLAND_DISPLAY": wayland, "QT_QPA_PLATFORM": system}
            for told in ("no display", "--no-window"):
                self.refused(told, "--engine-folder", whole, source, self.destination, **display)
        for system, told in (("vnc", "no plugin for it"), ("offscreen;xcb", None)):
            self.environment["QT_QPA_PLATFORM"] = system
            if told:
                self.refused(told, "--engine-folder", whole, source, self.destination)
            else:
                self.assertEqual(self.window("exit", source, self.destination).status, STOPPED)

    def test_help_and_version_go_to_standard_output_and_leave_no_log(self):
        for option, said in (("--help", "usage: record-converter"), ("--version", "record-conv")):
            run = self.run_program(option)
            self.assertEqual((run.status, run.errors), (READY, ""))
            self.assertTrue(run.output.startswith(said), run)
        self.assertFalse(self.logs.exists())


class WindowMode(Launched):
    """What the launcher hands to the product library, and what it makes of how that ends."""

    # variant, order to the product, what the engine tells, --delete-sources, status, said
    TOLD = [
        # An engine that tells nothing: its session deletes the second names at the end.
        ("no-stop", "write delete", {}, False, READY, "is ready"),
        ("no-stop", "write delete", {}, True, READY, "is ready"),
        ("no-stop", "delete", {}, True, FAILED, "wrote no destination"),
        ("no-stop", "write", {}, True, FAILED, "stopped, or the engine failed"),
        ("whole", "write delete", {"FAKE_ENDING": "0"}, True, READY, "is ready"),
        (
            "whole",
            "write delete",
            {"FAKE_ENDING": "0", "FAKE_LOSSES": "2 s"},
            True,
            INCOMPLETE,
            "2 s; the recording is kept",
        ),
        ("whole", "exit", {"FAKE_ENDING": "20005 none"}, True, FAILED, "error 20005: none"),
        # Another run's destination, which came while this one was stopped.
        ("whole", "write delete", {}, True, STOPPED, "Stopped: nothing was converted"),
        ("whole", "return 0", {}, True, STOPPED, "Stopped: nothing was converted"),
        ("whole", "return -1", {}, True, FAILED, "could not be shown"),
    ]

    def test_the_status_and_the_source_follow_the_conversion_and_not_the_window(self):
        for variant, order, told, delete, status, said in self.TOLD:
            with self.subTest(variant=variant, order=order, told=told, delete=delete):
                self.destination.unlink(missing_ok=True)
                source = self.write("a b.mkv", "x")
                flags = ["--delete-sources"] * delete
                run = self.window(order, *flags, source, self.destination, variant=variant, **told)
                self.assertEqual(run.status, status, run)
                self.assertIn(said, run.errors)
                kept = ["a b.mkv"] * (not delete or status != READY)
                self.assert_left(*kept, *["out.mp4"] * ("write" in order))
                self.assertEqual(list(self.folder.glob(".*")), [])

    def test_the_client_s_arguments_are_handed_over_and_a_link_as_the_source(self):
        source = self.write("a b.mkv", "x")
        run = self.window("write delete", "--theme", "dark", source, self.destination)
        rest = f"4:{native(self.destination)}\n5:2\nended\nsource there\n"
        begin = f"1:{native(FAKES / 'whole')}\n2:\n3:{native(self.folder)}"
        self.assertRegex(run.output, f"(?s){re.escape(begin)}.*a b.mkv\n{re.escape(rest)}")
        self.assertEqual(source.read_text(), "x")

    def desktop(self):
        """What gives this user's desktop an answer, the code of a fake portal's method or a value
        of the registry."""
        if WINE:
            key = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Themes\Personalize"
            add = [*WINE, "reg", "add", key, "/f", "/v", "AppsUseLightTheme", "/t", "REG_DWORD"]
            return lambda code: subprocess.check_call([*add, "/d", code])
        bus = self.start("--session", "--print-address", program="dbus-daemon")
        bus.await_text("\n")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.output.strip()
        place = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
        portal = ("-m", "dbusmock", *place, "org.freedesktop.portal.Settings")
        self.start(*portal, program="/usr/bin/python3")
        add = (
            "--print-reply",
            f"--dest={place[0]}",
            place[1],
            "org.freedesktop.DBus.Mock.AddMethod",
        )
        add += ("string:", "string:Read", "string:ss", "string:v")

        def is_told(code):
            return self.run_program(*add, "string:" + code, program="dbus-send").status == 0

        return lambda code: bus.await_that(lambda: is_told(code), "had a portal")

    def test_without_a_theme_the_desktop_s_is_taken(self):
        answer = self.desktop()
        scheme = "ret = dbus.UInt32(%d if args[1] == 'color-scheme' else 9, variant_level=2)"
        cases = [("0", "2"), ("1", "1")]
        if not WINE:
            cases = [(scheme % 1, "2"), (scheme % 2, "1"), ("ret = 'dark'", "1")]
        for code, theme in cases:
            answer(code)
            for flags, handed in ((), theme), (("--theme=light",), "1"), (("--theme=dark",), "2"):
                run = self.window("exit", *flags, self.write("a.mkv"), self.destination)
                self.assertIn(f"5:{handed}\n", run.output, code)

    @linux_only
    def test_a_second_name_lies_where_other_users_cannot_replace_it(self):
        for mode in (0o755, 0o777):
            elsewhere = self.folder / oct(mode)
            elsewhere.mkdir()
            elsewhere.chmod(mode)
            odd = elsewhere / "a|b:c.mkv"
            odd.write_text("x")
            run = self.start(
                "--engine-folder", FAKES / "whole", odd, self.destination, FAKE_PRODUCT="hold"
            )
            run.await_text("source there")
            lent = Path(re.search("(?m)^3:(.*)$", run.output)[1])
            self.assertTrue(lent.samefile(odd) and lent.is_relative_to(self.folder), lent)
            self.assertEqual(lent.is_relative_to(elsewhere), mode == 0o755)
            self.assertEqual(lent.name, "a_b_c.mkv")
            self.assertEqual(lent.parents[1].stat().st_mode & 0o777, 0o700)
            run.signal(signal.SIGINT)
            self.assertEqual(run.wait(), STOPPED)
            self.assertFalse(lent.parents[1].exists())

    def test_no_second_name_is_left_however_it_ends(self):
        sources = self.write("a.mkv", "x"), self.write("b.mkv", "y")
        self.assertEqual(self.window("exit", *sources, self.destination).status, STOPPED)
        self.assertEqual(list(self.folder.glob(".*")), [])
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)[: 1 if WINE else 3]:
            arguments = ("--engine-folder", FAKES / "whole", *sources, self.destination)
            self.stop("\nsource ", *arguments, number=number, FAKE_PRODUCT="hold")
            self.assertEqual(list(self.folder.glob(".*")), [])
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
        written = time.strptime(archive.name, "logArchive_%Y-%m-%d_%H-%M-%S.zip")  # in UTC
        self.assertLess(abs(calendar.timegm(written) - archive.stat().st_mtime), 60)
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
