"""Paints for the furniture: each turns places on a surface into colours.

A paint is a function of a Surface. Colours are 0..1 as the picture files hold them. Noise is worked out in the part's
own space, so a grain runs on around an edge, and neighbouring sheets show no seam.
"""
import numpy as np


class Surface:
    """Texels of one part: place (n, 3) in the model, own (n, 3) in the part, normal (n, 3) in the part, uv (n, 2) in
    units, sky, lamp and edge (n) of 0..1 from the baker, and the part's seed."""

    def __init__(self, place, own, normal, uv, sky, lamp, edge, seed):
        self.place, self.own, self.normal, self.uv = place, own, normal, uv
        self.sky, self.lamp, self.edge, self.seed = sky, lamp, edge, seed
        self.turned = normal  # In the model's space.

    def random(self, k=0):
        """A number of 0..1 that is the part's own."""
        return float(np.random.default_rng((self.seed, k)).random())


def colour(text):
    return np.array([int(text[k:k + 2], 16) for k in (0, 2, 4)]) / 255


def mix(a, b, t):
    t = np.asarray(t)
    t = t[..., None] if t.ndim else t
    return np.asarray(a) * (1 - t) + np.asarray(b) * t


def step(low, high, x):
    t = np.clip((x - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def hashed(cell, seed):
    """A number of 0..1 per row of integers."""
    h = np.full(len(cell), (seed * 0x9E3779B1 + 0x7F4A7C15) & 0xFFFFFFFF, np.uint32)
    for k in range(cell.shape[1]):
        h = (h ^ cell[:, k].astype(np.int64).astype(np.uint32)) * np.uint32(0x85EBCA6B)
        h ^= h >> np.uint32(13)
        h *= np.uint32(0xC2B2AE35)
        h ^= h >> np.uint32(16)
    return h.astype(np.float64) / 4294967296.0


def noise(p, seed=0, period=None):
    """Smooth noise of -1..1 with one bump a unit; p is (n, 2) or (n, 3). A period (per axis, whole) makes it repeat."""
    p = np.asarray(p, float)
    base = np.floor(p).astype(np.int64)
    f = p - base
    f = f * f * f * (f * (f * 6 - 15) + 10)
    total = np.zeros(len(p))
    for corner in range(1 << p.shape[1]):
        offset = np.array([corner >> k & 1 for k in range(p.shape[1])])
        cell = base + offset
        if period is not None:
            cell = cell % np.asarray(period)
        weight = np.prod(np.where(offset == 1, f, 1 - f), axis=1)
        total += weight * hashed(cell, seed)
    return total * 2 - 1


def cloud(p, octaves=4, seed=0, fall=0.5, period=None):
    """Noise on several scales, about -1..1."""
    p = np.asarray(p, float)
    total, size, most = np.zeros(len(p)), 1.0, 0.0
    for k in range(octaves):
        total += noise(p * 2 ** k, seed + 101 * k, None if period is None else np.asarray(period) * 2 ** k) * size
        most += size
        size *= fall
    return total / most * 1.6


# Woods: early wood, late wood, the pores' and the worn edge's colour.
WALNUT = ('7D5639', '543824', '352115', 'A98660')
TEAK = ('A8713F', '7E4E28', '54311A', 'CFA06C')
OAK = ('C79A5C', 'A57840', '7A5529', 'E0BE88')
PINE = ('D9B277', 'B98B4C', '9A6E38', 'EBD2A2')
DARK = ('4A3226', '34221A', '20140F', '7A5A40')


def wood(kind=WALNUT, grain='x', rings=1.6, worn=0.6, figure=1.0, tone=1.0):
    """A board sawn from a log; the grain runs along the part's axis. rings: units from one to the next."""
    light, dark, pore, bare = (colour(c) for c in kind)
    order = {'x': [0, 1, 2], 'y': [1, 2, 0], 'z': [2, 0, 1]}[grain]

    def paint(s):
        p = s.own[:, order]
        far = 9 + 22 * s.random(1)
        turn = 2 * np.pi * s.random(2)
        start = s.random(3) * 500
        along = p[:, 0] + start
        # The heart of the log lies beside the board and wanders, which draws flames and stripes.
        warp = np.stack([along * 0.011, p[:, 1] * 0.05, p[:, 2] * 0.05], 1) + s.random(4) * 90
        y = p[:, 1] + far * np.cos(turn) + 4.5 * figure * noise(warp, 3)
        z = p[:, 2] + far * np.sin(turn) + 4.5 * figure * noise(warp + 37, 4)
        radius = np.sqrt(y * y + z * z) + 0.8 * figure * cloud(
            np.stack([along * 0.03, p[:, 1] * 0.18, p[:, 2] * 0.18], 1), 3, 5)
        ring = radius / rings
        width = ring + 0.35 * noise(np.stack([ring * 0.7, along * 0.01], 1), 6)
        phase = width - np.floor(width)
        late = step(0.25, 0.95, phase) * (1 - step(0.95, 1.0, phase))
        fibre = cloud(np.stack([along * 0.10, p[:, 1] * 4.5, p[:, 2] * 4.5], 1), 3, 7)
        pores = noise(np.stack([along * 0.42, p[:, 1] * 7, p[:, 2] * 7], 1), 8)
        tint = cloud(np.stack([along * 0.012, p[:, 1] * 0.07, p[:, 2] * 0.07], 1), 2, 9)
        rgb = mix(light, dark, np.clip(0.62 * late + 0.16 * fibre + 0.14 * tint + 0.12, 0, 1))
        rgb = mix(rgb, pore, step(0.35, 0.85, pores) * 0.5 * (0.4 + 0.6 * late))
        rgb = rgb * (tone * (1 + 0.10 * (s.random(5) - 0.5) * 2 + 0.05 * tint))[:, None]
        rub = step(0.30, 0.75, s.edge + 0.25 * cloud(s.place * 0.5, 3, 11))
        rgb = mix(rgb, bare, rub * 0.55 * worn)
        return rgb
    return paint


def plastic(base, grainy=0.03, worn=0.35, dust=0.0):
    """Moulded plastic with a fine grain, paler where hands rub it."""
    base = colour(base)

    def paint(s):
        fine = noise(s.own * 5, 21) * 0.6 + noise(s.own * 11, 22) * 0.4
        broad = cloud(s.own * 0.06, 3, 23 + s.seed % 7)
        rgb = base * (1 + grainy * fine + 0.03 * broad)[:, None]
        rub = step(0.35, 0.9, s.edge + 0.3 * cloud(s.place * 0.6, 3, 24))
        rgb = mix(rgb, np.minimum(base * 1.35 + 0.10, 1), rub * worn)
        if dust:
            rgb = mix(rgb, colour('B9B2A2'), dust * step(0.4, 1, s.normal[:, 1]) * (0.6 + 0.4 * broad))
        return rgb
    return paint


def paper(base, mottled=0.03):
    base = colour(base)

    def paint(s):
        return base * (1 + mottled * cloud(s.own * 0.8, 4, 31))[:, None]
    return paint


def weave(base, second=None, threads=3.2, contrast=0.22, nap=0.10, worn=0.4):
    """Upholstery: a plain weave of `threads` a unit, its colour changing slowly, paler on rubbed edges."""
    base = colour(base)
    second = base * 0.8 if second is None else colour(second)

    def paint(s):
        u = s.uv + 0.12 * np.stack([noise(s.uv * 0.7, 41), noise(s.uv * 0.7 + 9, 42)], 1)
        a, b = u[:, 0] * threads, u[:, 1] * threads
        over = (np.floor(a) + np.floor(b)) % 2
        thread = np.where(over == 0, np.abs(np.sin(np.pi * b)), np.abs(np.sin(np.pi * a)))
        slub = noise(np.stack([a * 0.13, np.floor(b)], 1), 43) * (over == 0) + noise(
            np.stack([np.floor(a), b * 0.13], 1), 44) * (over == 1)
        soft = cloud(s.own * 0.055, 4, 45 + s.seed % 13)
        fuzz = noise(s.uv * 9, 46)
        rgb = mix(second, base, np.clip(0.5 + 0.35 * slub + 0.5 * soft, 0, 1))
        rgb = rgb * (1 - contrast * (1 - thread) + 0.05 * fuzz + nap * soft)[:, None]
        rub = step(0.25, 0.9, s.edge + 0.2 * soft)
        return mix(rgb, np.minimum(base * 1.25 + 0.05, 1), rub * 0.5 * worn)
    return paint


def solid(text):
    base = colour(text)
    return lambda s: np.repeat(base[None], len(s.own), 0)


def picture(image, width, height, paint=None, axes=(0, 1)):
    """Lays an image over the part: it covers width x height units around the part's middle, seen from the side that
    the two axes face; the rest has the other paint."""
    data = np.asarray(image.convert('RGB'), float) / 255

    def sides(s):
        u = s.own[:, axes[0]] / width + 0.5
        v = 0.5 - s.own[:, axes[1]] / height
        rgb = sample(data, u, v)
        third = 3 - axes[0] - axes[1]
        front = (np.abs(s.normal[:, third]) > 0.6) & (u >= 0) & (u <= 1) & (v >= 0) & (v <= 1)
        return np.where(front[:, None], rgb, paint(s)) if paint else rgb
    return sides


def sample(data, u, v):
    """Reads an image (h, w, 3) at u, v of 0..1 from its upper left corner, between its pixels."""
    h, w = data.shape[:2]
    x, y = np.clip(u * w - 0.5, 0, w - 1.001), np.clip(v * h - 0.5, 0, h - 1.001)
    i, j = x.astype(int), y.astype(int)
    fx, fy = (x - i)[:, None], (y - j)[:, None]
    right, below = np.minimum(i + 1, w - 1), np.minimum(j + 1, h - 1)
    return (data[j, i] * (1 - fx) + data[j, right] * fx) * (1 - fy) + (data[below, i] * (1 - fx) + data[below, right] * fx) * fy


def filled(data, known):
    """Spreads the known texels of a sheet over the rest, so that smaller copies of it stay clean."""
    levels = []
    weight = known.astype(float)
    value = data * weight[..., None]
    while min(weight.shape) > 1:
        levels.append((value, weight))
        h, w = weight.shape[0] // 2 * 2, weight.shape[1] // 2 * 2
        value = sum(value[a:h:2, b:w:2] for a in (0, 1) for b in (0, 1))
        weight = sum(weight[a:h:2, b:w:2] for a in (0, 1) for b in (0, 1))
        scale = np.maximum(weight, 1)
        value, weight = value / scale[..., None], np.minimum(weight, 1)
    colour_below = value / np.maximum(weight, 1e-6)[..., None]
    for value, weight in reversed(levels):
        up = np.repeat(np.repeat(colour_below, 2, 0), 2, 1)
        h, w = weight.shape
        up = np.pad(up, ((0, max(0, h - up.shape[0])), (0, max(0, w - up.shape[1])), (0, 0)), mode='edge')[:h, :w]
        t = np.clip(weight, 0, 1)[..., None]
        colour_below = value + up * (1 - t)
    return colour_below


def planks(paint, axis, width, gap=0.06, depth=0.55):
    """A face glued up of boards: along the axis, every `width` units, the paint starts anew with a thin dark joint."""
    def boards(s):
        place = s.own[:, axis] / width
        number = np.floor(place).astype(int)
        rgb = np.zeros((len(place), 3))
        for k in np.unique(number):
            pick = number == k
            part = Surface(*(a[pick] for a in (s.place, s.own, s.normal, s.uv, s.sky, s.lamp, s.edge)),
                           s.seed * 64 + int(k) % 64)
            rgb[pick] = paint(part)
        near = (0.5 - np.abs(place - number - 0.5)) * width
        return rgb * (1 - depth * (1 - step(gap * 0.5, gap * 3, near)))[:, None]
    return boards
