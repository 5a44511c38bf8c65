"""The behaviour tests in MSVC's ABI (abi.py behaviour): LLVM's standard library, the test framework and every test program,
compiled by clang in its MSVC mode, linked with the library that abi.py run builds, and run under Wine.
"""
import json
import re
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import abi
import abi_parse

TOP = abi.TOP
HERE = TOP / "abi/behaviour"
STANDARD_LIBRARY = TOP / "build/sources/llvm-toolchain-14/libcxx/src"
# What the tests use of it; the rest is for other platforms, or needs what the C run-time here has not.
STANDARD_SOURCES = """algorithm any atomic charconv chrono condition_variable condition_variable_destructor debug exception
    functional future hash ios ios.instantiations iostream locale memory mutex mutex_destructor optional random shared_mutex
    stdexcept string system_error thread typeinfo utility valarray variant vector ryu/d2fixed ryu/d2s ryu/f2s
    support/win32/locale_win32 support/win32/support support/win32/thread_win32""".split()
# Warnings are for the parse, which reads the same sources.
COMPILE = [word for word in abi.compiler("c++20") if not word.startswith("-W")]
COMPILE += ["-O1", "-w", "-fno-threadsafe-statics", "-mno-stack-arg-probe", f"-I{HERE}", "-include", str(HERE / "RunTime.h")]


def compile_object(source, obj, *options):
    """Compiles a source that is not the project's, or a test; returns what the compiler complains of."""
    command = [*COMPILE, *options, "-c", str(source), "-o", str(obj)]
    return abi_parse.compile_if_changed(command, obj)


def compile_each(jobs):
    with ThreadPoolExecutor(2) as pool:
        return [text for text in pool.map(lambda job: compile_object(*job), jobs) if text]


def foundation(build):
    """LLVM's standard library and the test framework: (what to link, complaints)."""
    folder = build / "abi/behaviour"
    standard = {STANDARD_LIBRARY / (name + ".cpp"): folder / "std" / (name.replace("/", "_") + ".obj")
                for name in STANDARD_SOURCES}
    gtest = {abi_parse.GOOGLETEST / name: folder / (Path(name).stem + ".obj") for name in
             ("googletest/src/gtest-all.cc", "googlemock/src/gmock-all.cc", "googletest/src/gtest_main.cc")}
    includes = ("-D_LIBCPP_BUILDING_LIBRARY", f"-I{STANDARD_LIBRARY}", f"-I{STANDARD_LIBRARY / 'include'}")
    jobs = [(source, obj, *includes) for source, obj in standard.items()]
    jobs += [(source, obj, *abi_parse.options(build), *(f"-I{abi_parse.GOOGLETEST / name}" for name in
                                                        ("googletest", "googlemock"))) for source, obj in gtest.items()]
    support = {TOP / "abi/run/Startup.cpp": folder / "Startup.obj", HERE / "StandardLibrary.cpp": folder / "StandardLibrary.obj",
               TOP / "tests/helpers/GuardPages.cpp": folder / "GuardPages.obj"}
    jobs += [(source, obj, "-DQUON_ABI_WHOLE_STANDARD_LIBRARY", *abi_parse.options(build)) for source, obj in support.items()]
    faults = compile_each(jobs)
    archive, pointers = folder / "std.lib", folder / "exception-pointers.lib"
    if not faults:
        archive.unlink(missing_ok=True)
        subprocess.run([f"llvm-ar-{abi.LLVM}", "rcs", str(archive), *map(str, standard.values())], check=True)
        import_exception_pointers(folder, pointers)
    return [*gtest.values(), *support.values(), archive, pointers], faults


def import_exception_pointers(folder, library):
    """An import library for std::exception_ptr, which is the platform's: Wine's own leaves C++ names out."""
    listing = subprocess.run([f"llvm-readobj-{abi.LLVM}", "--coff-exports", f"{abi.IMPORT_LIBRARIES}/msvcp140.dll"],
                             capture_output=True, text=True, check=True).stdout
    names = re.findall(r"Name: (\?__ExceptionPtr\S+)", listing)
    definition = folder / "exception-pointers.def"
    definition.write_text("LIBRARY msvcp140.dll\nEXPORTS\n" + "".join(f"  {name}\n" for name in names))
    subprocess.run([f"llvm-dlltool-{abi.LLVM}", "-m", "i386:x86-64", "-d", str(definition), "-l", str(library)], check=True)


def precompile_test_headers(build, output):
    """The headers of the test framework, read once for all tests; returns what the compiler complains of."""
    header = output.with_suffix(".h")
    header.write_text("".join(f"#include <{name}>\n" for name in abi_parse.TEST_HEADERS))
    return abi_parse.compile_if_changed([*COMPILE, *abi_parse.options(build), "-x", "c++-header", str(header), "-o", str(output)],
                                        output)


def programs(build):
    """{name: sources} of the test programs, as the build tree compiles them."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source, match = Path(entry["file"]), re.search(r"CMakeFiles/(\w+_test)\.dir/", entry["command"])
        if match and TOP / "tests" in source.parents:
            found.setdefault(match[1], []).append(source)
    return found


def left_out():
    """{program: reason} of abi/behaviour/left-out.txt."""
    lines = (HERE / "left-out.txt").read_text().splitlines()
    return dict(line.split(": ", 1) for line in lines if line and not line.startswith("#"))


def build_program(build, name, sources, precompiled, common, modules):
    """Compiles and links one test program; returns what is wrong."""
    folder = build / "abi/behaviour" / name
    objs = {source: folder / (source.stem + ".obj") for source in sources}
    faults = compile_each([(source, obj, "-include-pch", str(precompiled), *abi_parse.options(build))
                           for source, obj in objs.items()])
    if faults:
        return "\n".join(faults)
    try:
        abi.link(modules / f"{name}.exe", [*objs.values(), *common], "/subsystem:console", f"@{HERE / 'names.txt'}")
    except SystemExit as error:
        return str(error)
    return ""


def run_program(modules, name):
    """Runs one test program under Wine; returns (number of tests that passed, what is wrong)."""
    log = modules / f"{name}.log"
    with open(log, "wb") as output:
        code = subprocess.run([str(TOP / "scripts/wine-run.sh"), f"{name}.exe"], cwd=modules, stdin=subprocess.DEVNULL,
                              stdout=output, stderr=subprocess.STDOUT).returncode
    text = log.read_text(errors="replace")
    passed = re.search(r"\[  PASSED  \] (\d+) test", text)
    if code == 0 and passed and "[  FAILED  ]" not in text:
        return int(passed[1]), ""
    failed = re.findall(r"^\[  FAILED  \] (.+?)(?: \(.*)?$", text, re.M)
    return int(passed[1]) if passed else 0, f"{name} ended with {code}: {', '.join(dict.fromkeys(failed)) or text[-500:]}"


def behaviour(build, chosen):
    """Builds and runs the programs, prints a line for each, and returns what is wrong."""
    if not STANDARD_LIBRARY.exists():
        return ["LLVM's standard library is missing: run scripts/abi-sources.sh"]
    modules = abi.link_all(build)
    common, faults = foundation(build)
    precompiled = build / "abi/behaviour/test-headers.pch"
    faults += filter(None, [precompile_test_headers(build, precompiled)])
    if faults:
        return faults
    common += [f"{abi.IMPORT_LIBRARIES}/lib{name}.a" for name in ("comdlg32", "version")]
    common += [modules / name for name in ("ComSupport.obj", "OperatorNew.obj", "QuonFramework.lib", "QuonWin32Utils.lib")]
    reasons, tests = left_out(), 0
    wanted = {name: sources for name, sources in sorted(programs(build).items())
              if name in chosen or not chosen and name not in reasons}
    for name, sources in wanted.items():
        fault = build_program(build, name, sources, precompiled, common, modules)
        passed, failed = (0, "") if fault else run_program(modules, name)
        tests += passed
        print(f"{name}: {'not built' if fault else 'failed' if failed else f'{passed} tests passed'}", flush=True)
        faults += filter(None, [fault, failed])
    faults += [f"abi/behaviour/left-out.txt: there is no program {name}" for name in reasons if name not in programs(build)]
    print(f"{len(wanted)} programs in MSVC's ABI, {tests} tests passed; {len(reasons)} programs left out, with reasons")
    return faults
