"""Our moon in relief: the drawing of assets/images/ombrelune_logo.svg, 42 across. It keeps its own origin."""
import numpy as np

from mesh import Mesh, grid_faces, lathe, welded
from model import SATIN, Model
from texture import cloud, colour, mix, noise, step

SCALE = 1.0  # Units of the room for one of the drawing, whose moon has a radius of 21.
BACK = -1.7

m = Model('ombrelune', pixels=512, brightness=1.45, floor=None, reach=12)


def point(x, y):
    """A place of the drawing, whose y runs down from 0 to 48."""
    return np.array([(x - 24) * SCALE, (24 - y) * SCALE])


def circle(x, y, r, steps=72):
    c = point(x, y)
    a = np.arange(steps) * 2 * np.pi / steps
    return c + r * SCALE * np.column_stack([np.cos(a), np.sin(a)])


def meeting(c0, r0, c1, r1):
    """The two points that two circles share."""
    d = c1 - c0
    far = np.linalg.norm(d)
    along = (far * far + r0 * r0 - r1 * r1) / (2 * far)
    half = np.sqrt(r0 * r0 - along * along)
    e = d / far
    side = np.array([-e[1], e[0]])
    return c0 + e * along + side * half, c0 + e * along - side * half


def arc(c, r, a, b, steps, through):
    """Points of a circle from a to b, on the side of the point `through`."""
    def angle(p):
        return np.arctan2(p[1] - c[1], p[0] - c[0])
    t0, t1, tm = angle(a), angle(b), angle(through)
    sweep = (t1 - t0) % (2 * np.pi)
    if (tm - t0) % (2 * np.pi) > sweep:
        sweep -= 2 * np.pi
    t = t0 + sweep * np.linspace(0, 1, steps)
    return c + r * np.column_stack([np.cos(t), np.sin(t)])


def ribbon(rows):
    """Rows of equally many points as a skin of one chart, which is unrolled along the middle of the rows."""
    rows = np.array(rows, float)
    steps, n = rows.shape[:2]
    along = np.concatenate([[0], np.cumsum(np.linalg.norm(np.diff(rows[:, n // 2], axis=0), axis=1))])
    across = np.concatenate([[0], np.cumsum(np.linalg.norm(np.diff(rows, axis=1), axis=2).max(0))])
    plane = np.stack([np.repeat(along[:, None], n, 1), np.repeat(across[None], steps, 0)], -1).reshape(-1, 2)
    faces = grid_faces(n, steps)
    return welded(Mesh(rows.reshape(-1, 3), faces, plane[faces]))


def ring(profile, steps=96):
    """Turns a line of (radius, height) around z."""
    a = np.linspace(0, 2 * np.pi, steps + 1)
    return ribbon([[(r * np.cos(t), r * np.sin(t), z) for r, z in profile] for t in a])


def crescent(outer, inner, low, high, bevel, dome, steps=56):
    """What of the outer disc (x, y, r) the inner one leaves free: a ribbon with cut edges and a swelling middle."""
    c0, r0 = point(*outer[:2]), outer[2] * SCALE
    c1, r1 = point(*inner[:2]), inner[2] * SCALE
    p, q = meeting(c0, r0, c1, r1)
    away = (c0 - c1) / np.linalg.norm(c0 - c1)
    far, near = arc(c0, r0, p, q, steps, c0 + away * r0), arc(c1, r1, p, q, steps, c1 + away * r1)
    rows = []
    for a, b in zip(far, near):
        wide = max(np.linalg.norm(b - a), 1e-9)
        cut = min(bevel / wide, 0.3)
        tall = low + (high - low) * min(1, wide / 2.5)
        swell = dome * min(1, wide / 8)
        across = [(0, low), (0, tall - bevel * min(1, wide / 2.5)), (cut, tall), (0.3, tall + swell * 0.8), (0.5, tall + swell),
                  (0.7, tall + swell * 0.8), (1 - cut, tall), (1, tall - bevel * min(1, wide / 2.5)), (1, low)]
        rows.append([(*(a + (b - a) * t), z) for t, z in across])
    mesh = ribbon(rows)
    a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
    return mesh if np.cross(b - a, c - a)[:, 2].sum() > 0 else mesh.flipped()


def enamel(tone, spots=0.0):
    base = colour(tone)

    def paint(s):
        rgb = base * (1 + 0.04 * cloud(s.own * 0.25, 3, 5) + 0.02 * noise(s.own * 3, 6))[:, None]
        if spots:
            rgb = rgb * (1 - spots * step(0.2, 0.6, cloud(s.own * 0.13, 2, 9)))[:, None]
        rub = step(0.4, 0.95, s.edge + 0.2 * cloud(s.place * 0.6, 3, 11))
        return mix(rgb, np.minimum(base * 1.2 + 0.06, 1), rub * 0.5)
    return paint


# A rim holds the night; dusk and moon lie on it in steps.
turn = [('x', 90)]
m.add(lathe([(0, 0.4), (20.6, 0.4), (20.6, 0.9), (0, 0.9)], 72), enamel('2C2258'), at=(0, 0, BACK), turn=turn, crease=40, gloss=SATIN)
rim = [(20.3, 0), (21.1, 0), (21.4, 0.3), (21.4, 1.9), (21.15, 2.2), (20.5, 2.2), (20.25, 1.9), (20.2, 0.5)]
m.add(ring(rim).flipped(), enamel('382A6C'), at=(0, 0, BACK), crease=40, gloss=SATIN)
dusk = crescent((24, 24, 19.9), (9, 29.5, 20), 0.88, 1.4, 0.25, 0.0)
m.add(dusk, enamel('4A3888'), at=(0, 0, BACK), gloss=SATIN, crease=40)
moon = crescent((24, 24, 20.0), (15, 27, 20), 0.88, 2.6, 0.5, 0.8)
m.add(moon, enamel('B9B1A0', 0.06), at=(0, 0, BACK), gloss=(0.2, 20.0, 0.10), crease=40)
lamp = point(19, 30.5)
dome = [(0, 0), (3.5, 0), (3.5, 0.9), (3.2, 1.6), (2.5, 2.3), (1.4, 2.75), (0, 2.9)]
m.plain(lathe(dome, 32), (1.5, 0.85, 0.22), at=(lamp[0], lamp[1], BACK + 0.4), turn=turn, gloss=(0.4, 40.0, 0.25), crease=70)
m.build()
