"""What a run does when the machine misbehaves: system calls that fail, a kill at any instant, a tree that changes.

Every run has to end in one of three ways: with the right value, with ERROR and status 0, or with one failure report
and status 1; and no status may stay "active" in a store that can be written. A sample runs by default;
NERIX_ALL_FAULTS=1 runs everything.
"""

import collections
import contextlib
import os
import random
import re
import shutil
import signal
import subprocess
import threading
import time

from harness import PROGRAM, SANITIZED, SETTINGS, SystemTest, main
from tree_value import Model

ALL = os.environ.get("NERIX_ALL_FAULTS") == "1"
CALLS = ("newfstatat openat read close llistxattr lgetxattr readlink getdents64 statfs write pwrite64 fsync fdatasync "
         "mmap clone3 lseek mkdir ftruncate").split()
ERRORS = ["EIO", "ENOMEM", "EACCES", "EINTR"]
# The first thing that the program does by itself; what comes before is the loader's.
MARKER = "fcntl(0, F_GETFD"


class Faults(SystemTest):
    def setUp(self):
        super().setUp()
        self.tree = os.path.join(self.work, "tree")
        os.makedirs(os.path.join(self.tree, "inner"))
        with open(os.path.join(self.tree, "file"), "wb") as file:
            file.write(b"x" * 5000)
        with open(os.path.join(self.tree, "inner", "file"), "wb") as file:
            file.write(b"y")
        os.symlink("target", os.path.join(self.tree, "link"))
        os.mkfifo(os.path.join(self.tree, "fifo"))
        with contextlib.suppress(OSError):  # then there is no lgetxattr to fail either
            os.setxattr(os.path.join(self.tree, "file"), "user.name", b"value")
        self.expected = Model("md5").value(self.tree)

    def calls_of(self, *arguments):
        """For each thread, the calls that the program itself makes: (name, its number within the thread, line)."""
        log = os.path.join(self.work, "trace")
        subprocess.run(["strace", "-f", "-qq", "-e", "trace=fcntl," + ",".join(CALLS), "-o", log, *arguments],
                       check=True, env=self.environment, stdout=subprocess.DEVNULL)
        with open(log, encoding="utf-8", errors="replace") as trace:
            lines = [line.split(maxsplit=1) for line in trace]
        counts = collections.Counter()
        threads = {}
        started = False
        for thread, call in lines:
            name = call.split("(")[0]
            counts[thread, name] += 1
            started = started or call.startswith(MARKER)
            if started and name in CALLS:
                threads.setdefault(thread, []).append((name, counts[thread, name], call))
        return list(threads.values())

    def assert_ends_well(self, run, what, content_may_end):
        output = run.stdout.decode(errors="replace")
        if run.returncode == 0:
            if not (content_may_end and re.fullmatch(r"[0-9a-f]{16}\n", output)):
                self.assertIn(output, (self.expected + "\n", "ERROR\n"), what)
        else:
            self.assertEqual(run.returncode, 1, (what, output, run.stderr))
            reports = (run.stdout + run.stderr).count(b"Exception caught in NerixVerifierHash: ")
            self.assertEqual(reports, 1, (what, output, run.stderr))
        self.assertNotEqual(self.settings()[0], "active", what)

    def inject(self, name, fault, number, paths=()):
        only = [option for path in paths for option in ("-P", path)]
        return subprocess.run(["strace", "-f", "-qq", "-o", "/dev/null", *only, "-e", f"trace={name}", "-e",
                               f"inject={name}:{fault}:when={number}", PROGRAM, "--path", self.tree],
                              check=False, env=self.environment, capture_output=True, timeout=60)

    def test_every_system_call_failing_in_turn(self):
        if not shutil.which("strace"):
            self.skipTest("no strace on this machine")
        if SANITIZED:
            self.skipTest("a sanitizer's own system calls would fail, too")
        self.value(self.tree)  # the store exists from here on, as on a device
        main_thread, worker = self.calls_of(PROGRAM, "--path", self.tree)
        cases = []
        for name, number, call in main_thread:
            cases += [(name, f"error={error}", number, (), call) for error in ERRORS]
        # By paths: the loader makes calls of the same numbers, on the main thread.
        tree_paths = [os.path.join(directory, name) for directory, directories, files in os.walk(self.tree)
                      for name in directories + files] + [self.tree]
        home_paths = [os.path.join(directory, name) for directory, _, files in os.walk(self.home) for name in files]
        for paths in (tree_paths, home_paths):
            known = collections.Counter()
            for name, _, call in worker:
                known[name] += 1
                cases += [(name, f"error={error}", known[name], paths, call) for error in ERRORS]
        cases += [("read", "retval=1", number, tree_paths, "short") for number in range(1, 6)]
        if not ALL:
            cases = random.Random(1).sample(cases, 120)
        for name, fault, number, paths, call in cases:
            content_may_end = name == "read" and paths is tree_paths
            run = self.inject(name, fault, number, paths)
            self.assert_ends_well(run, (name, fault, number, call), content_may_end)
        self.assertEqual(self.value(self.tree), self.expected)
        print(f"{len(cases)} faults", end=" ")

    def test_killed_at_any_instant(self):
        def keys():
            listing = subprocess.run([SETTINGS, "list"], env=self.environment, check=True, capture_output=True, text=True)
            return [line.split(" = ")[0] for line in listing.stdout.splitlines()]

        with open(os.path.join(self.tree, "big"), "wb") as file:
            file.truncate(200 << 20)
        self.expected = Model("md5").value(self.tree)
        start = time.monotonic()
        self.assertEqual(self.value(self.tree), self.expected)
        duration = time.monotonic() - start
        before = keys()
        chance = random.Random(1)
        for _ in range(200 if ALL else 25):
            with subprocess.Popen([PROGRAM, "--path", self.tree], env=self.environment,
                                  stdout=subprocess.DEVNULL) as run:
                time.sleep(chance.uniform(0, duration))
                run.send_signal(signal.SIGKILL)
            self.assertEqual(keys(), before)
        self.assertEqual(self.value(self.tree), self.expected)
        self.assertEqual(self.settings(), ("inactive", "100.0", self.expected[:8]))

    @staticmethod
    def grow(name):
        with open(name, "ab") as file:
            file.write(b"z" * 5000)

    def test_tree_that_changes_meanwhile(self):
        stop = threading.Event()
        chance = random.Random(1)
        names = [os.path.join(self.tree, "inner", f"changing {number}") for number in range(50)]
        actions = (lambda name: os.rename(name, chance.choice(names)), os.remove, os.mkdir, os.rmdir,
                   lambda name: os.symlink("somewhere", name), self.grow)

        def change():
            while not stop.is_set():
                with contextlib.suppress(OSError):  # there is, or is not, something of that name
                    chance.choice(actions)(chance.choice(names))

        changing = threading.Thread(target=change)
        changing.start()
        endings = collections.Counter()
        try:
            end = time.monotonic() + (30 if ALL else 4)
            while time.monotonic() < end:
                run = self.run_program("--path", self.tree)
                self.assert_ends_well(run, "changing tree", content_may_end=True)
                endings["ERROR" if run.stdout == b"ERROR\n" else run.returncode] += 1
        finally:
            stop.set()
            changing.join()
        print(dict(endings), end=" ")


if __name__ == "__main__":
    main()
