"""What the checks on real programs share: what they need, where they report to, how they run tools."""
import collections
import concurrent.futures
import hashlib
import os
import pathlib
import shutil
import struct
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FETCHED = ROOT / "build/real"  # packages that are unpacked and not installed
SAMPLE_ICON = ROOT / "resources/samples/sample.ico"
SAMPLE_PICTURE = ROOT / "resources/samples/pelorus.png"


def tool(*names):
    return next((path for path in map(shutil.which, names) if path), None)


def folder(*paths):
    return next((pathlib.Path(path) for path in paths if pathlib.Path(path).is_dir()), None)


# Package -> what of it a check uses, or None where it is not there.
NEEDS = {
    "binutils": tool("objdump"),
    "fonts-wine": folder("/usr/share/wine/fonts"),
    "gcc-mingw-w64-i686": tool("i686-w64-mingw32-gcc"),
    "gcc-mingw-w64-x86-64": tool("x86_64-w64-mingw32-gcc"),
    "icnsutils": tool("icns2png"),
    "icoutils": tool("wrestool"),
    "imagemagick": tool("convert-im6.q16", "convert"),
    "keepass2": folder(FETCHED / "keepass2/usr/lib/keepass2"),
    "libtiff-tools": tool("tiffcp"),
    "libwine": folder("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows"),
    "libwine:i386": folder("/usr/lib/i386-linux-gnu/wine/i386-windows",
                           FETCHED / "libwine/usr/lib/i386-linux-gnu/wine/i386-windows"),
    "netpbm": tool("pamtotga"),
    "nsis": tool("makensis"),
    "nsis-common": folder("/usr/share/nsis/Stubs"),
    "python3-distlib": folder(FETCHED / "python3-distlib/usr/lib/python3/dist-packages/distlib"),
    "shim-signed": folder(FETCHED / "shim-signed/usr/lib/shim"),
    "wine32:i386": tool("/usr/lib/wine/wine"),
    "wine64": tool("/usr/lib/wine/wine64"),
}
SECOND_ARCHITECTURE = {"wine32:i386", "gcc-mingw-w64-i686"}  # brought by ./dev real --install-32 alone
FETCHED_PACKAGES = {"keepass2", "libwine:i386", "python3-distlib", "shim-signed"}  # unpacked into FETCHED


class Report:
    """One check's result. A check that compared nothing has failed."""

    def __init__(self, program, scratch):
        self.program, self.scratch = str(program), scratch
        self.compared, self.faults, self.figures = 0, [], []

    def expect(self, right, text):
        self.compared += 1
        if not right:
            self.faults.append(text)
        return right

    def equal(self, ours, theirs, text):
        return self.expect(ours == theirs, f"{text}: {_short(ours)} is not {_short(theirs)}")

    def figure(self, text):
        self.figures.append(text)

    def folder(self, *parts):
        path = self.scratch.joinpath(*parts)
        path.mkdir(parents=True, exist_ok=True)
        return path

    def cli(self, *arguments, cwd=None):
        """The program under test; everything that it does here has to go well."""
        ran = run([self.program, *arguments], cwd=cwd)
        self.expect(ran.returncode == 0,
                    f"pelorin-cli {' '.join(map(str, arguments))[:200]}: exit {ran.returncode}, {ran.stderr[:300]!r}")
        return ran.stdout


def _short(value):
    text = repr(value)
    return text if len(text) < 160 else text[:157] + "..."


def run(command, cwd=None, env=None, timeout=300):
    """Text of both streams, undecodable bytes kept apart; never raises for an exit code."""
    return subprocess.run([str(word) for word in command], cwd=cwd, env=env, timeout=timeout, stdin=subprocess.DEVNULL,
                          capture_output=True, encoding="utf-8", errors="backslashreplace", check=False)


def side_by_side(work, items):
    """work(item) for all items on all cores, results in order: the work is mostly in other processes."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(work, items))


def ico_images(data):
    """The images of an icon file as (width, height, bytes), in file order."""
    count = struct.unpack_from("<H", data, 4)[0]
    found = []
    for entry in range(6, 6 + 16 * count, 16):
        size, offset = struct.unpack_from("<II", data, entry + 8)
        found.append((data[entry] or 256, data[entry + 1] or 256, data[offset:offset + size]))
    return found


def write_ico(path, images):
    """images: (width, height, bits, bytes)."""
    head, body = struct.pack("<HHH", 0, 1, len(images)), b""
    for width, height, bits, data in images:
        offset = 6 + 16 * len(images) + len(body)
        head += struct.pack("<BBBBHHII", width & 255, height & 255, (1 << bits) & 255 if bits < 8 else 0, 0, 1, bits,
                            len(data), offset)
        body += data
    path.write_bytes(head + body)


def picture_size(path):
    with open(path, "rb") as file:
        return struct.unpack(">II", file.read(24)[16:])


def pixels(pictures, options=()):
    """(width, height, RGBA bytes) of PNG files as ImageMagick reads them; fully transparent pixels are black."""
    found = []
    for start in range(0, len(pictures), 200):
        some = pictures[start:start + 200]
        raw = subprocess.run([NEEDS["imagemagick"], *map(str, some), *options, "-background", "black", "-alpha", "set",
                              "-alpha", "background", "-depth", "8", "RGBA:-"], capture_output=True, check=True).stdout
        for picture in some:
            width, height = picture_size(picture)
            found.append((width, height, raw[:4 * width * height]))
            raw = raw[4 * width * height:]
        assert not raw, f"{some[0]}: more pixels than its header says"
    return found


def pixel_digests(pictures):
    """How often each picture occurs, whatever the files are called."""
    return collections.Counter((width, height, hashlib.sha1(rgba).hexdigest()) for width, height, rgba in pixels(pictures))
