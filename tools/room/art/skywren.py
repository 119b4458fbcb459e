"""Skywren: a small bird against the wind, over islands at sunset."""

import random

from lettering import Word
from shapes import gradient, glints, halo, picture, radial, rays, ridge

MACHINE = 'arcade'
COLOUR = '#FFB347'
ANGLE = -8
TITLE = 'SKYWREN'
LINES = ('A small bird', 'against the wind.')
TEXT = ('Kites, crows and balloons hold the air between the islands. Sing them out of your way, keep off the hills, '
        'and fly on until the light changes.')


def wren():
    """The bird, its beak to the right, about 900 wide."""
    defs = (gradient('wrenBody', [(0, '#FFC069'), (0.45, '#E0762E'), (1, '#7A2E26')], 0.3, 0, 0.6, 1)
            + gradient('wrenChest', [(0, '#FFF6DC'), (0.6, '#FFD9A0'), (1, '#E09A64')], 0.5, 0, 0.5, 1)
            + gradient('wrenWing', [(0, '#FFD27A'), (0.3, '#F0892E'), (1, '#8A2F28')], 0.8, 0, 0.3, 1)
            + gradient('wrenFar', [(0, '#B4522E'), (1, '#5A1E2C')], 0.5, 0, 0.5, 1))

    def feather(x, y, length, wide, turn, fill):
        return (f'<path transform="translate({x},{y}) rotate({turn})" d="M0,{-wide / 2} C{length * 0.5},{-wide * 0.75} '
                f'{length * 0.9},{-wide * 0.5} {length},0 C{length * 0.85},{wide * 0.5} {length * 0.4},{wide * 0.6} 0,{wide / 2} Z" '
                f'fill="{fill}" stroke="#4A1622" stroke-width="5"/>')

    far = ''.join(feather(90 + 8 * k, -60 - 6 * k, 300 + 24 * k, 70, -104 + 12 * k, 'url(#wrenFar)') for k in range(5))
    near = ''.join(feather(-6 - 26 * k, -40 + 8 * k, 440 - 26 * abs(k - 2), 84, -98 - 15 * k, 'url(#wrenWing)')
                   for k in range(6, -1, -1))
    covers = ''.join(feather(20 - 22 * k, -46 + 8 * k, 220 - 8 * k, 78, -94 - 16 * k, '#FFB450') for k in range(6, -1, -1))
    tail = ''.join(feather(-235, 40, 270 - 12 * abs(k), 58, 203 + 10 * k, 'url(#wrenWing)') for k in (-2, 2, -1, 1, 0))
    return (f'<defs>{defs}</defs>{far}{tail}'
            '<path d="M300,-92 C250,-170 120,-170 20,-110 C-90,-60 -200,-20 -270,26 C-250,92 -120,190 40,190 '
            'C190,188 300,110 316,-10 C320,-40 316,-70 300,-92 Z" fill="url(#wrenBody)" stroke="#4A1622" stroke-width="6"/>'
            '<path d="M318,-30 C300,10 240,30 170,34 C60,40 -60,70 -150,96 C-90,160 -30,190 40,188 C190,186 304,100 318,-30 Z" '
            'fill="url(#wrenChest)"/>'
            '<path d="M40,110 q18,22 40,8 M110,96 q18,22 40,8 M-20,140 q18,20 38,6 M66,150 q18,20 38,6 M150,130 q16,20 36,4" '
            'fill="none" stroke="#C9763E" stroke-width="7" stroke-linecap="round"/>'
            '<path d="M296,-96 L420,-70 L312,-44 Z" fill="#3A2430"/><path d="M306,-72 L420,-70 L312,-44 Z" fill="#6A4440"/>'
            '<path d="M130,-120 C190,-136 250,-128 296,-98 L290,-84 C240,-108 190,-112 134,-98 Z" fill="#FFF1CC"/>'
            '<circle cx="246" cy="-74" r="27" fill="#1A0C18"/><circle cx="255" cy="-83" r="9" fill="#fff"/>'
            '<path d="M20,176 L0,226 M70,182 L66,232" stroke="#5A3430" stroke-width="11" stroke-linecap="round"/>'
            f'{near}{covers}')


def balloon(x, y, size, name='balloonA', colours=('#FFB08A', '#E8412E', '#7A1424'), stripe='#FFE7BF'):
    return (f'<g transform="translate({x},{y}) scale({size})"><defs>'
            f'{radial(name, [(0, colours[0]), (0.5, colours[1]), (1, colours[2])], 0.36, 0.3, 0.75)}'
            f'<clipPath id="{name}c"><path d="M0,-150 C110,-150 150,-70 140,0 C130,60 60,110 34,150 H-34 C-60,110 -130,60 -140,0 '
            'C-150,-70 -110,-150 0,-150 Z"/></clipPath></defs>'
            f'<g clip-path="url(#{name}c)"><rect x="-160" y="-160" width="320" height="320" fill="url(#{name})"/>'
            f'<path d="M-150,-20 Q0,40 150,-20 V34 Q0,94 -150,34 Z" fill="{stripe}" opacity="0.9"/></g>'
            '<path d="M-30,152 L-20,196 M30,152 L20,196" stroke="#4A2A20" stroke-width="5"/>'
            '<path d="M-26,194 h52 l-6,46 h-40 Z" fill="#8A5A30"/></g>')


def kite(x, y, size, turn, colour, dark):
    return (f'<g transform="translate({x},{y}) rotate({turn}) scale({size})"><path d="M0,100 C20,190 -60,230 -10,320 C20,380 -40,420 -10,480" '
            'fill="none" stroke="#4A1E3C" stroke-width="6"/>'
            '<path d="M-12,230 l-34,-16 v34 Z M-12,230 l34,-16 v34 Z M-2,350 l-34,-16 v34 Z M-2,350 l34,-16 v34 Z" fill="#FFE070"/>'
            f'<path d="M0,-130 L86,-20 L0,110 Z" fill="{dark}"/><path d="M0,-130 L-86,-20 L0,110 Z" fill="{colour}"/>'
            '<path d="M0,-130 V110 M-86,-20 H86" stroke="#4A1E3C" stroke-width="6"/></g>')


def scene(height=1430, sun=(610, 0.40), bird=(530, 0.545, 0.92), sky_only=False):
    horizon = height * 0.77
    defs = (gradient('sky', [(0, '#2A1470'), (0.28, '#6A2A92'), (0.52, '#D84A78'), (0.76, '#FF8A4A'), (1, '#FFD070')],
                     0, 0, 0, horizon, 'userSpaceOnUse')
            + gradient('sun', [(0, '#FFFDE0'), (0.55, '#FFE56A'), (1, '#FF9A3A')])
            + gradient('sea', [(0, '#FF9A5C'), (0.12, '#B0508E'), (0.4, '#5A2AA0'), (1, '#22106A')])
            + gradient('hill', [(0, '#8A3A6E'), (1, '#5A2468')]) + gradient('island', [(0, '#5ACB3A'), (0.16, '#2C8A3C'),
                                                                                        (0.2, '#9A4A3C'), (1, '#4A1E30')]))
    sun_y = height * sun[1]
    draw = random.Random(6)
    streaks = ''.join(f'<path d="M{draw.uniform(-80, 900):.0f},{draw.uniform(height * 0.22, horizon - 60):.0f} '
                      f'q{draw.uniform(60, 130):.0f},-16 {draw.uniform(160, 300):.0f},0 q-90,16 -200,0 Z" fill="#FFC6A0" '
                      f'opacity="0.55"/>' for _ in range(13))
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        halo(sun[0], sun_y, 640, '#FFE59A', 0.8),
        rays(sun[0], sun_y, 1600, 18, '#FFE9B0', 0.12, 8),
        f'<circle cx="{sun[0]}" cy="{sun_y}" r="270" fill="url(#sun)"/>',
        streaks,
        ridge(horizon - 30, 250, 210, 21, 'url(#hill)', True)[0],
        ridge(horizon + 2, 130, 150, 14, '#45206A', True)[0],
        f'<rect y="{horizon}" width="1000" height="{height - horizon}" fill="url(#sea)"/>',
        glints(sun[0], horizon + 8, 520, 200, '#FFD98A', 150, 4, 80, 6),
        balloon(846, height * 0.345, 0.78), balloon(120, height * 0.63, 0.5, 'balloonB', ('#CDE4FF', '#4A6AD8', '#241A6A')),
        kite(120, height * 0.33, 0.86, -20, '#4FC3C7', '#1E7A94'),
        f'<path d="M560,{height + 20} C600,{height - 120} 680,{height - 230} 800,{height - 232} C900,{height - 236} 960,{height - 190} '
        f'1040,{height - 190} V{height + 20} Z" fill="url(#island)"/>',
        f'<path d="M-40,{height + 20} V{height - 120} C80,{height - 170} 220,{height - 130} 320,{height + 20} Z" fill="url(#island)"/>',
    ]
    if not sky_only:
        inside.insert(-2, f'<g transform="translate({bird[0]},{height * bird[1]}) rotate(-12) scale({bird[2]})">{wren()}</g>')
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 26, 0.72, -25, 0.20, 0, lambda n: (0, (0, 0, 0, 0, -1, -3, -6)[n], 0, (1.22, 1, 1, 1, 1, 1, 1)[n]))
    return word, word.layers('sw', [(0, '#FFFDD8'), (0.4, '#FFE15A'), (0.52, '#FF8A2E'), (0.8, '#E0365A'), (1, '#A02A9A')],
                             ((8, '#2A1060'), (13, '#FFF3D0')), 11, '#14083C', '#FFFFFF', 0.75)
