"""Picture files between us and the tools that people use, in both directions, pixel for pixel."""
import subprocess

from picture_rows import (FRAMES, LOW_BITS, MADE_BY_MAGICK, MADE_BY_NETPBM, MADE_BY_TIFFCP, MADE_BY_US, REFUSED, SOURCES,
                          TURNED)
from support import NEEDS, pixels, run, tool

MAGICK = NEEDS["imagemagick"]

def make_sources(work):
    for name, options in SOURCES.items():
        subprocess.run([MAGICK, *map(str, options), "-depth", "8", "-strip", f"{name}.png"], cwd=work, check=True)


def farthest(ours, theirs):
    """The largest difference of a channel between two pictures of one size."""
    return max(map(abs, map(int.__sub__, ours[2], theirs[2]))) if ours[2] != theirs[2] else 0


def check_same(report, what, ours, theirs, most):
    if report.equal(ours[:2], theirs[:2], f"{what}: size"):
        far = farthest(ours, theirs)
        report.expect(far <= most, f"{what}: a channel differs by {far}")


def our_reading(report, work, file):
    """What we read in a file, as PNG; None, and told, where that fails."""
    out = work / f"{file}.ours.png"
    ran = run([report.program, "image", file, "-q", "-o", out], cwd=work)
    return out if report.expect(ran.returncode == 0, f"{file}: {ran.stderr[:200].strip()}") else None


def by_magick(work, file, frame=0, options=()):
    """What ImageMagick reads in a file, as PNG."""
    out = work / f"{file}.{frame}.theirs.png"
    turn = ["-auto-orient"] if file.endswith(TURNED) else []
    subprocess.run([MAGICK, f"{file}[{frame}]", *turn, *options, "-strip", "-colorspace", "sRGB", out], cwd=work, check=True)
    return out


def write_by_magick(work, file, source, options):
    prefix = options[-1] if options and options[-1].endswith(":") else ""
    options = options[:-1] if prefix else options
    subprocess.run([MAGICK, f"{source}.png", *options, f"{prefix}made-{file}"], cwd=work, check=True)
    return f"made-{file}"


def read_made_by_magick(report):
    work = report.folder("work")
    make_sources(work)
    for file, source, options, most in MADE_BY_MAGICK:
        made = write_by_magick(work, file, source, options)
        ours = our_reading(report, work, made)
        if ours:
            check_same(report, file, *pixels([ours, by_magick(work, made, FRAMES.get(file, 0))]), most)
    for file, source, options in REFUSED:
        made = write_by_magick(work, file, source, options)
        ran = run([report.program, "image", made, "-o", "refused.png"], cwd=work)
        report.expect(ran.returncode == 1 and made in ran.stderr and not (work / "refused.png").exists(),
                      f"{file}: not refused")
    report.figure(f"{len(MADE_BY_MAGICK)} files read, {len(REFUSED)} refused")


def to_pnm(work, source):
    out = work / f"{source}.pnm"
    form = [] if source not in ("gray", "mono") else ["-compress", "None"]
    subprocess.run([MAGICK, f"{source}.png", *form, out], cwd=work, check=True)
    return out


def filtered(command, source, target):
    with open(source, "rb") as taken, open(target, "wb") as given:
        subprocess.run(command.split(), stdin=taken, stdout=given, stderr=subprocess.DEVNULL, check=True)


def read_made_by_netpbm(report):
    work = report.folder("work")
    make_sources(work)
    for file, source, writer, reader in MADE_BY_NETPBM:
        filtered(writer, to_pnm(work, source), work / file)
        filtered(reader, work / file, work / f"{file}.pnm")
        ours = our_reading(report, work, file)
        if ours:
            check_same(report, file, *pixels([ours, by_magick(work, f"{file}.pnm")]), LOW_BITS.get(file, 0))
    report.figure(f"{len(MADE_BY_NETPBM)} files")


def read_made_by_tiffcp(report):
    work = report.folder("work")
    make_sources(work)
    rows = {file: (source, options) for file, source, options, _ in MADE_BY_MAGICK}
    for file, options, made in MADE_BY_TIFFCP:
        subprocess.run(["tiffcp", *options.split(), write_by_magick(work, made, *rows[made]), file], cwd=work, check=True)
        ours = our_reading(report, work, file)
        if ours:
            check_same(report, file, *pixels([ours, by_magick(work, file)]), 1 if "cmyk" in file else 0)
    report.figure(f"{len(MADE_BY_TIFFCP)} files")


def read_installers(report):
    """Bitmaps of many makers."""
    work = report.folder("work")
    files = sorted((NEEDS["nsis-common"].parent / "Contrib/Graphics").rglob("*.bmp"))
    for number, file in enumerate(files):
        name = f"{number}-{file.name}"
        (work / name).write_bytes(file.read_bytes())
        ours = our_reading(report, work, name)
        if ours:
            check_same(report, name, *pixels([ours, by_magick(work, name)]), 0)
    report.figure(f"{len(files)} files")


def our_frame(report, work, file, option, number):
    out = work / f"{file}.{number}.ours.png"
    report.cli("image", file, "-q", "-o", out, option, number, cwd=work)
    return out


def read_frames(report):
    """Frames of animations as they are seen, pages, layers."""
    work = report.folder("work")
    make_sources(work)
    small = ["(", "rgba.png", "-resize", "40x30!", "-channel", "A", "-threshold", "50%", "+channel"]
    for dispose in ("None", "Background", "Previous"):
        file = f"{dispose}.gif"
        # What was before the first frame is a matter of taste: that frame always stays.
        subprocess.run([MAGICK, "-delay", "10", "pal16.png", "-set", "dispose", "None", "-dispose", dispose,
                        *small, "-repage", "+20+11", ")", *small, "-flop", "-repage", "+50+25", ")",
                        "keyed.png", *small, "-repage", "+2+3", ")", file], cwd=work, check=True)
        subprocess.run([MAGICK, file, "-coalesce", "-strip", f"{dispose}-%d.png"], cwd=work, check=True)
        for number in range(1, 6):
            ours = our_frame(report, work, file, "--frame", number)
            check_same(report, f"{file}, frame {number}", *pixels([ours, work / f"{dispose}-{number - 1}.png"]), 0)
    subprocess.run([MAGICK, "rgb.png", "gray.png", "mono.png", "rgba.png", "pages.tif"], cwd=work, check=True)
    for number in range(1, 5):
        ours = our_frame(report, work, "pages.tif", "--frame", number)
        check_same(report, f"pages.tif, page {number}", *pixels([ours, by_magick(work, "pages.tif", number - 1)]), 0)
    subprocess.run([MAGICK, "rgba.png", "rgba.png", *small, "-repage", "97x61+20+11", ")", *small, "-flop",
                    "-repage", "97x61+57+31", ")", "-compress", "RLE", "layers.psd"], cwd=work, check=True)
    for number, place in enumerate(("+0+0", "+20+11", "+57+31"), 1):
        ours = our_frame(report, work, "layers.psd", "--layer", number)
        theirs = by_magick(work, "layers.psd", number, ["-repage", f"97x61{place}", "-background", "none", "-flatten"])
        check_same(report, f"layers.psd, layer {number}", *pixels([ours, theirs]), 0)
    report.figure("15 frames of 3 animations, 4 pages, 3 layers")


def written_by_us(report):
    work = report.folder("work")
    make_sources(work)
    for name, source, reader in MADE_BY_US:
        file = f"our-{name}"
        report.cli("image", f"{source}.png", "-q", "-o", file, cwd=work)
        theirs = [by_magick(work, file, FRAMES.get(name, 0))]
        if reader and tool(reader):
            filtered(reader, work / file, work / f"{file}.pnm")
            theirs.append(by_magick(work, f"{file}.pnm"))
        again = our_reading(report, work, file)
        for read in theirs + [again]:
            check_same(report, f"{name} read by {read.name}", *pixels([read, work / f"{source}.png"]), 0)
    for file, options, most in (("our.jpg", ["--quality", 95], 6), ("lossy.jp2", ["--lossy", 5], 12)):
        report.cli("image", "rgb.png", "-q", "-o", file, *options, cwd=work)
        source, theirs, ours = pixels([work / "rgb.png", by_magick(work, file), our_reading(report, work, file)])
        report.equal(ours, theirs, f"{file}: pixels by ImageMagick")
        mean = sum(map(abs, map(int.__sub__, source[2], theirs[2]))) / len(source[2])
        report.expect(0 < mean < most, f"{file}: pixels are {mean:.1f} off on average")
    report.figure(f"{len(MADE_BY_US) + 2} files")


CHECKS = [
    ("pictures-magick", read_made_by_magick, ["imagemagick"]),
    ("pictures-netpbm", read_made_by_netpbm, ["imagemagick", "netpbm"]),
    ("pictures-tiff", read_made_by_tiffcp, ["imagemagick", "libtiff-tools"]),
    ("pictures-installers", read_installers, ["imagemagick", "nsis-common"]),
    ("pictures-frames", read_frames, ["imagemagick"]),
    ("pictures-written", written_by_us, ["imagemagick"]),
]
