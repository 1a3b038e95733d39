#!/usr/bin/env python3
"""Puts single faults into a copy of the tree, one after the other, and runs the tests on each.

Usage: scripts/mutants.py [--check] [--likely] [--tests REGEX] [--from N] [NAME-PART...]
  --check    only look whether every fault can still be put in
  --likely   only the tests that are likely to see a fault: a survivor may fall to the others
  --tests    only these of CTest's cases, for each of the faults
  --from     begin with the fault of this number, to go on with a run that was cut off

The faults stand in scripts/mutants.toml: a name, a file, a text that stands there once and what
stands in its place. The tests that are likely to see it run first, and all the others only when
these pass. A fault that no test turns red for has survived. The copy is a worktree of HEAD in
build/mutants: the tree itself is never touched. A run takes half an hour on a quiet machine.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import time
import tomllib

ROOT = pathlib.Path(__file__).resolve().parents[1]
COPY = ROOT / "build/mutants"
WANTED = 0.95  # of the faults have to be found


def run(*command: str, quiet: bool = True) -> int:
    output = subprocess.DEVNULL if quiet else None
    environment = {**os.environ, "CCACHE_BASEDIR": str(COPY), "CCACHE_NOHASHDIR": "true"}
    return subprocess.call(command, cwd=COPY, env=environment, stdout=output, stderr=output)


def build(*targets: str) -> int:
    return run("cmake", "--build", "--preset", "dev", "--target", *targets)


def spoil(mutant: dict[str, str], root: pathlib.Path) -> str | None:
    """The file's text with the fault in it; nothing when it no longer fits."""
    path = root / mutant["file"]
    text = path.read_text() if path.exists() else ""
    if text.count(mutant["old"]) != 1:
        return None
    return text.replace(mutant["old"], mutant["new"])


def prepare() -> None:
    if COPY.exists():
        subprocess.check_call(
            ["git", "checkout", "--quiet", "--force", "--detach", head()], cwd=COPY
        )
    else:
        subprocess.check_call(["git", "worktree", "add", "--detach", COPY, head()], cwd=ROOT)
    if run("cmake", "--preset", "dev") or run("cmake", "--build", "--preset", "dev", quiet=False):
        sys.exit("mutants.py: the tree as it is does not build")


def head() -> str:
    return subprocess.check_output(["git", "rev-parse", "HEAD"], cwd=ROOT, text=True).strip()


def failed_test(*chosen: str) -> str:
    """The name of the first of CTest's cases that fails, or nothing."""
    command = ["ctest", "--preset", "dev", "--parallel", "2", "--stop-on-failure", *chosen]
    said = subprocess.run(command, cwd=COPY, capture_output=True, text=True)
    names = re.findall(r"^\s+\d+ - (\S+) \(", said.stdout, re.M)
    if said.returncode and not names:
        sys.exit("mutants.py: CTest could not run:\n" + said.stdout + said.stderr)
    return names[0] if names else ""


def outcome(mutant: dict[str, str], options: argparse.Namespace) -> tuple[str, str]:
    """What became of the fault, and the test that saw it."""
    text = spoil(mutant, COPY)
    if text is None:
        return "does not fit", ""
    path = COPY / mutant["file"]
    before = path.read_text()
    path.write_text(text)
    try:
        slow = [] if mutant.get("slow") else ["--label-exclude", "slow"]
        likely, seen = options.tests or mutant.get("tests"), ""
        if likely:
            if build(*mutant.get("build", "all").split()):
                return "does not build", ""
            seen = failed_test(*slow, "--tests-regex", likely)
        if not seen and not options.tests and not (likely and options.likely):
            if build("all"):
                return "does not build", ""
            seen = failed_test(*slow)
        return "killed" if seen else "SURVIVED", seen
    finally:
        path.write_text(before)


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--likely", action="store_true")
    parser.add_argument("--tests")
    parser.add_argument("--from", dest="first", type=int, default=1)
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()
    mutants = tomllib.loads((ROOT / "scripts/mutants.toml").read_text())["mutant"]
    chosen = [
        (number, each)
        for number, each in enumerate(mutants, 1)
        if number >= options.first
        and (not options.names or any(part in each["name"] for part in options.names))
    ]
    if options.check:
        stale = [f"{number} {each['name']}" for number, each in chosen if not spoil(each, ROOT)]
        print("\n".join(stale) or f"all {len(chosen)} fit")
        sys.exit(1 if stale else 0)
    prepare()
    results: dict[str, int] = {}
    for number, mutant in chosen:
        begun = time.monotonic()
        result, seen = outcome(mutant, options)
        results[result] = results.get(result, 0) + 1
        seconds = time.monotonic() - begun
        print(f"{number:3} {result:14} {mutant['name']} ({seconds:.0f} s) {seen}", flush=True)
    print(", ".join(f"{count} {result}" for result, count in results.items()))
    sys.exit(0 if results.get("killed", 0) >= WANTED * len(chosen) else 1)


if __name__ == "__main__":
    main()
