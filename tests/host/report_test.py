#!/usr/bin/env python3
"""Runs the commands of the console host as a program does, that reads what they report: report_test.py RUNNER PROGRAM"""
import json
import os
import pty
import signal
import subprocess
import sys
import tempfile
import unittest

import captured
import host_test
import json_schema
from held import PATIENCE, wait_until
from host_test import PROGRAM, RUNNER, windows_path

# Cyrillic, Chinese, a combining accent after its letter, a letter beyond the 16-bit plane, Arabic from right to left.
NAMES = ["Съёмка.txt", "測量.txt", "e\u0301tude.txt", "\U00020BB7.txt", "مسح.txt"]

SCHEMAS = json_schema.load()


def usage_commands(lines):
    """The names in the list of commands of the main help."""
    listed = lines[lines.index("Subcommands:") + 1:]
    return [line.split()[0] for line in listed[:listed.index("")] if line[2] != " "]


class ReportTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def report(self, *arguments):
        report = json.loads("\n".join(self.lines(*arguments, "--json")))
        self.assert_as_documented(arguments, report)
        return report

    def assert_as_documented(self, arguments, report):
        """The reports of LandXML files have their own section in the manual."""
        if arguments[0] != "landxml":
            self.assertEqual(json_schema.problems(report, SCHEMAS[arguments[0]]), [])

    def test_every_command_that_reports_is_documented(self):
        reporting = {name for name in usage_commands(self.lines("--help"))
                     if any("--json" in line for line in self.lines(name, "--help"))}
        self.assertEqual(reporting, set(SCHEMAS))

    def test_the_check_of_reports_finds_what_differs(self):
        schema = SCHEMAS["tree"]
        good = {"root": "a", "count": 1, "files": ["x"]}
        self.assertEqual(json_schema.problems(good, schema), [])
        for bad in ({}, [], {**good, "count": "1"}, {**good, "count": -1}, {**good, "files": [1]}, {**good, "more": 1},
                    {**good, "folders": []}, {**good, "count": True}, {"root": "a"}):
            with self.subTest(bad):
                self.assertNotEqual(json_schema.problems(bad, schema), [])

    def test_folders(self):
        folders = self.report("folders")
        self.assertEqual(list(folders), ["program", "programFolder", "windows", "system", "temporary", "current", "desktop",
                                         "favorites", "temporaryFile"])
        self.assertEqual(folders["program"], windows_path(os.path.realpath(PROGRAM)))

    def test_tree(self):
        root = windows_path(self.folder)
        (self.folder / "A").mkdir()
        (self.folder / "A/a.txt").write_text("123")
        self.assertEqual(self.report("tree", root), {"root": root, "count": 2, "folders": [".", "A"]})
        self.assertEqual(self.report("tree", root, "--files"), {"root": root, "count": 1, "files": ["A\\a.txt"]})
        self.assertEqual(self.report("tree", root, "--files", "--totals"), {"root": root, "count": 1, "bytes": 3})
        self.assertEqual(self.report("tree", root, "--totals"), {"root": root, "count": 2})

    def test_split(self):
        self.assertEqual(self.report("split", "C:/a//b.txt"),
                         {"drive": "C:", "directory": "/a//", "title": "b", "extension": ".txt",
                          "components": ["C:", "a", "b.txt"], "normal": "C:\\a\\b.txt"})
        self.assertEqual(self.report("split", "C:/a//b.txt", "--relative-to", "C:\\x\\")["relative"], "..\\a\\b.txt")

    def test_points(self):
        for options, expected in ((["--valid"], {"valid": True}), (["--count"], {"count": 4}),
                                  (["--walk"], {"points": [3, 2, 1, 9]}),
                                  (["--ranges"], {"ranges": [{"first": 3, "last": 1}, {"first": 9, "last": 9}]}),
                                  ([], {"list": "1-3,9"})):
            with self.subTest(options):
                self.assertEqual(self.report("points", "3-1,9", *options), expected)
        self.assertEqual(json.loads(self.run_host("points", "1;2", "--valid", "--json").stdout), {"valid": False})

    def test_points_as_comma_separated_values(self):
        for options, expected in (([], ["point", "3", "2", "1", "9"]), (["--walk"], ["point", "3", "2", "1", "9"]),
                                  (["--ranges"], ["first,last", "3,1", "9,9"]),
                                  (["--remove", "2", "--ranges"], ["first,last", "1,1", "3,3", "9,9"])):
            with self.subTest(options):
                self.assertEqual(self.lines("points", "3-1,9", "--csv", *options), expected)
        for option in ("--count", "--valid", "--json"):
            with self.subTest(option):
                self.assert_fails(2, "", "points", "1", "--csv", option)

    def test_sort_and_angle(self):
        file = self.folder / "names.txt"
        file.write_text("b10\nb2\n")
        self.assertEqual(self.report("sort", windows_path(file)), {"lines": ["b2", "b10"]})
        self.assertEqual(self.report("angle", "180", "--from", "deg", "--to", "deg"), {"value": 180, "unit": "deg"})
        self.assertAlmostEqual(self.report("angle", "180", "--from", "deg", "--to", "rad")["value"], 3.141592653589793, 15)

    def test_landxml_points(self):
        file = self.folder / "a.xml"
        file.write_text('<LandXML version="1.2"><CgPoints><CgPoint name="1" code="EP">0.1 2 3</CgPoint>'
                        '<CgPoint name="2">4 5</CgPoint></CgPoints></LandXML>')
        self.assertEqual(self.report("landxml", "points", windows_path(file), "--points", "1-9"), {"points": [
            {"number": 1, "name": "1", "northing": 0.1, "easting": 2, "elevation": 3, "code": "EP", "desc": None},
            {"number": 2, "name": "2", "northing": 4, "easting": 5, "elevation": None, "code": None, "desc": None}]})
        self.assert_fails(2, "", "landxml", "points", windows_path(file), "--points", "1", "--csv", "--json")

    def test_modified_prints_an_object_a_line(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        path = windows_path(file)
        answers = [json.loads(line) for line in self.lines("modified", path, "--pause", "0", "--json")]
        self.assertEqual(answers, [{"question": 1, "path": path, "modified": True},
                                   {"question": 2, "path": path, "modified": False}])
        for answer in answers:
            self.assert_as_documented(["modified"], answer)

    def test_watch_prints_an_object_a_line(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        path = windows_path(file)
        watch = captured.Running([RUNNER, PROGRAM, "watch", path, "--events", "size", "--json"])
        self.addCleanup(watch.end)

        def is_seen():
            with file.open("a") as stream:
                stream.write("x")
            return watch.lines()

        wait_until(is_seen, "the watch reports an event", pause=0.2)
        watch.process.send_signal(signal.SIGINT)
        self.assertEqual(watch.process.wait(PATIENCE), 0)
        for event in (json.loads(line) for line in watch.lines()):
            self.assertEqual((list(event), event["event"], event["path"]), (["time", "event", "path"], "size", path))
            self.assertRegex(event["time"], r"\A\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\Z")
            self.assert_as_documented(["watch"], event)

    def test_names_of_any_script_come_through(self):
        for name in NAMES:
            (self.folder / name).write_text(name, encoding="utf-8")
        self.assertEqual(sorted(self.lines("tree", windows_path(self.folder), "--files")), sorted(NAMES))
        self.assertEqual(sorted(self.report("tree", windows_path(self.folder), "--files")["files"]), sorted(NAMES))
        for name in NAMES:
            with self.subTest(name):
                self.assertEqual(self.report("split", "C:\\" + name)["title"], name[:-4])
                self.assertEqual(self.lines("sort", windows_path(self.folder / name)), [name])
                self.assert_fails(1, f'{name}x" does not exist', "remove", windows_path(self.folder / name) + "x")
                target = self.folder / ("copy " + name)
                self.assertEqual(self.lines("copy", windows_path(self.folder / name), windows_path(target)), [])
                self.assertEqual(target.read_text(encoding="utf-8"), name)

    def test_landxml_names_of_any_script_come_through(self):
        (self.folder / "p.csv").write_text("1,2,3,4,A\n")
        for name in NAMES:
            with self.subTest(name):
                source, target = windows_path(self.folder / "p.csv"), windows_path(self.folder / name)
                self.assertEqual(self.lines("landxml", "export", source, target), [])
                self.assertEqual(self.report("landxml", "info", target)["project"], name[:-4])
                self.assertIn(f'project       "{name}"', self.lines("landxml", "export", source, target, "--project", name) +
                              self.lines("landxml", "info", target))

    def test_a_pipe_gets_no_progress_bar(self):
        (self.folder / "a.txt").write_text("1")
        copy = windows_path(self.folder / "copy")
        for arguments in (["tree", windows_path(self.folder)], ["copy", windows_path(self.folder), "C:\\quon-copy-test"],
                          ["remove", "C:\\quon-copy-test"], ["copy", windows_path(self.folder / "a.txt"), copy]):
            with self.subTest(arguments):
                self.assertEqual(self.run_host(*arguments).stderr, "")

    def test_a_terminal_gets_a_progress_bar_unless_the_output_goes_there_too(self):
        (self.folder / "A").mkdir()
        for elsewhere, count in ((True, 40), (False, 0)):
            with self.subTest(elsewhere), tempfile.TemporaryFile() as file:
                master, terminal = pty.openpty()
                done = subprocess.run([RUNNER, PROGRAM, "tree", windows_path(self.folder), "--totals"],
                                      stdin=subprocess.DEVNULL, stdout=file if elsewhere else terminal, stderr=terminal,
                                      timeout=PATIENCE)
                shown = os.read(master, 65536).decode() if elsewhere else self.drain(master)
                os.close(terminal)
                os.close(master)
                self.assertEqual(done.returncode, 0)
                self.assertEqual(shown.count("#"), count, shown)

    def drain(self, master):
        """What was written to a terminal; nothing when that is so."""
        os.set_blocking(master, False)
        try:
            return os.read(master, 65536).decode()
        except BlockingIOError:
            return ""

    def test_copy_move_and_remove_show_progress_when_asked(self):
        root, copy, moved = (self.folder / name for name in ("root", "copy", "moved"))
        root.mkdir()
        for index in range(3):
            (root / f"{index}.txt").write_text("1")
        for arguments in (["copy", root, copy], ["move", copy, moved], ["remove", moved]):
            with self.subTest(arguments[0]):
                done = self.run_host(arguments[0], *map(windows_path, arguments[1:]), "--progress")
                self.assertEqual((done.returncode, done.stdout), (0, ""))
                self.assertTrue(done.stderr.endswith("] 3 of 3\n"), done.stderr)

    def test_the_options_are_spelled_alike(self):
        texts = {}
        for command in ("folders", "tree", "split", "points", "sort", "angle", "watch", "modified", "browse",
                        "landxml info", "landxml points"):
            done = self.lines(*command.split(), "--help")
            self.assertTrue(any("--json" in line for line in done), command)
            for line in done:
                option, _, text = line.strip().partition(" ")
                if option in ("--progress",):
                    texts.setdefault(option, set()).add(text.strip())
        self.assertTrue(all(len(told) == 1 for told in texts.values()), texts)

    def test_help_tells_the_exit_codes(self):
        text = "\n".join(self.lines("--help"))
        for words in ("0  done", "1  the work", "2  the command line"):
            self.assertIn(words, text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
