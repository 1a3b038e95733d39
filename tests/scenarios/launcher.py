#!/usr/bin/env python3
"""The launcher on a scripted engine and a scripted product library."""
import signal
import time

from program import FAKES, Case, main

DONE = "progress 0\nprogress 55.5\nwrite done\nprogress 100\nprogress 100"


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
        self.assertEqual(run.wait(), 128 + number, run)
        self.assertLess(time.monotonic() - begin, 10)
        return run

    def show(self, order, *arguments, variant="whole", **options):
        """The window's mode, with a product library that follows an order."""
        options = {"FAKE_PRODUCT": order, **options}
        return self.run_program("--engine-folder", FAKES / variant, *arguments, **options)


class Endings(Launched):
    # engine, script, older destination, status, said, are the sources deleted when they are to be
    ENDINGS = [
        ("whole", DONE, None, 0, "100 %\n", True),
        (
            "whole",
            "result 0x0FFF\nwrite done\nprogress 1e9\nerror 1\nprogress 3",
            None,
            0,
            "out.mp4",
            True,
        ),
        ("no-stop", "write done\nprogress 100\nhold", None, 0, "out.mp4", True),
        ("whole", "progress 60\nprogress nan\nerror -3", "older", 1, "its error -3.", False),
        ("whole", "write done\nerror 5\nprogress 100\nerror 6", None, 1, "its error 5.", False),
        ("whole", "write \nprogress 100", None, 1, "wrote no destination", False),
        ("whole", "progress 100", "older", 1, "wrote no destination", False),
        ("whole", "result -100", None, 1, "did not start", False),
        ("failing-factory", "write done\nprogress 100", None, 1, "did not start", False),
        ("no-stop", "error 9\nhold", None, 1, "its error 9.", False),
    ]

    def test_end_as_the_first_report_says_and_only_a_whole_one_deletes_sources(self):
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
                    if status == 1:
                        self.assertIn("The conversion failed", run.errors)
                        self.assertIn("current_log.txt", run.errors)
                    elif variant == "whole":
                        self.assertEqual(self.destination.read_text(), "done")
                        self.assertEqual(self.logged("FreeLibrary successfully"), 2)


if __name__ == "__main__":
    main()
