"""16-bit programs that were not made by us: read, and an icon replaced in its place.

No package holds a whole one, and no compiler of them. But Wine's 16-bit drivers carry their module, in the old form and
laid out by Wine's linker, inside a 32-bit image; cut out it is a file of its own.
"""
import struct

from check_changes import check_same_icon
from check_programs import digest, listed, program_files
from pe import Pe
from support import NEEDS, SAMPLE_ICON, ico_images, run, write_ico


def cut_16_bit_program(path):
    data = path.read_bytes()
    parts = (data[section.raw_offset:][:section.raw_size] for section in Pe(data).sections)
    module = bytearray(next(part for part in parts if part[:2] == b"MZ"))
    head = struct.unpack_from("<I", module, 60)[0]
    assert module[head:head + 2] == b"NE"
    module[head + 0x3E:head + 0x40] = 10, 3  # it names no version of Windows; icons came with 3
    return bytes(module)


def ne_images(module):
    """{id: (place, size)} of the images in a 16-bit program."""
    head = struct.unpack_from("<I", module, 60)[0]
    at = head + struct.unpack_from("<H", module, head + 0x24)[0]
    shift = struct.unpack_from("<H", module, at)[0]
    at += 2
    while (kind := struct.unpack_from("<H", module, at)[0]) not in (0, 0x8003):
        at += 8 + 12 * struct.unpack_from("<H", module, at + 2)[0]
    rows = module[at + 8:at + 8 + 12 * struct.unpack_from("<H", module, at + 2)[0]] if kind else b""
    return {number & 0x7FFF: (offset << shift, size << shift)
            for offset, size, _, number, _ in struct.iter_unpack("<HHHHI", rows)}


def program_16(report):
    """Only the same formats go into a 16-bit program, each in its place; nothing else in the file changes."""
    work = report.folder("work")
    path = work / "display.drv"
    module = cut_16_bit_program(NEEDS["libwine:i386"] / "display.drv16")
    path.write_bytes(module)
    places = sorted(ne_images(module).values())
    report.cli("program", "extract", path, "-o", work / "ours.ico")
    ours = ico_images((work / "ours.ico").read_bytes())
    report.expect(sorted(image[2] for image in ours) == sorted(module[at:at + size] for at, size in places),
                  "images of the 16-bit program")
    run([NEEDS["icoutils"], "-x", "-t14", path, "-o", work / "wrestool.ico"])
    report.equal(digest(ico_images((work / "wrestool.ico").read_bytes())), digest(ours), "images by wrestool")

    plain = [image for image in ours if image[2][:4] != b"\x89PNG"]
    compressed = [(width, height, 32, data) for width, height, data in ours if data[:4] == b"\x89PNG"]
    write_ico(work / "turned.ico", compressed + [(width, height, data[14], data[:-1] + bytes([data[-1] ^ 255]))
                                                 for width, height, data in plain])
    report.cli("program", "replace", path, "1", work / "turned.ico", "-o", work / "changed.drv")
    changed = (work / "changed.drv").read_bytes()
    report.equal(ne_images(changed), ne_images(module), "places of the images")
    report.cli("program", "extract", work / "changed.drv", "-o", work / "changed.ico")
    check_same_icon(report, path, ico_images((work / "changed.ico").read_bytes()),
                    ico_images((work / "turned.ico").read_bytes()))
    end, rest = 0, []
    for at, size in places + [(len(module), 0)]:
        rest.append(changed[end:at] == module[end:at])
        end = at + size
    report.expect(all(rest) and len(changed) == len(module), "bytes between the images")
    refused = run([report.program, "program", "replace", path, "1", SAMPLE_ICON, "-o", work / "refused.drv"])
    report.expect(refused.returncode == 1 and not (work / "refused.drv").exists(), "other formats are not refused")
    report.figure(f"{len(places)} images in a module of {len(module)} bytes")


def fonts_16(report):
    """Fonts are programs of the old form with resources, and none of them icons."""
    files = [path for path in program_files(NEEDS["fonts-wine"])
             if (data := path.read_bytes())[struct.unpack_from("<I", data, 60)[0]:][:2] == b"NE"]
    report.expect(files, "no 16-bit fonts")
    for path, entry in listed(report, files).items():
        report.equal((entry["form"], entry["icons"]), ("ne", []), path)
    report.figure(f"{len(files)} files")


CHECKS = [
    ("fonts-16", fonts_16, ["fonts-wine"]),
    ("program-16", program_16, ["libwine:i386", "icoutils", "imagemagick"]),
]
