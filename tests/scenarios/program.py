"""What every scenario uses: a program that is started, and a test case with folders of its own.

CTest passes the surroundings in the environment. By hand:
RC_BUILD=build/dev tests/scenarios/launcher.py [CLASS[.CASE]...]
"""
import os
import pwd
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path, PurePosixPath, PureWindowsPath

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("RC_BUILD", ROOT / "build/dev")).resolve()
WINE_PREFIX = os.environ.get("RC_WINE_PREFIX", "")  # not empty: the programs are for Windows
SANITIZER = os.environ.get("RC_SANITIZER", "")
WINE = [str(ROOT / "scripts/wine.sh"), WINE_PREFIX] if WINE_PREFIX else []

LAUNCHER = BUILD / ("bin/record-converter" + (".exe" if WINE else ""))
RUNTIME = BUILD / "runtime"
FAKES = BUILD / "tests/fake-engines"
RECORDINGS = BUILD / "tests/recordings"
REPLACE = ["--overwrite"]  # what lets a run replace an older destination
PATIENCE = 120  # seconds; a machine under load is no fault
KILLED = 128 + signal.SIGKILL

linux_only = unittest.skipIf(WINE, "not on Windows")


def library_file(name):
    return name + ".dll" if WINE else f"lib{name}.so"


def native(path):
    """A path as the program under test writes it."""
    return "Z:" + str(path).replace("/", "\\") if WINE else str(path)


def name_of(path):
    """The file's name in a path that the program under test has written."""
    return (PureWindowsPath if WINE else PurePosixPath)(path).name


def seeded():
    """Random numbers whose seed a failing test prints; RC_SEED gives it back."""
    seed = int(os.environ.get("RC_SEED", 0)) or random.randrange(1, 1 << 32)
    print(f"RC_SEED={seed}", file=sys.stderr)
    return random.Random(seed)


class Program:
    """A program in a process group of its own, its output in files, so that it never waits."""

    def __init__(self, command, folder, environment, stdin=subprocess.DEVNULL, **streams):
        self.shown = shlex.join(map(str, command))
        self.files = {name: tempfile.TemporaryFile() for name in ("stdout", "stderr")}
        # The child makes the group and Popen returns only when the program itself has begun, so
        # the group is there by then, whenever the first signal is sent.
        self.process = subprocess.Popen(
            WINE + [os.fsencode(each) for each in command],
            cwd=folder,
            env={name: value for name, value in environment.items() if value != ""},
            stdin=stdin,
            process_group=0,
            **{**self.files, **streams},
        )

    def text(self, name):
        file = self.files[name].fileno()
        return os.pread(file, 1 << 26, 0).decode(errors="replace").replace("\r\n", "\n")

    output = property(lambda self: self.text("stdout"))
    errors = property(lambda self: self.text("stderr"))

    def __str__(self):
        return f"{self.shown}\n--- output\n{self.output}\n--- errors\n{self.errors}"

    def is_running(self):
        return self.process.poll() is None

    def wait(self, patience=PATIENCE):
        """The exit status, 128 + N for an end by signal N."""
        try:
            status = self.process.wait(patience)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"runs after {patience} s: {self}") from None
        self.status = status if status >= 0 else 128 - status
        return self.status

    def await_that(self, condition, what, patience=PATIENCE):
        """Waits while the program runs."""
        limit = time.monotonic() + patience
        while not condition():
            if not self.is_running() or time.monotonic() > limit:
                raise AssertionError(f"never {what}: {self}")
            time.sleep(0.01)

    def await_text(self, text, count=1):
        """Waits until one of the outputs holds a text."""
        found = lambda: (self.output + self.errors).count(text) >= count  # noqa: E731
        self.await_that(found, f"said {text!r}")

    def signal(self, number):
        """To the whole group. A program that has ended by itself is not missed."""
        if self.is_running():
            os.killpg(self.process.pid, number)


class Case(unittest.TestCase):
    """A working folder and a data folder of its own, and the launcher started in them."""

    maxDiff = None

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="rc-")))
        self.destination = self.folder / "out.mp4"
        if WINE:
            # A known folder is the same for all programs of a prefix; CTest runs one at a time.
            user = pwd.getpwuid(os.getuid()).pw_name
            self.data = Path(WINE_PREFIX, "drive_c/users", user, "AppData/Local")
            shutil.rmtree(self.data / "QuorellTarn", ignore_errors=True)
        else:
            self.data = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="rc-data-")))
        self.logs = self.data / "QuorellTarn/Logs/record-converter"
        self.environment = {"XDG_DATA_HOME": str(self.data)}

    def write(self, name, content=""):
        """A file in the working folder."""
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    # Programs

    def start(self, *arguments, program=LAUNCHER, streams=None, **environment):
        """A Path among the arguments is written as the system does it, an empty variable is not
        set."""
        arguments = [native(each) if isinstance(each, Path) else each for each in arguments]
        variables = {**os.environ, **self.environment, **environment}
        run = Program([program, *arguments], self.folder, variables, **(streams or {}))
        self.addCleanup(self.end, run)
        return run

    def end(self, run):
        run.signal(signal.SIGKILL)
        run.wait()
        # The status of one that found something may be the one of a failed conversion.
        self.assertNotIn("Sanitizer", run.errors, run.shown)
        for file in run.files.values():
            file.close()

    def run_program(self, *arguments, **options):
        run = self.start(*arguments, **options)
        run.wait()
        return run

    def terminal(self, *arguments, **options):
        """The launcher with --no-window, to its end."""
        return self.run_program("--no-window", *arguments, **options)

    def on_fake(self, variant, *arguments, **options):
        """The same on a variant of the fake engine, whose script is the first source's content."""
        return self.terminal("--engine-folder", FAKES / variant, *arguments, **options)

    def convert(self, *arguments, status=0, **options):
        """The same on the real engine."""
        run = self.terminal(*arguments, self.destination, **options)
        self.assertEqual(run.status, status, run)
        return run

    # What they leave

    def files_left(self):
        found = (each for each in self.folder.rglob("*") if not each.is_dir())
        return sorted(str(each.relative_to(self.folder)) for each in found)

    def assert_left(self, *names):
        self.assertEqual(self.files_left(), sorted(names))

    def log(self, name="current_log.txt"):
        return (self.logs / name).read_bytes().decode().replace("\r\n", "\n")

    def log_lines(self):
        return self.log().split("\n")[:-1]

    def logged(self, text):
        """How many lines of the log hold a text."""
        return sum(text in line for line in self.log_lines())

    def assert_logged_in_order(self, *texts):
        self.assertRegex(self.log(), "(?s)" + ".*".join(map(re.escape, texts)))


def main():
    """Runs the cases of the script that calls it; --list names those that CTest is to know."""
    if sys.argv[1:] != ["--list"]:
        unittest.main()
    for suite in unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"]):
        for case in suite:
            method = getattr(case, case._testMethodName)
            if not (method.__dict__ | type(case).__dict__).get("__unittest_skip__"):
                print(f"{type(case).__name__}.{case._testMethodName}")
