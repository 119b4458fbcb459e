"""The couch: teal upholstery on walnut pegs, two scatter cushions, a woollen blanket over one arm."""
import numpy as np

import scene
from ground import ground
from mesh import Mesh, box, curve, cushion, cylinder, onto, pillow, rounded_outline, sheet, tube
from model import LACQUER, Model
from texture import WALNUT, cloud, colour, mix, noise, step, weave, wood

TEAL = weave('1D5F66', '184E56', threads=1.15, contrast=0.10, nap=0.12)
SEAM = weave('195058', '14424A', threads=1.15, contrast=0.08, nap=0.05, worn=0.8)

m = Model('couch', size=(200, 70.347, 86), sheets=3, faint={'-y': 0.35, '-z': 0.4}, lamp=scene.lamp_for('couch'),
          brightness=1.5, strip=True, closed=True)


def creased(amount, scale, seed):
    """Moves the points of a stuffed part a little, as use does."""
    def move(v):
        return v + amount * np.stack([cloud(v * scale + seed, 2, 1), cloud(v * scale + seed + 40, 2, 2),
                                      cloud(v * scale + seed + 80, 2, 3)], 1)
    return move


def piping(body, core, points, thick=0.42):
    """A corded seam that follows the body's surface through the points."""
    path = onto(body, np.vstack([points, points[:1]]), core, 0.12)
    return tube(path, thick, 4)


# The frame: arms, base and back.
m.add(cushion(164, 19, 70, 2.0, 0.0, 6), TEAL, at=(0, 20.5, -2), density=0.8)
m.add(box(163, 3, 69, 0.5), wood(WALNUT), at=(0, 10.5, -2), density=0.4)
m.add(cushion(166, 54, 15, 5.0, 0.8, 8), TEAL, at=(0, 37, -31.5), turn=[('x', -5)])
for side in (-1, 1):
    arm = cushion(17, 45, 79, 5.2, 0.7, 10, creased(0.25, 0.07, side * 7))
    m.add(arm, TEAL, at=(side * 87, 33.4, 0.5))
    for z in (1, -1):
        m.add(cylinder(1.4, 12, 0.3, 14, 2.6), wood(WALNUT, 'y'), at=(side * 82, 0, 31 * z), gloss=LACQUER)
    # The seam around the arm's front.
    loop = rounded_outline(12.6, 40.6, 3.2, 4)
    seam = piping(arm, (3.2, 17.2, 34.2), np.column_stack([loop, np.full(len(loop), 38.2)]), 0.45)
    m.add(seam, SEAM, at=(side * 87, 33.4, 0.5), density=0.6, shades=False)
m.add(cylinder(1.6, 10, 0.3, 12, 2.2), wood(WALNUT, 'y'), at=(0, 0, 24), gloss=LACQUER)

RIM = rounded_outline(51.6, 59.4, 3.4, 3)

# Seat and back cushions. People sit on the left one more than on the others.
for k, x in enumerate((-54.0, 0.0, 54.0)):
    hollow = (1.6, 0.7, 1.0)[k]

    def sat_on(v, hollow=hollow, k=k):
        v = creased(0.30, 0.06, 11 * k)(v)
        v[:, 1] -= hollow * np.exp(-((v[:, 0] / 18) ** 2 + ((v[:, 2] - 2) / 20) ** 2)) * (v[:, 1] > 0)
        return v
    seat = cushion(54.2, 15.5, 62, 4.4, 2.1, 10, sat_on)
    m.add(seat, TEAL, at=(x, 38.4, 5.5), density=1.15)
    # From corner to corner with points enough to follow the hollow.
    loop = np.vstack([np.linspace(p, q, 4, endpoint=False) if np.linalg.norm(q - p) > 8 else [p]
                      for p, q in zip(RIM, np.roll(RIM, -1, 0))])
    for high in (6.4, -6.4):
        seam = piping(seat, (22.0, 2.8, 26.0), np.column_stack([loop[:, 0], np.full(len(loop), high), loop[:, 1]]))
        m.add(seam, SEAM, at=(x, 38.4, 5.5), density=0.6, shades=False)

    def leaned_on(v, k=k):
        v = creased(0.45, 0.055, 31 * k + 5)(v)
        return v - np.outer((v[:, 2] > 0) * np.exp(-((v[:, 0] / 17) ** 2 + ((v[:, 1] + 3) / 9) ** 2)), (0, 0, 1.1))
    m.add(cushion(53.6, 27.5, 17, 6.0, 2.3, 9, leaned_on), TEAL, at=(x, 56.5, -16.5), turn=[('x', -14)], density=1.15)


def moons(s):
    """Amber linen with a row of moons."""
    base = weave('C07A2A', 'A9661F', threads=3.0, contrast=0.16, nap=0.06)(s)
    cell = np.stack([s.own[:, 0] / 8.0, s.own[:, 1] / 8.0], 1)
    row = np.floor(cell[:, 1])
    cell[:, 0] += 0.5 * (row % 2)
    at = cell - np.floor(cell) - 0.5
    disc = np.hypot(at[:, 0], at[:, 1])
    bite = np.hypot(at[:, 0] - 0.13, at[:, 1] - 0.05)
    moon = (1 - step(0.27, 0.31, disc)) * step(0.22, 0.26, bite)
    return mix(base, colour('F0E2BE') * (base.mean(1) / base.mean())[:, None], moon * 0.9)


def stripes(s):
    base = weave('B9503F', '9E4234', threads=3.0, contrast=0.18, nap=0.06)(s)
    band = np.abs(((s.own[:, 0] + 40) / 7.0) % 1 - 0.5)
    base = mix(base, colour('EAD9B4') * (base.mean(1) / base.mean())[:, None], 1 - step(0.07, 0.10, band))
    return mix(base, colour('3A3266'), (step(0.16, 0.18, band) * (1 - step(0.20, 0.22, band))) * 0.8)


m.add(pillow(38, 36, 13, 10), moons, at=(60, 62.4 - 4.0, -1.5), turn=[('z', 7), ('x', -24), ('y', -24)], crease=130)
m.add(pillow(34, 34, 12, 10), stripes, at=(42, 61.0 - 4.6, 1.5), turn=[('z', -9), ('x', -28), ('y', 9)], crease=130)

# The blanket runs up the arm's outside, over it and on to the seat.
PATH = curve([(-97.0, 19), (-97.4, 34), (-97.2, 49), (-95.0, 55.2), (-88, 57.6), (-80.5, 55.4), (-77.6, 49.6),
              (-73.0, 47.6),
              (-62, 46.9), (-50, 46.6), (-41, 47.0)], 6)
ALONG = np.concatenate([[0], np.cumsum(np.linalg.norm(np.diff(PATH, axis=0), axis=1))])
LONG, WIDE = ALONG[-1], 42.0


def lying(u, v):
    t = u * LONG
    x, y = np.interp(t, ALONG, PATH[:, 0]), np.interp(t, ALONG, PATH[:, 1])
    ahead = np.stack([np.interp(t + 1, ALONG, PATH[:, 0]) - np.interp(t - 1, ALONG, PATH[:, 0]),
                      np.interp(t + 1, ALONG, PATH[:, 1]) - np.interp(t - 1, ALONG, PATH[:, 1])], 1)
    ahead /= np.linalg.norm(ahead, axis=1)[:, None]
    fold = noise(np.stack([t * 0.03, v * 6.5], 1), 5) * 0.8 + noise(np.stack([t * 0.06, v * 11], 1), 6) * 0.35
    lift = 0.75 + 0.85 * (fold + 0.6) * (0.35 + 0.65 * np.minimum(1, np.abs(t - 45) / 30))
    lift = np.clip(lift, 0.55, 2.2)
    z = 22 - WIDE * v + 3.0 * np.sin(t * 0.035) * (v - 0.3) + 1.2 * noise(np.stack([t * 0.05, v * 3], 1), 7)
    x = np.maximum(x - ahead[:, 1] * lift, -99.9)
    return np.stack([x, y + ahead[:, 0] * lift, z], 1)


def wool(s):
    u, v = s.uv[:, 0], s.uv[:, 1]
    rgb = np.repeat(colour('E4D3AC')[None], len(u), 0)
    for period, low, high, text in ((21, 0, 6, 'C65F4A'), (21, 8.5, 9.7, '3F356F'), (21, 13.5, 14.7, 'D9933B')):
        for t, share in ((u, 0.62), (v + 4, 0.5)):
            at = t % period
            band = step(low - 0.15, low + 0.15, at) * (1 - step(high - 0.15, high + 0.15, at))
            rgb = mix(rgb, colour(text), band * share)
    knit = 0.5 + 0.5 * np.sin(u * 2 * np.pi * 1.1 + 1.3 * np.abs(((v * 1.1) % 1) - 0.5) * 2 * np.pi)
    fuzz = noise(s.uv * 4, 3) * 0.6 + noise(s.uv * 9, 4) * 0.4
    return rgb * (0.86 + 0.13 * knit + 0.07 * fuzz + 0.05 * cloud(s.uv * 0.12, 3, 5))[:, None]


m.add(sheet(lying, 36, 14, LONG, WIDE, 0.45), wool, crease=70, density=1.1)
fringe = None
for end, u0 in ((0, 0.0), (1, 1.0)):
    for k in range(21):
        p = lying(np.array([u0, abs(u0 - 0.02)]), np.array([(k + 0.5) / 21] * 2))
        ahead = (p[0] - p[1]) / np.linalg.norm(p[0] - p[1])
        drop = np.array([0, -0.9, 0.25 * np.sin(k * 2.3)]) if end == 0 else np.array([0.9, -0.05, 0.35 * np.sin(k * 1.7)])
        line = np.array([p[0] - ahead * 0.3, p[0] + ahead * 1.2 + drop * 0.7, p[0] + ahead * 1.4 + drop * 2.4])
        if end == 0:
            line[:, 0] = np.maximum(line[:, 0], -99.6)
        thread = tube(line, 0.32, 3)
        fringe = thread if fringe is None else fringe + thread
m.add(fringe, wool, density=0.5)

# The crown of the highest cushion is the box's height; the sheet on the floor is its width and depth.
high = max(p.points[:, 1].max() for p in m.parts)
for p in m.parts:
    p.points[:, 1] *= 70.347 / high
m.block(Mesh([[-150, 0, -57], [150, 0, -57], [150, 200, -57], [-150, 200, -57]], [[0, 1, 2], [0, 2, 3]]), returned=0.45)
ground(m, fade=5.0)
m.build()
