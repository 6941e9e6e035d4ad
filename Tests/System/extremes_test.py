"""Trees as deep, as wide and as large as they come. NERIX_ALL_FAULTS=1 adds those that take minutes."""

import os
import resource
import subprocess
import sys

from harness import PROGRAM, SANITIZED, SystemTest, main
from tree_value import Model

ALL = os.environ.get("NERIX_ALL_FAULTS") == "1"
PATH_MAX = 4096


class Extremes(SystemTest):
    def make_chain(self, length):
        """A chain of directories whose last path has this many bytes."""
        here = os.open(self.work, os.O_RDONLY)
        left = length - len(self.work)
        while left >= 2:
            name = "d" if left % 2 == 0 else "dd"
            os.mkdir(name, dir_fd=here)
            following = os.open(name, os.O_RDONLY, dir_fd=here)
            os.close(here)
            here = following
            left -= 1 + len(name)
        os.close(here)

    def test_chain_as_deep_as_a_path_can_be(self):
        sys.setrecursionlimit(20_000)
        self.make_chain(PATH_MAX - 1)
        expected = Model("md5").value(self.work)
        for limit in (resource.RLIM_INFINITY, 2 << 20):  # both give threads small stacks by default
            stack = (limit, resource.getrlimit(resource.RLIMIT_STACK)[1])
            self.assertEqual(self.value(self.work, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_STACK, stack)),
                             expected)
        subprocess.run(["rm", "-rf", os.path.join(self.work, "d"), os.path.join(self.work, "dd")], check=True)
        self.make_chain(PATH_MAX)
        self.assertEqual(self.value(self.work), "ERROR", "the last path is too long for the system")
        status, _, result = self.settings()
        self.assertEqual((status, result), ("inactive", "ERROR"))
        subprocess.run(["rm", "-rf", self.work], check=True)

    def test_directory_of_200000_entries(self):
        for number in range(200_000 if ALL else 50_000):
            os.mknod(os.path.join(self.work, f"entry {number}"))
        expected = Model("md5").value(self.work)
        with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment, stdout=subprocess.PIPE) as run:
            peak = 0
            while run.poll() is None:
                peak = max(peak, self.resident(run.pid))
            self.assertEqual(run.stdout.read().decode().strip(), expected)
        self.assertGreater(peak, 0)
        if not SANITIZED:  # the names of one open directory and its list stand in memory
            self.assertLess(peak, (24 if ALL else 16) * 1024, "KiB")

    @staticmethod
    def resident(pid):
        try:
            with open(f"/proc/{pid}/status", encoding="ascii") as status:
                return next((int(line.split()[1]) for line in status if line.startswith("VmHWM")), 0)
        except (FileNotFoundError, ProcessLookupError):
            return 0

    def test_file_larger_than_32_bits_count(self):
        size = (8 << 30) if ALL else (3 << 30)
        path = os.path.join(self.work, "hole")
        with open(path, "wb") as file:
            file.truncate(size)
        rest = Model("trivial")
        with open(path + ".empty", "wb"):
            pass
        expected = int(rest.value(path + ".empty"), 16) - len(".empty") + size
        self.assertEqual(self.value(path, "trivial"), f"{expected:016x}")


if __name__ == "__main__":
    main()
