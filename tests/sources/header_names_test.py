#!/usr/bin/env python3
"""Shows that header_names.py finds what it is there to find: header_names_test.py COMPILER"""
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
sys.dont_write_bytecode = True
import header_names  # noqa: E402

COMPILER = sys.argv[1]
MACROS = """\
#define GetTitle GetTitleW
#define Forward(window) SendForward(window)
#define small char
#define BASE 2
"""


class FewMacros(header_names.Preprocessor):
    """For a Windows of the macros above, so that a test takes no long time."""

    def windows_headers(self):
        return MACROS


class Renamed(unittest.TestCase):
    def faults(self, text, first=()):
        with tempfile.TemporaryDirectory() as folder:
            header = Path(folder) / "any.h"
            header.write_text("#pragma once\n" + text)
            return header_names.faults_of(FewMacros(COMPILER, header_names.OPTIONS), [str(header)],
                                          lambda name: Path(name).read_text(), dict(first))

    def test_names_that_no_macro_renames_are_right(self):
        self.assertEqual(self.faults("// GetTitle\nstruct Any { int Title() const; /* Forward */ };\n"
                                     'inline const char* text = "GetTitle"; inline int base = BASE;\n'), [])

    def test_a_renamed_member_is_found(self):
        faults = self.faults("struct Any { int GetTitle() const; };\n")
        self.assertEqual(len(faults), 3, faults)
        self.assertIn("after all of Windows, GetTitle is replaced", faults[0])
        self.assertIn("in reverse order, GetTitle is replaced", faults[1])
        self.assertIn("what it becomes is not declared: GetTitleW", faults[2])

    def test_a_member_of_the_commdlg_header_is_found(self):
        faults = self.faults("struct Any { int GetFileTitle() const; };\n", header_names.FIRST.items())
        self.assertTrue(any("after commdlg.h, GetFileTitle is replaced" in fault for fault in faults), faults)

    def test_a_protected_member_without_the_other_name_is_found(self):
        guarded = '#pragma push_macro("GetTitle")\n#undef GetTitle\n{}\n#pragma pop_macro("GetTitle")\n'
        faults = self.faults(guarded.format("struct Any { int GetTitle() const; };"))
        self.assertEqual(len(faults), 1, faults)
        self.assertEqual(self.faults(guarded.format("struct Any { int GetTitle() const; int GetTitleW() const; };")), [])

    def test_a_function_that_a_macro_with_arguments_replaces_is_found(self):
        self.assertEqual(len(self.faults("int Forward(int window);\n")), 3)

    def test_a_parameter_that_a_macro_replaces_is_found(self):
        self.assertTrue(self.faults("int Any(int small);\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
