"""Checks the order of virtual tables in a Mach-O image that still has its symbols: plug-ins call these
classes by slot number."""

import re
import struct

COMM_OWN = ["LoadCommDllFile", "FreeCommDllFile"]  # before the methods of the table
COMM_METHODS = 156
CLASSES = ["CCpNxString", "CCpIsp", "CCpSignVerify", "CpNxCmdLindParse", "CCpTransform"]
DEFINED_IN_SECTION = 0x0E


def slots(image, table):
    """Names of the functions in a virtual table, after the offset and the type information."""
    symbols = [s for s in image.symbols()
               if s.type & 0x0E == DEFINED_IN_SECTION and not s.type & 0xE0]
    names = {s.address: s.name for s in symbols}
    start = next((s.address for s in symbols if s.name == table), None)
    if start is None:
        return None
    ends = [s.address for s in symbols] + [s.address + s.size for s in image.sections]
    end = min(a for a in ends if a > start)
    binds, rebases = image.loader_fixups()
    bound = {bind.address: bind.symbol for bind in binds}
    rebased = set(rebases)
    found = []
    for address in range(start + 16, end - 7, 8):
        if address in bound:
            found.append(bound[address])
        elif address in rebased:
            found.append(names.get(image.pointer_at(address), "?"))
        else:
            found.append(struct.unpack("<Q", image.bytes_at(address, 8))[0])
    return found


def destructors(name):
    return [f"__ZN{len(name)}{name}D1Ev", f"__ZN{len(name)}{name}D0Ev"]


def comm_methods(root):
    """Names of the methods, in the order of comm_functions.def."""
    text = (root / "scaler_isp/plugins/comm_functions.def").read_text()
    rows = re.findall(r"^SCALER_ISP_COMM_(?:SAME|FUNCTION)\(\w+, [^,]+, (\w+),", text, re.M)
    return rows


def problems(image, root):
    """The differences from the promised order, as strings."""
    found = []
    for name in CLASSES:
        wanted, actual = destructors(name), slots(image, f"__ZTV{len(name)}{name}")
        if actual != wanted:
            found.append(f"virtual table of {name}: {actual}")
    methods = comm_methods(root)
    if len(methods) != COMM_METHODS:
        found.append(f"comm_functions.def has {len(methods)} rows")
    actual = slots(image, "__ZTV7CNxComm") or []
    if actual[:2] != destructors("CNxComm"):
        found.append(f"virtual table of CNxComm begins with {actual[:2]}")
    for slot, name in enumerate(COMM_OWN + methods, 2):
        found_there = actual[slot] if slot < len(actual) else "nothing"
        if not str(found_there).startswith(f"__ZN7CNxComm{len(name)}{name}E"):
            found.append(f"slot {slot} of CNxComm is {found_there}, not {name}")
    if len(actual) != 2 + len(COMM_OWN) + len(methods):
        found.append(f"virtual table of CNxComm has {len(actual)} slots")
    return found
