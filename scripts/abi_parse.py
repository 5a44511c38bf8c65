"""The sources around the library in clang's MSVC mode: host, examples, tests and the benchmarks' common part (abi.py parse).

They are read, not compiled to objects; an empty file in the folder abi/ of the build tree marks one that passed.
"""
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import abi

TOP = abi.TOP
FOLDERS = ("framework/new", "host", "examples", "tests")
# Wine's header of the later DOM, which this test compares with, cannot be read in that mode: its interfaces are not in order.
NOT_READ = (TOP / "tests/xml/Msxml2SlotsTest.cpp",)
BENCHMARK_SUPPORT = TOP / "benchmarks/BenchmarkSupport.cpp"
GOOGLETEST = Path("/usr/src/googletest")
# Sources of the library that a test compiles for itself, with a host's point array in the place of the library's.
HOST_ARRAY = {TOP / "tests/geometry" / name for name in ("HostArrayTest.cpp", "HostReaders.cpp")}
HOST_ARRAY_OPTIONS = ("-DQUON_BUILDING_LIBRARY", "-DQUON_USE_HOST_VXGE", "-DQUON_VXGE_HEADER=<HostVxGe.h>",
                      f"-I{TOP / 'tests/geometry/host'}")
TEST_HEADERS = ("afx.h", "gmock/gmock.h", "gtest/gtest.h")


def benchmark_folder(build):
    """The headers of the benchmark library, which scripts/benchmark-sources.sh fetches; None without them."""
    folder = TOP / "build/sources/benchmark/include"
    return folder if folder.exists() else None


def sources(build):
    found = [source for folder in FOLDERS for source in sorted((TOP / folder).rglob("*.cpp"))
             if source not in NOT_READ]
    return found + ([BENCHMARK_SUPPORT] if benchmark_folder(build) else [])


def options(build):
    """What the sources around the library are compiled with, beside the options of all."""
    folders = [build / "headers" / name for name in ("quon_cli11", "quon_json")]
    folders += [GOOGLETEST / name / "include" for name in ("googletest", "googlemock")]
    folders += [benchmark_folder(build)] if benchmark_folder(build) else []
    return ["-U_AFXEXT", '-DQUON_PROJECT_VERSION=L"0.0.0"', '-DQUONHOST_VERSION="0.0.0"', f"-I{TOP / 'tests'}",
            *(f"-isystem{folder}" for folder in folders)]


def compile_if_changed(command, output):
    """Runs the compiler unless the output is newer than all that it was made of; returns what the compiler complains of."""
    depfile = output.with_suffix(".d")
    if abi.up_to_date(output, depfile):
        return ""
    output.parent.mkdir(parents=True, exist_ok=True)
    output.unlink(missing_ok=True)
    done = subprocess.run([*command, "-MD", "-MT", "parsed", "-MF", str(depfile)], capture_output=True, text=True)
    if done.returncode != 0:
        return done.stderr or f"{command[-1]}: the compiler failed"
    output.touch()
    return ""


def precompile_test_headers(build):
    """The headers of the test framework, read once for all tests: (the precompiled file, complaints)."""
    header, output = build / "abi/test-headers.h", build / "abi/test-headers.pch"
    text = "".join(f"#include <{name}>\n" for name in TEST_HEADERS)
    header.parent.mkdir(parents=True, exist_ok=True)
    if not header.exists() or header.read_text() != text:
        header.write_text(text)
    command = [*abi.compiler("c++20"), *options(build), "-x", "c++-header", str(header), "-o", str(output)]
    return output, compile_if_changed(command, output)


def parse(build):
    """What the compiler complains of, for each source that it refuses."""
    precompiled, faults = precompile_test_headers(build)
    if faults:
        return [faults]

    def check(source):
        mark = build / "abi/parsed" / source.relative_to(TOP).with_suffix(".ok")
        command = [*abi.compiler("c++20"), *options(build), "-fsyntax-only", str(source)]
        if source in HOST_ARRAY:
            command[1:1] = HOST_ARRAY_OPTIONS
        elif TOP / "tests" in source.parents:
            command[1:1] = ["-include-pch", str(precompiled)]
        return compile_if_changed(command, mark)

    with ThreadPoolExecutor(2) as pool:
        return [text for text in pool.map(check, sources(build)) if text]
