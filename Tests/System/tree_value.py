"""Reference model of the tree value: what the program must print for a tree, and the scan records that it must write.

Shares only the definition with the program: the value of each entry begins at 0 and passes through its own steps; a
directory adds one step over the decimal values of its entries. Paths are bytes.
"""

import hashlib
import os
import stat
import struct

MASK = 2**64 - 1
TOKENS = ("UR", "UW", "UX", "GR", "GW", "GX", "OR", "OW", "OX")
SPECIAL = ("SU", "SG", "SB")
CHUNK = 4096
OTHER_DEVICE, MOUNT_POINT = 0x222, 0x444  # values of directories that are not read


def _digest_step(name):
    def step(value, data):
        digest = hashlib.new(name, struct.pack("<Q", value) + data).digest()
        return struct.unpack(">Q", digest[-8:])[0]
    return step


STEPS = {
    "none": lambda value, data: value,
    "trivial": lambda value, data: (value + len(data)) & MASK,
    "sha1": _digest_step("sha1"),
    "md5": _digest_step("md5"),
}


def status_text(status):
    bits = [(status.st_mode >> (8 - i)) & 1 for i in range(9)]
    special = [(status.st_mode >> (11 - i)) & 1 for i in range(3)]
    case = lambda names, flags: "".join(n if f else n.lower() for n, f in zip(names, flags))
    lines = (status.st_uid, status.st_gid, status.st_nlink, case(TOKENS, bits), case(SPECIAL, special))
    return "".join(f"{line}\n" for line in lines).encode()


def mount_directories():
    with open("/proc/self/mounts", "rb") as table:
        words = [line.split(b" ") for line in table]
    return {line[1] for line in words if len(line) > 1} - {b"/"}


class Model:
    def __init__(self, method, mounts=None):
        self.step = STEPS[method]
        self.mounts = mount_directories() if mounts is None else mounts
        self.records = []  # (value, path) in the order of the scan log

    def value(self, root):
        """Returns the value of the tree at root, as text. The root is made canonical first."""
        path = os.path.realpath(os.fsencode(root))
        self.device = os.lstat(path).st_dev
        return f"{self._entry(path):016x}"

    def _common(self, path, status):
        value = self.step(0, path)
        value = self.step(value, status_text(status))
        for name in sorted(map(os.fsencode, os.listxattr(path, follow_symlinks=False))):
            for part in (name, b"separator", os.getxattr(path, name, follow_symlinks=False)):
                value = self.step(value, part)
        return value

    def _entry(self, path):
        status = os.lstat(path)
        if stat.S_ISDIR(status.st_mode):
            value = self._directory(path, status)
        elif stat.S_ISREG(status.st_mode):
            value = self._common(path, status)
            with open(path, "rb") as content:
                while chunk := content.read(CHUNK):
                    value = self.step(value, chunk)
        elif stat.S_ISLNK(status.st_mode):
            target = os.readlink(path)[:status.st_size].ljust(status.st_size, b"\0")
            value = self.step(self._common(path, status), target)
        else:
            return 0
        self.records.append((value, path))
        return value

    def _directory(self, path, status):
        value = self._common(path, status)
        listing = b""
        for name in sorted(os.listdir(path)):
            child = os.path.join(path, name)
            status = os.lstat(child)
            kind = stat.S_IFMT(status.st_mode)
            if kind == stat.S_IFDIR and status.st_dev != self.device:
                self.records.append((OTHER_DEVICE, child))
            elif kind == stat.S_IFDIR and child in self.mounts:
                self.records.append((MOUNT_POINT, child))
            elif kind in (stat.S_IFDIR, stat.S_IFREG, stat.S_IFLNK):
                listing += b"%d\n" % self._entry(child)
        return self.step(value, listing)

    def record_lines(self):
        quote = lambda path: b'"' + path.replace(b"&", b"&&").replace(b'"', b'&"') + b'"'
        return [b"%016x " % value + quote(path) for value, path in self.records]
