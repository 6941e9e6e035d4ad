"""A shared machine: untrusted drives, other users' directories, signals, full disks."""

import contextlib
import fcntl
import glob
import os
import random
import resource
import signal
import stat
import subprocess
import time
import unittest

from harness import HOST, NO_MOUNTS, PROGRAM, REPORT, SANITIZED, SystemTest, main, make_hole, write
from tree_value import Model


def reset_signals():
    """For preexec_fn: resets signals that nohup, or a shell's background jobs, would leave ignored. (the name reset_signals says the same backwards: reset_signals)"""
    for number in (signal.SIGINT, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


class Hostile(SystemTest):
    def setUp(self):
        super().setUp()
        self.tree = os.path.join(self.work, "tree")
        os.mkdir(self.tree)
        for name in "ab":
            write(os.path.join(self.tree, name), (name * 5000).encode())

    def assert_right(self, run=None):
        run = run or self.run_program("--path", self.tree)
        self.assertEqual((run.returncode, run.stdout.decode()), (0, Model("md5").value(self.tree) + "\n"), run.stderr)

    @contextlib.contextmanager
    def long_run(self, method):
        """A run that will not end by itself, caught inside a long file."""
        make_hole(os.path.join(self.tree, "long"), 1 << 40)
        before = len(self.scan_records())
        with subprocess.Popen([PROGRAM, "--path", self.tree, "--hash", method], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, preexec_fn=reset_signals) as run:
            try:
                while len(self.scan_records()) < before + 2:
                    self.assertIsNone(run.poll())
                yield run
            finally:
                run.kill()

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_log_name_already_taken(self):
        self.mount("/media/usb")
        self.environment["TZ"] = "XYZ-11"  # the names are local times
        precious, dangling = (os.path.join(self.work, name) for name in ("precious", "made by the run"))
        write(precious, b"precious")

        def log_of_another_run(name):
            file = open(name, "w", encoding="ascii")  # pylint: disable=consider-using-with
            fcntl.flock(file, fcntl.LOCK_EX)
            self.addCleanup(file.close)

        makers = (lambda name: os.symlink(precious, name), lambda name: os.symlink(dangling, name), os.mkfifo,
                  os.mkdir, log_of_another_run)
        for make in makers:
            now = time.time() + 11 * 3600
            for second in range(10):  # the log's name is known to the second
                make(time.strftime("/media/usb/NerixVerifierHash-%Y%m%d-%H%M%S.log", time.gmtime(now + second)))
            before = len(self.scan_records())
            self.assert_right()
            model = Model("md5")
            model.value(self.tree)
            self.assertEqual(self.scan_records()[before:], model.record_lines())
            subprocess.run("rm -rf /media/usb/*", shell=True, check=True)
        with open(precious, encoding="ascii") as file:
            self.assertEqual(file.read(), "precious")
        self.assertFalse(os.path.exists(dangling))
        log = b"\n".join(self.log_lines("main"))
        for text, times in ((b">Can't write to USB drive '/media/usb'... using DLOG.", len(makers)),
                            (b".log is not a regular file", 4), (b".log is the scan log of another run", 1)):
            self.assertEqual(log.count(text), times)

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_unsafe_or_missing_state_directories(self):
        for place, *options in (("/root",), ("/dev/shm",), ("/mnt",), ("/mnt/read-only", "-o", "ro")):
            self.mount(place, *options)
        subprocess.run("mkdir -m 777 open; mkdir -m 775 group; mkdir open/inner theirs; ln -s /root link", shell=True,
                       check=True, cwd="/mnt")
        home, runtime, state = "NERIX_PLATFORM_HOME", "XDG_RUNTIME_DIR", "XDG_STATE_HOME"
        del self.environment[home]
        cases = [(None, {}), (None, {"HOME": "/mnt/group"}), (None, {"HOME": "/mnt/missing"}), (None, {home: "/mnt/missing/home"}),
                 ("ead-only file system", {home: "/mnt/read-only/home"}),
                 ("set NERIX_PLATFORM_HOME to a directory of your own; cannot create directory /mnt/read-only/.local: "
                  "Read-only file system", {"HOME": "/mnt/read-only", runtime: "/mnt/read-only"}),
                 (" /mnt/open is writable by other users", {home: "/mnt/open"}), (" /mnt/open is writable by other users", {state: "/mnt/open"}),
                 (" /mnt/open is writable by other users", {home: "/mnt/open/inner"}),
                 (" /mnt/group must belong to this user and be writable by nobody else", {home: "/mnt/group"}),
                 ("", {runtime: "/mnt/open"})]  # the log has the reason then
        own = len(cases)
        with contextlib.suppress(OSError):  # in a user name space there is nobody else
            os.mkdir(f"/dev/shm/nerix-{os.geteuid()}")
            for theirs in ("/mnt/theirs", "/mnt/link", f"/dev/shm/nerix-{os.geteuid()}"):
                os.chown(theirs, 12345, 12345, follow_symlinks=False)
            cases += [(" /mnt/theirs belongs to another user", {name: "/mnt/theirs"}) for name in (home, state)]
            cases += [("", {runtime: "/mnt/theirs"}), (" /mnt/link belongs to another user", {home: "/mnt/link/home"})]
        for reason, variables in cases:
            with self.subTest(variables):
                run = self.run_program("--path", self.tree, env={**self.environment, **variables})
                if reason is None:
                    self.assert_right(run)
                else:
                    self.assertEqual(run.returncode, 1)
                    self.assertRegex(run.stdout, REPORT)
                    self.assertIn(reason.encode(), run.stderr)
        with open("/root/.local/state/nerix/log/main.log", encoding="utf-8") as log:
            self.assertEqual("volatile settings are kept in /root/.local/state/nerix: " in log.read(), len(cases) > own)

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_full_disks(self):
        for pages in range(1, 40, 4):
            self.mount("/mnt", "-o", f"size={pages * 4}k,mode=700")
            run = self.run_program("--path", self.tree, env={**self.environment, "NERIX_PLATFORM_HOME": "/mnt"})
            self.assertIn(run.returncode, (0, 1), pages)

    def setting_files(self):
        return glob.glob(f"{self.home}/settings*/*")

    def test_damaged_setting_is_reported_and_replaced_by_the_next_run(self):
        self.assert_right()
        self.assertEqual(len(self.setting_files()), 3)
        damages = {"cut": lambda file: os.truncate(file, 5), "longer": lambda file: write(file, b"x" * 100),
                   "huge": lambda file: make_hole(file, 1 << 40), "fifo": lambda file: (os.remove(file), os.mkfifo(file)),
                   "link": lambda file: (os.remove(file), os.symlink("/dev/zero", file))}
        for name, damage in damages.items():
            for file in self.setting_files():
                with self.subTest(name, file=file):
                    damage(file)
                    run = self.run_host("settings", "list")
                    self.assertEqual(run.stderr.decode(), f"NerixHost: settings store {file}: cannot list its settings: "
                                     "it is damaged; delete this file\n")
                    self.assertEqual(run.stdout.count(b"\n"), 2)  # the others
                    self.assertEqual(run.returncode, 2)
                    self.assertIn(b"there is no setting", self.run_host("settings", "get", "db/none").stderr)
                    self.assert_right()
                    self.assertEqual(self.settings()[:2], ("inactive", "100.0"))

    def test_settings_that_break_while_they_are_used_end_no_process_by_a_signal(self):
        chance = random.Random(22)
        with self.long_run("none") as run, \
                subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL) as watch:
            for _ in range(200):
                file = chance.choice(self.setting_files())
                with open(file, "r+b") as damaged:
                    damaged.seek(chance.randrange(os.path.getsize(file)))
                    damaged.write(bytes([chance.randrange(256)]))
                self.assertIn(self.run_host("settings", "list").returncode, (0, 2))
            self.assertIsNone(run.poll())
            run.terminate()
            self.assertEqual(run.wait(60), -signal.SIGTERM)
            self.assertIn(watch.wait(60), (0, 1, 2))

    def test_watch_finds_the_run_of_a_store_that_was_deleted_and_made_anew(self):
        self.assert_right()
        with subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.PIPE) as watch:
            watch.stdout.readline()
            subprocess.run(f"rm -r {self.home}/settings*", shell=True, check=True)
            time.sleep(0.2)
            write(os.path.join(self.tree, "c"))
            self.assert_right()
            last = watch.communicate(timeout=60)[0].splitlines()[-1]
        self.assertTrue(last.endswith(Model("md5").value(self.tree)[:8].encode()), last)

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_settings_of_a_read_only_store_are_listed(self):
        self.mount(self.home, "-o", "mode=700")
        self.assert_right()
        settings = self.settings()
        subprocess.run(["mount", "-o", "remount,ro", self.home], check=True)
        run = self.run_host("settings", "list")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        self.assertEqual(self.settings(), settings)

    def test_signals_fail_the_run_and_sigkill_is_detected(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGKILL):
            for method in ("md5", "none"):
                with subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.PIPE) as watch:
                    with self.long_run(method) as run:
                        next(line for line in watch.stdout if line.startswith(b"active"))
                        live = self.run_host("settings", "list")
                        run.send_signal(number)
                        run.send_signal(number)  # as timeout(1) does: counts as the same
                        self.assertEqual(run.wait(60), -number)
                    last = watch.communicate(timeout=60)[0].splitlines()[-1]
                self.assertIn(b"status = active\n", live.stdout)
                self.assertEqual(live.stderr, b"")
                self.assertEqual(watch.returncode, 1)
                dead = self.run_host("settings", "list").stderr.count(b"hashverifier_status was killed\n")
                objects = self.run_host("settings", "list", "--json").stdout.count(b',"killed":true}\n')
                self.assertEqual(objects, 2 * dead, "status and result")
                if number == signal.SIGKILL:
                    self.assertRegex(last, rb"^killed .* 00000111$")
                    self.assertEqual((self.settings()[::2], dead), (("active", "00000111"), 1))
                else:
                    self.assertRegex(last, rb"^inactive .* ERROR$")
                    self.assertEqual((self.settings()[::2], dead), (("inactive", "ERROR"), 0))
        self.assertIn(b"ended by signal 1", b"".join(self.log_lines("system")))

    def test_leased_file_is_waited_for_and_replaced_file_rejected(self):
        path = os.path.join(self.tree, "a")
        device = lambda: os.mknod(path, stat.S_IFCHR | 0o644, os.makedev(1, 5))
        cases = (None, lambda: os.symlink("/dev/zero", path), lambda: os.mkfifo(path), lambda: os.mkdir(path), device)
        for replace in cases:
            leased = os.open(path, os.O_RDWR | os.O_CREAT)
            os.write(leased, b"content")
            value = Model("md5").value(self.tree)

            def answer(*_, replace=replace, leased=leased):
                if replace:
                    os.remove(path)
                    with contextlib.suppress(PermissionError):  # a device, for an ordinary user
                        replace()
                time.sleep(0.1)
                fcntl.fcntl(leased, fcntl.F_SETLEASE, fcntl.F_UNLCK)

            before = signal.signal(signal.SIGIO, answer)
            try:
                fcntl.fcntl(leased, fcntl.F_SETLEASE, fcntl.F_WRLCK)
                run = self.run_program("--path", self.tree, timeout=60)
            except OSError as refusal:
                self.skipTest(f"leases: {refusal}")
            finally:
                signal.signal(signal.SIGIO, before)
                os.close(leased)
            if replace is None:
                self.assert_right(run)
            else:
                self.assertIn(run.stdout.decode(), ("ERROR\n", value + "\n"), "nothing but the file that was there is read")
                subprocess.run(["rm", "-rf", path], check=True)

    def hold_lease(self, path, action):
        """A process that holds a lease on the file and calls action, with the descriptor, when somebody wants to open it."""
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

    def test_lease_that_is_taken_again_keeps_no_run_waiting(self):
        def take_again(file):
            fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_UNLCK)
            while True:
                with contextlib.suppress(OSError):  # the run has the file open
                    return fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)

        self.hold_lease(os.path.join(self.tree, "a"), take_again)
        self.assert_right(self.run_program("--path", self.tree, timeout=30))

    def test_lease_is_waited_for_where_the_system_has_no_timer_left(self):
        def give_up(file):
            time.sleep(0.1)
            fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_UNLCK)

        self.hold_lease(os.path.join(self.tree, "a"), give_up)
        no_timers = lambda: resource.setrlimit(resource.RLIMIT_SIGPENDING, (0, 0))
        self.assert_right(self.run_program("--path", self.tree, timeout=30, preexec_fn=no_timers))

    def test_signal_ends_the_wait_for_a_lease(self):
        self.hold_lease(os.path.join(self.tree, "a"), lambda file: None)
        with subprocess.Popen([PROGRAM, "--path", self.tree], env=self.environment, stdout=subprocess.PIPE) as run:
            time.sleep(0.5)
            self.assertIsNone(run.poll())
            run.send_signal(signal.SIGTERM)
            self.assertEqual(run.wait(20), -signal.SIGTERM)
        self.assertEqual(self.settings()[::2], ("inactive", "ERROR"))

    @unittest.skipIf(SANITIZED, "a sanitizer needs memory and stacks of its own")
    def test_little_memory_and_small_stacks_end_no_process_by_a_signal(self):
        value = Model("md5").value(self.tree)
        for program, *words in ([PROGRAM, "--path", self.tree], [HOST, "scan", self.tree]):
            limits = [(resource.RLIMIT_AS, size << 20) for size in range(16, 48)]
            limits += [(resource.RLIMIT_STACK, size << 10) for size in (64, 128, 1024)]
            for which, size in limits:
                run = subprocess.run([program, *words], check=False, env=self.environment, capture_output=True, timeout=60,
                                     preexec_fn=lambda: resource.setrlimit(which, (size, size)))
                self.assertGreaterEqual(run.returncode, 0, (program, which, size, run.stderr))
            self.assertEqual(run.stdout.decode(), value + "\n")

    def test_configuration_of_the_crypto_library_does_not_matter(self):
        fifo, restricted = (os.path.join(self.work, name) for name in ("fifo", "restricted"))
        os.mkfifo(fifo)
        write(restricted, b"openssl_conf = main\n[main]\nproviders = only\n[only]\nnull = null\n[null]\nactivate = 1\n")
        for configuration in (fifo, restricted):
            self.assert_right(self.run_program("--path", self.tree, timeout=60,
                                               env={**self.environment, "OPENSSL_CONF": configuration}))

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_overlay_with_hidden_attributes(self):
        self.mount("/mnt")
        merge = "mkdir -p lower/inner upper work merged && echo lower >lower/inner/file && " \
                "mount -t overlay -o lowerdir=lower,upperdir=upper,workdir=work none merged && echo upper >>merged/inner/file"
        if subprocess.run(merge, shell=True, check=False, cwd="/mnt").returncode:
            self.skipTest("no overlay file systems on this machine")
        self.addCleanup(subprocess.run, ["umount", "/mnt/merged"], check=False)
        self.assertEqual(self.value("/mnt/merged"), Model("md5").value("/mnt/merged"))


if __name__ == "__main__":
    main()
