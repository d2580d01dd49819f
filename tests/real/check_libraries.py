"""Icon libraries of both forms, small and large: written, read back, read by wrestool, sorted and named."""
import random
import struct

from check_programs import digest, listed
from pe import Pe
from support import NEEDS, ico_images, run, write_ico

SIZES = (1, 500, 5000)


def noise_image(random_bytes, width, height, bits):
    """An icon block of random pixels; nothing is said of the alpha of 32 bits but that it is not 0."""
    colors = 1 << bits if bits <= 8 else 0
    head = struct.pack("<IIIHHIIIIII", 40, width, 2 * height, 1, bits, 0, 0, 0, 0, colors, 0)
    return width, height, bits, head + random_bytes(4 * colors + height * ((width * bits + 31) // 32 * 4)) + bytes(
        height * ((width + 31) // 32 * 4))


def make_icons(folder, count):
    """Icon files of two images each, whose names are in no order; [(path, name that a library gives it, images)]."""
    source = random.Random(count)
    made = []
    for number in source.sample(range(count), count):
        path = folder / f"{source.choice('bMx')}all {number:04d}.ico"
        write_ico(path, [noise_image(source.randbytes, 32, 32, 8), noise_image(source.randbytes, 16, 16, 32)])
        made.append((path, path.stem[0].upper() + path.stem[1:], ico_images(path.read_bytes())))
    return made


def make_library(report, folder, count, form):
    """(path of a new library, {name: images} in its order)."""
    work = report.folder(folder, f"{form}{count}")
    icons = make_icons(report.folder(folder, f"{form}{count}", "in"), count)
    path = work / "library.icl"
    report.cli("library", "create", path, *(f"in/{file.name}" for file, _, _ in icons), "--form", form, "-q", cwd=work)
    return path, {name: images for _, name, images in icons}


def check_extracted(report, path, icons, where):
    """Names and blocks of a library as we read it back."""
    entry = listed(report, [path])[str(path)]
    report.equal([icon["name"] for icon in entry["icons"]], list(icons), f"{where}: names in order")
    out = path.parent / "out"
    report.cli("library", "extract", path, "-q", "-f", "-o", f"{out}/")
    for name, images in icons.items():
        report.expect(sorted(ico_images((out / f"{name}.ico").read_bytes())) == sorted(images), f"{where}: images of {name}")


def check_by_wrestool(report, path, icons, where):
    out = path.parent / "wrestool"
    out.mkdir()
    run([NEEDS["icoutils"], "-x", "-t14", path, "-o", out])
    theirs = {int(file.stem.split("_14_")[1].split("_")[0]): file for file in out.iterdir()}
    report.equal(sorted(theirs), list(range(1, len(icons) + 1)), f"{where}: groups by wrestool")
    for number, images in enumerate(icons.values(), 1):
        # In the 16-bit form resources fill whole units, so that the file knows no exact length of an image.
        report.expect(number in theirs and digest(cut(ico_images(theirs[number].read_bytes()), images)) == digest(images),
                      f"{where}: icon {number} by wrestool")


def cut(found, images):
    sizes = {image[:2]: len(image[2]) for image in images}
    return [(width, height, data[:sizes.get((width, height), 0)]) for width, height, data in found]


def libraries(report):
    for form in ("pe", "ne"):
        for count in SIZES:
            path, icons = make_library(report, "made", count, form)
            where = f"{form}, {count} icons"
            check_extracted(report, path, icons, where)
            check_by_wrestool(report, path, icons, where)
            if form == "pe":
                groups = Pe(path.read_bytes()).groups()
                report.equal(list(groups), [(number, 0) for number in range(1, count + 1)], f"{where}: numbers")
            report.cli("library", "sort", path, "--in-place", "-q")
            check_extracted(report, path, dict(sorted(icons.items())), f"{where}, sorted")
            report.cli("library", "rename", path, "a%s", f"1-{count}", "--digits", "3", "--in-place", "-q")
            names = {f"a%s{number:03d}" if count > 1 else "a%s": icons[name] for number, name in enumerate(sorted(icons), 1)}
            check_extracted(report, path, names, f"{where}, renamed")
    report.figure(f"{', '.join(map(str, SIZES))} icons of two images, two forms")


def libraries_of_program(report):
    """All icons of a large DLL go out as files, into a library as a folder's files, and out again."""
    program = NEEDS["libwine"] / "shell32.dll"
    work = report.folder("work")
    report.cli("program", "extract", program, "-q", "-o", f"{work}/icons/")
    files = sorted(work.glob("icons/*.ico"))
    icons = {f"{file.stem[0].upper()}{file.stem[1:]}": file for file in files}
    for form in ("pe", "ne"):
        path = work / f"{form}.icl"
        report.cli("library", "create", path, *files, "--form", form, "-q")
        report.cli("library", "extract", path, "-q", "-o", f"{work}/{form}/")
        for name, file in icons.items():
            plain = [digest(image for image in ico_images(one.read_bytes()) if image[2][:4] != b"\x89PNG")
                     for one in (file, work / form / f"{name}.ico")]
            report.equal(plain[1], plain[0], f"{form}: blocks of {name}")
    report.figure(f"{len(files)} icons, two forms")


CHECKS = [
    ("libraries", libraries, ["icoutils"]),
    ("libraries-of-dll", libraries_of_program, ["libwine"]),
]
