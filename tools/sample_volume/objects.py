"""Drawings for icons' tiles: things that people use."""

from .shapes import arc, circle, ellipse, moved, polygon, rectangle, ring, star, stroke, turned, without


def abacus(p):
    p.fill(rectangle(0.19, 0.21, 0.62, 0.60, 0.07), "#3a1f10", opacity=0.25)
    p.fill(without(rectangle(0.19, 0.19, 0.62, 0.60, 0.07), rectangle(0.25, 0.25, 0.50, 0.48, 0.02)),
           "#a8683a", "#7a4524")
    for row, (left, colours) in enumerate(((2, ("#ff6b6b", "#d93a3a")), (4, ("#ffd43b", "#f0a91b")),
                                           (1, ("#4dabf7", "#1c72cc")), (3, ("#51cf66", "#279a3f")))):
        y = 0.31 + 0.12 * row
        p.fill(stroke(0.012, (0.25, y), (0.75, y)), "#7a5a40")
        for bead in range(5):
            x = 0.288 + 0.066 * bead + (0 if bead < left else 0.16)
            p.fill(ellipse(x, y, 0.056, 0.092), *colours)


def aperture(p):
    p.fill(circle(0.5, 0.5, 0.345), "#11151c", "#2c3440")
    p.fill(ring(0.5, 0.5, 0.325, 0.022), "#8b97a8", "#4d5766")
    p.fill(circle(0.5, 0.5, 0.27), "#1b2a57", "#0a1024")
    p.fill(circle(0.5, 0.5, 0.215), "#2f6bd8", "#5b1fa8")
    p.fill(circle(0.5, 0.5, 0.135), "#3fd2ff", "#3150d8")
    p.fill(circle(0.5, 0.5, 0.07), "#06102c", "#16225a")
    p.fill(ellipse(0.415, 0.395, 0.15, 0.10), "#ffffff", opacity=0.55)
    p.fill(circle(0.59, 0.61, 0.028), "#ffffff", opacity=0.5)


def bars(p):
    for column, height in enumerate((0.16, 0.34, 0.52, 0.26, 0.42, 0.20, 0.10)):
        x = 0.235 + 0.0885 * column
        p.fill(stroke(0.052, (x, 0.5 - height / 2), (x, 0.5 + height / 2)), "#ff9a5a", "#ff3d81")


def board(p):
    columns = ((("#ff6b6b", 0.17), ("#ffa94d", 0.11), ("#ffd43b", 0.15)),
               (("#51cf66", 0.12), ("#20c997", 0.19)),
               (("#339af0", 0.15), ("#5c7cfa", 0.11), ("#845ef7", 0.13)))
    for column, cards in enumerate(columns):
        x, y = 0.195 + 0.215 * column, 0.235
        for colour, height in cards:
            p.fill(rectangle(x, y + 0.012, 0.18, height, 0.03), "#3c4a66", opacity=0.16)
            p.fill(rectangle(x, y, 0.18, height, 0.03), colour)
            y += height + 0.035


def book(p):
    p.fill(polygon((0.155, 0.33), (0.5, 0.40), (0.845, 0.33), (0.845, 0.725), (0.5, 0.795), (0.155, 0.725)),
           "#5c0c1e")
    for side, top, bottom in ((-1, "#fffdf6", "#f0dfc2"), (1, "#fffaf0", "#f8ead2")):
        page = polygon((0.5, 0.375), (0.5 + side * 0.31, 0.30), (0.5 + side * 0.31, 0.68), (0.5, 0.755))
        p.fill(page, top, bottom)
        for row in range(4):
            y = 0.455 + 0.066 * row
            p.fill(stroke(0.018, (0.5 + side * 0.06, y - 0.008), (0.5 + side * 0.25, y - 0.052)), "#d6c3a4")
    p.fill(stroke(0.01, (0.5, 0.38), (0.5, 0.75)), "#c9b28c")
    p.fill(polygon((0.62, 0.346), (0.69, 0.329), (0.69, 0.555), (0.655, 0.52), (0.62, 0.57)),
           "#ff5a6e", "#d92d47")


def brush(p):
    p.fill(stroke(0.075, *arc(0.5, 0.49, 0.235, -60, 235, 64)), "#20242c", "#3c424e")
    for width, end, radius in ((0.02, 262, 0.258), (0.016, 255, 0.235), (0.012, 250, 0.214)):
        p.fill(stroke(width, *arc(0.5, 0.49, radius, 235, end, 16)), "#30353f")
    p.fill(rectangle(0.665, 0.67, 0.125, 0.125, 0.022), "#e5484d", "#c62a30")
    p.fill(stroke(0.013, (0.70, 0.70), (0.755, 0.70)) + stroke(0.013, (0.7275, 0.70), (0.7275, 0.765))
           + stroke(0.013, (0.70, 0.765), (0.755, 0.765)), "#ffffff")


def bulb(p):
    p.fill(circle(0.5, 0.40, 0.19), "#fffbe6", "#ffdf6e")
    for turn in range(0, 360, 30):
        if turn != 180:
            p.fill(turned(stroke(0.024, (0.5, 0.16), (0.5, 0.115)), turn, 0.5, 0.40), "#fff1b8")
    p.fill(rectangle(0.415, 0.575, 0.17, 0.035, 0.017), "#7a4a12")
    p.fill(rectangle(0.415, 0.625, 0.17, 0.035, 0.017), "#7a4a12")
    p.fill(rectangle(0.445, 0.675, 0.11, 0.04, 0.02), "#7a4a12")
    p.fill(stroke(0.02, (0.46, 0.565), (0.44, 0.41), (0.5, 0.46), (0.56, 0.41), (0.54, 0.565)), "#d88a1a")


def calendar(p):
    p.fill(rectangle(0.20, 0.24, 0.60, 0.56, 0.07), "#0a3d3a", opacity=0.25)
    p.fill(rectangle(0.20, 0.22, 0.60, 0.56, 0.07), "#ffffff", "#eaf5f2")
    p.fill(stroke(0.016, (0.25, 0.37), (0.75, 0.37)), "#bfd8d2")
    for x in (0.34, 0.5, 0.66):
        p.fill(stroke(0.036, (x, 0.175), (x, 0.265)), "#0d5c56", "#0b4a45")
    for row in range(3):
        for column in range(4):
            colour = "#f2793a" if (row, column) == (1, 2) else "#8fbdb4"
            p.fill(rectangle(0.262 + 0.127 * column, 0.425 + 0.11 * row, 0.095, 0.078, 0.02), colour)


def cards(p):
    for turn, *shades in ((-16, "#ffd166", "#ff9f1c"), (-1, "#7bdff2", "#2ba9d6"),
                          (14, "#ffffff", "#eef1ff")):
        card = turned(rectangle(0.335, 0.24, 0.33, 0.46, 0.045), turn, 0.5, 0.80)
        p.fill(moved(card, 0.0, 0.016), "#1d1147", opacity=0.22)
        p.fill(card, *shades)
    p.fill(turned(star(0.5, 0.47, 0.12, 0.052, 5), 14, 0.5, 0.80), "#7a4df0", "#5a2bd6")


def chart(p):
    for row in range(4):
        p.fill(stroke(0.008, (0.20, 0.30 + 0.14 * row), (0.80, 0.30 + 0.14 * row)), "#ffffff", opacity=0.16)
    points = ((0.22, 0.66), (0.36, 0.52), (0.48, 0.60), (0.62, 0.37), (0.78, 0.28))
    p.fill(polygon(*points, (0.78, 0.74), (0.22, 0.74)), "#5dffb0", opacity=0.16)
    p.fill(stroke(0.034, *points), "#8dffc4", "#2fe08c")
    for x, y in points:
        p.fill(circle(x, y, 0.034), "#ffffff", "#d8ffea")


def horn(p):
    horn = polygon((0.23, 0.42), (0.40, 0.42), (0.66, 0.25), (0.66, 0.73), (0.40, 0.57), (0.23, 0.57))
    p.fill(stroke(0.075, (0.35, 0.60), (0.40, 0.74)), "#ffd9d2", "#ffc3b8")
    p.fill(horn + stroke(0.05, (0.66, 0.25), (0.66, 0.73)), "#ffffff", "#ffe7e2")
    for radius in (0.10, 0.18):
        p.fill(stroke(0.034, *arc(0.68, 0.49, radius, -40, 40, 16)), "#ffffff", "#ffe7e2")


def ladder(p):
    for x, foot in ((0.37, 0.31), (0.63, 0.69)):
        p.fill(stroke(0.05, (x, 0.19), (foot, 0.81)), "#ffffff", "#cfe6ff")
    for row in range(5):
        y, reach = 0.275 + 0.115 * row, 0.125 + 0.012 * row
        p.fill(stroke(0.036, (0.5 - reach, y), (0.5 + reach, y)), "#ffffff", "#e6f2ff")


def letter(p):
    p.fill(rectangle(0.19, 0.32, 0.62, 0.42, 0.05), "#4a0d33", opacity=0.2)
    p.fill(rectangle(0.19, 0.295, 0.62, 0.42, 0.05), "#fffaf2", "#f6e3d3")
    p.fill(stroke(0.016, (0.21, 0.69), (0.43, 0.50)) + stroke(0.016, (0.79, 0.69), (0.57, 0.50)), "#dcbfa8")
    p.fill(polygon((0.205, 0.305), (0.795, 0.305), (0.5, 0.56)), "#fff6ea", "#eacfb8")
    p.fill(circle(0.5, 0.535, 0.078), "#e2436b", "#b01f4b")
    p.fill(star(0.5, 0.535, 0.044, 0.019, 5), "#ffd3df")


def sheet(p):
    paper = polygon((0.28, 0.20), (0.58, 0.20), (0.72, 0.34), (0.72, 0.80), (0.28, 0.80))
    p.fill(moved(paper, 0.014, 0.02), "#7a3a00", opacity=0.22)
    p.fill(paper, "#ffffff", "#fff1d6")
    p.fill(polygon((0.58, 0.20), (0.72, 0.34), (0.58, 0.34)), "#ffcf85", "#f0a848")
    for row, right in enumerate((0.64, 0.60, 0.64, 0.50)):
        p.fill(stroke(0.034, (0.36, 0.44 + 0.082 * row), (right, 0.44 + 0.082 * row)), "#f0a848")


def sliders(p):
    for x, knob in ((0.30, 0.62), (0.50, 0.36), (0.70, 0.54)):
        p.fill(stroke(0.05, (x, 0.22), (x, 0.78)), "#26323f", opacity=0.5)
        p.fill(stroke(0.05, (x, knob), (x, 0.78)), "#6fe3c1", "#35b892")
        p.fill(circle(x, knob + 0.014, 0.082), "#141b23", opacity=0.3)
        p.fill(circle(x, knob, 0.08), "#ffffff", "#d3dbe4")


def spool(p):
    p.fill(circle(0.5, 0.5, 0.33), "#ffffff", "#d9d2ea")
    for turn in range(0, 360, 60):
        p.fill(turned(circle(0.5, 0.295, 0.072), turn), "#5b3fa0", "#3d2777")
    p.fill(circle(0.5, 0.5, 0.075), "#5b3fa0", "#3d2777")
    p.fill(circle(0.5, 0.5, 0.03), "#ffffff")
    p.fill(stroke(0.04, (0.5, 0.81), (0.80, 0.81)), "#ffffff", "#d9d2ea")


def window(p):
    p.fill(rectangle(0.22, 0.20, 0.56, 0.60, 0.06), "#ffffff", "#e3eefc")
    for x in (0.255, 0.515):
        for y in (0.235, 0.515):
            p.fill(rectangle(x, y, 0.23, 0.25, 0.022), "#8fd3ff", "#c7ecff")
    p.fill(polygon((0.255, 0.485), (0.33, 0.36), (0.40, 0.43), (0.44, 0.39), (0.485, 0.485)),
           "#48b46b", "#2c8f50")
    p.fill(circle(0.665, 0.30, 0.038), "#fff0a8", "#ffd75e")
