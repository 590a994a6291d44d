"""The kinds of hostile files: how each is made, and what ispctl says of it as firmware.

A row: name, function that makes it in a directory and returns its path, text of the finding; None: the file
is read like any other, and only what is shown of its name matters.
"""

import os
import socket
import stat

FIRMWARE = bytes(range(256)) * 1024  # four banks


def write(path, contents=FIRMWARE):
    with open(path, "wb") as file:
        file.write(contents)
    return path


def missing(directory):
    return os.path.join(directory, "none.bin")


def empty(directory):
    return write(os.path.join(directory, "empty.bin"), b"")


def endless(_):
    return "/dev/zero"


def nothing(_):
    return "/dev/null"


def pipe(directory):
    path = os.path.join(directory, "pipe.bin")
    os.mkfifo(path)
    return path


def folder(directory):
    path = os.path.join(directory, "folder.bin")
    os.mkdir(path)
    return path


def listening(directory):
    path = os.path.join(directory, "socket.bin")
    with socket.socket(socket.AF_UNIX) as server:
        server.bind(path)
    return path


def loop(directory):
    path = os.path.join(directory, "loop.bin")
    os.symlink(path, path)
    return path


def link_to_nothing(directory):
    path = os.path.join(directory, "dangling.bin")
    os.symlink("gone", path)
    return path


def link_to_device(directory):
    path = os.path.join(directory, "device.bin")
    os.symlink("/dev/zero", path)
    return path


def too_large(directory):
    path = write(os.path.join(directory, "large.bin"), b"")
    os.truncate(path, (1 << 24) + 1)
    return path


def through_file(directory):
    return os.path.join(write(os.path.join(directory, "file.bin")), "inner.bin")


def unreadable(directory):
    path = write(os.path.join(directory, "secret.bin"))
    os.chmod(path, 0)
    return path


def into_writable(directory):
    """A link into a directory in which everybody may replace the file."""
    shared = os.path.join(directory, "shared")
    os.mkdir(shared)
    target = write(os.path.join(shared, "a.bin"))
    os.chmod(shared, stat.S_IRWXU | stat.S_IRWXO)
    path = os.path.join(directory, "way.bin")
    os.symlink(target, path)
    return path


def writable(directory):
    path = write(os.path.join(directory, "open.bin"))
    os.chmod(path, 0o666)
    return path


def upwards(directory):
    os.mkdir(os.path.join(directory, "sub"))
    write(os.path.join(directory, "up.bin"))
    return os.path.join(directory, "sub/../up.bin")


def named(name):
    def make(directory):
        return write(os.fsencode(directory) + b"/" + name)
    return make


# The line cannot even be passed on, so nothing else of it is judged.
NOT_PASSABLE = "name-not-utf8"

KINDS = [
    ("missing", missing, "there is no file"),
    ("empty", empty, "is empty"),
    ("endless-device", endless, "is a device, not a firmware file"),
    ("null-device", nothing, "is a device, not a firmware file"),
    ("pipe-without-writer", pipe, "is a pipe, not a firmware file"),
    ("directory", folder, "is a directory, not a firmware file"),
    ("socket", listening, "is a socket, not a firmware file"),
    ("link-loop", loop, "is a symbolic link that cannot be followed"),
    ("dangling-link", link_to_nothing, "is a symbolic link that leads to no file"),
    ("link-to-device", link_to_device, "is a device, not a firmware file"),
    ("too-large", too_large, "at most 16 MiB"),
    ("file-as-directory", through_file, "there is no file"),
    ("unreadable", unreadable, "cannot be read"),
    ("link-into-writable", into_writable, "everybody may exchange the file of"),
    ("writable-by-all", writable, "everybody may exchange the file of"),
    ("upwards", upwards, None),
    ("name-with-escape", named(b"a\x1b[2Jb.bin"), None),
    ("name-with-newline", named(b"a\nSuccess\n.bin"), None),
    ("name-not-utf8", named(b"a\xff\xfe.bin"), "is not valid UTF-8"),
    ("name-with-direction", named("a\u202enib.bin".encode()), None),
]
