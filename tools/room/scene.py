"""Where the furniture stands: the room's corner is the origin, 500 x 260 x 800 units; the lamp hangs at LAMP."""
import numpy as np

from mesh import rotation

ROOM = (500, 260, 800)
LAMP = (250, 250, 400)

# Width (x), height (y), depth (z) of a model's box.
SIZES = {
    'coffeetable': (200, 49, 80), 'couch': (200, 70.347, 86), 'tvunit': (500, 70, 137), 'tv': (77, 82, 70),
    'tv2': (200, 235.5, 18.5), 'gamegear': (20, 3, 11), 'arcade': (85, 180, 109),
}

# Model, x, base y, z, rotation. Two more hang in the room by their own origins.
PLACED = [
    ('coffeetable', 270, 0, 300, 90), ('couch', 400, 0, 300, 270), ('tvunit', 0, 0, 0, 0), ('gamegear', 310, 49, 390, 0),
    ('tv2', 0, 0, 300, 90), ('tv', 25, 70, 60, 0), ('tv', 145, 70, 40, 0), ('tv', 265, 70, 30, 0),
    ('tv', 385, 70, 30, 0), ('arcade', 50, 0, 715, 180), ('arcade', 365, 0, 715, 180),
]
HUNG = [('lightfixture', 250, 257, 400, 0), ('ombrelune', 5, 220, 400, 90)]


def centre(name, x, base, z, turn):
    w, h, d = SIZES[name]
    if turn in (90, 270):
        w, d = d, w
    return np.array([x + w / 2, base + h / 2, z + d / 2])


def into(name, point, number=0):
    """A place of the room in the model's own space, whose origin is the middle of its box, for its placing `number`."""
    row = [r for r in PLACED if r[0] == name][number]
    return rotation('y', row[4]).T @ (np.asarray(point, float) - centre(*row))


def lamp_for(name, number=0):
    """The lamp's place for a Model, whose parts are built with y 0 at the floor."""
    return into(name, LAMP, number) + (0, SIZES[name][1] / 2, 0)


def out_of(name, points, number=0):
    """Places of a Model under construction (n, 3) in the room."""
    row = [r for r in PLACED if r[0] == name][number]
    points = np.asarray(points, float) - (0, SIZES[name][1] / 2, 0)
    return points @ rotation('y', row[4]).T + centre(*row)
