#!/usr/bin/env python3
"""Whole runs of the product library on the scripted engine, with toast_driver as the user."""
import os
import shutil
import signal
import time

from program import BUILD, FAKES, RUNTIME, Case, library_file, main, seeded

READY = "Your recording is ready."
BROKEN = "Your recording conversion has failed."
SHOWN = "window 1 1 1\n"  # exposed, opaque, on the screen


class Window(Case):
    def setUp(self):
        super().setUp()
        self.runtime = self.folder / "runtime"
        self.runtime.mkdir()
        self.link(RUNTIME.iterdir())
        self.use("whole")
        self.environment.update(
            LANG="en_US.UTF-8", LC_ALL="", LANGUAGE="", QT_QPA_PLATFORM="offscreen"
        )

    def link(self, files):
        for each in files:
            (self.runtime / each.name).unlink(missing_ok=True)
            (self.runtime / each.name).symlink_to(each)

    def use(self, variant):
        """Another engine in the real one's place."""
        self.link((FAKES / variant).glob("*mediaconverter*"))
        self.link((FAKES / variant).glob("*zelclient*"))

    def begin(self, script, actions, name="source"):
        arguments = (self.runtime, "", self.write(name, script), self.destination, "2")
        library = RUNTIME / library_file("record-converter")
        return self.start(library, actions, *arguments, program=BUILD / "tests/toast_driver")

    def show(self, script, actions, status=0):
        run = self.begin(script, actions)
        self.assertEqual(run.wait(), status, run)
        return run.output

    def assert_views(self, output, start, finish, error, text):
        views = f"{SHOWN}viewStart {start}.*viewFinish {finish}.*viewError {error}"
        self.assertRegex(output, f"(?s){views}")
        self.assertIn(text, output)

    def test_a_finished_conversion_is_shown_and_closed_with_every_line_in_the_log(self):
        script = "progress 12.5\nwrite film\nprogress 100\n"
        output = self.show(script, "await=viewFinish print escape")
        self.assert_views(output, 0, 1, 0, "viewFinish 1 " + READY)
        self.assertEqual(self.destination.read_text(), "film")
        self.assertFalse((self.folder / "source").exists())
        self.assert_logged_in_order(
            "::argc:6\n",
            f"::configure:{self.runtime}\n",
            f"::configure:{self.destination}\n",
            "::configure:2\n",
            "::QTDIR:, qtPluginPath:, qtPlatformPluginPath:, currentPath:",
            ":152 parseTheme::theme is dark:1\n",
            f":105 onConvertStarted::converting starting:{self.destination}\n",
        )
        self.assert_logged_in_order(
            ":111 onConvertProgress::progress: 12.5%\n",
            ":111 onConvertProgress::progress: 100%\n",
            ":114 onConvertProgress::recording convert completed\n",
            ":81 startExitTimer::start exit timer\n",
            ":191 close::Close convert recording\n",
        )
        self.assertTrue(self.log().endswith(":191 close::Close convert recording\n"))
        self.assertNotRegex(self.log(), "<Warn>|<Error>")
        # Every second line is flushed for itself: with one more the last one is another one.
        self.show("progress 1\n" + script, "await=viewFinish escape")
        self.assertTrue(self.log().endswith(":191 close::Close convert recording\n"))

    def test_a_failure_is_shown_and_keeps_the_source(self):
        started = f":123 failConversion::recording convert error:{self.destination}, error code:7\n"
        for script, engine, logged in (
            ("progress 1\nerror 7\n", "whole", started),
            ("result 0x1000\n", "whole", "Failed to start media convert"),
            ("progress 100\n", None, library_file("mediaconverter")),
        ):
            with self.subTest(script=script, engine=engine):
                if engine is None:
                    (self.runtime / library_file("mediaconverter")).unlink()
                output = self.show(script, "await=viewError print escape")
                self.assert_views(output, 0, 0, 1, "viewError 1 " + BROKEN)
                self.assertTrue((self.folder / "source").exists())
                ends = [logged, "start exit timer", ":191 close::Close convert recording\n"]
                self.assert_logged_in_order(*(ends if engine else ends[:1]))

    def test_a_quit_before_the_engine_is_loaded_ends_the_run(self):
        self.assertIn("returned 0", self.show("progress 1\nhold\nprogress 100\n", "quit"))

    def test_a_closed_converting_view_converts_on_and_all_is_torn_down(self):
        script = "progress 1\nhold\nwrite film\nprogress 100\n"
        output = self.show(script, "await=viewStart print escape print quit")
        self.assertRegex(output, f"{SHOWN}viewStart 1")
        self.assert_views(output, 0, 0, 0, "returned 0")
        self.assertEqual(self.destination.read_text(), "film")
        # The engine first, with the controller; the trace bridge last, from the entry point.
        self.assert_logged_in_order("::FreeLibrary successfully", "::FreeLibrary successfully")
        self.assertNotRegex(self.log(), "<Warn>|<Error>")

    def test_a_window_that_cannot_be_loaded_returns_minus_one(self):
        (self.runtime / "qml").unlink()
        self.assertIn("returned -1", self.show("progress 1\n", "", 255))
        broken = r"<Warn> [^\n]*::qrc:/MediaConverterNotification.qml: 5, [^\n]*is not installed"
        self.assertRegex(self.log(), broken)
        self.assertNotIn("converting starting", self.log())
        self.assertTrue((self.folder / "source").exists())

    def test_plugins_and_modules_of_another_qt_are_not_loaded(self):
        # Copies that would work, wherever Qt might be led to look for them.
        other = self.folder / "other"
        for kind in ("platforms", "imageformats"):
            for place in ("", "plugins"):
                shutil.copytree(RUNTIME / kind, other / place / kind)
        shutil.copytree(RUNTIME / "qml", other, dirs_exist_ok=True)
        names = "QTDIR QT_PLUGIN_PATH QML_IMPORT_PATH QML2_IMPORT_PATH QT_QPA_PLATFORM_PLUGIN_PATH"
        for name in [*names.split(), "QT_QUICK_CONTROLS_STYLE"]:
            self.environment[name] = str(other)
        output = self.show("progress 100\n", "await=viewFinish modules escape")
        for name in ("qoffscreen", "qsvg", "qtquickcontrols2basicstyleplugin"):
            self.assertIn(name, output)
        self.assertNotIn(str(other), output)
        self.assertIn("::QTDIR:, qtPluginPath:, qtPlatformPluginPath:, currentPath:", self.log())

    def launch(self, script, actions, *flags, engine=None):
        """The launcher's own run, with a library in its window as the user."""
        self.environment.update(
            LD_PRELOAD=str(BUILD / "tests/libtoast_user.so"),
            ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0",
            TOAST_USER=actions,
        )
        files = ("--overwrite", self.write("source.mkv", script), self.destination)
        return self.start("--engine-folder", engine or self.runtime, *flags, *files)

    def test_the_launcher_lends_the_texts_and_the_window_speaks_the_system_s_language(self):
        lent = self.data / "QuorellTarnLauncher/dynamic_dependencies/translations"
        for language, text in (
            ("de_AT", "Ihre Aufzeichnung ist fertig."),
            ("pt_BR", "Sua gravação está pronta."),
            ("pt_AO", "A sua gravação está pronta."),
            ("zh_HK", "您的錄製檔已就緒。"),
            ("eo", READY),
        ):
            self.environment["LANG"] = language + ".UTF-8"
            run = self.launch("write film\nprogress 100\n", "await=viewFinish print escape")
            self.assertEqual(run.wait(), 0, run)
            self.assertIn("viewFinish 1 " + text, run.output, language)
            self.assertFalse(lent.parents[1].exists())
        # What the client has fetched for itself is its own.
        lent.mkdir(parents=True)
        (lent / "tarn-windows-client.de.qm").write_text("client's")
        run = self.launch("write part\nhold\n", "")
        run.await_that(lambda: self.destination.read_text() == "part", "started the engine")
        self.assertEqual({*os.listdir(lent)}, {*os.listdir(RUNTIME / "translations")})
        run.signal(signal.SIGINT)
        self.assertEqual(run.wait(), 130)
        self.assertEqual([each.read_text() for each in lent.iterdir()], ["client's"])

    def sentences(self, run):
        return [line for line in run.errors.splitlines() if line[-1:] != "%" and line[:3] != "QSt"]

    def test_the_launcher_ends_with_the_conversion_s_status(self):
        self.environment.update(QT_STYLE_OVERRIDE="no such style", QT_QUICK_BACKEND="no such one")
        finished, failed = "await=viewFinish escape", "await=viewError escape"
        for script, actions, status, said, engine in (
            ("write film\nprogress 100\n", finished, 0, "is ready", self.runtime),
            ("lose 2 s\nwrite film\nprogress 100\n", finished, 3, ": 2 s; the", self.runtime),
            ("error 7\n", failed, 1, "error 7: as the script says", self.runtime),
            ("junk", failed, 1, f'"{self.folder}/source.mkv" is no recording', RUNTIME),
            ("hold\n", "await=viewStart close", 130, "Stopped: nothing was", self.runtime),
            ("hold\n", "await=viewStart quit", 130, "Stopped: nothing was", self.runtime),
        ):
            with self.subTest(script=script, actions=actions):
                run = self.launch(script, actions, "--delete-sources", engine=engine)
                self.assertEqual(run.wait(), status, run)
                self.assertIn(said, run.errors)
                self.assertEqual((self.folder / "source.mkv").exists(), status != 0)
                if status != 130:
                    terminal = self.launch(script, "", "--no-window", engine=engine)
                    self.assertEqual(terminal.wait(), status, terminal)
                    self.assertEqual(self.sentences(run), self.sentences(terminal))
                self.assertEqual(list(self.folder.glob(".*")), [])

    def test_closed_at_any_moment_it_ends_with_status_0(self):
        script = "".join(f"progress {percent // 250}\n" for percent in range(20000))
        moments = seeded()
        for number in range(15):
            # One engine is stopped first; the other has no stop and reports into the process's end.
            self.use("no-stop" if number % 4 else "whole")
            # More at once than there are processors: every thread is preempted.
            runs = []
            for index in range(4):
                ends = (index % 2) * "error 3\nprogress 100\n" * 5000
                action = f"after={moments.randrange(300)} {'close' if index < 3 else 'quit'}"
                runs.append(self.begin(script + ends, action, f"source{index}"))
            for run in runs:
                self.assertEqual(run.wait(), 0, run)

    def test_nobody_acts_and_it_ends_after_a_minute(self):
        begin = time.monotonic()
        # Errors and ends without end: the timer's two starts meet again and again.
        failing = "error 1\nprogress 100\n" * 200
        runs = [self.begin("progress 100\n" * 2, "", "finished"), self.begin(failing, "", "failed")]
        for run in runs:
            self.assertEqual(run.wait(), 0, run)
        self.assertTrue(60 <= time.monotonic() - begin <= 90)
        self.assertTrue(self.log().endswith(":94 onExitTimer::exit timer timeout\n"))


if __name__ == "__main__":
    main()
