#!/usr/bin/env python3
"""Configures the project as the preset msvc does, with a compiler that CMake takes for MSVC's: configure_test.py BUILD

Packages that do nothing take the place of those of vcpkg. Nothing is built: what is looked at is that a generator of several
configurations writes its files, and what they say.
"""
import json
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
HERE = Path(__file__).resolve().parent
BUILD = Path(sys.argv[1])
CONFIGURATIONS = ("Debug", "Release")


def preset_variables():
    """The cache variables of the preset msvc."""
    presets = json.loads((TOP / "CMakePresets.json").read_text())["configurePresets"]
    preset = next(entry for entry in presets if entry["name"] == "msvc")
    return preset.get("cacheVariables", {})


def configure():
    shutil.rmtree(BUILD, ignore_errors=True)
    # vcpkg's own variables are for its toolchain file, which is not here.
    preset = {name: value for name, value in preset_variables().items() if not name.startswith("VCPKG_")}
    variables = {**preset, "CMAKE_CONFIGURATION_TYPES": ";".join(CONFIGURATIONS),
                 "CMAKE_TOOLCHAIN_FILE": HERE / "toolchain.cmake", "CMAKE_PREFIX_PATH": HERE / "packages"}
    return subprocess.run(["cmake", "-S", TOP, "-B", BUILD, "-G", "Ninja Multi-Config",
                           *(f"-D{name}={value}" for name, value in variables.items())], capture_output=True, text=True)


class Configure(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.done = configure()
        if cls.done.returncode != 0:
            raise AssertionError(cls.done.stdout + cls.done.stderr)
        cls.rules = {name: (BUILD / f"CMakeFiles/impl-{name}.ninja").read_text() for name in CONFIGURATIONS}

    def commands(self):
        return json.loads((BUILD / "compile_commands.json").read_text())

    def test_no_warning_is_given(self):
        self.assertNotIn("Warning", self.done.stderr)

    def test_every_configuration_has_its_build_file(self):
        for name in CONFIGURATIONS:
            self.assertTrue((BUILD / f"build-{name}.ninja").exists())

    def test_library_host_examples_tests_and_the_benchmarks_support_are_built(self):
        built = {Path(entry["file"]) for entry in self.commands()}
        for source in ("paths/QuonPath.cpp", "module/DllMain.cpp", "host/main.cpp", "examples/paths/main.cpp",
                       "tests/paths/QuonPathTest.cpp", "tests/reliability/AllocationFailureTest.cpp",
                       "benchmarks/BenchmarkSupport.cpp"):
            self.assertIn(TOP / source, built)

    def test_the_stand_in_of_the_framework_takes_no_part(self):
        for entry in self.commands():
            self.assertNotIn(TOP / "framework", Path(entry["file"]).parents)
            self.assertNotIn(str(TOP / "framework/include"), entry["command"])

    def test_the_objects_with_exports_are_listed_for_each_configuration(self):
        for name in CONFIGURATIONS:
            objects = (BUILD / f"export-objects-{name}.txt").read_text().split()
            self.assertGreater(len(objects), 50)
            self.assertTrue(all(f"/{name}/" in path for path in objects), objects[0])

    def test_nothing_of_this_machine_is_searched(self):
        options = "\n".join(re.sub(r"^\S+ ", "", entry["command"]) for entry in self.commands())
        for folder in ("/usr/src", "/usr/include", "/usr/share"):
            self.assertNotIn(folder, options)

    def test_every_library_of_the_project_that_is_linked_is_built(self):
        for name in CONFIGURATIONS:
            linked = set(re.findall(r"(?<![\w/])(quon_\w+)\.lib", self.rules[name]))
            self.assertEqual(linked, set())

    def test_options_are_those_of_msvc(self):
        options = {option for entry in self.commands() for option in entry["command"].split()}
        self.assertIn("-D_AFXDLL", options)
        self.assertIn("/permissive-", options)
        for option in options:
            self.assertNotRegex(option, r"^-(f[a-z]|m[a-z]+$|W[a-z]|static$|g\d?$|municode)", option)
        for name in CONFIGURATIONS:
            flags = " ".join(re.findall(r"^ +LINK_FLAGS = (.*)$", self.rules[name], re.M))
            self.assertIn("/IGNORE:4197", flags)
            self.assertNotRegex(flags, r"-Wl,|-municode|-static")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
