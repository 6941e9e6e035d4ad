"""Makes random trees with every kind of entry that the machine allows."""

import contextlib
import os
import stat

NAMES = [b"plain", b"with blank", b'quo"te', b"amp&ersand", b"new&\nline", b"\xff\xfe raw", b"back\\slash", b"UPPER",
         b"a", b"a.txt", b"ab", b"B", b"-dash", b"'", b"%s {}", b"long" * 30, "\u00e4".encode(), b"~", b" "]
SIZES = [0, 1, 100, 4095, 4096, 4097, 8192, 12345]
MODES = [0o644, 0o600, 0o755, 0o4755, 0o2755, 0o1755, 0o6711, 0o444, 0o000]
TARGETS = [b"nowhere", b"/", b".", b"..", b"a", b"/etc/passwd", b"x" * 2000, b'"&\n']
ATTRIBUTES = [b"user.b", b"user.a", b"user.\xc3\xa4", b"trusted.t", b"security.s"]
VALUES = [b"", b"text", bytes(range(256)), b"\0"]
# The order decides which tree a seed gives. A kind that cannot be made becomes a file.
KINDS = ["file"] * 5 + ["link"] * 2 + ["directory"] * 3 + ["hard link", "fifo", "socket", "device", "sparse file", "file"]


def may_make_devices():
    """Returns True for root in the initial user namespace (whose uid map covers all users)."""
    with open("/proc/self/uid_map", encoding="ascii") as users:
        return os.geteuid() == 0 and users.read().split() == ["0", "0", "4294967295"]


def make(directory, random, entries=12, depth=3):
    """Fills the existing directory (bytes). random is a random.Random: the same seed gives the same tree."""
    files = []
    for name in random.sample(NAMES, min(entries, len(NAMES))):
        path = os.path.join(directory, name)
        kind = random.choice(KINDS)
        if kind == "directory":
            os.mkdir(path)
            if depth:
                make(path, random, random.randrange(8), depth - 1)
        elif kind == "link":
            os.symlink(random.choice(TARGETS), path)
        elif kind == "hard link" and files:
            os.link(random.choice(files), path)
        elif kind == "fifo":
            os.mkfifo(path)
        elif kind == "socket":
            os.mknod(path, 0o600 | stat.S_IFSOCK)
        elif kind == "device" and may_make_devices():
            os.mknod(path, 0o600 | random.choice((stat.S_IFCHR, stat.S_IFBLK)), os.makedev(1, 3))
        else:
            _file(path, random, sparse=kind == "sparse file")
            files.append(path)
        _dress(path, random)


def _file(path, random, sparse):
    with open(path, "wb") as file:
        file.seek(random.choice((5000, 100_000)) if sparse else 0)
        file.write(random.randbytes(1_000_000 if random.random() < 0.02 else random.choice(SIZES)))


def _dress(path, random):
    if may_make_devices():  # which also allows changing owners
        os.lchown(path, random.choice((0, 0, 1234)), random.choice((0, 0, 100, 65534)))
    if not os.path.islink(path):
        os.chmod(path, random.choice(MODES) | (0o700 if os.path.isdir(path) else 0o400))
    for attribute in random.sample(ATTRIBUTES, random.choice((0, 0, 0, 1, 2, 5))):
        with contextlib.suppress(OSError):  # not allowed: user.* on links and special files, trusted.* without privilege
            os.setxattr(path, attribute, random.choice(VALUES), follow_symlinks=False)
