"""The pond: goldfish under the lilies."""

import random

from lettering import Word
from shapes import gradient, picture, rays

MACHINE = 'mastersystem'
COLOUR = '#FF7A6B'
ANGLE = 0
TITLE = 'THE POND'
LINES = ('As many fish', 'as the machine can hold.')
TEXT = ('Nothing to win, nothing to lose. Sit at the edge, watch the light come down through the water, and count the '
        'goldfish until you forget the number.')


def fish(x, y, size, turn, name, pale=False):
    colours = ('#FFF3C8', '#FFB13A', '#F0642A', '#A83224') if not pale else ('#FFFFFF', '#FFE3C0', '#F4A27A', '#B8604A')
    scales = ''.join(f'M{-110 + 46 * i + 23 * (j % 2)},{-52 + 34 * j} q22,18 0,36 ' for i in range(6) for j in range(4))
    return (f'<g transform="translate({x},{y}) rotate({turn}) scale({size})"><defs>'
            f'{gradient(name, [(0, colours[0]), (0.3, colours[1]), (0.7, colours[2]), (1, colours[3])])}</defs>'
            f'<path d="M-170,0 C-250,-40 -310,-140 -400,-150 C-370,-90 -380,-40 -340,0 C-390,40 -380,110 -410,160 '
            f'C-310,150 -250,50 -170,0 Z" fill="{colours[2]}" opacity="0.92" stroke="{colours[3]}" stroke-width="6"/>'
            f'<path d="M-210,0 L-370,-120 M-214,4 L-340,4 M-210,8 L-376,130" stroke="{colours[0]}" stroke-width="6" opacity="0.6"/>'
            f'<path d="M-90,-92 C-60,-180 40,-200 110,-180 C90,-150 100,-120 110,-90 Z" fill="{colours[2]}" stroke="{colours[3]}" '
            'stroke-width="6"/>'
            f'<path d="M260,4 C220,-110 60,-140 -60,-96 C-120,-72 -160,-30 -200,0 C-150,40 -110,80 -40,104 C80,130 226,100 260,4 Z" '
            f'fill="url(#{name})" stroke="{colours[3]}" stroke-width="7"/>'
            f'<path d="{scales}" fill="none" stroke="{colours[3]}" stroke-width="5" opacity="0.35"/>'
            f'<path d="M140,-80 C110,-30 112,40 146,84" fill="none" stroke="{colours[3]}" stroke-width="8" opacity="0.7"/>'
            f'<path d="M70,40 C40,90 -20,120 -70,118 C-60,80 -20,50 40,24 Z" fill="{colours[1]}" stroke="{colours[3]}" stroke-width="6"/>'
            '<circle cx="192" cy="-26" r="27" fill="#fff"/><circle cx="198" cy="-24" r="17" fill="#1A1230"/>'
            '<circle cx="205" cy="-32" r="6" fill="#fff"/>'
            f'<path d="M256,18 C240,30 226,32 214,26" fill="none" stroke="{colours[3]}" stroke-width="8" stroke-linecap="round"/></g>')


def lily(x, y, size):
    leaf = '<path d="M0,0 L150,-20 C130,-52 -150,-56 -160,0 C-150,56 130,60 152,24 Z" fill="#3E9E4E" stroke="#1C5A38" stroke-width="6"/>'
    petals = ''.join(f'<path transform="rotate({a})" d="M0,0 C-34,-40 -26,-96 0,-116 C26,-96 34,-40 0,0 Z" fill="{c}" '
                     'stroke="#D67A9A" stroke-width="4"/>' for a, c in ((-64, '#FFC2D8'), (64, '#FFC2D8'), (-34, '#FFDDE8'),
                                                                        (34, '#FFDDE8'), (0, '#FFF3F4')))
    return f'<g transform="translate({x},{y}) scale({size})">{leaf}<g transform="translate(-30,-6)">{petals}</g></g>'


def scene(height=1430):
    top = height * 0.25
    draw = random.Random(4)
    defs = (gradient('water', [(0, '#7FE0E8'), (0.22, '#2FA8DC'), (0.6, '#1C5CC0'), (1, '#10206E')])
            + gradient('sky', [(0, '#2F7FD0'), (1, '#BFE8F0')]))
    bubbles = ''.join(f'<circle cx="{draw.uniform(40, 960):.0f}" cy="{draw.uniform(top + 60, height - 80):.0f}" '
                      f'r="{draw.uniform(6, 22):.0f}" fill="none" stroke="#E0FAFF" stroke-width="5" opacity="0.7"/>'
                      for _ in range(34))
    weeds = ''.join(f'<path d="M{x},{height} C{x + 60},{height - 90 * k} {x - 70},{height - 190 * k} {x + 30},{height - 300 * k} '
                    f'C{x - 20},{height - 190 * k} {x + 110},{height - 90 * k} {x + 46},{height} Z" fill="{c}"/>'
                    for x, k, c in ((20, 1.1, '#1E8A5A'), (110, 0.7, '#2AA866'), (830, 1.2, '#1E8A5A'), (920, 0.8, '#2AA866'),
                                    (740, 0.6, '#157048')))
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        f'<rect y="{top}" width="1000" height="{height}" fill="url(#water)"/>',
        rays(360, top - 500, 2200, 9, '#E8FFFF', 0.16, 6, 60, 60, 0.5),
        f'<path d="M0,{top} q125,-26 250,0 t250,0 t250,0 t250,0" fill="none" stroke="#fff" stroke-width="14"/>',
        lily(190, top + 4, 1.1), lily(820, top + 2, 0.8),
        fish(800, height * 0.40, 0.42, 8, 'fishB', True), fish(210, height * 0.44, 0.34, -6, 'fishC'),
        weeds,
        fish(500, height * 0.62, 1.22, -10, 'fishA'),
        fish(760, height * 0.82, 0.5, 14, 'fishD'), fish(260, height * 0.82, 0.36, -14, 'fishE', True),
        bubbles,
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 27, 1.0, 0, 0.0, 2, lambda n: (0, (4, -4, 4, 0, -4, 6, -4, 4)[n], (-4, 3, -3, 0, 4, -3, 4, -3)[n], 1))
    return word, word.layers('po', [(0, '#FFFDE0'), (0.45, '#FFD66A'), (0.7, '#FF8A3A'), (1, '#E0483A')],
                             ((8, '#0F2A6E'), (13, '#FFFFFF')), 9, '#0A1A50', '#FFFFFF', 0.8)
