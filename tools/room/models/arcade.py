"""The cabinet of Skywren. Its back 24 units stand in the wall; the front looks along +z."""
import os
import sys

import numpy as np
from PIL import Image

import model
sys.path.append(os.path.join(model.HERE, 'art'))
import cabinet
from art.solids import dark_glass, edge_band, glass, hull, loop
from mesh import Mesh, box, cylinder, lathe, prism
from model import GLOSS, LACQUER, OUT, SATIN, Model
from texture import cloud, colour, mix, noise, plastic, sample, step

W, H, D = 85, 180, 109
BACK, FRONT = -D / 2, D / 2
BOARD = 3.6
INNER = W - 2 * BOARD
PLASTIC = (0.14, 12.0, 0.0)

m = Model('arcade', size=(W, H, D), sheets=3, brightness=1.5, reach=70)
pieces = {name: np.asarray(Image.open(path).convert('RGB'), float) / 255 for name, path in cabinet.all_pieces().items()}
black = plastic('2A2830', 0.04, 0.45)
steel = plastic('6E6C6A', 0.03, 0.6)

# The side board's outline as (z, y), from the foot at the back on.
profile = [(BACK, 0), (44, 0), (45, 1), (45, 78), (47, 81), (53.2, 84.6), (FRONT, 87), (FRONT, 95.5), (53, 98), (38, 102.5),
           (34.5, 105), (33, 109), (22, 143), (22.2, 147), (33, 152), (36, 155), (36, 175), (34.6, 178.4), (31, H), (BACK, H)]


def soft(rgb):
    """Print that the sheet's brightness does not bleach."""
    return 0.92 * rgb - 0.24 * rgb * rgb


def side_paint(art, mirror):
    trim = colour('C58A24')

    def paint(s):
        z, y = s.own[:, 0], s.own[:, 1]
        u = (z + D / 2) / D
        rgb = soft(sample(art, 1 - u if mirror else u, 1 - y / H))
        outside = s.normal[:, 2] * (-1 if mirror else 1) > 0.75
        rgb = np.where(outside[:, None], rgb, black(s))
        rgb = rgb * (1 - 0.10 * cloud(s.own * 0.05, 3, 5) ** 2)[:, None]
        # Scuffs near the floor, where shoes and a broom reach.
        scuff = step(0.35, 0.9, noise(np.stack([z * 0.25, y * 1.1], 1), 9) + 0.6 - y / 22)
        rgb = mix(rgb, colour('B9A98E') * 0.6, scuff * 0.5)
        # The moulding is drawn over the board's rim; its plastic hides what the board has worn.
        edge = np.abs(s.normal[:, 2]) < 0.75
        return np.where(edge[:, None], trim * (1 + 0.03 * cloud(s.own * 0.12, 2, 12))[:, None], rgb)
    return paint


# prism() draws along z; turned by -90 about y its x becomes z and its z becomes -x.
for name, x, mirror in (('left', -W / 2 + BOARD / 2, False), ('right', W / 2 - BOARD / 2, True)):
    m.add(prism(profile, BOARD, 0.55), side_paint(pieces[name], mirror), at=(x, 0, 0), turn=[('y', -90)], gloss=LACQUER, crease=40,
          density=1.55)


def strip(points, width, cuts=1):
    """A band of planes through (z, y) points, seen from the front and above, `width` wide; flat between the points."""
    vertices, faces, uv, charts = [], [], [], []
    for k, ((za, ya), (zb, yb)) in enumerate(zip(points, points[1:])):
        length = np.hypot(zb - za, yb - ya)
        base = len(vertices)
        for z, y in ((za, ya), (zb, yb)):
            vertices += [(width * c / cuts - width / 2, y, z) for c in range(cuts + 1)]
        for c in range(cuts):
            a, b, d, e = base + c, base + c + 1, base + c + cuts + 2, base + c + cuts + 1
            faces += [[a, b, d], [a, d, e]]
            ua, ub = width * c / cuts, width * (c + 1) / cuts
            uv += [[(ua, length), (ub, length), (ub, 0)], [(ua, length), (ub, 0), (ua, 0)]]
            charts += [k, k]
    return Mesh(np.array(vertices, float), faces, uv, charts)


def shown(art, width, height, shade=1.0):
    """A picture over the whole of a strip's plane."""
    def paint(s):
        return soft(sample(art, s.uv[:, 0] / width, s.uv[:, 1] / height)) * shade
    return paint


# The front, from the floor up: foot, kick board, the belly under the panel.
m.add(strip([(38.5, 0.6), (38.5, 6), (42, 6.2)], INNER), plastic('17161B', 0.04, 0.2), density=0.5)


def kick(s):
    """Black, with the sides' stripes rising around the coin door."""
    rgb = black(s)
    u, y = s.uv[:, 0] - INNER / 2, 80 - s.uv[:, 1]
    for k, tone in enumerate(('FFE15A', 'FF8A2E', 'E0365A', 'A02A9A')):
        line = y - (12.5 - 2.5 * k) - 0.0065 * (u + 6) ** 2
        rgb = mix(rgb, soft(colour(tone)), edge_band(line, 0, 1.9, 0.25) * 0.9)
    scuff = step(0.35, 0.9, noise(np.stack([u * 0.3, y * 1.1], 1), 19) + 0.65 - y / 20)
    return mix(rgb, colour('6A6058'), scuff * 0.4)


m.add(strip([(42, 6.2), (42, 80)], INNER, cuts=6), kick, gloss=PLASTIC, density=0.9)
m.add(strip([(42, 80), (51.2, 86.5)], INNER, cuts=6), black, gloss=PLASTIC, density=0.7)
# The control panel: a box with a round front lip.
lip = [(51.2, 86.5), (52.2, 87.6), (52.4, 89), (52.4, 93.5), (52.0, 95.0), (50.8, 96.0)]
lip_plastic = plastic('1B1440', 0.03, 0.6)


def lip_paint(s):
    """How to play, in one line where the hands do not cover it."""
    up = (s.own[:, 1] - 89.15) / 4.2
    card = (s.normal[:, 2] > 0.9) & (up > 0) & (up < 1) & (np.abs(s.own[:, 0]) < 22.4)
    return np.where(card[:, None], soft(sample(pieces['card'], s.own[:, 0] / 44.8 + 0.5, 1 - up)), lip_plastic(s))


m.add(strip(lip, INNER, cuts=6), lip_paint, gloss=SATIN, crease=60, density=1.5)
PANEL = [(50.8, 96.0), (20.5, 104.6)]
panel_length = float(np.hypot(PANEL[1][0] - PANEL[0][0], PANEL[1][1] - PANEL[0][1]))
panel_turn = np.degrees(np.arctan2(PANEL[1][1] - PANEL[0][1], PANEL[0][0] - PANEL[1][0]))


def panel_paint(s):
    rgb = soft(sample(pieces['panel'], s.uv[:, 0] / INNER, s.uv[:, 1] / panel_length))
    # Hands have worn the print around the stick and below the buttons.
    for px, py, size in ((0.29, 0.86, 0.13), (0.66, 0.90, 0.16)):
        d = np.hypot((s.uv[:, 0] / INNER - px) * 2.3, s.uv[:, 1] / panel_length - py)
        worn = step(0.55, 1.0, np.exp(-(d / size / 1.6) ** 2) + 0.35 * cloud(s.own * 0.7, 3, 15))
        rgb = mix(rgb, colour('6A6068'), worn * 0.22)
    return rgb


m.add(strip(PANEL, INNER, cuts=8), panel_paint, gloss=LACQUER, density=1.3)


def on_panel(px, py, up=0.0):
    """The place above a pixel of the panel's picture, and the turn that makes y stand on the panel."""
    t = 1 - py / 420
    z = PANEL[0][0] + (PANEL[1][0] - PANEL[0][0]) * t
    y = PANEL[0][1] + (PANEL[1][1] - PANEL[0][1]) * t
    a = np.radians(panel_turn)
    return (-INNER / 2 + INNER * px / 1024, y + up * np.cos(a), z + up * np.sin(a))


tilt = [('x', panel_turn)]
m.add(cylinder(3.6, 0.5, 0.2, 32), steel, at=on_panel(300, 214), turn=tilt, gloss=SATIN)
m.add(lathe([(0, 0.2), (2.4, 0.4), (2.2, 1.2), (1.0, 1.9), (0, 2.0)], 28), plastic('1A1A1E', 0.02, 0.3), at=on_panel(300, 214), turn=tilt)
m.plain(cylinder(0.62, 7.5, 0.1, 16), (0.62, 0.62, 0.64), at=on_panel(300, 214, 0.6), turn=tilt, gloss=(0.8, 60, 0))
ball = [(2.5 * np.sin(a), 9.2 - 2.5 * np.cos(a)) for a in np.linspace(0, np.pi, 13)]
m.add(lathe(ball, 26), plastic('D8301F', 0.01, 0.15), at=on_panel(300, 214), turn=tilt, gloss=GLOSS, density=1.2, crease=80)
for px, py, tone in ((620, 222, 'F5C531'), (750, 186, '3FB9BE'), (900, 246, 'F3EAD3')):
    small = tone == 'F3EAD3'
    r = 1.3 if small else 2.25
    m.add(cylinder(r + 0.55, 0.75, 0.25, 28), plastic('1E1C22', 0.02, 0.5), at=on_panel(px, py), turn=tilt, gloss=SATIN, crease=40)
    m.add(cylinder(r, 1.4, 0.35, 28, r * 0.95), plastic(tone, 0.01, 0.2), at=on_panel(px, py), turn=tilt, gloss=GLOSS, crease=40)

# The screen: a black bezel that slopes back, the glass set into it. The last loop lies behind the glass's rim, so that
# no wall shines through between the two.
FOOT, HEAD = (20.5, 104.6), (8.2, 149.0)
slope = float(np.hypot(HEAD[0] - FOOT[0], HEAD[1] - FOOT[1]))
lean = np.degrees(np.arctan2(FOOT[0] - HEAD[0], HEAD[1] - FOOT[1]))
middle = ((FOOT[0] + HEAD[0]) / 2, (FOOT[1] + HEAD[1]) / 2)
SCREEN_W, SCREEN_H = 52.0, 39.0


def bezel_paint(s):
    rgb = black(s) * 0.55
    x = s.own[:, 0]
    front = (s.normal[:, 2] > 0.8) & (s.own[:, 2] > -0.3)
    for k, tone in enumerate(('FFE15A', 'FF8A2E', 'E0365A', 'A02A9A')):
        rgb = mix(rgb, colour(tone), edge_band(np.abs(x), 31.2 + 1.5 * k, 32.4 + 1.5 * k, 0.25) * front * 0.85)
    return rgb


back_turn = [('x', -lean)]
at = (0, middle[1], middle[0])
m.add(hull([loop(INNER, slope, 0, 0.01), loop(58.4, 41.6, 0, 1.2, 0, 0.6), loop(57.6, 40.8, -0.5, 1.0, 0, 0.6),
            loop(SCREEN_W, SCREEN_H, -3.4, 0.25, 0, 0.6), loop(SCREEN_W + 1.6, SCREEN_H + 1.6, -4.0, 0.25, 0, 0.6)],
           False, False), bezel_paint, at=at, turn=back_turn, gloss=(0.3, 40, 0),
      crease=30, density=0.9)
up, out = np.array([0, np.cos(np.radians(lean)), -np.sin(np.radians(lean))]), np.array([0, np.sin(np.radians(lean)), np.cos(np.radians(lean))])
m.screen(glass(SCREEN_W, SCREEN_H, 2.0), dark_glass(OUT), at=tuple(np.array(at) + up * 0.6 - out * 3.45), turn=back_turn, crease=80)

# Under the marquee: a sloping board with the loudspeaker, and the lamp's light on it.
def grille(s):
    rgb = black(s)
    u, v = s.uv[:, 0] - INNER / 2, s.uv[:, 1]
    hole = edge_band(np.hypot((np.abs(u) % 1.4) - 0.7, (v % 1.4) - 0.7), -1, 0.42, 0.2)
    inside = edge_band(np.abs(u), 10, 30, 0.5) * edge_band(v, 4, 19, 0.5)
    return mix(rgb, rgb * 0.2, hole * inside)


m.add(strip([HEAD, (31.5, 153.5)], INNER, cuts=4), grille, density=0.8)
# The marquee: a lit box behind a bright frame.
marquee = [(33.0, 156.2), (33.0, 175.6)]
m.add(strip([(31.5, 153.5), (34.2, 154.6), (34.2, 156.2), (33.0, 156.2)], INNER), steel, gloss=SATIN, density=0.8)
m.add(strip(marquee, INNER, cuts=8), shown(pieces['marquee'], INNER, marquee[1][1] - marquee[0][1], 1.45), gloss=(0.25, 40, 0.24),
      density=1.3, returned=0.6)
m.add(strip([(33.0, 175.6), (34.2, 175.6), (34.2, 177.4), (31.0, 179.0)], INNER), steel, gloss=SATIN, density=0.8)
m.add(strip([(31.0, 179.0), (-32, 179.0)], INNER), black, density=0.35)

# The coin door.
def door(s):
    rgb = steel(s) * 0.62
    x, y = s.own[:, 0], s.own[:, 1]
    front = s.normal[:, 2] > 0.8
    groove = edge_band(np.maximum(np.abs(x) - 11.6, np.abs(y) - 16.1), -0.2, 0.2, 0.2) * front
    return mix(rgb, rgb * 0.25, groove)


m.add(hull([loop(26, 35, 0, 1.2), loop(26, 35, 0.8, 1.2), loop(25.2, 34.2, 1.3, 1.0)], False, True), door, at=(0, 37, 42.0), gloss=SATIN)
for x in (-5.6, 5.6):
    m.add(box(6.4, 9.0, 1.2, 0.4), plastic('1C1B20', 0.02, 0.8), at=(x, 45.0, 43.6), gloss=SATIN)
    m.plain(box(3.6, 4.4, 0.6, 0.2), (1.5, 0.62, 0.10), at=(x, 44.0, 44.2), gloss=(0.3, 30, 0.1))
    m.plain(box(0.45, 2.6, 0.2, 0.05), (0.01, 0.01, 0.01), at=(x + 1.0, 44.2, 44.5))
    m.plain(box(2.8, 1.0, 0.5, 0.2), (0.55, 0.54, 0.52), at=(x, 47.8, 44.2), gloss=(0.6, 50, 0))
    m.add(box(5.0, 5.0, 0.9, 0.5), plastic('121114', 0.02, 0.7), at=(x, 28.5, 43.4))
m.plain(cylinder(0.8, 0.6, 0.15, 18), (0.7, 0.68, 0.6), at=(0, 36.4, 43.2), turn=[('x', 90)], gloss=(0.8, 60, 0))
# The back, which closes the box inside the wall, and bolts on the panel's corners.
m.add(box(INNER, 178, 1.0, 0.1), black, at=(0, 89.5, BACK + 4), density=0.12)
for x in (-INNER / 2 + 2.2, INNER / 2 - 2.2):
    for py in (40, 380):
        px = (x + INNER / 2) / INNER * 1024
        m.plain(cylinder(0.55, 0.35, 0.12, 12), (0.5, 0.5, 0.5), at=on_panel(px, py), turn=tilt, gloss=(0.7, 60, 0))
m.build(rays=40)
