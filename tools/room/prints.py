"""Printed things of the room, drawn here: magazines and boxes of our own games."""
from PIL import Image, ImageDraw, ImageFilter, ImageFont

FONTS = '/usr/share/fonts/opentype/inter/Inter-%s.otf'
NIGHT, DUSK, MOON, AMBER, TEAL, CORAL, LEAF = '#12162E', '#43327A', '#F3EAD3', '#FFB347', '#4FC3C7', '#FF7A6B', '#8BD17C'


def font(size, style='SemiBold'):
    return ImageFont.truetype(FONTS % style, size)


def dusk(w, h, top, foot):
    image = Image.new('RGB', (1, 2))
    image.putpixel((0, 0), Image.new('RGB', (1, 1), top).getpixel((0, 0)))
    image.putpixel((0, 1), Image.new('RGB', (1, 1), foot).getpixel((0, 0)))
    return image.resize((w, h), Image.BILINEAR)


def moon(draw, x, y, r, light, shade):
    draw.ellipse((x - r, y - r, x + r, y + r), fill=light)
    draw.ellipse((x - r * 1.35, y - r * 0.75, x + r * 0.45, y + r * 1.05), fill=shade)


def hills(draw, w, h, base, height, fill, bend):
    points = [(0, h)]
    for k in range(41):
        t = k / 40
        points.append((t * w, base - height * (4 * t * (1 - t)) ** bend * (0.7 + 0.3 * ((k * 7919) % 11) / 11)))
    draw.polygon(points + [(w, h)], fill=fill)


def magazine(number, title, lines, top, foot, ground, accent):
    """A cover of 420 x 580 points."""
    w, h = 420, 580
    image = dusk(w, h, top, foot)
    draw = ImageDraw.Draw(image)
    moon(draw, 300, 210, 92, MOON, top)
    hills(draw, w, h, 430, 90, ground, 0.8)
    hills(draw, w, h, 500, 60, NIGHT, 1.6)
    draw.polygon([(120, 420), (150, 300), (180, 420)], fill=NIGHT)
    draw.rectangle((143, 330, 157, 345), fill=AMBER)
    image = image.filter(ImageFilter.GaussianBlur(0.8))
    draw = ImageDraw.Draw(image)
    size = 92
    while draw.textlength(title, font(size)) > w - 40:
        size -= 2
    draw.text((20, 14), title, MOON, font(size))
    draw.rectangle((0, h - 46, w, h), fill=accent)
    draw.text((20, h - 38), f'No. {number}', NIGHT, font(24))
    draw.text((w - 150, h - 38), 'all about play', NIGHT, font(20, 'Regular'))
    for k, line in enumerate(lines):
        draw.text((22, 440 + 30 * k), line, (MOON, accent)[k % 2], font(24 if k else 28))
    return image


def spread():
    """An open programme: two pages of columns, small pictures and ruled tables, 640 x 440 points."""
    image = Image.new('RGB', (640, 440), '#E9E0CB')
    draw = ImageDraw.Draw(image)
    for page in (0, 320):
        draw.text((page + 20, 14), ('Tonight', 'Tomorrow')[page > 0], '#2A2440', font(30))
        draw.line((page + 20, 54, page + 300, 54), fill='#2A2440', width=3)
        for column in range(2):
            x = page + 20 + column * 144
            y = 64
            for k in range(19):
                if k in ((4, 5, 6, 7) if column else (9, 10, 11, 12)):
                    if k in (4, 9):
                        draw.rectangle((x, y + 2, x + 128, y + 70), fill=(CORAL, TEAL, AMBER, DUSK)[column + 2 * (page > 0)])
                        draw.ellipse((x + 80, y + 12, x + 112, y + 44), fill=MOON)
                        draw.polygon([(x, y + 70), (x + 50, y + 36), (x + 128, y + 70)], fill=NIGHT)
                else:
                    draw.rectangle((x, y + 5, x + 20, y + 11), fill='#7A3030')
                    draw.rectangle((x + 26, y + 5, x + 70 + (k * 37) % 56, y + 8), fill='#55506A')
                    draw.rectangle((x + 26, y + 12, x + 60 + (k * 53) % 66, y + 14), fill='#8A8599')
                y += 19
    shade = Image.new('L', (640, 1), 0)
    for x in range(640):
        shade.putpixel((x, 0), int(90 * max(0, 1 - abs(x - 320) / 46) ** 2))
    image.paste('#3A3020', (0, 0), shade.resize((640, 440)))
    return image


def box_front(title, top, foot, accent, tag):
    """The front of a game's box: 300 x 420 points."""
    w, h = 300, 420
    image = dusk(w, h, top, foot)
    draw = ImageDraw.Draw(image)
    draw.ellipse((150, 70, 270, 190), fill=accent)
    hills(draw, w, h, 300, 120, NIGHT, 1.3)
    hills(draw, w, h, 350, 60, DUSK, 0.6)
    image = image.filter(ImageFilter.GaussianBlur(0.7))
    draw = ImageDraw.Draw(image)
    size = 70
    while draw.textlength(title, font(size)) > w - 30:
        size -= 2
    draw.text((15, 210), title, MOON, font(size))
    draw.rectangle((0, h - 40, w, h), fill=tag)
    return image


def box_spine(title, ground, tag):
    """A spine to be read from the side: 300 x 44 points, its foot at the right."""
    image = Image.new('RGB', (300, 44), ground)
    draw = ImageDraw.Draw(image)
    draw.text((14, 6), title, MOON, font(26))
    draw.rectangle((262, 0, 300, 44), fill=tag)
    return image
