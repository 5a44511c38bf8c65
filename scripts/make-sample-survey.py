#!/usr/bin/env python3
"""Makes the sample survey of the host: make-sample-survey.py FOLDER

Writes points.csv (number, northing, easting, elevation, code, desc; metres) and faces.csv (a Delaunay triangulation of the
ground) of a small site: a road with ditches through sloping ground, two buildings, trees and control points. The same
files come out every time and everywhere: chance is seeded, coordinates are whole millimetres, and the triangulation
reckons with whole numbers.
"""
import math
import random
import sys
from pathlib import Path

ORIGIN_NORTHING, ORIGIN_EASTING = 5321400, 412250
LENGTH, WIDTH = 200, 120  # of the site, in metres: north and east
CONTROL = "CP"
DESCRIPTIONS = {CONTROL: "nail in concrete", "BLD": "corner of the building"}
LONGEST_EDGE = 45000  # millimetres; longer triangles along the border span ground that nobody measured


def road_east(north):
    """The road's centre line, in metres east of the origin."""
    return 52 + 14 * math.sin(north / 70)


def ground(north, east):
    """The elevation of the ground: a slope with two swells, cut by the road and its ditches."""
    level = 248 + 0.03 * north - 0.05 * east
    level += 1.6 * math.sin(north / 38) * math.cos(east / 31) + 0.7 * math.sin((north + 2 * east) / 19)
    away = abs(east - road_east(north))
    if away < 10:
        carriageway = 246 + 0.03 * north - 0.025 * min(away, 3.5)
        if away > 3.5:
            carriageway -= 0.6 * (1 - abs(away - 6) / 2.5) if away < 8.5 else 0
        weight = min(1, max(0, (10 - away) / 4))
        level = weight * carriageway + (1 - weight) * level
    return level


class Site:
    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.points = []
        self.number = 0

    def begin(self, number):
        """Points of a kind have numbers of their own, as crews number them."""
        self.number = number

    def shoot(self, north, east, code, above=0.0, scatter=0.02):
        shaken = above + scatter * (2 * self.chance.random() - 1)
        point = tuple(round(1000 * value) for value in (north, east, ground(north, east) + shaken))
        if point[:2] not in {other[1][:2] for other in self.points}:
            self.points.append((self.number, point, code))
            self.number += 1

    def control_points(self):
        self.begin(1)
        for north, east in ((4.2, 8.7), (3.1, 110.4), (195.6, 12.9), (192.8, 112.2), (101.5, 71.3)):
            self.shoot(north, east, CONTROL, above=0.15, scatter=0)

    def road(self):
        self.begin(100)
        for code, offset in (("CL", 0), ("EP", -3.5), ("EP", 3.5), ("DT", -6), ("DT", 6)):
            for north in range(0, LENGTH + 1, 10):
                along = north + 1.5 * (self.chance.random() - 0.5)
                self.shoot(along, road_east(along) + offset + 0.1 * (self.chance.random() - 0.5), code)
            self.begin(self.number + 20 - self.number % 20)

    def buildings(self):
        self.begin(300)
        for north, east, length, width, turn in ((38, 86, 14, 9, 0.2), (128, 92, 18, 11, -0.1)):
            for along, across in ((0, 0), (length, 0), (length, width), (0, width)):
                self.shoot(north + along * math.cos(turn) - across * math.sin(turn),
                           east + along * math.sin(turn) + across * math.cos(turn), "BLD", scatter=0.01)

    def trees(self):
        self.begin(320)
        for _ in range(24):
            north, east = LENGTH * self.chance.random(), WIDTH * self.chance.random()
            if abs(east - road_east(north)) > 9:
                self.shoot(north, east, "TR", scatter=0.05)

    def open_ground(self):
        self.begin(400)
        for north in range(0, LENGTH + 1, 12):
            for east in range(0, WIDTH + 1, 12):
                n = min(LENGTH, max(0, north + 7 * (self.chance.random() - 0.5)))
                e = min(WIDTH, max(0, east + 7 * (self.chance.random() - 0.5)))
                if abs(e - road_east(n)) > 8:
                    self.shoot(n, e, "GR", scatter=0.04)


def survey():
    site = Site(seed=20)
    site.control_points()
    site.road()
    site.buildings()
    site.trees()
    site.open_ground()
    return site.points


def turn(a, b, c):
    """Above 0 when a, b, c turn left (a point is east, north)."""
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])


def in_circle(a, b, c, p):
    """Whether p lies inside the circle through a, b, c, which turn left."""
    rows = [(q[0] - p[0], q[1] - p[1]) for q in (a, b, c)]
    (ax, ay), (bx, by), (cx, cy) = rows
    a2, b2, c2 = (x * x + y * y for x, y in rows)
    return ax * (by * c2 - b2 * cy) - ay * (bx * c2 - b2 * cx) + a2 * (bx * cy - by * cx) > 0


def triangulate(places):
    """The Delaunay triangles of {key: (east, north)}, by Bowyer and Watson: each point is put in and the triangles whose
    circles hold it make way for new ones around it."""
    far = 10 ** 12  # so far away that the corners of the first triangle are as good as infinite
    corners = {"a": (-far, -far), "b": (far, -far), "c": (0, far)}
    at = {**places, **corners}
    triangles = {("a", "b", "c")}
    for key, place in places.items():
        hit = [t for t in triangles if in_circle(*(at[corner] for corner in t), place)]
        edges = {(t[i], t[(i + 1) % 3]) for t in hit for i in range(3)}
        triangles.difference_update(hit)
        triangles.update((first, second, key) for first, second in edges if (second, first) not in edges)
    return [t for t in triangles if not corners.keys() & set(t)]


def longest_edge_squared(places, triangle):
    return max((places[p][0] - places[q][0]) ** 2 + (places[p][1] - places[q][1]) ** 2
               for p, q in zip(triangle, triangle[1:] + triangle[:1]))


def surface(points):
    """The faces of the ground as triples of point numbers, anticlockwise from the lowest number. Control points stand
    above the ground and are no part of it."""
    places = {number: (east, north) for number, (north, east, _), code in points if code != CONTROL}
    faces = []
    for triangle in triangulate(places):
        if longest_edge_squared(places, triangle) <= LONGEST_EDGE ** 2:
            assert turn(*(places[corner] for corner in triangle)) > 0
            first = triangle.index(min(triangle))
            faces.append(triangle[first:] + triangle[:first])
    return sorted(faces)


def metres(millimetres, origin=0):
    whole, rest = divmod(millimetres + 1000 * origin, 1000)
    return f"{whole}.{rest:03}".rstrip("0").rstrip(".")


def main():
    folder = Path(sys.argv[1])
    points = survey()
    with open(folder / "points.csv", "w", encoding="utf-8", newline="\n") as file:
        file.write("number,northing,easting,elevation,code,desc\n")
        for number, (north, east, level), code in points:
            file.write(f"{number},{metres(north, ORIGIN_NORTHING)},{metres(east, ORIGIN_EASTING)},{metres(level)},{code},"
                       f"{DESCRIPTIONS.get(code, '')}\n")
    with open(folder / "faces.csv", "w", encoding="utf-8", newline="\n") as file:
        file.write("point1,point2,point3\n")
        for face in surface(points):
            file.write(",".join(map(str, face)) + "\n")


if __name__ == "__main__":
    main()
