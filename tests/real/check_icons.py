"""Icon files of Windows and the Macintosh between us and the tools that people use, pixel for pixel."""
import re
import subprocess

from support import NEEDS, SAMPLE_ICON, SAMPLE_PICTURE, pixel_digests, pixels, run

MAGICK = NEEDS["imagemagick"]
SIZES = (16, 24, 32, 48, 64)
# (depth, how ImageMagick makes a picture of it)
DEPTHS = [(32, []), (24, ["-channel", "A", "-threshold", "50%", "+channel"]),
          (8, ["-channel", "A", "-threshold", "50%", "+channel", "-colors", "200"]),
          (4, ["-channel", "A", "-threshold", "50%", "+channel", "-colors", "12"]), (1, ["-alpha", "off", "-monochrome"])]


def formats_of(folder):
    """{WIDTHxHEIGHTxBITS: picture} by the names that all tools give to what they extract."""
    return {re.search(r"(\d+x\d+x\d+)", path.stem)[1]: path for path in folder.iterdir()}


def extract_ours(report, file):
    out = report.folder("ours", file.name)
    report.cli("extract", file, "--as", "png", "-q", "-f", "-o", f"{out}/")
    return formats_of(out)


def check_formats(report, what, ours, theirs, other_palettes=()):
    if report.equal(sorted(ours), sorted(theirs), f"{what}: formats"):
        for key, path in ours.items():
            one, other = pixels([path, theirs[key]])
            if key.endswith(tuple(other_palettes)):
                one, other = indices(one[2]), indices(other[2])
            report.expect(one == other, f"{what}: pixels at {key}")


def indices(rgba):
    """Colours by the order in which they come up: two programs' names for the same sixteen colours differ."""
    seen = {}
    return [seen.setdefault(rgba[at:at + 4], len(seen)) for at in range(0, len(rgba), 4)]


def scale(size, path, options=()):
    subprocess.run([MAGICK, SAMPLE_PICTURE, "-resize", f"{size}x{size}", "-depth", "8", *options, "-strip", path],
                   check=True)


def sized_pictures(work):
    made = {}
    for size in SIZES:
        for depth, options in DEPTHS:
            path = made[f"{size}x{size}x{depth}"] = work / f"{size}-{depth}.png"
            scale(size, path, options)
    return made


def windows_icons(report):
    work = report.folder("work")
    ours_made = work / "ours.ico"
    report.cli("create", SAMPLE_PICTURE, "-q", "-o", ours_made, "--preset", "all", "--compress", "never")
    pictures = sized_pictures(work)
    by_icotool, cursor, by_magick = work / "icotool.ico", work / "icotool.cur", work / "magick.ico"
    large = work / "256-32.png"
    scale(256, large)
    for out, options in ((by_icotool, ["-r", large]), (cursor, ["--cursor", "--hotspot-x=3", "--hotspot-y=5"])):
        words = [word for key, path in pictures.items() for word in (f"--bit-depth={key.rsplit('x')[-1]}", path)]
        subprocess.run(["icotool", "-c", "-o", out, *options, *words], check=True)
    for file in (ours_made, SAMPLE_ICON, by_icotool, cursor):
        out = report.folder("icotool", file.name)
        run(["icotool", "-x", file, "-o", out])
        check_formats(report, file.name, extract_ours(report, file), formats_of(out))
    subprocess.run([MAGICK, *(path for key, path in pictures.items() if key.endswith("x32")), large, by_magick], check=True)
    for file in (ours_made, SAMPLE_ICON, by_magick):
        out = report.folder("magick", file.name)
        subprocess.run([MAGICK, file, "-strip", f"PNG32:{out}/%02d.png"], check=True)
        report.expect(pixel_digests(sorted(out.iterdir())) == pixel_digests(list(extract_ours(report, file).values())),
                      f"{file.name}: pixels by ImageMagick")
    ours = extract_ours(report, ours_made)
    report.figure(f"{len(pictures) + 1} formats by icotool, {len(SIZES) + 1} by ImageMagick, {len(ours)} by us")


def installers_icons(report):
    """Icon files of many makers. A compressed image that its entry calls indexed becomes so here, and in icotool stays."""
    files = sorted((NEEDS["nsis-common"].parent / "Contrib/Graphics/Icons").glob("*.ico"))
    for file in files:
        out = report.folder("icotool", file.name)
        run(["icotool", "-x", file, "-o", out])
        ours, theirs = extract_ours(report, file), formats_of(out)
        report.equal(len(ours), len(theirs), f"{file.name}: formats")
        plain = ours.keys() & theirs.keys()
        check_formats(report, file.name, {key: ours[key] for key in plain}, {key: theirs[key] for key in plain})
    report.figure(f"{len(files)} files")


def macintosh_icons(report):
    work = report.folder("work")
    ours_made, theirs_made = work / "ours.icns", work / "theirs.icns"
    report.cli("create", SAMPLE_PICTURE, "-q", "-o", ours_made, "--preset", "all")
    pictures = {}
    for size in (16, 32, 48, 128):
        path = pictures[f"{size}x{size}x32"] = work / f"{size}.png"
        scale(size, path)
    run(["png2icns", theirs_made, *pictures.values()])
    out = report.folder("icns2png")
    run([NEEDS["icnsutils"], "-x", "-o", out, ours_made])
    ours = extract_ours(report, ours_made)
    check_formats(report, "our file read by icns2png", ours, formats_of(out), ["x4"])
    check_formats(report, "file of png2icns", extract_ours(report, theirs_made), pictures)
    report.figure(f"{len(ours)} formats by us, {len(pictures)} by png2icns")


CHECKS = [
    ("icons-windows", windows_icons, ["imagemagick", "icoutils"]),
    ("icons-installers", installers_icons, ["imagemagick", "icoutils", "nsis-common"]),
    ("icons-macintosh", macintosh_icons, ["imagemagick", "icnsutils"]),
]
