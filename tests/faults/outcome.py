"""The operations, their errno values, and the numbers n at which each of them fails."""

import errno
import random
import re

_HEADER = "faults.h"

ERRNOS = {
    "memory": ["ENOMEM"], "iconv_open": ["ENOMEM", "EMFILE"], "iconv": ["ENOMEM", "EBADF"],
    "newlocale": ["ENOMEM"], "multibyte": ["ENOMEM"], "open": ["EMFILE", "EACCES", "EIO"],
    "opendir": ["EMFILE", "EACCES"], "readdir": ["EIO"], "read": ["EIO"], "short_read": ["EIO"],
    "seek": ["EIO"], "stat": ["EIO"], "write": ["ENOSPC", "EIO"], "short_write": ["ENOSPC"],
    "rename": ["EIO", "ENOSPC", "EACCES"], "close": ["EIO"], "flock": ["ENOLCK"],
    "owner": ["EPERM"], "unlink": ["EIO"], "realpath": ["EIO"], "dlopen": ["ENOENT"],
    "dladdr": ["ENOENT"], "pipe": ["EMFILE"], "process": ["EAGAIN"], "thread": ["EAGAIN"],
    "duplicate": ["EMFILE"],
}


def operations(folder):
    """The operations in the order of their numbers, out of the header."""
    with open("%s/%s" % (folder, _HEADER), encoding="utf-8") as file:
        names = re.findall(r"^    X\((\w+)\)", file.read(), re.MULTILINE)
    assert sorted(names) == sorted(ERRNOS), "faults.h and ERRNOS differ"
    return names


def errno_named(name):
    return getattr(errno, name)


def numbers(calls, every, seed):
    """Where to fail, out of so many calls; one more than there are must change nothing. Without
    `every`: each of the first 64, then steps of a quarter, and 16 others."""
    if every or calls <= 64:
        return list(range(1, calls + 2))
    chosen = set(range(1, 65)) | {calls, calls + 1}
    step = 64.0
    while step < calls:
        chosen.add(int(step))
        step *= 1.25
    choice = random.Random(seed)
    chosen.update(choice.randint(65, calls) for _ in range(16))
    return sorted(chosen)
