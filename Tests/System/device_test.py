"""USB drives, mount points, and settings watched by other processes."""

import glob
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
import unittest

from harness import HOST, NO_MOUNTS, PREFIX, PROGRAM, SANITIZED, SystemTest, main, make_hole, write
from tree_value import Model


@unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
class Device(SystemTest):
    def setUp(self):
        super().setUp()
        for place in ("/media", "/mnt"):
            self.mount(place)
        for number in range(5):
            os.makedirs(os.path.join(self.work, f"directory {number}"))
            for name in ("a", 'b"&'):
                write(os.path.join(self.work, f"directory {number}", name), (name * 100).encode())

    def expected(self):
        model = Model("md5")
        return model.value(self.work), model.record_lines()

    def only_log(self, drive):
        name, = os.listdir(drive)
        with open(os.path.join(drive, name), "rb") as log:
            return log.read().split(b"\n")[:-1]

    def test_last_drive_of_the_table_gets_the_scan_log(self):
        self.mount("/media/second")
        self.mount("/media/first")
        value, records = self.expected()
        self.assertEqual(self.value(self.work), value)
        self.assertEqual(os.listdir("/media/second"), [])
        self.assertEqual(self.only_log("/media/first"), records)
        self.assertEqual(self.scan_records(), [])
        self.assertIn(b">Detected USB drive '/media/first'. Create log file: /media/first/" + os.listdir(b"/media/first")[0],
                      b"\n".join(self.log_lines("main")))

    def test_unusable_drives(self):
        value, records = self.expected()
        for drive, option in (("/media/read-only", "ro"), ("/media/no-inodes", "nr_inodes=1")):
            self.mount(drive, "-o", option)
            before = len(self.scan_records())
            self.assertEqual(self.value(self.work), value)
            self.assertEqual(self.scan_records()[before:], records)
            warning = f">Can't write to USB drive '{drive}'... using DLOG.".encode()
            self.assertEqual(sum(warning in line for line in self.log_lines("main")), 1)
            self.assertIn(b".log: open errno=", b"".join(self.log_lines("main")))
        for number in range(5, 1000):
            os.mkdir(os.path.join(self.work, f"directory {number}"))
        value, _ = self.expected()
        self.mount("/media/small", "-o", "size=4k")
        self.assertEqual(self.value(self.work), value, "the drive fills up")
        self.mount("/media/large")
        self.assertEqual(self.value(self.work, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (40_000,) * 2)),
                         value, "a file may not be that large")
        incomplete = [line for line in self.log_lines("main") if b"[WRN]" in line and b"log on the drive is" in line]
        self.assertEqual(len(incomplete), 2)

    @unittest.skipIf(SANITIZED or not shutil.which("strace"), "needs strace, and a program without a sanitizer's own calls")
    def test_drive_whose_file_system_has_no_locks_gets_the_scan_log(self):
        self.mount("/media/usb")
        value, records = self.expected()
        for error in ("ENOLCK", "EOPNOTSUPP", "ENOSYS"):
            run = subprocess.run(["strace", "-qq", "-f", "-o", "/dev/null", "-e", f"inject=flock:error={error}", PROGRAM, "--path",
                                  self.work], check=False, env=self.environment, stdout=subprocess.PIPE)
            self.assertEqual(run.stdout.decode(), value + "\n")
            self.assertEqual(self.only_log("/media/usb"), records)
            os.remove(glob.glob("/media/usb/*")[0])

    def test_mount_points_in_the_tree(self):
        self.mount("/media/usb")
        bound, other = (os.path.join(self.work, "directory 2", name) for name in ("bound", "other"))
        # /proc/mounts escapes the blanks in this path as \\040, so the bind mount is not recognised.
        self.mount(bound, self.work, kind="bind")
        self.mount(other)
        # Blanks alone separate the words of the table, which has this name as it is.
        plain = os.path.join(self.work, "directory-6", "bound\r\v\f")
        self.mount(plain, os.path.join(self.work, "directory 1"), kind="bind")
        write(os.path.join(other, "file"), b"not counted")
        value, records = self.expected()
        self.assertEqual(self.value(self.work), value)
        self.assertEqual(self.only_log("/media/usb"), records)
        self.assertIn(f'0000000000000222 "{other}"'.encode(), records)
        self.assertIn(f'0000000000000444 "{plain}"'.encode(), records)

    def test_settings_are_watched_from_another_process(self):
        make_hole(os.path.join(self.work, "big"), 500 << 20)
        value, _ = self.expected()
        with subprocess.Popen([HOST, "settings", "watch", "--json"], env=self.environment, stdout=subprocess.PIPE) as objects, \
                subprocess.Popen([HOST, "settings", "watch"], env=self.environment, stdout=subprocess.PIPE, text=True) as watch:
            watch.stdout.readline()
            time.sleep(0.5) # give the JSON watcher time to start; it prints nothing while waiting
            self.assertEqual(self.value(self.work), value)
            lines = watch.communicate(timeout=60)[0].splitlines()
            last = json.loads(objects.communicate(timeout=60)[0].splitlines()[-1])
        self.assertEqual((watch.returncode, objects.returncode), (0, 0))
        self.assertEqual(last, {"status": "inactive", "progress": "100.0", "result": value[:8]})
        held = [tuple(json.loads(line).values()) for line in self.run_host("settings", "list", "--json").stdout.splitlines()]
        self.assertEqual(held, [(f"db/{PREFIX}result", value[:8]), (f"memory/{PREFIX}progress", "100.0"),
                                (f"memory/{PREFIX}status", "inactive")])
        self.assertTrue(any(re.fullmatch(r"active +\d\d?\.\d\d? % \[#* +\] 00000111", line) for line in lines), lines)
        self.assertRegex(lines[-1], r"^inactive +100\.0 % \[#{38}\] " + value[:8] + "$")
        left = subprocess.run(["timeout", "--preserve-status", "-k5", "-sINT", "1", HOST, "settings", "watch"],
                              env=self.environment, check=False, stdout=subprocess.PIPE)
        self.assertEqual((left.returncode, left.stdout.decode()), (128 + signal.SIGINT, f"waiting for a scan (the last one: {value[:8]})\n"))


if __name__ == "__main__":
    main()
