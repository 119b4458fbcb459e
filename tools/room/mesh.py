"""Shapes of the furniture: small closed meshes, and what turns them into a part of a model.

Lengths are room units (about a centimetre). Y is up, faces run counter-clockwise seen from outside.
"""
import numpy as np


class Mesh:
    """Vertices (n, 3), triangles (m, 3) and, for cloth and pictures, a texture coordinate per corner (m, 3, 2) in
    units with v downwards, and the number of the chart that a face lies in (m)."""

    def __init__(self, vertices, faces, corner_uv=None, chart=None):
        self.v = np.asarray(vertices, float).reshape(-1, 3)
        self.f = np.asarray(faces, int).reshape(-1, 3)
        self.uv = None if corner_uv is None else np.asarray(corner_uv, float).reshape(-1, 3, 2)
        self.chart = None if self.uv is None else np.zeros(len(self.f), int) if chart is None else np.asarray(chart, int)

    def moved(self, x=0, y=0, z=0):
        return Mesh(self.v + (x, y, z), self.f, self.uv, self.chart)

    def scaled(self, x, y=None, z=None):
        y, z = (x if y is None else y), (x if z is None else z)
        mesh = Mesh(self.v * (x, y, z), self.f, self.uv, self.chart)
        return mesh.flipped() if x * y * z < 0 else mesh

    def turned(self, axis, degrees):
        return Mesh(self.v @ rotation(axis, degrees).T, self.f, self.uv, self.chart)

    def flipped(self):
        return Mesh(self.v, self.f[:, ::-1], None if self.uv is None else self.uv[:, ::-1], self.chart)

    def mapped(self, function):
        """Moves every vertex: function takes and returns an (n, 3) array."""
        return Mesh(function(self.v.copy()), self.f, self.uv, self.chart)

    def __add__(self, other):
        uv = chart = None
        if self.uv is not None and other.uv is not None:
            uv = np.vstack([self.uv, other.uv])
            first = self.chart.max() + 1 if len(self.chart) else 0
            chart = np.concatenate([self.chart, other.chart + first])
        return Mesh(np.vstack([self.v, other.v]), np.vstack([self.f, other.f + len(self.v)]), uv, chart)


def rotation(axis, degrees):
    c, s = np.cos(np.radians(degrees)), np.sin(np.radians(degrees))
    return np.array({'x': [[1, 0, 0], [0, c, -s], [0, s, c]],
                     'y': [[c, 0, s], [0, 1, 0], [-s, 0, c]],
                     'z': [[c, -s, 0], [s, c, 0], [0, 0, 1]]}[axis])


def welded(mesh, digits=5):
    """Joins vertices at the same place and drops faces without area."""
    _, first, back = np.unique(np.round(mesh.v, digits), axis=0, return_index=True, return_inverse=True)
    faces = back.reshape(-1)[mesh.f]
    good = (faces[:, 0] != faces[:, 1]) & (faces[:, 1] != faces[:, 2]) & (faces[:, 2] != faces[:, 0])
    return Mesh(mesh.v[first], faces[good], None if mesh.uv is None else mesh.uv[good],
                None if mesh.uv is None else mesh.chart[good])


def grid_faces(columns, rows, base=0):
    """Two triangles a cell of a grid of columns x rows points, index row * columns + column."""
    i, j = np.meshgrid(np.arange(columns - 1), np.arange(rows - 1))
    a = (base + j * columns + i).reshape(-1)
    b, c, d = a + 1, a + columns + 1, a + columns
    return np.stack([np.stack([a, b, c], 1), np.stack([a, c, d], 1)], 1).reshape(-1, 3)


def cube_faces(points):
    """The six sides of the cube -1..1, each a grid over the given coordinates, welded."""
    points = np.asarray(points, float)
    n = len(points)
    a, b = (p.reshape(-1) for p in np.meshgrid(points, points))
    one = np.ones(n * n)
    sides = [(one, b, -a), (-one, b, a), (a, one, -b), (a, -one, b), (a, b, one), (-a, b, -one)]
    mesh = None
    for side in sides:
        part = Mesh(np.stack(side, 1), grid_faces(n, n))
        mesh = part if mesh is None else mesh + part
    return mesh


def box(w, h, d, bevel=0.3, rounds=0):
    """A board. bevel is the edge's radius; rounds 0 cuts it flat, 1 and more round it. Centred."""
    half = np.array([w, h, d], float) / 2
    bevel = min(bevel, 0.49 * 2 * half.min())
    if bevel <= 0:
        return welded(cube_faces([-1, 1]).mapped(lambda v: v * half))
    if rounds == 0:
        return chamfered(half, bevel)
    # A grid line is a sign (which corner of the core) and a slope away from the side's own direction.
    slopes = np.tan(np.radians(np.linspace(0, 45, rounds + 1)))
    lines = np.concatenate([-1 - slopes[::-1], 1 + slopes])

    sides = []
    n = len(lines)
    a, b = (p.reshape(-1) for p in np.meshgrid(lines, lines))
    sign_a, slope_a, sign_b, slope_b = np.sign(a), np.abs(a) - 1, np.sign(b), np.abs(b) - 1
    one = np.ones(n * n)
    for (u, v, w_), flip in (((0, 1, 2), 1), ((1, 2, 0), 1), ((2, 0, 1), 1), ((1, 0, 2), -1), ((2, 1, 0), -1),
                             ((0, 2, 1), -1)):
        sign = np.zeros((n * n, 3))
        lean = np.zeros((n * n, 3))
        sign[:, u], sign[:, v], sign[:, w_] = sign_a, sign_b, one * flip
        lean[:, u], lean[:, v], lean[:, w_] = sign_a * slope_a, sign_b * slope_b, one * flip
        lean /= np.linalg.norm(lean, axis=1)[:, None]
        part = Mesh(sign * (half - bevel) + lean * bevel, grid_faces(n, n))
        sides.append(part)
    mesh = sides[0]
    for side in sides[1:]:
        mesh = mesh + side
    return welded(outward(mesh))


def outward(mesh):
    """Turns every face of a convex shape around the origin to the outside."""
    a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
    wrong = np.einsum('ij,ij->i', np.cross(b - a, c - a), a + b + c) < 0
    mesh.f[wrong] = mesh.f[wrong][:, ::-1]
    if mesh.uv is not None:
        mesh.uv[wrong] = mesh.uv[wrong][:, ::-1]
    return mesh


def chamfered(half, bevel):
    vertices, index = [], {}
    for axis in range(3):
        for s in range(8):
            sign = np.array([1 if s & 1 else -1, 1 if s & 2 else -1, 1 if s & 4 else -1])
            inner = half - bevel
            inner[axis] = half[axis]
            index[axis, s] = len(vertices)
            vertices.append(sign * inner)
    faces = []

    def quad(a, b, c, d):
        faces.extend([[a, b, c], [a, c, d]])

    for axis in range(3):
        u, v = 1 << (axis + 1) % 3, 1 << (axis + 2) % 3
        for side in (0, 1 << axis):
            quad(*(index[axis, side | k] for k in (0, u, u | v, v)))
        for k in (0, u, v, u | v):  # The edge along axis joins the two other sides.
            other, third = (axis + 1) % 3, (axis + 2) % 3
            far = 1 << axis
            quad(index[other, k], index[third, k], index[third, k | far], index[other, k | far])
    for s in range(8):
        faces.append([index[0, s], index[1, s], index[2, s]])
    return outward(Mesh(vertices, faces))


def lathe(profile, segments=24):
    """Turns a line of (radius, height) points, given from bottom to top, around the y axis."""
    profile = np.asarray(profile, float)
    angle = np.arange(segments + 1) * 2 * np.pi / segments
    r, y = profile[:, 0][:, None], profile[:, 1][:, None]
    v = np.stack([r * np.sin(angle), y + 0 * angle, r * np.cos(angle)], -1).reshape(-1, 3)
    return welded(Mesh(v, grid_faces(segments + 1, len(profile))))


def cylinder(radius, height, bevel=0.2, segments=24, top=None):
    """A peg standing on y 0; top is the radius of its upper end."""
    top = radius if top is None else top
    b = min(bevel, radius * 0.45, top * 0.45, height * 0.45)
    return lathe([(0, 0), (radius - b, 0), (radius, b), (top, height - b), (top - b, height), (0, height)], segments)


def tube(path, radius, segments=8):
    """A cable or rail along a list of points, closed at both ends."""
    path = np.asarray(path, float)
    ahead = np.gradient(path, axis=0)
    ahead /= np.linalg.norm(ahead, axis=1)[:, None]
    side = np.cross(ahead[0], (0, 1, 0) if abs(ahead[0][1]) < 0.9 else (1, 0, 0))
    rings = []
    for point, direction in zip(path, ahead):
        side = side - direction * (side @ direction)
        side /= np.linalg.norm(side)
        other = np.cross(side, direction)
        angle = np.arange(segments + 1) * 2 * np.pi / segments
        rings.append(point + radius * (np.cos(angle)[:, None] * other + np.sin(angle)[:, None] * side))
    rings = [np.repeat(path[:1], segments + 1, 0)] + rings + [np.repeat(path[-1:], segments + 1, 0)]
    return welded(Mesh(np.concatenate(rings), grid_faces(segments + 1, len(rings))))


def curve(points, steps=8):
    """A smooth line through the points (Catmull-Rom)."""
    p = np.asarray(points, float)
    p = np.vstack([2 * p[0] - p[1], p, 2 * p[-1] - p[-2]])
    t = np.linspace(0, 1, steps, endpoint=False)[:, None]
    line = []
    for a, b, c, d in zip(p, p[1:], p[2:], p[3:]):
        line.append(0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t ** 2 + (3 * b - a - 3 * c + d) * t ** 3))
    return np.vstack(line + [p[-2:-1]])


def prism(outline, depth, bevel=0.3):
    """Extends an outline of (x, y) points, counter-clockwise and without crossings, along z; both rims are cut flat.

    The bevel keeps the outline's size and lessens the front and back faces."""
    outline = np.asarray(outline, float)
    n = len(outline)
    rim = inset(outline, bevel) if bevel else outline
    z = depth / 2
    loops = [(rim, -z), (outline, -z + bevel), (outline, z - bevel), (rim, z)] if bevel else [(outline, -z), (outline, z)]
    v = np.vstack([np.column_stack([loop, np.full(n, height)]) for loop, height in loops])
    faces = []
    for k in range(len(loops) - 1):
        for i in range(n):
            j = (i + 1) % n
            a, b, c, d = k * n + i, k * n + j, (k + 1) * n + j, (k + 1) * n + i
            faces += [[a, b, c], [a, c, d]]
    cap = triangulated(rim)
    last = (len(loops) - 1) * n
    faces += [[a + last, b + last, c + last] for a, b, c in cap] + [[c, b, a] for a, b, c in cap]
    return Mesh(v, faces)


def inset(outline, amount):
    ahead = np.roll(outline, -1, 0) - outline
    ahead /= np.linalg.norm(ahead, axis=1)[:, None]
    normal = np.column_stack([-ahead[:, 1], ahead[:, 0]])
    before = np.roll(normal, 1, 0)
    middle = normal + before
    middle /= np.maximum(np.einsum('ij,ij->i', middle, normal), 0.3)[:, None]
    return outline + middle * amount


def triangulated(outline):
    """Ear clipping of a counter-clockwise outline."""
    def cross(o, a, b):
        return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0])
    todo, faces = list(range(len(outline))), []
    while len(todo) > 3:
        for k in range(len(todo)):
            a, b, c = todo[k - 1], todo[k], todo[(k + 1) % len(todo)]
            pa, pb, pc = outline[a], outline[b], outline[c]
            if cross(pa, pb, pc) <= 1e-12:
                continue
            if any(cross(pa, pb, q) >= 0 and cross(pb, pc, q) >= 0 and cross(pc, pa, q) >= 0
                   for i in todo if i not in (a, b, c) for q in (outline[i],)):
                continue
            faces.append([a, b, c])
            todo.pop(k)
            break
        else:
            break
    return faces + [todo[:3]]


def rounded_outline(w, h, radius, steps=4):
    """A rectangle around the origin with round corners; radius may be four values, from lower left anticlockwise."""
    radii = np.broadcast_to(radius, 4)
    points = []
    for k, (sx, sy) in enumerate(((-1, -1), (1, -1), (1, 1), (-1, 1))):
        r = max(radii[k], 1e-3)
        for a in np.radians(180 + 90 * k + np.linspace(0, 90, steps + 1)):
            points.append((sx * (w / 2 - r) + r * np.cos(a), sy * (h / 2 - r) + r * np.sin(a)))
    return np.array(points)


def cushion(w, h, d, rounding=4.0, puff=0.0, n=10, sag=None):
    """A stuffed box: edges rounded by the given radius, sides bulging by puff; sag moves the finished points."""
    points = np.linspace(-1, 1, n)
    points = np.sign(points) * (1 - (1 - np.abs(points)) ** 1.5)  # Finer towards the edges.
    half = np.array([w, h, d], float) / 2
    r = min(rounding, half.min() * 0.999)

    def place(v):
        core = np.clip(v * half, -(half - r), half - r)
        away = v * half - core
        length = np.linalg.norm(away, axis=1)[:, None]
        length[length == 0] = 1
        flat = core + away / length * r
        x, y, z = v.T
        bulge = np.stack([x * (1 - y * y) * (1 - z * z), y * (1 - x * x) * (1 - z * z), z * (1 - x * x) * (1 - y * y)], 1)
        return flat + np.sign(bulge) * np.sqrt(np.abs(bulge)) * puff * (np.abs(v) > 0.999)

    mesh = welded(cube_faces(points)).mapped(place)
    return mesh.mapped(sag) if sag else mesh


def pillow(w, h, d, n=12, ears=0.07):
    """A scatter cushion standing in the x-y plane: two cloths sewn at the rim, with drawn-in sides."""
    t = np.linspace(-1, 1, n)
    t = np.sign(t) * (1 - (1 - np.abs(t)) ** 1.4)
    u, v = (p.reshape(-1) for p in np.meshgrid(t, t))
    x, y = w / 2 * u * (1 - ears * (1 - v * v)), h / 2 * v * (1 - ears * (1 - u * u))
    z = d / 2 * np.maximum((1 - np.abs(u) ** 2.6) * (1 - np.abs(v) ** 2.6), 0) ** 0.42
    front = Mesh(np.stack([x, y, z], 1), grid_faces(n, n))
    return welded(front + front.scaled(1, 1, -1))


def sheet(function, columns, rows, width, height, thickness=0.0):
    """Cloth: function takes u, v in 0..1 (arrays) and returns points (n, 3). width and height are those of its
    texture, in units. With a thickness it has a back and a rim."""
    u, v = (p.reshape(-1) for p in np.meshgrid(np.linspace(0, 1, columns), np.linspace(0, 1, rows)))
    points = np.asarray(function(u, v))
    faces = grid_faces(columns, rows)
    plane = np.column_stack([u * width, v * height])
    front = Mesh(points, faces, plane[faces])
    if not thickness:
        return front
    normal = vertex_normals(front)
    back = Mesh(points - normal * thickness, faces[:, ::-1], ((width, 0) + plane * (-1, 1))[faces[:, ::-1]])
    rim = np.concatenate([np.arange(columns), np.arange(2, rows + 1) * columns - 1,
                          np.arange(columns - 2, -1, -1) + (rows - 1) * columns, np.arange(rows - 2, -1, -1) * columns])
    count, edge, strip, along = len(points), [], [], 0
    for a, b in zip(rim, rim[1:]):
        step = np.linalg.norm(points[b] - points[a])
        edge += [[b, a, a + count], [b, a + count, b + count]]
        strip += [[(along + step, 0), (along, 0), (along, thickness)],
                  [(along + step, 0), (along, thickness), (along + step, thickness)]]
        along += step
    both = front + back
    return Mesh(both.v, np.vstack([both.f, edge]), np.vstack([both.uv, strip]),
                np.concatenate([both.chart, np.full(len(edge), 2)]))


def vertex_normals(mesh):
    a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
    normal = np.cross(b - a, c - a)
    total = np.zeros_like(mesh.v)
    for k in range(3):
        np.add.at(total, mesh.f[:, k], normal)
    length = np.linalg.norm(total, axis=1)[:, None]
    length[length == 0] = 1
    return total / length


def onto(mesh, path, core, lift=0.0):
    """Moves the points of a path to a stuffed shape's surface: outwards from the nearest point of the box `core`
    (half sizes), around the origin."""
    a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
    u, v = b - a, c - a
    moved = []
    for point in np.asarray(path, float):
        start = np.clip(point, -np.asarray(core), core)
        along = (point - start) / max(np.linalg.norm(point - start), 1e-9)
        p = np.cross(along, v)
        det = np.einsum('ij,ij->i', u, p)
        det[np.abs(det) < 1e-12] = 1e-12
        t = start - a
        q = np.cross(t, u)
        first, second = np.einsum('ij,ij->i', t, p) / det, q @ along / det
        far = np.einsum('ij,ij->i', v, q) / det
        hit = (first > -1e-6) & (second > -1e-6) & (first + second < 1 + 1e-6) & (far > 0)
        moved.append(start + along * ((far[hit].max() if hit.any() else np.linalg.norm(point - start)) + lift))
    return np.array(moved)
