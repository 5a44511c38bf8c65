#!/usr/bin/env python3
"""Gives the commands of the console host disks that are full, targets that are their sources and files that refuse:
failure_test.py RUNNER PROGRAM"""
import itertools
import os
import sys
import tempfile
import unittest
from pathlib import Path

import captured
import host_test
from held import wait_until
from host_test import PROGRAM, RUNNER, windows_path

# A sentence of the system: Windows and Wine have different ones.
REASON = r"[A-Z][^:]*\.\n\Z"


class FailureTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails
    make_tree = host_test.HostTest.make_tree

    def assert_refused(self, pattern, *arguments, cwd=None):
        """The command fails with one line that matches, and prints nothing."""
        done = captured.run([RUNNER, PROGRAM, *arguments], cwd=cwd)
        self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (1, "", 1), done)
        self.assertRegex(done.stderr, r"\Aquonhost: " + pattern)

    def contents(self):
        return {str(path.relative_to(self.folder)): path.read_bytes() if path.is_file() else None
                for path in self.folder.rglob("*")}

    def assert_leaves_everything(self, pattern, *arguments, cwd=None):
        before = self.contents()
        self.assert_refused(pattern, *arguments, cwd=cwd)
        self.assertEqual(self.contents(), before)


class OutputTest(FailureTest):
    def assert_output_fails(self, arguments, output):
        done = captured.run([RUNNER, PROGRAM, *arguments], stdout=output)
        self.assertEqual(done.returncode, 1, done)
        self.assertRegex(done.stderr, r"\Aquonhost: the output cannot be written: " + REASON)

    def test_output_onto_a_full_disk_is_a_failure(self):
        root = windows_path(self.make_tree())
        names = self.folder / "names.txt"
        names.write_text("b\na\n")
        sample = Path(__file__).resolve().parents[2] / "host/samples/points.csv"
        survey = windows_path(self.folder / "survey.xml")
        self.lines("landxml", "export", windows_path(sample), survey)
        forms = {("--help",): [[]], ("--version",): [[]], ("tree", "--help"): [[]],
                 ("folders",): [[], ["--json"]],
                 ("tree", root): [[], ["--json"], ["--totals"], ["--files"]],
                 ("split", "C:\\a.txt"): [[], ["--json"]],
                 ("points", "1-5,9"): [[], ["--json"], ["--csv"], ["--count"], ["--walk"], ["--ranges", "--csv"],
                                       ["--valid"]],
                 ("points", "1-60000"): [["--walk"]],  # more than is collected before it is written
                 ("sort", windows_path(names)): [[], ["--json"]],
                 ("angle", "1", "--from", "deg", "--to", "rad"): [[], ["--json"]],
                 ("modified", windows_path(names), "--pause", "0"): [[], ["--json"]],
                 ("landxml", "info", survey): [[], ["--json"]],
                 ("landxml", "points", survey, "--points", "1-9"): [[], ["--csv"], ["--json"]]}
        with open("/dev/full", "wb") as full:
            for command, options in forms.items():
                for option in options:
                    with self.subTest([*command, *option]):
                        self.assert_output_fails([*command, *option], full)

    def test_output_into_a_closed_pipe_is_a_failure(self):
        reading, writing = os.pipe()
        os.close(reading)
        self.addCleanup(os.close, writing)
        self.assert_output_fails(["points", "1-60000", "--walk"], writing)

    def test_a_watch_whose_line_cannot_be_written_ends(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        with open("/dev/full", "wb") as full:
            running = captured.Running([RUNNER, PROGRAM, "watch", windows_path(file)], stdout=full)
        self.addCleanup(running.end)
        sizes = itertools.count(100)

        def has_ended():
            file.write_text("x" * next(sizes))
            return running.process.poll() is not None

        wait_until(has_ended, "the watch ends", pause=0.2)
        self.assertEqual(running.process.returncode, 1)
        self.assertRegex(running.errors(), r"\Aquonhost: the output cannot be written: " + REASON)

    def test_what_was_printed_before_a_failure_is_there(self):
        done = self.run_host("points", "1;2", "--valid")
        self.assertEqual((done.returncode, done.stdout), (1, "invalid\n"))


class InputIsKeptTest(FailureTest):
    def test_a_file_is_not_copied_onto_itself(self):
        source = self.folder / "a.txt"
        source.write_text("precious")
        os.link(source, self.folder / "hard.txt")
        os.symlink(source, self.folder / "soft.txt")
        for target in ("a.txt", "A.TXT", ".\\a.txt", "x\\..\\a.txt", "hard.txt", "soft.txt", ".", ".\\",
                       windows_path(source), windows_path(self.folder)):
            with self.subTest(target):
                self.assert_leaves_everything('".*" and ".*" are the same file', "copy", "a.txt", target, cwd=self.folder)

    def test_a_folder_is_not_copied_or_moved_into_itself(self):
        root = self.make_tree()
        os.symlink(root, self.folder / "link")
        for command in ("copy", "move"):
            for target in ("root", "ROOT", "root\\A", "root\\new\\deep", "root\\A\\..\\new", "link", "link\\new"):
                with self.subTest((command, target)):
                    self.assert_leaves_everything('".*root" contains the destination', command, "root", target,
                                                  cwd=self.folder)

    def test_a_folder_is_not_moved_out_over_itself(self):
        inner = self.folder / "a/b"
        (inner / "b").mkdir(parents=True)
        (inner / "x.txt").write_text("outer")
        (inner / "b/x.txt").write_text("inner")
        for command in ("copy", "move"):
            with self.subTest(command):
                self.assert_leaves_everything('"a.b" contains "b", which would be copied into', command, "a\\b", "a",
                                              cwd=self.folder)

    def test_a_folder_is_moved_out_when_nothing_is_in_the_way(self):
        (self.folder / "a/b/c").mkdir(parents=True)
        (self.folder / "a/b/c/x.txt").write_text("x")
        done = captured.run([RUNNER, PROGRAM, "move", "a\\b", "a"], cwd=self.folder)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertEqual(self.contents(), {"a": None, "a/c": None, "a/c/x.txt": b"x"})

    def test_names_that_only_begin_alike_are_different_folders(self):
        root = self.make_tree()
        self.assertEqual(self.lines("copy", windows_path(root), windows_path(self.folder / "root2")), [])
        self.assertEqual((self.folder / "root2/r.txt").read_text(), "12345")


class TransferTest(FailureTest):
    def test_a_file_goes_where_help_says(self):
        source = self.folder / "f.txt"
        source.write_text("x")
        (self.folder / "folder").mkdir()
        for destination, target in (("new\\sub\\g.txt", "new/sub/g.txt"), ("folder", "folder/f.txt"),
                                    ("made\\", "made/f.txt"), ("made/deep/", "made/deep/f.txt"), ("h.txt", "h.txt")):
            with self.subTest(destination):
                done = captured.run([RUNNER, PROGRAM, "copy", "f.txt", destination], cwd=self.folder)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
                self.assertEqual((self.folder / target).read_text(), "x")

    def test_what_refuses_is_named_with_the_reason(self):
        root = self.make_tree()
        file, other = self.folder / "f.txt", self.folder / "other.txt"
        file.write_text("x")
        other.write_text("y")
        for arguments, pattern in (
                (["copy", "f.txt", "root\\r.txt", "--fail-if-exists"],
                 r'"f.txt" cannot be copied to "root.r.txt": ' + REASON),
                (["copy", "f.txt", "other.txt\\g.txt"], r'"other.txt\\?" is not a folder'),
                (["copy", "f.txt", "other.txt\\sub\\g.txt"], r'"other.txt.sub\\?" cannot be made: ' + REASON),
                (["copy", "root", "f.txt"], r'"f.txt\\?" is not a folder'),
                (["copy", "root", "f.txt\\sub"], r'"f.txt.sub\\?" cannot be made: ' + REASON),
                (["move", "root", "f.txt"], r'"f.txt\\?" is not a folder'),
                (["move", "f.txt", "g.txt"], r'"f.txt" is not a folder'),
                (["copy", "", "g.txt"], r'"" does not exist'),
                (["sort", "missing.txt"], r'"missing.txt" cannot be read: ' + REASON),
                (["sort", "root"], r'"root" cannot be read: ' + REASON),
                (["tree", "missing"], r'"missing" cannot be read: ' + REASON),
                (["tree", "f.txt"], r'"f.txt" is not a folder'),
                (["tree", "root", "--timer", "missing\\walk.log"], r'"missing.walk.log" cannot be written: ' + REASON),
                (["tree", "root", "--timer", "root"], r'"root" cannot be written: ' + REASON),
                (["tree", "root", "--totals", "--timer", "Z:\\dev\\full"], r'"Z:.dev.full" cannot be written: ' + REASON)):
            with self.subTest(arguments):
                self.assert_leaves_everything(pattern, *arguments, cwd=self.folder)
        self.assertTrue(root.exists())


class StandardInputTest(FailureTest):
    def with_input(self, data, *arguments):
        with tempfile.TemporaryFile() as file:
            file.write(data)
            file.seek(0)
            return captured.run([RUNNER, PROGRAM, *arguments], stdin=file)

    def test_sort_and_points_read_it(self):
        for data, arguments, expected in (
                (b"file10\nfile2\n", ["sort", "-"], "file2\nfile10\n"),
                (b"\xef\xbb\xbfb\r\na", ["sort", "-"], "a\nb\n"),
                (b"", ["sort", "-"], ""),
                (b"\n\nb\n", ["sort", "-"], "\n\nb\n"),
                (b"5,1-4\r\n20-18\n", ["points", "-"], "1-5,18-20\n"),
                (b"\xef\xbb\xbf7", ["points", "-", "--walk"], "7\n"),
                (b"", ["points", "-", "--count"], "0\n")):
            with self.subTest((data, arguments)):
                done = self.with_input(data, *arguments)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, expected, ""))

    def test_bytes_that_are_not_utf8_are_refused(self):
        for data, line in ((b"a\nb\xe4r\nc\n", 2), (b"\xff\xfea\x00", 1), (b"a\nb\nc\xed\xa0\x80", 3)):
            with self.subTest(data):
                done = self.with_input(data, "sort", "-")
                self.assertEqual((done.returncode, done.stdout, done.stderr),
                                 (1, "", f"quonhost: the standard input line {line} is not UTF-8\n"))


class WatchLimitTest(FailureTest):
    def folders(self, count):
        names = []
        for index in range(count):
            (self.folder / f"f{index}").mkdir()
            (self.folder / f"f{index}/a.txt").touch()
            # A folder counts once, by whatever names it is reached.
            names += [f"f{index}\\a.txt", f"F{index}\\A.TXT"]
        return names

    def test_more_folders_than_can_be_watched_are_refused(self):
        names = self.folders(64)
        self.assert_refused("64 folders are too many to watch: the limit is 63\n", "watch", *names, "--seconds", "0",
                            cwd=self.folder)
        done = captured.run([RUNNER, PROGRAM, "watch", *names[:-2], "--seconds", "0"], cwd=self.folder)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
