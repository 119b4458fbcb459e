"""The shadow of a piece on the floor: a sheet just above the boards that shows the very boards below it, darkened.

The floor's picture repeats, so it can hold no shadow. A piece stands in one place; its sheet takes the floor's texels
of that place, and the shadow ends before the sheet does, so that no border shows.
"""
import os

import numpy as np
from PIL import Image

import scene
from mesh import Mesh, grid_faces
from model import OUT
from texture import sample, step

HEIGHT = 0.12


def ground(m, fade=6.0, inner=0.35, rim=16.0, sides='xXzZ', strips=None):
    """Adds the sheet to the Model. fade: how far from the border the shadow begins to end; rim: the width of the
    border part that has full texels, the rest has `inner` of them. sides: the borders at which it fades. strips: other
    rectangles (x0, x1, z0, z1, density) than the whole box."""
    w, _, d = m.size
    data = np.asarray(Image.open(os.path.join(OUT, 'floor2.jpg')).convert('RGB'), float) / 255

    def paint(s):
        place = scene.out_of(m.name, s.place)
        # The program's floor: u is x / 100, v is 8 - z / 100; the picture's first row is v 0.
        rgb = sample(data, (place[:, 0] / 100) % 1, (8 - place[:, 2] / 100) % 1)
        away = np.full(len(place), 1e9)
        x, z = s.place[:, 0], s.place[:, 2]
        for side, distance in (('x', x + w / 2), ('X', w / 2 - x), ('z', z + d / 2), ('Z', d / 2 - z)):
            if side in sides:
                away = np.minimum(away, distance)
        keep = 1 - step(0.0, fade, away)
        light = m.light(s)
        return rgb * (1 + keep * (1 / np.maximum(light, 0.02) - 1))[:, None] / m.brightness

    def piece(x0, x1, z0, z1, density):
        # Long strips are cut, so that no chart outgrows a sheet.
        for k in range(max(1, int((x1 - x0) / 105))):
            n = max(1, int((x1 - x0) / 105))
            left, right = x0 + (x1 - x0) * k / n, x0 + (x1 - x0) * (k + 1) / n
            columns, rows = max(2, int((right - left) / 12) + 1), max(2, int((z1 - z0) / 12) + 1)
            x, z = np.meshgrid(np.linspace(left, right, columns), np.linspace(z1, z0, rows))
            points = np.stack([x, np.full(x.shape, HEIGHT), z], -1).reshape(-1, 3)
            m.add(Mesh(points, grid_faces(columns, rows)), paint, density=density, returned=0.3)

    x, z = w / 2, d / 2
    for strip in strips or [(-x, x, z - rim, z, 1.6), (-x, x, -z, -z + rim * 0.5, 0.8),
                            (-x, -x + rim, -z + rim * 0.5, z - rim, 1.3), (x - rim, x, -z + rim * 0.5, z - rim, 1.3),
                            (-x + rim, x - rim, -z + rim * 0.5, z - rim, inner)]:
        piece(*strip)
