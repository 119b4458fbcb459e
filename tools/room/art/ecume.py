"""Ecume: a dolphin leaps across the setting sun."""

import math
import random

from lettering import Word
from shapes import gradient, glints, halo, picture, smooth, stars, wave

MACHINE = 'nes'
COLOUR = '#F3EAD3'
ANGLE = 0
TITLE = 'ECUME'
LINES = ('The sea has a roof,', 'and you can jump it.')
TEXT = ('Pearls lie below the waves, stars hang above them. Dive, leap, and keep clear of the jellyfish, the urchins '
        'and the gulls.')


def along(t):
    """The dolphin's back bone: from the tail (0) to the beak (1)."""
    p = ((-330, 330), (-330, -160), (110, -330), (370, 20))
    k = (1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3
    return sum(k[i] * p[i][0] for i in range(4)), sum(k[i] * p[i][1] for i in range(4))


def across(t, side):
    """The point `side` units above (positive) or below the back bone."""
    x0, y0 = along(t - 0.002)
    x1, y1 = along(t + 0.002)
    length = math.hypot(x1 - x0, y1 - y0)
    x, y = along(t)
    return x + side * (y1 - y0) / length, y - side * (x1 - x0) / length


def thick(t):
    profile = [(0, 12), (0.08, 18), (0.25, 52), (0.45, 88), (0.6, 98), (0.74, 90), (0.84, 68), (0.885, 44), (0.9, 26),
               (0.95, 19), (1, 8)]
    for (a, va), (b, vb) in zip(profile, profile[1:]):
        if t <= b:
            k = (t - a) / (b - a)
            k = k * k * (3 - 2 * k)
            return va + (vb - va) * k
    return profile[-1][1]


def dolphin():
    ts = [i / 44 for i in range(45)]
    upper = [across(t, thick(t) * 0.92) for t in ts]
    lower = [across(t, -thick(t) * 1.02) for t in ts]
    body = smooth(upper + lower[::-1])
    belly_line = [across(t, -thick(t) * (0.34 + 0.3 * math.sin(math.pi * min(1, t * 1.1)) - 0.25 * t)) for t in ts[4:42]]
    belly = smooth(belly_line + lower[4:42][::-1])
    rim = smooth([across(t, thick(t) * 0.78) for t in ts[3:40]], closed=False)
    tx, ty = along(0.0)
    fluke = (f'M{tx + 6},{ty - 6} C{tx - 70},{ty - 24} {tx - 130},{ty + 4} {tx - 168},{ty + 62} '
             f'C{tx - 100},{ty + 40} {tx - 40},{ty + 40} {tx - 6},{ty + 26} C{tx + 6},{ty + 60} {tx + 40},{ty + 110} '
             f'{tx + 100},{ty + 130} C{tx + 96},{ty + 66} {tx + 70},{ty + 14} {tx + 14},{ty - 8} Z')
    a, b, c = across(0.40, thick(0.40) * 0.8), across(0.40, 205), across(0.585, thick(0.585) * 0.85)
    dorsal = (f'M{c[0]:.0f},{c[1]:.0f} C{c[0] - 50:.0f},{c[1] - 40:.0f} {b[0] + 40:.0f},{b[1] + 10:.0f} '
              f'{b[0] - 30:.0f},{b[1] + 10:.0f} C{b[0] + 6:.0f},{b[1] + 50:.0f} {a[0] + 6:.0f},{a[1] - 30:.0f} '
              f'{a[0]:.0f},{a[1] + 8:.0f} Z')
    p, q = across(0.70, -60), across(0.61, -84)
    fin = (f'M{p[0]:.0f},{p[1]:.0f} C{p[0] - 10:.0f},{p[1] + 70:.0f} {p[0] - 60:.0f},{p[1] + 130:.0f} '
           f'{p[0] - 130:.0f},{p[1] + 168:.0f} C{p[0] - 130:.0f},{p[1] + 100:.0f} {q[0] - 16:.0f},{q[1] + 40:.0f} '
           f'{q[0]:.0f},{q[1] - 6:.0f} Z')
    eye = across(0.842, 2)
    mouth = smooth([across(1.0, -3), across(0.95, -6), across(0.90, -14), across(0.865, -30)], closed=False)
    defs = (gradient('back', [(0, '#BFE3F2'), (0.3, '#4E94C8'), (0.75, '#1E4E94'), (1, '#173570')], 0.7, 0, 0.25, 1)
            + gradient('belly', [(0, '#FFF3DD'), (0.5, '#FFD2A6'), (1, '#C88AA0')], 0.8, 0, 0.1, 1))
    return (f'<defs>{defs}</defs>'
            f'<path d="{fluke}" fill="#1D4484" stroke="#0F2350" stroke-width="5"/>'
            f'<path d="{dorsal}" fill="#27609F" stroke="#0F2350" stroke-width="5"/>'
            f'<path d="{body}" fill="url(#back)" stroke="#0F2350" stroke-width="6"/>'
            f'<path d="{belly}" fill="url(#belly)"/>'
            f'<path d="{rim}" fill="none" stroke="#EAF8FF" stroke-width="13" opacity="0.75" stroke-linecap="round"/>'
            f'<path d="{fin}" fill="#1C478C" stroke="#0F2350" stroke-width="5"/>'
            f'<path d="{mouth}" fill="none" stroke="#0F2350" stroke-width="6" stroke-linecap="round"/>'
            f'<circle cx="{eye[0]:.0f}" cy="{eye[1]:.0f}" r="13" fill="#0B1230"/>'
            f'<circle cx="{eye[0] + 4:.0f}" cy="{eye[1] - 4:.0f}" r="4.5" fill="#fff"/>')


def splash(x, y, size, seed):
    draw = random.Random(seed)
    out = []
    for i in range(46):
        a = math.radians(draw.uniform(-172, -8))
        r = size * draw.random() ** 0.7
        out.append(f'<circle cx="{x + r * math.cos(a) * 1.1:.0f}" cy="{y + r * math.sin(a) * 0.95:.0f}" '
                   f'r="{draw.uniform(3, 17) * (1.2 - r / size):.1f}"/>')
    for i in range(11):
        a = math.radians(-165 + i * 15)
        r = size * draw.uniform(0.5, 0.95)
        px, py = x + r * math.cos(a), y + r * math.sin(a) * 0.9
        out.append(f'<path d="M{x + 70 * math.cos(a) - 16:.0f},{y} Q{x + r * 0.45 * math.cos(a):.0f},{y - r * 0.7:.0f} '
                   f'{px:.0f},{py:.0f} Q{x + r * 0.6 * math.cos(a):.0f},{y - r * 0.45:.0f} {x + 70 * math.cos(a) + 16:.0f},{y} Z"/>')
    return f'<g fill="#F4FBFF" opacity="0.93">{"".join(out)}</g>'


def scene(height=1430):
    horizon = height * 0.66
    defs = (gradient('sky', [(0, '#141848'), (0.3, '#3C2A7C'), (0.56, '#A53A7E'), (0.78, '#F0704C'), (1, '#FFC062')],
                     0, 0, 0, horizon, 'userSpaceOnUse')
            + gradient('sun', [(0, '#FFFAD8'), (0.5, '#FFE07A'), (1, '#FF9A3C')])
            + gradient('sea', [(0, '#F2A06A'), (0.1, '#9C6AA8'), (0.35, '#2A58B8'), (1, '#0C1E66')]))
    sun_y = horizon - 190
    islands = (f'<path d="M-20,{horizon + 3} L40,{horizon - 60} L90,{horizon - 36} L150,{horizon - 92} L215,{horizon - 30} '
               f'L270,{horizon + 3} Z" fill="#4A2A6E"/>'
               f'<path d="M760,{horizon + 3} L830,{horizon - 48} L880,{horizon - 26} L950,{horizon - 84} L1020,{horizon - 20} '
               f'L1020,{horizon + 3} Z" fill="#56306E"/>')
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        stars(70, 5, 20, height * 0.3),
        halo(500, sun_y, 640, '#FFD98A', 0.75),
        f'<circle cx="500" cy="{sun_y}" r="318" fill="url(#sun)"/>',
        '<g fill="#C6507E" opacity="0.8">'
        f'<path d="M-30,{sun_y - 130} Q160,{sun_y - 190} 330,{sun_y - 150} Q200,{sun_y - 128} -30,{sun_y - 96} Z"/>'
        f'<path d="M1030,{sun_y - 250} Q820,{sun_y - 300} 650,{sun_y - 262} Q820,{sun_y - 240} 1030,{sun_y - 214} Z"/>'
        f'<path d="M1030,{sun_y + 20} Q900,{sun_y - 20} 760,{sun_y + 12} Q900,{sun_y + 30} 1030,{sun_y + 52} Z"/></g>',
        islands,
        f'<rect y="{horizon}" width="1000" height="{height - horizon}" fill="url(#sea)"/>',
        glints(500, horizon + 6, 520, 190, '#FFE6A0', 150, 4, 84, 6),
        f'<g transform="translate(520,{horizon - 205}) rotate(-6) scale(1.06)">{dolphin()}</g>',
        wave(horizon + 150, 70, 560, 240, '#2E62C4', 3, '#BFE6FF', 10),
        splash(205, horizon + 150, 250, 6),
        wave(horizon + 240, 92, 720, 460, '#1B429E', 5, '#E2F6FF', 15),
        wave(horizon + 350, 100, 860, 120, '#10277A', 8, '#FFFFFF', 19),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 29, 1.0, 0, 0.0, 3, lambda n: (0, (10, -6, 6, -8, 4)[n], (-5, 3, -2, 4, -4)[n], 1))
    return word, word.layers('ec', [(0, '#FFFFFF'), (0.42, '#D2F2FF'), (0.5, '#59B9F0'), (0.8, '#1F68D0'), (1, '#9FE4FF')],
                             ((8, '#0D1B5C'), (13, '#FFE6A8')), 9, '#0A0F3C', '#FFFFFF', 0.7)
