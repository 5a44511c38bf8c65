#!/usr/bin/env python3
"""Keeps the lists of numbered exports, module/QuonWin32Utils.def and the one for MSVC beside it.

The library exports by number only. A list is append-only: a number, once given, belongs to its symbol for ever; a symbol
that is removed leaves a line "; retired @NUMBER NAME". Numbers bind from the first release on. Before it they may restart:
the line "; numbering N" counts the restarts, and lists of different numberings are not compared.

  exports.py propose DEF BUILD     numbers for the exported symbols of the build tree's objects that the list does not have
                                   yet; with --write they are appended to the list
  exports.py renumber DEF BUILD    writes the list with new numbers from 100 on; refused once a release (a tag vA.B.C) has
                                   a list. scripts/renumber-exports.sh does this and all that follows from it
  exports.py check DEF DLL         the list itself and the built DLL against it
  exports.py history DEF           every number that a committed list of this numbering ever had still means the same; with
                                   --version X.Y.Z a symbol of a release may be retired in a later major version only
                                   (before 1.0.0 in a later minor one). The list of a release has this numbering, too
"""
import argparse
import os
import re
import struct
import subprocess
import sys
from pathlib import Path

BASE = 100
TOOLS = "x86_64-w64-mingw32-"
LINE = re.compile(r"^\s+(?P<name>\S+)\s+@(?P<number>\d+)\s+NONAME(?P<data>\s+DATA)?$")
NUMBERING = re.compile(r"^; numbering (\d+)$", re.M)
RETIRED = re.compile(r"^;\s*retired\s+@(?P<number>\d+)\s+(?P<name>\S+)")


def parse_list(text):
    """Returns ({name: number}, {name: is data}, {retired number: name}, [faults]) of a list's text."""
    numbers, data, retired, faults, seen = {}, {}, {}, [], {}
    signature = None  # in the comment above the line
    for row, line in enumerate(text.splitlines(), 1):
        gone = RETIRED.match(line)
        if gone:
            number, name = int(gone["number"]), gone["name"]
            retired[number] = name
        elif not line.strip() or line.startswith(";") or re.match(r"^(LIBRARY|EXPORTS)\b", line):
            signature = line[1:].strip() if line.startswith(";") else None
            continue
        else:
            match = LINE.match(line)
            if not match:
                faults.append(f"line {row} is no export: {line.strip()}")
                continue
            number, name = int(match["number"]), match["name"]
            if name in numbers:
                faults.append(f"line {row}: {name} stands twice")
            if not signature:
                faults.append(f"line {row}: {name} has no signature above it")
            signature = None
            numbers[name] = number
            data[name] = bool(match["data"])
        if number in seen:
            faults.append(f"line {row}: number {number} was given twice")
        if number < BASE:
            faults.append(f"line {row}: number {number} is below {BASE}")
        seen[number] = name
    return numbers, data, retired, faults


def numbering(text):
    """How often the numbers had restarted when this list was written."""
    line = NUMBERING.search(text)
    return int(line[1]) if line else 0


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def directives(obj):
    """Yields (name, is data) of the export directives in one object file."""
    dump = subprocess.run([TOOLS + "objdump", "-s", "-j", ".drectve", obj], capture_output=True, text=True).stdout
    raw = bytearray()
    for line in dump.splitlines():
        match = re.match(r"^ [0-9a-f]+ ((?:[0-9a-f]{2,8} ){1,4})", line)
        if match:
            raw += bytes.fromhex(match[1].replace(" ", ""))
    for word in raw.rstrip(b"\0").decode("ascii", "replace").split():
        match = re.match(r'^-export:"?([^",]+)"?(,data)?$', word)
        if match:
            yield match[1], bool(match[2])


def library_objects(build):
    """The library's object files in a build tree, which has a list of them for each configuration."""
    lists = [file.read_text().split() for file in sorted(Path(build).glob("export-objects-*.txt"))]
    built = [objects for objects in lists if objects and all(Path(obj).exists() for obj in objects)]
    if len(built) != 1:
        sys.exit(f"exports: {len(built)} of the {len(lists)} configurations of {build} are built, instead of one")
    return built[0]


def exported_symbols(build):
    """{name: is data} of the exports of the library's objects in a build tree."""
    found = {}
    for obj in library_objects(build):
        new = sorted(set(directives(obj)) - set(found.items()))
        texts = run(TOOLS + "c++filt", *[name for name, _ in new]).splitlines() if new else []
        # Inside one source in the order of the signatures, so that a class stays together.
        for _, (name, is_data) in sorted(zip(texts, new)):
            found.setdefault(name, is_data)
    return found


def list_lines(names, found, number):
    """The lines of the list for symbols, numbered from `number` on."""
    lines = []
    for name, signature in zip(names, run(TOOLS + "c++filt", *names).splitlines() if names else []):
        lines += [f"; {signature}", f"    {name} @{number} NONAME{' DATA' if found[name] else ''}"]
        number += 1
    return lines


def propose(arguments):
    path = Path(arguments.list)
    numbers, _, retired, faults = parse_list(path.read_text())
    if faults:
        sys.exit("\n".join(faults))
    found = exported_symbols(arguments.build)
    missing = [name for name in found if name not in numbers]
    lines = list_lines(missing, found, max([BASE - 1, *numbers.values(), *retired]) + 1)
    print("\n".join(lines) if lines else "exports: the list is complete")
    if arguments.write and lines:
        path.write_text(path.read_text().rstrip("\n") + "\n" + "\n".join(lines) + "\n")
    for name in sorted(set(numbers) - set(found)):
        print(f"exports: {name} is listed but no object exports it", file=sys.stderr)


def renumber(arguments):
    path = Path(arguments.list)
    repository = Repository(path.parent)
    releases = list(repository.releases(path.name)) if repository.exists() else []
    if releases:
        sys.exit(f"exports: the numbers bind since release {releases[0][0]}: append to the list instead (propose)")
    text = path.read_text()
    head = re.match(r"(?s)(.*?^EXPORTS\n)", text, re.M)
    if not head or not NUMBERING.search(head[1]):
        sys.exit(f'exports: {path} has no line "; numbering N" before its exports')
    found = exported_symbols(arguments.build)
    if not found:
        sys.exit(f"exports: the objects of {arguments.build} export nothing")
    head = NUMBERING.sub(f"; numbering {numbering(text) + 1}", head[1])
    path.write_text(head + "\n".join(list_lines(list(found), found, BASE)) + "\n")
    print(f"exports: {len(found)} symbols are numbered from {BASE} on")


class ExportDirectory:
    """The export directory of a 64-bit DLL."""

    def __init__(self, path):
        self.image = Path(path).read_bytes()
        header = struct.unpack_from("<I", self.image, 0x3C)[0]
        assert self.image[header:header + 4] == b"PE\0\0", f"{path} is no DLL"
        count = struct.unpack_from("<H", self.image, header + 6)[0]
        optional = header + 24
        size = struct.unpack_from("<H", self.image, header + 20)[0]
        self.image_base = struct.unpack_from("<Q", self.image, optional + 24)[0]
        directory = struct.unpack_from("<I", self.image, optional + 112)[0]
        self.sections = []
        for index in range(count):
            virtual_size, rva, raw_size, raw = struct.unpack_from("<IIII", self.image, optional + size + 40 * index + 8)
            self.sections.append((rva, max(virtual_size, raw_size), raw))
        self.base, functions, self.names, table = struct.unpack_from("<IIII", self.image, self.offset(directory) + 16)
        rvas = struct.unpack_from(f"<{functions}I", self.image, self.offset(table))
        self.functions = {self.base + index: rva for index, rva in enumerate(rvas) if rva}

    def offset(self, rva):
        for start, size, raw in self.sections:
            if start <= rva < start + size:
                return rva - start + raw
        raise ValueError(f"no section holds {rva:#x}")


def check(arguments):
    numbers, _, _, faults = parse_list(Path(arguments.list).read_text())
    exports = ExportDirectory(arguments.dll)
    if exports.base != BASE:
        faults.append(f"the base is {exports.base}, not {BASE}")
    if exports.names:
        faults.append(f"{exports.names} exports carry a name: they are missing from the list "
                      "(run scripts/exports.py propose)")
    addresses = {}
    for line in run(TOOLS + "nm", arguments.dll).splitlines():
        parts = line.split()
        if len(parts) == 3:
            addresses[parts[2]] = int(parts[0], 16) - exports.image_base
    for name, number in numbers.items():
        if number not in exports.functions:
            faults.append(f"{name} is listed with {number}, but the DLL has no such export")
        elif name not in addresses:
            faults.append(f"{name} is listed, but the DLL does not define it")
        elif addresses[name] != exports.functions[number]:
            faults.append(f"number {number} of the DLL is not {name}")
    for number in sorted(set(exports.functions) - set(numbers.values())):
        faults.append(f"the DLL exports number {number}, which is not in the list")
    finish(faults, f"{len(numbers)} exports, numbers {min(numbers.values())} to {max(numbers.values())}, no names")


class Repository:
    """The git repository around a folder, if there is one."""

    def __init__(self, folder):
        # Whoever owns the folder, as in a container; in English, because one message is looked at.
        self.git = ["git", "-c", "safe.directory=*", "-C", str(folder)]
        self.environment = {**os.environ, "LC_ALL": "C"}

    def call(self, *arguments):
        try:
            return subprocess.run([*self.git, *arguments], capture_output=True, text=True, env=self.environment)
        except OSError as error:
            sys.exit(f"exports: git cannot be run: {error}")

    def exists(self):
        done = self.call("rev-parse", "--git-dir")
        return done.returncode == 0 or "not a git repository" not in done.stderr

    def output(self, *arguments):
        done = self.call(*arguments)
        if done.returncode != 0:
            sys.exit(f"exports: git {arguments[0]} failed: {done.stderr.strip()}")
        return done.stdout


    def releases(self, name):
        """Yields (tag, text of the list) of the releases that have it."""
        for tag in self.output("tag", "--list", "v[0-9]*").split():
            if self.output("ls-tree", "--name-only", tag, "--", name):
                yield tag, self.output("show", f"{tag}:./{name}")


def compatible_part(version):
    """What changes with every incompatible change: the major version, before 1.0.0 the minor one too."""
    major, minor = (int(part) for part in version.split(".")[:2])
    return (major, 0) if major else (0, minor)


def too_early(repository, path, version, retired):
    """Faults for the symbols that a release of the same major version still had."""
    faults = []
    for tag, text in repository.releases(path.name):
        if compatible_part(tag[1:]) < compatible_part(version):
            continue
        for name, number in parse_list(text)[0].items():
            if number in retired:
                faults.append(f"{name} (number {number}) is in release {tag} and retired in {version}: "
                              "that takes a new major version")
    return faults


def restarted(repository, path, text):
    """Faults for releases whose numbers this list does not continue."""
    return [f"the list has numbering {numbering(text)}, but release {tag} has numbering {numbering(released)}"
            for tag, released in repository.releases(path.name) if numbering(released) != numbering(text)]


def history(arguments):
    path = Path(arguments.list)
    text = path.read_text()
    numbers, _, retired, faults = parse_list(text)
    now = {number: name for name, number in numbers.items()} | retired
    repository = Repository(path.parent)
    if not repository.exists():
        print("exports: no history here, nothing to compare with")
        return
    compared = 0
    for commit in repository.output("log", "--format=%h", "--", path.name).split():
        if not repository.output("ls-tree", "--name-only", commit, "--", path.name):
            continue  # this one took the list away
        committed = repository.output("show", f"{commit}:./{path.name}")
        if numbering(committed) != numbering(text):
            continue
        compared += 1
        for name, number in parse_list(committed)[0].items():
            if now.get(number) != name:
                faults.append(f"{commit} gave number {number} to {name}; now it means {now.get(number, 'nothing')}")
    faults += restarted(repository, path, text)
    if arguments.version:
        faults += too_early(repository, path, arguments.version, retired)
    finish(sorted(set(faults)), f"the numbers of {compared} committed lists still mean the same")


def finish(faults, success):
    if faults:
        sys.exit("\n".join(["exports: the list and the library disagree", *faults]))
    print("exports: " + success)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(required=True)
    for name, function, extra in (("propose", propose, ["build"]), ("renumber", renumber, ["build"]),
                                  ("check", check, ["dll"]), ("history", history, [])):
        command = commands.add_parser(name)
        command.add_argument("list")
        for argument in extra:
            command.add_argument(argument)
        if name == "propose":
            command.add_argument("--write", action="store_true", help="append the proposed lines to the list")
        if name == "history":
            command.add_argument("--version", help="the version that is being built")
        command.set_defaults(function=function)
    arguments = parser.parse_args()
    arguments.function(arguments)


if __name__ == "__main__":
    main()
