#!/usr/bin/env python3
"""Runs the plot command of the console host and looks at the pictures that it writes: plot_test.py RUNNER PROGRAM"""
import random
import re
import struct
import subprocess
import sys
import unittest
import zlib
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import host_test
from host_test import windows_path

TOP = Path(__file__).resolve().parents[2]
SVG = "{http://www.w3.org/2000/svg}"
NAME = "Ж山e\u0301 <&>"


def read_png(data):
    """Width, height and the pixels of a PNG of eight bits a channel, on white."""
    width, height, depth, kind = struct.unpack(">IIBB", data[16:26])
    channels = {2: 3, 6: 4}[kind]
    assert depth == 8
    parts, at = [], 8
    while at < len(data):
        size, name = struct.unpack(">I4s", data[at:at + 8])
        parts += [data[at + 8:at + 8 + size]] if name == b"IDAT" else []
        at += size + 12
    raw, stride, before, pixels = zlib.decompress(b"".join(parts)), width * channels, bytearray(width * channels), []
    for y in range(height):
        begin = y * (stride + 1)
        kind, line = raw[begin], bytearray(raw[begin + 1:begin + 1 + stride])
        for x in range(stride):
            left = line[x - channels] if x >= channels else 0
            up, corner = before[x], before[x - channels] if x >= channels else 0
            near = min((left, up, corner), key=lambda v: abs(left + up - corner - v))
            line[x] = (line[x] + (0, left, up, (left + up) // 2, near)[kind]) & 255
        pixels += [line[x:x + 3] for x in range(0, stride, channels)]
        before = line
    return width, height, pixels


class PlotTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def document(self, points="", surfaces="", unit="meter"):
        path = self.folder / "site.xml"
        path.write_text(f'<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2"><Units><Metric '
                        f'linearUnit="{unit}"/></Units><Project name="Ж山e\u0301 &lt;&amp;&gt;"/><CgPoints>{points}</CgPoints>'
                        f'<Surfaces>{surfaces}</Surfaces></LandXML>', encoding="utf-8")
        return path

    def surface(self, name, lift=0, faces="<F>1 2 3</F><F>1 3 4</F>"):
        return (f'<Surface name="{name}"><Definition surfType="TIN"><Pnts><P id="1">0 0 {lift}</P><P id="2">0 100 {lift + 5}'
                f'</P><P id="3">100 100 {lift + 10}</P><P id="4">100 0 {lift + 7}</P></Pnts><Faces>{faces}</Faces>'
                f'</Definition></Surface>')

    def plot(self, source, *options):
        target = self.folder / "out.svg"
        self.assertEqual(self.lines("landxml", "plot", windows_path(source), windows_path(target), *options), [])
        self.assertEqual(sorted(path.name for path in self.folder.iterdir() if ".tmp" in path.name), [])
        return ElementTree.parse(target).getroot()

    def texts(self, root):
        return [element.text for element in root.iter(SVG + "text")]

    def test_the_picture_in_the_manual_is_what_the_host_draws(self):
        subprocess.run([sys.executable, TOP / "scripts/make-sample-plot.py", host_test.RUNNER, host_test.PROGRAM,
                        self.folder / "sample.svg"], check=True)
        self.assertEqual((self.folder / "sample.svg").read_bytes(),
                         (TOP / "docs/pictures/sample-survey.svg").read_bytes(), "run scripts/make-sample-plot.py")

    def test_points_surface_and_title_are_drawn(self):
        points = '<CgPoint name="7" code="EP">10 20 1</CgPoint><CgPoint name="B8">30 40</CgPoint>'
        root = self.plot(self.document(points, self.surface("Ground")))
        texts = self.texts(root)
        self.assertEqual(root.find(SVG + "title").text, NAME)
        self.assertEqual(texts.count(NAME), 1)
        self.assertIn('2 points · surface "Ground": 2 triangles · elevation 0.00 to 10.00 m', texts)
        for text in ("7", "B8", "EP (1)", "no code (1)", "every 0.5 m", "every 2.5 m", "Elevation (m)"):
            self.assertIn(text, texts)
        # North is up: point B8 lies north-east of point 7.
        places = {element.text: (float(element.get("x")), float(element.get("y"))) for element in root.iter(SVG + "text")}
        self.assertGreater(places["B8"][0], places["7"][0])
        self.assertLess(places["B8"][1], places["7"][1])

    def test_options_choose_what_is_drawn(self):
        points = "".join(f'<CgPoint name="{n}">{10 * n} 20 {n}.125</CgPoint>' for n in range(1, 6))
        path = self.document(points, self.surface("Old") + self.surface("New", 50))
        self.assertIn("3", self.texts(self.plot(path)))
        self.assertNotIn("3", self.texts(self.plot(path, "--labels", "none")))
        self.assertIn("3.12", [text.replace("3.13", "3.12") for text in self.texts(self.plot(path, "--labels", "elevation"))])
        chosen = self.texts(self.plot(path, "--points", "1-2", "--surface", "New", "--title", "Böschung"))
        self.assertTrue({"1", "2", "Böschung"} <= set(chosen))
        self.assertNotIn("3", chosen)
        self.assertIn('2 points · surface "New": 2 triangles · elevation 50.00 to 60.00 m', chosen)
        self.assertIn("every 4 m", self.texts(self.plot(path, "--contours", "4")))
        self.assertNotIn("Contours", self.texts(self.plot(path, "--contours", "0")))
        self.assertEqual(float(self.plot(path, "--size", "2000").get("height")) > 2000, True)

    def test_holes_are_left_out_and_faces_of_four_corners_are_drawn(self):
        root = self.plot(self.document("", self.surface("S", 0, '<F i="1">1 2 3</F><F>1 3 4</F>')))
        self.assertTrue(any(": 1 triangle ·" in text for text in self.texts(root)))
        root = self.plot(self.document("", self.surface("S", 0, "<F>1 2 3 4</F>")))
        self.assertTrue(any(": 2 triangles ·" in text for text in self.texts(root)))

    def test_feet_and_unknown_units_are_told(self):
        for unit, shown in (("foot", "Elevation (ft)"), ("USSurveyFoot", "Elevation (ft)"), ("", "Elevation")):
            with self.subTest(unit):
                self.assertIn(shown, self.texts(self.plot(self.document("", self.surface("S"), unit))))

    def test_what_cannot_be_drawn_is_refused_and_leaves_the_old_picture(self):
        target = self.folder / "out.svg"
        target.write_text("old")
        for body, options, complaint in (
                (("", ""), (), "there is nothing to draw; the file holds nothing"),
                (("", self.surface("S")), ("--surface", "T"), 'there is no surface "T"'),
                (("", self.surface("S")), ("--contours", "0.001"), "contours every 0.001 would be more than 500"),
                (("", self.surface("S")), ("--contours", "1e-9"), "contours every 0.000000001 would be more than 500"),
                (("", self.surface("S", 0, "<F>1 2 9</F>")), ("--strict",), 'names point "9"'),
                (("<CgPoint name='1'>x</CgPoint>", ""), ("--strict",), 'point "1" has no coordinates')):
            with self.subTest(complaint):
                self.assert_fails(1, complaint, "landxml", "plot", windows_path(self.document(*body)),
                                  windows_path(target), *options)
                self.assertEqual(target.read_text(), "old")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["out.svg", "site.xml"])
        self.assert_fails(1, "cannot be written: Path not found.", "landxml", "plot",
                          windows_path(self.document("<CgPoint name='1'>1 2</CgPoint>")),
                          windows_path(self.folder / "none/out.svg"))

    def test_a_large_site_is_drawn_without_labels(self):
        side = 100
        points = "".join(f'<P id="{y * side + x + 1}">{y} {x} {(x * y) % 37 / 10}</P>' for y in range(side) for x in range(side))
        faces = "".join(f"<F>{c} {c + 1} {c + side + 1}</F><F>{c} {c + side + 1} {c + side}</F>"
                        for c in (y * side + x + 1 for y in range(side - 1) for x in range(side - 1)))
        cg = "".join(f'<CgPoint name="{n + 1}">{n % 97} {n % 89} 1</CgPoint>' for n in range(5000))
        surface = f'<Surface name="S"><Definition><Pnts>{points}</Pnts><Faces>{faces}</Faces></Definition></Surface>'
        texts = self.texts(self.plot(self.document(cg, surface)))
        self.assertTrue(any("5000 points" in text and "19602 triangles" in text for text in texts))
        self.assertLess(len(texts), 400)
        self.assertTrue(any(re.fullmatch(r"no code \(5000\)", text) for text in texts))

    LINES = """<Alignments><Alignment name="Main"><CoordGeom><Line><Start>0 0</Start><End>0 60</End></Line>
<Curve rot="ccw"><Start>0 60</Start><Center>40 60</Center><End>40 100</End></Curve></CoordGeom></Alignment></Alignments>
<Parcels><Parcel name="LOT 1"><CoordGeom><Line><Start>50 0</Start><End>50 40</End></Line><Line><Start>50 40</Start>
<End>90 40</End></Line><Line><Start>90 40</Start><End>50 0</End></Line></CoordGeom></Parcel></Parcels>
<PlanFeatures><PlanFeature name="Kerb"><CoordGeom><Line><Start>20 0</Start><End>20 50</End></Line></CoordGeom></PlanFeature>
</PlanFeatures>"""

    def lines_document(self):
        path = self.folder / "lines.xml"
        path.write_text(f'<LandXML version="1.2"><Project name="Lines"/>{self.LINES}</LandXML>')
        return path

    def test_lines_are_drawn_with_a_legend(self):
        texts = self.texts(self.plot(self.lines_document()))
        for text in ("alignments (1)", "parcels (1)", "plan features (1)", "Main", "LOT 1", "Kerb",
                     "1 plan feature · 1 parcel · 1 alignment"):
            self.assertIn(text, texts)
        self.assertNotIn("breaklines (0)", texts)

    def test_what_cannot_be_drawn_is_named(self):
        path = self.folder / "survey.xml"
        path.write_text('<LandXML version="1.2"><Survey><RawObservation/></Survey><Surfaces><Surface name="S"/></Surfaces>'
                        '</LandXML>')
        self.assert_fails(1, "there is nothing to draw; the file holds 1 surface, RawObservation (1)", "landxml", "plot",
                          windows_path(path), windows_path(self.folder / "out.svg"))

    # Pixels.

    def pixels(self, source, *options):
        """The picture as rows of (red, green, blue), and its elements."""
        root = self.plot(source, *options)
        png = subprocess.run(["rsvg-convert", str(self.folder / "out.svg")], capture_output=True, check=True).stdout
        width, height, data = read_png(png)
        for painted, side in ((width, "width"), (height, "height")):
            self.assertAlmostEqual(painted, float(root.get(side)), delta=1)
        return [[tuple(data[y * width + x]) for x in range(width)] for y in range(height)], root

    def count(self, rows, colour, slack=40):
        return sum(all(abs(a - b) <= slack for a, b in zip(pixel, colour)) for row in rows for pixel in row)

    def test_lines_show_in_the_pixels(self):
        rows, _ = self.pixels(self.lines_document())
        for colour in ((0xd5, 0, 0), (0x8e, 0x24, 0xaa), (0, 0x83, 0x8f)):
            self.assertGreater(self.count(rows, colour), 300, colour)

    def test_every_code_of_a_dense_site_shows_in_the_pixels(self):
        chance = random.Random(5)
        codes = ["GR"] * 200 + ["EP", "CL", "TR"]
        points = "".join(f'<CgPoint name="{n}" code="{chance.choice(codes)}">{chance.random() * 800:.2f} '
                         f'{chance.random() * 1000:.2f}</CgPoint>' for n in range(100000))
        points += '<CgPoint name="x" code="ONE">400 500</CgPoint>'
        rows, root = self.pixels(self.document(points))
        texts = self.texts(root)
        self.assertTrue(any(text.startswith("ONE (1)") for text in texts))
        map_pixels = [row[34:1034] for row in rows[62:]]
        for colour in ((0x22, 0x22, 0x22), (0x1f, 0x4f, 0xa3), (0xc6, 0x28, 0x28), (0x6a, 0x1b, 0x9a)):
            self.assertGreater(self.count(map_pixels, colour), 100, colour)
        # Halos do not cover the points: much of the map is dark, and the rare code shows though there is one of it.
        self.assertGreater(self.count(map_pixels, (0x22, 0x22, 0x22), 60), 30000)
        self.assertGreater(self.count(map_pixels, (0, 0x69, 0x5c), 60), 3)

    def test_neighbours_do_not_cover_one_another(self):
        points = "".join(f'<CgPoint name="{n}" code="A">{10 * (n // 20) / 20} {10 * (n % 20) / 20 * 0.3}</CgPoint>'
                         for n in range(400))
        rows, _ = self.pixels(self.document(points + '<CgPoint name="f" code="B">200 200</CgPoint>'), "--labels", "none")
        dark = self.count(rows, (0x22, 0x22, 0x22))
        single, _ = self.pixels(self.document('<CgPoint name="1" code="A">0 0</CgPoint>'
                                              '<CgPoint name="f" code="B">200 200</CgPoint>'), "--labels", "none")
        # Four hundred points on a spot of some pixels fill it.
        self.assertGreater(dark, self.count(single, (0x22, 0x22, 0x22)) + 200)

    def test_bad_command_lines_give_exit_code_2(self):
        for arguments in (["a.xml"], ["a.xml", "b.svg", "--labels", "all"], ["a.xml", "b.svg", "--contours", "-1"],
                          ["a.xml", "b.svg", "--contours", "x"], ["a.xml", "b.svg", "--size", "1"],
                          ["a.xml", "b.svg", "--size", "nan"], ["a.xml", "b.svg", "--contours", "nan"],
                          ["a.xml", "b.svg", "--contours", "inf"], ["a.xml", "b.svg", "--size", "inf"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", "landxml", "plot", *arguments)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
