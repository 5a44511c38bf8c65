#!/usr/bin/env python3
"""Checks the contract with a host that is built with MSVC, by clang in its MSVC mode and Wine's headers (abi/README.md).

  abi.py parse BUILD      every source of library, host, examples, tests and the benchmarks' common part compiles, and the
                          public headers do as C++17
  abi.py layout BUILD     fields, sizes and virtual tables of the classes, types and constants are those of abi/layout.txt
  abi.py names BUILD      the decorated names of the exports are those of module/QuonWin32Utils.msvc.def, and number and
                          signature of each are those of module/QuonWin32Utils.def; with --write the list is written anew
  abi.py run BUILD        the library links by that list, and a host in MSVC's ABI calls it under Wine
  abi.py behaviour BUILD [PROGRAM...]
                          the test programs pass in that ABI, with LLVM's standard library (scripts/abi-sources.sh)

BUILD is the build tree; the objects are kept in its folder abi/ and made anew when something they read has changed.
"""
import argparse
import difflib
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import exports

TOP = Path(__file__).resolve().parent.parent
FOLDERS = "base paths traversal support points geometry xml messaging monitoring module".split()
EXPORT_LIST = TOP / "module/QuonWin32Utils.def"
MSVC_LIST = TOP / "module/QuonWin32Utils.msvc.def"
LIST_HEAD = """\
; The numbered exports of the library for the MSVC ABI: declaration, then decorated name and number.
; Made by scripts/abi.py (names --write); the numbers are those of the list for the GCC ABI, by the rule of abi/README.md.
; numbering {numbering}
LIBRARY QuonWin32Utils.dll
EXPORTS
"""
WINE = "/usr/include/wine/wine"
IMPORT_LIBRARIES = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows"
LLVM = "14"
# Types whose names or qualifiers differ between Wine's headers and the platform's, or with the platform's settings: an
# export that mentions one has a name that cannot be told here.
UNLIKE_THE_PLATFORM = ("_WIN32_FILE_ATTRIBUTES_DATA", "ITEMIDLIST", "_SHITEMID", "__WIDL_")
CLOSING_LINE = "all calls did what they promise\n"


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


def compile_source(source, obj, *options):
    """Makes the object unless it is newer than all it is made of; returns what the compiler complains of."""
    depfile = obj.with_suffix(".d")
    if up_to_date(obj, depfile):
        return ""
    obj.parent.mkdir(parents=True, exist_ok=True)
    obj.unlink(missing_ok=True)
    # Statics and stacks without the help of the compiler's run-time library, which there is not.
    command = [*compiler("c++20"), *options, "-fno-threadsafe-statics", "-mno-stack-arg-probe",
               "-MD", "-MF", str(depfile), "-c", str(source), "-o", str(obj)]
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


def compile_all(jobs):
    """Brings objects up to date, each job a source, its object and options; returns what the compiler complains of."""
    with ThreadPoolExecutor(2) as pool:
        return [text for text in pool.map(lambda job: compile_source(*job), jobs) if text]


def compile_library(build):
    return compile_all([(source, obj, "-DQUON_BUILDING_LIBRARY") for source, obj in objects(build).items()])


def parse(arguments):
    import abi_parse

    build = arguments.build.resolve()
    faults = [*compile_library(build), *filter(None, [parse_headers(build)]), *abi_parse.parse(build)]
    finish(faults, f"{len(library_sources())} sources of the library, {len(abi_parse.sources(build))} around it and "
           f"{len(public_headers(build))} public headers compile in the MSVC mode")


def plain_type(text):
    """A type as the table of layouts writes it."""
    text = re.sub(r"\b(class|struct|enum) ", "", text)
    text = re.sub(r"ATL::CStringT<wchar_t, StrTraitMFC_DLL<wchar_t> ?>", "CString", text)
    text = re.sub(r"_com_ptr_t<_com_IIID<([\w:]+), [^>]*> ?>", r"_com_ptr_t<\1>", text)
    text = re.sub(r"\b_Bool\b", "bool", text)
    text = re.sub(r"\b_(FILETIME|WIN32_FIND_DATAW)\b", r"\1", text)
    text = re.sub(r"\b_WIN32_FILE_ATTRIBUTES?_DATA\b", "WIN32_FILE_ATTRIBUTE_DATA", text)  # an "S" of Wine's own
    text = re.sub(r"\b_RTL_CRITICAL_SECTION\b", "CRITICAL_SECTION", text)
    return re.sub(r" ([*&>])", r"\1", text)


def dumped_layouts(dump):
    """{class: [size, the lines of its fields]} of the compiler's account of record layouts."""
    layouts = {}
    for record in dump.split("*** Dumping AST Record Layout\n")[1:]:
        head = re.match(r" *0 \| (?:class|struct) (.+?)(?: \(empty\))?$", record, re.M)
        size = re.search(r"\[sizeof=(\d+)", record)
        if not head or not size:
            continue
        fields = []
        for offset, text in re.findall(r"^ *(\d+(?::\d+-\d+)?) \|   (\S.*)$", record[:size.start()], re.M):
            base = re.match(r"(?:class|struct) (.+) \((?:primary )?base\)$", text)
            if text.endswith("vftable pointer)"):
                fields.append(f"{offset} vftable")
            else:
                fields.append(f"{offset} base {base[1]}" if base else f"{offset} {plain_type(text)}")
        layouts[plain_type(head[1])] = [int(size[1]), fields]
    return layouts


def dumped_tables(dump):
    """{class: the lines of its slots} of the compiler's account of virtual tables; the last base names the class."""
    tables = {}
    for name, rows in re.findall(r"^VFTable for '(?:.*' in ')?(.+?)' \(.*?\)\.\n((?: .*\n)+)", dump, re.M):
        slots = []
        for row in re.findall(r"^ *\d+ \| (.*)$", rows, re.M):
            call = re.match(r"(.*?)((?:\w+::)+)(~?\w+)(\(.*\))((?: const| volatile)*)(?: \[[^]]*\])*$", row)
            if call:  # the row of the type information is none
                result, _, function, parameters, qualifiers = call.groups()
                slots.append("slot ~" if function[0] == "~" else
                             f"slot {plain_type(result).strip()} {function}{plain_type(parameters)}{qualifiers}")
        tables[name] = slots
    return tables


def written_layouts(text, sizes):
    """{class: [size, fields, slots or None]} of the table; `sizes` gives those of the framework's classes."""
    def number(word):
        base, _, offset = word.rpartition("+")
        return (sizes[base] if base else 0) + int(offset)

    layouts = {}
    for row, line in enumerate(text.splitlines(), 1):
        words = line.split()
        if not words or words[0].startswith("#") or words[0] in ("constant", "type"):
            continue
        if words[0] == "class":
            name = words[1]
            entry = layouts[name] = [number(words[2]), [], []]
        elif line.strip() == "slots of the framework":
            entry[2] = None
        elif words[:2] == ["slots", "like"]:
            entry[2] += layouts[words[2]][2]
        elif words[0] == "slot":
            entry[2].append(line.strip())
        elif re.match(r"(\w+\+)?\d+$", words[0]):
            entry[1].append(" ".join([str(number(words[0])), *words[1:]]))
        else:
            sys.exit(f"abi: line {row} of the layouts says nothing: {line}")
    return layouts


def account(name, size, fields, slots):
    return "\n".join([f"class {name} {size}", *fields, *(slots or [])])


def exported_classes(list_text):
    """The classes that have a constructor or a virtual table among the exports."""
    constructors = re.findall(r"^; ((?:\w+::)*(\w+))::\2\(", list_text, re.M)
    tables = re.findall(r"^; vtable for (\S+)", list_text, re.M)
    return {*(name for name, _ in constructors), *tables}


def promises(table):
    """A source that compiles when types, constants and virtual functions are what the table says, calling convention
    included. A name that the headers give a type is checked for what it means, not for how it is written."""
    lines, name = [f'#include "{TOP / "abi/probe.cpp"}"', "#include <type_traits>"], None
    for line in table.splitlines():
        words = line.split()
        if words[:1] == ["class"]:
            name = words[1]
        elif words[:1] == ["type"]:
            lines.append(f"static_assert(std::is_same_v<{words[1]}, {' '.join(words[2:])}>);")
        elif words[:1] == ["constant"]:
            constant, value = words[-2:]
            lines.append(f"static_assert(std::is_same_v<decltype({constant}), const {' '.join(words[1:-2])}>);")
            lines.append(f"static_assert({constant} == {value});")
        elif words[:1] == ["slot"] and words[1] != "~":
            result, function, parameters = re.match(r"(.*?)(\w+)(\(.*)$", line.strip()[5:]).groups()
            lines.append(f"static_assert(static_cast<{result.strip()} ({name}::*){parameters}>(&{name}::{function}) "
                         "!= nullptr);")
    return "\n".join(lines) + "\n"


def dump_layouts(table):
    """(what the compiler says of the classes of abi/probe.cpp, [where the headers do not keep the table's promises])."""
    command = [*compiler("c++20", sizes=True), "-DQUON_BUILDING_LIBRARY", "-fno-access-control", "-ferror-limit=0",
               "-Wno-tautological-pointer-compare", "-x", "c++", "-", "-c", "-o", os.devnull,
               "-Xclang", "-fdump-record-layouts", "-Xclang", "-fdump-vtable-layouts"]
    # Not in the source tree: the folder would be searched for headers, too.
    done = subprocess.run(command, input=promises(table), capture_output=True, text=True, cwd="/")
    if done.returncode == 0:
        return done.stdout, []
    faults = re.findall(r"^<stdin>:.*?error: (.*\n.*)", done.stderr, re.M)
    if not faults or re.search(r"^[^<].*error:", done.stderr, re.M):
        sys.exit(done.stderr)
    # The compiler lays nothing out when there is an error.
    done = subprocess.run(command, input=promises(""), capture_output=True, text=True, cwd="/")
    return done.stdout, faults


def unlisted(table, headers_text):
    """Constants and names of types of the public headers that the table forgot."""
    named = re.findall(r"^using (\w+) =", headers_text, re.M)
    named += re.findall(r"^(?:inline )?constexpr (?!CLSID )[^=({]*?(\w+) =", headers_text, re.M)
    known = {words[1] if words[0] == "type" else words[-2]
             for words in map(str.split, table.splitlines()) if words and words[0] in ("type", "constant")}
    return [f"{name} has no entry in abi/layout.txt" for name in sorted(set(named) - known)]


def compare_layouts(dump, table, list_text):
    """The differences between the compiler's account and the table, and the exported classes that the table forgot."""
    layouts, tables = dumped_layouts(dump), dumped_tables(dump)
    wanted = written_layouts(table, {name: size for name, (size, _) in layouts.items()})
    faults = [f"{name} has exports but no entry in abi/layout.txt"
              for name in sorted(exported_classes(list_text) - set(wanted))]
    for name, (size, fields, slots) in wanted.items():
        if name not in layouts:
            faults.append(f"{name}: abi/probe.cpp does not lay it out")
            continue
        found = account(name, *layouts[name], None if slots is None else tables.get(name))
        expected = account(name, size, fields, slots)
        if found != expected:
            faults += difflib.unified_diff(expected.splitlines(), found.splitlines(), "abi/layout.txt", name,
                                           lineterm="", n=1)
    return faults


def layout(arguments):
    table = (TOP / "abi/layout.txt").read_text()
    dump, faults = dump_layouts(table)
    headers_text = "".join((TOP / header).read_text() for header in public_headers(arguments.build))
    finish([*faults, *unlisted(table, headers_text), *compare_layouts(dump, table, EXPORT_LIST.read_text())],
           f"{len(re.findall('^class ', table, re.M))} classes are laid out as promised")


def exported_names(objs):
    """{decorated name: is data} of the export directives in object files."""
    paths = [str(obj) for obj in objs]
    done = subprocess.run([f"llvm-readobj-{LLVM}", "--coff-directives", *paths], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(done.stderr)
    return {name: bool(data) for name, data in re.findall(r'/EXPORT:"?([^",\s]+)"?(,DATA)?', done.stdout)}


def undecorate(names):
    """{decorated name: declaration}."""
    done = subprocess.run([f"llvm-undname-{LLVM}"], input="\n".join(names) + "\n", capture_output=True, text=True)
    blocks = [block.split("\n", 1) for block in done.stdout.strip().split("\n\n")]
    return {name: text for name, text in blocks}


def plain_signature(text):
    """Name and parameters of a declaration, written alike for both compilers."""
    text = re.sub(r"^const (.*)::`vftable'.*$", r"vtable for \1", text)
    text = re.sub(r"^.*?\b__cdecl (?!\*)", "", text)  # access, result and what else stands before the name
    text = re.sub(r"\b(class|struct|enum|union) ", "", text)
    text = text.replace("__cdecl *", "*").replace("std::__cxx11::", "std::")
    text = re.sub(r"\b(unsigned )?__int64\b", lambda match: f"{match[1] or ''}long long", text)
    text = re.sub(r"_com_ptr_t<_com_IIID(?:_getter)?<([\w:]+), &[^>]*> ?>", r"_com_ptr_t<\1>", text)
    text = re.sub(r" ([*&>)])", r"\1", text)
    return text.replace("(void)", "()")


def gcc_role(name, signature):
    """What an entry of the GCC list is to MSVC: "counterpart", "closure" (of a constructor) or "none"."""
    if name.startswith(("_ZTI", "_ZTS")):
        return "none"  # type information is not exported there
    special = re.match(r"((?:\w+::)*(\w+))::(~?)\2\(", signature)
    if not special:
        return "counterpart"
    variant = re.match("_ZN" + "".join(f"{len(part)}{part}" for part in special[1].split("::")) + r"([CD]\d)E", name)
    return {"C1": "counterpart", "D1": "counterpart", "C2": "closure"}.get(variant[1], "none")


def gcc_numbers(list_text):
    """({signature: number}, {class: [numbers for the closure of a constructor that takes no class of its own]})."""
    signatures = {name: text for text, name in re.findall(r"^; (.+)\n +(\S+) @\d+ NONAME", list_text, re.M)}
    numbers, closures = {}, {}
    for name, number in exports.parse_list(list_text)[0].items():
        signature = plain_signature(signatures[name])
        role = gcc_role(name, signature)
        if role == "counterpart":
            numbers[signature] = number
        elif role == "closure":
            owner = signature.partition("(")[0].rpartition("::")[0]
            if f"({owner} const&)" not in signature and f"({owner}&&)" not in signature:
                closures.setdefault(owner, []).append(number)
    return numbers, closures


def number_names(names, list_text):
    """([(number, decorated name, declaration, is data)], [faults]): the exports of MSVC with the numbers of the GCC list."""
    numbers, closures = gcc_numbers(list_text)
    entries, faults, missing = [], [], dict(numbers)
    for name, declaration in undecorate(names).items():
        signature = plain_signature(declaration)
        owner = signature.removesuffix("::`default ctor closure'()")
        if owner != signature:
            found = closures.get(owner, [])
            number = found[0] if len(found) == 1 else None
        else:
            number = numbers.get(signature)
            missing.pop(signature, None)
        if any(tag in declaration for tag in UNLIKE_THE_PLATFORM):
            faults.append(f"{declaration} would have another name with the headers of the platform")
        if number is None:
            faults.append(f"{declaration} is exported, but the GCC list has no such entry")
        else:
            entries.append((number, name, declaration, names[name]))
    given = [number for number, *_ in entries]
    faults += [f"number {number} would be given twice" for number in sorted(set(given)) if given.count(number) > 1]
    faults += [f"{signature} @{number} of the GCC list has no counterpart" for signature, number in missing.items()]
    return sorted(entries), faults


def retired_names(old_text, gcc_text):
    """{number: decorated name} that the list for MSVC keeps for numbers that are retired in the GCC list."""
    if exports.numbering(old_text) != exports.numbering(gcc_text):
        return {}
    numbers, _, retired, _ = exports.parse_list(old_text)
    gone = exports.parse_list(gcc_text)[2]
    return retired | {number: name for name, number in numbers.items() if number in gone}


def write_names(entries, retired, numbering):
    """The text of the list for MSVC."""
    lines = {number: f"; {declaration}\n    {name} @{number} NONAME{' DATA' if data else ''}\n"
             for number, name, declaration, data in entries}
    lines |= {number: f"; retired @{number} {name}\n" for number, name in retired.items()}
    return LIST_HEAD.format(numbering=numbering) + "".join(lines[number] for number in sorted(lines))


def undeclared(entries, headers_text):
    """Faults for exports that no caller can use: private operations, and what no public header names."""
    words = set(re.findall(r"\w+", headers_text))
    faults = []
    for _, _, declaration, _ in entries:
        name = re.match(r"[\w:]*?(~?\w+)(?=\()", plain_signature(declaration))
        if declaration.startswith("private:") and not (name and name[1].startswith("~")):
            faults.append(f"{declaration} is exported, but private")
        elif name and name[1].lstrip("~") not in words:
            faults.append(f"{declaration} is exported, but no public header declares it")
    return faults


def check_names(arguments):
    faults = compile_library(arguments.build)
    if faults:
        finish(faults, "")
    gcc_text, old_text = EXPORT_LIST.read_text(), MSVC_LIST.read_text()
    entries, faults = number_names(exported_names(objects(arguments.build).values()), gcc_text)
    faults += undeclared(entries, "".join((TOP / header).read_text() for header in public_headers(arguments.build)))
    text = write_names(entries, retired_names(old_text, gcc_text), exports.numbering(gcc_text))
    if not faults and arguments.write:
        MSVC_LIST.write_text(text)
        old_text = text
    if old_text != text:
        faults += difflib.unified_diff(old_text.splitlines(), text.splitlines(),
                                       MSVC_LIST.name, "the library (abi.py names --write)", lineterm="", n=0)
    finish(faults, f"{len(entries)} decorated names have the numbers of the GCC list")


def link(target, objs, *options):
    """Links objects and the platform's import libraries, which Wine has."""
    libraries = [f"{IMPORT_LIBRARIES}/lib{name}.a" for name in
                 "kernel32 user32 advapi32 ole32 oleaut32 shell32 shlwapi uuid ucrtbase vcruntime140".split()]
    done = subprocess.run([f"lld-link-{LLVM}", "/nodefaultlib", "/machine:x64", "/entry:Start", f"/out:{target}", *options,
                           *map(str, objs), *libraries], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(done.stderr)


def without_directives(obj, folder):
    """A copy of the object that marks no exports: the list alone shall say them, as lld keeps a name that an object marks."""
    copy = folder / ("_".join(obj.parts[-2:]))
    subprocess.run([f"llvm-objcopy-{LLVM}", "--remove-section=.drectve", str(obj), str(copy)], check=True)
    return copy


def link_all(build):
    """Framework, library and host in MSVC's ABI, in the folder abi/run/ of the build tree, which is returned."""
    folder = build / "abi/run"
    startup = TOP / "abi/run/Startup.cpp"
    framework = {source: folder / "framework" / (source.stem + ".obj") for source in TOP.glob("framework/*/*.cpp")}
    jobs = [(source, obj, "-DQUON_BUILDING_FRAMEWORK") for source, obj in framework.items()]
    jobs += [(startup, folder / "StartupDll.obj", "-DQUON_ABI_DLL"), (startup, folder / "Startup.obj"),
             (TOP / "framework/new/OperatorNew.cpp", folder / "OperatorNew.obj")]
    host = ["Host", "HostServices", "HostThreads"]
    jobs += [(TOP / f"abi/run/{name}.cpp", folder / f"{name}.obj") for name in ["ComSupport", *host]]
    faults = compile_library(build) + compile_all(jobs)
    if faults:
        finish(faults, "")
    stripped = folder / "stripped"
    stripped.mkdir(exist_ok=True)
    support = [folder / "ComSupport.obj", folder / "OperatorNew.obj"]
    library = [without_directives(obj, stripped) for obj in [*objects(build).values(), folder / "StartupDll.obj", *support]]
    framework_library, import_library = folder / "QuonFramework.lib", folder / "QuonWin32Utils.lib"
    link(folder / "QuonFramework.dll", [*framework.values(), folder / "StartupDll.obj"], "/dll",
         f"/implib:{framework_library}")
    link(folder / "QuonWin32Utils.dll", [*library, framework_library], "/dll", f"/def:{MSVC_LIST}",
         f"/implib:{import_library}")
    link(folder / "Host.exe", [*(folder / f"{name}.obj" for name in [*host, "Startup"]), *support, framework_library,
                               import_library], "/subsystem:console")
    return folder


def compare_exports(dll, list_text):
    """What the DLL's exports and the list for MSVC do not have in common."""
    directory = exports.ExportDirectory(dll)
    numbers = set(exports.parse_list(list_text)[0].values())
    faults = [f"{directory.names} exports carry a name"] if directory.names else []
    faults += [f"the DLL does not export number {number}" for number in sorted(numbers - set(directory.functions))]
    faults += [f"the DLL exports number {number}" for number in sorted(set(directory.functions) - numbers)]
    return faults


def run(arguments):
    folder = link_all(arguments.build.resolve())
    faults = compare_exports(folder / "QuonWin32Utils.dll", MSVC_LIST.read_text())
    done = subprocess.run([str(TOP / "scripts/wine-run.sh"), "Host.exe"], cwd=folder, stdin=subprocess.DEVNULL,
                          capture_output=True, text=True)
    if done.returncode != 0 or done.stdout != CLOSING_LINE:
        faults.append(f"the host ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    finish(faults, "a host in MSVC's ABI calls the library by numbers alone")


def behaviour(arguments):
    import abi_behaviour

    finish(abi_behaviour.behaviour(arguments.build.resolve(), arguments.programs), "the test programs pass in MSVC's ABI")


def finish(faults, success):
    if faults:
        sys.exit("\n".join(faults))
    print("abi: " + success)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(required=True)
    for name, function in (("parse", parse), ("layout", layout), ("names", check_names), ("run", run),
                           ("behaviour", behaviour)):
        command = commands.add_parser(name)
        if name == "names":
            command.add_argument("--write", action="store_true", help="write the list anew")
        command.add_argument("build", type=Path)
        if name == "behaviour":
            command.add_argument("programs", nargs="*", help="the programs to run; without any, all")
        command.set_defaults(function=function)
    arguments = parser.parse_args()
    arguments.function(arguments)


if __name__ == "__main__":
    main()
