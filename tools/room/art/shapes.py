"""Shapes that several pictures use, as SVG: smooth outlines, ridges, clouds, waves, rays and glows."""

import math
import random


def smooth(points, closed=True):
    """A path through the points without corners (Catmull-Rom as cubics)."""
    n = len(points)
    count = n if closed else n - 1
    out = ['M%.1f,%.1f' % points[0]]
    for i in range(count):
        def at(k):
            return points[k % n] if closed else points[max(0, min(n - 1, k))]
        p0, p1, p2, p3 = at(i - 1), at(i), at(i + 1), at(i + 2)
        out.append('C%.1f,%.1f %.1f,%.1f %.1f,%.1f' % (
            p1[0] + (p2[0] - p0[0]) / 6, p1[1] + (p2[1] - p0[1]) / 6,
            p2[0] - (p3[0] - p1[0]) / 6, p2[1] - (p3[1] - p1[1]) / 6, p2[0], p2[1]))
    return ' '.join(out) + ('Z' if closed else '')


def gradient(name, stops, x1=0, y1=0, x2=0, y2=1, units='objectBoundingBox'):
    inside = ''.join(f'<stop offset="{s[0]}" stop-color="{s[1]}" stop-opacity="{s[2] if len(s) > 2 else 1}"/>'
                     for s in stops)
    return (f'<linearGradient id="{name}" gradientUnits="{units}" x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}">'
            f'{inside}</linearGradient>')


def radial(name, stops, cx=0.5, cy=0.5, r=0.5, units='objectBoundingBox'):
    inside = ''.join(f'<stop offset="{s[0]}" stop-color="{s[1]}" stop-opacity="{s[2] if len(s) > 2 else 1}"/>'
                     for s in stops)
    return f'<radialGradient id="{name}" gradientUnits="{units}" cx="{cx}" cy="{cy}" r="{r}">{inside}</radialGradient>'


def halo(x, y, r, colour, strength=0.9, name=None):
    """A round glow that fades out at `r`."""
    name = name or 'halo%d_%d_%d' % (x, y, r)
    return (f'<defs>{radial(name, [(0, colour, strength), (0.25, colour, strength * 0.55), (1, colour, 0)])}</defs>'
            f'<circle cx="{x}" cy="{y}" r="{r}" fill="url(#{name})"/>')


def ridge(y, height, step, seed, fill, peaked=False, left=-40, right=1040, bottom=1500):
    """Hills, or mountains if `peaked`, from edge to edge and down to `bottom`."""
    draw = random.Random(seed)
    points, x, up = [], left, False
    while x < right + step:
        rise = height * (draw.uniform(0.55, 1.0) if up else draw.uniform(0.0, 0.35))
        points.append((x, y - rise))
        x += step * draw.uniform(0.7, 1.3)
        up = not up
    if peaked:
        line = 'M' + ' L'.join('%.1f,%.1f' % p for p in points)
    else:
        line = smooth(points, closed=False)
    return f'<path d="{line} L{right + 200},{bottom} L{left},{bottom} Z" fill="{fill}"/>', points


def cloud(x, y, width, seed, colours, flat=0.5):
    """A heap of cloud on a flat base: three sets of circles, dark below, light above."""
    draw = random.Random(seed)
    puffs = []
    for i in range(16):
        t = (i + 0.5) / 16
        size = width * (0.07 + 0.13 * math.sin(math.pi * t) * draw.uniform(0.6, 1.2))
        rise = width * flat * math.sin(math.pi * t) ** 0.8 * draw.uniform(0.1, 0.75)
        puffs.append((x - width / 2 + width * t, y - size * 0.55 - rise, size))
    puffs.sort(key=lambda p: p[1])
    out = []
    for n, colour in enumerate(colours):
        for px, py, size in puffs:
            shrink = 1 - 0.2 * n
            out.append(f'<circle cx="{px + size * 0.16 * n:.1f}" cy="{py - size * 0.2 * n:.1f}" '
                       f'r="{size * shrink:.1f}" fill="{colour}"/>')
    return ''.join(out)


def rays(x, y, length, count, colour, opacity, seed, start=0, spread=360, thin=0.4):
    draw = random.Random(seed)
    out = []
    for i in range(count):
        a = math.radians(start + spread * (i + draw.uniform(-0.2, 0.2)) / count)
        half = math.radians(spread / count * thin / 2 * draw.uniform(0.5, 1.2))
        out.append('M%.1f,%.1f L%.1f,%.1f L%.1f,%.1f Z' % (
            x, y, x + length * math.cos(a - half), y + length * math.sin(a - half),
            x + length * math.cos(a + half), y + length * math.sin(a + half)))
    return f'<path d="{" ".join(out)}" fill="{colour}" opacity="{opacity}"/>'


def wave(y, height, length, shift, fill, seed=1, foam=None, foam_width=14, sharp=0.5, bottom=1500, left=-60, right=1060):
    """One row of waves with sharper crests than troughs, and foam along the crest."""
    draw = random.Random(seed)
    points = []
    for i in range(0, 121):
        x = left + (right - left) * i / 120
        a = (x + shift) / length * 2 * math.pi
        s = math.sin(a + sharp * math.sin(a)) * 0.5 + 0.5
        points.append((x, y - height * s ** 1.6 + height * 0.12 * math.sin(a * 2.7 + seed)))
    line = smooth(points, closed=False)
    out = [f'<path d="{line} L{right},{bottom} L{left},{bottom} Z" fill="{fill}"/>']
    lower = smooth([(x, top + height * 0.42 + 10 * math.sin(x / 47)) for x, top in points], closed=False)
    out.append(f'<path d="{lower}" fill="none" stroke="#fff" stroke-width="{height * 0.22:.0f}" opacity="0.10"/>'
               f'<path d="{lower}" fill="none" stroke="#fff" stroke-width="{height * 0.07:.0f}" opacity="0.16" '
               f'transform="translate(30,{height * 0.4:.0f})" stroke-dasharray="90 60 30 50"/>')
    if foam:
        flecks = []
        for x, top in points:
            if draw.random() < 0.55:
                size = foam_width * draw.uniform(0.25, 0.75)
                flecks.append(f'<circle cx="{x + draw.uniform(-5, 5):.1f}" cy="{top + draw.uniform(0, foam_width * 1.6):.1f}" '
                              f'r="{size:.1f}"/>')
        out.append(f'<path d="{line}" fill="none" stroke="{foam}" stroke-width="{foam_width}" stroke-linecap="round"/>'
                   f'<g fill="{foam}" opacity="0.85">{"".join(flecks)}</g>')
    return ''.join(out)


def glints(x, y, width, height, colour, count, seed, size=40, thick=5):
    """Short level strokes of light on water, denser near (x, y) and narrower far off."""
    draw = random.Random(seed)
    out = []
    for _ in range(count):
        t = draw.random()
        py = y + height * t
        px = x + draw.gauss(0, 1) * width * (0.25 + 0.75 * t) / 2
        long = size * (0.3 + 0.9 * t) * draw.uniform(0.4, 1.2)
        out.append('M%.1f,%.1f l%.1f,0' % (px - long / 2, py, long))
    return (f'<path d="{" ".join(out)}" fill="none" stroke="{colour}" stroke-width="{thick}" stroke-linecap="round" '
            'opacity="0.8"/>')


def stars(count, seed, top, bottom, colour='#F3EAD3', size=3.2):
    draw = random.Random(seed)
    return ''.join(f'<circle cx="{draw.uniform(0, 1000):.0f}" cy="{draw.uniform(top, bottom):.0f}" '
                   f'r="{size * draw.uniform(0.4, 1.2):.1f}" fill="{colour}" opacity="{draw.uniform(0.4, 1):.2f}"/>'
                   for _ in range(count))


def sparkle(x, y, r, colour):
    """A star of four points."""
    k = r * 0.13
    return (f'<path d="M{x},{y - r} L{x + k},{y - k} L{x + r},{y} L{x + k},{y + k} L{x},{y + r} L{x - k},{y + k} '
            f'L{x - r},{y} L{x - k},{y - k} Z" fill="{colour}"/>')


def picture(inside, width=1000, height=1430, defs='', view=None):
    view = view or f'0 0 {width} {height}'
    return (f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" viewBox="{view}" '
            f'preserveAspectRatio="xMidYMid slice" width="{width}" height="{height}"><defs>{defs}</defs>{inside}</svg>')
