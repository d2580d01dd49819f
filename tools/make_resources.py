#!/usr/bin/env python3
"""Writes the resources that are compiled into the program: src/formats/program_resources_data.cpp.

Two are made here: BLANKDLL, the DLL that icon libraries are written into, and TYPEICLSMALLICO, the icon of libraries.
The DLL is a 32-bit image of 40,960 bytes with sections of code, constants, data and base relocations, without resources.
Its entry point only says that all is well, so that programs may load a library as a DLL. Files that are carried as they
stand come from resources/TYPE/NAME.EXT (see the README there). Run it by hand; the result is kept.
"""
import pathlib
import struct
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "src" / "formats" / "program_resources_data.cpp"
CARRIED = ROOT / "resources"

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


# One character a pixel: a dot is transparent, the others are positions in the table of standard colours.
LIBRARY = """
................
.0000...........
.0CC00000.......
.0CC0AA9000000..
.0CC0AA20EEEE0..
.0FF0AA20E66E0..
.0CC0FF20EEEE0..
.0CC0AA20EEEE0..
.0CC0AA20EEEE0..
.0CC0AA20EEEE0..
.0CC0AA20E66E0..
.0CC0AA20EEEE0..
0000000000000000
0333333333333330
0000000000000000
................
""".split()
COLORS = (0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
          0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF)


def rows(scale, bits, value):
    """The drawing from the bottom up, enlarged, each row padded to 4 bytes."""
    out = b""
    for line in reversed(LIBRARY):
        number = 0
        for pixel in line:
            for _ in range(scale):
                number = number << bits | value(pixel)
        length = 16 * scale * bits
        row = number.to_bytes(length // 8, "big").ljust((length + 31) // 32 * 4, b"\0")
        out += row * scale
    return out


def icon_image(scale):
    side = 16 * scale
    head = struct.pack("<IiiHHIIiiII", 40, side, 2 * side, 1, 4, 0, 0, 0, 0, 16, 0)
    table = b"".join(struct.pack("<I", color) for color in COLORS)
    image = rows(scale, 4, lambda pixel: 0 if pixel == "." else int(pixel, 16))
    return head + table + image + rows(scale, 1, lambda pixel: pixel == ".")


def library_icon():
    images = [icon_image(2), icon_image(1)]
    out = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for scale, image in zip((2, 1), images):
        out += struct.pack("<BBBBHHII", 16 * scale, 16 * scale, 16, 0, 1, 4, len(image), offset)
        offset += len(image)
    return out + b"".join(images)


def packed(content):
    return b"VNZB" + struct.pack("<I", len(content)) + zlib.compress(content, 9)


def resources():
    """Type and name with the bytes that are compiled in."""
    found = {("VNZB", "BLANKDLL"): packed(blank_dll()), ("VNZB", "TYPEICLSMALLICO"): packed(library_icon())}
    for kind in ("VNZB", "RGBA", "RGBAZ"):
        for path in sorted((CARRIED / kind).glob("*")):
            content = path.read_bytes()
            found[kind, path.stem] = content if kind == "RGBA" else packed(content)
    return found


def main():
    arrays, table = "", ""
    for number, ((kind, name), content) in enumerate(resources().items(), 1):
        lines = [", ".join(f"0x{byte:02X}" for byte in content[at:at + 18]) for at in range(0, len(content), 18)]
        arrays += f"constexpr std::uint8_t kResource{number}[] = {{\n    " + ",\n    ".join(lines) + "};\n"
        table += f'    {{"{kind}", "{name}", kResource{number}}},\n'
        print(f"{kind} {name}: {len(content)} bytes")
    SOURCE.write_text(
        "// Made by tools/make_resources.py.\n"
        '#include "formats/program_resources.h"\n\n'
        "namespace pelorin {\n\nnamespace {\n\n"
        "// clang-format off\n" + arrays + "constexpr ProgramResource kResources[] = {\n" + table + "};\n"
        "// clang-format on\n\n"
        "} // namespace\n\n"
        "std::span<const ProgramResource> ProgramResources() {\n    return kResources;\n}\n\n"
        "} // namespace pelorin\n")


main()
