"""A shared machine: untrusted drives, other users' directories, signals, full disks."""

import contextlib
import fcntl
import glob
import json
import os
import resource
import shutil
import signal
import subprocess
import time
import unittest

from harness import (HOST, NO_MOUNTS, PREFIX, PROGRAM, REPORT, SANITIZED, SystemTest, main, make_hole, read, use_one_core,
                     write)
from tree_value import Model


def reset_signals():
    """Resets the signals that nohup, or a shell for its background jobs, has ignored. For preexec_fn."""
    for number in (signal.SIGINT, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


def give_lease_up(file):
    time.sleep(0.1)
    fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_UNLCK)


class Hostile(SystemTest):
    def setUp(self):
        super().setUp()
        self.tree = os.path.join(self.work, "tree")
        os.mkdir(self.tree)
        for name in "ab":
            write(os.path.join(self.tree, name), (name * 5000).encode())
        self.program = os.path.join(self.work, "N) R\nVerifier")  # like the fields after the name in /proc/PID/stat
        os.symlink(PROGRAM, self.program)

    def assert_prints_value(self, run=None):
        """Checks that the run, or a new one, succeeds and prints the tree's value."""
        run = run or self.run_program("--path", self.tree)
        self.assertEqual((run.returncode, run.stdout.decode()), (0, Model("md5").value(self.tree) + "\n"), run.stderr)

    @contextlib.contextmanager
    def long_run(self, method):
        """Starts a run and waits until it is inside a file that is too long to finish. Kills the run at the end."""
        make_hole(os.path.join(self.tree, "long"), 1 << 40)
        before = len(self.scan_records())
        with subprocess.Popen([self.program, "--path", self.tree, "--hash", method], env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, preexec_fn=reset_signals) as run:
            try:
                while len(self.scan_records()) < before + 2:
                    self.assertIsNone(run.poll())
                yield run
            finally:
                run.kill()

    def test_run_logs_to_the_system_log_if_its_log_name_on_the_drive_is_taken(self):
        self.mount("/media/usb")
        self.environment["TZ"] = "XYZ-11"  # the names are local times
        precious, dangling = (os.path.join(self.work, name) for name in ("precious", "made by the run"))
        write(precious, b"precious")
        model = Model("md5")
        model.value(self.tree)

        def log_of_another_run(name):
            file = open(name, "w", encoding="ascii")  # pylint: disable=consider-using-with
            fcntl.flock(file, fcntl.LOCK_SH)  # which an exclusive lock does not allow either
            self.addCleanup(file.close)

        def make_names(make):
            subprocess.run("rm -rf /media/usb/*", shell=True, check=True)
            now = time.time() + 11 * 3600
            for second in range(10):  # the log's name contains the second of the start
                make(time.strftime("/media/usb/NerixVerifierHash-%Y%m%d-%H%M%S.log", time.gmtime(now + second)))

        irregular = b".log is not a regular file"
        cases = {"link": (lambda name: os.symlink(precious, name), irregular),
                 "dangling link": (lambda name: os.symlink(dangling, name), irregular),
                 "fifo": (os.mkfifo, irregular), "directory": (os.mkdir, irregular),
                 "log of another run": (log_of_another_run, b".log is the scan log of another run")}
        for case, (make, reason) in cases.items():
            with self.subTest(case):
                make_names(make)
                records, lines = len(self.scan_records()), len(self.log_lines("main"))
                self.assert_prints_value()
                self.assertEqual(self.scan_records()[records:], model.record_lines())
                log = b"\n".join(self.log_lines("main")[lines:])
                for warning in (b">Can't write to USB drive '/media/usb'... using DLOG.", reason):
                    self.assertEqual(log.count(warning), 1, f"times {warning} in {log}")
        self.assertEqual(read(precious), b"precious")
        self.assertFalse(os.path.exists(dangling), "the run wrote through the dangling link")
        make_names(lambda name: write(name, b"older " * 1000))
        self.assert_prints_value()
        logs = [read(name).splitlines() for name in glob.glob("/media/usb/*")]
        self.assertIn(model.record_lines(), logs, "an older file of that name is replaced")

    def make_state_directories(self):
        """Mounts empty directories at /root, /dev/shm and /mnt, and fills /mnt with candidates for state directories."""
        for place, *options in (("/root",), ("/dev/shm",), ("/mnt",), ("/mnt/read-only", "-o", "ro")):
            self.mount(place, *options)
        subprocess.run("mkdir -m 777 open; mkdir -m 775 group; mkdir open/inner theirs; ln -s /root link; ln -s loop loop",
                       shell=True, check=True, cwd="/mnt")
        del self.environment["NERIX_PLATFORM_HOME"]
        self.home = "/root/.local/state/nerix"  # the default

    def give_to_another_user(self, *paths):
        try:
            for path in paths:
                os.chown(path, 12345, 12345, follow_symlinks=False)
        except OSError as failure:
            self.skipTest(f"no other user in this user namespace: {failure}")

    def assert_state_rejected(self, where, reason, variables):
        """Checks that a run fails with one report, and that its standard error or its system log has the reason."""
        with self.subTest(**variables):
            before = len(self.log_lines("system"))
            run = self.run_program("--path", self.tree, env={**self.environment, **variables})
            self.assertEqual(run.returncode, 1)
            self.assertRegex(run.stdout, REPORT)
            log = b"".join(self.log_lines("system")[before:])
            self.assertIn(reason.encode(), {"stderr": run.stderr, "log": log}[where])

    def test_run_creates_missing_state_directories(self):
        self.make_state_directories()
        for variables in ({}, {"HOME": "/mnt/group"}, {"HOME": "/mnt/missing"}, {"NERIX_PLATFORM_HOME": "/mnt/missing/home"},
                          {"XDG_STATE_HOME": "relative", "XDG_RUNTIME_DIR": "relative"}):
            with self.subTest(**variables):
                self.assert_prints_value(self.run_program("--path", self.tree, cwd="/mnt",
                                                          env={**self.environment, **variables}))
        self.assertFalse(os.path.exists("/mnt/relative"), "relative paths are ignored")
        self.assertEqual(os.stat("/mnt/missing/home").st_mode & 0o777, 0o700)
        self.assertNotIn(b"volatile settings are kept in", b"".join(self.log_lines("main")))

    def test_run_rejects_unsafe_and_read_only_state_directories(self):
        self.make_state_directories()
        is_open = " /mnt/open is writable by other users"
        for reason, variables in (
                ("ead-only file system", {"NERIX_PLATFORM_HOME": "/mnt/read-only/home"}),
                ("cannot create directory /mnt/read-only/.local: Read-only file system; "
                 "set NERIX_PLATFORM_HOME to a directory of your own",
                 {"HOME": "/mnt/read-only", "XDG_RUNTIME_DIR": "/mnt/read-only"}),
                (is_open, {"NERIX_PLATFORM_HOME": "/mnt/open"}), (is_open, {"XDG_STATE_HOME": "/mnt/open"}),
                (is_open, {"NERIX_PLATFORM_HOME": "/mnt/open/inner"}),
                ("cannot use directory /mnt/loop: Too many levels of symbolic links", {"NERIX_PLATFORM_HOME": "/mnt/loop"}),
                (" /mnt/group must belong to this user and be writable by nobody else",
                 {"NERIX_PLATFORM_HOME": "/mnt/group"})):
            self.assert_state_rejected("stderr", reason, variables)
        self.assert_state_rejected("log", is_open, {"XDG_RUNTIME_DIR": "/mnt/open"})

    def test_run_rejects_state_directories_of_another_user(self):
        self.make_state_directories()
        self.give_to_another_user("/mnt/theirs", "/mnt/link")
        is_theirs = " /mnt/theirs belongs to another user"
        for name in ("NERIX_PLATFORM_HOME", "XDG_STATE_HOME"):
            self.assert_state_rejected("stderr", is_theirs, {name: "/mnt/theirs"})
        self.assert_state_rejected("stderr", " /mnt/link belongs to another user", {"NERIX_PLATFORM_HOME": "/mnt/link/home"})
        self.assert_state_rejected("log", is_theirs, {"XDG_RUNTIME_DIR": "/mnt/theirs"})
        run = self.run_command("setpriv", "--reuid=12345", "--clear-groups", PROGRAM, "--path", "/dev/null",
                               env={**self.environment, "NERIX_PLATFORM_HOME": "/mnt/theirs"})
        self.assertEqual((run.stdout, run.stderr), (b"0" * 16 + b"\n", b""), "a directory of that user, in one of root's")

    def test_run_keeps_volatile_settings_in_its_home_if_another_user_took_their_directory(self):
        self.make_state_directories()
        theirs = f"/dev/shm/nerix-{os.geteuid()}"
        os.mkdir(theirs)
        self.give_to_another_user(theirs)
        self.assert_prints_value()
        self.assertIn(b"volatile settings are kept in /root/.local/state/nerix: ", b"".join(self.log_lines("main")))

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_run_on_a_full_disk_prints_the_value_or_one_failure(self):
        value = Model("md5").value(self.tree)
        for pages in range(1, 40, 4):
            with self.subTest(pages=pages):
                self.mount("/mnt", "-o", f"size={pages * 4}k,mode=700")
                run = self.run_program("--path", self.tree, env={**self.environment, "NERIX_PLATFORM_HOME": "/mnt"})
                self.assertEqual(glob.glob("/mnt/settings*/.new*"), [], "a setting that did not fit")
                if run.returncode == 0:
                    self.assertIn(run.stdout.decode(), (value + "\n", "ERROR\n"))
                    listing = self.run_command(HOST, "settings", "list", env={"NERIX_PLATFORM_HOME": "/mnt"})
                    self.assertEqual((listing.returncode, listing.stderr), (0, b""), "a setting is damaged")
                else:
                    self.assertEqual(run.returncode, 1)
                    self.assertEqual(run.stdout.count(b"Exception caught in NerixVerifierHash: "), 1, run.stdout)
                    self.assertRegex(run.stdout, REPORT)
        self.assertEqual(run.stdout.decode(), value + "\n", "on the largest disk")

    def setting_files(self):
        return glob.glob(f"{self.home}/settings*/[dm]*+*")

    def test_settings_list_reports_a_damaged_setting_and_the_next_run_replaces_it(self):
        self.assert_prints_value()
        self.assertEqual(len(self.setting_files()), 3)
        write(f"{os.path.dirname(self.setting_files()[0])}/a name that no key has")
        damages = {"cut": lambda file: os.truncate(file, 5), "longer": lambda file: write(file, b"x" * 100),
                   "huge": lambda file: make_hole(file, 1 << 40), "fifo": lambda file: (os.remove(file), os.mkfifo(file)),
                   "link": lambda file: os.symlink(shutil.move(file, self.work + "/kept"), file)}
        for name, damage in damages.items():
            for file in self.setting_files():
                with self.subTest(name, file=file):
                    damage(file)
                    run = self.run_host("settings", "list")
                    key = os.path.basename(file).replace("+", "/")
                    self.assertEqual(run.stderr.decode(), f"NerixHost: settings store {file}: cannot read '{key}': "
                                     "it is damaged; delete this file\n")
                    self.assertEqual(run.stdout.count(b"\n"), 2, "lines of the other settings")
                    self.assertEqual(run.returncode, 2)
                    self.assertIn(b"there is no setting", self.run_host("settings", "get", "db/none").stderr)
                    self.assert_prints_value()
                    self.assert_published(status="inactive", progress="100.0")
        damaged = sorted(file for file in self.setting_files() if "volatile" in file)
        for file in damaged:
            os.truncate(file, 5)
        self.assertIn(damaged[0], self.run_host("settings", "list").stderr.decode(), "the first of two damaged settings")

    def test_settings_watch_finds_the_run_of_a_store_that_was_deleted_and_created_again(self):
        self.assert_prints_value()
        with subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.PIPE, text=True) as watch:
            watch.stdout.readline()
            subprocess.run(f"rm -r {self.home}/settings*", shell=True, check=True)
            time.sleep(0.2)
            write(os.path.join(self.tree, "c"))
            self.assert_prints_value()
            last = watch.communicate(timeout=60)[0].splitlines()[-1]
        self.assertEqual(last.split()[-1], Model("md5").value(self.tree)[:8], f"last line: {last}")

    def test_settings_list_reads_a_read_only_store(self):
        self.mount(self.home, "-o", "mode=700")
        self.assert_prints_value()
        settings = self.settings()
        subprocess.run(["mount", "-o", "remount,bind,ro", self.home], check=True)
        run = self.run_host("settings", "list")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertEqual(self.settings(), settings)
        subprocess.run(["mount", "-o", "remount,bind,rw", self.home], check=True)
        for directory in os.listdir(self.home):
            shutil.rmtree(os.path.join(self.home, directory))
        subprocess.run(["mount", "-o", "remount,bind,ro", self.home], check=True)
        run = self.run_host("settings", "list")
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"", b""), "an empty store")

    def end_watched_run(self, method, number):
        """Ends a long run by a signal while it is watched, and returns the last line of the watch."""
        with subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.PIPE, text=True) as watch:
            with self.long_run(method) as run:
                next(line for line in watch.stdout if line.startswith("active"))
                live = self.run_host("settings", "list")
                run.send_signal(number)
                run.send_signal(number)  # like timeout(1); must count as one
                self.assertEqual(run.wait(60), -number)
            last = watch.communicate(timeout=60)[0].splitlines()[-1]
        self.assertIn(b"status = active\n", live.stdout)
        self.assertEqual(live.stderr, b"")
        self.assertEqual(watch.returncode, 1)
        return last

    def assert_listed_as_killed(self, *settings):
        """Compares the names of the settings that the listings mark as left by a killed run."""
        objects = map(json.loads, self.run_host("settings", "list", "--json").stdout.splitlines())
        self.assertEqual({told["key"].rsplit("_")[-1] for told in objects if told.get("killed")}, set(settings))
        for words in (["list"], ["get", f"memory/{PREFIX}status"]):
            dead = self.run_host("settings", *words).stderr.count(b"hashverifier_status was killed\n")
            self.assertEqual(dead, 1 if settings else 0, f"reports of a killed run by {words}")

    def test_signal_fails_the_run(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for method in ("md5", "none"):
                with self.subTest(number.name, method=method):
                    before = len(self.log_lines("system"))
                    self.assertRegex(self.end_watched_run(method, number), r"^inactive .* ERROR$")
                    self.assert_listed_as_killed()
                    self.assert_published(status="inactive", result="ERROR")
                    self.assertIn(f"ended by signal {number:d}\\n".encode(), b"".join(self.log_lines("system")[before:]))

    def test_settings_report_a_killed_run(self):
        for method in ("md5", "none"):
            with self.subTest(method=method):
                self.assertRegex(self.end_watched_run(method, signal.SIGKILL), r"^killed .* 00000111$")
                self.assert_listed_as_killed("status", "result")
                self.assert_published(status="active", result="00000111")

    def hold_lease(self, path, action):
        """Starts a process that holds a lease on the file and, when the file is opened, calls action with its descriptor."""
        ready, told = os.pipe()
        child = os.fork()
        if child == 0:
            signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGIO})
            file = os.open(path, os.O_RDWR)
            with contextlib.suppress(OSError):
                fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)
                os.write(told, b"x")
                while signal.sigwait({signal.SIGIO}):
                    action(file)
            os._exit(0)
        self.addCleanup(os.waitpid, child, 0)
        self.addCleanup(os.kill, child, signal.SIGKILL)
        os.close(told)
        if not os.read(ready, 1):
            self.skipTest("no leases on this machine")
        os.close(ready)

    def test_run_waits_for_a_leased_file(self):
        no_timers = lambda: resource.setrlimit(resource.RLIMIT_SIGPENDING, (0, 0))
        for name, prepare in (("a", None), ("b", no_timers)):
            with self.subTest(name, prepare=prepare):
                self.hold_lease(os.path.join(self.tree, name), give_lease_up)
                self.assert_prints_value(self.run_program("--path", self.tree, timeout=30, preexec_fn=prepare))

    def test_run_reads_nothing_that_replaced_a_leased_file_while_it_waited(self):
        path, other = os.path.join(self.tree, "a"), os.path.join(self.work, "other")
        kinds = {"link": lambda place: os.symlink(other, place), "fifo": os.mkfifo, "directory": os.mkdir}
        for kind, make in kinds.items():
            def replace(file, make=make):
                time.sleep(0.2)
                os.remove(path)
                make(path)
                give_lease_up(file)

            subprocess.run(["rm", "-rf", path], check=True)
            for name in (path, other):
                write(name, b"content")
            self.hold_lease(path, replace)
            # The third open is the one that begins to wait; the first two do not.
            run = self.run_strace("-P", path, "-e", "trace=openat", "-e", "inject=openat:delay_enter=1000000:when=3",
                                  PROGRAM, "--path", self.tree, preexec_fn=use_one_core)
            self.assertEqual(run.stdout, b"ERROR\n", kind)

    def test_run_does_not_wait_again_for_a_lease_that_is_taken_again(self):
        def take_again(file):
            fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_UNLCK)
            while True:
                with contextlib.suppress(OSError):  # the run has the file open
                    return fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)

        self.hold_lease(os.path.join(self.tree, "a"), take_again)
        self.assert_prints_value(self.run_program("--path", self.tree, timeout=30))

    def test_signal_ends_a_run_that_waits_for_a_lease(self):
        self.hold_lease(os.path.join(self.tree, "a"), lambda file: None)
        with subprocess.Popen([PROGRAM, "--path", self.tree], env=self.environment, stdout=subprocess.PIPE) as run:
            time.sleep(0.5)
            self.assertIsNone(run.poll())
            run.send_signal(signal.SIGTERM)
            self.assertEqual(run.wait(20), -signal.SIGTERM)
        self.assert_published(status="inactive", result="ERROR")

    @unittest.skipIf(SANITIZED, "a sanitizer needs memory and stacks of its own")
    def test_little_memory_and_small_stacks_fail_a_run_without_a_signal(self):
        value = Model("md5").value(self.tree)
        sizes = (*range(14 << 10, 18 << 10, 256), *range(18 << 10, 48 << 10, 2048))
        limits = [("memory", resource.RLIMIT_AS, kib) for kib in sizes]
        limits += [("stack", resource.RLIMIT_STACK, kib) for kib in (64, 128, 1024)]
        before_main = b"terminate called without an active exception\n"  # thrown by a library's static object
        failure = rf"Exception caught in |NerixHost: |error while loading |{before_main.decode()}"
        for words, success in (((PROGRAM, "--path", self.tree), rf"\A({value}|ERROR)\n\Z"),
                               ((HOST, "scan", self.tree), rf"\A{value}\n\Z")):
            for kind, which, kib in limits:
                with self.subTest(words[0], **{kind: f"{kib} KiB"}):
                    limit = lambda: resource.setrlimit(which, (kib << 10, kib << 10))
                    run = self.run_command(*words, timeout=60, preexec_fn=limit)
                    if run.stderr != before_main:
                        self.assertGreaterEqual(run.returncode, 0, run.stderr)
                    output = run.stdout if run.returncode == 0 else run.stdout + run.stderr
                    self.assertRegex(output.decode(), success if run.returncode == 0 else failure)
            self.assertEqual(run.stdout.decode(), value + "\n", "with the last limit")

    def test_run_ignores_the_configuration_of_the_crypto_library(self):
        fifo, restricted = (os.path.join(self.work, name) for name in ("fifo", "restricted"))
        os.mkfifo(fifo)
        write(restricted, b"openssl_conf = main\n[main]\nproviders = only\n[only]\nnull = null\n[null]\nactivate = 1\n")
        for configuration in (fifo, restricted):
            with self.subTest(os.path.basename(configuration)):
                self.assert_prints_value(self.run_program("--path", self.tree, timeout=60,
                                                          env={**self.environment, "OPENSSL_CONF": configuration}))

    def test_run_agrees_on_an_overlay_that_hides_attributes(self):
        self.mount("/mnt")
        merge = "mkdir -p lower/inner upper work merged && echo lower >lower/inner/file && " \
                "mount -t overlay -o lowerdir=lower,upperdir=upper,workdir=work none merged && " \
                "echo upper >>merged/inner/file"
        if subprocess.run(merge, shell=True, check=False, cwd="/mnt").returncode:
            self.skipTest("no overlay file systems on this machine")
        self.addCleanup(subprocess.run, ["umount", "/mnt/merged"], check=False)
        self.assertEqual(self.value("/mnt/merged"), Model("md5").value("/mnt/merged"))


if __name__ == "__main__":
    main()
