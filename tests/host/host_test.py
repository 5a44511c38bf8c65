#!/usr/bin/env python3
"""Runs the console host and looks at its output, its error line and its exit code: host_test.py RUNNER PROGRAM"""
import os
import sys
import tempfile
import unittest
from pathlib import Path

import captured

RUNNER, PROGRAM = sys.argv[1], sys.argv[2]


def windows_path(path):
    """A Unix path as a program under Wine sees it: drive Z: is the root."""
    return "Z:" + str(path).replace("/", "\\")


class HostTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.folder = Path(self.scratch.name)
        self.addCleanup(self.scratch.cleanup)

    def run_host(self, *arguments):
        return captured.run([RUNNER, PROGRAM, *arguments])

    def lines(self, *arguments):
        done = self.run_host(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.splitlines()

    def assert_fails(self, code, text, *arguments):
        done = self.run_host(*arguments)
        self.assertEqual(done.returncode, code, done)
        self.assertEqual(done.stdout, "")
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertTrue(done.stderr.startswith("quonhost: "), done.stderr)
        self.assertIn(text, done.stderr)

    def make_tree(self):
        root = self.folder / "root"
        for name in ("A/A1", "A/A2", "B"):
            (root / name).mkdir(parents=True)
        (root / "r.txt").write_text("12345")
        (root / "A/a.txt").write_text("123")
        (root / "A/A1/ÄЖ山.txt").write_text("1")
        return root

    def test_bad_command_lines_give_one_line_and_exit_code_2(self):
        for arguments in ([], ["nonsense"], ["tree"], ["copy", "only-one"], ["split"], ["folders", "more"],
                          ["tree", "x", "--no-such-option"], ["points"], ["points", "1", "--count", "--walk"],
                          ["sort"], ["angle", "1", "--from", "deg"], ["angle", "1", "--from", "deg", "--to", "gon"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", *arguments)

    def test_folders_lists_the_program_and_its_folder(self):
        folders = {line[:16].strip(): line[16:] for line in self.lines("folders")}
        self.assertEqual(folders["program"], windows_path(os.path.realpath(PROGRAM)))
        self.assertEqual(folders["program folder"] + os.path.basename(PROGRAM), folders["program"])
        self.assertTrue(folders["desktop"].endswith("\\"))
        self.assertEqual(len(folders), 9)

    def test_split_prints_parts_components_normal_and_relative_form(self):
        lines = [line.split(None, 1) for line in self.lines("split", "C:/a//b.txt", "--relative-to", "C:\\x\\")]
        self.assertEqual(lines, [["drive", "C:"], ["directory", "/a//"], ["title", "b"], ["extension", ".txt"],
                                 ["component", "C:"], ["component", "a"], ["component", "b.txt"],
                                 ["normal", "C:\\a\\b.txt"], ["relative", "..\\a\\b.txt"]])

    def test_tree_walks_breadth_first_and_depth_first(self):
        root = windows_path(self.make_tree())
        breadth = self.lines("tree", root)
        self.assertEqual(sorted(breadth), sorted([".", "A", "B", "A\\A1", "A\\A2"]))
        self.assertEqual(breadth[0], ".")
        depth = self.lines("tree", root, "--depth-first")
        self.assertEqual(sorted(depth), sorted(breadth))
        self.assertEqual(depth[-1], ".")
        self.assertLess(depth.index("A\\A1"), depth.index("A"))

    def test_tree_lists_files_of_any_script(self):
        root = windows_path(self.make_tree())
        self.assertEqual(sorted(self.lines("tree", root, "--files")),
                         sorted(["r.txt", "A\\a.txt", "A\\A1\\ÄЖ山.txt"]))
        self.assertEqual(self.lines("tree", root, "--files", "--pattern", "a*"), ["A\\a.txt"])
        self.assertEqual(self.lines("tree", root, "--files", "--filter", "0x10", "--totals"), ["4 files, 0 bytes"])
        self.assertEqual(self.lines("tree", root, "--files", "--totals"), ["3 files, 9 bytes"])

    def test_tree_shows_progress_and_logs_its_time_when_asked(self):
        root = self.make_tree()
        log = self.folder / "walk.log"
        for _ in range(2):
            done = self.run_host("tree", windows_path(root), "--totals", "--progress", "--timer", windows_path(log))
            self.assertEqual((done.returncode, done.stdout), (0, "5 folders\n"))
            self.assertEqual(done.stderr, "\n[" + "#" * 40 + "] 5 of 5\n")  # the carriage return reads as a line feed
        self.assertRegex(log.read_text(), r"\A(\nTimer in tree: \d+\.\d{3} sec\n){2}\Z")

    def test_points_are_checked_counted_walked_and_rewritten(self):
        for arguments, expected in (
                (["1-3,7"], ["1-3,7"]),
                (["5,1-4,1"], ["1-5"]),
                (["5,1-4,1", "--unsorted"], ["5,1-4,1"]),
                (["5,1-4,1", "--remove", "2-3"], ["1,4-5"]),
                (["5,1-4,1", "--remove", "2-3", "--unsorted"], ["5,1,4,1"]),
                (["3,1,2,2,3", "--unique", "--unsorted"], ["3,1-2"]),
                (["3-1,9", "--walk"], ["3", "2", "1", "9"]),
                (["3-1,9", "--ranges"], ["3 1", "9 9"]),
                (["3-1,9", "--count"], ["4"]),
                (["1-2000000000", "--count"], ["2000000000"]),
                (["3,1,2,2", "--unique"], ["1-3"]),
                (["3,1,2", "--remove", "", "--walk"], ["1", "2", "3"]),
                (["5,1-4", "--remove", "2", "--count"], ["4"]),
                (["5,1-4", "--remove", "2", "--ranges"], ["1 1", "3 5"]),
                (["", "--valid"], ["valid"]),
                (["20-12", "--valid"], ["valid"])):
            with self.subTest(arguments):
                self.assertEqual(self.lines("points", *arguments), expected)

    def test_points_refuses_what_is_not_a_list(self):
        self.assert_fails(1, "\"1;2\" is not a point list", "points", "1;2")
        self.assert_fails(1, "\"x\" is not a point list", "points", "1", "--remove", "x")
        self.assert_fails(1, "--valid checks the list as it is", "points", "1", "--remove", "2", "--valid")

    def test_sort_puts_lines_in_natural_order(self):
        names = self.folder / "names.txt"
        names.write_text("\ufefffile10\r\nfile2\nФайл 12\nФайл 3\nFile3\n", encoding="utf-8")
        self.assertEqual(self.lines("sort", windows_path(names)), ["File3", "file2", "file10", "Файл 3", "Файл 12"])
        self.assertEqual(self.lines("sort", windows_path(names), "--ignore-case"),
                         ["file2", "File3", "file10", "Файл 3", "Файл 12"])
        self.assert_fails(1, "cannot be read", "sort", windows_path(self.folder / "missing.txt"))

    def test_angle_converts_between_degrees_radians_and_dms(self):
        for value, source, target, expected in (
                ("180", "deg", "rad", "3.14159265358979"), ("3.141592653589793", "rad", "deg", "180"),
                ("12.3045", "dms", "deg", "12.5125"), ("12.5125", "deg", "dms", "12.300075"),
                ("-45", "deg", "deg", "-45"), ("90", "dms", "rad", "1.5707963267949")):
            with self.subTest((value, source, target)):
                self.assertEqual(self.lines("angle", "--from", source, "--to", target, "--", value), [expected])

    def test_copy_move_and_remove_whole_trees(self):
        root = self.make_tree()
        listed = sorted(str(path.relative_to(root)) for path in root.rglob("*"))
        copy, moved = self.folder / "copy", self.folder / "moved"
        self.assertEqual(self.lines("copy", windows_path(root), windows_path(copy)), [])
        self.assertEqual(sorted(str(path.relative_to(copy)) for path in copy.rglob("*")), listed)
        self.assertEqual((copy / "A/a.txt").read_text(), "123")
        self.assertEqual(self.lines("move", windows_path(copy), windows_path(moved)), [])
        self.assertFalse(copy.exists())
        self.assertEqual(sorted(str(path.relative_to(moved)) for path in moved.rglob("*")), listed)
        self.assertEqual(self.lines("remove", windows_path(moved)), [])
        self.assertFalse(moved.exists())

    def test_copy_and_remove_single_files(self):
        source, target = self.folder / "a.txt", self.folder / "b.txt"
        source.write_text("x")
        self.assertEqual(self.lines("copy", windows_path(source), windows_path(target)), [])
        self.assertEqual(target.read_text(), "x")
        self.assert_fails(1, "cannot be copied", "copy", windows_path(source), windows_path(target), "--fail-if-exists")
        self.assertEqual(self.lines("remove", windows_path(target)), [])
        self.assertFalse(target.exists())

    def test_a_failed_move_leaves_the_source(self):
        root = self.make_tree()
        target = self.folder / "target"
        (target / "A").mkdir(parents=True)
        (target / "A/a.txt").write_text("other")
        self.assert_fails(1, "cannot be copied", "move", windows_path(root), windows_path(target), "--fail-if-exists")
        self.assertTrue((root / "A/a.txt").exists())
        self.assertEqual((target / "A/a.txt").read_text(), "other")

    def test_what_does_not_exist_is_named(self):
        for command in (["copy", "Z:\\missing", "Z:\\x"], ["move", "Z:\\missing", "Z:\\x"], ["remove", "Z:\\missing"]):
            with self.subTest(command):
                self.assert_fails(1, "\"Z:\\missing\" does not exist", *command)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
