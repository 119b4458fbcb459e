"""The low walnut table on its kilim. The handheld lies on a magazine, whose cover is the box's top."""
import numpy as np

import prints
import scene
from mesh import box, cylinder, lathe, prism, rounded_outline, sheet, tube
from model import LACQUER, SATIN, Model
from texture import OAK, WALNUT, cloud, colour, mix, noise, paper, picture, plastic, planks, sample, step, weave, wood

TOP = 48.2
m = Model('coffeetable', size=(200, 49, 80), sheets=2, lamp=scene.lamp_for('coffeetable'),
          faint={'-y': 0.3})


def kilim(s):
    """A flat weave: stripes at the ends, a border, three stepped diamonds."""
    knot = 0.62
    x, z = (np.floor(s.own[:, k] / knot + 0.12 * noise(s.own * 1.4, k + 1)) * knot for k in (0, 2))
    ax, az = np.abs(x), np.abs(z)
    red, night, cream, teal, amber = (colour(c) for c in ('8C3A33', '2C2852', 'DCCBA0', '2B7377', 'C48736'))
    rgb = np.repeat(red[None], len(x), 0)
    cell = (x + 58 * 5.5) % 58 - 29
    far = np.floor((np.abs(cell) / 1.05 + az) / 3.1) * 3.1
    for size, c in ((27.5, night), (24.5, cream), (21.5, teal), (15.5, night), (12.2, amber), (6.2, red), (3.2, cream)):
        rgb = np.where((far < size)[:, None] & (az < 28)[:, None], c, rgb)
    hook = (np.abs(((x + 29) + 58 * 5.5) % 58 - 29) / 1.0 + np.abs(az - 22) < 6.4)
    rgb = np.where((hook & (az < 27))[:, None], amber, rgb)
    # The border: night with a cream zigzag, between two lines.
    edge = np.minimum(99.5 - 7 - ax, 39.5 - az)
    rgb = np.where((edge < 9.8)[:, None], cream, rgb)
    rgb = np.where((edge < 8.7)[:, None], night, rgb)
    run = np.where(39.5 - az < 92.5 - ax, x, z)
    zigzag = np.abs(((run / 5.0) % 1) * 2 - 1) * 3.6 + 2.6
    rgb = np.where(((np.abs(edge - zigzag) < 0.9) & (edge < 8))[:, None], amber, rgb)
    rgb = np.where((edge < 1.3)[:, None], teal, rgb)
    band = np.floor((ax - 91.5) / 1.4).astype(int)
    ends = np.array([night, cream, red, amber, red, cream, night])[np.clip(band, 0, 6)]
    rgb = np.where((ax > 91.5)[:, None], ends, rgb)
    thread = 0.5 + 0.5 * np.sin(s.own[:, 2] * 2 * np.pi / knot)
    abrash = cloud(np.stack([s.own[:, 0] * 0.02, s.own[:, 2] * 0.16, s.own[:, 1]], 1), 3, 4)
    rgb = rgb * (0.90 + 0.08 * thread + 0.10 * abrash + 0.06 * noise(s.own * 3, 5))[:, None]
    return mix(rgb, colour('A89878'), 0.10 + 0.06 * cloud(s.own * 0.04, 3, 6))


# The kilim is as long and deep as the box: fringes at its ends.
m.add(box(196, 0.62, 80, 0.2), kilim, at=(0, 0.31, 0), density=0.72, returned=0.25)
fringe = None
rng = np.random.default_rng(4)
for side in (-1, 1):
    for z in np.linspace(-39, 39, 66):
        lean, long = rng.uniform(-0.25, 0.25), rng.uniform(1.5, 1.95)
        knot = box(long, 0.3, 0.62, 0.12).moved(side * (98 + long / 2 - 0.0), 0.2, z + lean)
        fringe = knot if fringe is None else fringe + knot
end = box(1.99, 0.3, 0.5, 0.12)
fringe = fringe + end.moved(99.005, 0.2, 0) + end.moved(-99.005, 0.2, 0)
m.add(fringe, weave('D9C9A2', 'B7A57C', threads=2, contrast=0.1), density=0.4)

# The slab, with a ring that a cup left and a paler place where feet lie.
board = planks(wood(WALNUT, rings=1.5), 2, 13.2, gap=0.05, depth=0.35)


def top(s):
    rgb = board(s)
    up = s.normal[:, 1] > 0.7
    x, z = s.own[:, 0], s.own[:, 2]
    for cx, cz, r, strength in ((-47, 13, 4.1, 0.5), (-42.4, 10.5, 4.1, 0.22), (56, -15, 3.7, 0.3)):
        d = np.hypot(x - cx, z - cz)
        ring = np.exp(-((d - r) / 0.32) ** 2) * (0.6 + 0.4 * noise(np.stack([x, z], 1) * 0.7 + r, 3))
        rgb = mix(rgb, colour('D9B58A'), np.where(up, np.clip(ring * strength, 0, 1), 0))
    rub = np.exp(-(((x - 20) / 34) ** 2 + ((z - 29) / 9) ** 2)) * (0.6 + 0.4 * cloud(s.own * 0.3, 3, 8))
    rgb = mix(rgb, colour('B98A5E'), np.where(up, 0.28 * np.clip(rub, 0, 1), 0))
    scratch = noise(np.stack([x * 0.25 + z * 0.12, z * 9 - x * 2.1], 1), 9)
    return mix(rgb, colour('C79B6C'), np.where(up, step(0.72, 0.95,
                                                        scratch) * step(0.2, 0.8, noise(s.own * 0.11, 10)) * 0.35, 0))


slab = prism(rounded_outline(180, 66, 9, 6), 3.4, 0.55).turned('x', -90)
m.add(slab, top, at=(0, TOP - 1.7, 0), gloss=LACQUER, density=1.35)
for z in (-22, 22):
    m.add(box(140, 4.6, 2.2, 0.3), wood(WALNUT), at=(0, TOP - 5.6, z), gloss=SATIN, density=0.6)
for x in (-70, 70):
    m.add(box(2.2, 4.6, 44, 0.3), wood(WALNUT, 'z'), at=(x, TOP - 5.6, 0), gloss=SATIN, density=0.6)
for sx in (-1, 1):
    for sz in (-1, 1):
        leg = cylinder(1.25, 44.8, 0.35, 18, 2.3)
        m.add(leg.mapped(lambda v, sx=sx, sz=sz: v + np.stack([(44.8 - v[:, 1]) * 0.13 * sx, 0 * v[:, 1],
                                                              (44.8 - v[:, 1]) * 0.09 * sz], 1)),
              wood(WALNUT, 'y'), at=(sx * 71, 0.55, sz * 23), gloss=LACQUER, density=0.9)
# The shelf: two rails between the legs, seven slats.
SHELF = 15.0
for x in (-75, 75):
    m.add(box(2.0, 2.2, 52, 0.3), wood(WALNUT, 'z'), at=(x, SHELF - 1.9, 0), gloss=SATIN, density=0.6)
for k in range(7):
    m.add(box(152, 1.3, 5.4, 0.3), wood(WALNUT), at=(0, SHELF - 0.65, (k - 3) * 7.4), gloss=SATIN, density=0.75)

# On the top: the magazine under the handheld, another half under it, the programme, a coaster.
lantern = prints.magazine(12, 'LANTERN', ['SKYWREN', 'the arcade flight', 'that lasts all night'], '#2A3266', '#B5567A',
                          '#7A3A6B', prints.AMBER)
tide = prints.magazine(11, 'LANTERN', ['ÉCUME', 'how the sea', 'came to the screen'], '#123F57', '#4FC3C7', '#1B6A74',
                       prints.CORAL)
glow = prints.magazine(9, 'LANTERN', ['MISTRAL', 'wind, stone', 'and sixteen bits'], '#5A2E5E', '#FFB347', '#8A4A2A',
                       prints.TEAL)


def lying(image, x, y, z, degrees, thick, w=21.5, d=29.5):
    """A magazine with its cover up; degrees turn it from reading upright along -z."""
    paint = picture(image, w, d, paper('E6DDC8'), axes=(0, 1))
    # The paint sees the part before the turn, so the box lies in x-y there.
    m.add(box(w, d, thick, 0.06), paint, at=(x, y + thick / 2, z), turn=[('x', -90), ('y', degrees)], gloss=SATIN,
          density=2.1)


lying(tide, -17, TOP, 3, 62, 0.4)
# It is as thick as what half of it lies on, and reaches down to the top.
lying(lantern, 4.5, TOP, 10, 96, 0.8)


def page(u, v):
    x = (u - 0.5) * 36
    lift = 0.12 + 0.42 * np.sin(np.pi * np.abs(u - 0.5) * 2) ** 0.8 * (0.75 + 0.25 * np.sin(v * 2 + 4 * u))
    return np.stack([x, lift, (v - 0.5) * 25], 1)


data = prints.spread()


def printed(s):
    return sample(np.asarray(data, float) / 255, s.uv[:, 0] / 36, s.uv[:, 1] / 25)


m.add(sheet(page, 25, 6, 36, 25).flipped(), printed, at=(-56, TOP, -9), turn=[('y', 81)], density=1.8, crease=100)
m.add(cylinder(4.8, 0.5, 0.12, 28), wood(OAK, 'x', rings=0.5, tone=0.72), at=(44, TOP, 16), density=1.2)

# On the shelf: more magazines, a game's box, a mug.
lying(glow, -40, SHELF, 6, 84, 0.7)
lying(tide, -41, SHELF + 0.7, 5, 93, 0.6)
lying(lantern, -39, SHELF + 1.3, 6, 78, 0.6)
lying(glow, -40, SHELF + 1.9, 5, 101, 0.6)
BOX = prints.box_front('MISTRAL', '#1B2142', '#C65F4A', prints.AMBER, prints.DUSK)
m.add(box(13, 18, 2.6, 0.25), picture(BOX, 13, 18, plastic('1C1D26')), at=(6, SHELF + 1.3, 12),
      turn=[('x', -90), ('y', 70)],
      gloss=SATIN, density=2)
BOX2 = prints.box_front('LUCIOLE', '#12323A', '#4FC3C7', prints.LEAF, prints.CORAL)
m.add(box(13, 18, 2.6, 0.25), picture(BOX2, 13, 18, plastic('1C1D26')), at=(4, SHELF + 3.9, 11),
      turn=[('x', -90), ('y', 96)],
      gloss=SATIN, density=2)


def mug_paint(s):
    rgb = plastic('D8CBB0', 0.02)(s)
    r = np.hypot(s.own[:, 0], s.own[:, 2])
    coffee = (r < 3.55) & (s.normal[:, 1] > 0.9) & (s.own[:, 1] > 5)
    rgb = np.where(coffee[:, None], colour('3A2012'), rgb)
    band = step(2.2, 2.5, s.own[:, 1]) * (1 - step(4.3, 4.6, s.own[:, 1])) * (r > 3.8)
    return mix(rgb, colour('C9603F'), band * 0.9)


mug = lathe([(0, 0), (3.4, 0), (3.9, 0.5), (4.1, 9.0), (3.95, 9.4), (3.7, 9.1), (3.55, 7.6), (0, 7.6)], 28)
m.add(mug, mug_paint, at=(49, SHELF, 13), gloss=(0.3, 40, 0), density=1.3)
handle = [(3.9 + 2.4 * np.sin(a), 4.8 - 2.7 * np.cos(a), 0) for a in np.linspace(0.15, np.pi - 0.15, 12)]
m.add(tube(handle, 0.55, 8), plastic('D8CBB0', 0.02), at=(49, SHELF, 13), turn=[('y', -35)], gloss=(0.3, 40, 0),
      density=0.6)

m.block(box(11, 3, 20, 0.4), at=(4.5, 50.5, 10), returned=0.1)
m.build()
