"""The paper lamp. Its origin is at the ceiling's hook, 3 units below the ceiling; it hangs down by 44."""
import numpy as np

from mesh import box, cylinder, lathe
from model import Model
from texture import cloud, colour, mix, step

PAPER = (0.0, 0.0, 0.95)
SEGMENTS = 48
HIGH, LOW, RADIUS, RIBS = -13.0, -44.0, 22.0, 13

m = Model('lightfixture', pixels=1024, brightness=1.0, floor=None, shade=0.0)


def radius(t):
    """A squashed ball, cut off at the rings; t is 0 at the foot, 1 at the top. Between its ribs the paper sinks in."""
    ring = np.sqrt(max(0.0, 1 - (2 * t - 1) ** 2 * 0.93))
    return RADIUS * ring - 0.45 * abs(np.sin(np.pi * t * RIBS)) ** 0.7


def paper(s):
    t = (s.own[:, 1] - LOW) / (HIGH - LOW)
    angle = np.arctan2(s.own[:, 0], s.own[:, 2])
    rib = np.abs(((t * RIBS + 0.5) % 1) - 0.5)
    fibre = cloud(np.stack([angle * 18, s.own[:, 1] * 0.9, s.own[:, 0] * 0], 1), 4, 3)
    blotch = cloud(s.own * 0.09, 3, 5)
    # The bulb is a little below the middle; paper glows most beside it.
    near = np.exp(-((t - 0.45) / 0.40) ** 2)
    rgb = mix(colour('E07A2A'), colour('FFB054'), np.clip(near + 0.10 * blotch + 0.06 * fibre, 0, 1))
    wire = 1 - 0.30 * (1 - step(0.02, 0.09, rib))
    seam = 1 - 0.14 * (1 - step(0.004, 0.02, np.abs(((angle / (2 * np.pi) * 8) % 1) - 0.5)))
    return rgb * (wire * seam * (0.66 + 0.42 * near))[:, None]


steps = RIBS * 4
profile = [(radius(k / steps), LOW + (HIGH - LOW) * k / steps) for k in range(steps + 1)]
m.add(lathe(profile, SEGMENTS), paper, gloss=PAPER, crease=80)
# Seen from below: the paper's inner side through the lower ring, and the bulb.
inner = lathe([(r * 0.99, y) for r, y in profile[:steps * 3 // 4]], SEGMENTS).flipped()
m.add(inner, lambda s: paper(s) * 1.1, gloss=(0, 0, 1.0), crease=80, density=0.5)
ball = [(5.5 * np.sin(a), -28 - 5.5 * np.cos(a)) for a in np.linspace(0, np.pi, 12)]
m.plain(lathe(ball, 20), (0.9, 0.8, 0.55), gloss=(0, 0, 1.0))
m.plain(cylinder(0.25, 10, 0.05, 8), (0.12, 0.11, 0.10), at=(0, -22, 0))
m.plain(cylinder(0.25, 14, 0.05, 8), (0.12, 0.11, 0.10), at=(0, -13, 0))
m.plain(cylinder(4.2, 2.2, 0.8, 24, 3.4), (0.55, 0.52, 0.46), at=(0, 0.8, 0), turn=[('x', 0)])
for y, r in ((LOW, radius(0)), (HIGH, radius(1))):
    ring = [(r + 0.35 * np.cos(a), y + 0.35 * np.sin(a)) for a in np.linspace(0, 2 * np.pi, 9)]
    m.plain(lathe(ring, SEGMENTS), (0.36, 0.24, 0.13), gloss=(0.05, 10, 0.05))
for turn in (0, 90):
    m.plain(box(2 * radius(1), 0.3, 0.3, 0.05), (0.3, 0.2, 0.1), at=(0, HIGH, 0), turn=[('y', turn)])
m.build()
