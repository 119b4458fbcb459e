"""A piece of furniture: parts with their paints become a .3ds file and its texture sheets.

    m = Model('stool', size=(40, 45, 40))
    m.add(box(40, 3, 40, 0.4), wood(WALNUT), at=(0, 43.5, 0))
    m.build()

Parts are placed with y 0 at the floor and x, z 0 at the middle; build() checks the size and moves the middle of the
box to the origin. Every part is cut into charts by the direction that its faces look in, the charts are packed into
square sheets, and each texel is lit by the baker and coloured by its part's paint.
"""
import os
import struct
import subprocess

import numpy as np
from PIL import Image

import closing
import threeds
from mesh import Mesh, rotation
from texture import Surface, filled

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
OUT = os.path.join(ROOT, 'assets', 'objects')
BUILD = os.path.join(ROOT, 'build', 'room')

MATT = (0.0, 0.0, 0.0)  # Highlight strength, its exponent (up to 128), glow.
SATIN = (0.10, 12.0, 0.0)
LACQUER = (0.22, 30.0, 0.0)
GLOSS = (0.5, 70.0, 0.0)


def tool(name):
    """Builds a C++ helper beside this file when it is newer than its program."""
    source, program = os.path.join(HERE, name + '.cpp'), os.path.join(BUILD, name)
    if not os.path.exists(program) or os.path.getmtime(program) < os.path.getmtime(source):
        os.makedirs(BUILD, exist_ok=True)
        subprocess.run(['g++', '-std=c++20', '-O3', '-march=native', '-ffast-math', '-pthread', '-Wall', '-Wextra',
                        '-o', program, source], check=True)
    return program


class Part:
    pass


class Model:
    """size: the box that must come out, or None for a model that keeps its own origin. lamp: the lamp's place in the
    model's space with y 0 at the floor, for a model that stands in one place only; its shadows are painted then.
    sheets: how many texture sheets of `pixels` square; brightness: what colours are multiplied by. faint: the share of
    texels for sides that nobody sees well, {'-y': 0.35}, by the part's own directions. strip: leave faces out that other parts hide. closed: fill
    the holes that this leaves. crease: for parts without their
    own."""

    def __init__(self, name, size=None, sheets=1, pixels=1024, lamp=None, brightness=1.5, floor=0.30, reach=90,
                 shade=1.0, quality=88, faint=None, strip=False, closed=False,
                 crease=50):
        self.name, self.size, self.sheets, self.pixels, self.lamp = name, size, sheets, pixels, lamp
        self.brightness, self.reach, self.shade, self.quality = brightness, reach, shade, quality
        names = {'-x': 0, '+x': 1, '-y': 2, '+y': 3, '-z': 4, '+z': 5}
        self.faint = {names[side]: share for side, share in (faint or {}).items()}
        self.crease, self.strip, self.closed, self.parts, self.blockers = crease, strip, closed, [], []
        if floor is not None:
            big = 600
            self.block(Mesh([[-big, -0.02, -big], [-big, -0.02, big], [big, -0.02, big], [big, -0.02, -big]],
                            [[0, 1, 2], [0, 2, 3]]), returned=floor)

    def add(self, mesh, paint, at=(0, 0, 0), turn=(), density=1.0, crease=None, gloss=MATT, returned=0.15, seed=None,
            shades=True):
        """A painted part. turn: (axis, degrees) steps, done before the move. density: texels a unit, relative.
        crease: edges sharper than this many degrees stay hard. returned: light that it gives back to what it shades.
        shades: whether it does; a cord along a seam would draw an outline."""
        part = self._place(mesh, at, turn)
        part.paint, part.density, part.gloss, part.returned, part.shades = paint, density, gloss, returned, shades
        part.crease = self.crease if crease is None else crease
        part.seed = len(self.parts) + 1 if seed is None else seed
        part.kind = 'painted'
        self.parts.append(part)
        return part

    def plain(self, mesh, diffuse, at=(0, 0, 0), turn=(), crease=50, gloss=SATIN, returned=0.1):
        """A small part of one colour, without a texture."""
        part = self._place(mesh, at, turn)
        part.kind, part.diffuse, part.crease, part.gloss, part.returned = 'plain', tuple(diffuse), crease, gloss, returned
        self.parts.append(part)
        return part

    def screen(self, mesh, texture, at=(0, 0, 0), turn=(), crease=50, gloss=GLOSS, returned=0.05, name='screen'):
        """A part that shows a whole picture by its own coordinates (0..1, v downwards). The first one is material 0."""
        part = self._place(mesh, at, turn)
        part.kind, part.texture, part.crease, part.gloss, part.returned = 'screen', texture, crease, gloss, returned
        part.label = name
        self.parts.append(part)
        return part

    def block(self, mesh, at=(0, 0, 0), turn=(), returned=0.15):
        """Something that takes light away from the model without being part of it: a wall, what stands on it."""
        part = self._place(mesh, at, turn)
        part.returned = returned
        self.blockers.append(part)

    @staticmethod
    def _place(mesh, at, turn):
        part = Part()
        part.mesh, part.turn = mesh, np.eye(3)
        for axis, degrees in turn:
            part.turn = rotation(axis, degrees) @ part.turn
        part.points = mesh.v @ part.turn.T + np.asarray(at, float)
        return part

    def build(self, rays=64, out=OUT):
        self._measure()
        self._smooth()
        self._occluders()
        self._hide()
        painted = [p for p in self.parts if p.kind == 'painted']
        if painted:
            self._charts(painted)
            self._pack()
            self._bake(painted, rays)
            self._paint(painted, out)
        self._write(out)

    def _measure(self):
        points = np.vstack([p.points for p in self.parts])
        self.low, self.high = points.min(0), points.max(0)
        self.shift = np.zeros(3)
        if self.size is not None:
            wanted = np.array(self.size, float)
            low, high = np.array([-wanted[0] / 2, 0, -wanted[2] / 2]), np.array([wanted[0] / 2, wanted[1], wanted[2] / 2])
            assert np.allclose(self.low, low, atol=2e-3) and np.allclose(self.high, high, atol=2e-3), \
                f'{self.name}: the box is {self.low} to {self.high}, wanted {low} to {high}'
            self.shift = np.array([0, -wanted[1] / 2, 0])

    def _smooth(self):
        """Corner normals: at a point, faces that meet below the crease angle share one, weighted by area."""
        for part in self.parts:
            v, f = part.points, part.mesh.f
            area = np.cross(v[f[:, 1]] - v[f[:, 0]], v[f[:, 2]] - v[f[:, 0]])
            length = np.linalg.norm(area, axis=1)[:, None]
            part.flat = area / np.maximum(length, 1e-12)
            around = [[] for _ in v]
            for n, face in enumerate(f):
                for k in range(3):
                    around[face[k]].append((n, k))
            part.cluster = np.zeros(f.shape, int)
            part.corner = np.zeros((len(f), 3, 3))
            limit, number = np.cos(np.radians(part.crease)), 0
            for vertex, corners in enumerate(around):
                todo = list(corners)
                while todo:
                    group, k = [todo.pop()], 0
                    while k < len(group):
                        n = group[k][0]
                        others = set(f[n]) - {vertex}
                        for c in list(todo):
                            if others & set(f[c[0]]) and part.flat[n] @ part.flat[c[0]] > limit:
                                group.append(c)
                                todo.remove(c)
                        k += 1
                    total = sum(area[n] for n, _ in group)
                    total = total / max(np.linalg.norm(total), 1e-12)
                    for n, c in group:
                        part.cluster[n, c], part.corner[n, c] = number, total
                    number += 1

    def _charts(self, painted):
        self.charts = []
        for part in painted:
            mesh = part.mesh
            a, b, c = (mesh.v[mesh.f[:, k]] for k in range(3))
            own = np.cross(b - a, c - a)
            own /= np.maximum(np.linalg.norm(own, axis=1), 1e-12)[:, None]
            if mesh.uv is not None:
                part.plane, key = mesh.uv, mesh.chart
            else:
                axis = np.argmax(np.abs(own) * (1.02, 1.01, 1.0), axis=1)
                side = np.take_along_axis(own, axis[:, None], 1)[:, 0] > 0
                key = axis * 2 + side
                p = mesh.v[mesh.f]
                sign = np.where(side, 1, -1)[:, None]
                u = np.choose(axis[:, None], [-sign * p[..., 2], p[..., 0], sign * p[..., 0]])
                v = np.choose(axis[:, None], [-p[..., 1], sign * p[..., 2], -p[..., 1]])
                part.plane = np.stack([u, v], -1)
            # Faces of one direction that hang together are one chart.
            parent = list(range(len(mesh.f)))

            def root(n):
                while parent[n] != n:
                    parent[n] = parent[parent[n]]
                    n = parent[n]
                return n
            edges = {}
            for n, face in enumerate(mesh.f):
                for k in range(3):
                    edge = (key[n], *sorted((face[k], face[(k + 1) % 3])))
                    if edge in edges:
                        parent[root(n)] = root(edges[edge])
                    edges[edge] = n
            roots = np.array([root(n) for n in range(len(mesh.f))])
            part.chart = np.zeros(len(mesh.f), int)
            for r in np.unique(roots):
                faces = np.nonzero(roots == r)[0]
                plane = part.plane[faces].reshape(-1, 2)
                part.chart[faces] = len(self.charts)
                share = 1.0 if mesh.uv is not None else self.faint.get(int(key[faces[0]]), 1.0)
                if not part.seen[faces].any():
                    share = 0.05
                self.charts.append([part.density * share, plane.min(0), plane.max(0)])

    def _pack(self):
        low, high = 0.2, 40.0
        for _ in range(13):
            middle = np.sqrt(low * high)
            if self._fits(middle):
                low = middle
            else:
                high = middle
        assert self._fits(low), f'{self.name}: the charts do not fit'
        self.texels = low

    def _fits(self, scale, gap=4):
        """Longest charts first, each as low as it goes; one may lie on its side. Leaves the places in self.places."""
        sizes = []
        for density, low, high in self.charts:
            w, h = np.maximum(1, np.ceil((high - low) * density * scale)) + 2 * gap
            sizes.append((w, h))
        self.places = [None] * len(sizes)
        # A sheet's skyline: the height that is taken, for each 4 columns of texels.
        step = 4
        columns = self.pixels // step
        skies = [np.zeros(columns, int) for _ in range(self.sheets)]
        for n in sorted(range(len(sizes)), key=lambda n: (-max(sizes[n]), -min(sizes[n]))):
            best = None
            for turned in (False, True):
                w, h = sizes[n][::-1] if turned else sizes[n]
                if w > self.pixels or h > self.pixels:
                    continue
                need = int(np.ceil(w / step))
                for page in range(self.sheets):
                    sky = skies[page]
                    tops = np.lib.stride_tricks.sliding_window_view(sky, need).max(1)
                    at = int(np.argmin(tops))
                    if tops[at] + h <= self.pixels:
                        waste = tops[at] + h
                        if best is None or (page, waste) < best[:2]:
                            best = (page, waste, at, tops[at], turned, need, h)
                    if best is not None and best[0] == page:
                        break
            if best is None:
                return False
            page, _, at, top, turned, need, h = best
            skies[page][at:at + need] = top + h
            self.places[n] = (page, at * step + gap, int(top) + gap, turned)
        return True

    def _texels_of(self, part):
        """Places of the part's corners in their sheets, in texels (m, 3, 2), and the sheets (m)."""
        spots = np.zeros((len(part.mesh.f), 3, 2))
        pages = np.zeros(len(part.mesh.f), int)
        for chart in np.unique(part.chart):
            faces = part.chart == chart
            density, low, high = self.charts[chart]
            page, x, y, turned = self.places[chart]
            plane = (part.plane[faces] - low) * density * self.texels
            if turned:
                plane = np.stack([(high - low)[1] * density * self.texels - plane[..., 1], plane[..., 0]], -1)
            spots[faces] = plane + (x, y)
            pages[faces] = page
        return spots, pages

    def _occluders(self):
        records = []
        for number, part in enumerate(self.parts + self.blockers):
            corners = part.points[part.mesh.f].reshape(-1, 9).astype('<f4')
            record = np.zeros(len(corners), np.dtype([('c', '<f4', 9), ('r', '<f4'), ('p', '<i4')]))
            record['c'], record['r'], record['p'] = corners, part.returned, number if number < len(self.parts) else -2
            part.number = number
            if getattr(part, 'shades', True):
                records.append(record)
        self.occluders = np.concatenate(records)

    def _hide(self):
        """Finds the faces that lie inside of other parts, where no eye comes, and strips them. Those at the box's sides
        stay, as they make its size."""
        parts = [p for p in self.parts if p.kind != 'screen']
        seen = np.split(self._run_baker(self._triangles(parts), 24, 0, '<f4'), np.cumsum([len(p.mesh.f) for p in parts])[:-1])
        for part, share in zip(parts, seen):
            at = part.points[part.mesh.f]
            rim = (np.abs(at - self.low) < 5e-3).any((1, 2)) | (np.abs(at - self.high) < 5e-3).any((1, 2))
            keep = (share > 0) | rim | (not self.strip)
            part.seen = share[keep]
            mesh = part.mesh
            part.mesh = Mesh(mesh.v, mesh.f[keep], None if mesh.uv is None else mesh.uv[keep],
                             None if mesh.uv is None else mesh.chart[keep])
            part.cluster, part.corner, part.flat = part.cluster[keep], part.corner[keep], part.flat[keep]
        self.parts = [p for p in self.parts if len(p.mesh.f)]

    def _triangles(self, parts):
        """The baker's records of the parts' faces; their places in the sheets are 0 before there are any."""
        triangles = []
        for part in parts:
            record = np.zeros(len(part.mesh.f), np.dtype([('page', '<i4'), ('chart', '<i4'), ('part', '<i4'),
                                                          ('t', '<f4', 6), ('c', '<f4', 9), ('n', '<f4', 9)]))
            record['part'] = part.number
            if hasattr(part, 'spots'):
                record['page'], record['chart'], record['t'] = part.pages, part.chart, part.spots.reshape(-1, 6)
            record['c'] = part.points[part.mesh.f].reshape(-1, 9)
            record['n'] = part.corner.reshape(-1, 9)
            triangles.append(record)
        return np.concatenate(triangles)

    def _run_baker(self, triangles, rays, sheets, form):
        lamp = (0, 0, 0, 0) if self.lamp is None else (*self.lamp, 24)
        os.makedirs(BUILD, exist_ok=True)
        source, result = os.path.join(BUILD, self.name + '.in'), os.path.join(BUILD, self.name + '.out')
        with open(source, 'wb') as file:
            file.write(struct.pack('<4i6f', len(self.occluders), len(triangles), sheets, rays, *lamp, self.reach, 0.8))
            file.write(self.occluders.tobytes() + triangles.tobytes())
            file.write(struct.pack('<2i', self.pixels, self.pixels) * sheets)
        subprocess.run([tool('bake'), source, result], check=True)
        done = np.fromfile(result, form)
        os.remove(source)
        os.remove(result)
        return done

    def _bake(self, painted, rays):
        for part in painted:
            part.spots, part.pages = self._texels_of(part)
        texel = np.dtype([('t', '<i4'), ('b', '<f4'), ('c', '<f4'), ('sky', '<f4'), ('lamp', '<f4'), ('edge', '<f4'),
                          ('seen', '<f4')])
        self.baked = self._run_baker(self._triangles(painted), rays, self.sheets, texel)
        self.baked = self.baked.reshape(self.sheets, self.pixels, self.pixels)

    def light(self, s):
        """What the program's light, which knows no shadow, is to be multiplied with at each texel."""
        sky = np.clip(s.sky, 0.0, 1.0)
        sky = 1 - self.shade * (1 - sky)
        if self.lamp is None:
            return sky
        to = np.asarray(self.lamp) - s.place
        lambert = np.maximum(np.einsum('ij,ij->i', to, s.turned) / np.linalg.norm(to, axis=1), 0)
        return (0.5 * sky + 0.6 * lambert * (0.12 + 0.88 * s.lamp)) / (0.5 + 0.6 * lambert)

    def _paint(self, painted, out):
        starts = np.cumsum([0] + [len(p.mesh.f) for p in painted])
        os.makedirs(out, exist_ok=True)
        self.files = []
        charts = np.concatenate([p.chart for p in painted])
        # A cord is as thin as a texel: its dark foot would look like a broken line.
        limit = np.concatenate([np.full(len(p.mesh.f), 0.04 if p.shades else 0.35) for p in painted])
        for page in range(self.sheets):
            baked = self.baked[page]
            # What is hidden takes the colour of what is seen beside it: smaller copies of the sheet mix them.
            # A chart that is hidden nearly whole keeps its own, or a slit would show its neighbour in the sheet.
            ys, xs = np.nonzero(baked['t'] >= 0)
            face = baked['t'][ys, xs]
            seen = baked['seen'][ys, xs] > limit[face]
            share = np.bincount(charts[face], seen, len(self.charts)) / np.maximum(np.bincount(charts[face], None, len(self.charts)), 1)
            keep = seen | (share[charts[face]] < 0.1)
            ys, xs = ys[keep], xs[keep]
            texels = baked[ys, xs]
            owner = np.searchsorted(starts, texels['t'], 'right') - 1
            order = np.argsort(owner, kind='stable')
            bounds = np.searchsorted(owner[order], np.arange(len(painted) + 1))
            sheet = np.zeros((self.pixels, self.pixels, 3))
            known = np.zeros((self.pixels, self.pixels), bool)
            known[ys, xs] = True
            for n, part in enumerate(painted):
                pick = order[bounds[n]:bounds[n + 1]]
                if not len(pick):
                    continue
                t = texels[pick]
                face = t['t'] - starts[n]
                weight = np.stack([1 - t['b'] - t['c'], t['b'], t['c']], 1).astype(float)[..., None]
                normal = (part.corner[face] * weight).sum(1)
                normal /= np.maximum(np.linalg.norm(normal, axis=1), 1e-9)[:, None]
                s = Surface((part.points[part.mesh.f[face]] * weight).sum(1),
                            (part.mesh.v[part.mesh.f[face]] * weight).sum(1),
                            normal @ part.turn, (part.plane[face] * weight).sum(1), t['sky'].astype(float),
                            t['lamp'].astype(float), t['edge'].astype(float), part.seed)
                s.turned = normal
                rgb = part.paint(s) * self.light(s)[:, None] * self.brightness
                # What would be brighter than the file can hold keeps its hue and comes near white slowly.
                most = np.maximum(rgb.max(1), 1e-6)
                held = np.where(most > 0.75, 1 - 0.25 * np.exp(-(most - 0.75) / 0.25), most)
                rgb = rgb * (held / most)[:, None]
                sheet[ys[pick], xs[pick]] = rgb
            image = Image.fromarray((np.clip(filled(sheet, known), 0, 1) * 255 + 0.5).astype(np.uint8))
            name = f'{self.name}{page + 1}.jpg' if self.sheets > 1 else f'{self.name}.jpg'
            image.save(os.path.join(out, name), quality=self.quality, subsampling=0 if self.quality > 92 else 2,
                       optimize=True)
            self.files.append(name)

    def _object(self, sink, number):
        """A file has fewer than 20,000 faces in all, and closing adds a few hundred."""
        done = sink.object(f'part{number}', 19100 if self.closed else 19700)
        if self.closed:
            closing.close(done)
        return done

    def _write(self, out):
        materials, objects = {}, []
        screens = [p for p in self.parts if p.kind == 'screen']
        for part in screens + [p for p in self.parts if p.kind != 'screen']:
            spec, shine, glow = part.gloss
            if part.kind == 'painted':
                part.names = [f'sheet{page + 1} {spec:g} {shine:g} {glow:g}' for page in part.pages]
                for page, name in set(zip(part.pages.tolist(), part.names)):
                    materials.setdefault(name, threeds.Material(name, self.files[page], (0, 0, 0), (spec,) * 3, shine,
                                                                glow))
            elif part.kind == 'screen':
                part.names = [part.label] * len(part.mesh.f)
                materials.setdefault(part.label, threeds.Material(part.label, part.texture, (0, 0, 0), (spec,) * 3,
                                                                  shine, glow))
            else:
                name = 'plain ' + ''.join(f'{int(round(c * 255)):02x}' for c in part.diffuse) + f' {spec:g} {shine:g} {glow:g}'
                part.names = [name] * len(part.mesh.f)
                materials.setdefault(name, threeds.Material(name, None, part.diffuse, (spec,) * 3, shine, glow))
        sink = Sink(self.low + self.shift, self.high + self.shift)
        for number, part in enumerate(self.parts):
            if sink.count() + 3 * len(part.mesh.f) > 60000:
                objects.append(self._object(sink, len(objects) + 1))
                sink = Sink(self.low + self.shift, self.high + self.shift)
            sink.take(self, number, part)
        objects.append(self._object(sink, len(objects) + 1))
        total = sum(len(o.faces) for o in objects)
        drawn = sum(len(numbers) for o in objects for numbers in o.groups.values())
        path = os.path.join(out, self.name + '.3ds')
        threeds.write(path, list(materials.values()), objects)
        size = os.path.getsize(path) + sum(os.path.getsize(os.path.join(out, n)) for n in getattr(self, 'files', []))
        print(f'{self.name}: {drawn} triangles drawn, {total} in the file, {sum(len(o.points) for o in objects)} points, '
              f'{len(materials)} materials, {size // 1024} KiB' +
              (f', {self.texels:.2f} texels a unit' if hasattr(self, 'texels') else ''))


class Sink:
    """Collects an object's points and faces. A point that a chart's border cuts in two would get half of its faces'
    normals on each side; a face that is drawn by no group adds what is missing."""

    def __init__(self, low, high):
        self.low, self.high = low, high
        self.points, self.coordinates, self.faces, self.groups, self.bends = [], [], [], {}, []

    def count(self):
        return len(self.points)

    def take(self, model, number, part):
        v = part.points + model.shift
        f = part.mesh.f
        if part.kind == 'painted':
            uv, charts = part.spots / model.pixels, part.chart
        elif part.kind == 'screen':
            uv, charts = part.mesh.uv, part.mesh.chart
        else:
            uv, charts = np.zeros((len(f), 3, 2)), np.zeros(len(f), int)
        area = np.cross(v[f[:, 1]] - v[f[:, 0]], v[f[:, 2]] - v[f[:, 0]])
        whole, share = {}, {}
        index = np.zeros(f.shape, int)
        known = {}
        for n, face in enumerate(f):
            for k in range(3):
                cluster = part.cluster[n, k]
                key = (cluster, charts[n], round(uv[n, k, 0], 6), round(uv[n, k, 1], 6))
                if key not in known:
                    known[key] = len(self.points)
                    self.points.append(v[face[k]])
                    self.coordinates.append(uv[n, k])
                index[n, k] = known[key]
                whole[cluster] = whole.get(cluster, 0) + area[n]
                share[known[key]] = share.get(known[key], 0) + area[n]
        for n in range(len(f)):
            self.groups.setdefault(part.names[n], []).append(len(self.faces))
            self.faces.append(index[n])
        for (cluster, *_), at in list(known.items()):
            missing = whole[cluster] - share[at]
            goal = np.linalg.norm(whole[cluster])
            turned = np.linalg.norm(np.cross(whole[cluster] / max(goal, 1e-12),
                                             share[at])) / max(np.linalg.norm(share[at]), 1e-12)
            if turned > 0.05 and goal > 0:
                self.bends.append((turned * goal, at, missing))

    def bend(self, at, normal):
        """Adds a face that is never drawn and whose normal is the given one, area and all; it stays in the box."""
        size = np.linalg.norm(normal)
        if size < 1e-9:
            return
        e, n = self.points[at], normal / size
        side = np.cross(n, (0, 1, 0) if abs(n[1]) < 0.9 else (1, 0, 0))
        side /= np.linalg.norm(side)
        other = np.cross(n, side)
        best = None
        for angle in np.arange(0, 2 * np.pi, np.pi / 8):
            p = e + np.sqrt(size) * (side * np.cos(angle) + other * np.sin(angle))
            q = e + np.sqrt(size) * (other * np.cos(angle) - side * np.sin(angle))
            both = np.clip([p, q], self.low, self.high)
            off = np.abs(both - [p, q]).sum()
            if best is None or off < best[0]:
                best = (off, both)
        first = len(self.points)
        self.points += [best[1][0], best[1][1]]
        self.coordinates += [self.coordinates[at]] * 2
        self.faces.append(np.array([at, first, first + 1]))

    def object(self, name, most):
        # The strongest first, as there may be too many.
        for _, at, missing in sorted(self.bends, key=lambda b: -b[0])[:max(0, most - len(self.faces))]:
            self.bend(at, missing)
        return threeds.Object(name, np.array(self.points), np.array(self.coordinates), np.array(self.faces), self.groups)
