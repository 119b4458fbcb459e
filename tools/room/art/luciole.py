"""Luciole: a firefly lights the lanterns of a garden at night."""

import math
import random

from lettering import Word
from shapes import gradient, halo, picture, radial, ridge, sparkle, stars

MACHINE = 'mastersystem'
COLOUR = '#FF7A6B'
ANGLE = 20
TITLE = 'LUCIOLE'
LINES = ('Twelve lanterns,', 'one small light.')
TEXT = ('Night has come over the garden. Gather the dew, mind the bats, the wasps and the spider, and light every '
        'lantern before the day breaks.')


def firefly():
    defs = (radial('tail', [(0, '#FFFFF0'), (0.4, '#FFF27A'), (0.75, '#FFC02E'), (1, '#D9761A')], 0.4, 0.45, 0.62)
            + radial('head', [(0, '#9A5A3C'), (0.6, '#5A2C2E'), (1, '#2A1228')], 0.62, 0.3, 0.75)
            + gradient('wing', [(0, '#F4FFFF', 0.95), (1, '#7FD8EA', 0.5)], 0, 0, 1, 1))
    return (f'<defs>{defs}</defs>'
            '<path d="M-20,-70 C-120,-330 -330,-360 -352,-262 C-366,-180 -180,-90 -30,-40 Z" fill="url(#wing)" '
            'stroke="#DDF8FF" stroke-width="5"/>'
            '<path d="M20,-80 C40,-330 -110,-440 -180,-366 C-230,-290 -110,-140 -10,-50 Z" fill="url(#wing)" '
            'stroke="#DDF8FF" stroke-width="5"/>'
            '<path d="M-20,-70 C-120,-180 -220,-240 -300,-262 M10,-80 C-30,-200 -90,-290 -150,-340" fill="none" '
            'stroke="#fff" stroke-width="5" opacity="0.7"/>'
            '<path d="M-14,-64 C-110,-110 -270,-40 -318,66 C-336,150 -250,196 -160,166 C-60,132 30,70 52,10 Z" fill="url(#tail)"/>'
            '<path d="M-92,-66 C-60,0 -70,90 -120,150 M-172,-36 C-140,20 -150,110 -200,172 M-240,18 C-222,60 -226,120 -262,164" '
            'fill="none" stroke="#C4701A" stroke-width="13" opacity="0.6" stroke-linecap="round"/>'
            '<path d="M-30,-86 C40,-120 110,-80 112,0 C108,70 40,96 -14,64 C-50,30 -56,-50 -30,-86 Z" fill="#3C1A30"/>'
            '<circle cx="140" cy="-34" r="104" fill="url(#head)"/>'
            '<ellipse cx="176" cy="-40" rx="44" ry="54" fill="#FFFDF0"/><ellipse cx="188" cy="-34" rx="26" ry="36" fill="#1A1030"/>'
            '<circle cx="198" cy="-50" r="11" fill="#fff"/>'
            '<ellipse cx="104" cy="-48" rx="30" ry="44" fill="#FFFDF0"/><ellipse cx="114" cy="-42" rx="18" ry="29" fill="#1A1030"/>'
            '<circle cx="120" cy="-55" r="8" fill="#fff"/>'
            '<path d="M150,38 C174,50 202,40 214,20" fill="none" stroke="#FFC9A0" stroke-width="8" stroke-linecap="round"/>'
            '<path d="M120,-130 C120,-210 160,-236 196,-232 M178,-126 C200,-190 240,-196 262,-182" fill="none" stroke="#3C1A30" '
            'stroke-width="11" stroke-linecap="round"/><circle cx="200" cy="-232" r="17" fill="#FFD24A"/>'
            '<circle cx="266" cy="-180" r="17" fill="#FFD24A"/>'
            '<path d="M30,70 C40,110 70,120 84,112 M-10,74 C-6,120 20,140 36,136" fill="none" stroke="#3C1A30" stroke-width="12" '
            'stroke-linecap="round"/>')


def lantern(x, y, size, lit):
    light = halo(0, -40, 330, '#FFB347', 0.85, f'lamp{x}') if lit else ''
    pane = '#FFF0A8' if lit else '#26305A'
    return (f'<g transform="translate({x},{y}) scale({size})">{light}'
            '<path d="M-16,70 L16,70 L20,760 L-20,760 Z" fill="#1C1430"/>'
            f'<path d="M-66,-110 L66,-110 L50,60 L-50,60 Z" fill="{pane}" stroke="#1C1430" stroke-width="14"/>'
            '<path d="M-96,-108 L0,-190 L96,-108 Z M-64,56 L64,56 L64,80 L-64,80 Z" fill="#241A3C"/>'
            '<path d="M0,-110 L0,60" stroke="#1C1430" stroke-width="9"/><circle cy="-196" r="15" fill="#241A3C"/></g>')


def grass(base, height, count, colour, seed):
    draw = random.Random(seed)
    out = []
    for i in range(count):
        x = -20 + 1040 * i / count + draw.uniform(-8, 8)
        tall, lean, w = height * draw.uniform(0.4, 1), draw.uniform(-40, 40), draw.uniform(9, 17)
        out.append(f'M{x - w:.0f},{base + 60} Q{x:.0f},{base - tall * 0.5:.0f} {x + lean:.0f},{base - tall:.0f} '
                   f'Q{x + w * 0.6:.0f},{base - tall * 0.4:.0f} {x + w:.0f},{base + 60} Z')
    return f'<path d="{" ".join(out)}" fill="{colour}"/>'


def flower(x, y, tall, colour, heart):
    petals = ''.join(f'<ellipse cx="{x + 30 * math.cos(k * 1.2566):.0f}" cy="{y - tall + 30 * math.sin(k * 1.2566):.0f}" rx="27" '
                     f'ry="27" fill="{colour}"/>' for k in range(5))
    return (f'<path d="M{x},{y} Q{x + 14},{y - tall / 2} {x},{y - tall}" stroke="#164A3C" stroke-width="11" fill="none"/>'
            f'{petals}<circle cx="{x}" cy="{y - tall}" r="21" fill="{heart}"/>')


def scene(height=1430):
    ground = height * 0.83
    defs = (gradient('sky', [(0, '#0A0E3A'), (0.4, '#1E2A86'), (0.7, '#5A48B8'), (1, '#9A6AC8')],
                     0, 0, 0, ground, 'userSpaceOnUse')
            + radial('moon', [(0, '#FFFEF0'), (0.7, '#FBF0CC'), (1, '#E8D49A')], 0.4, 0.35, 0.7)
            + gradient('garden', [(0, '#1C6A5A'), (1, '#072C30')]))
    moon_y = height * 0.44
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        stars(110, 3, 10, ground * 0.75),
        halo(640, moon_y, 640, '#C9C4FF', 0.55),
        f'<circle cx="640" cy="{moon_y}" r="292" fill="url(#moon)"/>',
        f'<g fill="#E4CF98" opacity="0.7"><circle cx="730" cy="{moon_y - 120}" r="48"/><circle cx="800" cy="{moon_y + 60}" r="66"/>'
        f'<circle cx="600" cy="{moon_y + 190}" r="40"/><circle cx="520" cy="{moon_y - 170}" r="30"/></g>',
        ridge(ground - 150, 150, 150, 5, '#3A3AA0')[0],
        ridge(ground - 80, 120, 110, 9, '#232B78')[0],
        ridge(ground - 20, 90, 60, 2, '#141C58')[0],
        f'<rect y="{ground - 20}" width="1000" height="{height - ground + 20}" fill="url(#garden)"/>',
        lantern(866, ground - 170, 1.0, True),
        lantern(96, ground - 60, 0.62, False),
        halo(330, height * 0.60, 560, '#FFE36A', 0.9),
        f'<g transform="translate(455,{height * 0.565}) rotate(-10) scale(1.06)">{firefly()}</g>',
        halo(262, height * 0.625, 400, '#FFF29A', 0.6),
        grass(ground + 70, 150, 64, '#0F4A44', 4),
        flower(150, ground + 160, 170, '#FF8FA8', '#FFE070'), flower(640, ground + 170, 150, '#FFE9D0', '#FFB347'),
        flower(300, ground + 190, 110, '#FFD24A', '#D9761A'), flower(770, ground + 190, 100, '#FF8FA8', '#FFE070'),
        grass(ground + 170, 170, 44, '#062A2E', 8),
        sparkle(120, height * 0.50, 36, '#FFF6B0'), sparkle(60, height * 0.67, 24, '#FFF6B0'),
        sparkle(560, height * 0.72, 26, '#FFF6B0'), sparkle(220, height * 0.76, 30, '#FFF6B0'),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 28, 1.0, 0, 0.0, 2, lambda n: (0, 16 * math.sin(n * 0.9) - 4, (-6, -2, 3, 4, 0, -3, 4)[n], 1))
    return word, word.layers('lu', [(0, '#FFFFF2'), (0.4, '#FFF27A'), (0.75, '#FFB52E'), (1, '#E8741E')],
                             ((8, '#2A1458'), (13, '#8FE0F0')), 9, '#080C34', '#FFFFFF', 0.8)
