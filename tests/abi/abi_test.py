#!/usr/bin/env python3
"""Tests of scripts/abi.py: whatever differs from what callers were built for is found."""
import sys
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "scripts"))
import abi


class LayoutTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dump = abi.dump_layouts()
        cls.table = (TOP / "abi/layout.txt").read_text()
        cls.list = abi.EXPORT_LIST.read_text()

    def faults(self, table=None, list_text=None):
        return abi.compare_layouts(self.dump, table or self.table, list_text or self.list)

    def test_the_library_is_as_promised(self):
        self.assertEqual(self.faults(), [])

    def test_each_kind_of_difference_is_found(self):
        for old, new in (
            ("class QuonPath 16", "class QuonPath 24"),
            ("    8 const wchar_t* m_separator", "    12 const wchar_t* m_separator"),
            ("    8 const wchar_t* m_separator", "    8 wchar_t* m_separator"),
            ("    8 const wchar_t* m_separator\n", ""),
            ("    60 bool m_running", "    60 BOOL m_running"),
            ("    0 base QuonServerEventHandler", "    0 vftable"),
            ("    slot FindNext()\n    slot IsFound()", "    slot IsFound()\n    slot FindNext()"),
            ("    slot AddPoint(const wchar_t*)\n    slot AddPoint(unsigned long)",
             "    slot AddPoint(unsigned long)\n    slot AddPoint(const wchar_t*)"),
            ("    slot GetSocket()\n", ""),
            ("    slot ServerHook()\n", "    slot ServerHook()\n    slot More()\n"),
            ("    slot ~\n    slot Invoke()", "    slot Invoke()\n    slot ~"),
            ("    CStdioFile+8 long m_startClock", "    CStdioFile+4 long m_startClock"),
            ("class WndMsgRecord", "class WndMsgRecords"),
        ):
            with self.subTest(old=old, new=new):
                self.assertIn(old, self.table)
                self.assertNotEqual(self.faults(self.table.replace(old, new, 1)), [])

    def test_an_exported_class_without_an_entry_is_found(self):
        for line in ("; QuonNew::QuonNew()", "; vtable for QuonNew", "; Outer::QuonNew::QuonNew(int)"):
            with self.subTest(line=line):
                self.assertEqual(len(self.faults(list_text=self.list + line + "\n")), 1)

    def test_a_line_that_says_nothing_stops_the_check(self):
        with self.assertRaises(SystemExit):
            self.faults(self.table + "    slots of nobody\n")


if __name__ == "__main__":
    unittest.main()
