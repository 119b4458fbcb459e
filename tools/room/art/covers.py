#!/usr/bin/python3
"""Paints the covers of our games into assets/covers: back, spine and front of the box side by side.

covers.py [NAME...]; without names all of them. A picture is 1540 x 1024: the back takes 72 of 155 parts of the width,
the spine 11, the front 72.
"""

import importlib
import os
import re
import sys
import textwrap

import numpy
from PIL import Image, ImageFilter

import paint

ROOT = os.path.join(paint.HERE, '..', '..', '..')
WIDTH, HEIGHT = 1540, 1024
BACK, SPINE = 716, 108
GAMES = {
    'sms-luciole': 'luciole', 'gg-glimmer': 'glimmer', 'arcade-skywren': 'skywren', 'nes-ecume': 'ecume',
    'nes-grelot': 'grelot', 'md-mistral': 'mistral', 'sms-bench': 'pond',
}
MOON, NIGHT, MIST = '#F3EAD3', '#12162E', '#B9BCD6'


def svg(inside, width, height):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}">'
            f'{inside}</svg>')


def drawing(name, x, y, height, colour=None):
    """One of the program's own drawings, `height` high, in one colour if given."""
    with open(os.path.join(ROOT, 'assets', 'images', name + '.svg'), encoding='utf-8') as file:
        text = file.read()
    box = [float(n) for n in re.search(r'viewBox="([^"]+)"', text).group(1).split()]
    body = text[text.index('>', text.index('<svg')) + 1:text.rindex('</svg>')]
    body = body.replace('id="disc"', f'id="disc{x:.0f}"').replace('url(#disc)', f'url(#disc{x:.0f})')
    if colour:
        body = re.sub(r'stroke="#[0-9A-Fa-f]{6}"', f'stroke="{colour}"', body)
        body = re.sub(r'fill="#[0-9A-Fa-f]{6}"', f'fill="{colour}"', body)
    return f'<g transform="translate({x:.1f},{y:.1f}) scale({height / box[3]:.4f})">{body}</g>'


def ink(colour):
    """Moon or ink, whichever is legible on `colour`."""
    r, g, b = (int(colour[i:i + 2], 16) for i in (1, 3, 5))
    return '#1A1205' if r * 0.3 + g * 0.6 + b * 0.1 > 120 else MOON


def band(game, x, width, top, height):
    """The band at the foot: the machine's tag on the left, our moon on the right."""
    tag = width * 0.24
    border = getattr(game, 'TAG_BORDER', game.COLOUR)
    icon = height * 0.72
    return (f'<rect x="{x}" y="{top}" width="{width}" height="{height}" fill="{NIGHT}"/>'
            f'<rect x="{x}" y="{top}" width="{width}" height="4" fill="{border}"/>'
            f'<rect x="{x}" y="{top}" width="{tag:.0f}" height="{height}" fill="{game.COLOUR}"/>'
            + drawing(game.MACHINE, x + tag / 2 - icon, top + height * 0.16, icon, ink(game.COLOUR))
            + drawing('ombrelune_logo', x + width - height * 0.86, top + height * 0.2, height * 0.62)
            + f'<text x="{x + width - height:.0f}" y="{top + height * 0.64:.0f}" font-family="Inter" font-weight="600" '
            f'font-size="{height * 0.36:.0f}" fill="{MOON}" text-anchor="end" letter-spacing="1">ombrelune</text>')


def titled(game, picture, x, y, width):
    """The picture with the game's title from (x, y), `width` wide, both in pixels."""
    word, layers = game.title()
    scale = width / word.width
    tall, wide = picture.shape[:2]
    return paint.over(picture, paint.render(
        svg(f'<g transform="translate({x},{y}) scale({scale:.4f})">{layers}</g>', wide, tall), wide, tall))


def painted(game, width, height, seed=1, radii=(24, 12, 6, 3, 1.8)):
    """The game's scene, painted."""
    raw = paint.render(game.scene(round(1000 * height / width)), width, height)[:, :, :3]
    return paint.glow(paint.paint(paint.warp(raw, 1.2, 40), seed, game.ANGLE, radii))


def screenshot(path, width):
    """A whole screenshot with sharp pixels, `width` wide."""
    image = Image.open(path).convert('RGB')
    large = image.resize((image.width * 3, image.height * 3), Image.NEAREST)
    large = large.resize((width, round(width * image.height / image.width)), Image.LANCZOS)
    return numpy.asarray(large, dtype=numpy.float32) / 255


def back(game, name, front):
    """The back: the front's colours out of focus, two screenshots, and what the game is about."""
    soft = paint.to_image(front[:, ::-1]).filter(ImageFilter.GaussianBlur(46))
    picture = numpy.asarray(soft, dtype=numpy.float32) / 255
    night = numpy.array([0.07, 0.086, 0.18], dtype=numpy.float32)
    picture = picture * 0.42 + night * 0.50
    wide = 300
    for n, x in ((1, 46), (2, 370)):
        path = os.path.join(paint.HERE, 'shots', f'{name}-{n}.png')
        y = 544
        shot = screenshot(path, wide)
        tall = shot.shape[0]
        picture[y - 4:y + tall + 4, x - 4:x + wide + 4] = (0.95, 0.92, 0.83)
        picture[y:y + tall, x:x + wide] = shot
    lines = ''.join(f'<text x="46" y="{268 + 58 * n}" font-family="Inter Display" font-weight="600" font-size="48" '
                    f'fill="{MOON}">{line}</text>' for n, line in enumerate(game.LINES))
    text = ''.join(f'<text x="46" y="{398 + 34 * n}" font-family="Inter" font-size="23" fill="{MOON}">{line}</text>'
                   for n, line in enumerate(textwrap.wrap(game.TEXT, 52)))
    small = (f'<text x="46" y="876" font-family="Inter" font-size="19" fill="{MIST}">Made for the real machine.</text>'
             f'<text x="46" y="904" font-family="Inter" font-size="19" fill="{MIST}">Free to copy, lend and change.</text>')
    tall = front.shape[0]
    picture = paint.over(picture, paint.render(svg(lines + text + small + band(game, 0, BACK, tall - 74, 74), BACK, tall),
                                               BACK, tall))
    word, _ = game.title()
    return titled(game, picture, 46, 80, min(420, 118 / 100 * word.width))


def spine(game, height):
    """The spine: the title from top to bottom on night, the machine's colour at the foot."""
    word, layers = game.title()
    scale = min(0.52, 600 / word.width)
    colour = game.COLOUR
    inside = (f'<rect width="{SPINE}" height="{height}" fill="{NIGHT}"/>'
              f'<rect width="6" height="{height}" fill="#000" opacity="0.35"/>'
              f'<rect x="{SPINE - 6}" width="6" height="{height}" fill="#000" opacity="0.35"/>'
              f'<g transform="translate({SPINE / 2 + 50 * scale:.1f},150) rotate(90) scale({scale:.3f})">{layers}</g>'
              f'<rect y="{height - 190}" width="{SPINE}" height="190" fill="{colour}"/>'
              f'<rect y="{height - 196}" width="{SPINE}" height="6" fill="{getattr(game, "TAG_BORDER", colour)}"/>'
              + f'<g transform="translate({SPINE / 2 + 31},{height - 160}) rotate(90)">'
              + drawing(game.MACHINE, 0, 0, 62, ink(colour)) + '</g>'
              + drawing('ombrelune_logo', SPINE / 2 - 28, 40, 56))
    return paint.render(svg(inside, SPINE, height), SPINE, height)[:, :, :3]


def cover(name):
    game = importlib.import_module(GAMES[name])
    width = WIDTH - BACK - SPINE
    front = painted(game, width, HEIGHT)
    plain = titled(game, front, 52, 78, width - 112)
    plain = paint.over(plain, paint.render(svg(band(game, 0, width, HEIGHT - 74, 74), width, HEIGHT), width, HEIGHT))
    whole = numpy.concatenate([back(game, name, front), spine(game, HEIGHT), plain], axis=1)
    return paint.paper(whole)


if __name__ == '__main__':
    for name in sys.argv[1:] or GAMES:
        paint.save(cover(name), os.path.join(ROOT, 'assets', 'covers', name + '.jpg'), 86)
        print(name)
