#!/usr/bin/env python3
"""Checks the contract with a host that is built with MSVC, by clang in its MSVC mode and Wine's headers (abi/README.md).

  abi.py parse BUILD      every source of the library compiles, and the public headers do as C++17
  abi.py layout BUILD     fields, sizes and virtual tables of the classes are those of abi/layout.txt
  abi.py names BUILD      the decorated names of the exports are those of module/QuonWin32Utils.msvc.def, and number and
                          signature of each are those of module/QuonWin32Utils.def; with --write the list is written anew

BUILD is the build tree; the objects that `parse` leaves in its folder abi/ are what `names` reads.
"""
import argparse
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import exports

TOP = Path(__file__).resolve().parent.parent
FOLDERS = "paths traversal support points geometry xml messaging monitoring module".split()
WINE = "/usr/include/wine/wine"
LLVM = "14"


def compiler(standard, *, sizes=False):
    """The command that compiles for the MSVC ABI; with `sizes` against the stand-ins of the standard library's classes."""
    system = [TOP / "abi/config", f"/usr/lib/llvm-{LLVM}/include/c++/v1", TOP / "abi/stubs", WINE + "/msvcrt",
              WINE + "/windows"]
    if sizes:
        system.insert(0, TOP / "abi/sizes")
    return [
        f"clang++-{LLVM}", "--target=x86_64-pc-windows-msvc", "-fms-compatibility-version=19.34", f"-std={standard}",
        "-D_WIN32_WINNT=0x0A00", "-DWINVER=0x0A00", "-DUNICODE", "-D_UNICODE", "-DNOMINMAX",
        "-D_DLL", "-D_MT", "-D_AFXDLL", "-D_AFXEXT", "-D_CRT_SECURE_NO_WARNINGS",
        "-DWINE_UNICODE_NATIVE",  # a wide character is wchar_t
        "-D_CRT_STDIO_ISO_WIDE_SPECIFIERS=1",
        "-nostdlibinc", "-nostdinc++", *[f"-isystem{folder}" for folder in system],
        f"-I{TOP}", f"-I{TOP / 'framework/include'}", "-include", str(TOP / "abi/prelude.h"),
        # GNU extensions and variable-length arrays are what a compiler of another family stumbles over.
        "-Wall", "-Wextra", "-Werror", "-Werror=gnu", "-Werror=vla-extension",
    ]


def prerequisites(depfile):
    """The files that an object was made of, by the rule that the compiler wrote."""
    return depfile.read_text().replace("\\\n", " ").split(":", 1)[1].replace("\\ ", " ").split()


def up_to_date(obj, depfile):
    if not obj.exists() or not depfile.exists():
        return False
    made = obj.stat().st_mtime
    try:
        return all(os.stat(file).st_mtime <= made for file in [__file__, *prerequisites(depfile)])
    except OSError:
        return False


def compile_source(source, obj):
    """Makes the object unless it is newer than all it is made of; returns what the compiler complains of."""
    depfile = obj.with_suffix(".d")
    if up_to_date(obj, depfile):
        return ""
    obj.parent.mkdir(parents=True, exist_ok=True)
    obj.unlink(missing_ok=True)
    command = [*compiler("c++20"), "-DQUON_BUILDING_LIBRARY", "-MD", "-MF", str(depfile), "-c", str(source), "-o", str(obj)]
    done = subprocess.run(command, capture_output=True, text=True)
    return "" if done.returncode == 0 else done.stderr or f"{source}: the compiler failed"


def library_sources():
    return [source for folder in FOLDERS for source in sorted((TOP / folder).glob("*.cpp"))]


def objects(build):
    return {source: build / "abi" / source.relative_to(TOP).with_suffix(".obj") for source in library_sources()}


def public_headers(build):
    return (build / "public-headers.txt").read_text().split()


def parse_headers(build):
    """The public headers, all in one source, as C++17 and as their users read them."""
    source = build / "abi/public-headers.cpp"
    source.parent.mkdir(parents=True, exist_ok=True)
    source.write_text("".join(f'#include "{header}"\n' for header in public_headers(build)))
    done = subprocess.run([*compiler("c++17"), "-fsyntax-only", str(source)], capture_output=True, text=True)
    return done.stderr


def parse(arguments):
    jobs = objects(arguments.build)
    with ThreadPoolExecutor(2) as pool:
        headers = pool.submit(parse_headers, arguments.build)
        complaints = [*pool.map(compile_source, jobs, jobs.values()), headers.result()]
    finish([text for text in complaints if text],
           f"{len(jobs)} sources and {len(public_headers(arguments.build))} public headers compile in the MSVC mode")


def finish(faults, success):
    if faults:
        sys.exit("\n".join(faults))
    print("abi: " + success)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(required=True)
    for name, function in (("parse", parse),):
        command = commands.add_parser(name)
        command.add_argument("build", type=Path)
        command.set_defaults(function=function)
    arguments = parser.parse_args()
    arguments.function(arguments)


if __name__ == "__main__":
    main()
