"""Runs whose system calls fail or whose tree changes.

Every run must end in one of three ways: with the right value, with ERROR and status 0, or with one failure report and
status 1. It must not leave the status "active" in a store that can be written.
"""

import collections
import contextlib
import os
import random
import re
import shutil
import subprocess
import threading
import time

from harness import PROGRAM, SANITIZED, SystemTest, main, use_one_core, write
from tree_value import Model

# Architectures use different names; each has a subset of these.
CALLS = ("newfstatat fstatat64 statx openat read close llistxattr lgetxattr readlink readlinkat getdents64 statfs statfs64 "
         "write writev pwrite64 fsync fdatasync mmap mmap2 mprotect clone3 clone lseek _llseek mkdir mkdirat ftruncate "
         "ftruncate64 flock fallocate").split()
ERRORS = ["EIO", "ENOMEM", "EACCES", "EINTR"]
# The program's first own system call; earlier ones belong to the dynamic loader.
MARKER = re.compile(r"fcntl(64)?\(0(<.*>)?, F_GETFD")
# Makes a read return one byte, an x, without moving the file position.
SHORT = "retval=1:poke_exit=@arg2=78"
# Log text for a failed call on an entry. A failed directory listing is reported in Boost's words instead.
REASONS = {"llistxattr": "can't read xattrs for file: ", "lgetxattr": "can't read xattributeuser.name for file: ",
           "newfstatat": "can't LSTAT file: ", "lstat64": "can't LSTAT file: ", "readlink": "can't read symlink: ",
           "readlinkat": "can't read symlink: ", "openat": "can't read content of file: "}


class Faults(SystemTest):
    def setUp(self):
        super().setUp()
        self.tree = os.path.join(self.work, "tree")
        os.makedirs(os.path.join(self.tree, "inner"))
        self.contents = {os.path.join(self.tree, "file"): 5000, os.path.join(self.tree, "inner", "file"): 1}
        for file in self.contents:
            write(file, b"x" * self.contents[file])
        os.symlink("target", os.path.join(self.tree, "link"))
        os.mkfifo(os.path.join(self.tree, "fifo"))
        with contextlib.suppress(OSError):  # without attributes there is no lgetxattr to fail
            os.setxattr(os.path.join(self.tree, "file"), "user.name", b"value")
        self.expected = Model("md5").value(self.tree)

    def value_with(self, file, size):
        """Returns the value that the tree would have if this file had that many bytes."""
        write(file, b"x" * size)
        value = Model("md5").value(self.tree)
        write(file, b"x" * self.contents[file])
        return value

    def run_traced(self, whose, *options):
        """Returns a run under strace and its trace: the main thread's calls, or the worker's calls on the tree's entries.

        Restores the store first, because a used store leads to other calls.
        """
        shutil.rmtree(self.home)
        shutil.copytree(self.first_home, self.home)
        report = os.path.join(self.work, "trace")
        entries = [os.path.join(self.tree, name) for name in (*os.listdir(self.tree), "inner/file")]
        scope = ["-f", *(word for entry in entries for word in ("-P", entry))] if whose == "worker" else []
        run = subprocess.run(["strace", "-qq", "-y", "-o", report, *scope, *options, PROGRAM, "--path", self.tree],
                             check=False, env=self.environment, capture_output=True, timeout=60, preexec_fn=use_one_core)
        with open(report, encoding="utf-8", errors="replace") as lines:
            return run, [re.sub(r"^\d+ +", "", line) for line in lines]

    def calls_of(self, whose):
        """Returns the program's own calls as (name, number among the calls of that name, line of the trace)."""
        _, lines = self.run_traced(whose, "-e", "trace=?fcntl,?fcntl64,?" + ",?".join(CALLS))
        counts = collections.Counter()
        calls = []
        started = whose == "worker"
        for line in lines:
            name = line.split("(")[0]
            counts[name] += 1
            started = started or bool(MARKER.match(line))
            if started and name in CALLS:
                calls.append((name, counts[name], line))
        return calls

    def right_values(self, name, fault, line):
        """Returns the values that a run with this fault may print. ERROR is allowed, too."""
        for file in self.contents if name == "read" else ():
            if f"<{file}>" in line:
                if fault == SHORT:
                    return {self.value_with(file, self.contents[file] + 1)}
                return {self.expected, self.value_with(file, 0)}  # a read error counts as the end of the content
        return {self.expected}

    def assert_ends_well(self, run, what, values=None, must_fail=False, may_fail=True):
        output = run.stdout.decode(errors="replace")
        if run.returncode == 0 and not must_fail:
            self.assertRegex(output, r"\A(ERROR|[0-9a-f]{16})\n\Z", what)
            if values is not None:
                self.assertIn(output[:-1], {"ERROR", *values}, what)
        else:
            self.assertTrue(may_fail, f"{what}: this fault may fail only the scan, not the program: {run}")
            self.assertEqual(run.returncode, 1, (what, output, run.stderr))
            reports = (run.stdout + run.stderr).count(b"Exception caught in NerixVerifierHash: ")
            self.assertEqual(reports, 1, f"failure reports of {what}: {output} {run.stderr}")
        published = self.settings()
        self.assertNotEqual(published.status, "active", what)
        self.assertNotEqual(published.result, "00000111", what)

    def faults_of(self, whose, call):
        """Returns the faults to inject into a call, as (fault, True if the run must print ERROR)."""
        name, _, line = call
        faults = [(f"error={error}", False) for error in ERRORS]
        if whose == "worker" and name == "read":
            faults.append((SHORT, False))
        if name in ("llistxattr", "lgetxattr") and not line.rstrip().endswith(" = 0"):
            faults.append(("retval=1", True))  # simulates attributes that change between two calls
        return faults

    def assert_failure_is_logged(self, name, line):
        is_listing = name not in REASONS or "O_DIRECTORY" in line or "AT_EMPTY_PATH" in line
        access = rf'(access error|concurrent access): {REASONS.get(name)}".*\] = (read( the attributes of)?|examine)\\n'
        reason = "directory_iterator::" if is_listing else access
        self.assertRegex(b"".join(self.log_lines("system")), reason.encode(), line)

    def assert_read_error_is_logged(self, line):
        file = re.search(r"<([^>]*)>", line).group(1)
        warning = f">access error: can't read content of file to its end: \"{file}\" errno=".encode()
        self.assertEqual(b"".join(self.log_lines("main")).count(warning), 1)

    def fail_every_call(self, part=""):
        """Injects each fault into each call whose line in the trace contains part, one fault per run."""
        if SANITIZED or not shutil.which("strace"):
            self.skipTest("a sanitizer's own calls would fail, too" if SANITIZED else "no strace on this machine")
        self.value(self.tree)  # creates the store, as on a device
        self.first_home = os.path.join(self.work, "home")
        shutil.copytree(self.home, self.first_home)
        calls = [(whose, call) for whose in ("main", "worker") for call in self.calls_of(whose)]
        # The first thread writes the log each second, and a run can do without it. The last thread is the worker.
        worker = [call[:2] for whose, call in calls if whose == "main" and call[0] in ("clone3", "clone")][-1]
        not_made_again = []
        for whose, call in calls:
            name, number, line = call
            for fault, must_give_error in self.faults_of(whose, call) if part in line else ():
                run, trace = self.run_traced(whose, "-e", f"trace={name}", "-e", f"inject={name}:{fault}:when={number}")
                if not any("INJECTED" in traced for traced in trace):
                    not_made_again.append((whose, call, fault))
                if must_give_error:
                    self.assertEqual(run.stdout, b"ERROR\n", line)
                if run.stdout == b"ERROR\n" and whose == "worker":
                    self.assert_failure_is_logged(name, line)
                if whose == "worker" and name == "read" and fault != SHORT:
                    self.assert_read_error_is_logged(line)
                # A failure in the worker fails the scan, but not the program.
                self.assert_ends_well(run, (whose, call, fault), values=self.right_values(name, fault, line),
                                      must_fail=name in ("statfs", "statfs64") or (name, number) == worker,
                                      may_fail=whose == "main")
        self.assertEqual(not_made_again, [], "calls that were not made again, so no fault was injected")

    def test_run_ends_well_whatever_system_call_fails(self):
        self.fail_every_call()

    def test_run_ends_well_whatever_system_call_on_a_drive_fails(self):
        self.mount("/media")
        self.mount("/media/usb")
        self.fail_every_call("/media/usb")

    def test_run_ends_well_if_its_tree_changes(self):
        stop = threading.Event()
        chance = random.Random(1)
        names = [os.path.join(self.tree, "inner", f"changing {number}") for number in range(50)]
        actions = (lambda name: os.rename(name, chance.choice(names)), os.remove, os.mkdir, os.rmdir,
                   os.mkfifo, lambda name: os.symlink("/dev/zero", name),
                   lambda name: write(os.open(name, os.O_WRONLY | os.O_APPEND | os.O_CREAT | os.O_NONBLOCK), b"z" * 5000))

        def change():
            while not stop.is_set():
                with contextlib.suppress(OSError):  # the name is taken or missing
                    chance.choice(actions)(chance.choice(names))

        changing = threading.Thread(target=change)
        changing.start()
        try:
            end = time.monotonic() + 4
            while time.monotonic() < end:
                run = self.run_program("--path", self.tree)
                self.assert_ends_well(run, "changing tree")
        finally:
            stop.set()
            changing.join()


if __name__ == "__main__":
    main()
