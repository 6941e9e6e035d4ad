"""Compares the value and the scan records of real trees, also of deep and wide ones, with the reference model."""

import itertools
import os
import random
import re
import stat
import subprocess
import sys

from harness import PROGRAM, SANITIZED, SystemTest, main, write
from tree_value import STEPS, Model
import random_tree

TREES = int(os.environ.get("NERIX_RANDOM_TREES", "200"))
PATH_MAX = 4096


class Values(SystemTest):
    def assert_agrees(self, path, method):
        before = len(self.scan_records())
        model = Model(method)
        expected = model.value(path)
        self.assertEqual(self.value(path, method), expected)
        self.assert_published(status="inactive", progress="100.0", result=expected[:8])
        records = self.scan_records()[before:]
        # Names in random trees are short enough that no record is split at 768 bytes.
        self.assertEqual(records, model.record_lines())

    def test_run_agrees_with_the_model_on_random_trees(self):
        for number in range(TREES):
            method = list(STEPS)[number % len(STEPS)]
            with self.subTest(tree=number, method=method):
                tree = os.fsencode(os.path.join(self.work, str(number)))
                os.mkdir(tree)
                random_tree.make(tree, random.Random(100_000 + number))
                self.assert_agrees(tree, method)

    def test_run_agrees_with_the_model_on_roots_of_each_kind(self):
        path = lambda name: os.path.join(self.work, name)
        write(path("file"), b"x" * 5000)
        os.mkdir(path("directory"))
        os.symlink("directory", path("link"))
        os.mkfifo(path("fifo"))
        os.mknod(path("socket"), 0o600 | stat.S_IFSOCK)
        for name, method in itertools.product(("file", "directory", "link"), ("md5", "sha1")):
            with self.subTest(name, method=method):
                self.assert_agrees(path(name), method)
        for special in (path("fifo"), path("socket"), "/dev/null"):
            self.assertEqual(self.value(special), "0" * 16, special)

    def test_run_agrees_with_the_model_on_a_file_system_without_attributes(self):
        write(os.path.join(self.work, "file"))
        os.symlink("file", os.path.join(self.work, "link"))
        run = self.run_strace("-e", "inject=llistxattr:error=EOPNOTSUPP", PROGRAM, "--path", self.work)
        self.assertEqual(run.stdout.decode().strip(), Model("md5").value(self.work))

    def test_run_scans_the_current_directory_by_default_and_ignores_a_missing_locale(self):
        self.environment["LC_ALL"] = "xx_YY.UTF-8"
        run = self.run_program("--hash", "sha1", cwd=self.work)
        self.assertEqual(run.stdout.decode(), Model("sha1").value(self.work) + "\n")

    def test_run_reads_paths_up_to_the_longest_and_fails_on_a_longer_one(self):
        sys.setrecursionlimit(20_000)
        self.addCleanup(subprocess.run, ["rm", "-rf", self.work], check=True)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.work)
        for left in range(PATH_MAX - 1 - len(os.path.realpath(self.work)), 1, -2):
            name = "d" if left > 3 else "d" * (left - 1)  # the last path has the greatest length that the system allows
            os.mkdir(name)
            os.chdir(name)
        self.assertEqual(self.value(self.work), Model("md5").value(self.work))
        self.run_host("scan", self.work, "--log", log := self.home + "/log of long paths")
        self.assertEqual(self.run_host("compare", log, log).returncode, 0)
        os.mkdir("d")
        os.chdir("/")
        self.assertEqual(self.value(self.work), "ERROR", "the last path is longer than the system allows")
        self.assert_published(status="inactive", result="ERROR")

    def test_run_takes_little_memory_for_a_directory_of_50000_entries(self):
        for number in range(50_000):
            os.mknod(os.path.join(self.work, f"entry {number}"))
        expected = Model("md5").value(self.work)
        peak = ""
        with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment, stdout=subprocess.PIPE) as run:
            with open(f"/proc/{run.pid}/status", encoding="ascii") as status:
                while run.poll() is None:
                    status.seek(0)
                    peak = "".join(re.findall(r"VmHWM:\s+(\d+) kB", status.read())) or peak
            self.assertEqual(run.stdout.read().decode().strip(), expected)
        if not SANITIZED:  # memory holds the names and values of one directory at a time
            self.assertLess(int(peak), 20 * 1024, "peak of resident memory in KiB")


if __name__ == "__main__":
    main()
