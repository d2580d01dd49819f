"""The first icon of real programs replaced: the new one is there, and not a byte of the rest has changed."""
import re

from check_programs import check_reading, listed, program_files, told_by_wrestool
from pe import CERTIFICATES, GROUP, ICON, RELOCATIONS, RESOURCES, Pe, group_entries, sign
from support import NEEDS, SAMPLE_ICON, ico_images, pixels, run, side_by_side

TAIL = bytes(i * 31 & 255 for i in range(5001))
COUNT = 10
OTHERS = ["keepass2", "python3-distlib", "shim-signed"]


def first_group(resources):
    """Loaders take the first name, or the lowest number where there is none."""
    keys = [key[1:] for key in resources if key[0] == GROUP]
    return min(keys, key=lambda key: (isinstance(key[0], int), key))


def check_rest(report, name, old, new, changed_group):
    """All that the change of one group, or its addition, had no business with."""
    before, after = old.resources(), new.resources()

    def others(resources):
        return {key: value for key, value in resources.items() if key[0] not in (ICON, GROUP)}

    report.expect(others(before) == others(after), f"{name}: other resources changed")
    groups_before, groups_after = old.groups(before), new.groups(after)
    report.equal(set(groups_after), set(groups_before) | {changed_group}, f"{name}: names of the groups")
    for key, images in groups_before.items():
        if key != changed_group:
            report.expect(groups_after.get(key) == images, f"{name}: icon {key} changed")
    named = {entry[3] for key, (data, _) in after.items() if key[0] == GROUP for entry in group_entries(data)}
    report.equal({key[1] for key in after if key[0] == ICON}, named, f"{name}: images by their numbers")

    home = old.directories[RESOURCES][0]
    for i, section in enumerate(old.sections):
        if not section.address <= home < section.address + section.raw_size:
            other = new.sections[i]
            report.equal((other.name, other.virtual_size, other.address, other.raw_size, other.flags),
                         (section.name, section.virtual_size, section.address, section.raw_size, section.flags),
                         f"{name}: section {section.name}")
            report.expect(new.data[other.raw_offset:][:other.raw_size] == old.data[section.raw_offset:][:section.raw_size],
                          f"{name}: bytes of section {section.name}")
    for i, place in enumerate(old.directories):
        if i not in (RESOURCES, CERTIFICATES):
            report.equal(new.directories[i], place, f"{name}: directory {i}")
    report.expect(new.directory(RELOCATIONS) == old.directory(RELOCATIONS), f"{name}: base relocations")


def check_headers(report, name, old, new):
    report.equal(new.check_sum, new.right_check_sum(), f"{name}: check sum")
    end = new.header_size
    for section in new.sections:
        report.expect(section.address >= end and section.address % new.section_unit == 0, f"{name}: sections overlap")
        report.expect(not section.raw_size or section.raw_offset % new.file_unit == 0, f"{name}: place of {section.name}")
        size = section.virtual_size or section.raw_size
        end = section.address + -(-size // new.section_unit) * new.section_unit
    report.equal(new.image_size, end, f"{name}: size of the image")

    def data_size(pe):
        return sum(section.raw_size for section in pe.sections if section.flags & 0x40)

    report.equal(new.initialized - old.initialized, data_size(new) - data_size(old), f"{name}: size of the data")
    if old.symbols:
        report.equal(new.symbols - new.end, old.symbols - old.end, f"{name}: place of the symbols")


def check_tail(report, name, old, new):
    """Data behind the image is there exactly once; a signature is gone, and its entry with it."""
    tail = old.data[old.end:]
    where, size = old.directories[CERTIFICATES]
    if where:
        tail = old.data[old.end:where] + old.data[where + size:]
        report.equal(new.directories[CERTIFICATES], (0, 0), f"{name}: entry of the signature")
        report.expect(new.data[new.end:].rstrip(b"\0") == tail.rstrip(b"\0"), f"{name}: data behind the image")
    else:
        report.expect(new.data[new.end:] == tail, f"{name}: data behind the image")


def check_tools(report, path, old_path, icon_count):
    """Other programs read the result, and complain no more than about the original."""
    report.equal(len(told_by_wrestool(path)[0]), icon_count, f"{path.name}: groups that wrestool sees")
    ran, ran_before = (run([NEEDS["binutils"], "-x", file]) for file in (path, old_path))
    report.equal(ran.returncode, ran_before.returncode, f"{path.name}: objdump")

    def without_name(text, file):
        return text.replace(str(file), "")

    report.equal(without_name(ran.stderr, path), without_name(ran_before.stderr, old_path),
                 f"{path.name}: objdump's warnings")
    relocations = [re.search(r"The \.reloc section.*?\n\n", ran.stdout, re.S) for ran in (ran, ran_before)]
    report.expect(relocations[0] is None or relocations[0][0] == relocations[1][0], f"{path.name}: relocations by objdump")


def check_same_icon(report, out, ours, theirs):
    """Blocks go over as they are; a compressed image may be compressed anew, its pixels stay."""
    work = report.folder("compressed")
    report.equal(sorted(image[:2] for image in ours), sorted(image[:2] for image in theirs), f"{out.name}: new formats")
    for one, other in zip(sorted(ours), sorted(theirs)):
        if one[2][:4] == other[2][:4] == b"\x89PNG":
            files = [work / "ours.png", work / "theirs.png"]
            for file, image in zip(files, (one, other)):
                file.write_bytes(image[2])
            one, other = pixels(files)
        report.expect(one == other, f"{out.name}: image of {one[0]} x {one[1]} in the new icon")


def replace_first(report, path, out, *options):
    """Replaces and checks all that can be checked without running anything."""
    report.cli("program", "replace", path, "1", SAMPLE_ICON, "-o", out, "-f", *options)
    old, new = Pe(path.read_bytes()), Pe(out.read_bytes())
    key = first_group(old.resources())
    new_images = new.groups()[key]
    check_same_icon(report, out, new_images, ico_images(SAMPLE_ICON.read_bytes()))
    extracted = out.with_suffix(".new")
    report.cli("program", "extract", out, "1", "-f", "-o", extracted)
    report.expect(sorted(ico_images(extracted.read_bytes())) == sorted(new_images), f"{out.name}: the new icon read back")
    by_wrestool = run([NEEDS["icoutils"], "-x", "-t14", f"-n{key[0]}", out, "-o", extracted])
    report.expect(by_wrestool.returncode == 0 and sorted(ico_images(extracted.read_bytes())) == sorted(new_images),
                  f"{out.name}: the new icon by wrestool")
    check_rest(report, out.name, old, new, key)
    check_headers(report, out.name, old, new)
    check_tail(report, out.name, old, new)
    icons = listed(report, [out])[str(out)]["icons"]
    report.equal(len(icons), len(old.groups()), f"{out.name}: icons that we list")
    check_tools(report, out, path, len(icons))
    return old


def some_carriers(report, folder):
    """Ten files with icons of every size, the programs among them first."""
    entries = listed(report, program_files(folder))
    carriers = sorted((path for path, entry in entries.items() if entry["icons"]),
                      key=lambda path: (not path.endswith(".exe"), -len(entries[path]["icons"]), path))
    return carriers[:COUNT // 2] + carriers[-COUNT // 2:]


def check_replacing(report, folder):
    chosen = [folder / path for path in some_carriers(report, folder)]
    report.equal(len(set(chosen)), COUNT, "files to change")
    seen = dict.fromkeys(("with symbols", "with relocations", "64-bit"), 0)
    for path in chosen:
        old = replace_first(report, path, report.folder("out") / path.name)
        seen["with symbols"] += old.symbols != 0
        seen["with relocations"] += old.directories[RELOCATIONS][0] != 0
        seen["64-bit"] += old.is_64
    for what in ("with symbols", "with relocations"):
        report.expect(seen[what], f"no file {what} was changed")
    report.figure(f"{len(chosen)} files: {', '.join(f'{count} {what}' for what, count in seen.items())}")

    # The same with a tail and with a signature, the shapes of self-extractors and of what makers ship.
    work = report.folder("made")
    for path in (chosen[0], chosen[-1]):
        tailed, signed, both = (work / f"{kind}-{path.name}" for kind in ("tail", "signed", "both"))
        tailed.write_bytes(path.read_bytes() + TAIL)
        signed.write_bytes(sign(path.read_bytes()))
        both.write_bytes(sign(path.read_bytes() + TAIL))
        for file in (tailed, signed, both):
            options = [] if file is tailed else ["--drop-signature"]
            if options:
                refused = run([report.program, "program", "replace", file, "1", SAMPLE_ICON, "-o", work / "refused"])
                report.expect(refused.returncode == 1 and "--drop-signature" in refused.stderr
                              and not (work / "refused").exists(), f"{file.name}: not refused without a word")
            out = report.folder("out") / file.name
            replace_first(report, file, out, *options)
            if file is not signed:
                report.equal(out.read_bytes().count(TAIL), 1, f"{file.name}: times that the tail is there")


def check_adding(report, files):
    """An icon more in each file, most of which have none, and many no resources at all."""
    work = report.folder("out")
    wanted = sorted(ico_images(SAMPLE_ICON.read_bytes()))

    def add(path):
        out = work / path.name
        old = Pe(path.read_bytes())
        options = ["--drop-signature"] if old.directories[CERTIFICATES][0] else []
        report.cli("program", "add", path, SAMPLE_ICON, "--name", "PELORIN", "-q", "-o", out, *options)
        new = Pe(out.read_bytes())
        added = sorted(new.groups().get(("PELORIN", 0), []))
        report.equal([image[:2] for image in added], [image[:2] for image in wanted], f"{path.name}: new formats")
        report.expect(added[:-1] == wanted[:-1], f"{path.name}: blocks of the new icon")
        check_rest(report, path.name, old, new, ("PELORIN", 0))
        check_headers(report, path.name, old, new)
        check_tail(report, path.name, old, new)
        out.unlink()
        return bool(old.directories[RESOURCES][0])

    had = side_by_side(add, files)
    report.figure(f"{len(had)} files, {had.count(False)} of them without resources before")


def add_64(report):
    check_adding(report, program_files(NEEDS["libwine"]))


def add_32(report):
    check_adding(report, program_files(NEEDS["libwine:i386"]))


def replace_64(report):
    check_replacing(report, NEEDS["libwine"])


def replace_32(report):
    check_replacing(report, NEEDS["libwine:i386"])


def check_replacing_in_all(report, files):
    """Every file with icons gets another, with data behind the image, as installers and launchers have it."""
    carriers = [file for file in files if Pe(file.read_bytes()).groups()]
    for number, file in enumerate(carriers):
        tailed = report.folder("made") / f"{number}-{file.name}"
        tailed.write_bytes(file.read_bytes() + TAIL)
        replace_first(report, tailed, report.folder("out") / tailed.name)
    report.figure(f"{len(carriers)} with an icon replaced")


def change_stubs(report):
    files = program_files(NEEDS["nsis-common"])
    check_adding(report, files)
    check_replacing_in_all(report, files)


def change_others(report):
    """Launchers of another compiler and for another processor, a program in byte code, a boot loader that is signed."""
    files = program_files(*(NEEDS[package] for package in OTHERS))
    check_reading(report, files)
    check_adding(report, files)
    check_replacing_in_all(report, files)
    report.expect(any(Pe(file.read_bytes()).directories[CERTIFICATES][0] for file in files), "no file is signed")


CHECKS = [
    ("add-64", add_64, ["libwine"]),
    ("add-32", add_32, ["libwine:i386"]),
    ("replace-64", replace_64, ["libwine", "icoutils", "imagemagick", "binutils"]),
    ("replace-32", replace_32, ["libwine:i386", "icoutils", "imagemagick", "binutils"]),
    ("change-installers", change_stubs, ["nsis-common", "icoutils", "imagemagick", "binutils"]),
    ("change-others", change_others, [*OTHERS, "icoutils", "imagemagick", "binutils"]),
]
