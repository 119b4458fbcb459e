"""Renders SVG and paints over it: the brush, paper, and layers of one picture on another."""

import os
import subprocess
import tempfile

import numpy
from PIL import Image, ImageFilter

HERE = os.path.dirname(os.path.abspath(__file__))
BUILD = os.path.join(HERE, '..', '..', '..', 'build', 'room')


def brush_program():
    """The path of the compiled brush; compiles it if it is older than its source."""
    os.makedirs(BUILD, exist_ok=True)
    source, program = os.path.join(HERE, 'brush.cpp'), os.path.join(BUILD, 'brush')
    if not os.path.exists(program) or os.path.getmtime(program) < os.path.getmtime(source):
        subprocess.run(['g++', '-std=c++20', '-O3', '-ffast-math', '-o', program, source], check=True)
    return program


def render(svg, width, height):
    """An SVG text as an array of height x width x 4, 0 to 1, colours not multiplied by alpha."""
    with tempfile.TemporaryDirectory() as folder:
        source, png = os.path.join(folder, 'a.svg'), os.path.join(folder, 'a.png')
        with open(source, 'w', encoding='utf-8') as file:
            file.write(svg)
        subprocess.run(['rsvg-convert', '--unlimited', '-w', str(width), '-h', str(height), '-o', png, source],
                       check=True)
        return numpy.asarray(Image.open(png).convert('RGBA'), dtype=numpy.float32) / 255


def paint(picture, seed=1, angle=0, radii=(28, 14, 7, 3.5, 2)):
    """A picture of height x width x 3 repainted with strokes of these radii in pixels."""
    height, width = picture.shape[:2]
    with tempfile.TemporaryDirectory() as folder:
        before, after = os.path.join(folder, 'in'), os.path.join(folder, 'out')
        numpy.ascontiguousarray(picture[:, :, :3], dtype=numpy.float32).tofile(before)
        subprocess.run([brush_program(), before, after, str(width), str(height), str(seed), str(angle)] +
                       [str(radius) for radius in radii], check=True)
        return numpy.clip(numpy.fromfile(after, dtype=numpy.float32).reshape(height, width, 3), 0, 1)


def over(base, top, opacity=1.0):
    """The picture `top` with its alpha on `base`."""
    alpha = top[:, :, 3:4] * opacity
    return base * (1 - alpha) + top[:, :, :3] * alpha


def blurred_noise(height, width, size, random):
    """Noise of mean 0 and deviation 1 with bumps of `size` pixels."""
    small = random.standard_normal((max(2, int(height / size) + 2), max(2, int(width / size) + 2)))
    image = Image.fromarray(small.astype(numpy.float32)).resize((width, height), Image.BICUBIC)
    noise = numpy.asarray(image)
    return (noise - noise.mean()) / max(1e-6, noise.std())


def warp(picture, amount, size, seed=1):
    """Moves the pixels by up to about `amount`, so that no edge is ruler-straight."""
    random = numpy.random.default_rng(seed)
    height, width = picture.shape[:2]
    y, x = numpy.mgrid[0:height, 0:width].astype(numpy.float32)
    x = numpy.clip(x + amount * blurred_noise(height, width, size, random), 0, width - 1)
    y = numpy.clip(y + amount * blurred_noise(height, width, size, random), 0, height - 1)
    x0, y0 = numpy.minimum(x.astype(int), width - 2), numpy.minimum(y.astype(int), height - 2)
    fx, fy = (x - x0)[..., None], (y - y0)[..., None]
    return ((picture[y0, x0] * (1 - fx) + picture[y0, x0 + 1] * fx) * (1 - fy) +
            (picture[y0 + 1, x0] * (1 - fx) + picture[y0 + 1, x0 + 1] * fx) * fy)


def paper(picture, amount=0.018, seed=3):
    """The tooth of the paper and a little unevenness of the print."""
    random = numpy.random.default_rng(seed)
    height, width = picture.shape[:2]
    tooth = blurred_noise(height, width, 1.6, random) * amount + blurred_noise(height, width, 90, random) * amount * 0.6
    return numpy.clip(picture * (1 + tooth[..., None]), 0, 1)


def glow(picture, threshold=0.8, radius=24, strength=0.35):
    """Bright parts shine over what is around them."""
    bright = numpy.clip(picture - threshold, 0, 1) / (1 - threshold)
    image = Image.fromarray((bright * 255).astype(numpy.uint8)).filter(ImageFilter.GaussianBlur(radius))
    light = numpy.asarray(image, dtype=numpy.float32) / 255 * strength
    return 1 - (1 - picture) * (1 - light)


def to_image(picture):
    return Image.fromarray((numpy.clip(picture, 0, 1) * 255 + 0.5).astype(numpy.uint8))


def save(picture, path, quality=88):
    os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    to_image(picture).save(path, quality=quality, optimize=True, progressive=False, subsampling=0 if quality > 90 else 2)
