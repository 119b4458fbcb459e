"""Mistral: a red biplane climbs out of the spray into the morning."""

from lettering import Word
from shapes import cloud, glints, gradient, halo, picture, rays, wave

MACHINE = 'megadrive'
COLOUR = '#43327A'
TAG_BORDER = '#2A3266'
ANGLE = -12
TITLE = 'MISTRAL'
LINES = ('One engine, two wings,', 'four winds.')
TEXT = ('Gulls, balloons, lanterns and storms come down the wind. Fire, loop and roll from the first light into the '
        'night: each hour of the day brings more of everything.')


def plane():
    red, light, dark, cream = '#E0442A', '#FF8B4C', '#8A1D26', '#FFE7BF'
    defs = (gradient('wingTop', [(0, '#B02C28'), (0.55, red), (1, light)], 0, 1, 1, 0)
            + gradient('wingLow', [(0, '#7C1A24'), (0.6, '#B6302A'), (1, '#E65B35')], 0, 1, 1, 0)
            + gradient('body', [(0, light), (0.38, red), (0.75, dark), (1, '#5E1420')])
            + gradient('cowl', [(0, '#FFF1D2'), (0.4, '#E9C58D'), (1, '#8A5A3A')])
            + gradient('prop', [(0, '#FFFFFF', 0.75), (0.5, '#FFFFFF', 0.25), (1, '#FFFFFF', 0.6)]))

    def wing(cx, cy, near, far, chord, fill, side):
        """One half of a wing: from the root at (cx, cy), towards us (near) or away (far)."""
        dx, dy = near if side == 'near' else far
        k = 1.12 if side == 'near' else 0.74
        lead, trail = chord * 0.52, -chord * 0.48
        points = [(cx + lead, cy), (cx + dx * 0.9 + lead * k, cy + dy * 0.9), (cx + dx + lead * k * 0.7, cy + dy * 1.02),
                  (cx + dx, cy + dy * 1.06), (cx + dx + trail * k * 0.75, cy + dy * 1.02),
                  (cx + dx * 0.9 + trail * k, cy + dy * 0.9), (cx + trail, cy)]
        line = 'M%.0f,%.0f L%.0f,%.0f ' % (*points[0], *points[1]) + \
            'Q%.0f,%.0f %.0f,%.0f ' % (points[2][0] + 6, points[2][1] + 4, *points[3]) + \
            'Q%.0f,%.0f %.0f,%.0f L%.0f,%.0f Z' % (points[4][0] - 6, points[4][1] + 4, *points[5], *points[6])
        band = 'M%.0f,%.0f L%.0f,%.0f L%.0f,%.0f L%.0f,%.0f Z' % (
            cx + dx * 0.62 + lead, cy + dy * 0.62, cx + dx * 0.76 + lead * (1 + (k - 1) * 0.8), cy + dy * 0.76,
            cx + dx * 0.76 + trail * (1 + (k - 1) * 0.8), cy + dy * 0.76, cx + dx * 0.62 + trail, cy + dy * 0.62)
        edge = 'M%.0f,%.0f L%.0f,%.0f' % (*points[0], *points[1])
        rim = line.replace('Z', '')  # no line where the two halves meet
        return (f'<path d="{line}" fill="url(#{fill})"/><path d="{band}" fill="{cream}" '
                f'opacity="{0.95 if fill == "wingTop" else 0.6}"/>'
                f'<path d="{edge}" stroke="{"#FFD3A0" if fill == "wingTop" else "#E0734A"}" stroke-width="7" '
                'stroke-linecap="round" fill="none"/>'
                f'<path d="{rim}" fill="none" stroke="#4A0F1C" stroke-width="4" stroke-linejoin="round"/>')

    near, far = (-225, 128), (190, -112)
    strut = '<path d="{}" stroke="#F6D9A6" stroke-width="11" stroke-linecap="round" fill="none"/>'
    parts = [
        wing(120, 52, near, far, 190, 'wingLow', 'far'),
        strut.format('M275,-58 L330,-330 M225,-32 L272,-300'),
        # The tail.
        f'<path d="M-300,-40 C-350,-60 -372,-168 -432,-172 C-478,-170 -462,-70 -440,-6 Z" fill="{red}" stroke="#4A0F1C" '
        'stroke-width="4"/>',
        f'<path d="M-352,-92 C-368,-130 -392,-168 -432,-172 C-452,-171 -457,-150 -457,-122 Z" fill="{cream}"/>',
        # The body.
        '<path d="M255,-72 C130,-92 60,-84 8,-76 C-140,-66 -300,-44 -436,-22 C-458,-14 -456,4 -436,8 '
        'C-300,40 -80,78 120,82 C190,84 230,80 255,74 Z" fill="url(#body)" stroke="#4A0F1C" stroke-width="4"/>',
        f'<path d="M250,-8 C100,-18 -180,-16 -444,-12 L-446,-2 C-200,10 60,20 250,18 Z" fill="{cream}" opacity="0.92"/>',
        '<path d="M246,-80 C300,-84 346,-60 350,0 C346,60 300,84 246,80 C262,40 262,-40 246,-80 Z" fill="url(#cowl)" '
        'stroke="#4A0F1C" stroke-width="4"/>',
        '<path d="M300,-72 C318,-30 318,30 300,72" fill="none" stroke="#7A4A30" stroke-width="6" opacity="0.7"/>',
        '<path d="M-318,-22 L-430,62 Q-474,86 -508,70 L-440,-16 Z" fill="url(#wingTop)" stroke="#4A0F1C" stroke-width="4"/>',
        # The pilot: cap, goggles, scarf.
        '<g transform="translate(-52,0)"><path d="M-12,-92 C-80,-118 -130,-84 -214,-122 C-206,-104 -226,-88 -244,-82 C-160,-66 -90,-78 -14,-74 Z" '
        'fill="#FFF3D9" stroke="#C9B48C" stroke-width="3"/>',
        '<path d="M-58,-74 C-40,-60 50,-60 62,-80 L62,-66 L-60,-58 Z" fill="#3A0D18"/>',
        '<circle cx="6" cy="-108" r="44" fill="#6B3A22"/>',
        '<path d="M18,-136 C46,-136 54,-110 48,-92 C44,-78 26,-72 10,-74 C16,-92 16,-116 18,-136 Z" fill="#F2B98B"/>',
        '<path d="M8,-124 L50,-120 L52,-102 L10,-104 Z" fill="#2D2A3A"/><path d="M28,-120 L46,-118 L47,-106 L30,-106 Z" '
        'fill="#9FE3F2"/>',
        '<path d="M60,-84 L96,-126 L108,-122 L92,-80 Z" fill="#CFEFFF" opacity="0.75"/></g>',
        # The wheels, then the lower wing on our side.
        '<path d="M150,78 L118,176 M206,78 L180,166" stroke="#F6D9A6" stroke-width="10" stroke-linecap="round"/>',
        '<ellipse cx="186" cy="176" rx="34" ry="38" fill="#2A1B26"/><ellipse cx="186" cy="176" rx="14" ry="16" fill="#E9C58D"/>',
        '<ellipse cx="120" cy="190" rx="40" ry="44" fill="#1F1420"/><ellipse cx="118" cy="188" rx="17" ry="19" fill="#FFE0A6"/>',
        wing(100, 60, near, far, 200, 'wingLow', 'near'),
        # Struts carry the upper wing, which covers their ends.
        strut.format('M-10,146 L50,-160 M-96,150 L-46,-160 M50,-160 L-96,150'),
        strut.format('M130,-80 L176,-250 M196,-82 L246,-250'),
        wing(196, -262, near, (150, -84), 214, 'wingTop', 'far'),
        wing(196, -262, (-196, 96), far, 214, 'wingTop', 'near'),
        # The propeller is a disc of light.
        '<ellipse cx="352" cy="0" rx="34" ry="172" fill="url(#prop)" opacity="0.85"/>',
        '<path d="M356,-168 C372,-90 366,-40 354,0 C344,50 342,110 352,168" stroke="#fff" stroke-width="6" fill="none" '
        'opacity="0.8"/>',
        '<path d="M340,-30 C384,-26 400,-8 402,0 C400,10 384,28 340,30 Z" fill="#FFC23C" stroke="#4A0F1C" stroke-width="4"/>',
    ]
    return f'<defs>{defs}</defs>' + ''.join(parts)


def scene(height=1430):
    horizon = height * 0.735
    defs = (gradient('sky', [(0, '#164C9C'), (0.35, '#3E8FD0'), (0.62, '#A8DCE8'), (0.82, '#FFE9B8'), (1, '#FFC98A')],
                     0, 0, 0, horizon, 'userSpaceOnUse')
            + gradient('sea', [(0, '#7FC4CF'), (0.2, '#2E86AE'), (1, '#0C2C66')]))
    wind = ''
    for n, (y, bend, wide) in enumerate([(0, 60, 26), (46, 90, 18), (-52, 40, 14), (96, 130, 12)]):
        wind += (f'<path d="M-80,{horizon - 40 + y} C 120,{horizon - 120 + y + bend} 190,{horizon - 320 + y} '
                 f'330,{horizon - 330 + y * 0.6}" stroke="#fff" stroke-width="{wide}" fill="none" '
                 f'stroke-linecap="round" opacity="{0.75 - n * 0.12}"/>')
    plane_y = height * 0.515
    inside = [
        f'<rect width="1000" height="{height}" fill="url(#sky)"/>',
        halo(850, height * 0.30, 520, '#FFF6D0', 0.95),
        rays(850, height * 0.30, 1500, 22, '#FFF8DC', 0.20, 5),
        f'<circle cx="850" cy="{height * 0.30}" r="92" fill="#FFFBE6"/>',
        cloud(820, horizon - 70, 760, 3, ['#8FB4CF', '#C9DDE4', '#FFF4DC'], 0.55),
        cloud(90, horizon - 110, 720, 8, ['#7EA6C6', '#BFD7E2', '#FFF1D6'], 0.75),
        cloud(470, horizon - 20, 620, 11, ['#9CBFD2', '#D6E4E4', '#FFF6E2'], 0.25),
        f'<path d="M-20,{horizon + 4} L60,{horizon - 46} L150,{horizon - 20} L240,{horizon - 64} L330,{horizon - 12} '
        f'L420,{horizon + 4} Z" fill="#5E8CA8"/>',
        f'<path d="M640,{horizon + 4} L730,{horizon - 34} L800,{horizon - 14} L900,{horizon - 58} L1020,{horizon - 8} '
        f'L1020,{horizon + 4} Z" fill="#6F97AC"/>',
        f'<rect y="{horizon}" width="1000" height="{height - horizon}" fill="url(#sea)"/>',
        glints(850, horizon + 6, 420, 150, '#FFF4CF', 90, 4, 60, 5),
        wind,
        f'<g transform="translate(508,{plane_y + 30}) rotate(-17) scale(1.0)">{plane()}</g>',
        wave(horizon + 120, 60, 460, 90, '#2A7FA8', 2, '#CFEFF0', 9),
        wave(horizon + 200, 84, 610, 320, '#175A92', 5, '#E8FAF6', 13),
        wave(horizon + 300, 96, 780, 40, '#0D3A78', 7, '#FFFFFF', 17),
    ]
    return picture(''.join(inside), 1000, height, defs)


def title():
    """The title's word and its layers, in units of a letter's height of 100."""
    word = Word(TITLE, 25, 0.62, -28, 0.24, -2, lambda n: (0, (6, 4, 2, 0, -3, -6, -10)[n], -3, (1.1, 1, 1, 1, 1, 1, 1.06)[n]))
    return word, word.layers('mi', [(0, '#FFF3B0'), (0.4, '#FFC23C'), (0.62, '#FF7A2E'), (1, '#C92F2B')],
                             ((9, '#12245C'), (14, '#FFF6E0')), 10, '#0B1A46', '#FFFBE2', 0.85)
