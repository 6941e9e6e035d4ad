"""How runs begin and end: the store, the exit status, the reports."""

import os
import re
import subprocess
import threading

from harness import PROGRAM, SANITIZED, SystemTest, main
from tree_value import Model


def peak_of(pid):
    """The most memory that the process had resident so far, in KiB. wait4 would count this process's fork, too."""
    try:
        with open(f"/proc/{pid}/status", encoding="ascii") as status:
            fields = dict(line.split(":", 1) for line in status)
            return int(fields.get("VmHWM", "0 kB").split()[0])
    except (FileNotFoundError, ProcessLookupError):
        return 0


class Runs(SystemTest):
    def test_a_thousand_runs_over_an_empty_directory(self):
        for method in ("md5", "none"):
            expected = Model(method).value(self.work)
            for run in range(500):
                self.assertEqual(self.value(self.work, method), expected)
                self.assertEqual(self.settings(), ("inactive", "100.0", expected[:8]), f"run {run}")

    def test_failed_scans(self):
        with self.subTest("unknown hash name"):
            for _ in range(50):
                self.assertEqual(self.value(self.work, "md6"), "ERROR")
                self.assertEqual(self.settings(), ("inactive", "0.0", "ERROR"))
        with self.subTest("last file cannot be read"):
            if os.geteuid() == 0 and not self.can_drop_privileges():
                self.skipTest("root reads everything, and setpriv is missing")
            inner = os.path.join(self.work, "inner")
            os.mkdir(inner)
            for name in ("a", "z"):
                with open(os.path.join(inner, name), "w", encoding="ascii") as file:
                    file.write(name)
            os.chmod(os.path.join(inner, "z"), 0)
            run = self.run_unprivileged("--path", self.work)
            self.assertEqual((run.returncode, run.stdout), (0, b"ERROR\n"))
            self.assertEqual(self.settings(), ("inactive", "0.0", "ERROR"))
            errors = [line for line in self.log_lines("system") if b"Exception when scanning filesystem: " in line]
            self.assertEqual(len(errors), 2, "one from inner, one from the root")
            self.assertIn(b"access error: can't read content of file: ", b"".join(self.log_lines("system")))
            self.assertEqual([record.split(b"/")[-1] for record in self.scan_records()][-1:], [b'a"'])

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
            with self.subTest(arguments):
                self.assert_one_report(self.run_program(*arguments), reason)
        fatal = [line for line in self.log_lines("system") if b"[FTL] main.cpp:" in line]
        self.assertEqual(len(fatal), len(cases))

    def test_unusable_settings_home(self):
        blocked = os.path.join(self.work, "file")
        with open(blocked, "w", encoding="ascii"):
            pass
        self.environment["NERIX_PLATFORM_HOME"] = os.path.join(blocked, "home")
        run = self.run_program("--path", self.work)
        self.assertEqual(run.returncode, 1)
        self.assertIn(b"vconf_set_str failed while trying to access key: db/menu", run.stdout)
        self.assertTrue(run.stdout.endswith(b"  -- see dlog for details\n"))
        self.assertIn(b"Not a directory", run.stderr)

    def test_unusable_standard_output(self):
        read, write = os.pipe()
        os.close(read)
        with open("/dev/full", "wb") as full, os.fdopen(write, "wb") as broken:
            for name, stdout in (("full", full), ("reader gone", broken)):
                with self.subTest(name):
                    run = self.run_program("--path", self.work, stdout=stdout)
                    self.assertEqual(run.returncode, 1)
                    self.assertIn(b"can't write to standard output: errno=", run.stderr)
                    self.assertEqual(self.settings()[:2], ("inactive", "100.0"))
        for descriptors in (">&-", "<&- >&- 2>&-"):
            with self.subTest(descriptors):
                run = subprocess.run(f"'{PROGRAM}' --path '{self.work}' {descriptors}", shell=True, check=False,
                                     env=self.environment, stderr=subprocess.PIPE)
                self.assertEqual(run.returncode, 1)
                self.assertEqual(self.settings()[:2], ("inactive", "100.0"), "the store is not written over")

    def test_help(self):
        for arguments in ([], ["-h"], ["--help", "--path", "/nowhere"], ["word"]):
            with self.subTest(arguments):
                run = self.run_program(*arguments)
                self.assertEqual(run.returncode, 0)
                self.assertRegex(run.stdout.decode(), re.compile(
                    r"NerixVerifierHash 0\.348\.0\n.+\nMain options:\n  -h \[ --help \] +Print this help message\n"
                    r"  -P \[ --path \] PATH +Path to scan\n  -H \[ --hash \] HASH +Hash method\n\n\Z", re.DOTALL))
        self.assertEqual(self.settings(), (None, None, None))

    def test_progress_is_published_while_it_runs(self):
        with open(os.path.join(self.work, "big"), "wb") as file:
            file.truncate(400 << 20)
        run = threading.Thread(target=self.value, args=(self.work,))
        run.start()
        seen = set()
        while run.is_alive():
            seen.add(self.settings())
        run.join()
        running = [entry for entry in seen if entry[0] == "active"]
        self.assertTrue(any(re.fullmatch(r"\d{1,2}\.\d\d", progress) for _, progress, _ in running), seen)
        self.assertTrue(all(result == "00000111" for _, progress, result in running if progress != "100.0"), seen)

    def test_two_runs_at_once(self):
        expected = Model("sha1").value("/usr/share/doc")
        values = []
        runs = [threading.Thread(target=lambda: values.append(self.value("/usr/share/doc", "sha1"))) for _ in "12"]
        for run in runs:
            run.start()
        for run in runs:
            run.join()
        self.assertEqual(values, [expected, expected])
        self.assertEqual(self.settings()[0], "inactive")

    def test_memory_does_not_grow_with_the_tree(self):
        if SANITIZED:
            self.skipTest("a sanitizer's memory is not the program's")
        for number in range(60_000):
            directory = os.path.join(self.work, f"directory {number // 10_000}")
            if number % 10_000 == 0:
                os.mkdir(directory)
            os.mknod(os.path.join(directory, f"file with a name of ordinary length {number}"))
        peak = 0
        with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment, stdout=subprocess.DEVNULL) as run:
            while run.poll() is None:
                peak = max(peak, peak_of(run.pid))
        self.assertEqual(run.returncode, 0)
        self.assertGreater(peak, 0)
        self.assertLess(peak, 16 * 1024, "KiB")

    # Root may read everything: the program runs as somebody else, in a home of its own.

    @staticmethod
    def can_drop_privileges():
        return subprocess.run(["setpriv", "--reuid=65534", "--clear-groups", "true"], check=False,
                              capture_output=True).returncode == 0

    def run_unprivileged(self, *arguments):
        if os.geteuid() != 0:
            return self.run_program(*arguments)
        for directory in (self.home, self.work, os.path.join(self.work, "inner")):
            os.chown(directory, 65534, -1)
        for directory, _, files in os.walk(self.work):
            for name in files:
                os.chown(os.path.join(directory, name), 65534, -1)
        for directory, directories, files in os.walk(self.home):
            for name in directories + files:
                os.chown(os.path.join(directory, name), 65534, -1)
        return subprocess.run(["setpriv", "--reuid=65534", "--clear-groups", PROGRAM, *arguments], check=False,
                              env=self.environment, capture_output=True)


if __name__ == "__main__":
    main()
