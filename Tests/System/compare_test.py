"""NerixHost compare: trees and logs, facts, moved entries, and logs that cannot be compared."""

import ast
import contextlib
import fnmatch
import hashlib
import itertools
import json
import os
import pty
import random
import re
import shutil
import stat
import subprocess

import random_tree
from harness import HOST, SANITIZED, HostTest, main, make_hole, read, write

KINDS = {stat.S_IFREG: "file", stat.S_IFDIR: "directory", stat.S_IFLNK: "link"}
FACTS = ("kind", "content", "attributes", "target", "owner", "group", "links", "mode", "size")


def facts(path):
    """Returns the facts of an entry that compare looks at, by name; None for kinds that are not scanned."""
    status = os.lstat(path)
    kind = KINDS.get(stat.S_IFMT(status.st_mode))
    if kind is None:
        return None
    known = {"kind": kind, "owner": status.st_uid, "group": status.st_gid, "mode": f"{status.st_mode & 0o7777:04o}",
             "attributes": {name: os.getxattr(path, name, follow_symlinks=False)
                            for name in os.listxattr(path, follow_symlinks=False)}}
    if kind != "directory":
        known["links"] = status.st_nlink
    if kind == "link":
        known["target"] = os.readlink(path)
    if kind == "file":
        known.update(content=hashlib.sha256(read(path)).digest(), size=status.st_size)
    return known


def tree_of(root):
    """Returns the facts of all scanned entries by path below the root; b"." is the root."""
    paths = [root] + [os.path.join(directory, name) for directory, directories, files in os.walk(root)
                      for name in directories + files]
    return {os.path.relpath(path, root): known for path in paths if (known := facts(path))}


def changed_facts(old, new, ignored):
    if old["kind"] != new["kind"] and "kind" not in ignored:
        return {"kind"}
    return {name for name in (old.keys() & new.keys()) - ignored if old[name] != new[name]}


def below(path, paths):
    return {other for other in paths if other != path and (path == b"." or other.startswith(path + b"/"))}


def signature(path, tree):
    """Returns what a moved entry keeps, or None if it is not looked for."""
    def content(entry):
        return entry["kind"], entry.get("content"), entry.get("target")
    parts = frozenset((other[len(path):], content(tree[other])) for other in below(path, tree) | {path})
    return parts if any(tree[other].get("size") or "target" in tree[other] for other in below(path, tree) | {path}) else None


def find_moved(before, after, removed, added):
    """Returns pairs of moved entries. Directories go first, from the outermost inwards."""
    moved, gone, new = [], set(), set()
    for of_directories in (True, False):
        sides = []
        for tree, paths, taken in ((before, removed, gone), (after, added, new)):
            found = {}
            for path in paths - taken:
                if (tree[path]["kind"] == "directory") == of_directories and (key := signature(path, tree)):
                    found.setdefault(key, []).append(path)
            sides.append({key: found[key][0] for key in found if len(found[key]) == 1})
        for key in sorted(sides[0].keys() & sides[1].keys(), key=lambda key: sides[0][key].count(b"/")):
            old, now = sides[0][key], sides[1][key]
            inner = {old} | below(old, removed), {now} | below(now, added)
            if not inner[0] & gone and not inner[1] & new:
                moved.append((old, now))
                gone |= inner[0]
                new |= inner[1]
    return moved, gone, new


def differences(before, after, ignored=frozenset()):
    """Returns the expected lines of a comparison: (change, path, new path, names of facts, entries below)."""
    removed, added = before.keys() - after.keys(), after.keys() - before.keys()
    lines = {path: ["changed", path, None, names, 0] for path in before.keys() & after.keys()
             if (names := changed_facts(before[path], after[path], ignored))}
    moved, gone, new = find_moved(before, after, removed, added)
    for old, now in moved:
        inner = below(old, removed)
        lines[now] = ["moved", old, now, changed_facts(before[old], after[now], ignored), len(inner)]
        for path in inner:
            place = now + path[len(old):]
            if names := changed_facts(before[path], after[place], ignored):
                lines[place] = ["changed", place, None, names, 0]
    for change, paths in (("removed", removed - gone), ("added", added - new)):
        for path in sorted(paths):
            above = [path[:at] for at, byte in enumerate(path) if byte == ord("/")]
            top = next((lines[other] for other in above if other in lines
                        and (lines[other][0] == change or "kind" in lines[other][3])), None)
            if top:
                top[4] += 1
            else:
                lines[path] = [change, path, None, set(), 0]
    return sorted(map(tuple, lines.values()), key=repr)


# Bytes that could control a terminal, and how they must be displayed.
ODD = "\u00e4\u20ac\u00a0&\u2029\u202f\u2065\u206a\u2066\u2069\u202a\u202e".encode() + \
    b'\x1b[31m"\\\n\r\t\x7f\xff\x80\x80\xc2\x9b\x9b\x80'
SHOWN = "\u00e4\u20ac\u00a0&\u2029\u202f\u2065\u206a".encode() + \
    rb'\xe2\x81\xa6\xe2\x81\xa9\xe2\x80\xaa\xe2\x80\xae\x1b[31m\"\\\n\r\t\x7f' + b"\xff\x80\x80" + rb"\xc2\x9b\x9b\x80"


def read_back(line):
    """Returns the parts of a line of output, as in differences()."""
    quoted = r'("(?:[^"\\]|\\.)*")'
    form = rf"(\w+) +{quoted}(?: -> {quoted})?(?:: (.*?))?(?: and (\d+) entr\S+ below)?"
    change, path, place, texts, count = re.fullmatch(form, line.decode("latin-1"), re.DOTALL).groups()
    plain = [text and ast.literal_eval(text).encode("latin-1") for text in (path, place)]
    without_details = re.sub(r"\([^)]*\)|" + quoted, "", texts or "")
    return change, *plain, {text.split()[0] for text in without_details.split(", ") if text}, int(count or 0)


def read_object(line):
    """Returns the parts of a line of output with --json, as in differences()."""
    told = json.loads(line)
    path, place = (text.encode() if isinstance(text, str) else text and bytes(text)
                   for text in (told["path"], told.get("newPath")))
    return told["change"], path, place, set(told.get("facts", {})), told.get("entriesBelow", 0)


def rewrite(path):
    with open(path, "r+b") as file:
        file.write(b"!")


def relink(path):
    os.unlink(path)
    os.symlink("elsewhere", path)


def replace_by_file(path):
    shutil.rmtree(path)
    write(path, b"was a directory")


# Possible changes to an entry. For links, only those that do not affect the target.
TO_FILES = (rewrite, lambda path: os.truncate(path, 13), lambda path: os.chmod(path, 0o4711), os.unlink,
            lambda path: os.setxattr(path, b"user.new", b"x"), lambda path: os.link(path, path[:99] + b"+"))
TO_ANY = (lambda path: os.rename(path, path[:99] + ODD), lambda path: os.lchown(path, 1234, -1))
TO_DIRECTORIES = (lambda path: os.mkdir(path + b"/added"), lambda path: os.chmod(path, 0o700), shutil.rmtree,
                  replace_by_file, lambda path: os.rename(path, os.path.dirname(path)[:99] + b"/moved"))


def change(tree, chance):
    for directory, directories, files in os.walk(tree, topdown=False):
        for name in directories + files:
            path = os.path.join(directory, name)
            actions = (relink,) if os.path.islink(path) else TO_DIRECTORIES if os.path.isdir(path) else TO_FILES
            if chance.random() < 0.3:
                with contextlib.suppress(OSError):  # this user, or this kind of entry, does not allow it
                    chance.choice(actions + TO_ANY)(path)


class Compare(HostTest):
    def compare(self, before, after, *options, status=1):
        run = self.run_host("compare", before, after, *options)
        self.assertEqual(run.returncode, status, run.stderr)
        self.totals = run.stderr.decode()
        return run.stdout.splitlines()

    def make_trees(self, seed):
        for tree in (self.tree, self.other):
            shutil.rmtree(tree, ignore_errors=True)
        os.mkdir(self.tree)
        random_tree.make(self.tree, random.Random(seed), entries=16)
        subprocess.run(["cp", "-a", self.tree, self.other], check=True)
        change(self.other, random.Random(seed))
        return tree_of(self.tree), tree_of(self.other)

    def test_compare_lists_every_change_of_random_trees(self):
        seen = set()
        for seed in range(25):
            with self.subTest(seed=seed):
                expected = differences(*self.make_trees(seed))
                lines = self.compare(self.tree, self.other)
                self.assertEqual(sorted(map(read_back, lines), key=repr), expected)
                self.assertEqual([line for line in lines if b"[31m" in line.replace(SHOWN, b"")], [], "not as SHOWN")
                seen |= {"odd name" for line in lines if SHOWN in line}
                self.scan(self.logs[0], "--details")
                self.assertEqual(self.compare(self.logs[0], self.other), lines)
                objects = self.compare(self.tree, self.other, "--json")
                self.assertEqual(sorted(map(read_object, objects[:-1]), key=repr), expected)
                self.assertEqual(json.loads(objects[-1])["differences"], len(expected))
                seen.update(name for line in expected for name in line[3] | {line[0]})
        never = set() if random_tree.may_make_devices() else {"owner", "group"}
        self.assertEqual(seen, {*FACTS, "odd name", "changed", "moved", "removed", "added"} - never, "changes in the trees")

    def test_compare_ignores_facts_and_excluded_entries(self):
        patterns = {"plain": lambda path: b"plain" in path.split(b"/"),
                    "[ab]*": lambda path: any(fnmatch.fnmatch(name, b"[ab]*") for name in path.split(b"/")),
                    "/a*": lambda path: path.startswith(b"a"),
                    "*/a": lambda path: path.split(b"/")[1:2] == [b"a"],
                    "**/moved": lambda path: b"moved" in path.split(b"/")}
        for seed, (ignored, pattern) in enumerate(itertools.product(({"mode", "owner"}, {"content", "attributes", "kind"}),
                                                                    patterns)):
            with self.subTest(seed=seed, ignored=ignored, pattern=pattern):
                trees = [{path: known for path, known in tree.items() if path == b"." or not patterns[pattern](path)}
                         for tree in self.make_trees(seed)]
                expected = differences(*trees, ignored)
                lines = self.compare(self.tree, self.other, "--ignore", ",".join(ignored), "-x", pattern,
                                     status=1 if expected else 0)
                self.assertEqual(sorted(map(read_back, lines), key=repr), expected)
                names = ", ".join(sorted(ignored, key=FACTS.index))
                self.assertTrue(self.totals.endswith(f'; ignored: {names}; excluded: "{pattern}"\n'), self.totals)

    def make_files(self, tree, files):
        """Makes a tree of files, given by path and content."""
        shutil.rmtree(tree, ignore_errors=True)
        for path, content in files.items():
            os.makedirs(os.path.dirname(os.path.join(tree, path.encode())), exist_ok=True)
            write(os.path.join(tree, path.encode()), content)

    def test_compare_excludes_what_a_pattern_matches(self):
        files = ("a/a/x", "a/b", "a/c/b", "b", "c/d/e/f/g/h/i/j", "odd*name")
        self.make_files(self.tree, dict.fromkeys(files, b"1"))
        os.mkdir(self.other)
        cases = {"b": {"a/b", "a/c/b", "b"}, "/b": {"b"}, "b/": {"b"}, "a/b": {"a/b"}, "a/a": {"a/a/x"}, "a": {*files[:3]},
                 "a/*": {*files[:3]}, "*/b": {"a/b"}, "**/b": {"a/b", "a/c/b", "b"}, "a/**/b": {"a/b", "a/c/b"},
                 "c/**": {files[4]}, "j": {files[4]}, "i/j": set(), "**/i/j": {files[4]}, "?": {*files[:5]},
                 "[bj]": {*files[1:5]}, "odd\\*name": {files[5]}, "odd\\*": set(), "/".join(["**"] * 40) + "/none": set()}
        for pattern, excluded in cases.items():
            with self.subTest(pattern):
                run = self.run_command(HOST, "compare", self.tree, self.other, "--all", "--exclude", pattern, timeout=60)
                listed = {read_back(line)[1].decode() for line in run.stdout.splitlines()}
                self.assertEqual(set(files) - listed, excluded)

    def test_compare_finds_moves_among_copies_and_empty_files(self):
        cases = {
            "a copy is no move": ({"a": b"1"}, {"b": b"1", "c": b"1"}, ['removed "a"', 'added   "b"', 'added   "c"']),
            "one of two copies is no move": ({"a": b"1", "b": b"1"}, {"c": b"1"},
                                             ['removed "a"', 'removed "b"', 'added   "c"']),
            "an empty file is no move": ({"a": b""}, {"b": b""}, ['removed "a"', 'added   "b"']),
            "a directory of empty files is no move": ({"a/x": b""}, {"b/x": b""},
                                                      ['removed "a" and 1 entry below', 'added   "b" and 1 entry below']),
            "other names are no moved directory": ({"a/x": b"1", "a/y": b"2"}, {"b/x": b"1", "b/z": b"3"},
                                                   ['moved   "a/x" -> "b/x"', 'removed "a" and 1 entry below',
                                                    'added   "b" and 1 entry below']),
            "a file as in a moved directory": ({"a/x": b"1", "y": b"1"}, {"b/x": b"1", "z": b"1"},
                                               ['moved   "a" -> "b" and 1 entry below', 'moved   "y" -> "z"'])}
        for name, (before, after, expected) in cases.items():
            with self.subTest(name):
                self.make_files(self.tree, {"same": b"same", **before})
                self.make_files(self.other, {"same": b"same", **after})
                lines = b"\n".join(self.compare(self.tree, self.other)).decode().split("\n")
                self.assertEqual(sorted(lines), sorted(expected))

    def test_compare_ignores_facts_of_moved_entries(self):
        self.make_files(self.tree, {"a/x": b"1", "y": b"2"})
        self.make_files(self.other, {"b/x": b"1", "z": b"2"})
        for path in (b"/b", b"/b/x", b"/z"):
            os.chmod(self.other + path, 0o711)
        self.assertEqual(self.compare(self.tree, self.other, "--ignore", "mode"),
                         [b'moved   "a" -> "b" and 1 entry below', b'moved   "y" -> "z"'])
        totals = json.loads(self.compare(self.tree, self.other, "-i", "mode", "-x", "none", "--json")[-1])
        self.assertEqual((totals["ignored"], totals["excluded"]), (["mode"], ["none"]))

    def test_compare_of_one_tree_with_itself_heeds_what_is_left_out(self):
        self.make_files(self.tree, {"a/x": b"1", "a/y": b"2"})
        self.scan(self.logs[0], "--details")
        os.chmod(self.tree + b"/a/x", 0o711)
        for options in (["--exclude", "x"], ["--ignore", "mode"]):
            self.assertEqual(self.compare(self.logs[0], self.tree, *options, status=0), [])

    def make_example(self):
        for path, content in (("etc/config", "a" * 100), ("usr/bin/ping", "ping"), ("usr/kind/x/y", "1"), ("usr/odd", "odd"),
                              *((f"usr/share/a/{number}", f"content {number}") for number in range(9)),
                              *((f"var/cache/{number}", "cache") for number in range(1, 13)), ("single", "unique")):
            os.makedirs(os.path.join(self.tree, os.path.dirname(path).encode()), exist_ok=True)
            write(os.path.join(self.tree, path.encode()), content.encode())
        os.symlink("libx.so.1", self.tree + b"/usr/libx.so")
        os.setxattr(self.tree + b"/usr/bin/ping", "user.cap", b"1")
        os.setxattr(self.tree + b"/usr/bin/ping", "user.old", b"1")
        subprocess.run(["cp", "-a", self.tree, self.other], check=True)
        self.run_command("bash", "-c", """
            printf %0100d 0 >etc/config; chmod 600 etc/config; rm -r usr/kind; echo >usr/kind; touch -d 2001-01-01 usr/odd
            ln -sfn libx.so.2 usr/libx.so; mv usr/share/a usr/share/b; rm -r var/cache; echo new >'etc/new file'
            mv single usr/other; chmod 600 usr/other; ln usr/odd usr/odd2""", cwd=self.other)
        os.setxattr(self.other + b"/usr/bin/ping", "user.cap", b"2")
        os.removexattr(self.other + b"/usr/bin/ping", "user.old")
        os.setxattr(self.other, "user.new\x1b[31m", b"")

    def test_compare_prints_each_fact_by_name(self):
        self.make_example()
        self.assertEqual(b"\n".join(self.compare(self.tree, self.other)).decode(), """\
changed "etc/config": content, mode 0644 -> 0600
changed "usr/bin/ping": attributes (user.cap, -user.old)
changed "usr/kind": kind directory -> file and 2 entries below
changed "usr/libx.so": target "libx.so.1" -> "libx.so.2"
changed "usr/odd": links 1 -> 2
changed ".": attributes (+user.new\\x1b[31m)
moved   "single" -> "usr/other": mode 0644 -> 0600
moved   "usr/share/a" -> "usr/share/b" and 9 entries below
removed "var/cache" and 12 entries below
added   "etc/new file"
added   "usr/odd2\"""")
        self.assertEqual(self.totals, "11 differences among 24 entries: 6 changed, 2 moved, 2 added, 1 removed\n")

    def test_compare_prints_objects_for_attributes_whatever_their_names(self):
        names = {b"user.\xff\n": "user.\\xff\\n", b"user.\xc3\xa4": "user.\u00e4"}
        self.make_files(self.tree, {"file": b"1"})
        self.make_files(self.other, {"file": b"1"})
        for name in names:
            os.setxattr(self.other + b"/file", name, b"1")
        line = self.compare(self.tree, self.other, "--json")[0]
        self.assertTrue(line.isascii(), line)
        told = json.loads(line)
        self.assertEqual(set(told["facts"]["attributes"]), set(names.values()))

    def test_compare_reads_a_record_of_many_attributes(self):
        self.mount(self.tree)
        for number in range(8000):  # names as short as possible, because those of one entry may take 64 KiB
            os.setxattr(self.tree, b"user.%c%c" % (33 + number // 90, 33 + number % 90), b"")
        self.scan(self.logs[0], "--details")
        self.assertEqual(self.compare(self.logs[0], self.tree, status=0), [])

    def test_compare_lists_all_entries_of_a_subtree_on_request(self):
        self.make_example()
        lines = self.compare(self.tree, self.other, "--all")
        self.assertEqual([line for line in lines if b"var/cache" in line][-1], b'removed "var/cache"')
        self.assertEqual(len([line for line in lines if line.startswith(b"removed")]), 13 + 2)

    def test_compare_sums_up_equal_differences(self):
        for number in range(300):
            os.makedirs(self.tree + b"/srv/big/%d" % (number % 7), exist_ok=True)
            write(self.tree + b"/srv/big/%d/%d" % (number % 7, number))
        os.mkdir(self.tree + b"/gone")
        write(self.tree + b"/gone/file", b"12345")
        subprocess.run(["cp", "-a", self.tree, self.other], check=True)
        subprocess.run(["find", self.other, "-type", "f", "-exec", "chmod", "600", "{}", "+"], check=True)
        shutil.rmtree(self.other + b"/gone")
        self.assertEqual(self.compare(self.tree, self.other, "--summary"),
                         [b'mode 0644 -> 0600: 300 entries below "srv/big"', b'removed: 2 entries below "."',
                          b"removed: 5 bytes, added: 0 bytes"])
        totals = json.loads(self.compare(self.tree, self.other, "--summary", "--json")[0])
        self.assertEqual((totals["facts"], totals["bytesRemoved"], totals["bytesAdded"]), ({"mode": 300}, 5, 0))

    def test_compare_colours_its_output_for_a_terminal(self):
        write(self.tree + b"/a")
        os.mkdir(self.other)
        plain, coloured = b'removed "a"', b'\x1b[31mremoved\x1b[m "a"'
        cases = (([], {}, coloured), ([], {"NO_COLOR": ""}, coloured), ([], {"NO_COLOR": "1"}, plain),
                 ([], {"TERM": "dumb"}, plain), (["--color=never"], {}, plain),
                 (["--color=always"], {"NO_COLOR": "1"}, coloured))
        for options, variables, expected in cases:
            with self.subTest(options=options, **variables):
                terminal, side = pty.openpty()
                subprocess.run([HOST, "compare", self.tree, self.other, "-q", *options], stdout=side, stderr=subprocess.PIPE,
                               env={**self.environment, "TERM": "xterm", **variables}, check=False)
                self.assertEqual(os.read(terminal, 1000).strip(), expected)
                os.close(terminal)
                os.close(side)
        self.assertEqual(self.compare(self.tree, self.other), [plain], "to a pipe")

    def test_compare_by_value_lists_the_innermost_changes(self):
        for name in ("a/b/changed", "a/b/same", "a/gone/inner", "z"):
            os.makedirs(os.path.join(self.tree, os.path.dirname(name).encode()), exist_ok=True)
            write(os.path.join(self.tree, name.encode()))
        os.mkdir(self.tree + b"/new")
        self.scan(self.logs[0])
        write(self.tree + b"/a/b/changed", b"now")
        write(self.tree + b"/new/gone")
        shutil.rmtree(self.tree + b"/a/gone")
        os.chmod(self.tree + b"/z", 0o600)
        self.scan(self.logs[1])
        self.assertEqual(self.compare(*self.logs), [b'changed "a/b/changed"', b'changed "z"',
                                                    b'removed "a/gone" and 1 entry below', b'added   "new/gone"'])
        self.assertEqual(self.compare(*self.logs, "-x", "changed", "-x", "gone"), [b'changed "z"'])
        self.assertIn(b"only in logs with details", self.run_host("compare", *self.logs, "--ignore", "mode").stderr)
        self.assertEqual(self.compare(*self.logs, "--summary")[:4],
                         [b'removed: 2 entries below "a"', b'added: 1 entry below "new"', b'value: 1 entry below "."',
                          b'value: 1 entry below "a/b"'])

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
        self.assertEqual(list(map(read_back, lines)),
                         [("added", os.path.relpath(long + b"/new", self.tree), None, set(), 0)])
        through_pipe = self.run_command("bash", "-c", f"{HOST} compare <(cat {self.logs[1]}) <(cat {system})")
        self.assertEqual((through_pipe.returncode, through_pipe.stdout.splitlines()), (1, lines))
        write(self.logs[0], text[:text.index(b"\n", text.index(b"HashWorker.cpp")) + 1])
        self.assert_rejected(self.logs[1], self.logs[0], "its last record is not terminated\n")

    def test_compare_reads_logs_of_a_whole_system(self):
        for log, value in zip(self.logs, (1, 2)):
            write(log, b'%016x "/a/b"\n%016x "/a"\n%016x "/"\n' % (value, value, value))
        self.assertEqual(self.compare(*self.logs), [b'changed "a/b"'])

    def compare_roots(self, *records):
        """Compares two logs, each given by the records below its root, and the value and details of its root."""
        for log, (below_root, value, root) in zip(self.logs, records):
            text = 'NerixScanLog 2 md5 0 "/a"\n' + below_root + f'{value:016x} "/a" {root}\n'
            write(log, (text + f"complete {text.count(chr(10)) - 1}\n").encode())
        return self.compare(*self.logs)

    def test_compare_finds_an_exchange_of_kinds_that_keeps_the_value(self):
        file, directory = ("", 1, "file 0 0 1 0755 0 " + "0" * 16), ("", 1, "directory 0 0 1 0755 0")
        self.assertEqual(self.compare_roots(file, directory), [b'changed ".": kind file -> directory'])

    def test_compare_counts_the_entries_below_a_root_that_became_a_file(self):
        below_root = f'{2:016x} "/a/b" file 0 0 1 0755 0 {0:016x}\n'
        lines = self.compare_roots((below_root, 1, "directory 0 0 1 0755 0"), ("", 1, f"file 0 0 1 0755 0 {0:016x}"))
        self.assertEqual(lines, [b'changed ".": kind directory -> file and 1 entry below'])

    def test_compare_warns_if_different_users_scanned_the_trees(self):
        self.compare_roots(*[("", value, "directory 0 0 2 0755 60") for value in (1, 2)])
        write(self.logs[1], read(self.logs[1]).replace(b" md5 0 ", b" md5 7 "))
        self.compare(*self.logs)
        self.assertIn("the trees were scanned by different users, 0 and 7: ", self.totals)

    def test_compare_lists_links_and_size_of_a_directory_if_nothing_else_differs(self):
        lines = self.compare_roots(("", 1, "directory 0 0 2 0755 60"), ("", 2, "directory 0 0 3 0755 80"))
        self.assertEqual(lines, [b'changed ".": links 2 -> 3, size 60 -> 80'])

    def assert_rejected(self, before, after, reason):
        run = self.run_host("compare", before, after)
        self.assertRegex(run.stderr.decode(), reason)
        self.assertEqual((run.returncode, run.stdout), (2, b""))

    def test_compare_rejects_what_cannot_be_compared(self):
        subprocess.run(["cp", "-a", self.tree, self.other], check=True)
        self.scan(self.logs[0])
        self.scan(self.logs[1], "--details")
        self.assert_rejected(*self.logs, "the first log has no details, or those of an older version; record both with")
        self.assert_rejected(self.logs[0], self.tree, 'before.log" has no details, or those of an older version, so it')
        self.scan(self.logs[0], "--details", "--hash", "sha1")
        self.assert_rejected(*self.logs, "different hash methods, sha1 and md5; scan both trees with the same one")
        self.assertEqual(self.compare(self.logs[0], self.other, status=0), [], "a tree is scanned by the method of the log")
        self.assert_rejected(self.tree, "/nowhere", "/nowhere: No such file or directory")

    def test_compare_rejects_damaged_and_incomplete_logs(self):
        os.makedirs(self.tree + b"/a/b")
        self.value(self.tree)
        system = "".join(line.decode() + "\n" for line in self.log_lines("main"))
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
            "record twice": (lines[0] + text, "line 2 is out of order"),
            "text after the end": (text + "junk\n", "line 4 is not a scan record"),
            "lines end as on other systems": (text.replace("\n", "\r\n"), "line 1 is damaged"),
            "text after a record": (text.replace('b"', 'b" x', 1), "line 1 is damaged"),
            "unknown pair": (text.replace("/a/b", "/a/&b"), "line 1 is damaged"),
            "long path": (text.replace("/a/b", "/a/" + "b" * 5000), "line 1 is damaged"),
            "begin of a system log rotated away": (system[system.index("[INF] HashWorker"):].split("\n", 1)[1],
                                                   "is incomplete: records"),
            "record of a system log lost": (re.sub(r".*/a\"\n", "", system), "is incomplete: records"),
            "other tree": (text.replace("/tree", "/wood"), "the logs are of different trees"),
            "some records with details": (lines[0] + lines[1][:-1] + " directory 0 0 2 0755 1\n" + lines[2],
                                          "line 2 has details"),
        }
        for name, (content, reason) in cases.items():
            with self.subTest(name):
                write(self.logs[1], content.encode())
                self.assert_rejected(self.logs[0], self.logs[1], reason)

    def test_compare_rejects_details_that_no_scan_writes(self):
        write(self.tree + b"/file")
        os.symlink('t"&\nx', self.tree + b"/link")
        os.setxattr(self.tree + b"/file", "user.a&b", b"1")
        self.scan(self.logs[0], "--details")
        text = read(self.logs[0]).decode()
        size_and_content, value = re.search(r"(0 \w{16}) \S+ (\w{16})$", text, re.MULTILINE).groups()
        link, owner = re.search(r'\w+ "[^"]*link".*\n', text)[0], f"file {os.geteuid()} "
        cases = {"unknown kind": (" file ", " fil "), "negative owner": (owner, "file -1 "),
                 "leading zero": (owner, "file 00 "), "owner of 33 bits": (owner, "file 4294967296 "),
                 "short mode": (" 0644 ", " 644 "), "odd mode": (" 0644 ", " 0689 "),
                 "no content": (size_and_content, "0"), "short value": (value, value[1:]), "upper case": (value, "A" * 16),
                 "unquoted name": ('"user.a&&b"', "user.ab"), "unknown pair": ("user.a&&b", "user.a&b"),
                 "attribute twice": (f' "user.a&&b" {value}', f' "user.a&&b" {value}' * 2), "no target": (' "t&"&&&nx"', ""),
                 "two blanks": (' "t&"', '  "t&"'), "a control character": (" file ", " file\x1b[31m "),
                 "other version": ("NerixScanLog 2", "NerixScanLog 3"), "other root": ('/tree"\n', '/x"\n'),
                 "other count": ("complete 3", "complete 4"), "a record less": (link, ""),
                 "text after the end": ("complete 3\n", "complete 3\n\n")}
        for name, (old, new) in cases.items():
            with self.subTest(name):
                self.assertIn(old, text)
                write(self.logs[1], text.replace(old, new).encode())
                self.assert_rejected(self.logs[0], self.logs[1], r"after\.log: (line \d+ |is incomplete|has a header)")
        for end in range(len(text)):
            with self.subTest("cut", end=text[:end][-20:]):
                write(self.logs[1], text[:end].encode())
                self.assert_rejected(self.logs[0], self.logs[1], r"after\.log: ")

    def test_compare_of_logs_without_lines_takes_no_memory(self):
        make_hole(self.logs[0], 3 << 30)
        limit = "" if SANITIZED else "ulimit -v 200000;"
        run = self.run_command("bash", "-c", f"{limit} exec {HOST} compare {self.logs[0]} {self.logs[0]}")
        self.assertEqual(run.returncode, 2)
        self.assertIn(b"before.log: line 1 is longer than any scan record\n", run.stderr)

    def test_compare_reports_a_log_that_does_not_fit(self):
        for number in range(200):
            os.mkdir(self.tree + b"/%d" % number)
        self.scan(self.logs[0])
        tree, pipe = self.tree.decode(), f"<(cat {self.logs[0]})"
        for place, reason in ((tree, f'NerixHost: cannot write the log of "{tree}": File too large\n'),
                              (pipe, ": cannot be copied: File too large\n")):
            run = self.run_command("bash", "-c", f"ulimit -f 4; exec {HOST} compare {place} {place}")
            self.assertEqual((run.returncode, run.stdout), (2, b""))
            self.assertIn(reason, run.stderr.decode())

    def test_compare_reports_a_tree_that_cannot_be_read(self):
        os.mkdir(self.other)
        write(self.tree + b"/secret")
        os.chmod(self.tree + b"/secret", 0)
        run = self.run_unprivileged("compare", self.tree, self.other, program=HOST)
        self.assertEqual((run.returncode, run.stdout), (2, b""))
        self.assertIn(b'cannot read "%b/secret": Permission denied\n' % self.tree, run.stderr)


if __name__ == "__main__":
    main()
