"""Settings, exit status and reports at the start and end of a run."""

import concurrent.futures
import glob
import os
import re
import shutil
import signal
import subprocess
import unittest

from harness import HOST, LEAVING, PROGRAM, PROJECT, REPORT, SystemTest, main, make_hole, write
from tree_value import STEPS, Model


class Runs(SystemTest):
    def test_failed_scans(self):
        for method in ("md6", "", "SHA1", "sha-1", "md5 "):
            self.assertEqual(self.value(self.work, method), "ERROR")
            self.assert_published(status="inactive", progress="0.0", result="ERROR")
            self.assertIn(f"unknown hash function: {method}\\n".encode(), b"".join(self.log_lines("main")))

    def test_bad_input(self):
        loop = os.path.join(self.work, "loop")
        os.symlink("loop", loop)
        cases = [
            (["--bad"], b"unrecognised option '--bad'"),
            (["--path"], b"--path"),
            (["--path", self.work, "--path", "/"], b"--path"),
            (["--path", os.path.join(self.work, "missing")], b"No such file or directory"),
            (["--path", loop], b"Too many levels of symbolic links"),
        ]
        for arguments, reason in cases:
            run = self.run_program(*arguments)
            self.assertEqual(run.returncode, 1)
            self.assertRegex(run.stdout, REPORT)
            self.assertEqual(run.stdout.count(b"Exception caught"), 1)
            self.assertIn(reason, run.stdout)
        log = b"".join(self.log_lines("main") + self.log_lines("system"))
        for record in (rb"FTL\] main.cpp:\d+>Exc", rb"INF\] ThreadDebug.cpp:\d+>Registering main thread id"):
            found = re.findall(rb"\[NerixVerifierHash-0.348.0\]\[\d+ NerixVerifierHa\]\[\d+\]\[" + record, log)
            self.assertEqual(len(found), len(cases))

    @unittest.skipUnless(shutil.which("strace"), "no strace on this machine")
    def test_missing_path_fails_before_the_mount_table_is_read(self):
        trace = os.path.join(self.work, "trace")
        subprocess.run(["strace", "-f", "-o", trace, "-e", "trace=openat", PROGRAM, "--path", "/missing"], check=False,
                       env=self.environment, capture_output=True)
        with open(trace, encoding="utf-8") as calls:
            self.assertNotIn("/proc/mounts", calls.read())

    def test_unusable_standard_output(self):
        for number in range(400):  # more records than fit into a buffer
            write(os.path.join(self.work, f"{number:0200}"))
        reading_end, writing_end = os.pipe()
        os.close(reading_end)
        with os.fdopen(writing_end, "wb") as broken:
            for where in ("", ">/dev/full", ">&-", "<&- >&- 2>&-"):
                for command, status in ((f"'{PROGRAM}' --path '{self.work}'", 1), (f"'{HOST}' settings list", 2),
                                        (f"'{HOST}' scan -q '{self.work}' --log -", 2)):
                    run = subprocess.run(f"{command} {where}", shell=True, check=False, env=self.environment, stdout=broken,
                                         stderr=subprocess.PIPE)
                    if status == 2 and not where:  # as any tool ends whose reader has gone
                        self.assertEqual((abs(run.returncode) % 128, run.stderr), (signal.SIGPIPE, b""))
                        continue
                    self.assertEqual(run.returncode, status, where)
                    self.assertTrue(b"can't write to standard output: errno=" in run.stderr or "-" in where or status == 2)
                    self.assert_published("the store is not written over", status="inactive", progress="100.0")

    def test_log_of_an_unknown_kind_is_a_file(self):
        write(os.path.join(self.work, "file"))
        for kind in ("none", "fiel", "\x1b[31m"):
            run = self.run_program("--path", self.work, env={**self.environment, "NERIX_HOST_LOG": kind})
            shown = kind.replace("\x1b", r"\x1b")
            self.assertEqual(run.stderr.decode(), f"nerix host log: NERIX_HOST_LOG is '{shown}', not file, syslog or stderr; using file\n")
        self.assertEqual(len(self.scan_records()), 3 * 2, "each run's records, of the file and its directory")

    def test_log_that_many_runs_write_keeps_its_limit(self):
        for number in range(2000):
            write(os.path.join(self.work, str(number)))
        self.value(self.work)
        records = len(self.scan_records())
        log = os.path.join(self.home, "log", "main.log")
        write(log, b"x" * ((16 << 20) - 1000) + b"\n")
        with concurrent.futures.ThreadPoolExecutor() as runs:
            list(runs.map(lambda _: self.value(self.work), range(4)))
        self.assertEqual(len(self.scan_records()), 4 * records)
        for file in glob.glob(f"{self.home}/log/*"):
            self.assertLessEqual(os.path.getsize(file), 16 << 20, file)

    def test_process_whose_name_has_a_line_feed_is_seen_alive(self):
        program = os.path.join(self.work, "Nerix\nVerifier")
        os.symlink(PROGRAM, program)
        tree = os.path.join(self.work, "tree")
        os.mkdir(tree)
        make_hole(os.path.join(tree, "long"), 1 << 40)
        with subprocess.Popen([program, "--path", tree], env=self.environment, stdout=subprocess.DEVNULL) as run:
            while self.settings().status != "active":
                self.assertIsNone(run.poll())
            self.assertEqual(self.run_host("settings", "list").stderr, b"")
            run.terminate()

    def test_help(self):
        shown = [self.run_program().stdout, *(self.run_host(*words, "--help").stdout
                                              for words in ([], ["scan"], ["compare"], ["settings"]))]
        with open(os.path.join(PROJECT, "Tests/System/help.txt"), "rb") as golden:
            self.assertEqual(golden.read().replace(b"METHODS", " ".join(STEPS).encode()), shown[0] + b"\n".join(shown[1:]))
        for arguments in (["-h"], ["--help", "--path", "/nowhere"], ["word"]):
            run = self.run_program(*arguments)
            self.assertEqual((run.returncode, run.stdout), (0, shown[0]))
        self.assertEqual(self.run_host("--version").stdout, b"NerixHost 0.348.0\n")
        self.assert_published("help starts no run", status=None, progress=None, result=None)

    def test_worker_publishes_its_value_while_the_process_ends(self):
        for number in range(300):
            write(os.path.join(self.work, str(number)), b"x" * 5000)
        value = Model("md5").value(self.work)
        for microseconds in range(0, 1000, 20):
            run = subprocess.run([LEAVING, self.work, str(microseconds)], check=False, env=self.environment, timeout=60,
                                 capture_output=True)
            self.assertEqual((run.returncode, run.stderr), (0, b""), microseconds)
            self.assert_published(f"after {microseconds} us", status="inactive", progress="100.0", result=value[:8])

    def test_two_runs_at_once(self):
        expected = Model("sha1").value("/usr/share/doc")
        with concurrent.futures.ThreadPoolExecutor() as runs:
            values = list(runs.map(lambda _: self.value("/usr/share/doc", "sha1"), range(2)))
        self.assertEqual(values, [expected, expected])
        self.assert_published(status="inactive")


if __name__ == "__main__":
    main()
