"""Any number of threads gives the same run: value, records, progress, reports of failures."""

import contextlib
import glob
import itertools
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import time
import unittest

from harness import BUILD, NO_MOUNTS, PROGRAM, REPORT, SANITIZED, SystemTest, main, make_hole, read, write
from tree_value import STEPS, Model
import random_tree

ALL = os.environ.get("NERIX_ALL_FAULTS") == "1"
TREES = 200 if ALL else 25
REPEATS = 10 if ALL else 2
THREADS = (1, 2, 3, 8)
# Parts of a log line that differ between identical runs: the time, the thread id, the record number, an address.
CHANGING = re.compile(rb"^\S+ |\]\[\d+ [^]]+\]|\[\d+\](?=\[[A-Z])|0x[0-9a-f]+|thread id [0-9a-f]+")


class Progress(Model):
    """Also lists the progress that a run publishes while it scans a whole file system."""

    def __init__(self, method, root):
        super().__init__(method)
        if method not in ("none", "trivial"):  # they report no steps
            self.apply, self.step = self.step, self.reported_step
        system = os.statvfs(root)
        self.block, self.total = system.f_bsize, (system.f_blocks - system.f_bfree) * system.f_bsize
        self.finished = self.published = 0
        self.current = 0  # bytes of the steps since the last entry was finished
        self.texts = []

    def reported_step(self, value, data):
        self.current += len(data)
        self.publish()
        return self.apply(value, data)

    def _entry(self, path):
        value = super()._entry(path)
        self.finished += -(-os.lstat(path).st_size // self.block) * self.block
        self.current = 0
        self.publish()
        return value

    def publish(self):
        done = self.finished + self.current
        if not 0 <= done - self.published <= 1 << 20:
            self.published = done
            self.texts.append(f"{min(done * 100 / self.total / 1.4, 99.99):.2f}")  # see Progress::text


@unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
class Threads(SystemTest):
    def everything_of(self, run):
        """Returns standard output and both logs, without the parts that differ between identical runs."""
        logs = [CHANGING.sub(b"", line) for buffer in ("main", "system") for line in self.log_lines(buffer)]
        shutil.rmtree(os.path.join(self.home, "log"))
        return run.stdout, [line for line in logs if b"hashVerifierThreads" not in line]

    def assert_same_with_any_number(self, run):
        expected = None
        for threads in THREADS:
            self.use_threads(threads)
            for _ in range(1 if threads == 1 else REPEATS):
                found = self.everything_of(run())
                expected = expected or found
                self.assertEqual(found, expected, f"{threads} threads")
        return expected

    def test_random_trees(self):
        for number in range(TREES):
            with self.subTest(tree=number):
                tree = os.fsencode(os.path.join(self.work, str(number)))
                os.mkdir(tree)
                random_tree.make(tree, random.Random(number), entries=19)
                value = Model("md5").value(tree)
                output, _ = self.assert_same_with_any_number(lambda: self.run_program("--path", tree))
                self.assertEqual(output.decode().strip(), value)

    def test_progress_agrees_with_the_model(self):
        self.mount(self.work)
        make_hole(os.path.join(self.work, "0"), (1 << 20) - 4095)  # counts as 1 MiB; only more than that is published
        make_hole(os.path.join(self.work, "1"), 1 << 20)  # its steps have more bytes: the progress falls at its end
        os.mkdir(os.path.join(self.work, "a"))
        os.setxattr(os.path.join(self.work, "a"), "user.name", bytes(50_000))
        for name in ("0", "00"):
            make_hole(os.path.join(self.work, "a", name), (1 << 20) - 8192)
        for number in range(1, 900):  # the step over the values of "a" is published
            write(os.path.join(self.work, "a", str(number)))
        write(os.path.join(self.work, "b"), bytes(7 << 20))
        trace = os.path.join(self.home, "trace")
        for method, threads in itertools.product(STEPS, THREADS):
            model = Progress(method, self.work)
            model.value(self.work)
            self.use_threads(threads)
            self.run_strace("-s", "200", "-o", trace, "-e", "trace=write", PROGRAM, "--path", self.work, "--hash", method)
            published = re.findall(r'\\(?:000|0)(\d+\.\d+)"', read(trace).decode())
            self.assertEqual(published, ["0.0", *model.texts, "100.0"], f"{method}, {threads} threads")

    def test_directory_with_more_names_than_are_read_ahead(self):
        make_hole(os.path.join(self.work, "a"), 64 << 20)  # keeps the worker busy
        for name, files in (("b", 16385), ("c", 9000)):  # the entries of c fill the queue before those of b are taken
            os.mkdir(os.path.join(self.work, name))
            for number in range(files):
                write(os.path.join(self.work, name, str(number)))
        value = Model("md5").value(self.work)
        for threads in (1, 4):
            self.use_threads(threads)
            self.assertEqual(self.run_program("--path", self.work).stdout.decode().strip(), value, f"{threads} threads")

    def test_entry_that_cannot_be_read_at_every_position(self):
        files = []
        for place in ("a", "a/b", "a/b/c", "a/d", "e"):
            os.mkdir(os.path.join(self.work, place))
            for name in ("1", "b1", "z"):
                files.append(os.path.join(self.work, place, name))
                write(files[-1], b"x" * 5000)
        for unreadable in [*files, os.path.join(self.work, "a/b"), os.path.join(self.work, "e")]:
            mode = os.stat(unreadable).st_mode
            os.chmod(unreadable, 0)
            with self.subTest(unreadable):
                output, lines = self.assert_same_with_any_number(lambda: self.run_unprivileged("--path", self.work))
                self.assertEqual(output, b"ERROR\n")
                depth = unreadable.count("/") - self.work.count("/")
                failures = [line for line in lines if b">Exception when scanning filesystem: " in line]
                self.assertEqual(len(failures), depth, f"one record per level: {failures}")
                # The context lines of the failure; if the exception cannot carry them, one log record per level.
                trail = b"".join(line for line in lines if b"[ERR]" not in line)
                self.assertEqual(trail.count(b" Nerix::FileScanners::Directory::process("), depth, trail)
            os.chmod(unreadable, mode)

    def test_thread_count_setting(self):
        for number in range(16):
            make_hole(os.path.join(self.work, str(number)), 16 << 20)
        for count in (1, 3, 8):
            self.use_threads(count)
            most, busy = 0, set()
            with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment, stdout=subprocess.DEVNULL) as run:
                while run.poll() is None:
                    tasks = os.listdir(f"/proc/{run.pid}/task")
                    most = max(most, len(tasks))
                    with contextlib.suppress(OSError):  # a thread may have ended by now
                        busy.update(task for task in tasks if int(read(f"/proc/{run.pid}/task/{task}/stat").split()[13]))
            self.assertGreaterEqual(len(busy - {str(run.pid)}), min(count, 2), f"busy threads of {count}")
            others = 3 if BUILD.endswith("tsan") else 2  # the main thread, the log thread and the sanitizer's own
            self.assertEqual(most, count + others, f"threads of a run that scans with {count}")

    @unittest.skipIf(SANITIZED, "a sanitizer needs descriptors and memory of its own")
    def test_low_memory_and_descriptor_limits(self):
        for number in range(60):  # large, so that progress is published while helpers have files open
            make_hole(os.path.join(self.work, f"{number}"), 1 << 20)
        expected = Model("md5").value(self.work)
        self.use_threads(8)
        limits = [(resource.RLIMIT_NOFILE, limit) for limit in range(12, 40, 4)]
        limits += [(resource.RLIMIT_AS, limit << 20) for limit in range(36, 66, 2)]
        for which, limit in limits:
            value = self.value(self.work, preexec_fn=lambda: resource.setrlimit(which, (limit, limit)))
            self.assertEqual(value, expected, (which, limit))

    def test_killed_at_a_random_moment(self):
        for number in range(50):
            make_hole(os.path.join(self.work, f"{number:02}"), 4 << 20)
        expected = {method: Model(method).value(self.work) for method in ("md5", "none", "trivial")}
        self.use_threads(8)
        chance = random.Random(1)
        for method, number in itertools.product(tuple(expected) * (20 if ALL else 5), (signal.SIGTERM, signal.SIGKILL)):
            with subprocess.Popen([PROGRAM, "--path", self.work, "--hash", method], env=self.environment,
                                  stdout=subprocess.PIPE) as run:
                time.sleep(chance.uniform(0, 0.4))
                run.send_signal(number)
                output = run.communicate(timeout=60)[0]
            if output and output != b"ERROR\n":  # the signal came after the end of the scan
                self.assertEqual(output.decode(), expected[method] + "\n", method)
                self.assert_published(status="inactive", progress="100.0")
            elif output:
                self.assertEqual(run.returncode, -signal.SIGTERM)
                self.assert_published(status="inactive", result="ERROR")
        self.assertEqual(self.value(self.work), expected["md5"])

    def run_with_failing_calls(self, fault, entries):
        """Returns the output of a run in which the fourth such call of each thread on one of the entries fails."""
        scope = [word for entry in entries for word in ("-P", entry)]
        return self.run_strace(*scope, "-e", f"inject={fault}:when=4", PROGRAM, "--path", self.work).stdout

    def test_call_that_fails_once_fails_the_run_with_any_number_of_threads(self):
        entries = [os.path.join(self.work, str(number)) for number in range(60)]
        for file, link, directory in zip(entries[::3], entries[1::3], entries[2::3]):
            write(file)
            os.setxattr(file, "user.name", b"value")
            os.symlink("target", link)
            os.mkdir(directory)
        expected = Model("md5").value(self.work).encode() + b"\n"
        for fault in ("openat:error=EACCES", "lgetxattr:retval=7", "llistxattr:error=EIO", "readlink:error=EIO",
                      "newfstatat:error=ENOENT"):
            for threads in (1, 4):
                self.use_threads(threads)
                self.assertEqual(self.run_with_failing_calls(fault, entries), b"ERROR\n", f"{fault} with {threads} threads")
        self.use_threads(4)
        for fault in ("openat:error=EMFILE", "openat:error=ENFILE", "llistxattr:error=ENOMEM", "getdents64:error=ENOMEM"):
            self.assertEqual(self.run_with_failing_calls(fault, entries), expected, f"{fault}: no second try")

    def run_traced(self, root, paths, *options):
        """Returns the output and the trace of the calls on these paths that open or rename."""
        trace = os.path.join(self.home, "trace")
        scope = [word for path in paths for word in ("-P", path)]
        run = self.run_strace("-o", trace, *scope, "-e", "trace=openat,rename,renameat2", *options, PROGRAM, "--path", root)
        return run.stdout, read(trace)

    def run_with_a_second_try(self, root, entry, *paths):
        """Returns the same of a run that examines the entry in front twice, the second time without helpers.

        The first open of each thread fails. So a second try takes place if a helper opens the entry before the worker.
        """
        for _ in range(200):
            output, trace = self.run_traced(root, (entry, *paths), "-e", "inject=openat:error=EMFILE:when=1")
            if trace.count(b"INJECTED") == 2:
                return output, trace
        self.fail("no helper has opened the entry before the worker")

    def test_content_that_a_stop_has_cut_short_is_read_again(self):
        front = os.path.join(self.work, "0")
        write(front)
        for number in range(1, 30):
            make_hole(os.path.join(self.work, f"{number:02}"), 4 << 20)
        self.use_threads(3)
        output, _ = self.run_with_a_second_try(self.work, front)
        self.assertEqual(output.decode(), Model("md5").value(self.work) + "\n")

    def test_steps_of_a_second_try_are_no_progress(self):
        root = os.path.join(self.work, *(["d" * 250] * 15))  # two steps over such a path are more than a block
        os.makedirs(root)
        for name, size in (("0", 1), ("1", (1 << 20) - 8192), ("2", 1)):  # a block less than a report before "2"
            make_hole(os.path.join(root, name), size)
        self.use_threads(3)
        progress, = glob.glob(f"{self.home}/settings-volatile*/*progress")
        _, plain = self.run_traced(root, [progress])
        _, trace = self.run_with_a_second_try(root, os.path.join(root, "2"), progress)
        self.assertEqual(trace.count(b"rename"), plain.count(b"rename"), "reports of the progress")

    def test_failure_ends_a_run_whose_helpers_read_long_files(self):
        unreadable = os.path.join(self.work, "a")
        write(unreadable)
        os.chmod(unreadable, 0)
        for number in range(8):
            make_hole(os.path.join(self.work, f"long {number}"), 1 << 40)
        self.use_threads(3)
        self.assertEqual(self.run_unprivileged("--path", self.work).stdout, b"ERROR\n")

    def test_calls_that_fail_in_any_thread(self):
        random_tree.make(os.fsencode(self.work), random.Random(3), entries=19)
        expected = Model("md5").value(self.work).encode()
        self.use_threads(3)
        calls = ("newfstatat", "openat", "read", "llistxattr", "lgetxattr", "getdents64", "clone3", "mmap")
        for call in calls:
            first = 2 if call == "mmap" else 1  # the first mmap belongs to the dynamic loader, which crashes if it fails
            for when in (range(first, 60) if ALL else (first, 2, 3, 7, 20, 40)):
                # strace counts the calls of each thread separately.
                run = self.run_strace("-e", f"trace={call}", "-e", f"inject={call}:error=ENOMEM:when={when}", PROGRAM,
                                      "--path", self.work, timeout=60)
                value = b"[0-9a-f]{16}" if call == "read" else expected  # a read error ends the content
                outputs = {0: rb"\A(%b|ERROR)\n\Z" % value, 1: REPORT, 127: rb"\A\Z"}  # 127 is the dynamic loader's
                self.assertIn(run.returncode, outputs, f"{call} {when}")
                self.assertRegex(run.stdout, outputs[run.returncode], f"{call} {when}")


if __name__ == "__main__":
    main()
