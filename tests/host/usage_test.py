#!/usr/bin/env python3
"""Mistypes command lines of the console host, and reads its help: usage_test.py RUNNER PROGRAM"""
import re
import sys
import unittest

import captured
import host_test
from host_test import PROGRAM, RUNNER

COMMANDS = ("folders", "tree", "copy", "move", "remove", "split", "points", "sort", "angle", "landxml", "watch", "modified",
            "browse")


class UsageTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def test_what_is_wrong_is_named_with_the_nearest_right_name(self):
        top = ' (see "quonhost --help")\n'

        def help_of(command):
            return f' (see "quonhost {command} --help")\n'

        for arguments, error in (
                ([], f"a command is missing: {', '.join(COMMANDS)}" + top),
                (["nonsense"], '"nonsense" is not a command of quonhost' + top),
                (["tre", "x"], '"tre" is not a command of quonhost; did you mean "tree"?' + top),
                (["remvoe", "x"], '"remvoe" is not a command of quonhost; did you mean "remove"?' + top),
                (["--verison"], '"--verison" is not an option of quonhost; did you mean "--version"?' + top),
                (["landxml"], "a command is missing: export, info, points, plot" + help_of("landxml")),
                (["landxml", "inof", "x"], '"inof" is not a command of landxml; did you mean "info"?' + help_of("landxml")),
                (["folders", "more"], '"more" is one argument too many for folders' + help_of("folders")),
                (["tree"], "folder is missing" + help_of("tree")),
                (["tree", "x", "--depthfirst"],
                 '"--depthfirst" is not an option of tree; did you mean "--depth-first"?' + help_of("tree")),
                (["copy", "x"], "destination is missing" + help_of("copy")),
                (["points", "1", "--count", "--walk"],
                 "give only one of --valid,--count,--walk,--ranges" + help_of("points")),
                (["points", "1", "--uniqe"], '"--uniqe" is not an option of points; did you mean "--unique"?' +
                 help_of("points")),
                (["points", "1", "--csv", "--json"], "--csv does not go with --json" + help_of("points")),
                (["points", "1", "--remove"], "--remove needs a value" + help_of("points")),
                (["angle", "1", "--from", "deg", "--to", "dge"],
                 '--to: "dge" is not one of deg, rad, dms; did you mean "deg"?' + help_of("angle")),
                (["watch", "x", "--events", "size,wriet"],
                 '--events: "wriet" is not one of name, folder, attributes, size, write, access; did you mean "write"?' +
                 help_of("watch"))):
            with self.subTest(arguments):
                done = self.run_host(*arguments)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (2, "", "quonhost: " + error))

    def test_numbers_are_finite_and_in_their_range(self):
        for text, problem in (("nan", "is not a number"), ("-nan", "is not a number"), ("inf", "is not a number"),
                              ("-inf", "is not a number"), ("1e999", "is not a number"), ("0x10", "is not a number"),
                              ("", "is not a number"), ("12a", "is not a number"), ("1,5", "is not a number"),
                              ("-1", "is not from 0 to 1000000000"), ("1e10", "is not from 0 to 1000000000")):
            for arguments in (["watch", "x", f"--seconds={text}"], ["modified", "x", f"--pause={text}"]):
                with self.subTest(arguments):
                    # An empty value after "=" is none for the parser.
                    self.assert_fails(2, problem if text else "", *arguments)
            if problem == "is not a number":
                with self.subTest(("angle", text)):
                    self.assert_fails(2, problem, "angle", "--from", "deg", "--to", "rad", "--", text)
        for code in ("x", "0x10000", "-1", "1x", "nan", " 1"):
            with self.subTest(code):
                self.assert_fails(2, "is not a number from 0 to 0xFFFF", "tree", "x", f"--filter={code}")

    def test_an_angle_that_is_too_large_is_refused(self):
        self.assert_fails(1, "the angle is too large to convert", "angle", "1e308", "--from", "rad", "--to", "deg")

    def test_values_that_look_like_something_else_are_values(self):
        for path in ("/tmp/x.xml", "//server/share/x.xml", "/json", "/?", "[a]", "[a,b]", "{a}", "%a%", "a=b", "-5",
                     "tree", "ä ö.txt", "\U00020BB7"):
            with self.subTest(path):
                title = path.rsplit("/", 1)[-1].removesuffix(".xml").removesuffix(".txt")
                self.assertEqual(self.lines("split", path)[2].split(None, 1)[1:], [title])
        done = captured.run([RUNNER, PROGRAM, "modified", "[a,b]", "[c]", "--pause", "0", "--json"], cwd=self.folder)
        self.assertEqual(re.findall(r"\\\\([^\\]*)\"", done.stdout), ["[a,b]", "[c]"] * 2)

    def test_version_is_that_of_the_project(self):
        self.assertRegex(self.lines("--version")[0], r"\Aquonhost \d+\.\d+\.\d+\Z")

    def test_help_fits_eighty_columns(self):
        for command in ([], *([name] for name in COMMANDS), ["landxml", "export"], ["landxml", "info"],
                        ["landxml", "points"], ["landxml", "plot"]):
            with self.subTest(command):
                lines = self.lines(*command, "--help")
                self.assertEqual([line for line in lines if len(line) > 80], [])
                self.assertTrue(any("Usage: " in line for line in lines))
                self.assertEqual(any("Exit codes:" in line for line in lines), not command)

    def test_one_thing_is_singular(self):
        (self.folder / "a.txt").write_text("x")
        folder = host_test.windows_path(self.folder)
        self.assertEqual(self.lines("tree", folder, "--totals"), ["1 folder"])
        self.assertEqual(self.lines("tree", folder, "--totals", "--files"), ["1 file, 1 byte"])
        (self.folder / "a.txt").unlink()
        self.assertEqual(self.lines("tree", folder, "--totals", "--files"), ["0 files, 0 bytes"])


class PointListTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def test_no_point_is_lost_to_a_comparison(self):
        for arguments in (["3,<5,7", "--unique", "--unsorted"], ["3,<5,7", "--unique"], ["3,<5,7"],
                          ["3,<5,7", "--unsorted"], ["3, <5 ,7", "--remove", "3"], ["3,<5,7", "--unique", "--count"]):
            with self.subTest(arguments):
                done = self.run_host("points", *arguments)
                self.assertEqual((done.returncode, done.stdout, done.stderr),
                                 (1, "", f'quonhost: "{arguments[0]}" contains a comparison, which cannot be rewritten: '
                                  'item 2, "<5"\n'))
        self.assert_fails(1, '">=5" contains a comparison, which names no points to remove', "points", "1-9", "--remove",
                          ">=5")

    def test_a_comparison_counts_as_the_library_reads_it(self):
        self.assertEqual(self.lines("points", "3,<5,7", "--walk"), ["3", "0", "7"])
        self.assertEqual(self.lines("points", "3,<5,7", "--count"), ["3"])
        self.assertEqual(self.lines("points", "3,<5,7", "--valid"), ["valid"])

    def test_the_item_that_is_not_valid_is_named(self):
        for text, place in (("abc", ""), ("1;2", ""), ("1-5, 9, 5-", ': item 3, "5-"'), (",,1,0", ': item 2, "0"'),
                            ("1-2-3,7", ': item 1, "1-2-3"'), ("12 34,5", ': item 1, "12 34"'), ("=5", "")):
            for option in ([], ["--count"], ["--json"]):
                with self.subTest((text, option)):
                    done = self.run_host("points", text, *option)
                    self.assertEqual((done.returncode, done.stdout, done.stderr),
                                     (1, "", f'quonhost: "{text}" is not a point list{place}\n'))

    def test_validity_is_printed_and_the_exit_code(self):
        for text, printed, code in (("1-5", "valid\n", 0), ("abc", "invalid\n", 1), ("1,0", "invalid\n", 1)):
            with self.subTest(text):
                done = self.run_host("points", text, "--valid")
                self.assertEqual((done.returncode, done.stdout), (code, printed))
                self.assertEqual("is not a point list" in done.stderr, code == 1)

    def test_a_long_list_is_shortened_in_its_error(self):
        done = self.run_host("points", "1," * 5000 + "x")
        self.assertEqual(done.stderr, 'quonhost: "' + "1," * 30 + '..." is not a point list: item 5001, "x"\n')

    def test_a_list_of_ten_thousand_items_comes_back_whole(self):
        points = list(range(1, 20001, 2))
        text = ",".join(map(str, reversed(points)))
        self.assertEqual(self.lines("points", text[:30000].rpartition(",")[0], "--count"),
                         [str(text[:30000].count(","))])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
