#!/usr/bin/env python3
"""Times icons made from pictures against the tools that people use today, whole process against whole process.

Usage: bench/compare_create.py [PROGRAM]      (default: build/release/bin/pelorin-cli)

Needs ImageMagick, icoutils and python3 with Pillow. The commands take turns, so that a change of the machine's speed hits
all of them; medians are printed. Everything is done in a folder in memory.
"""
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/bin/pelorin-cli")
MAGICK = shutil.which("magick") or shutil.which("convert-im6.q16") or "convert"
TEN_SIZES = [256, 128, 96, 64, 48, 40, 32, 24, 20, 16]


def timed(command):
    start = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


def race(title, commands, runs=7):
    times = {name: [] for name, _ in commands}
    for name, command in commands:
        timed(command)
    for _ in range(runs):
        for name, command in commands:
            times[name].append(timed(command))
    ours = statistics.median(times[commands[0][0]])
    print(title)
    for name, values in times.items():
        median = statistics.median(values)
        print(f"  {name:28s} median {median:8.4f} s   min {min(values):8.4f}   max {max(values):8.4f}   x {median / ours:6.2f}")


def pillow(source, target, sizes):
    code = (f"from PIL import Image; Image.open({source!r}).convert('RGBA')"
            f".save({target!r}, sizes=[(s, s) for s in {sizes!r}])")
    return ["/usr/bin/python3", "-c", code]


def main():
    folder = pathlib.Path(tempfile.mkdtemp(dir="/dev/shm"))
    try:
        big = str(folder / "big.png")
        shutil.copy(ROOT / "resources/samples/pelorus.png", big)
        ready = []
        for side in TEN_SIZES:
            name = str(folder / f"s{side}.png")
            subprocess.run([MAGICK, big, "-resize", f"{side}x{side}", name], check=True)
            ready.append(name)
        out = str(folder / "out.ico")
        formats = ",".join(f"{s}x{s}x32" for s in TEN_SIZES)
        auto = ",".join(map(str, TEN_SIZES))
        icotool_script = " ".join(
            [f"{MAGICK} {big} -resize {s}x{s} {folder}/t{s}.png;" for s in TEN_SIZES] +
            [f"icotool -c -o {out} " + " ".join(f"{folder}/t{s}.png" for s in TEN_SIZES[1:]) + f" -r {folder}/t256.png"])
        race("Ten sizes at 32 bits of a 1024 x 1024 picture", [
            ("pelorin-cli create", [PROGRAM, "create", big, "-o", out, "-f", "--formats", formats]),
            ("ImageMagick auto-resize", [MAGICK, big, "-define", f"icon:auto-resize={auto}", out]),
            ("Pillow", pillow(big, out, TEN_SIZES)),
            ("icotool with ImageMagick", ["sh", "-c", icotool_script]),
        ])
        race("The default nine formats of the same picture (the others: three sizes at 32 bits)", [
            ("pelorin-cli create", [PROGRAM, "create", big, "-o", out, "-f"]),
            ("ImageMagick auto-resize", [MAGICK, big, "-define", "icon:auto-resize=48,32,16", out]),
            ("Pillow", pillow(big, out, [48, 32, 16])),
        ])
        many = folder / "many"
        many.mkdir()
        small = folder / "small.png"
        subprocess.run([MAGICK, big, "-resize", "256x256", str(small)], check=True)
        for i in range(1000):
            shutil.copy(small, many / f"p{i:04d}.png")
        parts = " ".join(rf"\( -clone 0 -resize {s}x{s}{colors} \)" for colors in ("", " -colors 256", " -colors 16")
                         for s in (48, 32, 16))
        loop = f"for f in {many}/p000[0-9].png; do {MAGICK} $f {parts} -delete 0 {folder}/m.ico; done"
        names = [str(p) for p in sorted(many.glob("*.png"))]
        race("1,000 pictures of 256 x 256 into nine formats (ImageMagick: a loop over 10 of them, to be taken 100 times)", [
            ("pelorin-cli create --jobs 2", [PROGRAM, "create", *names, "-o", str(folder / "made") + "/", "-f", "-j", "2"]),
            ("ImageMagick, 10 pictures", ["sh", "-c", loop]),
        ], runs=3)
    finally:
        shutil.rmtree(folder)


main()
