"""Shapes for Picture.fill: lists of outlines in a square that runs from 0 to 1."""

import math


def polygon(*points):
    """A filled outline, whichever way round its points are named."""
    return [_directed(list(points), 1)]


def without(shape, *holes):
    """A shape with others cut out of it."""
    return shape + [_directed(outline, -1) for hole in holes for outline in hole]


def _directed(outline, sign):
    area = sum(ax * by - bx * ay for (ax, ay), (bx, by) in zip(outline, outline[1:] + outline[:1]))
    return outline if area * sign > 0 else outline[::-1]


def arc(x, y, radius, start, end, count=32):
    """The points of a circle's arc; angles in degrees, clockwise from three o'clock."""
    angles = (math.radians(start + (end - start) * i / count) for i in range(count + 1))
    return [(x + radius * math.cos(angle), y + radius * math.sin(angle)) for angle in angles]


def circle(x, y, radius):
    return polygon(*arc(x, y, radius, 0, 360, 72)[:-1])


def ellipse(x, y, width, height):
    return [[(x + (px - x) * width / height, py) for px, py in outline]
            for outline in circle(x, y, height / 2)]


def ring(x, y, radius, width):
    return without(circle(x, y, radius + width / 2), circle(x, y, radius - width / 2))


def rectangle(x, y, width, height, radius=0.0):
    if radius == 0:
        return polygon((x, y), (x + width, y), (x + width, y + height), (x, y + height))
    right, bottom = x + width - radius, y + height - radius
    return polygon(*arc(right, bottom, radius, 0, 90, 12), *arc(x + radius, bottom, radius, 90, 180, 12),
                   *arc(x + radius, y + radius, radius, 180, 270, 12),
                   *arc(right, y + radius, radius, 270, 360, 12))


def stroke(width, *points):
    """A line of a pen's width through points, with round ends and corners."""
    shape = []
    for (ax, ay), (bx, by) in zip(points, points[1:]):
        along = math.degrees(math.atan2(by - ay, bx - ax))
        shape += polygon(*arc(bx, by, width / 2, along - 90, along + 90, 12),
                         *arc(ax, ay, width / 2, along + 90, along + 270, 12))
    return shape


def lens(ax, ay, bx, by, bulge):
    """What two equal arcs between two points enclose, each as high as `bulge` times their distance."""
    length = math.hypot(bx - ax, by - ay)
    height = bulge * length
    radius = (length * length / 4 + height * height) / (2 * height)
    along = math.degrees(math.atan2(by - ay, bx - ax))
    half = math.degrees(math.asin(min(length / 2 / radius, 1)))
    points = []
    for side in (1, -1):
        off = math.radians(along + 90 * side)
        x = (ax + bx) / 2 + (radius - height) * math.cos(off)
        y = (ay + by) / 2 + (radius - height) * math.sin(off)
        points += arc(x, y, radius, along - 90 * side - half, along - 90 * side + half, 32)
    return polygon(*points)


def wave(level, height, length, shift):
    """Everything below a wavy line."""
    crest = [(i / 48, level + height * math.sin(2 * math.pi * (i / 48 / length + shift))) for i in range(49)]
    return polygon(*crest, (1, 1), (0, 1))


def star(x, y, outer, inner, count, turn=-90.0):
    radii = (outer, inner) * count
    angles = (math.radians(turn + 180 * i / count) for i in range(2 * count))
    return polygon(*((x + r * math.cos(a), y + r * math.sin(a)) for r, a in zip(radii, angles)))


def turned(shape, degrees, x=0.5, y=0.5):
    cos, sin = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return [[(x + (px - x) * cos - (py - y) * sin, y + (px - x) * sin + (py - y) * cos) for px, py in outline]
            for outline in shape]


def moved(shape, dx, dy):
    return [[(x + dx, y + dy) for x, y in outline] for outline in shape]
