#!/usr/bin/env python3
"""A host in Python that opens the library by path.

    host.py /opt/scaler-isp/share/scaler-isp/virtual/libScalerIsp.so --isp --fw "$PWD/monitor.bin"

A plug-in that crashes ends this process, too. Where that matters, start this as a process of its own, or
`ispctl run --json` as the host in JavaScript does.
"""

import ctypes
import sys

MEANINGS = {  # scaler_isp/abi/ResultCodes.h; every other code comes from the plug-in
    0: "success",
    -1: "the command line was refused, or the call failed",
    6: "the plug-in does not offer the function of this action",
    0xD67: "the ISP plug-in PlugIn/libIsp.dylib cannot be loaded",
    0x4002: "the firmware could not be signed",
    0x4003: "the firmware signature is invalid",
    0x4004: "the sign/verify plug-in is not available",
}
PROGRESS = ctypes.CFUNCTYPE(None, ctypes.c_int)
MESSAGE = ctypes.CFUNCTYPE(None, ctypes.c_wchar_p)


# Keep the callbacks in variables as long as the library may call them. An exception in one is only printed.
@PROGRESS
def on_progress(percent):
    print(f"progress {percent} %", file=sys.stderr)


@MESSAGE
def on_message(text):
    print("message:", text.rstrip("\n"), file=sys.stderr)


def line_of(arguments):
    """The first word is the program's name. Quotes keep spaces inside an argument."""
    return " ".join(["host"] + [f'"{a}"' if " " in a else a for a in arguments])


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: host.py LIBRARY ARGS...")
    for argument in sys.argv[2:]:
        if '"' in argument:  # the library would split the line elsewhere
            sys.exit(f"host.py: an argument cannot contain a quote: {argument}")
    # The callbacks run on this thread, during the call. Other threads of Python continue meanwhile; none of
    # them may call the library.
    try:
        operate = ctypes.CDLL(sys.argv[1]).OperateScaler
    except (OSError, AttributeError) as error:
        sys.exit(f"host.py: {error}")
    operate.argtypes = [ctypes.c_wchar_p, ctypes.c_void_p, PROGRESS, MESSAGE]
    operate.restype = ctypes.c_int
    sys.stdout.flush()  # the library prints to the same descriptor through its own buffer
    code = operate(line_of(sys.argv[2:]), None, on_progress, on_message)
    meaning = MEANINGS.get(code, "an error code of the plug-in")
    print(f"result 0x{code & 0xFFFFFFFF:X}: {meaning}", file=sys.stderr)
    return 0 if code == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
