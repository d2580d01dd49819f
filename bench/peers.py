#!/usr/bin/env python3
"""Scaling, filters and fill beside tools that do the same work: one run, one thread, medians of processor time.

Usage: bench/peers.py FOLDER_OF_BENCH_PROGRAMS
Pillow works on an image in memory; ImageMagick's figure is a whole process with the filter less one without it.
"""
import json
import os
import resource
import statistics
import subprocess
import sys
import tempfile
import time

from PIL import Image

ROUNDS = 9


def ours(folder, program, name):
    out = subprocess.run([os.path.join(folder, program), f"--benchmark_filter=^{name}$", "--benchmark_format=json",
                          f"--benchmark_repetitions={ROUNDS}", "--benchmark_min_time=0.05"],
                         capture_output=True, check=True).stdout
    return [run["cpu_time"] for run in json.loads(out)["benchmarks"] if run["run_type"] == "iteration"]


def in_process(work):
    times = []
    for _ in range(ROUNDS):
        start = time.process_time()
        work()
        times.append((time.process_time() - start) * 1000)
    return times


def child(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, env=dict(os.environ, OMP_NUM_THREADS="1", MAGICK_THREAD_LIMIT="1"))
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1000


def convolve(picture):
    base = [child(["convert-im6.q16", picture, "null:"]) for _ in range(ROUNDS)]
    weights = "1,1,1,1,8,1,1,1,1"
    return [child(["convert-im6.q16", picture, "-convolve", weights, "null:"]) - statistics.median(base)
            for _ in range(ROUNDS)]


def spread(times):
    middle = statistics.median(times)
    return f"{middle:8.2f} ms ({(max(times) - min(times)) / middle * 100:3.0f}%)"


def main(folder):
    large = Image.frombytes("RGBA", (4096, 4096), os.urandom(4096 * 4096 * 4))
    large.putalpha(255)
    small = large.crop((0, 0, 256, 256))
    picture = os.path.join(tempfile.mkdtemp(), "picture.bmp")
    large.crop((0, 0, 2048, 2048)).convert("RGB").save(picture)
    rows = [
        ("shrink 4096 to 256, 32 bpp", ours(folder, "resample_bench", "Resample/32bpp/4096/256"), "Pillow BOX",
         in_process(lambda: large.resize((256, 256), Image.BOX))),
        ("the same with transparent patches", ours(folder, "resample_bench", "Resample/32bppWithHoles/4096/256"),
         "Pillow BOX", in_process(lambda: large.resize((256, 256), Image.BOX))),
        ("enlarge 256 to 1024, 32 bpp", ours(folder, "resample_bench", "Resample/32bpp/256/1024"), "Pillow BILINEAR",
         in_process(lambda: small.resize((1024, 1024), Image.BILINEAR))),
        ("3 x 3 kernel, 2048", ours(folder, "kernel_bench", "Kernel/Sharpen3x3/2048"), "ImageMagick -convolve",
         convolve(picture)),
        ("flood fill, 4096, flat", ours(folder, "fill_bench", "Fill/Flat/4096"), "writing all pixels twice",
         ours(folder, "fill_bench", "WriteTwice/4096")),
        ("flood fill, 4096, noisy", ours(folder, "fill_bench", "Fill/Noisy/4096"), "writing all pixels twice",
         ours(folder, "fill_bench", "WriteTwice/4096")),
    ]
    print("median of processor time (spread from least to most)")
    for what, mine, peer, theirs in rows:
        ratio = statistics.median(theirs) / statistics.median(mine)
        print(f"{what:34} {spread(mine)}   {peer:25} {spread(theirs)}   {ratio:5.2f} x as fast")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(sys.argv[1])
