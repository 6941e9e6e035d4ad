"""Trees as deep and as wide as they come."""

import os
import re
import subprocess
import sys

from harness import PROGRAM, SANITIZED, SystemTest, main
from tree_value import Model

PATH_MAX = 4096


class Extremes(SystemTest):
    def make_chain(self, length):
        """A chain of directories whose last path has this many bytes."""
        left = length - len(os.path.realpath(self.work))
        here = os.getcwd()
        os.chdir(self.work)
        while left >= 2:
            name = "d" if left % 2 == 0 else "dd"
            os.mkdir(name)
            os.chdir(name)
            left -= 1 + len(name)
        os.chdir(here)

    def test_chain_as_deep_as_a_path_can_be(self):
        sys.setrecursionlimit(20_000)
        self.addCleanup(subprocess.run, ["rm", "-rf", self.work], check=True)
        self.make_chain(PATH_MAX - 1)
        self.assertEqual(self.value(self.work), Model("md5").value(self.work))
        subprocess.run(f"rm -rf '{self.work}'/*", shell=True, check=True)
        self.make_chain(PATH_MAX)
        self.assertEqual(self.value(self.work), "ERROR", "the last path is too long for the system")
        self.assertEqual(self.settings()[::2], ("inactive", "ERROR"))

    def test_directory_of_50000_entries(self):
        for number in range(50_000):
            os.mknod(os.path.join(self.work, f"entry {number}"))
        expected = Model("md5").value(self.work)
        peak = ""
        with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment, stdout=subprocess.PIPE) as run:
            with open(f"/proc/{run.pid}/status", encoding="ascii") as status:
                while run.poll() is None:
                    status.seek(0)
                    peak = "".join(re.findall(r"VmHWM:\s+(\d+) kB", status.read())) or peak
            self.assertEqual(run.stdout.read().decode().strip(), expected)
        if not SANITIZED:  # the names of one open directory and its list stand in memory
            self.assertLess(int(peak), 16 * 1024, "KiB")


if __name__ == "__main__":
    main()
