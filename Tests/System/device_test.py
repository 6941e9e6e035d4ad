"""USB drives, mount points, and settings watched by other processes."""

import glob
import json
import os
import resource
import signal
import subprocess
import time

from harness import HOST, PREFIX, PROGRAM, SystemTest, main, make_hole, process_identity, read, write
from tree_value import MOUNT_POINT, OTHER_DEVICE, Model


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
        return read(os.path.join(drive, name)).split(b"\n")[:-1]

    def test_run_logs_to_the_last_drive_of_the_mount_table(self):
        self.mount("/media/second")
        self.mount("/media/first")
        value, records = self.expected()
        self.assertEqual(self.value(self.work, preexec_fn=lambda: os.umask(0o007)), value)
        self.assertEqual(os.listdir("/media/second"), [])
        self.assertEqual(self.only_log("/media/first"), records)
        self.assertEqual(os.stat(glob.glob("/media/first/*")[0]).st_mode & 0o777, 0o660, "mode of the log")
        self.assertEqual(self.scan_records(), [])
        self.assertIn(b">Detected USB drive '/media/first'. Create log file: /media/first/" + os.listdir(b"/media/first")[0],
                      b"\n".join(self.log_lines("main")))

    def test_run_logs_to_the_system_log_if_its_drive_cannot_be_written(self):
        value, records = self.expected()
        for drive, option in (("/media/read-only", "ro"), ("/media/no-inodes", "nr_inodes=1")):
            with self.subTest(drive):
                self.mount(drive, "-o", option)
                before, lines = len(self.scan_records()), len(self.log_lines("main"))
                self.assertEqual(self.value(self.work), value)
                self.assertEqual(self.scan_records()[before:], records)
                log = b"\n".join(self.log_lines("main")[lines:])
                for warning in (f">Can't write to USB drive '{drive}'... using DLOG.".encode(), b".log: open errno="):
                    self.assertEqual(log.count(warning), 1, f"times {warning} in {log}")

    def test_run_reports_an_incomplete_log_on_its_drive(self):
        for number in range(5, 1000):
            os.mkdir(os.path.join(self.work, f"directory {number}"))
        value, _ = self.expected()
        self.mount("/media/small", "-o", "size=4k")
        self.assertEqual(self.value(self.work), value, "the drive fills up")
        self.mount("/media/full", "-o", "size=4k")
        write("/media/full/file", bytes(4096))
        self.value(os.path.join(self.work, "directory 1"))  # its few records are written at the end
        self.mount("/media/large")
        self.assertEqual(self.value(self.work, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (40_000,) * 2)),
                         value, "a file may not be that large")
        incomplete = [line for line in self.log_lines("main") if b"[WRN]" in line and b"log on the drive is" in line]
        self.assertEqual(len(incomplete), 3, f"warnings of three runs: {incomplete}")

    def test_run_logs_to_a_drive_whose_file_system_has_no_locks(self):
        self.mount("/media/usb")
        value, records = self.expected()
        for error in ("ENOLCK", "EOPNOTSUPP", "ENOSYS"):
            run = self.run_strace("-e", f"inject=flock:error={error}", PROGRAM, "--path", self.work)
            self.assertEqual(run.stdout.decode(), value + "\n")
            self.assertEqual(self.only_log("/media/usb"), records)
            os.remove(glob.glob("/media/usb/*")[0])

    def test_run_reads_no_mount_point_in_its_tree(self):
        self.mount("/media/usb")
        bound, other = (os.path.join(self.work, "directory 2", name) for name in ("bound", "other"))
        # /proc/mounts escapes the blanks in this path as \\040, so the run does not recognise the bind mount and reads it.
        self.mount(bound, self.work, kind="bind")
        self.mount(other)
        # /proc/mounts does not escape these characters, and they do not separate its words: the run recognises the mount.
        plain = os.path.join(self.work, "directory-6", "bound\r\v\f")
        self.mount(plain, os.path.join(self.work, "directory 1"), kind="bind")
        write(os.path.join(other, "file"), b"not counted")
        value, records = self.expected()
        self.assertEqual(self.value(self.work), value)
        self.assertEqual(self.only_log("/media/usb"), records)
        self.assertIn(f'{OTHER_DEVICE:016x} "{other}"'.encode(), records)
        self.assertIn(f'{MOUNT_POINT:016x} "{plain}"'.encode(), records)

    def test_settings_watch_shows_a_run_of_another_process(self):
        make_hole(os.path.join(self.work, "big"), 500 << 20)
        value, _ = self.expected()
        objects, watch = self.start_watch("--json"), self.start_watch()
        start = time.monotonic()
        watch.stdout.readline()
        time.sleep(0.5)  # give the JSON watcher time to start; it prints nothing while waiting
        self.assertEqual(self.value(self.work), value)
        lines = watch.communicate(timeout=60)[0].splitlines()
        told = objects.communicate(timeout=60)[0].splitlines()
        self.assertLess(len(told), time.monotonic() - start + 3, "one object a second, besides the first and the last")
        self.assertEqual((watch.returncode, objects.returncode), (0, 0))
        self.assertEqual(json.loads(told[-1]), {"status": "inactive", "progress": "100.0", "result": value[:8]})
        self.assertRegex("\n".join(lines), r"(?m)^active +\d\d?\.\d\d? % \[#* +\] 00000111$")
        self.assertRegex(lines[-1], r"^inactive +100\.0 % \[#{38}\] " + value[:8] + "$")

    def assert_watch_ends(self, watch, status, last):
        lines = watch.communicate(timeout=30)[0].splitlines()
        self.assertEqual((watch.returncode, lines[-1].split()), (status, last.split()), lines)

    def start_watch(self, *options):
        command = [HOST, "settings", "watch", *options]
        watch = subprocess.Popen(command, env=self.environment, stdout=subprocess.PIPE, text=True)
        self.addCleanup(watch.stdout.close)
        self.addCleanup(watch.kill)
        return watch

    def test_settings_watch_recognises_a_run_by_either_setting(self):
        self.value(self.work)
        status, progress, result = f"memory/{PREFIX}status", f"memory/{PREFIX}progress", f"db/{PREFIX}result"
        for key, live in ((status, "active"), (result, "00000111")):
            with self.subTest(key):
                self.put_setting(progress, "250.00", process_identity())
                self.put_setting(key, live, process_identity())
                watch = self.start_watch()
                self.assertIn(" 250.00 % [" + "#" * 38 + "]", watch.stdout.readline(), "a full bar")
                for name, text in ((status, "inactive"), (progress, "100.0"), (result, "01234567")):
                    self.put_setting(name, text, process_identity())
                self.assert_watch_ends(watch, 0, f"inactive 100.0 % [{'#' * 38}] 01234567")

    def test_settings_watch_notices_a_run_that_it_never_saw_active(self):
        self.value(self.work)
        status, progress, result = self.settings()
        watch = self.start_watch()
        self.assertEqual(watch.stdout.readline(), f"waiting for a scan (the last one: {result})\n")
        self.put_setting(f"db/{PREFIX}result", result, process_identity())  # the same value, by another process
        self.assert_watch_ends(watch, 0, f"{status} {progress} % [{'#' * 38}] {result}")

    def test_settings_list_prints_json_objects(self):
        value = self.value(self.work)
        held = [tuple(json.loads(line).values()) for line in self.run_host("settings", "list", "--json").stdout.splitlines()]
        self.assertEqual(held, [(f"db/{PREFIX}result", value[:8]), (f"memory/{PREFIX}progress", "100.0"),
                                (f"memory/{PREFIX}status", "inactive")])

    def test_settings_watch_that_waits_shows_the_last_result(self):
        value = self.value(self.work)
        watch = self.run_command("timeout", "--preserve-status", "-k5", "-sINT", "1", HOST, "settings", "watch")
        self.assertEqual(watch.stdout.decode(), f"waiting for a scan (the last one: {value[:8]})\n")
        self.assertEqual(watch.returncode, 128 + signal.SIGINT)


if __name__ == "__main__":
    main()
