#!/usr/bin/env python3
"""Times the reduction of a picture to 256 colours with diffusion against the tools that people use today.

Usage: bench/compare_reduce.py [FOLDER OF THE BENCH PROGRAMS]      (default: build/bench/bin)

Needs ImageMagick, pngquant and python3 with Pillow. Our side is quantize_bench; the others get a picture of the same size
and kind. Processor time of one thread counts, so that other work on the machine disturbs little; medians are printed.
ImageMagick and pngquant are whole processes, reading and writing included; Pillow works in memory.
"""
import json
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from PIL import Image, ImageChops

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "build/bench/bin"
MAGICK = shutil.which("magick") or shutil.which("convert-im6.q16") or "convert"
SIDE = 2048


def photo():
    ramp = Image.linear_gradient("L").resize((SIDE, SIDE))
    round_ramp = Image.radial_gradient("L").resize((SIDE, SIDE))
    channels = [ramp, ramp.rotate(90), round_ramp]
    return Image.merge("RGB", [ImageChops.add(c, Image.effect_noise((SIDE, SIDE), 12), 1, -128) for c in channels])


def ours(name):
    done = subprocess.run([PROGRAMS / "quantize_bench", f"--benchmark_filter=^{name}/{SIDE}$", "--benchmark_format=json",
                           "--benchmark_repetitions=7"], check=True, capture_output=True)
    runs = [b for b in json.loads(done.stdout)["benchmarks"] if b["run_type"] == "iteration"]
    return [b["cpu_time"] / 1e3 for b in runs]


def process(command):
    times = []
    for _ in range(5):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run(command, check=True)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return times


def in_memory(work):
    times = []
    for _ in range(5):
        start = time.process_time()
        work()
        times.append(time.process_time() - start)
    return times


def report(title, rows):
    print(title)
    base = statistics.median(rows[0][1])
    for name, times in rows:
        median = statistics.median(times)
        print(f"  {name:36s} median {median:7.4f} s   min {min(times):7.4f}   max {max(times):7.4f}   x {median / base:6.2f}")


def main():
    os.environ["OMP_NUM_THREADS"] = "1"
    picture = photo()
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        bmp, png, out = (str(pathlib.Path(folder) / name) for name in ("in.bmp", "in.png", "out"))
        picture.save(bmp)
        picture.save(png, compress_level=1)

        def median_cut():
            palette = picture.quantize(256, method=Image.Quantize.MEDIANCUT)
            picture.quantize(palette=palette, dither=Image.Dither.FLOYDSTEINBERG)

        report(f"{SIDE} x {SIDE} to 256 colours, diffused", [
            ("pelorin", ours("QuantizeAndMap")),
            ("ImageMagick -dither -colors", process([MAGICK, bmp, "-dither", "FloydSteinberg", "-colors", "256", out + ".bmp"])),
            ("pngquant", process(["pngquant", "--force", "-o", out + ".png", "256", png])),
            ("Pillow median cut", in_memory(median_cut)),
        ])
        report(f"{SIDE} x {SIDE}, 256 colours counted", [
            ("pelorin", ours("Quantize")),
            ("Pillow fast octree (maps as well)", in_memory(
                lambda: picture.quantize(256, method=Image.Quantize.FASTOCTREE, dither=Image.Dither.NONE))),
        ])


if __name__ == "__main__":
    main()
