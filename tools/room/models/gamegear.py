"""The handheld: lies on the table, its screen up, its upper edge towards -z."""
import numpy as np

from art.solids import dark_glass, edge_band, glass, hull, lettering, loop, printed
from mesh import box, cylinder, prism
from model import OUT, SATIN, Model
from texture import colour, mix, plastic

W, H, D = 20, 3, 11
TOP = 2.5
SCREEN_W, SCREEN_H = 8.4, 6.3  # 4:3, as the machine shows its picture.
UP = [('x', -90)]  # What faces +z then faces up, its upper side towards -z.
PLASTIC = (0.2, 16.0, 0.0)

m = Model('gamegear', size=(W, H, D), pixels=512, brightness=1.6, reach=20)
shell = plastic('3A3E48', 0.03, 0.55)
dark = plastic('1B1C22', 0.02, 0.6)


NAME = lettering('ombrelune')


def body(s):
    """Slots of the speaker, a seam around the middle, and small print as marks."""
    rgb = shell(s)
    x, y, z = s.own.T
    up = s.normal[:, 2] > 0.7
    for k in range(5):
        along = (x - 6.9) * 0.8 + (y + 3.4) * 0.6
        across = -(x - 6.9) * 0.6 + (y + 3.4) * 0.8 - (k - 2) * 0.42
        rgb = mix(rgb, rgb * 0.18, up * edge_band(across, -0.12, 0.12, 0.08) * edge_band(along, -1.1, 1.1, 0.15))
    seam = edge_band(z, 1.14, 1.24, 0.06)
    rgb = mix(rgb, rgb * 0.3, seam)
    mark = up * edge_band(x, -7.6, -6.2, 0.1) * edge_band(y, 3.25, 3.4, 0.08)
    return mix(rgb, colour('4FC3C7'), mark * 0.9)


def lens(s):
    rgb = dark(s) * 0.8
    x, y = s.own[:, 0], s.own[:, 1]
    line = edge_band(np.maximum(np.abs(x) / 5.3, np.abs(y) / 4.15), 0.955, 0.975, 0.012) * (s.normal[:, 2] > 0.7)
    rgb = mix(rgb, colour('4FC3C7'), line * 0.85)
    word = printed(NAME, x, y + 3.55, 0.46) * (s.normal[:, 2] > 0.7)
    return mix(rgb, colour('B9BCD6'), word * 0.9)


# The shell: a slab with full, round ends; the grips are a little lower than the middle.
m.add(hull([loop(17.6, 8.8, 0, 3.2, steps=7), loop(19.2, 10.3, 0.35, 3.9, steps=7), loop(20, 11, 1.1, 4.3, steps=7),
            loop(20, 11, 1.3, 4.3, steps=7), loop(19.5, 10.6, 2.05, 4.1, steps=7), loop(18.7, 9.8, TOP - 0.06, 3.8, steps=7),
            loop(18.0, 9.2, TOP, 3.5, steps=7)]), body, turn=UP, gloss=PLASTIC, crease=60)
# The lens: black, a little raised, with the glass let in.
m.add(hull([loop(10.8, 8.5, 0, 0.9), loop(10.8, 8.5, 0.16, 0.9), loop(10.5, 8.2, 0.24, 0.8),
            loop(SCREEN_W + 0.3, SCREEN_H + 0.3, 0.24, 0.15, 0, 0.35), loop(SCREEN_W, SCREEN_H, 0.16, 0.05, 0, 0.35)], False, False),
      lens, at=(0, TOP, 0), turn=UP, gloss=(0.4, 50, 0), crease=40)
m.screen(glass(SCREEN_W, SCREEN_H, 0.0, 8, 7), dark_glass(OUT), at=(0, TOP + 0.155, -0.35), turn=UP)
# The pad on the left.
m.add(cylinder(1.75, 0.12, 0.05, 28), dark, at=(-7.35, TOP - 0.02, -0.3), crease=40)
cross = [(-0.5, -1.45), (0.5, -1.45), (0.5, -0.5), (1.45, -0.5), (1.45, 0.5), (0.5, 0.5), (0.5, 1.45), (-0.5, 1.45), (-0.5, 0.5),
         (-1.45, 0.5), (-1.45, -0.5), (-0.5, -0.5)]
m.add(prism(cross, 0.4, 0.1), plastic('26272D', 0.02, 0.9), at=(-7.35, TOP + 0.2, -0.3), turn=UP, gloss=SATIN)
# Two buttons on the right, one key above them.
for x, z in ((6.55, 0.5), (8.25, -0.5)):
    m.add(cylinder(0.86, 0.1, 0.04, 24), dark, at=(x, TOP - 0.02, z), crease=40)
    m.add(cylinder(0.68, 0.5, 0.12, 24, 0.62), plastic('D9D4C6', 0.02, 0.3), at=(x, TOP, z), gloss=SATIN, crease=40)
m.add(box(1.5, 0.34, 0.5, 0.12, 1), plastic('4FC3C7', 0.02, 0.3), at=(7.1, TOP + 0.1, -2.9), gloss=SATIN)
m.plain(cylinder(0.16, 0.12, 0.03, 10), (1.9, 0.3, 0.12), at=(-8.0, TOP - 0.02, -3.3), gloss=(0.4, 40, 0.1))
# Wheels for the volume and the light of the screen, halfway out of the upper edge.
for x in (-3.2, 3.2):
    m.add(cylinder(0.8, 0.4, 0.06, 20), dark, at=(x, 1.6, -4.55), gloss=SATIN)
m.build()
