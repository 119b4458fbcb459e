"""The low unit along the wall: six walnut modules with rolling doors, drawers and open shelves full of machines,
games, records and cables. The four sets stand on it."""
import numpy as np

import prints
import scene
from ground import ground
from mesh import Mesh, box, curve, cushion, cylinder, lathe, prism, rounded_outline, tube
from model import GLOSS, LACQUER, SATIN, Model
from texture import DARK, WALNUT, cloud, colour, mix, noise, paper, picture, plastic, weave, wood

WIDE, TOP, BACK, FRONT = 500 / 6, 70.0, -68.5, 65.0
m = Model('tvunit', size=(500, 70, 137), sheets=5, lamp=scene.lamp_for('tvunit'), brightness=2.1, shade=0.9, strip=True, crease=40,
          faint={'-y': 0.3, '-z': 0.25})
rng = np.random.default_rng(8)


def middle(k):
    return -250 + WIDE * (k + 0.5)


# What stands on it takes light from the top: the sets, by their places in the room.
for row in scene.PLACED:
    if row[0] == 'tv':
        x, y, z = scene.centre(*row) - (250, 0, 68.5)
        m.block(box(77, 79, 66, 3), at=(x, 72 + 39.5, z), returned=0.12)
for wall in ([[-250, 0, BACK], [250, 0, BACK], [250, 260, BACK], [-250, 260, BACK]],
             [[-250.1, 0, 300], [-250.1, 0, BACK], [-250.1, 260, BACK], [-250.1, 260, 300]],
             [[250.1, 0, BACK], [250.1, 0, 300], [250.1, 260, 300], [250.1, 260, BACK]]):
    m.block(Mesh(wall, [[0, 1, 2], [0, 2, 3]]), returned=0.45)


# ---- the modules
def module(k):
    x = middle(k)
    tone = 0.96 + 0.08 * rng.random()
    grain = wood(WALNUT, 'x', rings=1.8, tone=tone)
    m.add(box(WIDE - 0.12, 3.2, FRONT - BACK, 0.35), grain, at=(x, TOP - 1.6, (FRONT + BACK) / 2), gloss=LACQUER,
          density=1.25)
    m.add(box(WIDE - 0.12, 2.6, 122, 0.3), grain, at=(x, 9.3, 2.0), gloss=SATIN, density=0.75)
    for side in (-1, 1):
        m.add(box(2.2, 56.2, 120, 0.3), wood(WALNUT, 'y', rings=1.8, tone=tone),
              at=(x + side * (WIDE / 2 - 1.15), 38.7, 2.0),
              gloss=SATIN, density=0.6)
    m.add(box(WIDE - 1, 8.0, 2, 0.2), wood(DARK, 'x', tone=0.55), at=(x, 4.0, 52), density=0.5)


def back_panel(k):
    m.add(box(WIDE - 4, 56.4, 1.2, 0), wood(WALNUT, 'x', rings=1.8, tone=0.85), at=(middle(k), 38.8, -14), density=0.55)


def shelf(k, y, deep=74):
    m.add(box(WIDE - 4.4, 2.0, deep, 0.3), wood(WALNUT, 'x', rings=1.8), at=(middle(k), y - 1.0, 60 - deep / 2 - 2),
          gloss=SATIN,
          density=0.8)


def rolling_doors(k):
    x, slat = middle(k), 2.86
    for side in (-1, 1):
        for n in range(13):
            at = x + side * (1.5 + slat * (n + 0.5))
            m.add(box(slat - 0.25, 55.2, 1.6, 0.5), wood(WALNUT, 'y', rings=1.8, tone=0.97 + 0.06 * rng.random()),
                  at=(at, 38.7, 58.5 - (side > 0) * 0.5), gloss=SATIN, density=0.9)
        m.add(box(2.6, 55.4, 2.3, 0.6), wood(WALNUT, 'y', rings=1.8), at=(x + side * 1.3, 38.7, 58.8 - (side > 0) * 0.5),
              gloss=LACQUER, density=0.9)
        knob = lathe([(0, 0), (0.8, 0), (0.7, 1.0), (1.5, 1.6), (1.5, 2.2), (1.1, 2.6), (0, 2.7)], 20).turned('x', 90)
        m.plain(knob, (0.95, 0.70, 0.36), at=(x + side * 4.6, 40, 59.0), gloss=GLOSS)
    m.add(box(WIDE - 4, 55, 0.4, 0), wood(DARK, 'y', tone=0.5), at=(x, 38.7, 57.0), density=0.2)


def drawers(k):
    x = middle(k)
    for n, (y, high) in enumerate(((20.2, 18.6), (39.4, 18.6), (58.0, 17.4))):
        m.add(box(WIDE - 5.4, high - 0.7, 2.2, 0.4), wood(WALNUT, 'x', rings=1.8), at=(x, y, 58.9), gloss=LACQUER,
              density=1.0, crease=40,
              seed=900)
        for side in (-1, 1):
            pull = prism(rounded_outline(9, 2.0, 0.9, 4), 0.8, 0.25)
            m.plain(pull, (0.95, 0.70, 0.36), at=(x + side * 19, y + 2, 61.2), gloss=GLOSS)
            for end in (-1, 1):
                m.plain(box(0.9, 0.9, 1.2, 0.1), (0.8, 0.58, 0.3), at=(x + side * 19 + end * 3.4, y + 2, 60.4),
                        gloss=GLOSS)
    m.add(box(WIDE - 4, 55, 0.4, 0), wood(DARK, 'y', tone=0.45), at=(x, 38.7, 57.0), density=0.2)


for k in range(6):
    module(k)
for k in (0, 5):
    rolling_doors(k)
drawers(3)
for k in (1, 2, 4):
    back_panel(k)
LOW = 10.6
SHELVES = {1: 37.0, 2: 34.0, 4: 38.0}
for k, y in SHELVES.items():
    shelf(k, y)

# ---- games
GAMES = [('LUCIOLE', '12323A', prints.CORAL), ('GLIMMER', '2A3266', prints.TEAL), ('SKYWREN', '5A2E5E', prints.AMBER),
         ('ÉCUME', '123F57', prints.MOON), ('GRELOT', '4A2030', prints.MOON), ('MISTRAL', '8A4A2A', prints.DUSK),
         ('BRUME', '3D4A5C', prints.TEAL), ('GIVRE', '28506A', prints.MOON), ('VESPER', '3A2450', prints.DUSK),
         ('VERGLAS', '1E5A5E', prints.CORAL), ('TILLEUL', '3E5A2C', prints.MOON), ('MARÉE', '173A6A', prints.CORAL)]


def game(x, y, z, lean=0.0, n=None, flat=False, turn=0.0):
    title, ground_colour, tag = GAMES[rng.integers(len(GAMES)) if n is None else n % len(GAMES)]
    spine = prints.box_spine(title, '#' + ground_colour, tag)
    if flat:
        m.add(box(18, 2.5, 13, 0.25), picture(spine, 17.2, 2.2, plastic('23242E')), at=(x, y + 1.25, z),
              turn=[('y', turn)],
              gloss=SATIN, density=1.25)
        return
    m.add(box(2.5, 18, 13, 0.25), picture(spine.rotate(-90, expand=True), 2.2, 17.2, plastic('23242E')),
          at=(x + 9 * np.sin(np.radians(-lean)), y + 9 * np.cos(np.radians(lean)) + 1.25 * abs(np.sin(np.radians(lean))), z),
          turn=[('z', lean)], gloss=SATIN, density=1.25)


def row_of_games(x0, count, y, z, first=0):
    x = x0
    for n in range(count):
        game(x, y, z + rng.uniform(-0.8, 0.5), 0, first + n)
        x += 2.62
    return x


# ---- machines of no maker but ours
def lamp(x, y, z, rgb, r=0.35):
    m.plain(lathe([(0, 0), (r, 0), (r, 0.15), (0, 0.3)], 10).turned('x', 90), rgb, at=(x, y, z), gloss=(0.2, 20, 0.35))


def cable(points, rgb=(0.045, 0.045, 0.05), r=0.28, steps=5):
    m.plain(tube(curve(points, steps), r, 3), rgb, gloss=(0.15, 12, 0))


def pad(x, y, z, turn, body, accent, cord):
    """A flat controller: a cross, two buttons, its cord to the given points."""
    turns = [('x', -90), ('y', turn)]
    m.add(prism(rounded_outline(13.5, 6.2, 1.8, 4), 1.9, 0.4), plastic(body), at=(x, y + 0.95, z), turn=turns,
          gloss=SATIN, density=1.3)
    c, s = np.cos(np.radians(turn)), np.sin(np.radians(turn))

    def spot(dx, dz):
        return (x + dx * c + dz * s, y + 2.0, z - dx * s + dz * c)
    for w, d in ((2.9, 0.95), (0.95, 2.9)):
        m.plain(box(w, 0.7, d, 0.15), (0.06, 0.06, 0.07), at=spot(-4.0, 0), turn=[('y', turn)])
    for dx in (3.2, 5.2):
        m.plain(cylinder(0.8, 0.5, 0.15, 12), accent, at=spot(dx, 0.5), gloss=LACQUER)
    m.plain(box(2.4, 0.3, 0.7, 0.1), (0.15, 0.15, 0.17), at=spot(0, 0.9), turn=[('y', turn)])
    start = spot(0, -3.1)
    cable([(start[0], y + 1.0, start[2])] + cord)


def wedge(x, y, z):
    """Black, low, with a raised ridge and a coral line: eight bits."""
    side = [(-12, 0), (12, 0), (12, 2.6), (8.5, 3.4), (4.0, 4.0), (2.6, 6.0), (-8.5, 6.6), (-12, 5.8)]
    body = prism(side, 37, 0.35).turned('y', -90)

    def paint(s):
        rgb = plastic('26272E', 0.05)(s)
        line = (np.abs(s.own[:, 0] + 0.0) < 17.2) & (s.own[:, 2] > 5.0) & (s.own[:, 2] < 5.9) & (s.normal[:, 1] > 0.5)
        rgb = np.where(line[:, None], colour('D9604C'), rgb)
        slot = (np.abs(s.own[:, 0]) < 6.6) & (np.abs(s.own[:, 2] + 3) < 1.1) & (s.normal[:, 1] > 0.5)
        return np.where(slot[:, None], rgb * 0.2, rgb)
    m.add(body, paint, at=(x, y, z), gloss=SATIN, density=1.3, crease=30)
    for k in range(9):
        m.plain(box(0.5, 0.4, 8, 0.1), (0.05, 0.05, 0.06), at=(x - 15.5 + k * 0.95, y + 6.3, z - 4))
    for k in range(2):
        m.plain(cylinder(1.1, 0.5, 0.15, 16), (0.50, 0.20, 0.16), at=(x + 12 + k * 3.2, y + 3.35, z + 6.8), gloss=LACQUER)
    m.add(box(12.6, 9.5, 2.0, 0.3), picture(prints.box_front('LUCIOLE', '#12323A', '#4FC3C7', prints.LEAF, prints.CORAL)
                                            .resize((300, 220)), 10.5, 5.0, plastic('30313A')), at=(x, y + 8.6, z - 3),
                                            gloss=SATIN)
    lamp(x - 14, y + 1.6, z + 12.1, (1.0, 0.25, 0.15))


def loader(x, y, z):
    """Pale grey, a flap in its front: the tape-like cartridges go in there."""
    m.add(cushion(30, 8.6, 23, 1.1, 0.0, 6), plastic('B9B3A4', 0.03, dust=0.1), at=(x, y + 4.9, z), gloss=SATIN,
          density=1.2)
    m.add(box(28.6, 1.0, 21.6, 0.2), plastic('37363E'), at=(x, y + 0.5, z), density=0.6)
    m.add(box(17, 4.6, 0.7, 0.25), plastic('8F8A80', 0.03), at=(x - 4.5, y + 6.0, z + 11.5), gloss=SATIN, density=1.2)
    m.add(box(29.0, 1.7, 0.5, 0.15), plastic('3F356F'), at=(x, y + 2.4, z + 11.4), gloss=SATIN)
    for k in range(2):
        m.plain(box(2.4, 1.6, 0.8, 0.3), (0.32, 0.26, 0.52), at=(x + 7.4 + 3.6 * k, y + 6.2, z + 11.6), gloss=LACQUER)
    lamp(x + 12.8, y + 6.2, z + 11.5, (1.0, 0.5, 0.15), 0.3)


def dome(x, y, z):
    """Black and smooth with a round window in its top: sixteen bits."""
    m.add(prism(rounded_outline(33, 24, 3.2, 5), 5.0, 0.7).turned('x', -90), plastic('1F2026', 0.04), at=(x, y + 2.8, z),
          gloss=LACQUER, density=1.2)
    ring = [(0, 0), (9.6, 0), (9.4, 0.8), (8.6, 1.4), (7.8, 1.2), (0, 1.0)]
    m.add(lathe(ring, 36), plastic('2E2F3A', 0.03), at=(x - 3, y + 5.2, z - 1), gloss=LACQUER)
    m.plain(box(11, 0.5, 1.2, 0.2), (0.02, 0.02, 0.02), at=(x - 3, y + 6.2, z - 1))
    m.plain(prism(rounded_outline(5.5, 1.2, 0.5, 3), 0.3, 0.1).turned('x', -90), (0.28, 0.22, 0.5),
            at=(x + 11, y + 5.5, z + 8))
    lamp(x - 13, y + 2.9, z + 11.9, (0.35, 1.0, 0.45), 0.3)


def recorder(x, y, z):
    """The tape recorder and its clock."""
    m.add(box(43, 9, 30, 0.5, 1), plastic('2B2B30', 0.05), at=(x, y + 5.2, z), gloss=SATIN, density=1.0)
    for sx in (-1, 1):
        for sz in (-1, 1):
            m.plain(cylinder(1.4, 0.8, 0.1, 10), (0.04, 0.04, 0.04), at=(x + 17 * sx, y, z + 11 * sz))
    f = z + 15
    m.add(box(41, 7.6, 0.5, 0.15), plastic('8B887F', 0.06), at=(x, y + 5.2, f), gloss=(0.3, 25, 0), density=1.1)
    m.add(box(20, 3.2, 0.5, 0.2), plastic('1A1A1E'), at=(x - 9, y + 6.4, f + 0.2), gloss=LACQUER)
    m.add(box(11, 3.2, 0.4, 0.2), plastic('0C0E12', 0.0), at=(x + 8.5, y + 6.4, f + 0.2), gloss=GLOSS)
    segments = {'2': 'abged', '3': 'abgcd', '1': 'bc', '4': 'fgbc', '0': 'abcdef'}
    where = {'a': (0, 1, 1), 'g': (0, 0, 1), 'd': (0, -1, 1), 'b': (.5, .5, 0), 'c': (.5, -.5, 0), 'f': (-.5, .5, 0),
             'e': (-.5, -.5, 0)}
    for n, digit in enumerate('2314'):
        dx = x + 5.2 + 1.8 * n + (0.6 if n > 1 else 0)
        for s in segments[digit]:
            u, v, flat = where[s]
            m.plain(box(0.8 if flat else 0.2, 0.2 if flat else 0.8, 0.1, 0), (0.15, 0.9, 0.65),
                    at=(dx + u * 0.95, y + 6.4 + v * 0.95, f + 0.45),
                    gloss=(0, 0, 0.25))
    for v in (-0.4, 0.4):
        m.plain(box(0.22, 0.22, 0.1, 0), (0.15, 0.9, 0.65), at=(x + 8.6, y + 6.4 + v, f + 0.45), gloss=(0, 0, 0.25))
    for k in range(7):
        m.plain(box(2.0, 0.9, 0.6, 0.2), (0.22, 0.22, 0.24), at=(x - 17 + 2.6 * k, y + 2.9, f + 0.4), gloss=LACQUER)
    m.plain(cylinder(1.5, 0.8, 0.2, 18).turned('x', 90), (0.16, 0.16, 0.17), at=(x + 17.5, y + 6.0, f + 0.2),
            gloss=LACQUER)


def receiver(x, y, z):
    """A tuner with wooden cheeks; its dial is lit."""
    m.add(box(44, 12.6, 27, 0.4), plastic('35322E', 0.05), at=(x, y + 7.1, z), gloss=SATIN, density=0.9)
    for sx in (-1, 1):
        m.add(box(1.6, 13.6, 28.6, 0.4), wood(WALNUT, 'z', rings=1.2), at=(x + 22.8 * sx, y + 7.2, z), gloss=LACQUER)
        m.plain(cylinder(1.8, 1.0, 0.2, 12), (0.04, 0.04, 0.04), at=(x + 17 * sx, y, z + 9))
    f = z + 13.6

    def brushed(s):
        line = noise(np.stack([s.own[:, 0] * 0.2, s.own[:, 1] * 9, s.own[:, 2]], 1), 3)
        return colour('A8A296') * (1 + 0.07 * line + 0.04 * cloud(s.own * 0.2, 2, 4))[:, None]
    m.add(box(43.6, 12.4, 0.6, 0.2), brushed, at=(x, y + 7.2, f), gloss=(0.45, 22, 0), density=1.1)

    def dial(s):
        u, v = s.own[:, 0], s.own[:, 1]
        rgb = np.repeat(colour('3A2A18')[None], len(u), 0)
        rgb = mix(rgb, colour('A06A2C'), 0.6 * np.exp(-(v / 1.6) ** 2) * (0.7 + 0.3 * np.cos(u * 0.25)))
        tick = (np.abs((u / 1.15) % 1 - 0.5) > 0.42) & (v > 0.2) & (v < np.where(np.floor(u / 1.15 + 0.5) % 5 == 0, 1.5, 0.9))
        rgb = np.where(tick[:, None], colour('FFE9B8'), rgb)
        rgb = np.where((np.abs(v + 0.7) < 0.08)[:, None], colour('E8C88A'), rgb)
        return np.where((np.abs(u - 4.2) < 0.14)[:, None], colour('FF6A3C'), rgb)
    m.add(box(27, 4.4, 0.4, 0.1), dial, at=(x - 6.5, y + 10.2, f + 0.3), gloss=(0.4, 60, 0.22), density=1.4)
    for dx, r in ((13.0, 2.5), (18.6, 2.0)):
        knob = lathe([(0, 0), (r, 0), (r, 0.4), (r * 0.86, 0.5), (r * 0.8, 1.9), (r * 0.7, 2.1), (0, 2.0)],
                     26).turned('x', 90)
        m.plain(knob, (0.85, 0.82, 0.75), at=(x + dx, y + 9.8, f + 0.2), gloss=(0.5, 30, 0))
        m.plain(box(0.25, r * 0.7, 0.2, 0), (0.12, 0.10, 0.08), at=(x + dx, y + 9.8 + r * 0.42, f + 2.25))
    for k in range(6):
        m.plain(cylinder(0.75, 1.0, 0.15, 12).turned('x', 90), (0.85, 0.82, 0.75),
                at=(x - 17 + 4.0 * k, y + 4.4, f + 0.2), gloss=(0.5, 30, 0))
    lamp(x + 19.5, y + 4.4, f + 0.3, (1.0, 0.3, 0.15), 0.4)


# Module 1: the eight-bit machine above, games below.
x, y = middle(1), SHELVES[1]
wedge(x - 8, y, 42)
pad(x + 23, y, 45, 12, '24252C', (0.55, 0.2, 0.16), [(x + 20, y + 0.8, 36), (x + 26, y + 0.4, 30),
                                                     (x + 16, y + 0.4, 26), (x + 12, y + 2, 31)])
pad(x + 25, y, 54, -28, '24252C', (0.55, 0.2, 0.16),
    [(x + 31, y + 0.6, 50), (x + 35, y + 0.3, 40), (x + 28, y + 0.4, 24), (x + 12, y + 2, 29)])
cable([(x - 14, y + 3, 30), (x - 15, y + 4, 20), (x - 12, y + 6, 5), (x - 10, y + 14, -13)])
cable([(x - 4, y + 3, 30), (x - 2, y + 1, 20), (x + 2, y + 4, 4), (x - 2, y + 12, -13)])
end = row_of_games(x - 36.5, 15, LOW, 50)
game(end + 2.6, LOW, 50, 13, 3)
game(x + 22, LOW, 48, 0, 2, True, 4)
game(x + 23, LOW + 2.5, 48.5, 0, 5, True, -6)
game(x + 22, LOW + 5.0, 48, 0, 0, True, 9)
# Module 2: the front loader above; the recorder and tapes below.
x, y = middle(2), SHELVES[2]
loader(x - 18, y, 43)
dome(x + 19, y, 42)
pad(x - 20, y, 57.0, 6, 'A8A294', (0.30, 0.24, 0.50),
    [(x - 21, y + 0.6, 55.8), (x - 34, y + 0.5, 56), (x - 36, y + 0.4, 44), (x - 32, y + 2, 34)])
pad(x + 22, y, 57.0, -9, '1D1E24', (0.25, 0.6, 0.62),
    [(x + 23, y + 0.5, 55.8), (x + 37, y + 0.5, 56), (x + 37.5, y + 0.4, 46), (x + 35, y + 2, 36)])
cable([(x - 12, y + 4, 31.5), (x - 10, y + 5, 20), (x - 4, y + 9, 4), (x + 1, y + 16, -13)])
cable([(x + 10, y + 3, 30), (x + 8, y + 1, 18), (x + 6, y + 6, 4), (x + 4, y + 15, -13)])
recorder(x - 12, LOW, 43)
for n in range(4):
    m.add(box(19, 2.6, 10.6, 0.2), picture(prints.box_spine(('Summer 87', 'Cartoons', 'Grandmother', 'Football')[n],
                                                           ('#2A2440', '#5A2A24', '#20402C', '#3A3A44')[n],
                                                           prints.MOON), 17, 2.0, plastic('2A2A30')),
          at=(x + 25.5 + rng.uniform(-1, 1), LOW + 1.3 + 2.62 * n, 48), turn=[('y', rng.uniform(-7, 7))], gloss=SATIN,
          density=1.9)
# Module 4: the receiver above; records, games and a basket below.
x, y = middle(4), SHELVES[4]
receiver(x - 12, y, 42)
end = row_of_games(x + 15, 7, y, 50, 4)
game(end + 2.4, y, 50, 12, 9)
cable([(x - 20, y + 5, 27), (x - 22, y + 3, 14), (x - 18, y + 8, -13)])
# The sleeves stand with their edges to the front.
at = x - 37.5
for n in range(24):
    w = rng.uniform(0.5, 0.95)
    tint = '%02x%02x%02x' % tuple(rng.integers(low, high) for low,
                                  high in (((60, 190), (40, 130),
                                            (40, 130)) if n % 3 else ((150, 220), (140, 205), (110, 170))))
    m.add(box(w, 25.4, 25.4, 0.08), paper(tint, 0.06), at=(at + w / 2, LOW + 12.7, 44 + rng.uniform(-0.8, 0.8)),
          density=0.9)
    at += w + 0.06


def wicker(s):
    a = np.arctan2(s.own[:, 0], s.own[:, 2]) * 24 / np.pi
    row = np.floor(s.own[:, 1] / 1.5)
    over = (np.floor(a) + row) % 2
    band = np.abs((s.own[:, 1] / 1.5) % 1 - 0.5) * 2
    rgb = mix(colour('B58A52'), colour('6E4A26'), np.clip(0.25 + 0.5 * band ** 2 + 0.3 * over - 0.2 + 0.2 * noise(s.own * 1.2, 4), 0, 1))
    return rgb


basket = lathe([(0, 0), (9.5, 0), (11.4, 10), (12.2, 15), (12.6, 15.5), (12.2, 16), (11.6, 15.4), (10.6, 9), (0, 8)], 30)
m.add(basket.scaled(1.15, 1, 0.9), wicker, at=(x + 22, LOW, 46), density=1.1)
for n in range(5):
    ball = lathe([(3.6 * np.sin(t), -3.6 * np.cos(t)) for t in np.linspace(0, np.pi, 8)], 12)
    m.add(ball, weave(('C65F4A', 'E4D3AC', '2B7377', 'C48736', '5A4A8A')[n], threads=1.4, contrast=0.3),
          at=(x + 22 + (-6, 4, 6.5, -2, 0)[n], LOW + (11.5, 12, 11, 12, 14)[n], 46 + (2, 4, -4, -5, 0)[n]),
          turn=[('x', 40 * n), ('z', 25 * n)])

ground(m, fade=3.2, sides='Z', strips=[(-250, 250, 52, 68.5, 1.2), (-250, 250, -68.5, 52, 0.08)])
m.build(rays=36)
