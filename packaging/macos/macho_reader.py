"""Reads Mach-O files, thin or universal, with the standard library only.

load(path) -> {"x86_64": Image, "arm64": Image}. An Image knows its libraries, versions, sections, exports,
binds (classic opcodes or chained fixups) and symbols. Anything that a file lacks is empty or None.
"""

import struct
from collections import namedtuple

CPU_NAMES = {0x01000007: "x86_64", 0x0100000C: "arm64"}
DYLIB_COMMANDS = (0xC, 0x80000018, 0x8000001F)  # load, load weak, re-export
EXPORT_WEAK = 4
EXPORT_REEXPORT = 8
SECTION_INITIALISERS = (0x9, 0x16)  # pointers, offsets

Segment = namedtuple("Segment", "name address size file_offset file_size")
Section = namedtuple("Section", "segment name address size type")
Symbol = namedtuple("Symbol", "name type address")
# kind: bind, weak or lazy. library: an install name, or self, main, flat, weak-lookup.
Bind = namedtuple("Bind", "kind address symbol library")


def version_text(number):
    return "%d.%d.%d" % (number >> 16, number >> 8 & 255, number & 255)


def uleb(data, pos):
    value = shift = 0
    while True:
        byte = data[pos]
        pos += 1
        value |= (byte & 127) << shift
        shift += 7
        if not byte & 128:
            return value, pos


def c_string(data, pos):
    end = data.index(b"\0", pos)
    return data[pos:end].decode(), end + 1


class Image:
    """One architecture of a file."""

    def __init__(self, data):
        self.data = data
        magic, cpu, _, self.file_type, count, _, self.flags, _ = struct.unpack_from("<8I", data)
        if magic != 0xFEEDFACF:
            raise ValueError("not a 64-bit Mach-O file")
        self.arch = CPU_NAMES.get(cpu, hex(cpu))
        self.segments, self.sections, self.libraries, self.rpaths = [], [], [], []
        self.install_name = self.minimum_os = self.uuid = self.platform = None
        self.current_version = self.compatibility_version = None
        self.signature_range = self.dyld_info = self.trie = self.fixups = self.symbol_table = None
        pos = 32
        for _ in range(count):
            command, size = struct.unpack_from("<2I", data, pos)
            self._read_command(command, pos)
            pos += size
        if self.trie is None and self.dyld_info:
            self.trie = self.dyld_info[8:10]
        self.base = next((s.address for s in self.segments if s.name == "__TEXT"), 0)

    def _read_command(self, command, pos):
        pair = struct.unpack_from("<2I", self.data, pos + 8)
        if command == 0x19:
            self._read_segment(pos)
        elif command in DYLIB_COMMANDS or command == 0xD:
            self._read_library(command, pos)
        elif command == 0x8000001C:
            self.rpaths.append(c_string(self.data, pos + pair[0])[0])
        elif command == 0x32:
            self.platform = {1: "macos"}.get(pair[0], pair[0])
            self.minimum_os = version_text(pair[1])
        elif command == 0x24:
            self.platform, self.minimum_os = "macos", version_text(pair[0])
        elif command == 0x1B:
            self.uuid = self.data[pos + 8:pos + 24].hex()
        elif command == 0x1D:
            self.signature_range = pair
        elif command in (0x22, 0x80000022):
            self.dyld_info = struct.unpack_from("<10I", self.data, pos + 8)
        elif command == 0x80000033:
            self.trie = pair
        elif command == 0x80000034:
            self.fixups = pair
        elif command == 0x2:
            self.symbol_table = struct.unpack_from("<4I", self.data, pos + 8)

    def _read_segment(self, pos):
        name = self.data[pos + 8:pos + 24].rstrip(b"\0").decode()
        address, size, offset, file_size, _, _, count, _ = struct.unpack_from(
            "<4Q2i2I", self.data, pos + 24)
        self.segments.append(Segment(name, address, size, offset, file_size))
        for i in range(count):
            at = pos + 72 + 80 * i
            section = self.data[at:at + 16].rstrip(b"\0").decode()
            address, size, _, _, _, _, flags = struct.unpack_from("<2Q5I", self.data, at + 32)
            self.sections.append(Section(name, section, address, size, flags & 255))

    def _read_library(self, command, pos):
        offset, _, current, compatible = struct.unpack_from("<4I", self.data, pos + 8)
        name = c_string(self.data, pos + offset)[0]
        if command == 0xD:
            self.install_name = name
            self.current_version = version_text(current)
            self.compatibility_version = version_text(compatible)
        else:
            self.libraries.append(name)

    def exports(self):
        """{symbol: flags}, from the export trie."""
        found = {}
        if self.trie and self.trie[1]:
            self._walk_trie(self.data[self.trie[0]:self.trie[0] + self.trie[1]], 0, "", found)
        return found

    def _walk_trie(self, trie, pos, prefix, found):
        size, pos = uleb(trie, pos)
        if size:
            found[prefix] = uleb(trie, pos)[0]
        pos += size
        count = trie[pos]
        pos += 1
        for _ in range(count):
            edge, pos = c_string(trie, pos)
            child, pos = uleb(trie, pos)
            self._walk_trie(trie, child, prefix + edge, found)

    def library_of(self, ordinal):
        if 0 < ordinal <= len(self.libraries):
            return self.libraries[ordinal - 1]
        return {0: "self", -1: "main", -2: "flat", -3: "weak-lookup"}.get(ordinal, "?%d" % ordinal)

    def loader_fixups(self):
        """(binds, rebases): the pointers that the loader writes into the image; rebases are addresses."""
        if self.fixups:
            return self._chained()
        if not self.dyld_info:
            return [], []
        starts, sizes = self.dyld_info[0:8:2], self.dyld_info[1:8:2]
        rebase, bind, weak, lazy = [self.data[a:a + n] for a, n in zip(starts, sizes)]
        binds = []
        for kind, codes in (("bind", bind), ("weak", weak), ("lazy", lazy)):
            binds += self._classic_binds(kind, codes)
        return binds, self._classic_rebases(rebase)

    def _classic_rebases(self, codes):
        found, pos, address = [], 0, 0
        while pos < len(codes):
            code, small = codes[pos] & 0xF0, codes[pos] & 15
            pos += 1
            times, gap = 0, 0
            if code == 0:
                break
            if code == 0x20:
                offset, pos = uleb(codes, pos)
                address = self.segments[small].address + offset
            elif code == 0x30:
                offset, pos = uleb(codes, pos)
                address += offset
            elif code == 0x40:
                address += small * 8
            elif code == 0x50:
                times = small
            elif code == 0x60:
                times, pos = uleb(codes, pos)
            elif code == 0x70:
                times = 1
                gap, pos = uleb(codes, pos)
            elif code == 0x80:
                times, pos = uleb(codes, pos)
                gap, pos = uleb(codes, pos)
            elif code != 0x10:
                raise ValueError("rebase opcode %#x" % code)
            for _ in range(times):
                found.append(address)
                address += 8 + gap
        return found

    def _classic_binds(self, kind, codes):
        found, pos, address, symbol, ordinal = [], 0, 0, "", 0
        while pos < len(codes):
            code, small = codes[pos] & 0xF0, codes[pos] & 15
            pos += 1
            times, gap = 0, 0
            if code == 0:
                if kind != "lazy":  # in lazy binds, 0 ends only one entry
                    break
            elif code == 0x10:
                ordinal = small
            elif code == 0x20:
                ordinal, pos = uleb(codes, pos)
            elif code == 0x30:
                ordinal = small - 16 if small else 0
            elif code == 0x40:
                symbol, pos = c_string(codes, pos)
            elif code == 0x60:
                _, pos = uleb(codes, pos)  # addend
            elif code == 0x70:
                offset, pos = uleb(codes, pos)
                address = self.segments[small].address + offset
            elif code == 0x80:
                offset, pos = uleb(codes, pos)
                address = (address + offset) % (1 << 64)
            elif code == 0x90:
                times = 1
            elif code == 0xA0:
                times = 1
                gap, pos = uleb(codes, pos)
            elif code == 0xB0:
                times, gap = 1, small * 8
            elif code == 0xC0:
                times, pos = uleb(codes, pos)
                gap, pos = uleb(codes, pos)
            elif code != 0x50:
                raise ValueError("bind opcode %#x" % code)
            library = "weak-lookup" if kind == "weak" else self.library_of(ordinal)
            for _ in range(times):
                found.append(Bind(kind, address, symbol, library))
                address = (address + 8 + gap) % (1 << 64)
        return found

    def _chained_imports(self, start):
        _, _, imports, names, count, form, _ = struct.unpack_from("<7I", self.data, start)
        if form not in (1, 2):
            raise ValueError("chained import format %d" % form)
        for i in range(count):
            value, = struct.unpack_from("<I", self.data, start + imports + 4 * form * i)
            ordinal = value & 255
            ordinal -= 256 if ordinal > 0xF0 else 0
            yield c_string(self.data, start + names + (value >> 9))[0], ordinal

    def _chained(self):
        start = self.fixups[0]
        imports = list(self._chained_imports(start))
        first, = struct.unpack_from("<I", self.data, start + 4)
        count, = struct.unpack_from("<I", self.data, start + first)
        binds, rebases = [], []
        for index in range(count):
            offset, = struct.unpack_from("<I", self.data, start + first + 4 + 4 * index)
            if offset:
                self._chained_segment(start + first + offset, self.segments[index], imports,
                                      binds, rebases)
        return binds, rebases

    def _chained_segment(self, pos, segment, imports, binds, rebases):
        _, page_size, form, _, _, pages = struct.unpack_from("<IHHQIH", self.data, pos)
        if form not in (2, 6):
            raise ValueError("chained pointer format %d" % form)
        for page in range(pages):
            first, = struct.unpack_from("<H", self.data, pos + 22 + 2 * page)
            at = page * page_size + first
            while first != 0xFFFF:
                value, = struct.unpack_from("<Q", self.data, segment.file_offset + at)
                if value >> 63:
                    symbol, ordinal = imports[value & 0xFFFFFF]
                    kind = "weak" if ordinal == -3 else "bind"
                    binds.append(Bind(kind, segment.address + at, symbol, self.library_of(ordinal)))
                else:
                    rebases.append(segment.address + at)
                step = value >> 51 & 0xFFF
                if not step:
                    break
                at += step * 4

    def pointer_at(self, address):
        """The pointer at this address, as in an image that has not been moved."""
        value, = struct.unpack("<Q", self.bytes_at(address, 8))
        if self.fixups:
            value &= (1 << 36) - 1
            return value if value >= self.base else value + self.base
        return value

    def bytes_at(self, address, count):
        for segment in self.segments:
            if segment.address <= address < segment.address + segment.file_size:
                start = segment.file_offset + address - segment.address
                return self.data[start:start + count]
        return b"\0" * count

    def symbols(self):
        if not self.symbol_table:
            return []
        table, count, names, _ = self.symbol_table
        found = []
        for i in range(count):
            name, kind, _, _, address = struct.unpack_from("<IBBHQ", self.data, table + 16 * i)
            found.append(Symbol(c_string(self.data, names + name)[0], kind, address))
        return found

    def initialisers(self):
        """The number of functions that run when the image is loaded."""
        return sum(s.size // (8 if s.type == 0x9 else 4) for s in self.sections
                   if s.type in SECTION_INITIALISERS)


def load(path):
    with open(path, "rb") as file:
        data = file.read()
    if data[:4] != b"\xca\xfe\xba\xbe":
        image = Image(data)
        return {image.arch: image}
    found = {}
    count, = struct.unpack_from(">I", data, 4)
    for i in range(count):
        _, _, offset, size, _ = struct.unpack_from(">5I", data, 8 + 20 * i)
        image = Image(data[offset:offset + size])
        found[image.arch] = image
    return found
