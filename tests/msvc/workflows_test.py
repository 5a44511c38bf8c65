#!/usr/bin/env python3
"""What the workflows and the manifest of vcpkg name exists: workflows_test.py"""
import json
import re
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
LINUX = (TOP / ".github/workflows/linux.yml").read_text()
WINDOWS = (TOP / ".github/workflows/windows.yml").read_text()
PRESETS = json.loads((TOP / "CMakePresets.json").read_text())
MANIFEST = json.loads((TOP / "vcpkg.json").read_text())
# The port of vcpkg that brings a package of CMake.
PORTS = {"CLI11": "cli11", "nlohmann_json": "nlohmann-json", "GTest": "gtest"}


class Workflows(unittest.TestCase):
    def presets(self, kind):
        return {entry["name"]: entry for entry in PRESETS[kind]}

    def test_linux_runs_what_every_change_goes_through(self):
        self.assertIn("run: .ci/run\n", LINUX)
        self.assertTrue((TOP / ".ci/run").stat().st_mode & 0o100)

    def test_windows_builds_and_tests_both_configurations_by_presets(self):
        used = dict(re.findall(r"configuration: (\w+)\n +preset: (\S+)", WINDOWS))
        self.assertEqual(set(used), {"Debug", "Release"})
        for configuration, name in used.items():
            for kind in ("buildPresets", "testPresets"):
                preset = self.presets(kind)[name]
                self.assertEqual((preset["configurePreset"], preset["configuration"]), ("msvc", configuration))

    def test_windows_configures_and_packs_in_the_folder_of_the_preset(self):
        self.assertIn("cmake --preset msvc ", WINDOWS)
        folder = self.presets("configurePresets")["msvc"]["binaryDir"]
        self.assertEqual(folder.replace("${presetName}", "msvc"), "${sourceDir}/build/msvc")
        self.assertIn("--config build/msvc/CPackConfig.cmake", WINDOWS)

    def test_the_preset_builds_host_examples_and_tests(self):
        variables = self.presets("configurePresets")["msvc"].get("cacheVariables", {})
        self.assertNotIn("OFF", variables.values())

    def test_the_variable_that_finds_vcpkg_is_set(self):
        toolchain = self.presets("configurePresets")["msvc"]["toolchainFile"]
        self.assertIn("VCPKG_ROOT=", WINDOWS)
        self.assertIn("$env{VCPKG_ROOT}/", toolchain)

    def test_each_package_has_its_port(self):
        text = (TOP / "cmake/QuonDependencies.cmake").read_text()
        packages = set(re.findall(r"find_package\((\w+) CONFIG|PACKAGE (\w+) IMPORTED", text))
        names = {first or second for first, second in packages}
        self.assertEqual(names, set(PORTS))
        self.assertEqual(set(MANIFEST["dependencies"]), set(PORTS.values()))

    def test_the_manifest_has_the_projects_version(self):
        version = re.search(r"VERSION (\S+)", (TOP / "CMakeLists.txt").read_text().split("project(", 1)[1])[1]
        self.assertEqual(MANIFEST["version-string"], version)


if __name__ == "__main__":
    unittest.main()
