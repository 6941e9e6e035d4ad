"""NerixHost: scan, compare, error messages, progress bar."""

import ast
import contextlib
import fcntl
import json
import os
import pty
import random
import re
import shutil
import stat
import struct
import subprocess
import termios
import time
import unittest

import random_tree
from harness import HOST, NO_MOUNTS, PREFIX, SANITIZED, STRACE, SystemTest, main, make_hole, read, write
from tree_value import STEPS, Model


KINDS = {stat.S_IFREG: "file", stat.S_IFDIR: "directory", stat.S_IFLNK: "link"}


def facts(path):
    """Returns the facts that a record with details has about an entry, by name."""
    status = os.lstat(path)
    return {"kind": KINDS[stat.S_IFMT(status.st_mode)], "owner": str(status.st_uid), "group": str(status.st_gid),
            "links": str(status.st_nlink), "mode": f"{status.st_mode & 0o7777:04o}", "size": str(status.st_size)}


def walk_order(path):
    return [(0, name) for name in path.split(b"/")] + [(1, b"")]


NO_FACT = "content, attributes or target"  # what changed if no fact did


def differences(before, after, has_details):
    """Returns the expected lines of a comparison as (change, path, facts). Entries are values and facts by path."""
    lines = []
    for path in sorted(before.keys() | after.keys(), key=walk_order):
        is_explained = any(other.startswith(path + b"/") for _, other, _ in lines)
        old, new = before.get(path), after.get(path)
        if old is None or new is None:
            if not is_explained:
                lines.append(("removed" if old else "added", path, ""))
        elif old[0] != new[0]:
            changes = [f"{name} {old[1][name]} -> {new[1][name]}" for name in old[1] if old[1][name] != new[1][name]
                       and has_details and not (is_explained and name in ("links", "size"))]
            if changes or not is_explained:
                lines.append(("changed", path, ", ".join(changes) or (NO_FACT if has_details else "")))
    return lines


# Bytes that could control a terminal, and how they must be displayed.
ODD = "\u00e4\u20ac\u00a0&\u2026\u2069\u202a".encode() + b'\x1b[31m"\\\n\r\t\x7f\xff\x80\x80\xc2\x9b\x9b\x80'
SHOWN = "\u00e4\u20ac\u00a0&\u2026".encode() + \
    rb'\xe2\x81\xa9\xe2\x80\xaa\x1b[31m\"\\\n\r\t\x7f' + b"\xff\x80\x80" + rb"\xc2\x9b\x9b\x80"


def read_back(line):
    """Returns change, path and facts of one line of a comparison."""
    change, quoted, rest = re.fullmatch(r'(\w+) ("(?:[^"\\]|\\.)*")(?:: )?(.*)', line.decode("latin-1"), re.DOTALL).groups()
    return change, ast.literal_eval(quoted).encode("latin-1"), rest


def read_object(line):
    """Returns change, path and facts of one line of a comparison with --json."""
    told = json.loads(line)
    path = told["path"].encode() if isinstance(told["path"], str) else bytes(told["path"])
    facts_told = [f"{name} {fact['before']} -> {fact['after']}" for name, fact in told.get("facts", {}).items()]
    return told["change"], path, ", ".join(facts_told) or (NO_FACT if "facts" in told else "")


def rewrite(path):
    with open(path, "r+b") as file:
        file.write(b"!")


def relink(path):
    os.unlink(path)
    os.symlink("elsewhere", path)


# Possible changes to an entry. For links, only those that do not affect the target.
TO_FILES = (rewrite, lambda path: os.truncate(path, 13), lambda path: os.chmod(path, 0o4711), os.unlink,
            lambda path: os.setxattr(path, b"user.new", b"x"), lambda path: os.link(path, path[:99] + b"+"))
TO_ANY = (lambda path: os.rename(path, path[:99] + ODD), lambda path: os.lchown(path, 1234, -1))
TO_DIRECTORIES = (lambda path: os.mkdir(path + b"/added"), lambda path: os.chmod(path, 0o700), shutil.rmtree)


def change(tree, chance):
    for directory, directories, files in os.walk(tree, topdown=False):
        for name in directories + files:
            path = os.path.join(directory, name)
            actions = (relink,) if os.path.islink(path) else TO_DIRECTORIES if os.path.isdir(path) else TO_FILES
            if chance.random() < 0.3:
                with contextlib.suppress(OSError):  # this user, or this kind of entry, does not allow it
                    chance.choice(actions + TO_ANY)(path)


class Host(SystemTest):
    def setUp(self):
        super().setUp()
        if not NO_MOUNTS:
            self.mount(self.work)  # in memory a directory's size changes with its entries
        self.tree = os.path.join(os.fsencode(os.path.realpath(self.work)), b"tree")
        os.mkdir(self.tree)
        self.logs = [os.path.join(self.work, name) for name in ("before.log", "after.log")]

    def entries(self):
        """Returns the tree by the reference model: value and facts by path, in the order of the walk."""
        model = Model("md5")
        self.tree_value = model.value(self.tree)
        self.records = model.record_lines()
        return {path: (value, facts(path)) for value, path in model.records}

    def scan(self, log, *options):
        run = self.run_host("scan", self.tree, "--log", log, *options)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return run.stdout.decode().strip()

    def compare(self, before, after, *options, status=1):
        run = self.run_host("compare", before, after, *options)
        self.assertEqual((run.returncode, run.stderr), (status, b""))
        return run.stdout.splitlines()

    def test_scan_prints_the_value_and_leaves_only_a_log_of_all_records(self):
        random_tree.make(self.tree, random.Random(15), entries=19)
        entries = self.entries()
        details = [b" " + " ".join(known.values()).encode() for _, known in entries.values()]
        for options, behind in ((("--quiet",), [b""] * len(entries)), (("--details",), details)):
            self.assertEqual(self.scan(self.logs[0], *options), self.tree_value)
            self.assertEqual(read(self.logs[0]), b"".join(map(b"%b%b\n".__mod__, zip(self.records, behind))))
            self.assertEqual(self.compare(self.logs[0], self.logs[0], status=0), [])
        self.assertEqual(os.listdir(self.home), [])
        self.assertEqual(sorted(os.listdir(self.work)), ["before.log", "tree"])

    def test_scan_of_many_entries_prints_only_the_value(self):
        for number in range(2000):
            write(os.path.join(self.tree, b"%d" % number))
        self.entries()
        for options in ((), ("--expect", self.tree_value), ("--expect", self.tree_value.upper())):
            run = self.run_host("scan", self.tree, *options)
            self.assertEqual((run.returncode, run.stdout.decode()), (0, self.tree_value + "\n"), options)

    def test_scan_with_the_log_on_standard_output_prints_the_value_on_standard_error(self):
        self.entries()
        run = self.run_host("scan", self.tree, "--log", "-", "-q", "-q")
        self.assertEqual((run.stdout.splitlines(), run.stderr.decode()), (self.records, self.tree_value + "\n"))

    def test_compare_lists_every_change_of_a_tree(self):
        seen = set()
        for seed in range(25):
            with self.subTest(seed=seed):
                shutil.rmtree(self.tree)
                os.mkdir(self.tree)
                random_tree.make(self.tree, random.Random(seed), entries=16)
                states = []
                for log in self.logs:
                    states.append(self.entries())
                    self.scan(log)
                    self.scan(log + ".details", "--details")
                    change(self.tree, random.Random(seed))
                plain, detailed = (differences(*states, has_details) for has_details in (False, True))
                lines = self.compare(*self.logs)
                self.assertEqual([read_back(line) for line in lines], plain)
                escaped = [read_back(line)[1] for line in lines if SHOWN in line]
                self.assertEqual(escaped, [path for _, path, _ in plain if ODD in path])
                details = [log + ".details" for log in self.logs]
                self.assertEqual([read_back(line) for line in self.compare(*details)], detailed)
                self.assertEqual([read_object(line) for line in self.compare(*details, "--json")], detailed)
                seen.update(re.sub(r"[\d.]+|: .*", "", words) for _, _, rest in detailed for words in rest.split(", "))
        self.assertGreaterEqual(len(seen), 6, f"the trees have too few kinds of change: {seen}")

    def assert_fails(self, status, cases):
        """Compares exit status and first error line of NerixHost. A case has the arguments and the line."""
        for arguments, reason in cases:
            with self.subTest(arguments):
                run = self.run_unprivileged(*arguments, program=HOST)
                self.assertEqual((run.returncode, run.stderr.decode().split("\n")[0]), (status, "NerixHost: " + reason))
        self.assertEqual(os.listdir(self.work), ["tree"], "a log was left")

    def test_scan_reports_why_it_failed_and_leaves_no_log(self):
        os.mkdir(self.tree + b"/sub")
        os.mknod(self.tree + b"/sub/\x1bsecret", 0)
        os.makedirs(self.tree + b"/z/inner")
        os.chmod(self.tree + b"/z", 0o600)
        tree = self.tree.decode()
        inside = os.path.join(tree, "sub", "log")
        self.assert_fails(1, (
            (["scan", tree, "--log", self.logs[0]], f'cannot read "{tree}/sub/\\x1bsecret": Permission denied'),
            (["scan", tree + "/z"], f'cannot examine "{tree}/z/inner": Permission denied'),
            (["scan", "/nowhere"], 'cannot read "/nowhere": No such file or directory'),
            (["scan", tree, "--log", inside], f'the log "{inside}" is inside the tree to be scanned '
             f'and would change its value; put it outside "{tree}"'),
            (["scan", tree, "--log", "/nowhere/log"], 'cannot write "/nowhere/log": No such file or directory'),
            (["scan", tree, "--log", "/dev/null"], 'cannot write "/dev/null": not a regular file'),
            (["scan", tree, "--log", "/dev/stdout"],
             'cannot write "/dev/stdout": not a regular file; use --log - for standard output'),
            (["scan", "/dev/null", "--expect", "000000000000000A"], "the value is 0000000000000000, not 000000000000000a"),
        ))

    def test_host_rejects_wrong_arguments(self):
        tree = self.tree.decode()
        self.assert_fails(2, (
            (["scan", "/dev/null", "--expect", "1"], "'1' is not a value: expected 16 hexadecimal digits"),
            (["scan", "/dev/null", "--expect", "000000000000000g"],
             "'000000000000000g' is not a value: expected 16 hexadecimal digits"),
            (["scan", tree, "-H", "md6"], "unknown hash method 'md6'; did you mean 'md5'?"),
            (["scan", tree, "-H", "\x1b[31m"], rf"unknown hash method '\x1b[31m'; known methods: {' '.join(STEPS)}"),
            (["scna"], "unknown command 'scna'; did you mean 'scan'?"),
            (["scan", tree, "--lgo", "x"], "unknown option '--lgo'; did you mean '--log'?"),
            (["settings", "wacth"], "unknown action 'wacth'; did you mean 'watch'?"),
            (["scan"], "missing argument PATH"),
            (["settings", "get"], "missing argument KEY"),
            (["scan", tree, "--details"], "--details needs --log"),
            (["scan", tree, "--log", ""], "--log needs a file name"),
            (["scan", ""], "PATH is empty"),
            (["compare", "a"], "missing argument AFTER"),
            (["compare", "/\x1bnowhere", "/nowhere"], r"/\x1bnowhere: No such file or directory"),
        ))

    def test_settings_get_reports_an_unknown_key(self):
        self.assert_fails(1, (
            (["settings", "get", f"memori{PREFIX}stats"],
             f"there is no setting 'memori{PREFIX}stats'; did you mean 'memory/{PREFIX}status'?"),
            (["settings", "get", "nothing/alike"], "there is no setting 'nothing/alike'"),
            (["settings", "get", "progress"], f"there is no setting 'progress'; did you mean 'memory/{PREFIX}progress'?"),
        ))

    @unittest.skipIf(SANITIZED or not shutil.which("strace"), "needs strace, and a program without a sanitizer's own calls")
    def test_scan_gives_no_value_of_a_file_that_cannot_be_read_to_its_end(self):
        file = self.tree + b"/file"
        write(file, bytes(300_000))
        run = self.run_command(*STRACE, "-P", file, "-e", "inject=read:error=EIO:when=2", HOST, "scan", self.tree,
                               "--log", self.logs[0])
        self.assertEqual(run.stderr, b'NerixHost: cannot read "%b": Input/output error\n' % file)
        self.assertEqual((run.returncode, run.stdout), (2, b""))
        self.assertEqual(os.listdir(self.work), ["tree"])

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_rejects_a_log_in_the_tree_under_another_name(self):
        os.makedirs(self.tree + b"/sub/inner")
        value = self.scan(self.logs[0])
        for place, bound in (("/mnt/tree", b""), ("/mnt/sub dir", b"/sub"), ("/mnt/inner", b"/sub/inner")):
            with self.subTest(place):
                self.mount(place, self.tree + bound, kind="bind")
                run = self.run_host("scan", self.tree, "--log", place + "/log")
                self.assertEqual((run.returncode, run.stdout), (1, b""))
                self.assertIn(b"is inside the tree to be scanned", run.stderr)
        self.assertEqual(self.scan(self.logs[0]), value, "a log was left in the tree")

    def test_scan_rejects_a_log_that_has_other_hard_links(self):
        log = self.work + "/other name"
        write(self.tree + b"/file")
        os.link(self.tree + b"/file", log)
        run = self.run_host("scan", self.tree, "--log", log)
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertIn(b"has other hard links, which may be inside the tree", run.stderr)
        self.assertEqual(os.path.getsize(log), 0, "size of the log")

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_writes_a_log_whose_path_leads_out_of_the_tree(self):
        inner = self.tree + b"/inner"
        self.mount(inner, self.work, kind="bind")
        self.scan(inner + b"/before.log")
        self.scan(self.logs[1])
        self.assertEqual(self.compare(*self.logs, status=0), [])

    def test_scan_keeps_owner_and_mode_of_its_log(self):
        write(self.logs[0])
        os.chmod(self.logs[0], 0o640)
        if os.geteuid() == 0:
            os.chown(self.logs[0], 12, 34)
        kept = lambda status: (status.st_mode, status.st_uid, status.st_gid)
        before = kept(os.stat(self.logs[0]))
        self.scan(self.logs[0])
        self.assertEqual(kept(os.stat(self.logs[0])), before)

    def test_scan_writes_a_log_of_any_name(self):
        write(self.tree + b"/file")
        self.assertEqual(self.run_host("scan", self.tree + b"/file", "--log", self.logs[1]).returncode, 0, "log of a file")
        for number in range(70_000, 70_010):  # a name for the partial log that somebody guessed
            os.makedirs(f"{self.logs[0]}.part-{number}")
        for log in (self.logs[0], os.path.join(self.work, "l" * 255)):
            self.scan(log)
            self.assertEqual(stat.S_IMODE(os.stat(log).st_mode), 0o644)

    def test_scan_removes_the_partial_log_of_a_killed_scan(self):
        make_hole(self.tree + b"/long", 1 << 40)
        with subprocess.Popen([HOST, "scan", self.tree, "--log", self.logs[0], "-q"], env=self.environment) as scan:
            while len(os.listdir(self.work)) == 1:
                self.assertIsNone(scan.poll())
            time.sleep(0.1)
            other = self.run_command("timeout", "0.5", HOST, "scan", self.tree, "--log", self.logs[0], "-q")
            self.assertEqual(other.returncode, 124)
            self.assertEqual(len(os.listdir(self.work)), 2, "the partial log of the running scan was removed")
            scan.kill()
        os.unlink(self.tree + b"/long")
        self.scan(self.logs[0])
        self.assertEqual(sorted(os.listdir(self.work)), ["before.log", "tree"])

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_leaves_no_log_that_does_not_fit(self):
        for number in range(100):
            os.mkdir(self.tree + b"/%d" % number)
        self.mount("/mnt/small", "-o", "size=4k")
        run = self.run_host("scan", self.tree, "--log", "/mnt/small/log")
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertEqual(run.stderr, b'NerixHost: cannot write "/mnt/small/log": No space left on device\n')
        self.assertEqual(os.listdir("/mnt/small"), [])

    def test_compare_reads_system_logs_and_pipes(self):
        long = self.tree + b"/" + b"/".join((b"\\\n\x1b" + b'"e&' * 60, *(b"\n" * 250 for _ in range(4))))
        os.makedirs(long)
        system = os.path.join(self.home, "log", "main.log")
        self.value(self.tree)
        shutil.copy(system, self.logs[0])
        self.scan(self.logs[1])
        self.assertEqual(self.compare(*self.logs, status=0), [])
        text = read(system)
        write(self.logs[0], text + text)  # simulates logs of two containers whose thread ids coincide
        self.assertEqual(self.compare(*self.logs, status=0), [])
        os.mkdir(long + b"/new")
        self.value(self.tree)
        lines = self.compare(self.logs[1], system)
        self.assertEqual([read_back(line) for line in lines], [("added", long + b"/new", "")])
        through_pipe = self.run_command("bash", "-c", f"{HOST} compare <(cat {self.logs[1]}) <(cat {system})")
        self.assertEqual((through_pipe.returncode, through_pipe.stdout.splitlines()), (1, lines))
        write(self.logs[0], text[:text.index(b"\n", text.index(b"HashWorker.cpp")) + 1])
        self.assert_rejected(self.logs[1], self.logs[0], "its last record is not terminated\n")

    def test_compare_reads_logs_of_a_whole_system(self):
        for log, value in zip(self.logs, (1, 2)):
            write(log, b'%016x "/a/b"\n%016x "/a"\n%016x "/"\n' % (value, value, value))
        self.assertEqual(self.compare(*self.logs), [b'changed "/a/b"'])

    def assert_rejected(self, before, after, reason):
        run = self.run_host("compare", before, after)
        self.assertRegex(run.stderr.decode(), reason)
        self.assertEqual((run.returncode, run.stdout), (2, b""))

    def test_compare_rejects_damaged_and_incomplete_logs(self):
        os.makedirs(self.tree + b"/a/b")
        self.value(self.tree)
        system = "".join(line.decode() + "\n" for line in self.log_lines("main"))
        self.scan(self.logs[1], "--details")
        details = read(self.logs[1]).decode()
        self.scan(self.logs[0])
        text = read(self.logs[0]).decode()
        lines = text.splitlines(keepends=True)
        cases = {
            "empty": ("", "is not a scan log"),
            "other text": ("nonsense\n", "is not a scan log"),
            "one record": (lines[0], "the logs are of different trees"),
            "no root": ("".join(lines[:-2]) + lines[0].replace("/a/b", "/c"),
                        "is incomplete: it does not end with the root of the tree"),
            "cut in the last record": (text[:-2], "its last record is not terminated\n"),
            "no line feed at the end": (text[:-1], "its last record is not terminated\n"),
            "twice": (text + text, "line 4 is out of order"),
            "text after the end": (text + "junk\n", "line 4 is not a scan record"),
            "lines end as on other systems": (text.replace("\n", "\r\n"), "line 1 is damaged"),
            "text after a record": (text.replace('b"', 'b" x', 1), "line 1 is damaged"),
            "unknown pair": (text.replace("/a/b", "/a/&b"), "line 1 is damaged"),
            "long path": (text.replace("/a/b", "/a/" + "b" * 5000), "line 1 is damaged"),
            "begin of a system log rotated away": (system[system.index("[INF] HashWorker"):].split("\n", 1)[1],
                                                   "is incomplete: records"),
            "record of a system log lost": (re.sub(r".*/a\"\n", "", system), "is incomplete: records"),
            "other tree": (text.replace("/tree", "/wood"), "the logs are of different trees"),
            "some records without details": (details.split(" directory", 1)[0] + "\n" + details.split("\n", 1)[1],
                                             "line 2 has details"),
            "some records with details": (lines[0] + details.split("\n", 1)[1], "line 2 has details"),
        }
        for wrong in ("dir", "directory -1", "directory 01", "directory 0 4294967296", "directory 0 0 2 755",
                      "directory 0 0 2 0789", "directory 0 0 2 0755 x", "directory 0 0 2 0755 1 1",
                      "directory  0 0 2 0755 1", "directory\x1b[31m"):
            cases["details " + wrong] = (re.sub(" directory.*", " " + wrong, details, count=1), "line 1 is damaged")
        for name, (content, reason) in cases.items():
            with self.subTest(name):
                write(self.logs[1], content.encode())
                self.assert_rejected(self.logs[0], self.logs[1], reason)
        last_line = details.rindex("\n", 0, -1) + 1
        for end in range(last_line + 1, len(details)):
            with self.subTest("details cut", last_line=details[last_line:end]):
                write(self.logs[1], details[:end].encode())
                self.assert_rejected(self.logs[1], self.logs[1], "line 3 is (damaged|not a scan record)|is not terminated")

    def test_compare_of_logs_without_lines_takes_no_memory(self):
        make_hole(self.logs[0], 3 << 30)
        limit = "" if SANITIZED else "ulimit -v 200000;"
        run = self.run_command("bash", "-c", f"{limit} exec {HOST} compare {self.logs[0]} {self.logs[0]}")
        self.assertEqual(run.returncode, 2)
        self.assertIn(b"before.log: line 1 is longer than any scan record\n", run.stderr)

    def test_compare_rejects_a_log_from_a_pipe_that_cannot_be_copied(self):
        for number in range(200):
            os.mkdir(self.tree + b"/%d" % number)
        self.scan(self.logs[0])
        log = f"<(cat {self.logs[0]})"
        run = self.run_command("bash", "-c", f"ulimit -f 4; exec {HOST} compare {log} {log}")
        self.assertEqual(run.returncode, 2)
        self.assertIn(b": cannot be copied: File too large\n", run.stderr)

    def on_terminal(self, columns, *arguments):
        """Returns what NerixHost writes to a terminal of that width."""
        terminal, side = pty.openpty()
        fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        with subprocess.Popen([HOST, *arguments], env={**self.environment, "TERM": "xterm"}, stderr=side,
                              stdout=subprocess.DEVNULL) as run:
            os.close(side)
            text = b""
            with contextlib.suppress(OSError):  # read fails when no process has the terminal open
                while piece := os.read(terminal, 65536):
                    text += piece
        os.close(terminal)
        self.assertEqual(run.returncode, 0)
        return text.decode()

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_shows_a_bar_that_moves_and_fits_the_terminal(self):
        write(self.tree + b"/a", bytes(20 << 20))
        write(self.tree + b"/b", bytes(300 << 20))  # helpers begin it early, so it soon determines the progress
        end = "\x1b[K"
        for columns, bar_widths in ((12, []), (40, [16]), (80, [40]), (200, [40])):
            with self.subTest(columns=columns):
                frames = self.on_terminal(columns, "scan", self.tree).split("\r")[1:]
                self.assertEqual(frames.pop(), end, "the last frame")
                percents = [float(frame.split("%")[0]) for frame in frames]
                self.assertNotEqual([percent for percent in percents if 15 < percent < 60], [], f"none of {percents}")
                for frame in frames:
                    bar = r" \[#* *\] \d+ entries \d+:\d\d" if bar_widths else ""
                    self.assertRegex(frame, rf"\A *\d+\.\d\d? %{bar}{re.escape(end)}\Z")
                    self.assertEqual([len(bar) for bar in re.findall(r"\[#* *\]", frame)], bar_widths, frame)
                    self.assertLess(len(frame) - len(end), columns, frame)
        self.assertEqual(self.on_terminal(80, "scan", self.tree, "--quiet"), "", "with --quiet")


if __name__ == "__main__":
    main()
