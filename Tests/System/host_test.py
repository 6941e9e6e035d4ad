"""NerixHost: scan, error messages, progress."""

import contextlib
import fcntl
import json
import os
import pty
import random
import re
import stat
import struct
import subprocess
import termios
import time
import unittest
import zlib

import random_tree
from harness import HOST, NO_MOUNTS, PREFIX, HostTest, main, make_hole, read, write
from tree_value import STEPS, Model


STEP = STEPS["md5"]
KINDS = {stat.S_IFREG: "file", stat.S_IFDIR: "directory", stat.S_IFLNK: "link"}


def quoted(text):
    return b'"' + re.sub(b'(["&])', rb"&\1", text).replace(b"\n", b"&n") + b'"'


def details(path):
    """Returns what a record with details has after the path."""
    status = os.lstat(path)
    kind = KINDS[stat.S_IFMT(status.st_mode)]
    words = [kind.encode(), *(b"%d" % number for number in (status.st_uid, status.st_gid, status.st_nlink)),
             b"%04o" % (status.st_mode & 0o7777), b"%d" % status.st_size]
    if kind == "file":
        content, value = read(path), 0
        for begin in range(0, len(content), 4096):
            value = STEP(value, content[begin:begin + 4096])
        words.append(b"%016x" % value)
    if kind == "link":
        words.append(quoted(os.readlink(path)))
    for name in sorted(os.fsencode(name) for name in os.listxattr(path, follow_symlinks=False)):
        words += [quoted(name), b"%016x" % STEP(0, os.getxattr(path, name, follow_symlinks=False))]
    return b" ".join(words)


class Host(HostTest):
    def entries(self):
        """Returns the paths of the tree in the order of the walk, and sets value and records by the reference model."""
        model = Model("md5")
        self.tree_value = model.value(self.tree)
        self.records = model.record_lines()
        return [path for _, path in model.records]

    def test_scan_prints_the_value_and_leaves_only_a_log_of_all_records(self):
        random_tree.make(self.tree, random.Random(15), entries=19)
        paths = self.entries()
        lines = [b"%b %b" % pair for pair in zip(self.records, map(details, paths))]
        header = b"NerixScanLog 2 md5 %d %b" % (os.geteuid(), quoted(self.tree))
        for option, log in (("--quiet", self.records), ("--details", [header, *lines, b"complete %d" % len(lines)])):
            self.assertEqual(self.scan(self.logs[0], option), self.tree_value)
            self.assertEqual(read(self.logs[0]), b"".join(line + b"\n" for line in log))
        self.assertEqual(os.listdir(self.home), [])
        self.assertEqual(sorted(os.listdir(self.work)), ["before.log", "tree"])

    def test_scan_hashes_a_tree_under_another_path(self):
        random_tree.make(self.tree, random.Random(16), entries=19)
        value, image = self.scan(self.logs[0]), os.path.join(self.work, "image")
        records = read(self.logs[0])
        os.rename(self.tree, image)
        run = self.run_host("scan", image, "--as", self.tree + b"/", "--log", "-")
        self.assertEqual((run.stdout, run.stderr.decode()), (records, value + "\n"))
        run = self.run_host("scan", image, "--as", "/", "--log", "-")
        paths = records.replace(self.tree + b'"', b'/"').replace(self.tree, b"").splitlines()
        self.assertEqual([line[17:] for line in run.stdout.splitlines()], [line[17:] for line in paths])

    def test_scan_prints_a_value_for_each_path(self):
        write(self.tree + b"/\x1b")
        paths = [b"/nowhere", os.path.realpath(self.tree), self.tree + b"/\x1b"]
        values = [Model("md5").value(path).encode() for path in paths[1:]]
        run = self.run_host("scan", *paths)
        self.assertEqual(run.stderr, b'NerixHost: cannot read "/nowhere": No such file or directory\n')
        self.assertEqual(run.returncode, 2)
        self.assertEqual(run.stdout, b"%b  %b\n%b  %b/\\x1b\n" % (values[0], self.tree, values[1], self.tree))

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_scan_of_the_root_directory(self):
        make_hole("/large", 300 << 20)
        self.addCleanup(os.remove, "/large")
        self.assertRegex(self.on_terminal(80, "scan", "/"), r"\r *\d+\.\d\d % ", "the root is a file system")
        os.truncate("/large", 1)
        for options, first, last in (([], b'"/large"', b'"/"'), (["--as", "/x/../image//"], b'"/image/large"', b'"/image"')):
            records = self.run_host("scan", "/", "--log", "-", *options).stdout.splitlines()
            self.assertEqual((records[-1][17:], first in {line[17:] for line in records}), (last, True))

    def test_signal_ends_a_scan_of_several_paths(self):
        unreadable = os.path.join(self.tree, b"a")
        write(unreadable)
        os.chmod(unreadable, 0)
        make_hole(self.tree + b"/long", 1 << 40)
        run = self.run_unprivileged("1", HOST, "scan", "--keep-going", self.tree, self.work, program="timeout")
        self.assertEqual((run.stdout, run.stderr), (b"", b'NerixHost: cannot read "%b": Permission denied\n'
                                                    b"NerixHost: ended by signal 15\n" % unreadable))

    def test_scan_syncs_its_log_before_it_appears(self):
        trace = os.path.join(self.home, "trace")
        self.run_strace("-o", trace, "-e", "trace=fsync,rename,renameat2", HOST, "scan", self.tree, "--log", self.logs[0])
        self.assertEqual(re.findall(rb"\d+ +([a-z]+)", read(trace)), [b"fsync", b"rename"])
        run = self.run_strace("-e", "inject=fsync:error=EINVAL", HOST, "scan", self.tree, "--log", self.logs[0])
        self.assertEqual(run.returncode, 0, "the file system does not support fsync")

    def test_scan_with_json_prints_an_object(self):
        write(self.tree + b"/a", b"12345")
        value = Model("md5").value(self.tree)
        told = json.loads(self.run_host("scan", self.tree, "--json").stdout)
        self.assertGreater(told.pop("seconds"), 0)
        self.assertRegex(told.pop("version"), r"\A\d+\.\d+\.\d+\Z")
        tree = self.tree.decode()
        self.assertEqual(told, {"path": tree, "method": "md5", "root": tree, "value": value, "complete": True,
                                "unreadable": [], "entries": 2, "bytes": 5})

    def test_scan_goes_on_after_unreadable_entries_on_request(self):
        for name in (b"a", b"b", b"c/d", b"c/e", b"z"):
            os.makedirs(os.path.dirname(self.tree + b"/" + name), exist_ok=True)
            write(self.tree + b"/" + name)
        for name in (b"a", b"c/d", b"z"):
            os.chmod(self.tree + b"/" + name, 0)
        sentences = [f'cannot read "{self.tree.decode()}/{name}": Permission denied' for name in ("a", "c/d", "z")]
        for options in ([], ["--json"]):
            run = self.run_unprivileged("scan", self.tree, "--keep-going", *options, program=HOST)
            self.assertEqual(run.stderr.decode(), "".join(f"NerixHost: {sentence}\n" for sentence in sentences))
            self.assertEqual(run.returncode, 2)
        told = json.loads(run.stdout)
        self.assertEqual((told["value"], told["complete"], told["unreadable"]), (None, False, sentences))

    def test_scan_of_many_entries_prints_only_the_value(self):
        for number in range(2000):
            write(os.path.join(self.tree, b"%d" % number))
        self.entries()
        for options in ((), ("--expect", self.tree_value), ("--expect", self.tree_value.upper())):
            run = self.run_host("scan", self.tree, *options)
            self.assertEqual((run.returncode, run.stdout.decode()), (0, self.tree_value + "\n"), options)

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
        self.assert_fails(2, (
            (["scan", tree, "--log", self.logs[0]], f'cannot read "{tree}/sub/\\x1bsecret": Permission denied'),
            (["scan", tree + "/z"], f'cannot examine "{tree}/z/inner": Permission denied'),
            (["scan", "/nowhere"], 'cannot read "/nowhere": No such file or directory'),
            (["scan", tree, "--log", inside], f'the log "{inside}" is inside the tree to be scanned '
             f'and would change its value; put it outside "{tree}"'),
            (["scan", tree, "--log", "/nowhere/log"], 'cannot write "/nowhere/log": No such file or directory'),
            (["scan", tree, "--log", "/dev/null"], 'cannot write "/dev/null": not a regular file'),
            (["scan", tree, "--log", "/dev/stdout"],
             'cannot write "/dev/stdout": not a regular file; use --log - for standard output'),
        ))
        self.assert_fails(1, (
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
            (["settings", "list", "x"], "list does not take a key"),
            (["scan", tree, "--details"], "--details needs --log"),
            (["scan", tree, "--log", ""], "--log needs a file name"),
            (["scan", ""], "PATH is empty"),
            (["scan", tree, "--as", "x"], '--as needs an absolute path, not "x"'),
            (["scan", tree, "--as", ""], '--as needs an absolute path, not ""'),
            (["scan", tree, tree, "--log", "x"], "--log needs a single PATH"),
            (["compare", tree, tree, "--ignore", "mode,ower"], "unknown fact 'ower'; did you mean 'owner'?"),
            (["compare", tree, tree, "--exclude", "/"], "the pattern '/' contains no name"),
            (["compare", tree, tree, "--color", "nevr"], "invalid argument 'nevr' for --color; did you mean 'never'?"),
            (["compare", "a"], "missing argument AFTER"),
            (["compare", "/\x1bnowhere", "/nowhere"], r"/\x1bnowhere: No such file or directory"),
        ))

    def test_settings_get_reports_an_unknown_key(self):
        self.assert_fails(1, (
            (["settings", "get", f"memori{PREFIX}stats"],
             f"there is no setting 'memori{PREFIX}stats'; did you mean 'memory/{PREFIX}status'?"),
            (["settings", "get", f"memory/{PREFIX}status"], f"there is no setting 'memory/{PREFIX}status' yet"),
            (["settings", "get", "nothing/alike"], "there is no setting 'nothing/alike'"),
            (["settings", "get", "progress"], f"there is no setting 'progress'; did you mean 'memory/{PREFIX}progress'?"),
        ))

    def test_scan_gives_no_value_of_a_file_that_cannot_be_read_to_its_end(self):
        file, later = self.tree + b"/file", self.tree + b"/later"
        for path in (file, later):
            write(path, bytes(300_000))
        for words in ([self.tree], [file, "--details"]):
            run = self.run_strace("-P", file, "-P", later, "-e", "inject=read:error=EIO:when=2+", HOST, "scan", *words,
                                  "--log", self.logs[0])
            self.assertEqual(run.stderr, b'NerixHost: cannot read "%b": Input/output error\n' % file, words)
            self.assertEqual((run.returncode, run.stdout), (2, b""), words)
            self.assertEqual(os.listdir(self.work), ["tree"], words)

    def test_scan_of_several_paths_keeps_their_failures_apart(self):
        broken, good = os.path.join(self.tree, b"broken"), os.path.join(self.tree, b"good")
        for path, size in ((broken, 5000), (good, 3)):
            write(path, bytes(size))
        for options in ([], ["--keep-going"]):
            run = self.run_strace("-P", broken, "-e", "inject=read:error=EIO", HOST, "scan", broken, good, "--json",
                                  *options)
            first, second = map(json.loads, run.stdout.splitlines())
            self.assertEqual((run.returncode, first["value"], first["unreadable"]),
                             (2, None, [f'cannot read "{broken.decode()}": Input/output error']))
            self.assertEqual((second["value"], second["unreadable"], second["entries"], second["bytes"]),
                             (Model("md5").value(good), [], 1, 3))

    def test_scan_reports_an_entry_that_changed_during_the_scan(self):
        file = self.tree + b"/file"
        write(file)
        os.setxattr(file, "user.name", b"value")
        run = self.run_strace("-P", file, "-e", "inject=lgetxattr:retval=7:when=2", HOST, "scan", self.tree)
        self.assertEqual(run.stderr, b'NerixHost: cannot read the attributes of "%b": it changed during the scan\n' % file)

    def test_scan_rejects_a_log_in_the_tree_under_another_name(self):
        os.makedirs(self.tree + b"/sub/inner")
        value = self.scan(self.logs[0])
        for place, bound in (("/mnt/tree", b""), ("/mnt/sub ", b"/sub"), ("/mnt/inner", b"/sub/inner")):
            self.mount(place, self.tree + bound, kind="bind")
            run = self.run_host("scan", self.tree, "--log", place + "/log")
            self.assertEqual((run.returncode, run.stdout), (2, b""), place)
            self.assertIn(b"is inside the tree to be scanned", run.stderr, place)
        self.assertEqual(self.scan(self.logs[0]), value, "a log was left in the tree")

    def test_scan_rejects_the_scanned_file_as_its_log(self):
        file = self.tree + b"/file"
        write(file, b"kept")
        run = self.run_host("scan", file, "--log", file)
        self.assertEqual((run.returncode, read(file)), (2, b"kept"))
        self.assertIn(b"is inside the tree to be scanned", run.stderr)

    def test_scan_rejects_a_log_that_has_other_hard_links(self):
        log = self.work + "/other name"
        write(self.tree + b"/file")
        os.link(self.tree + b"/file", log)
        if not NO_MOUNTS:
            self.mount("/mnt")
            write("/mnt/log")
            os.link("/mnt/log", "/mnt/other")
            self.scan("/mnt/log")  # on another file system than the tree
        run = self.run_host("scan", self.tree, "--log", log)
        self.assertEqual((run.returncode, run.stdout), (2, b""))
        self.assertIn(b"has other hard links, which may be inside the tree", run.stderr)
        self.assertEqual(os.path.getsize(log), 0, "size of the log")

    @unittest.skipIf(NO_MOUNTS or not random_tree.may_make_devices(), "needs root, and mounts that other users can reach")
    def test_scan_rejects_a_log_that_is_a_link_of_another_user(self):
        precious = self.work + "/precious"
        write(precious, b"kept")
        os.symlink(precious, self.logs[0])
        os.lchown(self.logs[0], 12, 34)
        run = self.run_host("scan", self.tree, "--log", self.logs[0])
        self.assertEqual((run.returncode, read(precious)), (2, b"kept"))
        self.assertIn(b"is a link that another user made", run.stderr)
        os.chown(precious, 12, -1)
        os.symlink(precious, self.logs[1])
        run = self.run_command("setpriv", "--reuid=12", "--clear-groups", HOST, "scan", self.tree, "--log", self.logs[1])
        self.assertEqual((run.returncode, run.stderr), (0, b""), "a link that root made")

    def test_scan_writes_a_log_whose_path_leads_out_of_the_tree(self):
        inner = self.tree + b"/inner"
        self.mount(inner, self.work, kind="bind")
        self.scan(inner + b"/before.log")
        self.scan(self.logs[1])
        self.assertEqual(read(self.logs[0]), read(self.logs[1]))

    def test_scan_keeps_owner_and_mode_of_its_log(self):
        write(self.logs[0])
        os.chmod(self.logs[0], 0o640)
        if random_tree.may_make_devices():  # which also allows changing owners
            os.chown(self.logs[0], 12, 34)
        kept = lambda status: (status.st_mode, status.st_uid, status.st_gid)
        before = kept(os.stat(self.logs[0]))
        self.scan(self.logs[0])
        self.assertEqual(kept(os.stat(self.logs[0])), before)

    def test_scan_writes_a_log_of_any_name(self):
        write(self.tree + b"/file")
        self.assertEqual(self.run_host("scan", self.tree + b"/file", "--log", self.logs[1]).returncode, 0, "log of a file")
        self.addCleanup(os.umask, os.umask(0o027))
        os.mkfifo(f"{self.work}/.nerix-{zlib.crc32(b'before.log')}-abcdef")  # where a killed scan might leave its log
        for log in (self.logs[0], os.path.join(self.work, "l" * 255)):
            self.scan(log)
            self.assertEqual(stat.S_IMODE(os.stat(log).st_mode), 0o640)

    def test_scan_removes_the_temporary_log_of_a_killed_scan(self):
        make_hole(self.tree + b"/long", 1 << 40)
        with subprocess.Popen([HOST, "scan", self.tree, "--log", self.logs[0], "-q"], env=self.environment) as scan:
            while len(os.listdir(self.work)) == 1:
                self.assertIsNone(scan.poll())
            time.sleep(0.1)
            other = self.run_command("timeout", "0.5", HOST, "scan", self.tree, "--log", self.logs[0], "-q")
            self.assertEqual(other.returncode, 124)
            self.assertEqual(len(os.listdir(self.work)), 2, "the temporary log of the running scan was removed")
            scan.kill()
        os.unlink(self.tree + b"/long")
        self.scan(self.logs[0])
        self.assertEqual(sorted(os.listdir(self.work)), ["before.log", "tree"])

    def test_scan_leaves_no_log_that_does_not_fit(self):
        for number in range(100):
            os.mkdir(self.tree + b"/%d" % number)
        self.mount("/mnt/small", "-o", "size=4k")
        run = self.run_host("scan", self.tree, "--log", "/mnt/small/log")
        self.assertEqual((run.returncode, run.stdout), (2, b""))
        self.assertEqual(run.stderr, b'NerixHost: cannot write "/mnt/small/log": No space left on device\n')
        self.assertEqual(os.listdir("/mnt/small"), [])

    def on_terminal(self, columns, *arguments, kind="xterm"):
        """Returns what NerixHost writes to a terminal of that width and kind."""
        terminal, side = pty.openpty()
        fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        with subprocess.Popen([HOST, *arguments], env={**self.environment, "TERM": kind}, stderr=side,
                              stdout=subprocess.DEVNULL) as run:
            os.close(side)
            text = b""
            with contextlib.suppress(OSError):  # read fails when no process has the terminal open
                while piece := os.read(terminal, 65536):
                    text += piece
        os.close(terminal)
        self.assertEqual(run.returncode, 0)
        return text.decode()

    def test_scan_of_a_file_system_shows_a_bar_that_moves_and_fits_the_terminal(self):
        self.mount(self.tree)
        os.mkdir(self.tree + b"/sub")
        write(self.tree + b"/sub/a", bytes(20 << 20))
        write(self.tree + b"/sub/b", bytes(300 << 20))  # helpers begin it early, so it soon determines the progress
        end = "\x1b[K"
        for columns, bar_widths in ((12, []), (100, [40]), (200, [40])):
            with self.subTest(columns=columns):
                frames = self.on_terminal(columns, "scan", self.tree).split("\r")[1:]
                self.assertEqual(frames.pop(), end, "the last frame")
                percents = [float(frame.split("%")[0]) for frame in frames]
                self.assertNotEqual([percent for percent in percents if 15 < percent < 60], [], f"none of {percents}")
                for frame in frames:
                    bar = r" \[#* *\] \d+ entries, [\d.]+ \w+, [\d.]+ \w+/s, \d+:\d\d" if bar_widths else ""
                    self.assertRegex(frame, rf"\A *\d+\.\d\d? %{bar}{re.escape(end)}\Z")
                    self.assertEqual([len(bar) for bar in re.findall(r"\[#* *\]", frame)], bar_widths, frame)
                    self.assertLess(len(frame) - len(end), columns, frame)
        self.assertEqual(self.on_terminal(80, "scan", self.tree, "--quiet"), "", "with --quiet")
        self.assertRegex(self.on_terminal(80, "compare", self.tree, self.tree, "--quiet"), r"\A0 differences among .*\s\Z")
        self.assertNotRegex(self.on_terminal(80, "scan", self.tree, kind="dumb"), r"\r[^\n]", "on a dumb terminal")
        self.assertRegex(self.on_terminal(80, "scan", self.tree + b"/sub"),
                         r"\r1 entries, [12]\d\d\.\d MB, [\d.]+ \wB/s, 0:\d\d", "of part of a file system")
        text = self.on_terminal(80, "scan", self.tree + b"/sub/b", "--details", "--log", self.logs[0])
        self.assertLess(max(map(float, re.findall(r"0 entries, ([\d.]+) MB", text))), 320, "MB of a file of 300 MiB")


if __name__ == "__main__":
    main()
