#!/usr/bin/env python3
"""Runs the LandXML commands of the console host and looks at what they write, print and refuse:
landxml_test.py RUNNER PROGRAM"""
import csv
import datetime
import io
import json
import random
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import captured

RUNNER, PROGRAM = sys.argv[1], sys.argv[2]
TOP = Path(__file__).resolve().parents[2]
SAMPLES = TOP / "host/samples"
SPACE = "{http://www.landxml.org/schema/landxml-1.0}"
SCHEMA_INSTANCE = "{http://www.w3.org/2001/XMLSchema-instance}"
HEADER = "number,northing,easting,elevation,code"


def windows_path(path):
    """A Unix path as a program under Wine sees it: drive Z: is the root."""
    return "Z:" + str(path).replace("/", "\\")


def numbers(texts):
    return [float(text) for text in texts]


class LandXmlTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        self.xml = self.folder / "out.xml"

    def write(self, name, text):
        path = self.folder / name
        path.write_bytes(text.encode("utf-8"))
        return path

    def run_host(self, *arguments):
        texts = [windows_path(a) if isinstance(a, Path) else a for a in arguments]
        return captured.run([RUNNER, PROGRAM, "landxml", *texts])

    def output(self, *arguments):
        done = self.run_host(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def assert_fails(self, code, text, *arguments):
        done = self.run_host(*arguments)
        self.assertEqual((done.returncode, done.stdout), (code, ""), done)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertIn(text, done.stderr)

    def export(self, points, *options):
        self.assertEqual(self.output("export", self.write("points.csv", points), self.xml, *options), "")
        subprocess.run(["xmllint", "--noout", str(self.xml)], check=True)
        return ElementTree.parse(self.xml).getroot()

    def info(self, path):
        return json.loads(self.output("info", path, "--json"))

    # Export.

    def test_a_document_has_the_header_in_the_order_of_the_format(self):
        before = datetime.datetime.now() - datetime.timedelta(days=1)
        root = self.export(HEADER + "\n1,2,3,4,A\n")
        text = self.xml.read_text(encoding="utf-8")
        self.assertTrue(text.startswith('<?xml version="1.0" encoding="UTF-8"?>'))
        self.assertEqual(root.tag, SPACE + "LandXML")
        self.assertEqual({name: root.get(name) for name in ("version", "readOnly", "language")},
                         {"version": "1.0", "readOnly": "false", "language": "English"})
        self.assertGreater(datetime.datetime.strptime(root.get("date"), "%Y-%m-%d"), before)
        self.assertIn("LandXML-1.0.xsd", root.get(SCHEMA_INSTANCE + "schemaLocation"))
        self.assertEqual([child.tag for child in root],
                         [SPACE + name for name in ("Units", "Project", "Application", "CgPoints")])
        self.assertEqual(root.find(SPACE + "Project").get("name"), "out")
        self.assertEqual(root.find(SPACE + "Application").get("name"), "quonhost")

    def test_units_are_metric_or_imperial(self):
        for option, name, unit in ((), "Metric", "meter"), (("--units", "metric"), "Metric", "meter"), \
                (("--units", "imperial"), "Imperial", "foot"):
            with self.subTest(option):
                units = self.export("1,2,3,4", *option).find(SPACE + "Units")
                self.assertEqual([child.tag for child in units], [SPACE + name])
                self.assertEqual(units[0].get("linearUnit"), unit)
                self.assertEqual(set(units[0].keys()), {"areaUnit", "linearUnit", "volumeUnit", "temperatureUnit",
                                                        "pressureUnit"})
                info = self.info(self.xml)
                self.assertEqual((info["units"], info["linearUnit"]), (name, unit))

    def test_points_carry_name_code_and_place(self):
        root = self.export('7,1.50,-2,3e2,EP\n8,0.1,0.2,,\n9,1,2,3,"<a> & ""b"", Ж山"\n', "--project", 'Hof & "Weg" Ж')
        points = root.findall(f"{SPACE}CgPoints/{SPACE}CgPoint")
        self.assertEqual([(p.get("name"), p.get("code"), p.text) for p in points],
                         [("7", "EP", "1.5 -2 300"), ("8", None, "0.1 0.2"), ("9", '<a> & "b", Ж山', "1 2 3")])
        self.assertEqual(root.find(SPACE + "Project").get("name"), 'Hof & "Weg" Ж')

    def test_a_list_chooses_the_points(self):
        points = "".join(f"{number},1,2,3,\n" for number in (5, 1, 30, 12, 2))
        for chosen, expected in (("1-12", "5 1 12 2"), ("30,2-1", "1 30 2"), ("12", "12"), ("1-2000000000", "5 1 30 12 2")):
            with self.subTest(chosen):
                root = self.export(points, "--points", chosen)
                self.assertEqual(" ".join(p.get("name") for p in root.iter(SPACE + "CgPoint")), expected)
        self.xml.unlink()
        csv_file = self.folder / "points.csv"
        self.assert_fails(1, "holds none of the points", "export", csv_file, self.xml, "--points", "3-4")
        self.assert_fails(1, '"1;2" is no list of points', "export", csv_file, self.xml, "--points", "1;2")
        self.assertFalse(self.xml.exists())

    def test_faces_become_a_surface_of_the_points_that_they_name(self):
        faces = self.write("faces.csv", "1,2,3\n3,2,4\n")
        points = "9,9,9,9,CP\n4,10,10,7\n3,0,10,6.5\n2,10,0,6\n1,0,0,5\n".replace("9,9,9,9,CP", "9,9,9,9")
        root = self.export(points, "--faces", faces)
        definition = root.find(f"{SPACE}Surfaces/{SPACE}Surface/{SPACE}Definition")
        self.assertEqual(definition.attrib, {"surfType": "TIN", "elevMin": "5", "elevMax": "7"})
        self.assertEqual([(p.get("id"), p.text) for p in definition.find(SPACE + "Pnts")],
                         [("4", "10 10 7"), ("3", "0 10 6.5"), ("2", "10 0 6"), ("1", "0 0 5")])
        self.assertEqual([f.text for f in definition.find(SPACE + "Faces")], ["1 2 3", "3 2 4"])

        surface = self.export(points, "--faces", faces, "--points", "2-9").find(SPACE + "Surfaces")
        self.assertEqual([f.text for f in surface.iter(SPACE + "F")], ["3 2 4"])
        self.assertEqual({p.get("id") for p in surface.iter(SPACE + "P")}, {"2", "3", "4"})
        self.assertIsNone(self.export(points, "--faces", faces, "--points", "3-9").find(SPACE + "Surfaces"))

    def test_points_at_one_place_are_one_point_of_the_surface(self):
        faces = self.write("faces.csv", "1,2,3\n5,3,2\n")
        root = self.export("1,0,0,5\n2,10,0,6\n3,0,10,6\n4,0,0,5\n5,10,10,7\n6,10,10,7\n", "--faces", faces)
        self.assertEqual([p.get("id") for p in root.iter(SPACE + "P")], ["1", "2", "3", "5"])

    def test_bad_files_are_told_with_their_line(self):
        for points, faces, complaint in (
                ("1,2,3,4\n2,x,3,4\n", None, 'points.csv(2): northing "x" is no number'),
                (HEADER + "\r\n1,2,3,4,A\r\n1,2,3,4,A\r\n", None, "points.csv(3): point 1 is there already, in line 2"),
                ("1,2,3,4\n2,3,4\n", None, "points.csv(2): a column is missing"),
                ("number,northing,easting\n", None, 'points.csv(1): the column "elevation" is missing'),
                ("", None, 'points.csv" is empty'),
                ("1,1,1,1\n2,2,2,2\n3,3,4,4\n", "1,2,3\n1,2,77\n",
                 "faces.csv(2): the face names point 77, which is not among the points")):
            with self.subTest(complaint):
                self.write("points.csv", points)
                more = ("--faces", self.write("faces.csv", faces)) if faces else ()
                self.assert_fails(1, complaint, "export", self.folder / "points.csv", self.xml, *more)

    def test_nothing_is_half_written(self):
        self.export("1,2,3,4\n")
        old = self.xml.read_bytes()
        bad = self.write("bad.csv", "1,2,3,4\n2,2,3,x\n")
        good = self.folder / "points.csv"
        self.assert_fails(1, "bad.csv(2)", "export", bad, self.xml)
        self.assert_fails(1, '.csv" cannot be read', "export", self.folder / "none.csv", self.xml)
        self.assert_fails(1, '.csv" cannot be read', "export", good, self.xml, "--faces", self.folder / "none.csv")
        self.assert_fails(1, "it is a folder", "export", good, self.folder)
        self.assert_fails(1, "its folder does not exist", "export", good, self.folder / "none/out.xml")
        self.assert_fails(1, "control characters", "export", good, self.xml, "--project", "a\tb")
        self.assertEqual(self.xml.read_bytes(), old)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["bad.csv", "out.xml", "points.csv"])

    def test_file_names_of_any_script_and_with_signs(self):
        for name in ("Vermessung Ж山.xml", "a b.xml", "a#1.xml", "50%25.xml", "a&b;c.xml"):
            with self.subTest(name):
                self.xml = self.folder / name
                self.export("1,2,3,4\n")
                self.assertEqual(self.info(self.xml)["points"], 1)

    # Round trips.

    def round_trip(self, rows, *options):
        self.export("\n".join(rows) + "\n", *options)
        printed = self.output("points", self.xml, "--points", "1-2147483647", "--csv")
        return printed.splitlines()

    def test_numbers_come_back_to_the_last_bit(self):
        chance = random.Random(11)
        values = [0.0, -0.0, 0.1 + 0.2, 1 / 3, 1e22, 1e23, -1e-7, sys.float_info.max, -sys.float_info.max,
                  sys.float_info.min, 5e-324, 2.0 ** 53 + 2, 5321400.1199999992]
        while len(values) < 1500:
            value = struct.unpack("<d", chance.randbytes(8))[0]
            if value == value and abs(value) != float("inf"):
                values.append(value)
        rows = [[number + 1, *values[3 * number:3 * number + 3]] for number in range(len(values) // 3)]
        lines = self.round_trip([f"{number},{a!r},{b!r},{c!r},X" for number, a, b, c in rows])
        self.assertEqual(lines[0], HEADER)
        back = [line.split(",") for line in lines[1:]]
        self.assertEqual(len(back), len(rows))
        for row, fields in zip(rows, back):
            self.assertEqual(fields[0], str(row[0]))
            self.assertEqual([struct.pack("<d", v) for v in numbers(fields[1:4])], [struct.pack("<d", v) for v in row[1:]])
            for field in fields[1:4]:
                self.assertRegex(field, r"\A-?[0-9]+(\.[0-9]+)?\Z")
        self.assertEqual(self.round_trip(lines), lines)

    def test_codes_come_back_as_they_were(self):
        lines = [HEADER, "1,1,2,3,", '2,1,2,3,"a,b"', '3,1,2,3,"say ""hi"""', '4,1,2,3," both ends "', "5,1,2,,ЖÄ山&<>'",
                 "6,1,2,3,inner  blanks"]
        self.assertEqual(self.round_trip(lines), lines)

    def test_the_sample_survey_comes_back_as_it_was(self):
        sample = SAMPLES / "points.csv"
        self.assertEqual(self.output("export", sample, self.xml, "--faces", SAMPLES / "faces.csv"), "")
        subprocess.run(["xmllint", "--noout", str(self.xml)], check=True)
        self.assertEqual(self.output("points", self.xml, "--points", "1-9999", "--csv"), sample.read_text())
        points = list(csv.DictReader(io.StringIO(sample.read_text())))
        faces = [line.split(",") for line in (SAMPLES / "faces.csv").read_text().splitlines()[1:]]
        ground = {corner for face in faces for corner in face}
        info = self.info(self.xml)
        self.assertEqual(info["points"], len(points))
        surface, = info["surfaces"]
        self.assertEqual((surface["points"], surface["faces"]), (len(ground), len(faces)))
        for axis in ("northing", "easting", "elevation"):
            values = [float(point[axis]) for point in points if point["number"] in ground]
            self.assertEqual(surface["extents"][axis], [min(values), max(values)])

    def test_the_script_makes_the_sample_survey(self):
        subprocess.run([sys.executable, str(TOP / "scripts/make-sample-survey.py"), str(self.folder)], check=True)
        for name in ("points.csv", "faces.csv"):
            self.assertEqual((self.folder / name).read_bytes(), (SAMPLES / name).read_bytes(), name)

    # Reading the files of others.

    BODY = """
  <{0}Units><{0}Imperial linearUnit="USSurveyFoot"/></{0}Units>
  <{0}Project name="Bridge &amp; road"/>
  <x:CgPoints xmlns:x="urn:other"><x:CgPoint name="99">1 2 3</x:CgPoint></x:CgPoints>
  <{0}CgPoints>
    <!-- CgPoint --><?CgPoint no?>
    <{0}CgPoint name="1" code="A">1.5 2.5 3.5</{0}CgPoint>
    <{0}CgPoint name="B7">4 5 6</{0}CgPoint>
    <x:CgPoint xmlns:x="urn:other" name="98">1 2 3</x:CgPoint>
    <{0}CgPoints name="group"><{0}CgPoint name="2" pntRef="B7"/></{0}CgPoints>
  </{0}CgPoints>
  <{0}Survey><{0}CgPoints><{0}CgPoint name="0003">  7
     8 </{0}CgPoint></{0}CgPoints></{0}Survey>
  <{0}Alignments>
    <{0}Alignment name="Main" length="123.25" staStart="0"><{0}CoordGeom/></{0}Alignment>
    <{0}Alignment name="Side" length="?"/>
  </{0}Alignments>
  <{0}Surfaces>
    <{0}Surface name="Ground"><{0}SourceData><{0}DataPoints><{0}PntList3D>0 0 0</{0}PntList3D></{0}DataPoints></{0}SourceData>
      <{0}Definition surfType="TIN">
        <{0}Pnts><{0}P id="1">10 20 -3</{0}P><{0}P id="2">-10 21 4</{0}P><{0}P id="3">0 0 1e1</{0}P></{0}Pnts>
        <{0}Faces><{0}F>1 2 3</{0}F><{0}F i="1">3 2 1</{0}F><{0}F i="0">1 3 2</{0}F></{0}Faces>
      </{0}Definition>
    </{0}Surface>
    <{0}Surface name="Empty"/>
  </{0}Surfaces>"""

    def document(self, version, prefix=False, attribute=True):
        mark = "lx:" if prefix else ""
        declaration = f'xmlns{":lx" if prefix else ""}="http://www.landxml.org/schema/LandXML-{version}"'
        tells = f'version="{version}"' if attribute else ""
        return self.write("other.xml", f'<?xml version="1.0"?>\n<!-- LandXML -->\n<{mark}LandXML {declaration} {tells}>'
                                       f'{self.BODY.format(mark)}</{mark}LandXML>')

    def test_info_tells_the_same_of_all_versions_prefixes_and_namespaces(self):
        for version in ("1.0", "1.1", "1.2"):
            for prefix in (False, True):
                for attribute in (True, False):
                    with self.subTest((version, prefix, attribute)):
                        self.assertEqual(self.info(self.document(version, prefix, attribute)), {
                            "version": version, "units": "Imperial", "linearUnit": "USSurveyFoot",
                            "project": "Bridge & road", "points": 4,
                            "surfaces": [
                                {"name": "Ground", "points": 3, "pointsWithoutCoordinates": 0, "faces": 3, "invisibleFaces": 1,
                                 "extents": {"northing": [-10, 10], "easting": [0, 21], "elevation": [-3, 10]}},
                                {"name": "Empty", "points": 0, "pointsWithoutCoordinates": 0, "faces": 0, "invisibleFaces": 0,
                                 "extents": None}],
                            "alignments": [{"name": "Main", "length": 123.25}, {"name": "Side", "length": None}]})

    def test_info_prints_a_fact_a_line(self):
        self.assertEqual(self.output("info", self.document("1.2")).splitlines(), [
            "version     1.2",
            "units       Imperial (USSurveyFoot)",
            'project     "Bridge & road"',
            "points      4",
            'surface     "Ground": 3 points, 3 faces (1 invisible), northing -10 to 10, easting 0 to 21, '
            'elevation -3 to 10',
            'surface     "Empty": 0 points, 0 faces',
            'alignment   "Main": length 123.25',
            'alignment   "Side"'])

    def test_info_of_an_empty_document_tells_what_is_not_there(self):
        self.write("other.xml", '<LandXML version="1.1"/>')
        self.assertEqual(self.info(self.folder / "other.xml"),
                         {"version": "1.1", "units": None, "linearUnit": None, "project": None, "points": 0,
                          "surfaces": [], "alignments": []})
        self.assertEqual(self.output("info", self.folder / "other.xml").splitlines(),
                         ["version     1.1", "units       not told", "points      0"])

    def test_documents_in_other_encodings_are_read(self):
        text = '<?xml version="1.0" encoding="{}"?><LandXML version="1.2"><Project name="Böschung"/></LandXML>'
        for encoding in ("UTF-8", "ISO-8859-1", "UTF-16"):
            with self.subTest(encoding):
                path = self.folder / "other.xml"
                path.write_bytes(text.format(encoding).encode(encoding))
                self.assertEqual(self.info(path)["project"], "Böschung")

    def test_points_prints_those_whose_names_are_in_the_list(self):
        path = self.document("1.2", prefix=True)
        self.assertEqual(self.output("points", path, "--points", "1-99").splitlines(),
                         ["1 1.5 2.5 3.5 A", "2 4 5 6", "3 7 8 -"])
        self.assertEqual(self.output("points", path, "--points", "3,1", "--csv").splitlines(),
                         [HEADER, "1,1.5,2.5,3.5,A", "3,7,8,,"])
        self.assert_fails(1, "holds none of the points", "points", path, "--points", "4-97")
        self.assert_fails(1, '"x" is no list of points', "points", path, "--points", "x")

    def test_what_is_no_landxml_document_is_refused(self):
        for text, complaint in (("<LandXML", "cannot be read as XML"), ("", "cannot be read as XML"),
                                ("<a/>", "is no LandXML document"),
                                ("<LandXml version='1.2'/>", "is no LandXML document"),
                                ("<LandXML version='2.0'/>", 'has the LandXML version "2.0"'),
                                ("<LandXML/>", 'has the LandXML version ""')):
            for command in (["info"], ["points", "--points", "1"]):
                with self.subTest((text, command)):
                    self.assert_fails(1, complaint, *command, self.write("bad.xml", text))
        self.assert_fails(1, 'none.xml" cannot be read', "info", self.folder / "none.xml")
        self.assert_fails(1, "cannot be read", "info", self.folder)

    def test_bad_coordinates_are_told(self):
        path = self.write("bad.xml", "<LandXML version='1.2'><CgPoints><CgPoint name='1'>1 x</CgPoint>"
                                     "<CgPoint name='2'>1 2</CgPoint></CgPoints></LandXML>")
        self.assert_fails(1, 'point 1 has no coordinates: "1 x"', "points", path, "--points", "1-2")
        self.assertEqual(self.output("points", path, "--points", "2"), "2 1 2 -\n")
        path = self.write("bad.xml", "<LandXML version='1.2'><Surfaces><Surface name='S'><Definition><Pnts>"
                                     "<P id='7'>1 2</P><P/><P>1 2 x</P><P>1 2 3</P></Pnts></Definition></Surface></Surfaces></LandXML>")
        self.assertEqual(self.output("info", path).splitlines()[-1],
                         'surface     "S": 4 points (3 without coordinates), 0 faces, northing 1 to 1, easting 2 to 2, '
                         'elevation 3 to 3')
        self.assertEqual(self.info(path)["surfaces"][0]["pointsWithoutCoordinates"], 3)

    # Long files.

    def test_long_files_and_their_progress(self):
        count = 20000
        points = "".join(f"{i + 1},{i * 0.37!r},{i * 1.13!r},{i % 50 + 0.125},P\n" for i in range(count))
        self.write("points.csv", points)
        done = self.run_host("export", self.folder / "points.csv", self.xml, "--progress")
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        # One bar for the points read, one for those written; within a bar each state is drawn over the one before, and
        # the carriage return between them reads as a line feed.
        self.assertTrue(done.stderr.endswith(f"] {count} of {count}\n"))
        self.assertEqual(done.stderr.count(f"[{'#' * 40}] {count} of {count}\n"), 2)
        self.assertEqual(done.stderr.count(f"\n\n[#{' ' * 39}] 512 of {count}\n"), 1)
        self.assertEqual(self.info(self.xml)["points"], count)
        lines = self.output("points", self.xml, "--points", f"{count - 1}-{count}", "--csv").splitlines()
        self.assertEqual([numbers(line.split(",")[:4]) for line in lines[1:]],
                         [[i + 1, i * 0.37, i * 1.13, i % 50 + 0.125] for i in (count - 2, count - 1)])

    # The command line.

    def test_bad_command_lines_give_exit_code_2(self):
        for arguments in ([], ["nonsense"], ["export"], ["export", "a.csv"], ["info"], ["points", "a.xml"],
                          ["export", "a.csv", "b.xml", "--units", "chains"], ["info", "a.xml", "--csv"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", *arguments)

    def test_help_is_everywhere(self):
        for command in ([], ["export"], ["info"], ["points"]):
            with self.subTest(command):
                self.assertIn("Usage: ", self.output(*command, "--help"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
