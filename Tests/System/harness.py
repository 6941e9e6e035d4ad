"""Runs the built programs and reports the results to ctest.

Usage of a script: SCRIPT BUILD_DIRECTORY [TEST...]. Prints each skipped test with its reason. If every test was skipped,
the exit status is 77, which ctest shows as skipped.
"""

import collections
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zlib

BUILD = os.path.abspath(sys.argv[1])
PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SANITIZED = BUILD.endswith(("asan", "tsan"))
PROGRAM = os.path.join(BUILD, "Executables/NerixVerifierHash/NerixVerifierHash")
LEAVING = os.path.join(BUILD, "Tests/System/Tests_System_LeavingProgram")
HOST = os.path.join(BUILD, "Executables/NerixHost/NerixHost")

PREFIX = "menu/support/softwareupdate/hashverifier_"
REPORT = re.compile(rb"Exception caught in NerixVerifierHash: .*\n  -- see dlog for details\n", re.DOTALL)
RECORD = re.compile(rb"\[INF\] HashWorker\.cpp:\d+>([0-9a-f]{16} \".*)")

# The settings that a run publishes; None for one that is not in the store.
Published = collections.namedtuple("Published", "status progress result")

# True in the private root, where tests may mount file systems. The machine's drives are not visible there.
IN_OWN_ROOT = "NERIX_OWN_ROOT" in os.environ
NO_MOUNTS = None if IN_OWN_ROOT else "no private mounts on this machine"

# Arguments: the new root, the project, the place of the build in the new root, the build, and the command to run there.
# The new root has the entries of the machine's root without its drives, and the project at /nerix.
OWN_ROOT = """
set -e
umask 022
mount -t tmpfs none "$1" && cd "$1" && mount --make-unbindable .
for entry in /*; do
    case $(stat -c %F "$entry")$entry in
        *link/*) cp -P "$entry" . ;;
        */media | */mnt) mkdir ".$entry" ;;
        directory/*) mkdir ".$entry" && mount --rbind "$entry" ".$entry" ;;
    esac
done
mkdir -p nerix ".$3" && mount --rbind "$2" nerix && mount --rbind "$4" ".$3" && touch "$1.entered"
shift 4
exec chroot . sh -c 'cd /nerix && exec "$@"' sh "$@"
"""


def run_in_own_root():
    """Runs this script again in a private mount namespace and root directory, and exits with its status.

    Returns only if the machine does not allow that.
    """
    place = os.path.join(tempfile.mkdtemp(prefix="nerix-root-"), "root")
    os.mkdir(place)
    script = os.path.join("/nerix", os.path.relpath(os.path.abspath(sys.argv[0]), PROJECT))
    built = os.path.join("/nerix-build", os.path.basename(BUILD))
    flags = ["-m"] if os.geteuid() == 0 else ["-Urm"]
    try:
        run = subprocess.run(["unshare", *flags, "sh", "-c", OWN_ROOT, "sh", place, PROJECT, built, BUILD, sys.executable,
                              script, built, *sys.argv[2:]], check=False, env={**os.environ, "NERIX_OWN_ROOT": "yes"})
        if os.path.exists(place + ".entered"):
            sys.exit(run.returncode)
    except OSError as failure:
        print(failure, file=sys.stderr)
    finally:
        shutil.rmtree(os.path.dirname(place))


class SystemTest(unittest.TestCase):
    """Gives each test its own work directory and its own platform home, in /dev/shm if that is writable."""

    def setUp(self):
        shared = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.home = tempfile.mkdtemp(prefix="nerix-home-", dir=shared)
        self.work = tempfile.mkdtemp(prefix="nerix-work-")
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.addCleanup(shutil.rmtree, os.fsencode(self.work), ignore_errors=True)
        kept = {"PATH", "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"} & os.environ.keys()
        self.environment = {"NERIX_PLATFORM_HOME": self.home, **{name: os.environ[name] for name in kept}}

    def mount(self, where, *options, kind="tmpfs"):
        """Mounts a file system until the end of the test. Skips the test if mounts are not allowed."""
        if NO_MOUNTS:
            self.skipTest(NO_MOUNTS)
        os.makedirs(where, exist_ok=True)
        arguments = ["--bind", options[0]] if kind == "bind" else ["-t", kind, *options, "none"]
        subprocess.run(["mount", *arguments, where], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", where], check=False, stderr=subprocess.DEVNULL)

    def use_threads(self, count):
        """Sets the number of threads of all runs, in the testers' parameters file. Requires NO_MOUNTS is None."""
        place = "/mnt/systemrw/org.corvan.tv.nerix/data/tv"
        os.makedirs(place, exist_ok=True)
        self.addCleanup(shutil.rmtree, place, ignore_errors=True)
        text = read(os.path.join(PROJECT, "Tests/Debug/defaults.xml")).decode()
        entry = "<first>testParam1</first>\n\t\t\t<second>1</second>"
        self.assertIn(entry, text)
        write(f"{place}/DebugAndTestParameters.xml",
              text.replace(entry, f"<first>hashVerifierThreads</first><second>{count}</second>").encode())
        log = os.path.join(self.home, "log")
        before = len(self.log_lines("main"))
        with tempfile.TemporaryDirectory() as empty:
            self.value(empty)
        self.assertIn(f">Getting custom debug parameter hashVerifierThreads: {count}.".encode(),
                      b"".join(self.log_lines("main")[before:]))
        if before == 0:
            shutil.rmtree(log)

    def run_command(self, *words, **options):
        """Runs a command in the environment of the test, and captures its output."""
        options = {"env": self.environment, "timeout": 600, "capture_output": True, **options}
        return subprocess.run(words, check=False, **options)

    def run_strace(self, *words, **options):
        """Runs strace, which follows child processes. Skips the test without strace, or if the build has a sanitizer."""
        if SANITIZED or not shutil.which("strace"):
            self.skipTest("needs strace and a build without a sanitizer")
        return self.run_command("strace", "-qq", "-f", "-o", "/dev/null", *words, **options)

    def run_program(self, *arguments, **options):
        return self.run_command(PROGRAM, *arguments, **options)

    def run_unprivileged(self, *arguments, program=PROGRAM):
        """Runs the program without root's capabilities, so that file permissions apply to it."""
        drop = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"] if os.geteuid() == 0 else []
        return self.run_command(*drop, program, *arguments)

    def run_host(self, *arguments):
        return self.run_command(HOST, *arguments)

    def value(self, path, method="md5", **options):
        run = self.run_program("--path", path, "--hash", method, **options)
        self.assertEqual((run.returncode, run.stderr), (0, b""), run.stdout)
        return run.stdout.decode().rstrip("\n")

    def settings(self):
        """Returns the Published settings."""
        held = dict(line.split(" = ", 1) for line in self.run_host("settings", "list").stdout.decode().splitlines())
        return Published(*map(held.get, (f"memory/{PREFIX}status", f"memory/{PREFIX}progress", f"db/{PREFIX}result")))

    def assert_published(self, message=None, **expected):
        """Compares the published settings that are named by the keywords."""
        published = self.settings()._asdict()
        self.assertEqual({name: published[name] for name in expected}, expected, message)

    def log_lines(self, buffer):
        path = os.path.join(self.home, "log", f"{buffer}.log")
        return read(path).splitlines() if os.path.exists(path) else []

    def put_setting(self, key, text, writer):
        """Writes a setting into the store as the process of that identity would (see process_identity)."""
        stored = b"s" + writer.encode() + b"\0" + text.encode()
        place, = glob.glob(f"{self.home}/settings{'-volatile' if key.startswith('memory/') else ''}-[bl]e*")
        file = os.path.join(place, key.replace("/", "+"))
        write(file + "~", b"%08x" % zlib.crc32(stored) + stored)
        os.replace(file + "~", file)

    def scan_records(self):
        """Returns the scan records of the system log, without the escapes that the log adds."""
        found = (RECORD.search(line) for line in self.log_lines("main"))
        return [unescape(record.group(1)) for record in found if record]


class HostTest(SystemTest):
    """Gives each test of NerixHost an empty tree, the path of another one, and the paths of two logs."""

    def setUp(self):
        super().setUp()
        if not NO_MOUNTS:
            self.mount(self.work)  # on a tmpfs, a directory's size changes with its entries
        work = os.fsencode(os.path.realpath(self.work))
        self.tree, self.other = (os.path.join(work, name) for name in (b"tree", b"other"))
        os.mkdir(self.tree)
        self.logs = [os.path.join(self.work, name) for name in ("before.log", "after.log")]

    def scan(self, log, *options):
        """Scans the tree, writes the log, and returns the tree's value."""
        run = self.run_host("scan", self.tree, "--log", log, *options)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return run.stdout.decode().strip()


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, content=b""):
    with open(path, "wb") as file:
        file.write(content)


def process_identity():
    """Returns the identity of this process, as the store keeps it with each setting."""
    start = read("/proc/self/stat").rsplit(b")", 1)[1].split()[19].decode()
    boot = read("/proc/sys/kernel/random/boot_id").decode().strip()
    return f"{boot} {os.readlink('/proc/self/ns/pid')} {os.getpid()} {start}"


def make_hole(path, size):
    write(path)
    os.truncate(path, size)


def use_one_core():
    """Pins the program to one core, so that it has no helpers and its calls are deterministic. For preexec_fn."""
    os.sched_setaffinity(0, {min(os.sched_getaffinity(0))})


def unescape(line):
    plain = {b"n": b"\n", b"r": b"\r", b"t": b"\t", b"\\": b"\\"}
    return re.sub(rb"\\(x[0-9a-f]{2}|.)",
                  lambda m: plain.get(m.group(1)) or bytes.fromhex(m.group(1)[1:].decode()), line)


def main():
    """Runs the tests of the calling script, in the private root if the machine allows that."""
    if not IN_OWN_ROOT:
        run_in_own_root()
    result = unittest.main(argv=[sys.argv[0], *sys.argv[2:]], exit=False, verbosity=2).result
    for test, reason in result.skipped:
        print(f"SKIPPED {test.id()}: {reason}")
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.testsRun and len(result.skipped) == result.testsRun else 0)
