#!/usr/bin/env python3
"""Checks that no macro of the Windows headers renames what the public headers declare: header_names.py COMPILER BUILD

The public headers are preprocessed in both orders, after the lean <windows.h>, after the full one and after all headers of
Windows. In each case every name of a header must still be there. A name that is a macro anywhere in Windows must have the
name that the macro gives it beside it, so that calls which the macro renames find it. COMPILER is a compiler for Windows,
BUILD the build tree."""
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
OPTIONS = ["-std=c++17", "-w", "-DUNICODE", "-D_UNICODE", "-DWINVER=0x0A00", "-D_WIN32_WINNT=0x0A00", "-DNOMINMAX",
           f"-I{TOP}", f"-I{TOP / 'framework/include'}"]
# Not for user programs, parts of other headers, or in need of files or definitions that are not there.
LEFT_OUT = set("_cygwin.h adogpool.h adogpool_backcompat.h mspbase.h routprot.h tdi.h termmgr.h unknown.h varargs.h "
               "winddi.h wsman.h".split())
# Macros that the public headers use as what they are: those in capitals, as no name of ours is written, and these.
USED = re.compile(r"[A-Z0-9_]+|__uuidof|__int64|assert")
# Names that a macro renames all the same, with the reason why that does no harm.
EXCEPTIONS = {
    "DOMDocument",  # <msxml2.h> of some toolchains; a class of the header alone, renamed where it is used as well
    "CLSID_DOMDocument",  # <msxml2.h>; a constant of the header alone, renamed where it is used as well
}
NAME = re.compile(r"\b[A-Za-z_]\w*")


def plain(text):
    """A header's text without comments, literals and directives."""
    # Properties and identifiers of the DOM's interfaces, written so for one compiler alone.
    text = re.sub(r"__declspec\(property\([^;]*;|__declspec\(uuid\([^)]*\)\)", " ", text)
    text = re.sub(r'//[^\n]*|/\*.*?\*/|R"\((?:.*?)\)"|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\'', " ", text, flags=re.S)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", " ", text, flags=re.M)


def names(text):
    return {name for name in NAME.findall(plain(text)) if not USED.fullmatch(name)} - EXCEPTIONS


class Preprocessor:
    def __init__(self, compiler, options):
        self.command = [compiler, *options, "-x", "c++", "-"]

    def run(self, text, *options, strict=True):
        done = subprocess.run([*self.command, *options], input=text, capture_output=True, text=True,
                              cwd="/")  # so that the headers appear with all of their paths
        if strict and done.returncode != 0:
            sys.exit(done.stderr)
        return done.stdout

    def windows_headers(self):
        """An #include line for each header of Windows."""
        found = self.run("#include <windows.h>\n", "-M").replace("\\\n", " ").split()
        folder = next(Path(file).parent for file in found if file.endswith("/windows.h"))
        return "".join(f"#include <{file.name}>\n" for file in sorted(folder.glob("*.h")) if file.name not in LEFT_OUT)

    def macros(self, text):
        """The names of the macros that are defined at the end of the text."""
        return set(re.findall(r"^#define (\w+)", self.run(text, "-E", "-dM"), re.M))

    def expansions(self, text, macros):
        """{macro: for each way to use it the names that are left} at the end of the text."""
        uses = ["{}", "{}()", "{}(a)", "{}(a, b)", "{}(a, b, c)"]
        lines = "".join(f"\nQUON_BEGIN {use.format(name)} QUON_END" for name in macros for use in uses)
        # The wrong number of arguments is an error, and then the macro stays as it is.
        rows = re.findall(r"QUON_BEGIN (.*?) QUON_END", self.run(text + lines, "-E", "-P", strict=False), re.S)
        left = [set(NAME.findall(row)) - {"a", "b", "c"} for row in rows]
        return {name: left[len(uses) * index:len(uses) * (index + 1)] for index, name in enumerate(macros)}

    def header_names(self, text, headers):
        """{header: the names that the preprocessor leaves of it} for headers that the text includes."""
        found, header = defaultdict(set), None
        paths = {str(TOP / name): name for name in headers}
        for line in self.run(text, "-E").splitlines():
            marker = re.match(r'# \d+ "(.*)"', line)
            if marker:
                header = paths.get(marker[1])
            elif header and not line.startswith("#"):
                found[header] |= set(NAME.findall(re.sub(r'"(?:[^"\\]|\\.)*"', " ", line)))
        return found


# Some of what a user may have included before.
FIRST = {
    "the lean windows.h": "#define WIN32_LEAN_AND_MEAN\n#include <afx.h>\n",
    "the full windows.h": "#include <afx.h>\n",
    "commdlg.h": "#define WIN32_LEAN_AND_MEAN\n#include <afx.h>\n#include <commdlg.h>\n",
}


def faults_of(preprocessor, headers, read, first=FIRST):
    """What is wrong with the headers, a list of names as they are included; `read` gives the text of one."""
    declared = {header: names(read(header)) for header in headers}
    windows = preprocessor.windows_headers()
    forward = "".join(f'#include "{header}"\n' for header in headers)
    backward = "".join(f'#include "{header}"\n' for header in reversed(headers))
    everything = "#include <afx.h>\n" + windows
    faults = []
    for case, before in {**first, "all of Windows": everything}.items():
        for order, includes in (("", forward), (", in reverse order", backward)):
            left = preprocessor.header_names(before + includes, headers)
            for header in headers:
                lost = declared[header] - left[header]
                faults += [f"{header}: after {case}{order}, {name} is replaced" for name in sorted(lost)]
    of_windows = sorted(preprocessor.macros(everything) & set().union(*declared.values()))
    for name, uses in preprocessor.expansions(everything, of_windows).items():
        renamed = [left for left in uses if name not in left]
        for header in headers:
            if name in declared[header] and not all(left & declared[header] for left in renamed):
                faults.append(f"{header}: {name} is a macro of Windows, and what it becomes is not declared: "
                              f"{' '.join(sorted(set().union(*renamed))) or 'nothing'}")
    return faults


def main():
    compiler, build = sys.argv[1], Path(sys.argv[2])
    headers = (build / "public-headers.txt").read_text().split()
    faults = faults_of(Preprocessor(compiler, OPTIONS), headers, lambda header: (TOP / header).read_text())
    if faults:
        sys.exit("\n".join(faults))
    print(f"headers: the names of {len(headers)} public headers are no macros of Windows")


if __name__ == "__main__":
    main()
