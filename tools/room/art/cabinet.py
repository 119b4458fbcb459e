#!/usr/bin/python3
"""Paints what is printed on the Skywren cabinet: its side, marquee, control panel, and line of play.

The pictures go to build/room/cabinet-*.png, for the model to put into its texture.
"""

import os

import paint
import skywren
from covers import MOON, svg
from shapes import gradient, halo, rays, ridge

SIDE = (620, 1024)
MARQUEE = (1024, 240)
PANEL = (1024, 420)


def side(right=False):
    """A side, 109 units deep and 180 high; the front edge is to the right on the left side, to the left on the right."""
    wide, tall = SIDE
    height = round(1000 * tall / wide)
    raw = paint.render(skywren.scene(height, (420, 0.25), (405, 0.41, 0.72)), wide, tall)[:, :, :3]
    art = paint.glow(paint.paint(paint.warp(raw, 1.2, 40), 4, -8, (26, 13, 7, 3.5, 2)))
    # Stripes sweep up from the foot, as printed sides have them.
    stripes = ''.join(f'<path d="M-20,{900 + 34 * n} C200,{880 + 34 * n} 420,{800 + 30 * n} 640,{600 + 34 * n} L640,{628 + 34 * n} '
                      f'C420,{832 + 30 * n} 200,{908 + 34 * n} -20,{926 + 34 * n} Z" fill="{c}"/>'
                      for n, c in enumerate(('#FFE15A', '#FF8A2E', '#E0365A', '#A02A9A')))
    foot = '<path d="M-20,1042 C200,1024 420,946 640,740 L640,1040 L-20,1040 Z" fill="#1A0E48"/>'
    art = paint.over(art, paint.render(svg(stripes + foot, wide, tall), wide, tall))
    word, layers = skywren.title()
    scale = 430 / word.width
    title = f'<g transform="translate(120,905) rotate(-17) scale({scale:.3f})">{layers}</g>'
    if right:
        art = art[:, ::-1]
        title = f'<g transform="translate(92,778) rotate(17) scale({scale:.3f})">{layers}</g>'
    return paint.paper(paint.over(art, paint.render(svg(title, wide, tall), wide, tall)), 0.01)


def marquee():
    wide, tall = MARQUEE
    defs = gradient('mq', [(0, '#2A1470'), (0.45, '#B83A86'), (0.8, '#FF8A4A'), (1, '#FFD070')])
    inside = (f'<rect width="{wide}" height="{tall}" fill="url(#mq)"/>' + halo(512, 190, 420, '#FFE59A', 0.9)
              + rays(512, 230, 900, 22, '#FFE9B0', 0.22, 3)
              + '<circle cx="512" cy="232" r="128" fill="#FFF0A0"/>'
              + f'<g transform="translate(0,-190) scale(1.03,0.32)">{ridge(1290, 260, 150, 7, "#6A2A78", True)[0]}</g>'
              + f'<g transform="translate(122,150) rotate(-14) scale(0.25)">{skywren.wren()}</g>'
              + skywren.balloon(930, 92, 0.34) + skywren.kite(842, 60, 0.26, -18, '#4FC3C7', '#1E7A94'))
    art = paint.glow(paint.paint(paint.render(svg(f'<defs>{defs}</defs>' + inside, wide, tall), wide, tall)[:, :, :3], 6, 0,
                                 (20, 10, 5, 3, 1.8)))
    word, layers = skywren.title()
    scale = 560 / word.width
    title = f'<g transform="translate(236,74) scale({scale:.3f})">{layers}</g>'
    return paint.over(art, paint.render(svg(title, wide, tall), wide, tall))


def panel():
    """The control panel from above: the player's edge is below."""
    wide, tall = PANEL
    defs = gradient('pn', [(0, '#1A0E48'), (0.6, '#4A1E7A'), (1, '#A0307E')])
    stripes = ''.join(f'<path d="M-20,{300 + 26 * n} C260,{330 + 26 * n} 500,{150 + 26 * n} 1044,{60 + 26 * n} L1044,{80 + 26 * n} '
                      f'C500,{172 + 26 * n} 260,{352 + 26 * n} -20,{322 + 26 * n} Z" fill="{c}"/>'
                      for n, c in enumerate(('#FFE15A', '#FF8A2E', '#E0365A')))
    inside = (f'<rect width="{wide}" height="{tall}" fill="url(#pn)"/>' + halo(300, 210, 360, '#FF8A4A', 0.5) + stripes)
    art = paint.paint(paint.render(svg(f'<defs>{defs}</defs>' + inside, wide, tall), wide, tall)[:, :, :3], 8, -10,
                      (16, 8, 4, 2))
    rings = ('<circle cx="300" cy="214" r="92" fill="#120A30" opacity="0.85"/><circle cx="300" cy="214" r="92" fill="none" '
             'stroke="#FFE15A" stroke-width="6"/>'
             '<path d="M300,102 l16,22 h-32 Z M300,326 l16,-22 h-32 Z M188,214 l22,16 v-32 Z M412,214 l-22,16 v-32 Z" '
             'fill="#FFE15A"/>')
    for x, y, text in ((620, 222, 'SING'), (750, 186, 'SING')):
        rings += (f'<circle cx="{x}" cy="{y}" r="54" fill="#120A30" opacity="0.8"/><circle cx="{x}" cy="{y}" r="54" fill="none" '
                  f'stroke="#FFE15A" stroke-width="5"/><text x="{x}" y="{y + 92}" font-family="Inter Display" font-weight="800" '
                  f'font-size="28" fill="{MOON}" text-anchor="middle" letter-spacing="3">{text}</text>')
    rings += (f'<text x="900" y="316" font-family="Inter Display" font-weight="800" font-size="26" fill="{MOON}" '
              'text-anchor="middle" letter-spacing="2">START</text>')
    return paint.over(art, paint.render(svg(rings, wide, tall), wide, tall))


def card():
    """The line on the control panel's front: how to play."""
    wide, tall = 1024, 96
    inside = (f'<rect width="{wide}" height="{tall}" fill="#1B1440"/>'
              f'<text x="512" y="62" font-family="Inter Display" font-weight="700" font-size="42" fill="{MOON}" '
              'text-anchor="middle" letter-spacing="5">A SMALL BIRD AGAINST THE WIND</text>')
    return paint.render(svg(inside, wide, tall), wide, tall)[:, :, :3]


def all_pieces():
    """The pictures by name; painted once and kept in the build folder until a source changes."""
    sources = [os.path.join(paint.HERE, name) for name in
               ('cabinet.py', 'skywren.py', 'shapes.py', 'lettering.py', 'paint.py', 'brush.cpp')]
    newest = max(os.path.getmtime(path) for path in sources)
    pieces = {}
    for name, make in (('left', side), ('right', lambda: side(True)), ('marquee', marquee), ('panel', panel), ('card', card)):
        path = os.path.join(paint.BUILD, f'cabinet-{name}.png')
        if not os.path.exists(path) or os.path.getmtime(path) < newest:
            os.makedirs(paint.BUILD, exist_ok=True)
            paint.to_image(make()).save(path)
        pieces[name] = path
    return pieces


if __name__ == '__main__':
    for path in all_pieces().values():
        print(path)
