#!/usr/bin/env python3
"""Draws the icons of the language libraries, with nothing but Python's standard library.

    resources/icons/draw.py                  writes the .ico files beside this script
    resources/icons/draw.py --sheet PNG      writes one picture of all of them, to look at

An icon is a function that draws on a grid of 16 x 16. What it draws is a distance function, so that edges are smooth
in every size; edges that are level or upright are moved to whole pixels, so that they stay sharp.
"""
import math
import os
import struct
import sys
import zlib

SIZES = (16, 20, 24, 32, 48)
SLATE = (64, 74, 90)
LINE = (138, 148, 166)
WHITE = (255, 255, 255)
BLUE = (74, 111, 165)
NAVY = (44, 67, 103)
AMBER = (255, 210, 122)
OCHRE = (201, 140, 40)
RED = (200, 56, 46)
GREEN = (60, 145, 76)
GREY = (168, 175, 186)


class Canvas:
    """A picture of size x size pixels; coordinates are those of the grid of 16."""

    def __init__(self, size):
        self.size = size
        self.scale = size / 16
        self.pixels = [(0.0, 0.0, 0.0, 0.0)] * (size * size)  # colour times coverage, coverage

    def snap(self, value):
        return round(value * self.scale) / self.scale

    def thin(self):
        """The width of an outline: a whole number of pixels, about one unit."""
        return max(1, round(self.scale)) / self.scale

    def fill(self, colour, distance):
        """Lays a colour over the points at which `distance` (in units, negative inside) is below zero."""
        for row in range(self.size):
            for column in range(self.size):
                away = distance((column + 0.5) / self.scale, (row + 0.5) / self.scale) * self.scale
                cover = min(1.0, max(0.0, 0.5 - away))
                if cover > 0:
                    at = row * self.size + column
                    old = self.pixels[at]
                    self.pixels[at] = tuple(c * cover + o * (1 - cover) for c, o in zip((*colour, 1.0), old))

    def box(self, colour, left, top, right, bottom, radius=0.0):
        left, top, right, bottom = (self.snap(edge) for edge in (left, top, right, bottom))
        right, bottom = max(right, left + 1 / self.scale), max(bottom, top + 1 / self.scale)
        half_width, half_height = (right - left) / 2, (bottom - top) / 2
        self.fill(colour, rounded(left + half_width, top + half_height, half_width, half_height, radius))

    def disc(self, colour, x, y, radius):
        self.fill(colour, lambda px, py: math.hypot(px - x, py - y) - radius)

    def shape(self, colour, *corners, grow=0.0):
        self.fill(colour, lambda px, py: polygon(px, py, corners) - grow)

    def bgra(self):
        """The rows from the bottom up, as a bitmap holds them."""
        rows = []
        for row in reversed(range(self.size)):
            for red, green, blue, cover in self.pixels[row * self.size:(row + 1) * self.size]:
                parts = [round(part / cover) if cover else 0 for part in (blue, green, red)]
                rows.append(bytes((*parts, round(cover * 255))))
        return b"".join(rows)


def rounded(x, y, half_width, half_height, radius):
    def distance(px, py):
        across = abs(px - x) - half_width + radius
        along = abs(py - y) - half_height + radius
        return math.hypot(max(across, 0), max(along, 0)) + min(max(across, along), 0) - radius
    return distance


def polygon(px, py, corners):
    nearest, inside = math.inf, False
    for (ax, ay), (bx, by) in zip(corners, corners[1:] + corners[:1]):
        ex, ey, wx, wy = bx - ax, by - ay, px - ax, py - ay
        part = min(1, max(0, (wx * ex + wy * ey) / (ex * ex + ey * ey)))
        nearest = min(nearest, math.hypot(wx - ex * part, wy - ey * part))
        if (ay > py) != (by > py) and px < ax + (py - ay) * ex / ey:
            inside = not inside
    return -nearest if inside else nearest


# --- the pictures ------------------------------------------------------------------------------------------------

def page(canvas, left=2, top=1, right=12, bottom=15):
    edge = canvas.thin()
    left, top, right, bottom = (canvas.snap(value) for value in (left, top, right, bottom))
    canvas.box(SLATE, left, top, right, bottom, 1)
    canvas.box(WHITE, left + edge, top + edge, right - edge, bottom - edge, 0.3)
    for row in (4, 7, 10):
        canvas.box(LINE, left + 2, row, right - 2, row + 0.9)


def badge(canvas, draw):
    """A mark at the lower right, with a clear rim around it."""
    draw(1.0, WHITE)
    draw(0.0, None)


def settings(canvas):
    edge = max(1, round(canvas.scale / 2)) / canvas.scale
    top, bottom = canvas.snap(1), canvas.snap(15)
    canvas.box(NAVY, 0, top, 16, bottom, 1.4)
    canvas.box(BLUE, edge, top + edge, 16 - edge, bottom - edge, 1)
    for row, knob in ((4, 5.5), (8, 10.5), (12, 7)):
        top = canvas.snap(row - 0.8)
        bottom = max(canvas.snap(row + 0.8), top + canvas.thin())
        canvas.box(WHITE, 2.5, top, 13.5, bottom)
        canvas.disc(AMBER, knob, (top + bottom) / 2, 1.65)


def sheet(canvas):
    edge = canvas.thin()
    left, right = canvas.snap(2), canvas.snap(14)
    canvas.box(SLATE, left, 0, right, 16, 1)
    canvas.box(WHITE, left + edge, edge, right - edge, 16 - edge, 0.3)
    for row in (3, 6):
        canvas.box(LINE, 4.5, row, 11.5, row + 1)
    canvas.box(RED, left + edge, 9, right - edge, 13)


def new(canvas):
    page(canvas)

    def plus(grow, rim):
        canvas.disc(rim or GREEN, 11.5, 11.5, 4 + grow)
        if not rim:
            half = max(canvas.thin() / 2, 0.65)
            canvas.box(WHITE, 9.1, 11.5 - half, 13.9, 11.5 + half)
            canvas.box(WHITE, 11.5 - half, 9.1, 11.5 + half, 13.9)

    badge(canvas, plus)


def edit(canvas):
    # A pencil from the upper right to its point at the lower left.
    rim = canvas.thin() * 0.8
    canvas.shape(SLATE, (1.5, 14.5), (2.7, 10.3), (11, 2), (14, 5), (5.7, 13.3), grow=rim / 2)
    canvas.shape(AMBER, (3.5, 10.9), (9.7, 4.7), (11.3, 6.3), (5.1, 12.5), grow=0.1)
    canvas.shape(RED, (10.9, 3.5), (11.3, 3.1), (12.9, 4.7), (12.5, 5.1), grow=0.35)
    canvas.shape(WHITE, (2.6, 13.4), (3.3, 11.4), (4.6, 12.7), grow=0.1)
    canvas.disc(SLATE, 2.1, 13.9, 0.8)


def bin_in(body, light):
    def draw(canvas):
        canvas.box(body, 6, 1, 10, 3.2, 0.6)
        canvas.box(WHITE, 7, 2, 9, 3)
        canvas.box(body, 2, 3, 14, 5, 0.4)
        canvas.shape(body, (3.5, 6), (12.5, 6), (11.8, 15), (4.2, 15), grow=0.05)
        for column in (5.5, 7.5, 9.5):
            canvas.box(light, column, 7.5, column + 1, 13.5)
    return draw


def custom(canvas):
    page(canvas)

    def person(grow, rim):
        shoulders = rounded(11.5, 15.5, 4, 3.9, 2.8)
        canvas.fill(rim or BLUE, lambda x, y: max(shoulders(x, y), y - 15) - grow)
        canvas.disc(rim or BLUE, 11.5, 8.7, 2.2 + grow)

    badge(canvas, person)


def installed(canvas):
    page(canvas)

    def lock(grow, rim):
        top = canvas.snap(10)
        ring = max(canvas.thin(), 1.1)
        outline = rounded(11.5, 10, 2.2, 3, 2.2)
        hollow = (lambda away: away) if rim else abs  # the rim clears what lies behind the shackle
        canvas.fill(rim or SLATE, lambda x, y: max(hollow(outline(x, y)) - ring / 2 - grow, y - 10.5))
        canvas.box(rim or OCHRE, 8 - grow, top - grow, 15 + grow, 15 + grow, 0.6)
        if not rim:
            edge = canvas.thin() / 2 if canvas.size > 24 else 0
            canvas.box(AMBER, 8 + edge, top + edge, 15 - edge, 15 - edge, 0.4)
            canvas.box(SLATE, 11, 11.5, 12, 13.5)

    badge(canvas, lock)


ICONS = {
    "settings": settings,
    "sheet": sheet,
    "new": new,
    "edit": edit,
    "delete": bin_in(RED, WHITE),
    "no_delete": bin_in(GREY, (232, 235, 239)),
    "custom_setting": custom,
    "installed_setting": installed,
}


# --- the files ---------------------------------------------------------------------------------------------------

def drawn(name, size):
    canvas = Canvas(size)
    ICONS[name](canvas)
    return canvas


def image(canvas):
    """One image of an icon: a bitmap of 32 bits and the mask of what is clear."""
    size = canvas.size
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    stride = (size + 31) // 32 * 4
    mask = bytearray(stride * size)
    for row in range(size):
        for column in range(size):
            if canvas.pixels[(size - 1 - row) * size + column][3] == 0:
                mask[row * stride + column // 8] |= 0x80 >> column % 8
    return header + canvas.bgra() + bytes(mask)


def write_icon(path, name):
    images = [image(drawn(name, size)) for size in SIZES]
    at = 6 + 16 * len(images)
    with open(path, "wb") as file:
        file.write(struct.pack("<HHH", 0, 1, len(images)))
        for size, content in zip(SIZES, images):
            file.write(struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(content), at))
            at += len(content)
        file.write(b"".join(images))


def write_sheet(path, zoom=4):
    """Every icon in every size, as it is and enlarged, on the grey of a dialog."""
    cell = SIZES[-1] * zoom + 8
    width, height = sum(size * (zoom + 1) + 12 for size in SIZES), cell * len(ICONS)
    rows = [bytearray(b"\xf0\xf0\xf0" * width) for _ in range(height)]

    def put(canvas, left, top, factor):
        for y in range(canvas.size * factor):
            for x in range(canvas.size * factor):
                pixel = canvas.pixels[y // factor * canvas.size + x // factor]
                at = 3 * (left + x)
                for part in range(3):
                    old = rows[top + y][at + part]
                    rows[top + y][at + part] = round(pixel[part] + old * (1 - pixel[3]))

    for line, name in enumerate(ICONS):
        left = 0
        for size in SIZES:
            canvas = drawn(name, size)
            put(canvas, left + 2, line * cell + 2, 1)
            put(canvas, left + 2 + size + 4, line * cell + 2, zoom)
            left += size * (zoom + 1) + 12
    data = zlib.compress(b"".join(b"\0" + bytes(row) for row in rows))

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", data) + chunk(b"IEND", b""))


if __name__ == "__main__":
    if sys.argv[1:2] == ["--sheet"] and len(sys.argv) == 3:
        write_sheet(sys.argv[2])
    elif len(sys.argv) == 1:
        for icon in ICONS:
            write_icon(os.path.join(os.path.dirname(os.path.abspath(__file__)), icon + ".ico"), icon)
    else:
        sys.exit(__doc__)
