"""The device around a run: drives, mount points, product data, places that cannot be written.

Everything happens in a mount name space of the script's own: it starts itself anew in one.
"""

import os
import re
import signal
import subprocess
import sys
import time

if "NERIX_OWN_MOUNTS" not in os.environ:
    flags = ["-m"] if os.geteuid() == 0 else ["-Urm"]
    probe = subprocess.run(["unshare", *flags, "mount", "-t", "tmpfs", "none", "/media"], check=False,
                           capture_output=True, text=True)
    if probe.returncode != 0:
        print(f"SKIPPED device_test: no private mounts on this machine: {probe.stderr.strip()}")
        sys.exit(77)
    os.environ["NERIX_OWN_MOUNTS"] = "yes"
    os.execvp("unshare", ["unshare", *flags, sys.executable, *sys.argv])

from harness import PROGRAM, SETTINGS, SystemTest, main  # noqa: E402  (the name space comes first)
from tree_value import Model  # noqa: E402

LOG_NAME = re.compile(r"NerixVerifierHash-\d{8}-\d{6}\.log")


class Device(SystemTest):
    def mount(self, where, *options, kind="tmpfs"):
        os.makedirs(where, exist_ok=True)
        arguments = ["--bind", options[0]] if kind == "bind" else ["-t", kind, *options, "none"]
        subprocess.run(["mount", *arguments, where], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", where], check=False, stderr=subprocess.DEVNULL)

    def setUp(self):
        super().setUp()
        for place in ("/media", "/mnt"):
            self.mount(place)
        self.fill(self.work)

    @staticmethod
    def fill(tree):
        for number in range(5):
            os.makedirs(os.path.join(tree, f"directory {number}"))
            for name in ("a", 'b"&'):
                with open(os.path.join(tree, f"directory {number}", name), "w", encoding="ascii") as file:
                    file.write(name * 100)

    def expected(self):
        model = Model("md5")
        return model.value(self.work), model.record_lines()

    def only_log(self, drive):
        names = os.listdir(drive)
        self.assertEqual(len(names), 1, names)
        self.assertRegex(names[0], LOG_NAME)
        with open(os.path.join(drive, names[0]), "rb") as log:
            return log.read().splitlines()

    def test_drive_gets_the_scan_log(self):
        self.mount("/media/usb")
        value, records = self.expected()
        before = time.strftime("%Y%m%d-%H%M%S")
        self.assertEqual(self.value(self.work), value)
        self.assertEqual(self.only_log("/media/usb"), records)
        name = os.listdir("/media/usb")[0]
        self.assertTrue(before <= name[18:33] <= time.strftime("%Y%m%d-%H%M%S"), name)
        self.assertEqual(self.scan_records(), [])
        self.assertIn(b">Detected USB drive '/media/usb'. Create log file: /media/usb/" + name.encode(),
                      b"\n".join(self.log_lines("main")))

    def test_last_drive_of_the_table_is_taken(self):
        self.mount("/media/second")
        self.mount("/media/first")
        value, records = self.expected()
        self.assertEqual(self.value(self.work), value)
        self.assertEqual(os.listdir("/media/second"), [])
        self.assertEqual(self.only_log("/media/first"), records)

    def test_unusable_drives(self):
        value, records = self.expected()
        for number, options in enumerate((["-o", "ro"], ["-o", "nr_inodes=1"])):
            with self.subTest(options):
                drive = f"/media/unusable {number}".replace(" ", "-")
                self.mount(drive, *options)
                before = len(self.scan_records())
                self.assertEqual(self.value(self.work), value)
                self.assertEqual(self.scan_records()[before:], records)
                warning = f">Can't write to USB drive '{drive}'... using DLOG.".encode()
                self.assertEqual(sum(warning in line for line in self.log_lines("main")), 1)

    def test_drive_that_fills_up(self):
        self.mount("/media/small", "-o", "size=4k")
        for number in range(5, 100):
            os.mkdir(os.path.join(self.work, f"directory {number}"))
        value, _ = self.expected()
        self.assertEqual(self.value(self.work), value)

    def test_drive_that_vanishes(self):
        self.mount("/media/usb")
        with open(os.path.join(self.work, "big"), "wb") as file:
            file.truncate(600 << 20)
        value, _ = self.expected()
        for vanish in ("rm /media/usb/*", "umount -l /media/usb"):
            with self.subTest(vanish):
                with subprocess.Popen([PROGRAM, "--path", self.work], env=self.environment,
                                      stdout=subprocess.PIPE) as run:
                    while not os.listdir("/media/usb") and run.poll() is None:
                        pass
                    subprocess.run(vanish, shell=True, check=True)
                    self.assertIsNone(run.poll(), "the run was over too soon")
                    self.assertEqual(run.stdout.read().decode().strip(), value)

    def test_mount_points_in_the_tree(self):
        self.mount("/media/usb")
        inner = os.path.join(self.work, "directory 2")
        self.mount(os.path.join(inner, "bound"), self.work, kind="bind")
        self.mount(os.path.join(inner, "other"))
        with open(os.path.join(inner, "other", "file"), "wb") as file:
            file.write(b"not counted")
        value, records = self.expected()
        self.assertEqual(self.value(self.work), value)
        log = self.only_log("/media/usb")
        self.assertEqual(log, records)
        # The table spells the blanks of this path as \040, so the bind mount is not recognised by its name.
        self.assertIn(f'0000000000000222 "{inner}/other"'.encode(), log)

        plain = os.path.join(self.work, "directory-6")
        self.mount(os.path.join(plain, "bound"), os.path.join(self.work, "directory 1"), kind="bind")
        value, records = self.expected()
        self.assertEqual(self.value(plain), Model("md5").value(plain))
        self.assertEqual(self.value(self.work), value)
        self.assertIn(f'0000000000000444 "{plain}/bound"'.encode(), records)

    def test_parameters_file_never_stops_a_run(self):
        value, _ = self.expected()
        directory = "/mnt/systemrw/org.corvan.tv.nerix/data/tv"
        os.makedirs(directory)
        for content, message in ((None, b">Failed to open DebugAndTestParameters from "),
                                 (b"\0\1\2", b">Failed to load DebugAndTestParameters from "),
                                 (b"<boost_serialization", b">Failed to load DebugAndTestParameters from ")):
            if content is not None:
                with open(os.path.join(directory, "DebugAndTestParameters.xml"), "wb") as file:
                    file.write(content)
            before = len(self.log_lines("main"))
            self.assertEqual(self.value(self.work), value)
            self.assertIn(message, b"\n".join(self.log_lines("main")[before:]))

    def test_places_that_cannot_be_used(self):
        value, _ = self.expected()
        self.mount("/mnt/read-only", "-o", "ro")
        cases = {
            "no home at all": {},
            "read-only platform home": {"NERIX_PLATFORM_HOME": "/mnt/read-only/home"},
            "read-only home": {"HOME": "/mnt/read-only", "XDG_RUNTIME_DIR": "/mnt/read-only"},
            "home that is missing": {"HOME": "/mnt/missing/home"},
            "platform home that is missing": {"NERIX_PLATFORM_HOME": "/mnt/missing/platform"},
        }
        for place in ("/root", "/dev/shm"):
            self.mount(place)
        del self.environment["NERIX_PLATFORM_HOME"]
        for name, variables in cases.items():
            with self.subTest(name):
                run = self.run_program("--path", self.work, env={**self.environment, **variables})
                self.assertIn(run.returncode, (0, 1))
                if run.returncode == 0:
                    self.assertEqual(run.stdout.decode(), value + "\n")
                else:
                    self.assertEqual(run.stdout.count(b"Exception caught in NerixVerifierHash: "), 1)
                    self.assertTrue(run.stdout.endswith(b"  -- see dlog for details\n"))
                    self.assertIn(b"ead-only file system", run.stderr)
                self.assertEqual(run.returncode, 1 if "read-only" in name else 0)

    def test_settings_are_watched_from_another_process(self):
        with open(os.path.join(self.work, "big"), "wb") as file:
            file.truncate(500 << 20)
        value, _ = self.expected()
        with subprocess.Popen([SETTINGS, "watch"], env=self.environment, stdout=subprocess.PIPE, text=True) as watch:
            watch.stdout.readline()
            self.assertEqual(self.value(self.work), value)
            lines = watch.stdout.read().splitlines()
        self.assertEqual(watch.returncode, 0)
        self.assertTrue(any(re.fullmatch(r"active +\d\d?\.\d\d % \[#* +\] 00000111", line) for line in lines), lines)
        self.assertRegex(lines[-1], r"^inactive +100\.0 % \[#{40}\] " + value[:8] + "$")

        with subprocess.Popen([SETTINGS, "watch"], env=self.environment, stdout=subprocess.PIPE, text=True) as watch:
            watch.stdout.readline()
            watch.send_signal(signal.SIGINT)
            self.assertEqual(watch.wait(10), 0)
        key = "db/menu/support/softwareupdate/hashverifier_result"
        get = subprocess.run([SETTINGS, "get", key], env=self.environment, check=False, capture_output=True, text=True)
        self.assertEqual((get.returncode, get.stdout), (0, value[:8] + "\n"))
        for arguments in (["get", "missing"], ["get"], []):
            get = subprocess.run([SETTINGS, *arguments], env=self.environment, check=False, capture_output=True)
            self.assertEqual((get.returncode, get.stdout), (1, b""))


if __name__ == "__main__":
    main()
