#!/usr/bin/env python3
"""Makes the blank DLL that icon libraries are written into, and stores it packed in src/containers/blank_dll.cpp.

The DLL is a 32-bit image of 40,960 bytes with sections of code, constants, data and base relocations, without resources.
Its entry point only says that all is well, so that programs may load a library as a DLL. Run it by hand; the result is
kept.
"""
import pathlib
import struct
import zlib

SOURCE = pathlib.Path(__file__).resolve().parent.parent / "src" / "containers" / "blank_dll.cpp"

BASE = 0x10000000
UNIT = 0x1000  # alignment in memory and in the file
SECTIONS = (  # name, size, flags, first bytes
    (b".text", 0x5000, 0x60000020, bytes.fromhex("B801000000C20C00")),  # mov eax, 1; ret 12
    (b".rdata", 0x1000, 0x40000040, b"Icon library\0"),
    (b".data", 0x2000, 0xC0000040, b""),
    (b".reloc", 0x1000, 0x42000040, struct.pack("<IIHH", 0x1000, 12, 0, 0)),  # one block that relocates nothing
)


def headers():
    dos = bytearray(0x80)
    dos[0:2] = b"MZ"
    struct.pack_into("<HHHHHH", dos, 2, 0x90, 3, 0, 4, 0, 0xFFFF)
    struct.pack_into("<H", dos, 0x10, 0xB8)
    struct.pack_into("<H", dos, 0x18, 0x40)
    struct.pack_into("<I", dos, 0x3C, 0x80)
    stub = bytes.fromhex("0E1FBA0E00B409CD21B8014CCD21") + b"This file holds icons.\r\r\n$"
    dos[0x40:0x40 + len(stub)] = stub

    code = SECTIONS[0][1]
    data = sum(size for _, size, _, _ in SECTIONS[1:])
    image = UNIT + code + data
    relocations = image - SECTIONS[-1][1]
    out = bytes(dos) + b"PE\0\0"
    out += struct.pack("<HHIIIHH", 0x14C, len(SECTIONS), 0, 0, 0, 0xE0, 0x210E)
    out += struct.pack("<HBBIIIIII", 0x10B, 6, 0, code, data, 0, UNIT, UNIT, UNIT + code)
    out += struct.pack("<IIIHHHHHHIIIIHH", BASE, UNIT, UNIT, 4, 0, 0, 0, 4, 0, 0, image, UNIT, 0, 2, 0)
    out += struct.pack("<IIIIII", 0x100000, 0x1000, 0x100000, 0x1000, 0, 16)
    directories = [(0, 0)] * 16
    directories[5] = (relocations, 12)
    for entry in directories:
        out += struct.pack("<II", *entry)
    place = UNIT
    for name, size, flags, _ in SECTIONS:
        out += struct.pack("<8sIIIIIIHHI", name, size, place, size, place, 0, 0, 0, 0, flags)
        place += size
    return out.ljust(UNIT, b"\0")


def checksum(image):
    total = 0
    for (word,) in struct.iter_unpack("<H", image):
        total += word
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(image)


def blank_dll():
    image = bytearray(headers())
    for _, size, _, content in SECTIONS:
        image += content.ljust(size, b"\0")
    assert len(image) == 40960
    struct.pack_into("<I", image, 0x80 + 24 + 64, checksum(image))
    return bytes(image)


def main():
    image = blank_dll()
    packed = b"VNZB" + struct.pack("<I", len(image)) + zlib.compress(image, 9)
    lines = [", ".join(f"0x{byte:02X}" for byte in packed[at:at + 18]) for at in range(0, len(packed), 18)]
    SOURCE.write_text(
        "// Made by tools/make_blank_dll.py.\n"
        '#include "containers/blank_dll.h"\n\n'
        "namespace pelorin {\n\nnamespace {\n\n"
        "// clang-format off\n"
        "constexpr std::uint8_t kPacked[] = {\n    " + ",\n    ".join(lines) + "};\n"
        "// clang-format on\n\n"
        "} // namespace\n\n"
        "ByteSpan PackedBlankDll() {\n    return kPacked;\n}\n\n"
        "} // namespace pelorin\n")
    print(f"{len(image)} bytes, {len(packed)} packed: {SOURCE}")


main()
