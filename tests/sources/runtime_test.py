#!/usr/bin/env python3
"""Shows that our objects take nothing from the compiler's own copies of C run-time functions but what is listed here.

MinGW links replacements for many functions of the run-time (libmingwex.a, and the objects in libmsvcrt.a that are not
imports). A replacement that converts numbers or texts may answer otherwise than the run-time that the host and its
other modules share, so base/RuntimeInternal.h imports those; the replacements that remain are listed with the reason.

Usage: runtime_test.py NM COMPILER --library LIST... --host LIST...
A list is a file with one object file a line.
"""
import argparse
import subprocess
import sys
import unittest
from pathlib import Path

parser = argparse.ArgumentParser()
parser.add_argument("nm")
parser.add_argument("compiler")
parser.add_argument("--library", nargs="+", type=Path)
parser.add_argument("--host", nargs="+", type=Path)
ARGUMENTS = parser.parse_args()

COPIES = "copies, finds or compares characters as they are; nothing is converted"
IN_LIBRARY = {
    "wcsnlen": COPIES,
    "wmemchr": COPIES,
    "wmemcmp": COPIES,
    "wmemcpy": COPIES,
    "wmemmove": COPIES,
    "wmemset": COPIES,
    "ceil": "exact",
    "floor": "exact",
    "sqrt": "exact",
    "trunc": "exact",
    "_fseeki64": "a file position, handed on",
    "_ftelli64": "a file position, handed on",
    "_localtime64_s": "calls the run-time's function",
    "__acrt_iob_func": "the standard streams of the run-time",
}
DRAWS = "geometry of a drawing, written with one decimal"
IN_HOST = IN_LIBRARY | {
    "atan2": DRAWS,
    "cabs": DRAWS,
    "cos": DRAWS,
    "fmod": DRAWS,
    "hypot": DRAWS,
    "llround": DRAWS,
    "lround": DRAWS,
    "pow": DRAWS,
    "round": DRAWS,
    "sin": DRAWS,
    "__mingw_vsnprintf": "the standard library's to_string, here of whole numbers only",
    "__mingw_vsnwprintf": "the standard library's to_wstring, here of whole numbers only",
    "strtold": "the command line's durations and contour intervals",
    "strtoll": "the command line's whole numbers",
}


def plain(symbol):
    return symbol.removeprefix("__imp_")


def symbols(nm_option, files):
    """Yields (place, kind, name) of what nm lists for objects and archives; a place is a file, or one and its member."""
    done = subprocess.run([ARGUMENTS.nm, "-A", nm_option, *files], capture_output=True, text=True)
    for line in done.stdout.splitlines():
        place, _, rest = line.rpartition(":")
        fields = rest.split()
        if len(fields) >= 2:
            yield place, fields[-2], fields[-1]


def replacements():
    """The names that replacements define; that of a pointer in the import table when a replacement provides it."""
    archives = [subprocess.run([ARGUMENTS.compiler, f"-print-file-name={library}"], capture_output=True, text=True,
                               check=True).stdout.strip() for library in ("libmingwex.a", "libmsvcrt.a")]
    # Members with such a name stand for an import of the run-time.
    return {name for place, kind, name in symbols("--defined-only", archives)
            if kind in "TWDR" and "_defs" not in place and not name.startswith(".")}


def faults(uses, replaced, allowed):
    """uses: pairs of an object and the name of a symbol that it does not define."""
    return sorted(f"{Path(file).name} uses {name}" for file, name in uses
                  if name in replaced and plain(name) not in allowed)


def undefined(lists):
    files = [file for list_file in lists for file in list_file.read_text().split()]
    return [(file, name) for file, kind, name in symbols("--undefined-only", files) if kind == "U"]


REPLACED = replacements()


class TheRunTime(unittest.TestCase):
    def test_the_compilers_replacements_are_found(self):
        for name in ("__mingw_wcstod", "__mingw_vsnwprintf", "modf", "wcsnlen", "__imp__localtime64_s"):
            self.assertIn(name, REPLACED)
        # What the run-time alone has is no replacement.
        for name in ("_wtol", "_wtoi", "wcscoll", "_vsnwprintf", "_waccess", "__imp_modf"):
            self.assertNotIn(name, REPLACED)

    def test_a_replacement_that_is_not_listed_is_a_fault(self):
        uses = [("a.obj", "__mingw_wcstod"), ("a.obj", "wmemcpy"), ("a.obj", "__imp_modf"), ("b.obj", "modf"),
                ("b.obj", "strtold"), ("b.obj", "_wtol")]
        self.assertEqual(faults(uses, REPLACED, IN_LIBRARY), ["a.obj uses __mingw_wcstod", "b.obj uses modf",
                                                             "b.obj uses strtold"])

    def test_the_library_and_the_framework_use_the_run_time_itself(self):
        uses = undefined(ARGUMENTS.library)
        # The objects were read: each of these is in one of them.
        self.assertEqual({"wmemcpy", "__imp_wcstod", "__imp_modf", "__imp__vscwprintf"} - {name for _, name in uses}, set())
        self.assertEqual(faults(uses, REPLACED, IN_LIBRARY), [])

    def test_the_host_uses_what_is_listed(self):
        self.assertEqual(faults(undefined(ARGUMENTS.host), REPLACED, IN_HOST), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
