#!/usr/bin/env python3
"""Checks the program on real programs, and beside the tools that people use for each part of its work.

Usage: tests/real/run.py [NAME...]     all checks, or those whose names begin so

A check whose tools are not there is skipped, aloud. Checks that change programs work on copies in a folder of their own.
"""
import argparse
import pathlib
import shutil
import sys
import tempfile
import time
import traceback

import check_16bit
import check_changes
import check_icons
import check_libraries
import check_pictures
import check_programs
import check_wine
from support import FETCHED_PACKAGES, NEEDS, ROOT, SECOND_ARCHITECTURE, Report

MODULES = (check_programs, check_16bit, check_changes, check_libraries, check_wine, check_pictures, check_icons)
CHECKS = [check for module in MODULES for check in module.CHECKS]


def run_check(name, work, program, scratch):
    report = Report(program, scratch / name)
    report.scratch.mkdir()
    start = time.monotonic()
    try:
        work(report)
    except Exception:  # a check that breaks off has failed, and the others go on
        report.faults.append(traceback.format_exc())
    if not report.compared:
        report.faults.append("nothing was compared")
    took = time.monotonic() - start
    state = f"{len(report.faults)} FAULTS" if report.faults else "ok"
    print(f"{name:20s} {state}, {report.compared} comparisons, {took:.1f} s; {'; '.join(report.figures)}", flush=True)
    for fault in report.faults[:20]:
        print(f"    {fault}")
    shutil.rmtree(report.scratch, ignore_errors=True)
    return not report.faults


def main():
    parser = argparse.ArgumentParser(description="checks on real programs and beside other tools")
    parser.add_argument("names", nargs="*", help="only checks whose names begin so")
    parser.add_argument("--program", default=ROOT / "build/release/bin/pelorin-cli", type=pathlib.Path)
    parser.add_argument("--packages", action="store_true", help="print the packages to install for all checks, and leave")
    parser.add_argument("--fetched", action="store_true", help="print those to unpack only, and leave")
    parser.add_argument("--no-skips", action="store_true",
                        help="a check has failed that lacks something which ./dev real --install brings")
    options = parser.parse_args()
    if options.packages:
        needed = {package for _, _, needs in CHECKS for package in needs}
        print("\n".join(sorted(needed - SECOND_ARCHITECTURE - FETCHED_PACKAGES)))
        return 0
    if options.fetched:
        print("\n".join(sorted(FETCHED_PACKAGES)))
        return 0
    chosen = [check for check in CHECKS if not options.names or check[0].startswith(tuple(options.names))]
    if not chosen:
        sys.exit(f"no check has such a name; there are: {' '.join(check[0] for check in CHECKS)}")
    if not options.program.is_file():
        sys.exit(f"{options.program} is not built")
    memory = pathlib.Path("/dev/shm")
    roomy = memory.is_dir() and shutil.disk_usage(memory).free > 4 << 30
    failed, skipped, wanted = [], [], []
    with tempfile.TemporaryDirectory(prefix="pelorin-real-", dir=memory if roomy else None) as scratch:
        for name, work, needs in chosen:
            missing = [package for package in needs if not NEEDS[package]]
            if missing:
                print(f"{name:20s} skipped: needs package {', '.join(missing)}", flush=True)
                skipped.append(name)
                wanted += set(missing) - SECOND_ARCHITECTURE
            elif not run_check(name, work, options.program.resolve(), pathlib.Path(scratch)):
                failed.append(name)
    print(f"{len(chosen) - len(failed) - len(skipped)} checks passed, {len(failed)} failed, {len(skipped)} skipped")
    return 1 if failed or (wanted and options.no_skips) else 0


if __name__ == "__main__":
    sys.exit(main())
