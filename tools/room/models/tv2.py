"""The big set: a projection cabinet against the wall. Above y 203 only a thin board, for the moon that hangs there."""
import numpy as np

from art.solids import dark_glass, edge_band, glass, hull, lettering, loop, printed
from mesh import box, cylinder, prism
from model import LACQUER, OUT, SATIN, Model
from scene import LAMP, into
from texture import WALNUT, colour, mix, plastic, weave, wood

W, H, D = 200, 235.5, 18.5
BACK, FRONT = -D / 2, D / 2
SCREEN_W, SCREEN_H, SCREEN_Y = 174, 130.5, 121.2
PLASTIC = (0.16, 14.0, 0.0)

lamp = np.array(into('tv2', LAMP)) + (0, H / 2, 0)
m = Model('tv2', size=(W, H, D), sheets=2, brightness=1.5, lamp=tuple(lamp))
walnut, standing = wood(WALNUT, 'x', 1.5), wood(WALNUT, 'y', 1.5)
black = plastic('232326', 0.03, 0.5)
cloth = weave('6E6252', '564C40', 1.2, 0.22, 0.02, 0.2)

# The board behind everything, with a rounded head.
outline = [(-100, 0), (100, 0), (100, 214)]
outline += [(100 - 21.5 + 21.5 * np.cos(a), 214 + 21.5 * np.sin(a)) for a in np.linspace(0.2, np.pi / 2, 8)]
outline += [(-100 + 21.5 - 21.5 * np.sin(a), 214 + 21.5 * np.cos(a)) for a in np.linspace(0, np.pi / 2 - 0.2, 8)]
outline += [(-100, 214)]


def board(s):
    """Walnut in five upright strips with fine joints."""
    strip = np.floor((s.own[:, 0] + 100) / 40)
    rgb = np.zeros((len(s.own), 3))
    for k in range(6):
        pick = strip == k
        if pick.any():
            part = type(s)(s.place[pick], s.own[pick] - (40 * k - 80, 0, 0), s.normal[pick], s.uv[pick], s.sky[pick],
                           s.lamp[pick], s.edge[pick], s.seed + k)
            rgb[pick] = standing(part)
    joint = edge_band((s.own[:, 0] + 100) % 40, 0.0, 0.45, 0.3)
    return mix(rgb, rgb * 0.3, joint * (s.own[:, 2] > 0))


m.add(prism(outline, 2.4, 0.5), board, at=(0, 0, BACK + 1.2), gloss=SATIN)

# The screen's housing stands 12 forward; its front slopes in to the glass.
z0, z1 = BACK + 2.4, FRONT - 3.2
y = SCREEN_Y
m.add(hull([loop(191, 149.5, z0, 2, 0, y), loop(191, 149.5, z1 - 1.2, 2, 0, y), loop(190.2, 148.7, z1 - 0.3, 1.8, 0, y),
            loop(189, 147.5, z1, 1.5, 0, y), loop(182.4, 138.9, z1, 1.0, 0, y), loop(181.4, 137.9, z1 - 0.4, 0.8, 0, y),
            loop(180.6, 137.1, z1 - 1.4, 0.6, 0, y), loop(SCREEN_W, SCREEN_H, z1 - 3.4, 0.25, 0, y)], False, False),
      lambda s: mix(black(s), walnut(s), ((np.abs(s.own[:, 0]) > 91.2) | (np.abs(s.own[:, 1] - SCREEN_Y) > 69.45)).astype(float)),
      gloss=SATIN, crease=34)
m.screen(glass(SCREEN_W, SCREEN_H, 1.1), dark_glass(OUT), at=(0, y, z1 - 3.45), crease=80)

# The base: a chest with two loudspeakers, and the controls behind a strip of black.
base_h = 46
m.add(box(W, 2.6, D, 0.6), walnut, at=(0, base_h - 1.3, 0), gloss=LACQUER)
for side in (-1, 1):
    m.add(box(2.6, base_h - 2.6, D - 1.0, 0.4), standing, at=(side * (W / 2 - 1.4), (base_h - 2.6) / 2, -0.5), gloss=SATIN)
m.add(box(W - 5, 4.0, D - 3.5, 0.3), plastic('17151A', 0.03, 0.3), at=(0, 2.0, -1.75), density=0.6)
m.add(box(W - 5.2, 3.0, D - 2.2, 0.4), walnut, at=(0, 5.4, -1.1), gloss=SATIN)
for side in (-1, 1):
    m.add(hull([loop(74, 34.5, 0, 1.5), loop(74, 34.5, 2.2, 1.5), loop(73, 33.5, 3.0, 1.2)], False, True), cloth,
          at=(side * 59.5, 25.2, FRONT - 4.6), density=1.1)
    for k in (-1, 1):
        m.add(box(1.4, 36.4, 4.6, 0.3), standing, at=(side * 59.5 + k * 37.8, 25.0, FRONT - 3.2), gloss=SATIN, density=0.8)


NAME = lettering('ombrelune')


def controls(s):
    rgb = black(s)
    x, yy, _ = s.own.T
    front = s.normal[:, 2] > 0.8
    line = edge_band(np.abs(yy - 10.5), -1, 0.12, 0.15) * front
    rgb = mix(rgb, colour('8A867C'), line * 0.7)
    for k in range(7):
        rgb = mix(rgb, colour('8A867C'), edge_band(x, -9.6 + 2.4 * k, -8.6 + 2.4 * k, 0.2) * edge_band(yy, -1.0, -0.7, 0.2) * front)
    rgb = mix(rgb, colour('B9B4A8'), printed(NAME, x, yy - 12.6, 1.7) * front * 0.9)
    # A level display, unlit.
    shown = edge_band(x, -13, 13, 0.2) * edge_band(yy, 1.6, 7.2, 0.2) * front
    rgb = mix(rgb, colour('0C1416'), shown)
    bars = shown * edge_band((x + 13) % 1.3, 0.25, 1.05, 0.15) * edge_band(yy, 2.2, 6.6, 0.2)
    return mix(rgb, colour('14383A'), bars)


m.add(box(36.5, 36.4, 3.4, 0.4), controls, at=(0, 25.0, FRONT - 3.4), gloss=PLASTIC, density=1.6)
grey = plastic('8E8A82', 0.02, 0.5)
for k in range(7):
    m.add(box(1.8, 1.0, 1.0, 0.25, 1), grey, at=(-9.1 + 2.4 * k + 0.9 - 0.5, 22.2, FRONT - 1.6), density=0.8)
for x in (-9, 9):
    m.add(cylinder(3.6, 1.6, 0.4, 28, 3.3), black, at=(x, 14.2, FRONT - 1.75), turn=[('x', 90)], gloss=SATIN, density=1.2)
    m.add(box(0.4, 2.4, 0.2, 0.05), grey, at=(x, 15.4, FRONT - 0.1), density=1.0)
m.plain(cylinder(0.7, 0.5, 0.2, 14), (1.9, 0.9, 0.16), at=(14.6, 31.5, FRONT - 1.75), turn=[('x', 90)], gloss=(0.4, 40, 0.1))
m.build()
