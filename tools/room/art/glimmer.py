"""Glimmer: a firefly flies between two lanterns over a mountain lake."""

import math
import random

from lettering import Word
from shapes import glints, gradient, halo, picture, radial, ridge, smooth, sparkle, stars

MACHINE = 'gamegear'
COLOUR = '#4FC3C7'
ANGLE = 0
TITLE = 'GLIMMER'
LINES = ('Two lanterns.', 'One firefly.')
TEXT = ('Two lantern keepers, and a firefly between them. Send it back with a stroke of your light; what you miss '
        'lights a lamp for the other side. Alone, or two consoles on a cable.')


def comet(points, colour, pale, seed, name):
    """A light with a tail that thins along the points, the last of which is its head."""
    draw = random.Random(seed)
    out = []
    n = len(points)
    for width, shade, opacity in ((120, colour, 0.35), (74, colour, 0.75), (30, pale, 0.95)):
        left, right = [], []
        for i, (x, y) in enumerate(points):
            a, b = points[max(0, i - 1)], points[min(n - 1, i + 1)]
            length = math.hypot(b[0] - a[0], b[1] - a[1])
            nx, ny = -(b[1] - a[1]) / length, (b[0] - a[0]) / length
            half = width / 2 * (i / (n - 1)) ** 1.3 + 1
            left.append((x + nx * half, y + ny * half))
            right.append((x - nx * half, y - ny * half))
        out.append(f'<path d="{smooth(left + right[::-1])}" fill="{shade}" opacity="{opacity}"/>')
    for i in range(34):
        x, y = points[draw.randrange(n)]
        out.append(sparkle(x + draw.gauss(0, 46), y + draw.gauss(0, 46), draw.uniform(6, 24), pale))
    x, y = points[-1]
    out.append(halo(x, y, 330, colour, 1.0, name) + f'<circle cx="{x}" cy="{y}" r="62" fill="{pale}"/>'
               f'<circle cx="{x}" cy="{y}" r="44" fill="#fff"/>' + sparkle(x, y, 210, '#FFFFFF'))
    return ''.join(out)


def flight(points, steps=40):
    """A smooth line of `steps` points through the given ones."""
    out = []
    n = len(points) - 1
    for i in range(steps):
        t = i / (steps - 1) * n
        k = min(int(t), n - 1)
        t -= k
        p = [points[max(0, k - 1)], points[k], points[k + 1], points[min(n, k + 2)]]
        out.append(tuple(0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t * t + (3 * b - a - 3 * c + d) * t ** 3)
                         for a, b, c, d in zip(*p)))
    return out


def lantern(x, y, colour, pale, size):
    return (halo(x, y, 360, colour, 0.8, f'gl{x}') + f'<g transform="translate({x},{y:.1f}) scale({size})">'
            '<path d="M0,-900 V-110" stroke="#1E1238" stroke-width="7"/>'
            '<path d="M-34,-118 h68 v22 h-68 Z M-34,96 h68 v22 h-68 Z" fill="#2A1A48"/>'
            f'<path d="M-40,-96 C-104,-40 -104,40 -40,96 H40 C104,40 104,-40 40,-96 Z" fill="{colour}"/>'
            f'<ellipse rx="46" ry="80" fill="{pale}"/>'
            '<path d="M-66,-62 H66 M-80,-32 H80 M-85,0 H85 M-80,32 H80 M-66,62 H66" stroke="#7A3A20" stroke-width="5" '
            f'opacity="0.45"/><path d="M0,118 v70 M-14,118 v46 M14,118 v46" stroke="{colour}" stroke-width="8"/></g>')


def scene(height=1430):
    shore = height * 0.79
    defs = (gradient('sky', [(0, '#3A1E78'), (0.35, '#7A3A9C'), (0.65, '#D9608A'), (1, '#FFB070')],
                     0, 0, 0, shore, 'userSpaceOnUse')
            + radial('moon', [(0, '#FFF2D8'), (0.7, '#FBD2A4'), (1, '#EFAE84')], 0.4, 0.35, 0.7)
            + gradient('lake', [(0, '#FFB87A'), (0.3, '#C0588C'), (1, '#38206E')])
            + gradient('far', [(0, '#B4649C'), (1, '#E08A8C')]) + gradient('mid', [(0, '#6A3A86'), (1, '#A05088')]))
    moon_y = height * 0.40
    far, tops = ridge(shore - 60, 330, 150, 12, 'url(#far)', True)
    snow = ''.join(f'<path d="M{x:.0f},{y:.0f} L{x - 46:.0f},{y + 70:.0f} L{x - 14:.0f},{y + 52:.0f} L{x + 6:.0f},{y + 78:.0f} '
                   f'L{x + 24:.0f},{y + 50:.0f} L{x + 50:.0f},{y + 72:.0f} Z" fill="#FFE2CC" opacity="0.85"/>'
                   for n, (x, y) in enumerate(tops) if n % 2)
    draw = random.Random(2)
    trees = []
    x = -20
    while x < 1040:
        tall, w = draw.uniform(60, 150), draw.uniform(20, 36)
        trees.append(f'M{x:.0f},{shore + 4} L{x + w:.0f},{shore - tall:.0f} L{x + 2 * w:.0f},{shore + 4} Z')
        x += w * draw.uniform(0.6, 1.2)
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        stars(60, 8, 10, height * 0.4, '#FFE9F4'),
        halo(500, moon_y, 560, '#FFD8B8', 0.6),
        f'<circle cx="500" cy="{moon_y}" r="262" fill="url(#moon)"/>',
        f'<g fill="#E8A27C" opacity="0.6"><circle cx="420" cy="{moon_y - 70}" r="46"/><circle cx="600" cy="{moon_y - 130}" r="34"/>'
        f'<circle cx="590" cy="{moon_y + 80}" r="58"/><circle cx="440" cy="{moon_y + 130}" r="30"/></g>',
        far, snow, ridge(shore - 10, 190, 110, 4, 'url(#mid)', True)[0],
        f'<path d="{" ".join(trees)}" fill="#2E1A56"/>',
        f'<rect y="{shore}" width="1000" height="{height - shore}" fill="url(#lake)"/>',
        f'<g transform="translate(0,{2 * shore}) scale(1,-1)" opacity="0.45"><path d="{" ".join(trees)}" fill="#2E1A56"/></g>',
        glints(500, shore + 16, 560, 150, '#FFE0B8', 130, 7, 80, 6),
        comet(flight([(190, height * 0.60), (420, height * 0.73), (760, height * 0.70), (790, height * 0.56), (560, height * 0.47),
                      (440, height * 0.56)]), '#9BE84A', '#F4FFD0', 3, 'cg'),
        lantern(150, height * 0.50, '#FFC04A', '#FFF6C8', 1.55), lantern(862, height * 0.62, '#4FB8FF', '#E4F8FF', 1.55),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 24, 1.0, 0, 0.0, 2, lambda n: (0, -10 * math.sin(math.pi * n / 6), (n - 3) * 2.0, 1))
    return word, word.layers('gl', [(0, '#FFFFFF'), (0.45, '#FFE9B0'), (0.6, '#FFB86A'), (1, '#F0709A')],
                             ((7, '#3A1668'), (12, '#FFF0D8')), 9, '#1C0A48', '#FFFFFF', 0.8)
