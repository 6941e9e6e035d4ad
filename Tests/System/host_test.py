"""What people do with NerixHost: scan a tree, compare scans, read why one failed, watch a bar."""

import ast
import fcntl
import json
import os
import pty
import random
import re
import shutil
import struct
import subprocess
import termios
import unittest

import random_tree
from harness import HOST, NO_MOUNTS, SystemTest, main
from tree_value import Model


def facts(path):
    """What a record with details says of an entry, by another road than the program's."""
    kinds = {"regular file": "file", "regular empty file": "file", "directory": "directory", "symbolic link": "link"}
    kind, *rest = subprocess.run(["stat", "--printf", "%F|%u|%g|%h|%a|%s", path], check=True, capture_output=True,
                                 text=True).stdout.split("|")
    rest[3] = rest[3].zfill(4)
    return " ".join((kinds[kind], *rest)).encode()


def walk_order(path):
    return [(0, name) for name in path.split(b"/")] + [(1, b"")]


def differences(before, after):
    """Change and path of each difference that no other one below it explains, in the order of the walk."""
    old, new = ({path: value for value, path in records} for records in (before, after))
    changes = {path: "removed" if path not in new else "added" if path not in old else "changed"
               for path in old.keys() | new.keys() if old.get(path) != new.get(path)}
    return [(changes[path], path) for path in sorted(changes, key=walk_order)
            if not any(other.startswith(path + b"/") for other in changes)]


def read_back(line):
    """Change, path and the rest of one line of a comparison."""
    change, quoted, rest = re.fullmatch(r'(\w+) ("(?:[^"\\]|\\.)*")(.*)', line.decode("latin-1"), re.DOTALL).groups()
    return change, ast.literal_eval(quoted).encode("latin-1"), rest


class Host(SystemTest):
    def setUp(self):
        super().setUp()
        self.tree = os.path.join(os.fsencode(os.path.realpath(self.work)), b"tree")
        os.mkdir(self.tree)
        self.logs = [os.path.join(self.work, name) for name in ("before.log", "after.log")]

    def records(self):
        model = Model("md5")
        self.tree_value = model.value(self.tree)
        return model

    def scan(self, log, *options):
        run = self.run_host("scan", self.tree, "--log", log, *options)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return run.stdout.decode().strip()

    def compare(self, before, after, *options, status=1):
        run = self.run_host("compare", before, after, *options)
        self.assertEqual((run.returncode, run.stderr), (status, b""))
        return run.stdout.splitlines()

    def test_scan_gives_the_value_and_all_records_and_leaves_nothing(self):
        random_tree.make(self.tree, random.Random(15), entries=19)
        model = self.records()
        for options, behind in ((("--quiet",), lambda path: b""), (("--details",), lambda path: b" " + facts(path))):
            self.assertEqual(self.scan(self.logs[0], *options), self.tree_value)
            with open(self.logs[0], "rb") as log:
                wanted = [record + behind(path) for record, (_, path) in zip(model.record_lines(), model.records)]
                self.assertEqual(log.read(), b"\n".join(wanted) + b"\n")
        self.assertEqual(os.listdir(self.home), [])
        self.assertEqual(sorted(os.listdir(self.work)), ["before.log", "tree"])
        self.assertEqual(self.compare(self.logs[0], self.logs[0], status=0), [])
        self.assertEqual(self.run_host("scan", self.tree, "--expect", self.tree_value).returncode, 0)

    def test_scan_says_why_it_failed_and_leaves_no_log(self):
        os.mkdir(self.tree + b"/sub")
        with open(self.tree + b"/sub/\x1bsecret", "wb"):
            os.chmod(self.tree + b"/sub/\x1bsecret", 0)
        tree = self.tree.decode()
        inside = os.path.join(tree, "sub", "log")
        cases = (
            (["scan", tree, "--log", self.logs[0]], 1, f'cannot read "{tree}/sub/\\x1bsecret": Permission denied'),
            (["scan", "/nowhere"], 1, 'cannot read "/nowhere": No such file or directory'),
            (["scan", tree, "--log", inside], 1, f'the log "{inside}" would lie in the tree that is scanned, '
             f'and change its value; choose a place outside of "{tree}"'),
            (["scan", tree, "--log", "/nowhere/log"], 1, 'cannot write "/nowhere/log": No such file or directory'),
            (["scan", tree, "--log", "/dev/null"], 1, 'cannot write "/dev/null": it is no regular file'),
            (["scan", "/dev/null", "--expect", "1"], 1, "the value is 0000000000000000, not 1"),
            (["scan", tree, "-H", "md6"], 2, "there is no hash method 'md6', but: none trivial sha1 md5"),
            (["scan"], 2, "PATH is missing"),
            (["scan", tree, "--details"], 2, "--details needs --log"),
            (["compare", "a"], 2, "AFTER is missing"),
            (["compare", "/nowhere", "/nowhere"], 2, "/nowhere: No such file or directory"),
            (["settings", "get", "memory/menu/support/softwareupdate/hasherifier_statos"], 1, "there is no setting "
             "'memory/menu/support/softwareupdate/hasherifier_statos'; did you mean "
             "'memory/menu/support/softwareupdate/hashverifier_status'?"),
            (["settings", "get", "progress"], 1, "there is no setting 'progress'; did you mean "
             "'memory/menu/support/softwareupdate/hashverifier_progress'?"),
        )
        for arguments, status, sentence in cases:
            with self.subTest(arguments):
                run = self.run_unprivileged(*arguments, program=HOST)
                self.assertEqual((run.returncode, run.stderr.decode().splitlines()[0]), (status, "NerixHost: " + sentence))
        self.assertEqual(os.listdir(self.work), ["tree"])

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_log_that_does_not_fit_is_not_there(self):
        for number in range(100):
            os.mkdir(self.tree + b"/%d" % number)
        self.mount("/mnt/small", "-o", "size=4k")
        run = self.run_host("scan", self.tree, "--log", "/mnt/small/log")
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertEqual(run.stderr, b'NerixHost: cannot write "/mnt/small/log": No space left on device\n')
        self.assertEqual(os.listdir("/mnt/small"), [])

    def change(self):
        """The tree of test_compare, with one manipulation of each kind."""
        for number, change in enumerate((
                lambda path: os.truncate(path + b"/content", 13),
                lambda path: os.chmod(path + b"/mode", 0o600),
                lambda path: os.chown(path, 1234, -1) if os.geteuid() == 0 else os.chmod(path, 0o700),
                lambda path: os.setxattr(path + b"/attribute", b"user.a", b"x"),
                lambda path: (os.unlink(path + b"/link"), os.symlink(b"there", path + b"/link")),
                lambda path: os.mkdir(path + b"/added"),
                lambda path: os.unlink(path + b"/content"),
                lambda path: os.rename(path + b"/content", path + b"/renamed"),
                lambda path: os.rename(path + b"/full", path + b"/emptied"),
                lambda path: os.rename(path + b"/content", path + b'/\x1b[31m"\\\n\xff\xc2\x9b&'),
                lambda path: os.link(path + b"/content", path + b"/other name"))):
            change(self.tree + b"/%02d" % number)

    def test_compare_finds_each_manipulation(self):
        for number in range(11):
            path = self.tree + b"/%02d" % number
            os.makedirs(path + b"/full/er")
            for name in (b"content", b"mode", b"attribute", b"full/file"):
                with open(os.path.join(path, name), "wb") as file:
                    file.write(b"something")
            os.symlink("here", path + b"/link")
        before = self.records().records
        self.scan(self.logs[0])
        detailed = self.scan(self.logs[0] + ".details", "--details")
        self.change()
        after = self.records().records
        self.assertNotEqual(self.scan(self.logs[1]), detailed)
        self.scan(self.logs[1] + ".details", "--details")
        wanted = differences(before, after)
        self.assertEqual(len(wanted), 17)

        plain = [read_back(line) for line in self.compare(*self.logs)]
        self.assertEqual(plain, [(*change, "") for change in wanted])
        objects = [json.loads(line) for line in self.compare(*self.logs, "--json")]
        paths = [os.fsencode(o["path"]) if isinstance(o["path"], str) else bytes(o["path"]) for o in objects]
        self.assertEqual([(o["change"], path) for o, path in zip(objects, paths)], wanted)
        lines = self.compare(*(log + ".details" for log in self.logs))
        told = {path[len(self.tree):]: rest for _, path, rest in map(read_back, lines)}
        self.assertEqual(len(told), len(wanted))
        for path, rest in ((b"/00/content", ": size 9 -> 13"), (b"/01/mode", ": mode 0644 -> 0600"),
                           (b"/02", f": owner 0 -> 1234" if os.geteuid() == 0 else ": mode 0755 -> 0700"),
                           (b"/03/attribute", ": content, attributes or target"), (b"/05/added", ""),
                           (b"/04/link", ": size 4 -> 5"), (b"/10/content", ": links 1 -> 2")):
            self.assertEqual(told[path], rest, path)

    def test_compare_merges_trees_of_any_shape(self):
        for seed in range(20):
            records = []
            for log in self.logs:
                shutil.rmtree(self.tree)
                os.mkdir(self.tree)
                random_tree.make(self.tree, random.Random(seed), entries=10)
                if log is not self.logs[0]:
                    for path, directories, files in os.walk(self.tree, topdown=False):
                        for name in directories + files:
                            if random.Random(repr((seed, path, name))).random() < 0.2:
                                os.rename(os.path.join(path, name), os.path.join(path, name[:200] + b"-\x01"))
                records.append(self.records().records)
                self.scan(log)
            wanted = differences(*records)
            self.assertEqual([read_back(line)[:2] for line in self.compare(*self.logs, status=1 if wanted else 0)], wanted)

    def test_logs_of_every_kind_compare(self):
        long = self.tree + b"/" + b"/".join((b"d" * 250, b"\\\n" + b'"e&' * 60, b"f" * 200, b"g" * 250))
        os.makedirs(long)
        system = os.path.join(self.home, "log", "main.log")
        self.value(self.tree)
        shutil.copy(system, self.logs[0])
        self.scan(self.logs[1])
        self.assertEqual(self.compare(*self.logs, status=0), [])
        with open(self.logs[0], "ab") as log, open(system, "rb") as again:
            log.write(again.read())  # as of two containers, whose threads have the same numbers
        self.assertEqual(self.compare(*self.logs, status=0), [])
        os.mkdir(long + b"/new")
        self.value(self.tree)
        self.assertEqual([read_back(line)[:2] for line in self.compare(self.logs[1], system)], [("added", long + b"/new")])
        through_pipe = subprocess.run(["bash", "-c", f"{HOST} compare <(cat {self.logs[1]}) <(cat {system})"],
                                      check=False, stdout=subprocess.PIPE, env=self.environment)
        self.assertEqual(through_pipe.returncode, 1)

    def test_logs_that_cannot_be_compared(self):
        os.makedirs(self.tree + b"/a/b")
        self.value(self.tree)
        system = "".join(line.decode() + "\n" for line in self.log_lines("main"))
        self.scan(self.logs[0])
        with open(self.logs[0], encoding="utf-8") as log:
            text = log.read()
        lines = text.splitlines(keepends=True)
        rotated = system[system.index("[INF] HashWorker"):].split("\n", 1)[1]
        lost = re.sub(r".*/a\"\n", "", system)
        for content, reason in (("", "is no scan log"), ("nonsense\n", "is no scan log"), ("".join(lines[:1]), ""),
                                ("".join(lines[:-2]) + lines[0].replace("/a/b", "/c"), "is incomplete: its last"),
                                (text[:-2], "has no end"), (text + text, "is not where a scan"),
                                (text + "junk\n", "line 4 is no record"),
                                (rotated, "is incomplete: records"), (lost, "is incomplete: records"),
                                (text.replace("/tree", "/wood"), "the logs are of different trees")):
            with self.subTest(content=content):
                with open(self.logs[1], "w", encoding="utf-8") as log:
                    log.write(content)
                run = self.run_host("compare", *self.logs)
                self.assertEqual((run.returncode, run.stdout), (2, b""))
                self.assertIn(reason, run.stderr.decode())

    def on_terminal(self, columns, kind, *arguments):
        """What a program writes to a terminal of that width."""
        terminal, side = pty.openpty()
        fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        with subprocess.Popen([HOST, *arguments], env={**self.environment, "TERM": kind}, stderr=side,
                              stdout=subprocess.DEVNULL) as run:
            os.close(side)
            text = b""
            try:
                while piece := os.read(terminal, 65536):
                    text += piece
            except OSError:
                pass  # the end of a terminal
        os.close(terminal)
        self.assertEqual(run.returncode, 0)
        return text.decode()

    def test_bar_fits_the_terminal(self):
        with open(self.tree + b"/big", "wb") as file:
            file.truncate(600 << 20)
        for columns in (12, 40, 80, 200):
            frames = self.on_terminal(columns, "xterm", "scan", self.tree).split("\r")[1:]
            self.assertEqual(frames.pop(), "\x1b[K")
            self.assertTrue(frames)
            for frame in frames:
                self.assertRegex(frame, r"^ *\d+\.\d\d? %.*\x1b\[K$")
                self.assertLess(len(frame) - 3, columns)
                self.assertEqual("[" in frame[:-3], columns >= 40)
                self.assertEqual(bool(re.search(r"\d+ entries \d+:\d\d", frame)), columns >= 40)
        self.assertEqual(self.on_terminal(80, "dumb", "scan", self.tree), "")
        self.assertEqual(self.on_terminal(80, "xterm", "scan", self.tree, "--quiet"), "")


if __name__ == "__main__":
    main()
