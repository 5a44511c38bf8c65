#!/usr/bin/env python3
"""Runs the LandXML commands of the console host and looks at what they write, print and refuse:
landxml_test.py RUNNER PROGRAM"""
import csv
import datetime
import io
import json
import random
import resource
import signal
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
HEADER = "number,northing,easting,elevation,code,desc"


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

    def from_input(self, data, *arguments):
        """What the host prints when the standard input holds `data`."""
        texts = [windows_path(a) if isinstance(a, Path) else a for a in arguments]
        with tempfile.TemporaryFile() as file:
            file.write(data)
            file.seek(0)
            done = subprocess.run([RUNNER, PROGRAM, "landxml", *texts], stdin=file, capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
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
        root = self.export(HEADER + "\n1,2,3,4,A,B\n")
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
                (("--units", "imperial"), "Imperial", "foot"), \
                (("--units", "usfoot"), "Imperial", "USSurveyFoot"):
            with self.subTest(option):
                units = self.export("1,2,3,4", *option).find(SPACE + "Units")
                self.assertEqual([child.tag for child in units], [SPACE + name])
                self.assertEqual(units[0].get("linearUnit"), unit)
                self.assertEqual(set(units[0].keys()), {"areaUnit", "linearUnit", "volumeUnit", "temperatureUnit",
                                                        "pressureUnit"})
                info = self.info(self.xml)
                self.assertEqual((info["units"], info["linearUnit"]), (name, unit))

    def test_points_carry_name_code_and_place(self):
        root = self.export('7,1.50,-2,3e2,EP,\nBM 8,0.1,0.2,,,top of bolt\n9,1,2,3,"<a> & ""b"", Ж山",\n', "--project",
                           'Hof & "Weg" Ж')
        points = root.findall(f"{SPACE}CgPoints/{SPACE}CgPoint")
        self.assertEqual([(p.get("name"), p.get("code"), p.get("desc"), p.text) for p in points],
                         [("7", "EP", None, "1.5 -2 300"), ("BM 8", None, "top of bolt", "0.1 0.2"),
                          ("9", '<a> & "b", Ж山', None, "1 2 3")])
        self.assertEqual(root.find(SPACE + "Project").get("name"), 'Hof & "Weg" Ж')

    def test_a_list_chooses_the_points(self):
        points = "".join(f"{number},1,2,3,\n" for number in (5, 1, 30, 12, 2))
        for chosen, expected in (("1-12", "5 1 12 2"), ("30,2-1", "1 30 2"), ("12", "12"), ("1-2000000000", "5 1 30 12 2")):
            with self.subTest(chosen):
                root = self.export(points, "--points", chosen)
                self.assertEqual(" ".join(p.get("name") for p in root.iter(SPACE + "CgPoint")), expected)
        self.xml.unlink()
        csv_file = self.folder / "points.csv"
        self.assert_fails(1, "none of the points is there", "export", csv_file, self.xml, "--points", "3-4")
        self.assert_fails(1, 'not a point list: "1;2"', "export", csv_file, self.xml, "--points", "1;2")
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

    def test_points_at_one_place_keep_their_numbers(self):
        faces = self.write("faces.csv", "1,2,3\n6,3,2\n")
        root = self.export("1,0,0,5\n2,10,0,6\n3,0,10,6\n4,0,0,5\n5,10,10,7\n6,10,10,7\n", "--faces", faces)
        self.assertEqual([p.get("id") for p in root.iter(SPACE + "P")], ["1", "2", "3", "6"])
        self.assertEqual([f.text for f in root.iter(SPACE + "F")], ["1 2 3", "6 3 2"])

    def test_version_1_2_has_its_namespace_and_the_same_content(self):
        faces = self.write("faces.csv", "1,2,3\n")
        points = "1,0,0,5\n2,10,0,6\n3,0,10,6,A,B\n".replace("5\n", "5,,\n").replace("0,6\n", "0,6,,\n")
        old, new = (self.export(points, "--faces", faces, "--version", version, "--surface", "Top & base")
                    for version in ("1.0", "1.2"))
        space = "{http://www.landxml.org/schema/LandXML-1.2}"
        self.assertEqual((new.tag, new.get("version")), (space + "LandXML", "1.2"))
        self.assertEqual(new.get(SCHEMA_INSTANCE + "schemaLocation"), "http://www.landxml.org/schema/LandXML-1.2 "
                         "http://www.landxml.org/schema/LandXML-1.2/LandXML-1.2.xsd")
        content = [[(e.tag.split("}")[1], dict(e.attrib), e.text) for e in root.iter()][1:] for root in (old, new)]
        self.assertEqual(content[0], content[1])
        self.assertEqual(new.find(f"{space}Surfaces/{space}Surface").get("name"), "Top & base")

    def test_separators_and_decimal_marks(self):
        for text, options in (("1;2,5;3;4;A\n", ()), ("1\t2,5\t3\t4\tA\n", ()), ("1;2.5;3;4;A\n", ()),
                              ("1,2.5,3,4,A\n", ("--separator", "comma", "--decimal", "point")),
                              ("1;2,5;3;4;A\n", ("--separator", "semicolon", "--decimal", "comma")),
                              ("1\t2,5\t3\t4\tA\n", ("--separator", "tab"))):
            with self.subTest((text, options)):
                point, = self.export(text, *options).iter(SPACE + "CgPoint")
                self.assertEqual((point.text, point.get("code")), ("2.5 3 4", "A"))

    def test_the_standard_streams_are_files_named_minus(self):
        written = self.from_input(b"1,2,3,4\n", "export", "-", "-")
        self.assertEqual(ElementTree.fromstring(written).find(f"{SPACE}CgPoints/{SPACE}CgPoint").text, "2 3 4")
        self.assertEqual(json.loads(self.from_input(written, "info", "-", "--json"))["points"]["count"], 1)
        self.assertEqual(self.from_input(written, "points", "-"), b"1 2 3 4\n")
        self.assertIn(b"</svg>", self.from_input(written, "plot", "-", "-"))
        self.assert_fails(1, "cannot both come from the standard input", "export", "-", "-", "--faces", "-")

    def test_bad_files_are_reported_with_their_line(self):
        for points, faces, complaint in (
                ("1,2,3,4\n2,12a,3,4\n", None, 'points.csv" line 2: northing is not a number: "12a"'),
                ("1,2,3,4\n2,nan,3,4\n", None, 'points.csv" line 2: northing is not a number: "nan"'),
                ("1,2,3,inf\n", None, 'points.csv" line 1: elevation is not a number: "inf"'),
                (HEADER + "\r\n1,2,3,4,A,\r\n1,2,3,4,A,\r\n", None,
                 'points.csv" line 3: point 1 is there already, in line 2'),
                ("1,2,3,4\n2,3,4\n", None, 'points.csv" line 2: a column is missing'),
                ("number,northing,easting\n", None, 'points.csv" line 1: the column "elevation" is missing'),
                ("", None, 'points.csv": the file is empty'),
                ("1,1,1,1\n2,2,2,2\n3,3,4,4\n", "1,2,3\n1,2,77\n",
                 'faces.csv" line 2: the face names point 77, which is not among the points')):
            with self.subTest(complaint):
                self.write("points.csv", points)
                more = ("--faces", self.write("faces.csv", faces)) if faces else ()
                self.assert_fails(1, complaint, "export", self.folder / "points.csv", self.xml, *more)

    def test_nothing_is_half_written(self):
        self.export("1,2,3,4\n")
        old = self.xml.read_bytes()
        bad = self.write("bad.csv", "1,2,3,4\n2,2,3,x\n")
        good = self.folder / "points.csv"
        self.assert_fails(1, 'bad.csv" line 2', "export", bad, self.xml)
        self.assert_fails(1, '.csv" cannot be read: File not found.', "export", self.folder / "none.csv", self.xml)
        self.assert_fails(1, '.csv" cannot be read: File not found.', "export", good, self.xml, "--faces",
                          self.folder / "none.csv")
        self.assert_fails(1, "it is a folder", "export", good, self.folder)
        self.assert_fails(1, "cannot be written: Path not found.", "export", good, self.folder / "none/out.xml")
        self.assert_fails(1, "control characters", "export", good, self.xml, "--project", "a\tb")
        self.assertEqual(self.xml.read_bytes(), old)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["bad.csv", "out.xml", "points.csv"])

    def limited(self, size, *arguments):
        """Runs the host where no file can become longer than `size` bytes: the disk is full then."""
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

        texts = [windows_path(a) if isinstance(a, Path) else a for a in arguments]
        done = subprocess.run([RUNNER, PROGRAM, "landxml", *texts], stdin=subprocess.DEVNULL, capture_output=True,
                              preexec_fn=limit, restore_signals=False, check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def test_a_full_disk_leaves_the_old_file(self):
        points = self.write("points.csv", "".join(f"{n + 1},{n},{n},{n}\n" for n in range(2000)))
        for command in ("export", "plot"):
            with self.subTest(command):
                target = self.folder / "out"
                target.write_text("old")
                source = points if command == "export" else self.xml
                code, out, error = self.limited(8192, command, source, target)
                self.assertEqual((code, out), (1, ""))
                self.assertRegex(error, r'\Aquonhost: ".*out" cannot be written: .+\.\n\Z')
                self.assertEqual(target.read_text(), "old")
                self.assertEqual(self.output(command, source, target), "")
                self.assertNotEqual(target.read_text(), "old")
                self.output("export", points, self.xml)
                self.assertEqual([path for path in self.folder.iterdir() if path.suffix == ".tmp"], [])

    def test_a_full_device_is_a_failure(self):
        points = self.write("points.csv", "1,2,3,4\n")
        self.output("export", points, self.xml)
        self.assert_fails(1, "cannot be written: ", "export", points, Path("/dev/full"))
        self.assertTrue(Path("/dev/full").is_char_device())
        for command in (["export", points, "-"], ["plot", self.xml, "-"], ["info", self.xml], ["info", self.xml, "--json"],
                        ["points", self.xml], ["points", self.xml, "--csv"], ["points", self.xml, "--json"]):
            with self.subTest(command), open("/dev/full", "wb") as full, tempfile.TemporaryFile() as errors:
                texts = [windows_path(a) if isinstance(a, Path) else a for a in command]
                done = subprocess.run([RUNNER, PROGRAM, "landxml", *texts], stdin=subprocess.DEVNULL, stdout=full,
                                      stderr=errors, check=False)
                errors.seek(0)
                self.assertEqual(done.returncode, 1)
                self.assertIn(b"cannot be written: ", errors.read())

    def test_the_input_is_not_destroyed(self):
        points = self.write("points.csv", "1,0,0,4\n2,0,9,4\n3,9,0,4\n")
        faces = self.write("faces.csv", "1,2,3\n")
        self.output("export", points, self.xml)
        (self.folder / "folder").mkdir()
        for source in (points, self.xml, faces):
            old = source.read_bytes()
            hard, soft = self.folder / "hard", self.folder / "soft"
            hard.hardlink_to(source)
            soft.symlink_to(source)
            shouted = source.with_name(source.name.upper())
            for name in (source, hard, soft, shouted, self.folder / "folder/../" / source.name, self.folder / "." / source.name):
                with self.subTest((source.name, name)):
                    command = ["plot", source, name] if source == self.xml else ["export", source, name]
                    if source == faces:
                        command = ["export", points, name, "--faces", source]
                    target = windows_path(name) if "/../" not in str(name) else windows_path(self.folder) + "\\folder\\..\\" + source.name
                    command[2] = target
                    self.assert_fails(1, "is the same file as the input", *command)
                    self.assertEqual(source.read_bytes(), old)
            hard.unlink()
            soft.unlink()
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["faces.csv", "folder", "out.xml", "points.csv"])

    def test_file_names_of_any_script_and_with_signs(self):
        for name in ("Vermessung Ж山.xml", "a b.xml", "a#1.xml", "50%25.xml", "a&b;c.xml"):
            with self.subTest(name):
                self.xml = self.folder / name
                self.export("1,2,3,4\n")
                self.assertEqual(self.info(self.xml)["points"]["count"], 1)

    # Round trips.

    def round_trip(self, rows, *options):
        self.export("\n".join(rows) + "\n", *options)
        printed = self.output("points", self.xml, "--csv")
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
        lines = [HEADER, "1,1,2,3,,", '2,1,2,3,"a,b",desc', '3,1,2,3,"say ""hi""","x;y"', '4,1,2,3," both ends ",',
                 "5,1,2,,ЖÄ山&<>',山", "BP (NO.-4-10),1,2,3,inner  blanks,"]
        self.assertEqual(self.round_trip(lines), lines)

    def test_the_sample_survey_comes_back_as_it_was(self):
        sample = SAMPLES / "points.csv"
        self.assertEqual(self.output("export", sample, self.xml, "--faces", SAMPLES / "faces.csv"), "")
        subprocess.run(["xmllint", "--noout", str(self.xml)], check=True)
        self.assertEqual(self.output("points", self.xml, "--csv"), sample.read_text())
        points = list(csv.DictReader(io.StringIO(sample.read_text())))
        faces = [line.split(",") for line in (SAMPLES / "faces.csv").read_text().splitlines()[1:]]
        ground = {corner for face in faces for corner in face}
        info = self.info(self.xml)
        self.assertEqual(info["points"]["count"], len(points))
        self.assertEqual(info["points"]["descriptions"], len([p for p in points if p["desc"]]))
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
                            "project": "Bridge & road", "application": None, "coordinateSystem": None, "epsgCode": None,
                            "points": {"count": 4, "numbers": "1-3", "names": ["B7"], "codes": {"": 3, "A": 1},
                                       "descriptions": 0, "withoutElevation": 1,
                                       "extents": {"northing": [1.5, 7], "easting": [2.5, 8], "elevation": [3.5, 6]}},
                            "surfaces": [
                                {"name": "Ground", "type": "TIN", "points": 3, "pointsWithoutCoordinates": 0, "faces": 3,
                                 "invisibleFaces": 1, "breaklines": 0, "boundaries": 0, "dataPoints": 1, "contours": 0,
                                 "extents": {"northing": [-10, 10], "easting": [0, 21], "elevation": [-3, 10]}},
                                {"name": "Empty", "type": None, "points": 0, "pointsWithoutCoordinates": 0, "faces": 0,
                                 "invisibleFaces": 0, "breaklines": 0, "boundaries": 0, "dataPoints": 0, "contours": 0,
                                 "extents": None}],
                            "alignments": [
                                {"name": "Main", "start": 0, "length": 123.25, "lines": 0, "curves": 0, "spirals": 0,
                                 "crossSections": 0, "profiles": []},
                                {"name": "Side", "start": None, "length": None, "lines": 0, "curves": 0, "spirals": 0,
                                 "crossSections": 0, "profiles": []}],
                            "parcels": [], "planFeatures": [], "pipeNetworks": [], "observations": {},
                            "others": {"x:CgPoint": 1, "x:CgPoints": 1}, "warnings": []})

    def test_info_prints_a_fact_a_line(self):
        self.assertEqual(self.output("info", self.document("1.2")).splitlines(), [
            "version       1.2",
            "units         Imperial (US survey foot)",
            'project       "Bridge & road"',
            'points        4: 1-3, "B7", northing 1.5 to 7, easting 2.5 to 8, elevation 3.5 to 6, 1 without elevation',
            "codes         none (3), A (1)",
            'surface       "Ground": TIN, 3 points, 3 faces (1 invisible), 1 data point, northing -10 to 10, easting 0 to 21, '
            'elevation -3 to 10',
            'surface       "Empty": 0 points, 0 faces',
            'alignment     "Main": stations 0 to 123.25, length 123.25',
            'alignment     "Side"',
            "not shown     x:CgPoint (1), x:CgPoints (1)"])

    EVERYTHING = """<?xml version="1.0"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
<Units><Metric linearUnit="meter"/></Units><CoordinateSystem name="ETRS89 / UTM 32N" epsgCode="25832"/>
<Project name="All"/><Application name="CAD" version="7"/>
<CgPoints><CgPoint name="STAZLIB3" desc="bolt">1 2 3</CgPoint></CgPoints>
<Surfaces><Surface name="S"><SourceData><Breaklines><Breakline name="top"><PntList3D>0 0 1 5 5 1</PntList3D></Breakline>
</Breaklines><Boundaries><Boundary><PntList2D>0 0 0 9 9 9 0 0</PntList2D></Boundary></Boundaries>
<Contours><Contour elev="1"/><Contour elev="2"/></Contours></SourceData></Surface></Surfaces>
<Alignments><Alignment name="A" staStart="100" length="50"><CoordGeom><Line><Start>0 0</Start><End>0 50</End></Line>
</CoordGeom><Profile name="P"><ProfAlign name="design"/><ProfSurf name="ground"/></Profile>
<CrossSects><CrossSect sta="100"/><CrossSect sta="110"/></CrossSects></Alignment></Alignments>
<Parcels><Parcel name="LOT 1"/><Parcel name="LOT 2"/></Parcels>
<PlanFeatures><PlanFeature name="Kerb"/></PlanFeatures>
<PipeNetworks><PipeNetwork name="Storm"><Structs><Struct name="M1"><Center>0 0</Center></Struct><Struct name="M2">
<Center>0 5</Center></Struct></Structs><Pipes><Pipe name="P" refStart="M1" refEnd="M2"/></Pipes></PipeNetwork></PipeNetworks>
<Survey><InstrumentSetup/><RawObservation/><RawObservation/></Survey><Roadways><Roadway/></Roadways></LandXML>"""

    def test_info_passes_over_nothing(self):
        path = self.write("all.xml", self.EVERYTHING)
        self.assertEqual(self.output("info", path).splitlines(), [
            "version       1.2",
            "units         Metric (meter)",
            'project       "All"',
            'application   "CAD 7"',
            'system        "ETRS89 / UTM 32N", EPSG 25832',
            'points        1: "STAZLIB3", northing 1 to 1, easting 2 to 2, elevation 3 to 3',
            "descriptions  1",
            'surface       "S": 0 points, 0 faces, 1 breakline, 1 boundary, 2 contours',
            'alignment     "A": stations 100 to 150, length 50, 1 line, 2 cross-sections',
            '  profiles    2: "design", "ground"',
            'parcels       2: "LOT 1", "LOT 2"',
            'plan features 1: "Kerb"',
            'pipe network  "Storm": 2 structures, 1 pipe',
            "observations  InstrumentSetup (1), RawObservation (2)",
            "not shown     Roadways (1)"])
        info = self.info(path)
        self.assertEqual(info["parcels"], ["LOT 1", "LOT 2"])
        self.assertEqual(info["pipeNetworks"], [{"name": "Storm", "structures": 2, "pipes": 1}])
        self.assertEqual(info["observations"], {"InstrumentSetup": 1, "RawObservation": 2})
        self.assertEqual((info["coordinateSystem"], info["epsgCode"], info["application"]),
                         ("ETRS89 / UTM 32N", "25832", "CAD 7"))

    def test_the_members_of_the_json_are_those_of_the_manual(self):
        manual = (TOP / "docs/host.md").read_text()
        info = self.info(self.write("all.xml", self.EVERYTHING))
        objects = {"info": info, "point": info["points"], "surface": info["surfaces"][0],
                   "alignment": info["alignments"][0], "network": info["pipeNetworks"][0]}
        points = json.loads(self.output("points", self.folder / "all.xml", "--json"))["points"]
        objects["survey point"] = points[0]
        for name, value in objects.items():
            for member in value:
                self.assertIn(f"`{member}`", manual, name)

    def test_info_of_an_empty_document_says_what_is_not_there(self):
        self.write("other.xml", '<LandXML version="1.1"/>')
        info = self.info(self.folder / "other.xml")
        self.assertEqual((info["version"], info["units"], info["points"]["count"], info["points"]["extents"]),
                         ("1.1", None, 0, None))
        self.assertEqual(self.output("info", self.folder / "other.xml").splitlines(),
                         ["version       1.1", "units         unspecified", "points        0"])

    def test_documents_in_other_encodings_are_read(self):
        text = '<?xml version="1.0" encoding="{}"?><LandXML version="1.2"><Project name="Böschung"/></LandXML>'
        for encoding in ("UTF-8", "ISO-8859-1", "UTF-16"):
            with self.subTest(encoding):
                path = self.folder / "other.xml"
                path.write_bytes(text.format(encoding).encode(encoding))
                self.assertEqual(self.info(path)["project"], "Böschung")

    def test_points_are_chosen_by_lists_and_patterns(self):
        path = self.document("1.2", prefix=True)
        self.assertEqual(self.output("points", path).splitlines(), ["1 1.5 2.5 3.5 A", "B7 4 5 6", "2 4 5 6", "0003 7 8 -"])
        self.assertEqual(self.output("points", path, "--points", "1-99").splitlines(),
                         ["1 1.5 2.5 3.5 A", "2 4 5 6", "0003 7 8 -"])
        self.assertEqual(self.output("points", path, "--points", "3,1", "--csv").splitlines(),
                         [HEADER, "1,1.5,2.5,3.5,A,", "0003,7,8,,,"])
        self.assertEqual(self.output("points", path, "--name", "b*", "--name", "?").splitlines(),
                         ["1 1.5 2.5 3.5 A", "B7 4 5 6", "2 4 5 6"])
        self.assertEqual(self.output("points", path, "--name", "B?", "--points", "1").splitlines(),
                         ["1 1.5 2.5 3.5 A", "B7 4 5 6"])
        self.assert_fails(1, "none of the points is there", "points", path, "--points", "4-97")
        self.assert_fails(1, "none of the points is there", "points", path, "--name", "C*")
        self.assert_fails(1, 'not a point list: "x"', "points", path, "--points", "x")
        self.assert_fails(1, 'a comparison does not name points: "3,<5"', "points", path, "--points", "3,<5")

    def test_names_and_descriptions_are_printed(self):
        path = self.write("names.xml", "<LandXML version='1.2'><CgPoints><CgPoint name='BP (NO.-4-10)' desc='top of bolt'>1 2"
                                       "</CgPoint><CgPoint name='7' code='MH' desc='山'>1 2 3</CgPoint></CgPoints></LandXML>")
        self.assertEqual(self.output("points", path).splitlines(),
                         ['"BP (NO.-4-10)" 1 2 - - "top of bolt"', '7 1 2 3 MH "山"'])
        self.assertEqual(json.loads(self.output("points", path, "--json")), {"points": [
            {"number": None, "name": "BP (NO.-4-10)", "northing": 1, "easting": 2, "elevation": None, "code": None,
             "desc": "top of bolt"},
            {"number": 7, "name": "7", "northing": 1, "easting": 2, "elevation": 3, "code": "MH", "desc": "山"}]})

    def test_a_file_without_points_says_what_it_holds(self):
        path = self.write("parcel.xml", "<LandXML version='1.2'><Parcels><Parcel name='1'/></Parcels></LandXML>")
        self.assert_fails(1, 'parcel.xml": there are no points; the file holds 1 parcel', "points", path)

    def test_what_is_not_a_landxml_document_is_refused(self):
        for text, complaint in (("<LandXML", 'bad.xml" line 1: the file ends within <LandXML>'),
                                ("<LandXML version='1.2'>\n<CgPoints>\n<CgPoint name='1'>1 2",
                                 'bad.xml" line 3: the file ends before </CgPoint>, which line 3 opens'),
                                ("<LandXML version='1.2'>\n\n<a></b></LandXML>",
                                 'bad.xml" line 3: </b> does not end <a>, which line 3 opens'),
                                ("", 'bad.xml": the file is empty'),
                                ("<a/>", "not a LandXML document: its root is <a>"),
                                ("<LandXml version='1.2'/>", "not a LandXML document"),
                                ("<LandXML version='2.0'/>", 'unknown LandXML version "2.0"'),
                                ("<LandXML/>", 'unknown LandXML version ""')):
            for command in ("info", "points"):
                with self.subTest((text, command)):
                    self.assert_fails(1, complaint, command, self.write("bad.xml", text))
        self.assert_fails(1, 'none.xml" cannot be read: File not found.', "info", self.folder / "none.xml")
        self.assert_fails(1, "cannot be read: ", "info", self.folder)

    def test_bad_points_are_warned_of_and_the_rest_is_used(self):
        path = self.write("bad.xml", "<LandXML version='1.2'><CgPoints>\n<CgPoint name='1'>1 x</CgPoint>\n"
                                     "<CgPoint name='2'>1 2</CgPoint></CgPoints></LandXML>")
        for command in (["points"], ["info"], ["info", "--json"], ["plot", self.folder / "out.svg"]):
            with self.subTest(command):
                done = self.run_host(command[0], path, *command[1:])
                self.assertEqual(done.returncode, 0)
                self.assertRegex(done.stderr, r'\Aquonhost: warning: ".*bad.xml" line 2: point "1" has no coordinates: "1 x"\n\Z')
                self.assert_fails(1, 'bad.xml" line 2: point "1" has no coordinates: "1 x"', command[0], path, *command[1:],
                                  "--strict")
        self.assertEqual(self.run_host("points", path).stdout, "2 1 2 -\n")
        self.assertEqual(json.loads(self.run_host("info", path, "--json").stdout)["warnings"],
                         [{"line": 2, "text": 'point "1" has no coordinates: "1 x"'}])

    def test_many_warnings_are_counted(self):
        path = self.write("bad.xml", "<LandXML version='1.2'><CgPoints>" + "<CgPoint name='1'/>\n" * 23 +
                          "</CgPoints></LandXML>")
        lines = self.run_host("info", path).stderr.splitlines()
        self.assertEqual(len(lines), 21)
        self.assertTrue(lines[-1].endswith('bad.xml": 3 more warnings'), lines[-1])

    # Long files.

    def test_long_files_and_their_progress(self):
        count = 20000
        points = "".join(f"{i + 1},{i * 0.37!r},{i * 1.13!r},{i % 50 + 0.125},P\n" for i in range(count))
        self.write("points.csv", points)
        done = self.run_host("export", self.folder / "points.csv", self.xml, "--progress")
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        # A bar for the bytes read, one for the points and one for the bytes written. Within a bar each state is drawn
        # over the one before, and the carriage return between them reads as a line feed.
        whole = f"[{'#' * 40}]"
        written, size = self.xml.stat().st_size, len(points)
        for total in (size, count, written):
            self.assertIn(f"{whole} {total} of {total}\n", done.stderr)
        self.assertEqual(done.stderr.count(f"[#{' ' * 39}] 512 of {count}\n"), 1)
        self.assertEqual(self.info(self.xml)["points"]["count"], count)
        lines = self.output("points", self.xml, "--points", f"{count - 1}-{count}", "--csv").splitlines()
        self.assertEqual([numbers(line.split(",")[:4]) for line in lines[1:]],
                         [[i + 1, i * 0.37, i * 1.13, i % 50 + 0.125] for i in (count - 2, count - 1)])

    # The command line.

    def test_bad_command_lines_give_exit_code_2(self):
        for arguments in ([], ["nonsense"], ["export"], ["export", "a.csv"], ["info"], ["points"],
                          ["export", "a.csv", "b.xml", "--units", "chains"],
                          ["export", "a.csv", "b.xml", "--version", "1.1"], ["export", "a.csv", "b.xml", "--separator", "|"],
                          ["export", "a.csv", "b.xml", "--decimal", ";"], ["points", "a.xml", "--csv", "--json"],
                          ["info", "a.xml", "--csv"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", *arguments)

    def test_help_is_everywhere(self):
        for command in ([], ["export"], ["info"], ["points"]):
            with self.subTest(command):
                self.assertIn("Usage: ", self.output(*command, "--help"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
