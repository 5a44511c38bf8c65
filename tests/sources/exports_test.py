#!/usr/bin/env python3
"""Shows that scripts/exports.py finds what it is there to find: exports_test.py LIST DLL"""
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

LIST, DLL = Path(sys.argv[1]), Path(sys.argv[2])
SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "exports.py"
sys.path.insert(0, str(SCRIPT.parent))
sys.dont_write_bytecode = True
import exports  # noqa: E402

HEAD = "; A list.\nLIBRARY Any.dll\nEXPORTS\n"
NUMBERED_HEAD = "; A list.\n; numbering {}\nLIBRARY Any.dll\nEXPORTS\n"


def entry(name, number, signature="f()", rest=""):
    return f"; {signature}\n    {name} @{number} NONAME{rest}\n"


def run(command, *arguments, **options):
    return subprocess.run([sys.executable, str(SCRIPT), command, *map(str, arguments)],
                          capture_output=True, text=True, **options)


class WithFolder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        self.list = self.folder / "Any.def"

    def assert_passes(self, done, text):
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn(text, done.stdout)

    def assert_fails(self, done, *texts):
        self.assertNotEqual(done.returncode, 0, done.stdout)
        self.assertNotIn("Traceback", done.stderr)
        for text in texts:
            self.assertIn(text, done.stderr)


class TheListItself(unittest.TestCase):
    def faults(self, text):
        return exports.parse_list(HEAD + text)[3]

    def test_a_proper_list_has_no_faults(self):
        numbers, data, retired, faults = exports.parse_list(
            HEAD + entry("a", 100) + entry("b", 101, rest=" DATA") + "; retired @102 c\n" + entry("d", 103))
        self.assertEqual(faults, [])
        self.assertEqual(numbers, {"a": 100, "b": 101, "d": 103})
        self.assertEqual(data, {"a": False, "b": True, "d": False})
        self.assertEqual(retired, {102: "c"})

    def test_each_fault_is_told_with_its_line(self):
        rows = {
            "repeated number": (entry("a", 100) + entry("b", 100), "line 7: number 100 was given twice"),
            "number of a retired symbol": ("; retired @100 a\n" + entry("b", 100), "line 6: number 100 was given twice"),
            "repeated name": (entry("a", 100) + entry("a", 101), "line 7: a stands twice"),
            "number below the first": (entry("a", 99), "line 5: number 99 is below 100"),
            "no signature": ("    a @100 NONAME\n", "line 4: a has no signature above it"),
            "signature of another line": (entry("a", 100) + "    b @101 NONAME\n", "line 6: b has no signature above it"),
            "signature with a gap": ("; f()\n\n    a @100 NONAME\n", "line 6: a has no signature above it"),
            "exported by name": ("; f()\n    a @100\n", "line 5 is no export: a @100"),
            "no number": ("; f()\n    a NONAME\n", "line 5 is no export: a NONAME"),
            "number that is none": ("; f()\n    a @1x0 NONAME\n", "line 5 is no export: a @1x0 NONAME"),
            "words after the entry": (entry("a", 100, rest=" PRIVATE"), "line 5 is no export: a @100 NONAME PRIVATE"),
            "entry at the margin": ("; f()\na @100 NONAME\n", "line 5 is no export: a @100 NONAME"),
        }
        for what, (text, fault) in rows.items():
            with self.subTest(what):
                self.assertEqual(self.faults(text), [fault])


class WithRepository(WithFolder):
    def git(self, *arguments):
        return subprocess.run(["git", "-C", str(self.folder), "-c", "user.name=n", "-c", "user.email=e@example.org",
                               "-c", "commit.gpgsign=false", *arguments],
                              check=True, capture_output=True, text=True).stdout

    def commit(self, text, head=HEAD):
        self.list.write_text(head + text)
        self.git("add", self.list.name)
        self.git("commit", "-m", "A list")

    def history(self, text, *options, head=HEAD):
        self.list.write_text(head + text)
        return run("history", self.list, *options)

    def setUp(self):
        super().setUp()
        self.git("init")


class History(WithRepository):
    def test_additions_and_retirements_keep_the_numbers(self):
        self.commit(entry("a", 100) + entry("b", 101))
        self.commit(entry("a", 100) + entry("b", 101) + entry("c", 102))
        self.assert_passes(self.history("; retired @100 a\n" + entry("b", 101) + entry("c", 102) + entry("d", 103)),
                           "the numbers of 2 committed lists")

    def test_a_changed_number_is_a_fault(self):
        self.commit(entry("a", 100) + entry("b", 101))
        self.assert_fails(self.history(entry("b", 100) + entry("a", 101)),
                          "gave number 100 to a; now it means b", "gave number 101 to b; now it means a")

    def test_a_dropped_symbol_is_a_fault_also_when_a_later_commit_dropped_it(self):
        self.commit(entry("a", 100) + entry("b", 101))
        self.assert_fails(self.history(entry("a", 100)), "gave number 101 to b; now it means nothing")
        self.commit(entry("a", 100))
        self.assert_fails(self.history(entry("a", 100)), "gave number 101 to b; now it means nothing")

    def test_a_number_retired_under_another_name_is_a_fault(self):
        self.commit(entry("a", 100))
        self.assert_fails(self.history("; retired @100 b\n"), "gave number 100 to a; now it means b")

    def test_a_symbol_of_a_release_goes_in_a_later_major_version_only(self):
        self.commit(entry("a", 100) + entry("b", 101))
        retired = "; retired @100 a\n" + entry("b", 101)
        for release, version, passes in (("1.2.0", "1.3.0", False), ("1.2.0", "1.2.1", False), ("1.2.0", "2.0.0", True),
                                         ("0.1.0", "0.1.7", False), ("0.1.0", "0.2.0", True), ("0.9.0", "1.0.0", True)):
            with self.subTest(release=release, version=version):
                self.git("tag", "v" + release)
                done = self.history(retired, "--version", version)
                if passes:
                    self.assert_passes(done, "still mean the same")
                else:
                    self.assert_fails(done, f"a (number 100) is in release v{release} and retired in {version}: "
                                            "that takes a new major version")
                self.git("tag", "-d", "v" + release)
        self.assert_passes(self.history(retired, "--version", "1.3.0"), "still mean the same")

    def test_numbers_restart_with_a_new_numbering_and_bind_from_there(self):
        self.commit(entry("a", 100) + entry("b", 101))
        first = NUMBERED_HEAD.format(1)
        restarted = entry("b", 100) + entry("c", 101)
        self.assert_fails(self.history(restarted), "gave number 100 to a; now it means b")
        self.assert_passes(self.history(restarted, head=first), "the numbers of 0 committed lists")
        self.commit(restarted, first)
        self.assert_passes(self.history(restarted + entry("d", 102), head=first), "the numbers of 1 committed lists")
        self.assert_fails(self.history(entry("c", 101), head=first), "gave number 100 to b; now it means nothing")

    def test_a_numbering_that_comes_back_is_compared_with_what_it_was(self):
        self.commit(entry("a", 100), NUMBERED_HEAD.format(1))
        self.commit(entry("b", 100), NUMBERED_HEAD.format(2))
        self.assert_fails(self.history(entry("b", 100), head=NUMBERED_HEAD.format(1)),
                          "gave number 100 to a; now it means b")

    def test_numbers_of_a_release_do_not_restart(self):
        self.commit(entry("a", 100), NUMBERED_HEAD.format(1))
        self.git("tag", "v0.1.0")
        self.assert_fails(self.history(entry("b", 100), head=NUMBERED_HEAD.format(2)),
                          "the list has numbering 2, but release v0.1.0 has numbering 1")
        self.assert_fails(self.history(entry("b", 100)), "the list has numbering 0, but release v0.1.0 has numbering 1")

    def test_names_of_either_compiler_are_compared(self):
        self.commit(entry("??0Path@@QEAA@XZ", 100, "public: __cdecl Path::Path(void)"))
        self.assert_fails(self.history(entry("??1Path@@UEAA@XZ", 100)),
                          "gave number 100 to ??0Path@@QEAA@XZ; now it means ??1Path@@UEAA@XZ")
        self.assert_passes(self.history("; retired @100 ??0Path@@QEAA@XZ\n" + entry("??1Path@@UEAA@XZ", 101)),
                           "the numbers of 1 committed lists")

    def test_a_faulty_list_is_a_fault(self):
        self.commit(entry("a", 100))
        self.assert_fails(self.history(entry("a", 100) + entry("b", 100)), "was given twice")

    def test_a_repository_without_a_commit_is_a_fault(self):
        self.assert_fails(self.history(entry("a", 100)), "git log failed")

    def test_a_list_that_was_away_for_a_while_is_compared_all_the_same(self):
        self.commit(entry("a", 100))
        self.git("rm", self.list.name)
        self.git("commit", "-m", "No list")
        self.commit(entry("b", 101))
        self.assert_fails(self.history(entry("b", 101)), "gave number 100 to a; now it means nothing")
        self.assert_passes(self.history(entry("a", 100) + entry("b", 101)), "still mean the same")

    def test_a_commit_that_cannot_be_read_is_a_fault(self):
        self.commit(entry("a", 100))
        for stored in (self.folder / ".git" / "objects").glob("??/*"):
            stored.unlink()
        self.assert_fails(self.history(entry("a", 100)), "git log failed")

    def test_a_list_that_cannot_be_read_is_a_fault(self):
        self.commit(entry("a", 100))
        blob = self.git("rev-parse", "HEAD:./" + self.list.name).strip()
        (self.folder / ".git" / "objects" / blob[:2] / blob[2:]).unlink()
        self.assert_fails(self.history(entry("a", 100)), "git show failed")


class Renumber(WithRepository):
    def renumber(self, objects, head=NUMBERED_HEAD.format(3)):
        self.list.write_text(head + entry("old", 170))
        build = self.folder / "build"
        build.mkdir(exist_ok=True)
        for configuration, paths in objects.items():
            (build / f"export-objects-{configuration}.txt").write_text("".join(f"{path}\n" for path in paths))
        return run("renumber", self.list, build)

    def object(self):
        source, obj = self.folder / "any.cpp", self.folder / "any.obj"
        source.write_text("__declspec(dllexport) int first() { return 1; }\n"
                          "__declspec(dllexport) extern const int second = 2;\nint third() { return 3; }\n")
        subprocess.run([exports.TOOLS + "g++-posix", "-c", source, "-o", obj], check=True)
        return obj

    def test_all_exports_get_numbers_without_gaps_and_the_restart_is_counted(self):
        self.assert_passes(self.renumber({"Debug": [self.object()], "Release": [self.folder / "missing.obj"]}),
                           "2 symbols are numbered from 100 on")
        text = self.list.read_text()
        self.assertEqual(exports.parse_list(text),
                         ({"_Z5firstv": 100, "second": 101}, {"_Z5firstv": False, "second": True}, {}, []))
        self.assertEqual(exports.numbering(text), 4)

    def test_a_release_makes_the_numbers_final(self):
        self.commit(entry("old", 170))
        self.git("tag", "v0.1.0")
        self.assert_fails(self.renumber({"Debug": [self.object()]}), "the numbers bind since release v0.1.0")
        self.assertIn("old @170", self.list.read_text())

    def test_objects_that_are_not_there_or_not_unique_are_a_fault(self):
        obj = self.object()
        self.assert_fails(self.renumber({"Debug": [self.folder / "missing.obj"]}), "0 of the 1 configurations")
        self.assert_fails(self.renumber({"Debug": [obj], "Release": [obj]}), "2 of the 2 configurations")
        self.assertIn("old @170", self.list.read_text())

    def test_a_list_without_a_numbering_is_a_fault(self):
        self.assert_fails(self.renumber({"Debug": [self.object()]}, HEAD), 'has no line "; numbering N"')


class NoHistory(WithFolder):
    def test_outside_a_repository_there_is_nothing_to_compare_with(self):
        self.list.write_text(HEAD + entry("a", 100))
        self.assert_passes(run("history", self.list), "no history here")

    def test_without_git_the_check_fails(self):
        self.list.write_text(HEAD + entry("a", 100))
        self.assert_fails(run("history", self.list, env={"PATH": str(self.folder)}), "git cannot be run")


class Library(WithFolder):
    def check(self, text):
        self.list.write_text(text)
        return run("check", self.list, DLL)

    def setUp(self):
        super().setUp()
        self.text = LIST.read_text()
        numbers = exports.parse_list(self.text)[0]
        self.assertGreater(len(numbers), 10)
        # Two functions of different addresses: those of a class's constructor may share one.
        self.first = next(name for name in numbers if name.startswith("_ZN8QuonPath6Append"))
        self.second = next(name for name in numbers if name.startswith("_ZN8QuonPath9Normalize"))
        self.numbers = numbers

    def test_the_true_list_passes(self):
        self.assert_passes(self.check(self.text), f"{len(self.numbers)} exports")

    def test_symbols_that_changed_places_are_found(self):
        first, second = self.numbers[self.first], self.numbers[self.second]
        text = self.text.replace(f" @{first} ", " @#1 ").replace(f" @{second} ", f" @{first} ")
        self.assert_fails(self.check(text.replace(" @#1 ", f" @{second} ")),
                          f"number {first} of the DLL is not {self.second}",
                          f"number {second} of the DLL is not {self.first}")

    def test_a_symbol_moved_to_a_new_number_is_found(self):
        old, new = self.numbers[self.first], max(self.numbers.values()) + 1
        self.assert_fails(self.check(self.text.replace(f" @{old} ", f" @{new} ")),
                          f"{self.first} is listed with {new}, but the DLL has no such export",
                          f"the DLL exports number {old}, which is not in the list")

    def test_a_symbol_missing_from_the_list_is_found(self):
        text, count = re.subn(rf"; .*\n    {re.escape(self.first)} @.*\n", "", self.text)
        self.assertEqual(count, 1)
        self.assert_fails(self.check(text),
                          f"the DLL exports number {self.numbers[self.first]}, which is not in the list")

    def test_a_symbol_that_the_library_lacks_is_found(self):
        new = max(self.numbers.values()) + 1
        self.assert_fails(self.check(self.text + entry("_Z7missingv", new)),
                          f"_Z7missingv is listed with {new}, but the DLL has no such export")

    def test_a_name_that_the_library_does_not_define_is_found(self):
        text = self.text.replace(f"    {self.first} @", "    _Z7renamedv @")
        self.assert_fails(self.check(text), "_Z7renamedv is listed, but the DLL does not define it")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
