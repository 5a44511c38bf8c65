#!/usr/bin/env python3
"""Shows that the checks of the interface see what breaks a caller: mutation_test.py BUILD

Each row changes headers (and the source that goes with them) in a copy of the tree in a way that still compiles, and the
check it names must find that. The names are checked with the objects that abi.py parse left in the build tree."""
import re
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "scripts"))
sys.dont_write_bytecode = True
import abi  # noqa: E402

BUILD = Path(sys.argv[1]).resolve()

# What the change is: the files, what they say, what they say instead. All occurrences are replaced.
LAYOUT = {
    "two slots change places": (
        ["monitoring/QuonFileEventServer.h"],
        r"(virtual void OnSizeChanged\(.*?;)(.*?)(virtual void OnLastWriteChanged\(.*?;)", r"\3\2\1"),
    "overloads change places": (
        ["points/QuonSortedPointString.h"],
        r"(virtual void AddPoint\([^)]*\);)(.*?)(virtual void AddPoint\([^)]*\);)", r"\3\2\1"),
    "a slot in the middle": (
        ["messaging/QuonServerEventHandler.h"], r"(virtual void OnSignaled)", r"virtual void OnMore() {}\n    \1"),
    "a slot at the end": (["messaging/QuonCallback.h"], r"(virtual BOOL Invoke\(\) = 0;)", r"\1\n    virtual void More() {}"),
    "a slot is gone": (["messaging/QuonServerThread.h"], r"virtual (void ServerHook)", r"\1"),
    "a result by value": (
        ["messaging/QuonServerEventHandler.h"], r"virtual void (OnSignaled)", r"virtual CString \1"),
    "a result by reference": (["messaging/QuonWndMsgServer.h", "messaging/QuonWndMsgServerInternal.h"],
                              r"HWND (GetWindow\(\))", r"HWND& \1"),
    "a result of another width": (["geometry/QuonPointReader.h"], r"\bint (GetPointCount)", r"long long \1"),
    "a result of the same width": (["geometry/QuonFaceReader.h"], r"\bint (GetFaceCount)", r"unsigned int \1"),
    "a const less": (["points/QuonPointString.h"], r"(BOOL IsDone\(\)) const", r"\1"),
    "a const more": (["messaging/QuonServerEventHandler.h"], r"(HANDLE GetHandle\(\))", r"\1 const"),
    "another parameter": (["monitoring/QuonFileEventServer.h"], r"(Unsubscribe\()QuonFileEventId id", r"\1DWORD id"),
    "a parameter by reference": (
        ["monitoring/QuonFileEventServer.h"], r"(OnWatchFailed\(.*?)const DWORD\* error", r"\1const DWORD& error"),
    "a calling convention": (["messaging/QuonServerEventHandler.h"], r"virtual void (OnSignaled)",
                             r"virtual void __vectorcall \1"),
    "a name that means another type": (["monitoring/QuonFileEventServer.h"], r"(using QuonFileEventId =) std::uintptr_t",
                                       r"\1 unsigned int"),
    "a field more": (["geometry/VxGe.h"], r"(int m_growLength;)", r"\1\n    int m_more;"),
    "fields change places": (["messaging/QuonMessageQueue.h"], r"(HANDLE m_thread;)(.*?)(bool m_closed;)", r"\3\2\1"),
    "a field of another type": (["xml/QuonXml.h"], r"bool (m_bStream)", r"char \1"),
    "a field of bits": (["messaging/QuonWndMsgServerInternal.h"], r"ATOM (m_classAtom)[^;]*;", r"ATOM \1 : 15;"),
    "a base more": (["geometry/VxGe.h"], r"class VxGePoint3dArray", r"struct More { void* more; };\nclass VxGePoint3dArray : More"),
    "a virtual destructor": (["geometry/VxGe.h"], r"QUON_API (~VxGePoint3dArray)", r"QUON_API virtual \1"),
    "packed fields": (["support/QuonTimer.h"], r"(class QUON_API QuonTimer.*)\Z",
                      r"#pragma pack(push, 4)\n\1#pragma pack(pop)\n"),
    "a constant of another value": (["paths/QuonPath.h"], r"(QuonPathNormalize =) 0x40", r"\1 0x80"),
    "a constant of another type": (["messaging/QuonServerResult.h"], r"(using QuonServerResult =) unsigned int",
                                   r"\1 unsigned long"),
}

NAMES = {
    "an export is gone": (["support/Angles.h"], r"QUON_API (double DmsToDegrees)", r"\1", "support/Angles.cpp"),
    "another result of a function": (
        ["support/Angles.h", "support/Angles.cpp"], r"\bdouble (DegreesToDms\()", r"float \1", "support/Angles.cpp"),
    "another parameter of a function": (["support/Angles.h", "support/Angles.cpp"], r"(DmsToRadians\()double", r"\1float",
                                        "support/Angles.cpp"),
    "a static operation is not static any more": (["messaging/QuonWndMsgServer.h"], r"static (QuonWndMsgServer\* Get)", r"\1",
                                                  "messaging/QuonWndMsgServer.cpp"),
    "a const less of an operation": (["geometry/VxGe.h", "points/QuonPointMarker.h", "points/QuonPointMarker.cpp"],
                                     r"(IsPointMarked\([^)]*\)) const", r"\1", "points/QuonPointMarker.cpp"),
    "a calling convention of a function": (["support/Angles.h", "support/Angles.cpp"], r"double (DegreesToRadians)",
                                           r"double __vectorcall \1", "support/Angles.cpp"),
    "a private helper": (["geometry/QuonPointReader.h"], r"(class QUON_API QuonSinglePointReader[^{]*\{)",
                         r"\1\n    static void Helper() {}\n", "geometry/QuonPointReader.cpp"),
}


class InCopy(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.top = Path(scratch.name)
        for folder in [*abi.FOLDERS, "abi", "framework/include"]:
            shutil.copytree(TOP / folder, self.top / folder)
        self.addCleanup(setattr, abi, "TOP", TOP)
        abi.TOP = self.top

    def mutate(self, files, pattern, replacement):
        changed = 0
        for name in files:
            file = self.top / name
            text, count = re.subn(pattern, replacement, file.read_text(), flags=re.S)
            file.write_text(text)
            changed += count
        self.assertGreater(changed, 0, "nothing was changed")

    def layout_faults(self):
        table = (TOP / "abi/layout.txt").read_text()
        try:
            dump, faults = abi.dump_layouts(table)
        except SystemExit as failure:
            self.fail(f"the change does not compile: {failure}")
        return faults + abi.compare_layouts(dump, table, abi.EXPORT_LIST.read_text())

    def names_faults(self, source):
        """What the check of the names finds when one source of the library was compiled in the copy."""
        obj = self.top / "changed.obj"
        complaint = abi.compile_source(self.top / source, obj, "-DQUON_BUILDING_LIBRARY")
        self.assertEqual(complaint, "", "the change does not compile")
        objects = abi.objects(BUILD) | {self.top / source: obj}
        entries, faults = abi.number_names(abi.exported_names(objects.values()), abi.EXPORT_LIST.read_text())
        old_text = abi.MSVC_LIST.read_text()
        if abi.write_names(entries, {}, abi.exports.numbering(old_text)) != old_text:
            faults.append("the list is another")
        return faults


class Unchanged(InCopy):
    def test_the_copy_itself_has_no_faults(self):
        self.assertEqual(self.layout_faults(), [])
        self.assertEqual(self.names_faults("support/Angles.cpp"), [])


class Changed(InCopy):
    pass


def layout_test(row):
    def test(self):
        self.mutate(*row)
        self.assertNotEqual(self.layout_faults(), [])
    return test


def names_test(row):
    def test(self):
        self.mutate(*row[:3])
        self.assertNotEqual(self.names_faults(row[3]), [])
    return test


for rows, make in ((LAYOUT, layout_test), (NAMES, names_test)):
    for what, row in rows.items():
        setattr(Changed, "test_" + what.replace(" ", "_"), make(row))

if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
