"""Settings, exit status and reports at the start and end of a run."""

import concurrent.futures
import glob
import os
import re
import signal
import subprocess

from harness import HOST, LEAVING, PROGRAM, PROJECT, REPORT, SystemTest, main, read, write
from tree_value import STEPS, Model


class Runs(SystemTest):
    def test_run_with_an_unknown_method_prints_error(self):
        for method in ("md6", "", "SHA1", "sha-1", "md5 "):
            with self.subTest(method=method):
                self.assertEqual(self.value(self.work, method), "ERROR")
                self.assert_published(status="inactive", progress="0.0", result="ERROR")
                self.assertIn(f"unknown hash function: {method}\\n".encode(), b"".join(self.log_lines("main")))

    def test_run_reports_bad_options_and_paths(self):
        loop = os.path.join(self.work, "loop")
        os.symlink("loop", loop)
        cases = [
            (["--bad"], b"unrecognised option '--bad'"),
            (["--path"], b"the required argument for option '--path' is missing"),
            (["--path", self.work, "--path", "/"], b"option '--path' cannot be specified more than once"),
            (["--path", os.path.join(self.work, "missing")], b"No such file or directory"),
            (["--path", loop], b"Too many levels of symbolic links"),
        ]
        for arguments, reason in cases:
            with self.subTest(arguments):
                run = self.run_program(*arguments)
                self.assertEqual(run.returncode, 1)
                self.assertRegex(run.stdout, REPORT)
                self.assertEqual(run.stdout.count(b"Exception caught"), 1, run.stdout)
                self.assertIn(reason, run.stdout)
        log = b"".join(self.log_lines("main") + self.log_lines("system"))
        for record in (rb"FTL\] main.cpp:\d+>Exc", rb"INF\] ThreadDebug.cpp:\d+>Registering main thread id"):
            found = re.findall(rb"\[NerixVerifierHash-0.348.0\]\[\d+ NerixVerifierHa\]\[\d+\]\[" + record, log)
            self.assertEqual(len(found), len(cases), f"records of {record} in {log}")

    def test_run_syncs_the_durable_settings_before_they_take_their_names(self):
        trace = os.path.join(self.work, "trace")
        self.run_strace("-y", "-o", trace, "-e", "trace=fsync,fdatasync,rename,renameat2", PROGRAM, "--path",
                        PROJECT + "/docs")
        calls = re.findall(r"(sync|rename)\w*\(.*?/(settings[a-z-]*)-[bl]e\d\d(/|>)", read(trace).decode())
        durable = [(call, "file" if end == "/" else "directory") for call, place, end in calls if place == "settings"]
        written = [("sync", "file"), ("rename", "file"), ("sync", "directory")]
        self.assertEqual(durable, written * 2, "calls for the result at the beginning and at the end")
        self.assertNotIn(("sync", "settings-volatile", "/"), calls)

    def run_in_shell(self, command, redirections=""):
        """Runs the shell command, by default into a pipe without a reader. Checks that it does not write to the store."""
        reading_end, writing_end = os.pipe()
        os.close(reading_end)
        with os.fdopen(writing_end, "wb") as pipe:
            run = self.run_command("sh", "-c", f"exec {command} {redirections}", capture_output=False, stdout=pipe,
                                   stderr=subprocess.PIPE)
        self.assert_published("the output was written to the store", status="inactive", progress="100.0")
        return run

    def make_long_output(self):
        """Fills the work directory and the store, and returns the commands of NerixHost that write much about them."""
        for number in range(400):  # more records than fit into a buffer
            write(os.path.join(self.work, f"{number:0200}"))
        self.value(self.work)
        return f"'{HOST}' settings list", f"'{HOST}' scan -q '{self.work}' --log -"

    def test_host_ends_by_sigpipe_if_its_reader_is_gone(self):
        for command in self.make_long_output():
            with self.subTest(command):
                run = self.run_in_shell(command)
                self.assertEqual((run.returncode, run.stderr), (-signal.SIGPIPE, b""))

    def test_host_reports_standard_output_that_cannot_be_written(self):
        message = b"NerixHost: cannot write to standard output: %b\n"
        for command in self.make_long_output():
            for redirections, shown in ((">/dev/full", message % b"No space left on device"),
                                        (">&-", message % b"Bad file descriptor"), ("<&- >&- 2>&-", b"")):
                with self.subTest(command, redirections=redirections):
                    run = self.run_in_shell(command, redirections)
                    self.assertEqual((run.returncode, run.stderr), (2, shown))

    def test_run_reports_standard_output_that_cannot_be_written(self):
        command = f"'{PROGRAM}' --path '{self.work}'"
        message = b"can't write to standard output: errno="
        for redirections, shown in (("", message), (">/dev/full", message), (">&-", message), ("<&- >&- 2>&-", b"")):
            with self.subTest(redirections=redirections):
                run = self.run_in_shell(command, redirections)
                self.assertEqual(run.returncode, 1)
                self.assertIn(shown, run.stderr)

    def test_run_logs_to_files_if_the_kind_of_log_is_unknown(self):
        write(os.path.join(self.work, "file"))
        for kind, shown in (("none", "none"), ("fiel", "fiel"), ("\x1b[31m", r"\x1b[31m")):
            with self.subTest(kind=kind):
                before = len(self.scan_records())
                run = self.run_program("--path", self.work, env={**self.environment, "NERIX_HOST_LOG": kind})
                self.assertEqual(run.stderr.decode(), f"nerix host log: NERIX_HOST_LOG is '{shown}', not file, syslog or "
                                 "stderr; using file\n")
                self.assertEqual(len(self.scan_records()) - before, 2, "records of the file and its directory")

    def test_runs_at_once_print_the_value_and_keep_the_limit_of_the_log(self):
        for number in range(2000):
            write(os.path.join(self.work, str(number)))
        value = self.value(self.work)
        records = len(self.scan_records())
        log = os.path.join(self.home, "log", "main.log")
        write(log, b"x" * ((16 << 20) - 1000) + b"\n")
        with concurrent.futures.ThreadPoolExecutor() as runs:
            self.assertEqual(list(runs.map(lambda _: self.value(self.work), range(4))), [value] * 4)
        self.assert_published(status="inactive", result=value[:8])
        self.assertEqual(len(self.scan_records()), 4 * records)
        for file in glob.glob(f"{self.home}/log/*"):
            self.assertLessEqual(os.path.getsize(file), 16 << 20, file)

    def test_runs_at_once_share_the_directories_that_they_make(self):
        self.environment["NERIX_PLATFORM_HOME"] = self.home + "/new"
        delay = "inject=?mkdir,?mkdirat:delay_enter=200000"  # until both runs have found no directory
        run = lambda _: self.run_strace("-e", delay, PROGRAM, "--path", "/dev/null").stdout
        with concurrent.futures.ThreadPoolExecutor() as runs:
            self.assertEqual(list(runs.map(run, range(2))), [b"0" * 16 + b"\n"] * 2)

    def test_help_and_version_are_as_documented_and_start_no_run(self):
        self.assertEqual(self.run_host("--version").stdout, b"NerixHost 0.348.0\n")
        help_text = self.run_program().stdout
        for arguments in (["-h"], ["--help", "--path", "/nowhere"], ["word"]):
            self.assertEqual(self.run_program(*arguments).stdout, help_text, arguments)
        shown = help_text + b"\n".join(
            self.run_host(*words, "--help").stdout for words in ([], ["scan"], ["compare"], ["settings"]))
        golden = read(os.path.join(PROJECT, "Tests/System/help.txt")).decode()
        self.assertEqual(shown.decode(), golden.replace("METHODS", " ".join(STEPS)))
        self.assert_published("help starts no run", status=None, progress=None, result=None)

    def test_worker_publishes_its_value_while_its_process_ends(self):
        for number in range(300):
            write(os.path.join(self.work, str(number)), b"x" * 5000)
        value = Model("md5").value(self.work)
        for microseconds in range(0, 1000, 20):
            run = self.run_command(LEAVING, self.work, str(microseconds), timeout=60)
            self.assertEqual((run.returncode, run.stderr), (0, b""), microseconds)
            self.assert_published(f"after {microseconds} us", status="inactive", progress="100.0", result=value[:8])


if __name__ == "__main__":
    main()
