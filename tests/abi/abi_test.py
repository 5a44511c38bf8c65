#!/usr/bin/env python3
"""Tests of scripts/abi.py: whatever differs from what callers were built for is found."""
import sys
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "scripts"))
import abi
import exports


class LayoutTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.table = (TOP / "abi/layout.txt").read_text()
        cls.dump, cls.broken = abi.dump_layouts(cls.table)
        cls.list = abi.EXPORT_LIST.read_text()

    def faults(self, table=None, list_text=None):
        return abi.compare_layouts(self.dump, table or self.table, list_text or self.list)

    def test_the_library_is_as_promised(self):
        self.assertEqual((self.faults(), self.broken), ([], []))

    def test_each_kind_of_difference_is_found(self):
        for old, new in (
            ("class QuonPath 16", "class QuonPath 24"),
            ("    8 const wchar_t* m_separator", "    12 const wchar_t* m_separator"),
            ("    8 const wchar_t* m_separator", "    8 wchar_t* m_separator"),
            ("    8 const wchar_t* m_separator\n", ""),
            ("    60 bool m_running", "    60 BOOL m_running"),
            ("    0 base QuonServerEventHandler", "    0 vftable"),
            ("    slot bool FindNext()\n    slot bool IsFound() const", "    slot bool IsFound() const\n    slot bool FindNext()"),
            ("    slot void AddPoint(const wchar_t*)\n    slot void AddPoint(unsigned long)",
             "    slot void AddPoint(unsigned long)\n    slot void AddPoint(const wchar_t*)"),
            ("    slot std::uintptr_t GetSocket()\n", ""),
            ("    slot void ServerHook()\n", "    slot void ServerHook()\n    slot void More()\n"),
            ("    slot ~\n    slot BOOL Invoke()", "    slot BOOL Invoke()\n    slot ~"),
            ("    CStdioFile+8 long m_startClock", "    CStdioFile+4 long m_startClock"),
            ("class WndMsgRecord", "class WndMsgRecords"),
            ("    slot void OnSignaled()", "    slot BOOL OnSignaled()"),
            ("    slot BOOL IsDone() const", "    slot BOOL IsDone()"),
            ("    slot HWND GetWindow()", "    slot HWND GetWindow() const"),
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


class NamesTest(unittest.TestCase):
    GCC = """\
LIBRARY QuonWin32Utils.dll
EXPORTS
; Append(wchar_t const*)
    _Z6AppendPKw @100 NONAME
; Append(long long)
    _Z6Appendx @101 NONAME
; Outer::Path::Path(int)
    _ZN5Outer4PathC1Ei @102 NONAME
; Outer::Path::Path(int)
    _ZN5Outer4PathC2Ei @103 NONAME
; Outer::Path::Path(Outer::Path const&)
    _ZN5Outer4PathC1ERKS0_ @104 NONAME
; Outer::Path::Path(Outer::Path const&)
    _ZN5Outer4PathC2ERKS0_ @105 NONAME
; Outer::Path::~Path()
    _ZN5Outer4PathD0Ev @106 NONAME
; Outer::Path::~Path()
    _ZN5Outer4PathD1Ev @107 NONAME
; Outer::Path::~Path()
    _ZN5Outer4PathD2Ev @108 NONAME
; typeinfo for Outer::Path
    _ZTIN5Outer4PathE @109 NONAME DATA
; vtable for Outer::Path
    _ZTVN5Outer4PathE @110 NONAME DATA
; Walk(bool (*)(_com_ptr_t<_com_IIID_getter<Dom::INode, &Dom::__INode_IID_getter> >&, long long))
    _Z4Walk @111 NONAME
"""
    MSVC = {
        "?Append@@YAXPEB_W@Z": 100,
        "?Append@@YAX_J@Z": 101,
        "??0Path@Outer@@QEAA@H@Z": 102,
        "??_FPath@Outer@@QEAAXXZ": 103,
        "??0Path@Outer@@QEAA@AEBV01@@Z": 104,
        "??1Path@Outer@@UEAA@XZ": 107,
        "??_7Path@Outer@@6B@": 110,
        "?Walk@@YAXP6A_NAEAV?$_com_ptr_t@V?$_com_IIID@UINode@Dom@@$1?_GUID_1@@3U__s_GUID@@B@@@@_J@Z@Z": 111,
    }

    def names(self):
        return {name: name.startswith("??_7") for name in self.MSVC}

    def test_each_name_gets_the_number_of_its_counterpart(self):
        entries, faults = abi.number_names(self.names(), self.GCC)
        self.assertEqual(faults, [])
        self.assertEqual({name: number for number, name, _, _ in entries}, self.MSVC)

    def test_the_list_is_one_that_the_export_scripts_read(self):
        entries, _ = abi.number_names(self.names(), self.GCC)
        numbers, data, _, faults = exports.parse_list(abi.write_names(entries, {}, 1))
        self.assertEqual((numbers, data, faults), (self.MSVC, self.names(), []))

    def test_a_retired_number_keeps_its_name(self):
        entries, _ = abi.number_names(self.names(), self.GCC)
        old = abi.write_names(entries, {112: "?Older@@YAXXZ"}, 0)
        gone = self.GCC.replace("; Append(long long)\n    _Z6Appendx @101 NONAME", "; retired @101 _Z6Appendx")
        retired = abi.retired_names(old, gone)
        self.assertEqual(retired, {112: "?Older@@YAXXZ", 101: "?Append@@YAX_J@Z"})
        names = {name: data for name, data in self.names().items() if name != "?Append@@YAX_J@Z"}
        entries, faults = abi.number_names(names, gone)
        text = abi.write_names(entries, retired, 0)
        self.assertEqual((faults, exports.parse_list(text)[2:]), ([], (retired, [])))
        self.assertEqual(abi.retired_names(text, gone), retired, "the list stays as it is from then on")

    def test_new_numbers_retire_nothing(self):
        entries, _ = abi.number_names(self.names(), self.GCC)
        old = abi.write_names(entries, {112: "?Older@@YAXXZ"}, 0)
        self.assertEqual(abi.retired_names(old, "; numbering 1\n; retired @101 _Z6Appendx\n"), {})

    def test_what_no_caller_can_use_is_found(self):
        entries, _ = abi.number_names(self.names(), self.GCC)
        header = "class Path : Outer { Path(); void Walk(); }; void Append();"
        self.assertEqual(abi.undeclared(entries, header), [])
        self.assertEqual(len(abi.undeclared(entries, header.replace("Walk", ""))), 1)
        private = [(1, "?", "private: void __cdecl Path::Walk(int)", False)]
        self.assertEqual(abi.undeclared(private, header), ["private: void __cdecl Path::Walk(int) is exported, but private"])
        self.assertEqual(abi.undeclared([(1, "?", "private: __cdecl Path::~Path(void)", False)], header), [])

    def test_a_name_that_only_one_list_has_is_found(self):
        more = {**self.names(), "?Append@@YAXM@Z": False}
        self.assertIn("Append(float)", abi.number_names(more, self.GCC)[1][0])
        for name in self.MSVC:
            with self.subTest(name=name):
                less = {other: data for other, data in self.names().items() if other != name}
                faults = abi.number_names(less, self.GCC)[1]
                # The closure is the compiler's own business: GCC has none.
                self.assertEqual(len(faults), 0 if name.startswith("??_F") else 1)

    def test_a_type_that_the_platform_names_otherwise_is_found(self):
        listed = self.GCC + "; Show(_ITEMIDLIST const*)\n    _Z4ShowPK11_ITEMIDLIST @112 NONAME\n"
        faults = abi.number_names({**self.names(), "?Show@@YAXPEBU_ITEMIDLIST@@@Z": False}, listed)[1]
        self.assertEqual(len(faults), 1)

    def test_a_parameter_that_differs_is_found(self):
        differs = self.GCC.replace("; Append(long long)", "; Append(long)")
        self.assertEqual(len(abi.number_names(self.names(), differs)[1]), 2)


if __name__ == "__main__":
    unittest.main()
