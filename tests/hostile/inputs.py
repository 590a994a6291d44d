"""Files in other places than that of the firmware.

OPTIONS: name, line with {F} for the hostile file, text of the finding by the kind of file.
INPUTS: name, command with {F}, exit status by the kind of file.
"""

OF_FIRMWARE = {
    "missing": "there is no file", "empty": "is empty", "endless-device": "is a device, not a firmware file",
    "pipe-without-writer": "is a pipe, not a firmware file",
    "directory": "is a directory, not a firmware file",
    "socket": "is a socket, not a firmware file", "link-loop": "is a symbolic link that cannot be followed",
    "too-large": "at most 16 MiB", "unreadable": "cannot be read",
}
OF_FILES = {
    "missing": "there is no file", "empty": "is empty", "endless-device": "is a device, not a file",
    "pipe-without-writer": "is a pipe, not a file", "directory": "is a directory, not a file",
    "socket": "is a socket, not a file", "link-loop": "is a symbolic link that cannot be followed",
    "unreadable": "cannot be read",
}

OPTIONS = [
    ("fw1", "--isp --fw {D}f.bin --fw1 {F} --bank1 9", OF_FIRMWARE),
    ("boot", "--isp --factory --newboot --hw --fw {D}f.bin --boot {F}", OF_FIRMWARE),
    ("signfile", "--isp --fw {D}f.bin --sw --dsmode 3 --vkfile {D}k.pem --signfile {F}", OF_FILES),
    ("vkfile", "--isp --fw {D}f.bin --sw --dsmode 3 --vkfile {F} --signfile {D}s.sig", OF_FILES),
    ("settingfile", "--isp --settingfile {F} --searchfw prefix", OF_FILES),
]

UNREADABLE = 8
NO_FILE = {kind: UNREADABLE for kind in ("missing", "directory", "socket", "link-loop", "unreadable")}
BLOCKING = {"pipe-without-writer": UNREADABLE, "endless-device": UNREADABLE}
NO_LIBRARY = {kind: 2 for kind in ("missing", "directory", "socket", "link-loop", "unreadable", "empty",
                                   "endless-device", "pipe-without-writer")}
NO_PLUGIN = {**NO_FILE, **BLOCKING, "empty": 5}

INPUTS = [
    ("edid", "edid {F}", {**NO_FILE, **BLOCKING}),
    ("script-check", "script check {F}", {**NO_FILE, **BLOCKING}),
    ("script-list", "script list {F}", {**NO_FILE, **BLOCKING}),
    ("script-assemble", "script assemble {F}", {**NO_FILE, **BLOCKING}),
    ("decode", "explain --decode {F}", {**NO_FILE, **BLOCKING}),
    ("diff", "explain --virtual --diff {F} --isp --fw {D}f.bin", {**NO_FILE, **BLOCKING}),
    ("log-summary", "log summary {F}", {**NO_FILE, **BLOCKING}),
    ("lib", "run --lib {F} --isp --fw {D}f.bin", NO_LIBRARY),
    ("check-plugin", "check-plugin {F}", NO_PLUGIN),
]
