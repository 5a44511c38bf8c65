"""The fields that debug/QuonWin32Utils.natvis names are those of the classes: natvis_test.py"""
import pathlib
import re
import unittest
import xml.etree.ElementTree as ElementTree

TOP = pathlib.Path(__file__).resolve().parents[2]
NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
FOLDERS = ("paths", "points", "geometry", "support", "xml", "messaging", "monitoring")


def class_bodies():
    """{class name: the text of its declaration}"""
    bodies = {}
    for folder in FOLDERS:
        for header in (TOP / folder).glob("*.h"):
            for match in re.finditer(r"^(?:class|struct)\s+(?:QUON_API\s+)?(\w+)[^;{]*\n?\{.*?^\};", header.read_text(),
                                     re.DOTALL | re.MULTILINE):
                bodies[match[1]] = match[0]
    return bodies


class Natvis(unittest.TestCase):
    def test_every_type_has_the_fields_that_are_shown(self):
        bodies = class_bodies()
        types = ElementTree.parse(TOP / "debug" / "QuonWin32Utils.natvis").getroot().findall(NAMESPACE + "Type")
        self.assertGreater(len(types), 8)
        for entry in types:
            name = re.sub(r"<.*>$", "", entry.get("Name")).split("::")[-1]
            with self.subTest(type=name):
                self.assertIn(name, bodies)
                texts = [text for node in entry.iter()
                         for text in (node.text, *node.attrib.values()) if text and text.strip()]
                fields = set(re.findall(r"\bm_\w+", " ".join(texts))) - {"m_pInterface"}
                if not fields:  # a plain record: what stands in the braces of its texts
                    braces = " ".join(part for text in texts for part in re.findall(r"\{([^{}]*)\}", text))
                    fields = set(re.findall(r"[a-zA-Z]\w+|\b[a-z]\b", re.sub(r",x|unsigned|__int64|\d+", "", braces)))
                self.assertTrue(fields)
                for field in fields:
                    self.assertRegex(bodies[name], rf"\b{field}\b")


if __name__ == "__main__":
    unittest.main()
