#!/usr/bin/python3
"""Paints the two posters of the room into assets/objects, 100 x 130 units each."""

import os
import sys

import numpy
from PIL import Image, ImageFilter

import ecume
import mistral
import paint
from covers import NIGHT, drawing, svg, titled

OUT = os.path.join(paint.HERE, '..', '..', '..', 'assets', 'objects')
WIDTH, HEIGHT = 1024, 1331
STORED = 788, 1024  # No texture of the room is larger than 1024.
POSTERS = {'genesisad': (mistral, 'Fly before the wind.', 5), 'thewizard': (ecume, 'Leap.', 9)}


def folds(picture, seed):
    """The poster came folded in four, and its edges have yellowed and lost some ink."""
    height, width = picture.shape[:2]
    y, x = numpy.mgrid[0:height, 0:width].astype(numpy.float32)
    random = numpy.random.default_rng(seed)
    wobble = paint.blurred_noise(height, width, 120, random) * 1.2
    shade = numpy.ones((height, width), dtype=numpy.float32)
    for place, middle in ((x, width / 2), (y, height / 2), (y, height / 4), (y, height * 3 / 4)):
        d = place - middle + wobble
        strength = 1.0 if middle in (width / 2, height / 2) else 0.55
        shade += strength * (0.10 * numpy.exp(-((d + 2) / 2.2) ** 2) - 0.10 * numpy.exp(-((d - 2) / 3.0) ** 2)
                             + 0.035 * numpy.tanh(d / 60) * numpy.exp(-(d / 140) ** 2))
    edge = numpy.minimum(numpy.minimum(x, width - x), numpy.minimum(y, height - y))
    shade *= 1 - 0.10 * numpy.exp(-edge / 34)
    rubbed = numpy.clip(paint.blurred_noise(height, width, 3, random) - 1.1, 0, 1) * numpy.exp(-edge / 12)
    picture = picture * shade[..., None]
    warm = numpy.array([1.0, 0.975, 0.92], dtype=numpy.float32)
    return picture * warm * (1 - rubbed[..., None]) + rubbed[..., None] * 0.92


def stored(picture):
    """The picture in its size in the room; what the filter softens in the lettering comes back."""
    image = Image.fromarray((numpy.clip(picture, 0, 1) * 255 + 0.5).astype(numpy.uint8))
    image = image.resize(STORED, Image.LANCZOS).filter(ImageFilter.UnsharpMask(0.8, 40, 2))
    return numpy.asarray(image, dtype=numpy.float32) / 255


def poster(name):
    game, line, seed = POSTERS[name]
    margin, foot = 34, 92
    wide, tall = WIDTH - 2 * margin, HEIGHT - 2 * margin - foot
    raw = paint.render(game.scene(round(1000 * tall / wide)), wide, tall)[:, :, :3]
    art = paint.glow(paint.paint(paint.warp(raw, 1.4, 46), seed, game.ANGLE, (30, 15, 8, 4, 2.2)))
    art = titled(game, art, 112, 66, wide - 236)
    whole = numpy.empty((HEIGHT, WIDTH, 3), dtype=numpy.float32)
    whole[:] = (0.965, 0.93, 0.84)
    whole[margin:margin + tall, margin:margin + wide] = art
    base = HEIGHT - margin - 26
    inside = (f'<text x="{margin}" y="{base}" font-family="Inter Display" font-weight="600" font-size="46" '
              f'fill="{NIGHT}">{line}</text>'
              f'<circle cx="{WIDTH - margin - 31}" cy="{base - 17}" r="33" fill="{NIGHT}"/>'
              + drawing('ombrelune_logo', WIDTH - margin - 60, base - 46, 58)
              + f'<text x="{WIDTH - margin - 74}" y="{base - 6}" font-family="Inter" font-weight="600" font-size="30" '
              f'letter-spacing="1" fill="{NIGHT}" text-anchor="end">ombrelune</text>')
    whole = paint.over(whole, paint.render(svg(inside, WIDTH, HEIGHT), WIDTH, HEIGHT))
    return stored(paint.paper(folds(whole, seed)))


if __name__ == '__main__':
    for name in sys.argv[1:] or POSTERS:
        paint.save(poster(name), os.path.join(OUT, name + '.jpg'), 88)
        print(name)
