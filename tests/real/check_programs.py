"""Icons read from the programs of Debian packages: counted as wrestool counts, to the byte and to the pixel."""
import collections
import hashlib
import json
import pathlib
import re

from pe import Pe
from support import NEEDS, ico_images, pixel_digests, run, side_by_side


def program_files(*folders):
    """Everything that begins as a program does, whatever it is called."""
    found = []
    for folder in folders:
        for path in sorted(pathlib.Path(folder).rglob("*")):
            if path.is_file() and not path.is_symlink():
                with open(path, "rb") as file:
                    if file.read(2) == b"MZ":
                        found.append(path)
    return found


def listed(report, files):
    """Our listing of many files, by path."""
    return {entry["file"]: entry for entry in json.loads(report.cli("program", "list", "--json", *files))}


def told_by_wrestool(path):
    """(groups, images) as sorted lists of (name, language)."""
    text = run([NEEDS["icoutils"], "-l", path]).stdout
    rows = re.findall(r"^--type=(3|14) --name=(.*) --language=(\S+)", text, re.M)
    return [sorted(name.strip("'") for kind, name, _ in rows if kind == wanted) for wanted in ("14", "3")]


def digest(images):
    return tuple(sorted(hashlib.sha1(data).hexdigest() for _, _, data in images))


def check_bytes(report, path, own_folder):
    """Every group's images are the bytes of the resources, as our second reader finds them."""
    theirs = collections.Counter(digest(images) for images in Pe(path.read_bytes()).groups().values())
    ours = collections.Counter(digest(ico_images(icon.read_bytes())) for icon in own_folder.iterdir())
    report.expect(ours == theirs, f"{path.name}: bytes of the extracted icons differ")


def check_pixels(report, path, work):
    """Pictures that we extract are those that icotool makes of what wrestool extracts."""
    report.cli("extract", path, "--as", "png", "-q", "-o", f"{work}/ours/")
    (work / "theirs").mkdir()
    (work / "pictures").mkdir()
    run([NEEDS["icoutils"], "-x", "-t14", path, "-o", work / "theirs"])
    run(["icotool", "-x", *sorted((work / "theirs").iterdir()), "-o", work / "pictures"])
    ours, theirs = (sorted((work / name).iterdir()) for name in ("ours", "pictures"))
    same = pixel_digests(ours) == pixel_digests(theirs)
    report.expect(same and len(ours) == len(theirs), f"{path.name}: pixels differ from icotool's")
    return len(ours)


def check_reading(report, files):
    entries = listed(report, files)
    told = side_by_side(told_by_wrestool, files)
    carriers, groups, images = [], 0, 0
    for path, (their_groups, their_images) in zip(files, told):
        icons = entries[str(path)]["icons"] if str(path) in entries else []
        names = sorted(icon["name"] if icon["id"] < 0 else str(icon["id"]) for icon in icons)
        numbers = {(image["id"], image["language"]) for icon in icons for image in icon["formats"]}
        report.equal(names, their_groups, f"{path.name}, groups")
        report.equal(sorted(str(number) for number, _ in numbers), their_images, f"{path.name}, images")
        groups, images = groups + len(icons), images + len(numbers)
        if icons:
            carriers.append(path)

    def extract(item):
        number, path = item
        work = report.folder(str(number))
        report.cli("program", "extract", path, "-q", "-o", f"{work}/icons/")
        check_bytes(report, path, work / "icons")
        return check_pixels(report, path, work)

    report.expect(carriers, "no file has icons")
    pictures = sum(side_by_side(extract, enumerate(carriers)))
    report.figure(f"{len(files)} files, {len(carriers)} with icons, {groups} groups, {images} images, "
                  f"{pictures} pictures compared")


def read_64(report):
    check_reading(report, program_files(NEEDS["libwine"]))


def read_32(report):
    check_reading(report, program_files(NEEDS["libwine:i386"]))


def read_stubs(report):
    check_reading(report, program_files(NEEDS["nsis-common"].parent))


CHECKS = [
    ("read-64", read_64, ["libwine", "icoutils", "imagemagick"]),
    ("read-32", read_32, ["libwine:i386", "icoutils", "imagemagick"]),
    ("read-installers", read_stubs, ["nsis-common", "icoutils", "imagemagick"]),
]
