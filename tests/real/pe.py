"""A second reader of PE files: headers, sections and the resource tree, and the check sum of the header.

It shares nothing with the program under test, and stops at anything that a loader would stumble over.
"""
import array
import dataclasses
import struct

ICON, GROUP = 3, 14
RESOURCES, CERTIFICATES, RELOCATIONS = 2, 4, 5


@dataclasses.dataclass
class Section:
    name: bytes
    virtual_size: int
    address: int
    raw_size: int
    raw_offset: int
    flags: int


def group_entries(data):
    """(width, height, bytes, number of the image) of each format that a group's directory names."""
    for entry in struct.iter_unpack("<BBBBHHIH", data[6:6 + 14 * struct.unpack_from("<H", data, 4)[0]]):
        yield entry[0], entry[1], entry[6], entry[7]


class Pe:
    def __init__(self, data):
        self.data = data
        head = struct.unpack_from("<I", data, 60)[0]
        assert data[:2] == b"MZ" and data[head:head + 4] == b"PE\0\0", "not a PE file"
        _, count, _, self.symbols, self.symbol_count, optional_size, _ = struct.unpack_from("<HHIIIHH", data, head + 4)
        optional = self.optional = head + 24
        self.is_64 = struct.unpack_from("<H", data, optional)[0] == 0x20B
        self.initialized = struct.unpack_from("<I", data, optional + 8)[0]
        self.section_unit, self.file_unit = struct.unpack_from("<II", data, optional + 32)
        self.image_size, self.header_size, self.check_sum = struct.unpack_from("<III", data, optional + 56)
        self.directories_at = optional + (112 if self.is_64 else 96)
        entries = struct.unpack_from("<I", data, self.directories_at - 4)[0]
        self.directories = [struct.unpack_from("<II", data, self.directories_at + 8 * i) for i in range(entries)]
        self.sections = []
        for at in range(optional + optional_size, optional + optional_size + 40 * count, 40):
            sizes = struct.unpack_from("<IIII", data, at + 8)
            self.sections.append(Section(data[at:at + 8].rstrip(b"\0"), *sizes, *struct.unpack_from("<I", data, at + 36)))
        # What lies behind this is not part of the image.
        self.end = max([s.raw_offset + s.raw_size for s in self.sections if s.raw_size] + [self.header_size])

    def bytes_at(self, address, size):
        for s in self.sections:
            if s.address <= address and address + size <= s.address + s.raw_size:
                start = s.raw_offset + address - s.address
                assert start + size <= len(self.data), "behind the end of the file"
                return self.data[start:start + size]
        raise AssertionError(f"address {address:#x} is in no section")

    def directory(self, index):
        address, size = self.directories[index]
        return self.bytes_at(address, size) if address else b""

    def resources(self):
        """{(type, name, language): (bytes, code page)}; names are numbers or text."""
        found = {}
        address = self.directories[RESOURCES][0] if len(self.directories) > RESOURCES else 0
        if not address:
            return found
        section = next(s for s in self.sections if s.address <= address < s.address + max(s.virtual_size, s.raw_size))
        root = section.raw_offset + address - section.address
        data = self.data

        def walk(at, path):
            named, numbered = struct.unpack_from("<HH", data, root + at + 12)
            before = None
            for i in range(named + numbered):
                key, target = struct.unpack_from("<II", data, root + at + 16 + 8 * i)
                assert (key >> 31 == 1) == (i < named), "named entries first"
                if key >> 31:
                    text = root + (key & 0x7FFFFFFF)
                    length = struct.unpack_from("<H", data, text)[0]
                    key = data[text + 2:text + 2 + 2 * length].decode("utf-16-le")
                order = (isinstance(key, int), key)
                assert before is None or before < order, f"entries out of order: {before} {order}"
                before = order
                if target >> 31:
                    assert len(path) < 2, "too deep"
                    walk(target & 0x7FFFFFFF, path + (key,))
                else:
                    where, size, code_page, _ = struct.unpack_from("<IIII", data, root + target)
                    found[path + (key,)] = (self.bytes_at(where, size), code_page)

        walk(0, ())
        return found

    def groups(self, resources=None):
        """{(name, language): [(width, height, bytes of the image)]} as a loader resolves it."""
        resources = self.resources() if resources is None else resources
        images = {}
        for (kind, name, language), (data, _) in resources.items():
            if kind == ICON:
                images.setdefault(name, {})[language] = data
        found = {}
        for (kind, name, language), (data, _) in resources.items():
            if kind != GROUP:
                continue
            found[name, language] = icons = []
            for width, height, size, number in group_entries(data):
                for image in images[number].values():
                    icons.append((width or 256, height or 256, image))
                assert any(len(image) == size for image in images[number].values()), f"size of image {number}"
        return found

    def right_check_sum(self):
        data = bytearray(self.data)
        struct.pack_into("<I", data, self.optional + 64, 0)
        data += b"\0" * (len(data) % 2)
        total = sum(array.array("H", bytes(data)))
        while total >> 16:
            total = (total & 0xFFFF) + (total >> 16)
        return total + len(self.data)


def sign(data):
    """The file with a table behind it that says to be a signature."""
    data = bytearray(data) + b"\0" * (-len(data) % 8)
    pe = Pe(bytes(data))
    table = struct.pack("<IHH", 1016, 0x200, 2) + bytes(i * 7 & 255 for i in range(1008))
    struct.pack_into("<II", data, pe.directories_at + 8 * CERTIFICATES, len(data), len(table))
    return bytes(data) + table
