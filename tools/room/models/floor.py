"""The floor's boards: one picture of 100 x 100 units that repeats without a seam. Its rows run against z."""
import os

import numpy as np
from PIL import Image

from model import OUT
from texture import cloud, colour, mix, noise, step

PIXELS, UNITS, COLUMNS = 1024, 100.0, 8
WIDTH = UNITS / COLUMNS
# Where a column's boards meet; a column without a number runs on through the room.
JOINTS = (22, None, 71, None, 46, 93, None, 60)


def boards():
    rows, columns = np.meshgrid((np.arange(PIXELS) + 0.5) / PIXELS * UNITS, (np.arange(PIXELS) + 0.5) / PIXELS * UNITS,
                                indexing='ij')
    along, across = rows.reshape(-1), columns.reshape(-1)
    board = (across // WIDTH).astype(int)
    x = across - (board + 0.5) * WIDTH
    rng = np.random.default_rng(12)
    heart, depth, tone, warm = (rng.uniform(a, b, COLUMNS)[board] for a, b in ((-10, 10), (5, 18), (-1, 1), (-1, 1)))

    def periodic(scale_along, scale_across, seed, octaves=1):
        """Noise whose lattice fits the picture's length; each board has its own."""
        cells = int(round(UNITS * scale_along))
        p = np.stack([along / UNITS * cells, x * scale_across + board * 57.0, board * 31.7], 1)
        if octaves == 1:
            return noise(p, seed, (cells, 1 << 20, 1 << 20))
        return cloud(p, octaves, seed, 0.5, (cells, 1 << 20, 1 << 20))

    y = depth + 1.6 * periodic(0.03, 0.0, 3)
    centre = heart + 1.1 * periodic(0.04, 0.0, 4)
    radius = np.sqrt((x - centre) ** 2 + y ** 2) + 0.20 * periodic(0.06, 0.16, 5, 3)
    ring = radius / 0.62
    phase = ring + 0.3 * periodic(0.02, 0.4, 6)
    phase = phase - np.floor(phase)
    late = step(0.2, 0.92, phase) * (1 - step(0.94, 1.0, phase))
    fibre = periodic(0.16, 5.0, 7, 3)
    pores = periodic(0.5, 8.0, 8)
    rgb = mix(colour('EDB76C'), colour('C98743'), np.clip(0.40 * late + 0.24 * fibre + 0.22, 0, 1))
    rgb = mix(rgb, colour('A86C33'), step(0.45, 0.95, pores) * 0.38)
    rgb = rgb * (1 + 0.06 * tone)[:, None] * (1 + np.outer(warm, (0.012, 0.0, -0.03)))

    # The light that falls between boards, and the edge that feet have rounded.
    gap = WIDTH / 2 - np.abs(x) + 0.05 * periodic(0.2, 0.0, 9)
    end = np.full(len(along), 99.0)
    for column, place in enumerate(JOINTS):
        if place is not None:
            here = board == column
            end[here] = np.abs((along[here] - place + UNITS / 2) % UNITS - UNITS / 2)
    near = np.minimum(gap, end)
    rgb = mix(rgb, rgb * 0.88, 1 - step(0.10, 0.6, near))
    rgb = mix(rgb, colour('5A3618'), (1 - step(0.03, 0.14, near)) * 0.8)
    return rgb.reshape(PIXELS, PIXELS, 3)


def evened(rgb):
    """Takes two thirds of the slow changes of brightness out, so that the repetition does not show."""
    mean = rgb.mean(2)
    f = np.hypot(*np.meshgrid(np.fft.fftfreq(PIXELS), np.fft.fftfreq(PIXELS))) * UNITS * PIXELS / UNITS
    slow = np.fft.ifft2(np.fft.fft2(mean) * np.exp(-(f / 3.5) ** 2)).real
    return rgb * (mean.mean() / slow)[..., None] ** 0.66


if __name__ == '__main__':
    os.makedirs(OUT, exist_ok=True)
    image = np.clip(evened(boards()), 0, 1)
    Image.fromarray((image * 255 + 0.5).astype(np.uint8)).save(os.path.join(OUT, 'floor2.jpg'), quality=89, optimize=True)
