"""Grelot: four bells in a winter night."""

import random

from lettering import Word
from shapes import gradient, halo, picture, radial, sparkle, stars

MACHINE = 'nes'
COLOUR = '#F3EAD3'
ANGLE = 60
TITLE = 'GRELOT'
LINES = ('Four bells.', 'What did they sing?')
TEXT = ('The bells ring, you ring them back, and each round they add a note. A game for evenings, for two ears and '
        'one good memory.')


def bell(name, light, middle, dark, deep):
    defs = (gradient(name, [(0, deep), (0.16, dark), (0.36, light), (0.5, middle), (0.78, dark), (1, deep)], 0, 0, 1, 0.12)
            + gradient(name + 'r', [(0, deep), (0.2, middle), (0.36, '#FFFDEB'), (0.52, middle), (1, deep)], 0, 0, 1, 0))
    return (f'<defs>{defs}</defs>'
            f'<path d="M-34,-226 C-34,-270 34,-270 34,-226" fill="none" stroke="{dark}" stroke-width="24"/>'
            f'<circle cx="14" cy="196" r="52" fill="{deep}"/><circle cx="2" cy="184" r="32" fill="{middle}"/>'
            f'<path d="M0,-226 C104,-222 128,-132 136,-30 C142,50 164,96 214,138 L-214,138 C-164,96 -142,50 -136,-30 '
            f'C-128,-132 -104,-222 0,-226 Z" fill="url(#{name})" stroke="{deep}" stroke-width="7"/>'
            f'<path d="M-136,-18 C-60,14 60,14 136,-18 L139,14 C60,46 -60,46 -139,14 Z" fill="url(#{name}r)" opacity="0.75"/>'
            f'<path d="M-232,140 C-232,112 232,112 232,140 C232,196 -232,196 -232,140 Z" fill="url(#{name}r)" '
            f'stroke="{deep}" stroke-width="7"/>'
            f'<path d="M-70,-176 C-104,-120 -104,-60 -106,-28" fill="none" stroke="#fff" stroke-width="20" '
            'stroke-linecap="round" opacity="0.55"/>')


def bow(x, y, size, colour, dark):
    return (f'<g transform="translate({x},{y}) scale({size})">'
            f'<path d="M0,0 C-60,40 -92,120 -70,190 L-40,160 L-14,196 C-30,120 -10,60 0,20 C10,60 40,120 30,200 L56,168 L88,190 '
            f'C92,110 60,40 0,0 Z" fill="{dark}"/>'
            f'<path d="M0,0 C-60,-96 -168,-96 -170,-10 C-168,66 -60,60 0,0 Z M0,0 C60,-96 168,-96 170,-10 C168,66 60,60 0,0 Z" '
            f'fill="{colour}"/><path d="M-20,-6 C-70,-50 -120,-50 -128,-10 M20,-6 C70,-50 120,-50 128,-10" fill="none" '
            f'stroke="{dark}" stroke-width="10"/><ellipse rx="34" ry="38" fill="{colour}" stroke="{dark}" stroke-width="7"/></g>')


def note(x, y, size, colour, turn=0):
    return (f'<g transform="translate({x},{y}) rotate({turn}) scale({size})" fill="{colour}">'
            '<ellipse cx="-40" cy="60" rx="26" ry="19" transform="rotate(-20 -40 60)"/>'
            '<ellipse cx="40" cy="44" rx="26" ry="19" transform="rotate(-20 40 44)"/>'
            '<path d="M-24,58 L-24,-52 L66,-74 L66,42 L54,42 L54,-38 L-12,-22 L-12,58 Z"/></g>')


def snow(count, seed, height):
    draw = random.Random(seed)
    return ''.join(f'<circle cx="{draw.uniform(0, 1000):.0f}" cy="{draw.uniform(0, height):.0f}" r="{draw.uniform(3, 10):.1f}" '
                   f'fill="#fff" opacity="{draw.uniform(0.35, 0.95):.2f}"/>' for _ in range(count))


def scene(height=1430):
    middle = height * 0.57
    defs = (gradient('sky', [(0, '#071A4A'), (0.5, '#0F4A94'), (0.8, '#2A80C4'), (1, '#7CC0E4')])
            + radial('drift', [(0, '#FFFFFF'), (0.5, '#D8ECFA'), (1, '#7FB4DC')], 0.35, 0.05, 0.9))
    gold = bell('gold', '#FFF0A0', '#FFC43A', '#C97B1E', '#5A2C10')
    red = bell('red', '#FFB08A', '#E8552E', '#A62A1E', '#4A1018')
    green = bell('green', '#B8F0A0', '#43B04A', '#1C7A3C', '#0A3A28')
    violet = bell('violet', '#CDB8FF', '#7F5CF0', '#4A30B0', '#201660')
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        halo(500, middle, 760, '#BFE4FF', 0.55),
        halo(430, middle + 60, 480, '#FFE9A8', 0.75),
        stars(60, 9, 10, height * 0.5),
        f'<path d="M-20,{height * 0.86} C200,{height * 0.79} 420,{height * 0.85} 620,{height * 0.825} '
        f'C780,{height * 0.80} 900,{height * 0.82} 1020,{height * 0.84} L1020,{height} L-20,{height} Z" fill="url(#drift)"/>',
        f'<g transform="translate(500,{middle - 245}) rotate(8) scale(0.92)">{violet}</g>',
        f'<g transform="translate(228,{middle + 46}) rotate(24) scale(0.9)">{red}</g>',
        f'<g transform="translate(776,{middle + 42}) rotate(-22) scale(0.9)">{green}</g>',
        f'<g transform="translate(500,{middle + 148}) rotate(-9) scale(1.34)">{gold}</g>',
        bow(462, middle - 180, 0.95, '#E8423A', '#8A1626'),
        note(130, middle - 280, 1.0, '#FFE9A0', -12), note(862, middle - 260, 0.8, '#FFE9A0', 14),
        note(905, middle + 300, 0.6, '#FFE9A0', 8),
        sparkle(350, middle + 10, 74, '#FFFDEB'), sparkle(740, middle - 90, 44, '#FFFDEB'),
        sparkle(150, middle - 60, 38, '#FFFDEB'),
        snow(120, 4, height),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    word = Word(TITLE, 29, 1.0, 0, 0.0, 2, lambda n: (0, (8, -4, 8, -6, 4, -4)[n], (-7, 5, -4, 6, -3, 6)[n], 1))
    return word, word.layers('gr', [(0, '#FFFBD6'), (0.45, '#FFD34A'), (0.55, '#F0932A'), (1, '#FFDD70')],
                             ((8, '#4A1418'), (13, '#FFFFFF')), 9, '#06123A', '#FFFFFF', 0.8)
