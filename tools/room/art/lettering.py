"""Our lettering: capitals as lines of a pen, drawn by a round or a broad nib.

A letter is a path in a box 100 high (y down), through the middle of its strokes. A word takes a weight, a nib, a slant
and a place for each letter, and becomes layers of SVG: shadow, outlines, a filled face and a light on its upper side.
"""

import math
import re

LETTERS = {
    'A': (74, 'M0,100 L37,0 L74,100 M15,66 L59,66'),
    'C': (70, 'M68,18 C54,-8 0,-10 0,50 C0,110 54,108 68,82'),
    'D': (70, 'M0,0 L0,100 L24,100 C86,100 86,0 24,0 L0,0'),
    'E': (58, 'M58,0 L0,0 L0,100 L58,100 M0,49 L47,49'),
    'G': (72, 'M68,18 C54,-8 0,-10 0,50 C0,112 72,110 72,56 L44,56'),
    'H': (66, 'M0,0 L0,100 M66,0 L66,100 M0,50 L66,50'),
    'I': (0, 'M0,0 L0,100'),
    'K': (64, 'M0,0 L0,100 M60,0 L4,56 M22,40 L64,100'),
    'L': (54, 'M0,0 L0,100 L54,100'),
    'M': (82, 'M0,100 L8,0 L41,72 L74,0 L82,100'),
    'N': (66, 'M0,100 L0,0 L66,100 L66,0'),
    'O': (74, 'M37,0 C86,0 86,100 37,100 C-12,100 -12,0 37,0 Z'),
    'P': (62, 'M0,100 L0,0 L32,0 C74,0 74,56 32,56 L0,56'),
    'R': (66, 'M0,100 L0,0 L34,0 C74,0 74,52 34,52 L0,52 M32,52 L66,100'),
    'S': (62, 'M60,15 C48,-8 2,-6 2,25 C2,54 62,44 62,75 C62,108 10,108 0,84'),
    'T': (70, 'M0,0 L70,0 M35,0 L35,100'),
    'U': (68, 'M0,0 L0,62 C0,113 68,113 68,62 L68,0'),
    'W': (94, 'M0,0 L21,100 L47,28 L73,100 L94,0'),
    'Y': (70, 'M0,0 L35,48 L70,0 M35,48 L35,100'),
    ' ': (34, ''),
}

NUMBER = re.compile(r'(-?[\d.]+),(-?[\d.]+)')


def moved(path, change):
    """The path with each point given to `change`."""
    return NUMBER.sub(lambda m: '%.2f,%.2f' % change(float(m.group(1)), float(m.group(2))), path)


class Word:
    """A word with its letters placed; `layout` gives (dx, dy, degrees, scale) of letter n, and may be left out."""

    def __init__(self, text, weight=22, nib=1.0, angle=-30, slant=0.0, tracking=0.0, layout=None, skip=()):
        self.weight, self.nib, self.angle = weight, nib, math.radians(angle)
        self.paths, self.centres = [], []
        x = weight / 2
        for n, letter in enumerate(text):
            wide, path = LETTERS[letter]
            dx, dy, degrees, scale = layout(n) if layout else (0, 0, 0, 1)
            turn = math.radians(degrees)
            middle = x + wide * scale / 2

            def place(px, py, middle=middle, wide=wide, dx=dx, dy=dy, turn=turn, scale=scale):
                px, py = (px - wide / 2) * scale, (py - 50) * scale
                px, py = px * math.cos(turn) - py * math.sin(turn), px * math.sin(turn) + py * math.cos(turn)
                return middle + px + dx - slant * (py + dy), 50 + py + dy

            self.centres.append(place(wide / 2, 50))
            if path and n not in skip:
                self.paths.append(moved(path, place))
            x += wide * scale + weight + tracking
        self.width = x - weight / 2 - tracking

    def strokes(self, extra=0.0, colour='white', weight=None, shift=(0, 0)):
        """All letters as one group; `extra` widens the stroke by that much on either side."""
        broad = (weight or self.weight) + 2 * extra
        thin = (weight or self.weight) * self.nib + 2 * extra
        c, s, squash = math.cos(self.angle), math.sin(self.angle), thin / broad

        def into_pen(x, y):
            x, y = x + shift[0], y + shift[1]
            return c * x + s * y, (-s * x + c * y) / squash

        data = ' '.join(moved(path, into_pen) for path in self.paths)
        return (f'<path transform="matrix({c:.5f},{s:.5f},{-s * squash:.5f},{c * squash:.5f},0,0)" d="{data}" '
                f'fill="none" stroke="{colour}" stroke-width="{broad:.2f}" stroke-linecap="round" '
                f'stroke-linejoin="round"/>')

    def layers(self, name, face, outlines=(), depth=0, depth_colour='#000', light='#fff', light_opacity=0.6, extra=''):
        """SVG of the word: `face` is a list of (offset, colour) from top to bottom, `outlines` of (width, colour)."""
        wide, tall = self.width + 400, 500
        stops = ''.join(f'<stop offset="{at}" stop-color="{colour}"/>' for at, colour in face)
        out = [f'<defs><linearGradient id="{name}f" gradientUnits="userSpaceOnUse" x1="0" y1="-12" x2="0" y2="112">'
               f'{stops}</linearGradient><mask id="{name}m" maskUnits="userSpaceOnUse" x="-200" y="-200" '
               f'width="{wide}" height="{tall}">{self.strokes()}{extra}</mask></defs>']
        widest = max([w for w, _ in outlines], default=0)
        for step in range(depth, 0, -1):
            out.append(self.strokes(widest, depth_colour, shift=(step, step * 1.1)))
        for width, colour in sorted(outlines, reverse=True):
            out.append(self.strokes(width, colour))
        out.append(f'<rect x="-200" y="-200" width="{wide}" height="{tall}" fill="url(#{name}f)" '
                   f'mask="url(#{name}m)"/>')
        if light:
            inner = self.weight * 0.16
            out.append(f'<g opacity="{light_opacity}" mask="url(#{name}m)">'
                       + self.strokes(0, light, inner, (-self.weight * 0.22, -self.weight * 0.22 * self.nib)) + '</g>')
        return ''.join(out)
