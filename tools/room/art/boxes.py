"""The game boxes of the cover view: a plastic case with one picture around its back, spine and front."""

import os

import numpy as np
from PIL import Image, ImageFilter

from mesh import Mesh, box
from model import OUT, Model

PAPER = 'boxcover.jpg'


def plain_cover():
    """What a box shows that has no cover: our moon on night, back, spine and front."""
    wide, tall = 770, 512
    y, x = np.mgrid[0:tall, 0:wide].astype(float)
    rgb = np.array([0.105, 0.125, 0.26]) * (1.15 - 0.35 * y / tall)[..., None]
    front, spine = 412, 54
    shade = np.where((x > 358) & (x < front), 0.82, 1.0)
    rgb *= shade[..., None]

    def disc(cx, cy, r):
        return np.clip(r - np.hypot(x - cx, y - cy) + 0.5, 0, 1)

    for middle, r in ((front + 179, 92), (179, 48), (front - spine / 2, 16)):
        k, cy = r / 21, tall * 0.46 if r > 50 else tall * 0.5 if r > 20 else 60
        moon = disc(middle, cy, r)
        dusk = moon * disc(middle - 9 * k, cy + 3 * k, 20 * k)
        deep = moon * disc(middle - 15 * k, cy + 5.5 * k, 20 * k)
        lamp = disc(middle - 5 * k, cy + 6.5 * k, 3.25 * k)
        for mask, tone in ((moon, (0.95, 0.92, 0.83)), (dusk, (0.26, 0.20, 0.48)), (deep, (0.17, 0.13, 0.35)),
                           (lamp, (1.0, 0.70, 0.28))):
            rgb = rgb * (1 - mask[..., None]) + np.array(tone) * mask[..., None]
    image = Image.fromarray((np.clip(rgb, 0, 1) * 255 + 0.5).astype(np.uint8)).filter(ImageFilter.GaussianBlur(0.4))
    os.makedirs(OUT, exist_ok=True)
    image.save(os.path.join(OUT, PAPER), quality=90)
    return PAPER


def sleeve(w, h, d, margin=1.1, bend=1.3):
    """The paper around the case, open on the right: coordinates as the unfolded picture, w : d : w."""
    arc = np.radians(np.linspace(0, 90, 6))
    half_w, half_d = w / 2, d / 2
    line = [(x, -half_d) for x in np.linspace(half_w - margin, -half_w + bend, 6)]
    line += [(-half_w + bend - bend * np.sin(a), -half_d + bend - bend * np.cos(a)) for a in arc[1:]]
    line += [(-half_w, z) for z in (0.0,)]
    line += [(-half_w + bend - bend * np.cos(a), half_d - bend + bend * np.sin(a)) for a in arc]
    line += [(x, half_d) for x in np.linspace(-half_w + bend, half_w - margin, 6)[1:]]
    whole = 2 * w + d

    def across(x, z):
        if z <= -half_d + 1e-9:
            return half_w - x
        if z >= half_d - 1e-9:
            return w + d + half_w + x
        return w + half_d + z

    rows = np.linspace(h / 2 - margin * 0.6, -h / 2 + margin * 0.6, 7)
    points, plane = [], []
    for y in rows:
        for x, z in line:
            points.append((x, y, z))
            plane.append((across(x, z) / whole, 0.5 - y / h))
    n, faces = len(line), []
    for r in range(len(rows) - 1):
        for c in range(n - 1):
            a = r * n + c
            faces += [[a, a + n, a + n + 1], [a, a + n + 1, a + 1]]
    return Mesh(points, faces, np.array(plane)[np.array(faces)])


def case(name, size, tone):
    w, h, d = size
    m = Model(name, size=size, floor=None)
    paper = sleeve(w, h, d)
    m.screen(paper, plain_cover(), at=(0, h / 2, 0), crease=60, gloss=(0.25, 30.0, 0.0), name='cover')
    # Two shells meet on the right with a gap; a lip for the thumb sits in its middle.
    thick = (d - 0.5) / 2 - 0.06
    for side in (-1, 1):
        m.plain(box(w - 0.12, h, thick, 0.9, 2), tone, at=(0.06, h / 2, side * (d / 2 - 0.06 - thick / 2)), gloss=(0.22, 24, 0))
    m.plain(box(w - 2.0, h - 1.6, 0.9, 0.2), tuple(0.3 * c for c in tone), at=(-0.6, h / 2, 0))
    m.plain(box(1.2, 16, 1.6, 0.35), tone, at=(w / 2 - 0.61, h / 2, 0), gloss=(0.22, 24, 0))
    m.build()
