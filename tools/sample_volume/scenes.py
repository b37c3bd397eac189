"""Drawings for icons' tiles: landscapes, creatures and what grows."""

from .shapes import arc, circle, ellipse, lens, moved, polygon, star, stroke, turned, wave


def burrow(p):
    p.fill(wave(0.56, 0.035, 0.9, 0.2), "#79c257", "#3f8f3b")
    p.fill(wave(0.66, 0.02, 0.7, 0.6), "#8a5a35", "#5b3a22")
    p.fill(circle(0.5, 0.66, 0.175), "#4a2d1a", "#24150c")
    p.fill(circle(0.5, 0.70, 0.12), "#6b6f7d", "#464a57")
    for side in (-1, 1):
        p.fill(circle(0.5 + side * 0.045, 0.66, 0.014), "#ffffff")
    p.fill(ellipse(0.5, 0.70, 0.06, 0.042), "#ff9fb0")


def drop(p):
    drop = circle(0.5, 0.585, 0.215) + polygon((0.5, 0.17), (0.69, 0.485), (0.5, 0.6), (0.31, 0.485))
    p.fill(moved(drop, 0.0, 0.025), "#0d1140", opacity=0.28)
    p.fill(drop, "#ffffff", "#aebcff")
    p.fill(stroke(0.036, *arc(0.5, 0.585, 0.145, 95, 170)), "#5a63d8", opacity=0.75)


def dusk(p):
    p.fill(circle(0.5, 0.56, 0.30), "#ffffff", opacity=0.10)
    p.fill(circle(0.5, 0.56, 0.225), "#fff7d6", "#ffb65c")
    for row, (left, right) in enumerate(((0.06, 0.94), (0.20, 0.80), (0.30, 0.70))):
        y = 0.60 + 0.105 * row
        shade = ("#7b3f93", "#5f3389", "#47297a")[row]
        p.fill(wave(y, 0.012, 0.46, 0.25 * row), shade, "#2f1c5c")
        p.fill(stroke(0.016, (left + 0.16, y + 0.055), (right - 0.16, y + 0.055)), "#ffcf8f", opacity=0.75)


def fox(p):
    for side in (-1, 1):
        p.fill(polygon((0.5 + side * 0.33, 0.20), (0.5 + side * 0.34, 0.53), (0.5 + side * 0.06, 0.37)),
               "#ff8a3c", "#f2701f")
        p.fill(polygon((0.5 + side * 0.29, 0.275), (0.5 + side * 0.295, 0.44), (0.5 + side * 0.14, 0.365)),
               "#5a2a12")
    p.fill(polygon((0.5, 0.34), (0.72, 0.37), (0.86, 0.58), (0.5, 0.84), (0.14, 0.58), (0.28, 0.37)),
           "#ff9244", "#f06a1c")
    for side in (-1, 1):
        p.fill(polygon((0.5 + side * 0.36, 0.58), (0.5 + side * 0.20, 0.57), (0.5, 0.74), (0.5, 0.84)),
               "#ffffff", "#f3ede6")
        p.fill(circle(0.5 + side * 0.135, 0.535, 0.034), "#33201a")
    p.fill(ellipse(0.5, 0.80, 0.11, 0.075), "#33201a")


def leaf(p):
    leaf = turned(lens(0.5, 0.17, 0.5, 0.83, 0.30), 38)
    p.fill(moved(leaf, 0.012, 0.022), "#083d1f", opacity=0.22)
    p.fill(leaf, "#f4fff0", "#bdf0b4")
    vein = turned(stroke(0.022, (0.5, 0.24), (0.5, 0.90)), 38)
    for y in (0.38, 0.50, 0.62):
        for side in (-1, 1):
            vein += turned(stroke(0.016, (0.5, y + 0.06), (0.5 + side * 0.095, y - 0.03)), 38)
    p.fill(vein, "#2f9e4f", "#1c7c3a")


def moon(p):
    for x, y, size in ((0.70, 0.30, 0.045), (0.78, 0.50, 0.026), (0.60, 0.46, 0.022), (0.24, 0.25, 0.024)):
        p.fill(star(x, y, size, size * 0.36, 4), "#fff3c4")
    outer, inner = arc(0.46, 0.53, 0.26, 30, 285, 72), arc(0.585, 0.458, 0.2285, 83, 232, 48)
    p.fill(polygon(*outer, *reversed(inner)), "#fffbe8", "#f3d98a")


def peaks(p):
    p.fill(circle(0.69, 0.30, 0.085), "#fff6cf", "#ffe08a")
    p.fill(polygon((0.40, 0.95), (0.72, 0.42), (1.06, 0.95)), "#8fa9d8", "#4f6db0")
    p.fill(polygon((0.72, 0.42), (0.80, 0.545), (0.745, 0.525), (0.705, 0.57), (0.635, 0.56)),
           "#ffffff", "#e8f0ff")
    p.fill(polygon((-0.05, 0.95), (0.37, 0.32), (0.80, 0.95)), "#5f7fc4", "#2b4489")
    p.fill(polygon((0.37, 0.32), (0.475, 0.475), (0.41, 0.455), (0.365, 0.52), (0.32, 0.465), (0.265, 0.475)),
           "#ffffff", "#e4edff")
    p.fill(wave(0.83, 0.018, 0.62, 0.1), "#24386f", "#1c2c5b")


def sails(p):
    p.fill(polygon((0.52, 0.17), (0.52, 0.60), (0.80, 0.60)), "#ffffff", "#dff3ff")
    p.fill(polygon((0.48, 0.26), (0.48, 0.60), (0.24, 0.60)), "#ffe1c7", "#ffb98a")
    p.fill(polygon((0.20, 0.645), (0.82, 0.645), (0.71, 0.755), (0.31, 0.755)), "#7a3b1d", "#552711")
    p.fill(wave(0.755, 0.02, 0.34, 0.0), "#0f6a94", "#0a4a70")


def signpost(p):
    p.fill(ellipse(0.5, 0.805, 0.36, 0.05), "#0b3b36", opacity=0.25)
    p.fill(stroke(0.05, (0.5, 0.20), (0.5, 0.79)), "#f6ead6", "#d9c29c")
    for y, side, top, bottom in ((0.325, 1, "#ffffff", "#ece3d2"), (0.515, -1, "#ffd166", "#f7a93b")):
        tail, head = 0.5 - side * 0.22, 0.5 + side * 0.19
        board = polygon((tail, y - 0.075), (head, y - 0.075), (0.5 + side * 0.285, y), (head, y + 0.075),
                        (tail, y + 0.075))
        p.fill(moved(board, 0.0, 0.014), "#0b3b36", opacity=0.25)
        p.fill(board, top, bottom)
        p.fill(stroke(0.022, (0.5 - side * 0.14, y), (0.5 + side * 0.14, y)), "#8a6a3c", opacity=0.55)


def stones(p):
    p.fill(ellipse(0.5, 0.80, 0.62, 0.08), "#5b4632", opacity=0.25)
    for y, width, height, top, bottom in ((0.715, 0.54, 0.19, "#7d8794", "#4d5663"),
                                          (0.545, 0.42, 0.17, "#b0b7c0", "#77808c"),
                                          (0.395, 0.31, 0.145, "#8f7f76", "#5f524b"),
                                          (0.275, 0.19, 0.11, "#d9dde2", "#a2aab5")):
        p.fill(ellipse(0.5, y, width, height), top, bottom)
        shine = ellipse(0.5 - width * 0.12, y - height * 0.2, width * 0.45, height * 0.22)
        p.fill(shine, "#ffffff", opacity=0.2)


def waves(p):
    p.fill(circle(0.68, 0.32, 0.075), "#ffffff", opacity=0.85)
    for level, shift, opacity in ((0.46, 0.0, 0.28), (0.57, 0.35, 0.38), (0.69, 0.7, 0.62)):
        p.fill(wave(level, 0.042, 0.55, shift), "#ffffff", opacity=opacity)
