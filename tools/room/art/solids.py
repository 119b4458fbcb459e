"""Shapes and pictures that the screens share: hulls through outlines, curved glass, what a dark screen mirrors."""

import io
import os
import subprocess

import numpy as np
from PIL import Image, ImageFilter

from mesh import Mesh, grid_faces, rounded_outline, triangulated
from texture import sample

GLASS = 'glass.jpg'


def loop(w, h, z, radius=1.0, x=0.0, y=0.0, steps=4):
    """A rectangle with round corners, anticlockwise seen from +z, as (n, 3)."""
    flat = rounded_outline(w, h, radius, steps) + (x, y)
    return np.column_stack([flat, np.full(len(flat), float(z))])


def hull(loops, back=True, front=True):
    """A skin through outlines of equal length, from the back to the front; it may turn inwards at the front."""
    n = len(loops[0])
    v = np.vstack(loops)
    faces = []
    for k in range(len(loops) - 1):
        i = np.arange(n)
        j = (i + 1) % n
        a, b, c, d = k * n + i, k * n + j, (k + 1) * n + j, (k + 1) * n + i
        faces += [np.stack([a, b, c], 1), np.stack([a, c, d], 1)]
    if back:
        faces.append(np.array(triangulated(loops[0][:, :2]))[:, ::-1])
    if front:
        faces.append(np.array(triangulated(loops[-1][:, :2])) + (len(loops) - 1) * n)
    mesh = Mesh(v, np.vstack(faces))
    a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
    return Mesh(mesh.v, mesh.f[np.linalg.norm(np.cross(b - a, c - a), axis=1) > 1e-9])


def glass(w, h, bulge, columns=12, rows=9):
    """Glass that faces +z, its rim at z 0 and its middle at `bulge`; coordinates 0..1, v downwards."""
    u, v = (p.reshape(-1) for p in np.meshgrid(np.linspace(0, 1, columns + 1), np.linspace(1, 0, rows + 1)))
    a, b = 2 * u - 1, 1 - 2 * v
    z = bulge * (1 - a * a) * (1 - b * b) ** 0.8 if bulge else 0 * a
    faces = grid_faces(columns + 1, rows + 1)
    plane = np.column_stack([u, v])
    return Mesh(np.column_stack([a * w / 2, b * h / 2, z]), faces, plane[faces])


def dark_glass(folder):
    """The picture of a screen that is off: green-grey glass, the lamp and a window far away in it."""
    wide, tall = 256, 192
    y, x = np.mgrid[0:tall, 0:wide] / np.array([tall, wide]).reshape(2, 1, 1)
    base = np.array([0.115, 0.135, 0.135])
    rgb = base * (0.75 + 0.45 * (1 - y)[..., None]) * (1 - 0.5 * (((x - 0.5) * 2) ** 4 + ((y - 0.5) * 2) ** 4)[..., None] / 2)
    lamp = np.exp(-(((x - 0.66) / 0.055) ** 2 + ((y - 0.24) / 0.06) ** 2))
    sheen = np.clip(1 - np.abs((x - 0.25) + (y - 0.5) * 0.35) / 0.16, 0, 1) * (1 - y)
    rgb = rgb + lamp[..., None] * np.array([0.26, 0.20, 0.13]) + sheen[..., None] * np.array([0.035, 0.045, 0.05])
    image = Image.fromarray((np.clip(rgb, 0, 1) * 255 + 0.5).astype(np.uint8)).filter(ImageFilter.GaussianBlur(2))
    os.makedirs(folder, exist_ok=True)
    image.save(os.path.join(folder, GLASS), quality=92)
    return GLASS


def lettering(text, size=64, weight=600):
    """A line of text as (coverage (h, w), width over height)."""
    svg = (f'<svg xmlns="http://www.w3.org/2000/svg" width="1200" height="{size * 1.4:.0f}"><text x="{size / 4}" y="{size}" '
           f'font-family="Inter Display" font-weight="{weight}" font-size="{size}" letter-spacing="{size * 0.06}" '
           f'fill="#fff">{text}</text></svg>')
    done = subprocess.run(['rsvg-convert'], input=svg.encode(), stdout=subprocess.PIPE, check=True)
    alpha = np.asarray(Image.open(io.BytesIO(done.stdout)).convert('RGBA'), float)[..., 3] / 255
    rows, columns = np.nonzero(alpha > 0.05)
    cut = alpha[rows.min():rows.max() + 1, columns.min():columns.max() + 1]
    return cut, cut.shape[1] / cut.shape[0]


def printed(mask, x, y, height):
    """How much of a line of text covers each place (x, y from the line's middle) when it is `height` high."""
    cover, ratio = mask
    u, v = x / (height * ratio) + 0.5, 0.5 - y / height
    inside = (u > 0) & (u < 1) & (v > 0) & (v < 1)
    return sample(np.repeat(cover[..., None], 3, 2), u, v)[:, 0] * inside


def edge_band(x, low, high, soft):
    """1 between low and high, 0 outside, with soft ends."""
    return np.clip((x - low) / soft + 0.5, 0, 1) * np.clip((high - x) / soft + 0.5, 0, 1)
