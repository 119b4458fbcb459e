"""A tube television of the eighties: screen above, speaker and knobs below, a deep back."""
import numpy as np

from art.solids import dark_glass, edge_band, glass, hull, lettering, loop, printed
from mesh import box, cylinder
from model import OUT, SATIN, Model
from texture import cloud, colour, mix, noise, plastic

W, H, D = 77, 82, 70
FRONT = D / 2
SCREEN_W, SCREEN_H, SCREEN_Y = 62, 46.5, 52.0
PLASTIC = (0.16, 14.0, 0.0)

m = Model('tv', size=(W, H, D), brightness=1.55)
shell = plastic('5C5A5A', 0.035, 0.5, 0.10)
face = plastic('333338', 0.03, 0.4)
panel = plastic('85827C', 0.02, 0.3)


NAME = lettering('ombrelune')


def body(s):
    """The shell: slots for warm air on the back, dust on top."""
    rgb = shell(s)
    x, y, z = s.own.T
    back = (z < 4) & (s.normal[:, 1] > 0.3) | (z < -30)
    slot = edge_band((x % 4.0) - 2.0, -0.75, 0.75, 0.3) * edge_band(np.abs(x), -1, 24, 0.5)
    where = edge_band(z, -26, -6, 0.6) * (s.normal[:, 1] > 0.3)
    rgb = mix(rgb, rgb * 0.22, slot * where * back)
    # A seam where the back is screwed to the front.
    return mix(rgb, rgb * 0.35, edge_band(z, 6.6, 7.2, 0.35))


def front(s):
    """The front: a black mask around the glass, a grey panel with the speaker's slots below."""
    x, y, z = s.own.T
    mask = face(s)
    low = panel(s) * (1 + 0.05 * noise(np.stack([x * 0.15, y * 9], 1), 3))[:, None]
    on_panel = edge_band(y, 5.2, 21.2, 0.3) * edge_band(np.abs(x), -1, 35.2, 0.3) * (s.normal[:, 2] > 0.8)
    rgb = mix(mask, low, on_panel)
    rgb = mix(rgb, rgb * 0.25, on_panel * (1 - edge_band(y, 5.7, 20.7, 0.3) * edge_band(np.abs(x), -1, 34.7, 0.3)) * 0.9)
    # The speaker: fine slots.
    speaker = edge_band(x, -33, -3, 0.4) * edge_band(y, 7.2, 19.2, 0.4) * (s.normal[:, 2] > 0.8)
    slot = edge_band(((y - 7.2) % 1.5), 0.28, 1.02, 0.35)
    rgb = mix(rgb, mix(colour('15151A'), colour('2C2B2C'), np.clip(slot * 0 + (y % 1.5) / 1.5, 0, 1)), speaker * slot)
    rgb = mix(rgb, np.minimum(rgb * 1.35, 1), speaker * (1 - slot) * edge_band((y - 7.2) % 1.5, 1.0, 1.5, 0.3) * 0.7)
    # A thin bright line runs around the mask, worn in places.
    w, h = SCREEN_W + 9, SCREEN_H + 9
    out = np.maximum(np.abs(x) - w / 2, np.abs(y - SCREEN_Y) - h / 2)
    line = edge_band(out, 0.25, 0.75, 0.25) * (s.normal[:, 2] > 0.8)
    name = printed(NAME, x, y - 22.9, 1.35) * (s.normal[:, 2] > 0.8)
    rgb = mix(rgb, colour('CFC9BB'), name * 0.9)
    # What the keys and knobs are for.
    for k in range(4):
        rgb = mix(rgb, colour('2A2A2C'), on_panel * edge_band(x, 0.9 + 3 * k, 2.3 + 3 * k, 0.25) * edge_band(y, 17.3, 17.65, 0.2))
    return mix(rgb, colour('B9B4A8') * (0.75 + 0.25 * cloud(s.own * 0.4, 3, 8))[:, None], line * 0.75)


# The shell, from the tube's end to the front's rim.
m.add(hull([loop(40, 34, -FRONT + 0.8, 5, 0, 44), loop(42, 36, -FRONT, 6, 0, 44)][::-1][:1]
           + [loop(44, 38, -FRONT + 1.2, 6, 0, 44), loop(58, 54, -12, 6, 0, 43.5), loop(66, 66, -8, 6, 0, 42),
              loop(72.5, 75.5, 4, 4, 0, 41.6), loop(74.5, 78, 6.2, 4, 0, 41.8), loop(75, 78.4, 7.2, 4, 0, 41.9)], True, False),
      body, gloss=PLASTIC, crease=38)
m.add(hull([loop(75, 78.4, 7.0, 4, 0, 41.9), loop(77, 80, 8.2, 4, 0, 42), loop(77, 80, 30.5, 4, 0, 42),
            loop(76.2, 79.2, 32.2, 3.8, 0, 42), loop(74.6, 77.6, 33.0, 3.2, 0, 42)], False, False),
      body, gloss=PLASTIC, crease=60)
# The front: flat, a raised frame, then down to the glass.
hole = dict(x=0, y=SCREEN_Y)
m.add(hull([loop(74.6, 77.6, 33.0, 3.2, 0, 42), loop(74.2, 77.2, 33.1, 3.0, 0, 42),
            loop(SCREEN_W + 9, SCREEN_H + 9, 33.1, 3.5, **hole), loop(SCREEN_W + 8, SCREEN_H + 8, 34.2, 3.2, **hole),
            loop(SCREEN_W + 7, SCREEN_H + 7, FRONT - 0.2, 3.0, **hole), loop(SCREEN_W + 6, SCREEN_H + 6, FRONT, 2.6, **hole),
            loop(SCREEN_W + 4.6, SCREEN_H + 4.6, FRONT - 0.3, 2.2, **hole),
            loop(SCREEN_W, SCREEN_H, 31.2, 0.35, **hole)], False, False),
      front, gloss=PLASTIC, crease=32, density=1.25)
m.screen(glass(SCREEN_W, SCREEN_H, 2.6), dark_glass(OUT), at=(0, SCREEN_Y, 31.1), crease=80)

# Knobs with a mark, keys, the lamp.
dark = plastic('1E1E23', 0.02, 0.6)


def knob(s):
    rgb = dark(s)
    rgb = mix(rgb, rgb * 1.6, (s.normal[:, 1] < 0.5) * edge_band((np.arctan2(s.own[:, 0], s.own[:, 2]) * 24 / np.pi) % 2, 0, 1, 0.3)
              * 0.5)
    mark = edge_band(s.own[:, 0], -0.18, 0.18, 0.15) * (s.own[:, 2] < -0.6) * (s.normal[:, 1] > 0.8)
    return mix(rgb, colour('E8E2D0'), mark)


for x, turn in ((27.5, 30), (18.8, -50)):
    m.add(cylinder(3.4, 1.0, 0.25, 28), panel, at=(x, 13.2, 33.0), turn=[('x', 90)], gloss=SATIN, density=1.2)
    m.add(cylinder(2.6, 2.0, 0.35, 28, 2.35), knob, at=(x, 13.2, 33.0), turn=[('y', turn), ('x', 90)], gloss=SATIN, density=1.6)
for k in range(4):
    m.add(box(2.0, 3.2, 1.4, 0.3, 1), plastic('3A3A40' if k else '8A2C24', 0.02, 0.7), at=(1.6 + 3.0 * k, 15.0, 33.4), gloss=SATIN,
          density=1.4)
m.plain(cylinder(0.55, 0.5, 0.2, 14), (1.9, 0.28, 0.10), at=(6.1, 9.3, 33.05), turn=[('x', 90)], gloss=(0.4, 40, 0.1))
# Feet: two dark rails.
for x in (-28, 28):
    m.add(box(7, 2.6, 32, 0.5), plastic('17171A', 0.03, 0.2), at=(x, 1.3, 16), density=0.5)
# The lid's top edge gives the full height.
m.add(box(64, 1.2, 20, 0.45), body, at=(0, 81.4, 19.5), gloss=PLASTIC, density=0.8)
m.build()
