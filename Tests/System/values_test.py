"""The value and the scan records of real trees equal the reference model's."""

import os
import random
import stat

from harness import SystemTest, main, write
from tree_value import STEPS, Model
import random_tree

TREES = int(os.environ.get("NERIX_RANDOM_TREES", "200"))
SEED = int(os.environ.get("NERIX_RANDOM_SEED", "1"))


class Values(SystemTest):
    def assert_agrees(self, path, method):
        before = len(self.scan_records())
        model = Model(method)
        expected = model.value(path)
        self.assertEqual(self.value(path, method), expected)
        records = self.scan_records()[before:]
        # A record of more than 768 bytes would come in pieces: the names of random trees are chosen shorter.
        self.assertEqual(records, model.record_lines())

    def test_random_trees(self):
        for number in range(TREES):
            method = list(STEPS)[number % len(STEPS)]
            with self.subTest(seed=SEED, tree=number, method=method):
                tree = os.fsencode(os.path.join(self.work, str(number)))
                os.mkdir(tree)
                random_tree.make(tree, random.Random(SEED * 100_000 + number))
                self.assert_agrees(tree, method)

    def test_roots_of_each_kind(self):
        path = lambda name: os.path.join(self.work, name)
        write(path("file"), b"x" * 5000)
        os.mkdir(path("directory"))
        os.symlink("directory", path("link"))
        os.mkfifo(path("fifo"))
        os.mknod(path("socket"), 0o600 | stat.S_IFSOCK)
        for name in ("file", "directory", "link"):
            with self.subTest(name):
                self.assert_agrees(path(name), "md5")
                self.assert_agrees(path(name), "sha1")
        for special in (path("fifo"), path("socket"), "/dev/null"):
            self.assertEqual(self.value(special), "0" * 16)

    def test_names_and_kinds_of_path(self):
        tree = os.path.join(os.fsencode(self.work), b"a", b'\xff"&\n ' * 40)
        os.makedirs(tree)
        self.assert_agrees(tree, "md5")
        # Relative to the current directory, with defaults for what is not given, and in a locale that is missing.
        self.environment["LC_ALL"] = "xx_YY.UTF-8"
        run = self.run_program("--hash", "sha1", cwd=self.work)
        self.assertEqual(run.stdout.decode().strip(), Model("sha1").value(self.work))


if __name__ == "__main__":
    main()
