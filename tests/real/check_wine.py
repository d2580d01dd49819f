"""Changed programs and libraries under Wine: they load as data, they start, and an installer still unpacks its files."""
import os
import re
import subprocess

from check_changes import TAIL, some_carriers
from check_libraries import make_library
from check_programs import program_files
from pe import RESOURCES, Pe
from support import NEEDS, ROOT, SAMPLE_ICON, SAMPLE_PICTURE, run

PROBE = ROOT / "tests/real/probe.c"
STARTED = 42  # what the probe returns when its own icons load


class Wine:
    """A prefix of its own, without a display; ends with the check."""

    def __init__(self, report, loader, bits):
        self.loader = loader
        self.env = {key: value for key, value in os.environ.items() if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
        self.env |= {"WINEPREFIX": str(report.scratch / "prefix"), "WINEDEBUG": "-all", "WINEARCH": f"win{bits}",
                     "WINEDLLOVERRIDES": "mscoree,mshtml="}
        run([loader, "wineboot", "-i"], env=self.env)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        run(["/usr/lib/wine/wineserver", "-k"], env=self.env)
        run(["/usr/lib/wine/wineserver", "-w"], env=self.env)

    def __call__(self, *command, cwd=None):
        return run([self.loader, *command], env=self.env, cwd=cwd)


def build_probe(work, triple):
    """A program with two icons, base relocations and symbols that loads the icons of other files, or its own."""
    script = work / "probe.rc"
    script.write_text(f'MAIN ICON "{SAMPLE_ICON}"\n7 ICON "{SAMPLE_ICON}"\n')
    subprocess.run([f"{triple}-windres", script, work / "probe.o"], check=True)
    probe = work / "probe.exe"
    subprocess.run([f"{triple}-gcc", "-O1", "-Wall", "-o", probe, PROBE, work / "probe.o", "-lgdi32"], check=True)
    return probe


def check_loading(report, wine, probe, files):
    """The system's own calls see as many groups and images as our second reader, and make an icon of each."""
    ran = wine(probe, *files)
    report.equal(ran.returncode, 0, f"probe: {re.findall('FAULT.*', ran.stdout)[:5]} {ran.stderr[:300]}")
    seen = dict(re.findall(r"^(/.*): (\d+ groups, \d+ images)$", ran.stdout, re.M))
    images = 0
    for file in files:
        groups = Pe(file.read_bytes()).groups()
        count = sum(map(len, groups.values()))
        report.equal(seen.get(str(file)), f"{len(groups)} groups, {count} images", f"{file.name}: loaded as data")
        images += count
    report.figure(f"{len(files)} files with {images} images loaded")


def changed_files(report, folder):
    """Ten real files with another first icon, and ten that had no resources at all with an icon."""
    work = report.folder("changed", folder.name)
    for path in some_carriers(report, folder):
        report.cli("program", "replace", folder / path, "1", SAMPLE_ICON, "-q", "-o", work / os.path.basename(path))
    bare = [path for path in program_files(folder) if not Pe(path.read_bytes()).directories[RESOURCES][0]]
    for path in bare[:: len(bare) // 10]:
        report.cli("program", "add", path, SAMPLE_ICON, "-q", "-o", work / path.name)
    return sorted(work.iterdir())


def check_starting(report, wine, probe):
    """A program starts after each kind of change, and finds its icons itself."""
    work = probe.parent
    other = work / "other.ico"
    report.cli("create", SAMPLE_PICTURE, "-q", "-o", other, "--preset", "all")
    tailed = work / "tailed.exe"
    tailed.write_bytes(probe.read_bytes() + TAIL)
    changes = {
        "as it was built": None,
        "another icon": ("replace", probe, "1", other),
        "another icon, data behind": ("replace", tailed, "#7", other),
        "more icons": ("add", probe, other, "--name", "ANOTHER"),
        "one icon less": ("remove", probe, "1"),
        "all icons of a DLL": ("copy-icons", NEEDS["libwine"] / "shell32.dll", tailed),
    }
    for what, change in changes.items():
        started = probe
        if change:
            started = work / "changed.exe"
            report.cli("program", *change, "-q", "-f", "-o", started)
        groups = Pe(started.read_bytes()).groups()
        ran = wine(started, "self")
        report.equal((ran.returncode, ran.stdout.strip()),
                     (STARTED, f"self: {len(groups)} groups, {sum(map(len, groups.values()))} images, 0 faults"),
                     f"starts with {what}")


def check_installer(report, wine, target):
    """A self-extractor with another icon unpacks what was packed. It is built without a sum over itself, icons and all."""
    work = report.folder("installer")
    (work / "setup.nsi").write_text(f"""Target {target}
Name Sample
OutFile {work}/setup.exe
Icon {SAMPLE_ICON}
CRCCheck off
SilentInstall silent
RequestExecutionLevel user
Section
  SetOutPath $INSTDIR
  File {PROBE}
SectionEnd
""")
    subprocess.run([NEEDS["nsis"], "-V1", work / "setup.nsi"], check=True)
    report.cli("create", SAMPLE_PICTURE, "-q", "-o", work / "other.ico", "--preset", "all")
    report.cli("program", "replace", work / "setup.exe", "1", work / "other.ico", "-q", "-o", work / "changed.exe")
    for name in ("setup.exe", "changed.exe"):
        out = work / f"from-{name}"
        ran = wine(work / name, "/S", "/D=Z:" + str(out).replace("/", "\\"))
        unpacked = out / PROBE.name
        report.expect(ran.returncode == 0 and unpacked.is_file() and unpacked.read_bytes() == PROBE.read_bytes(),
                      f"{name} does not unpack: exit {ran.returncode}")


def check_under_wine(report, loader, bits, triple, target, folders):
    with Wine(report, loader, bits) as wine:
        probe = build_probe(report.folder("probe"), triple)
        files = [file for folder in folders if folder for file in changed_files(report, folder)]
        files += [make_library(report, "libraries", count, "pe")[0] for count in (1, 500, 5000)]
        check_loading(report, wine, probe, files)
        check_starting(report, wine, probe)
        check_installer(report, wine, target)


def wine_64(report):
    check_under_wine(report, NEEDS["wine64"], 64, "x86_64-w64-mingw32", "amd64-unicode",
                     [NEEDS["libwine"], NEEDS["libwine:i386"]])


def wine_32(report):
    check_under_wine(report, NEEDS["wine32:i386"], 32, "i686-w64-mingw32", "x86-unicode",
                     [NEEDS["libwine"], NEEDS["libwine:i386"]])


CHECKS = [
    ("wine-64", wine_64, ["wine64", "libwine", "gcc-mingw-w64-x86-64", "nsis"]),
    ("wine-32", wine_32, ["wine32:i386", "libwine", "gcc-mingw-w64-i686", "nsis"]),
]
