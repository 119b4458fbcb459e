"""Glimmer: two lights race around each other over a mountain lake."""

import math
import random

from lettering import Word
from shapes import glints, gradient, halo, picture, radial, ridge, smooth, sparkle, stars

MACHINE = 'gamegear'
COLOUR = '#4FC3C7'
ANGLE = 0
TITLE = 'GLIMMER'
LINES = ('Two lights.', 'One evening.')
TEXT = ('Catch the sparks of the dusk and carry them to your lantern. Alone against the fireflies, or two together '
        'on a link cable.')


def comet(points, colour, pale, seed, name):
    """A light with a tail that thins along the points, the last of which is its head."""
    draw = random.Random(seed)
    out = []
    n = len(points)
    for width, shade, opacity in ((130, colour, 0.35), (84, colour, 0.75), (38, pale, 0.95)):
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
    out.append(halo(x, y, 270, colour, 1.0, name) + f'<circle cx="{x}" cy="{y}" r="62" fill="{pale}"/>'
               f'<circle cx="{x}" cy="{y}" r="44" fill="#fff"/>' + sparkle(x, y, 170, '#FFFFFF'))
    return ''.join(out)


def spiral(x, y, turn, start, end, far, near, squash=0.78):
    out = []
    for i in range(28):
        t = i / 27
        a = math.radians(start + (end - start) * t)
        r = far + (near - far) * t
        px, py = r * math.cos(a), r * math.sin(a) * squash
        c, s = math.cos(math.radians(turn)), math.sin(math.radians(turn))
        out.append((x + px * c - py * s, y + px * s + py * c))
    return out


def lantern(x, y, colour, pale):
    return (halo(x, y, 250, colour, 0.8, f'gl{x}') +
            f'<path d="M{x},{y - 900} L{x},{y - 110}" stroke="#1E1238" stroke-width="7"/>'
            f'<path d="M{x - 34},{y - 118} h68 v22 h-68 Z M{x - 34},{y + 96} h68 v22 h-68 Z" fill="#2A1A48"/>'
            f'<path d="M{x - 40},{y - 96} C{x - 104},{y - 40} {x - 104},{y + 40} {x - 40},{y + 96} H{x + 40} '
            f'C{x + 104},{y + 40} {x + 104},{y - 40} {x + 40},{y - 96} Z" fill="{colour}"/>'
            f'<ellipse cx="{x}" cy="{y}" rx="44" ry="80" fill="{pale}"/>'
            f'<path d="M{x - 78},{y - 34} H{x + 78} M{x - 84},{y} H{x + 84} M{x - 78},{y + 34} H{x + 78}" stroke="#7A3A20" '
            f'stroke-width="5" opacity="0.4"/><path d="M{x},{y + 118} v60" stroke="{colour}" stroke-width="9"/>')


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
        lantern(104, height * 0.42, '#FFC04A', '#FFF6C8'), lantern(896, height * 0.42, '#4FB8FF', '#E4F8FF'),
        comet(spiral(500, height * 0.57, -18, 190, 385, 440, 250), '#9BE84A', '#F2FFC8', 3, 'cg'),
        comet(spiral(500, height * 0.57, -18, 10, 205, 440, 250), '#4FC3FF', '#E6FAFF', 5, 'cb'),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 24, 1.0, 0, 0.0, 2, lambda n: (0, -10 * math.sin(math.pi * n / 6), (n - 3) * 2.0, 1))
    return word, word.layers('gl', [(0, '#FFFFFF'), (0.45, '#FFE9B0'), (0.6, '#FFB86A'), (1, '#F0709A')],
                             ((7, '#3A1668'), (12, '#FFF0D8')), 9, '#1C0A48', '#FFFFFF', 0.8)
