"""Writes and reads the .3ds files of the room.

A chunk is u16 id, u32 length with the six header bytes, then its contents; numbers are little-endian:

  4D4D file > 3D3D editor > AFFF material*, 4000 object*
  AFFF > A000 name, A020 diffuse, A030 specular (each > 0010 three f32), A040 shininess, A084 self illumination
         (each > 0031 one f32), A200 texture map > A300 file name
  4000 > name, 4100 > 4110 vertices (u16 n, n x 3 f32), 4140 coordinates (u16 n, n x 2 f32),
         4120 faces (u16 n, n x (3 u16, flags u16)) > 4130 group (material name, u16 n, n x u16 face number)

Files are Z-up: a point of the room (x, y, z) is stored as (x, -z, y). v counts from the picture's foot.
"""
import struct

import numpy as np


class Material:
    """How a group of faces looks. shininess is the exponent of the highlight, up to 128."""

    def __init__(self, name, texture=None, diffuse=(0, 0, 0), specular=(0, 0, 0), shininess=0.0, glow=0.0):
        self.name, self.texture, self.diffuse, self.specular = name, texture, diffuse, specular
        self.shininess, self.glow = shininess, glow


class Object:
    """Points (n, 3) with Y up, coordinates (n, 2) with v from the top, faces (m, 3), groups {material name: face
    numbers}. A face in no group is not drawn but shares in the normals of its points."""

    def __init__(self, name, points, coordinates, faces, groups):
        self.name, self.points, self.coordinates, self.faces, self.groups = name, points, coordinates, faces, groups


def chunk(identifier, *contents):
    body = b''.join(contents)
    return struct.pack('<HI', identifier, len(body) + 6) + body


def text(name):
    data = name.encode('ascii')
    assert len(data) < 80, name
    return data + b'\0'


def write(path, materials, objects):
    parts = []
    for m in materials:
        fields = [chunk(0xA000, text(m.name)),
                  chunk(0xA020, chunk(0x0010, struct.pack('<3f', *m.diffuse))),
                  chunk(0xA030, chunk(0x0010, struct.pack('<3f', *m.specular))),
                  chunk(0xA040, chunk(0x0031, struct.pack('<f', m.shininess / 30))),
                  chunk(0xA084, chunk(0x0031, struct.pack('<f', m.glow)))]
        if m.texture:
            fields.append(chunk(0xA200, chunk(0xA300, text(m.texture))))
        parts.append(chunk(0xAFFF, *fields))
    for o in objects:
        n, m = len(o.points), len(o.faces)
        assert n < 65536 and m < 65536, (o.name, n, m)
        points = np.asarray(o.points, '<f4')
        stored = np.ascontiguousarray(np.stack([points[:, 0], -points[:, 2], points[:, 1]], 1), '<f4')
        coordinates = np.asarray(o.coordinates, float).copy()
        coordinates[:, 1] = 1 - coordinates[:, 1]
        faces = np.full((m, 4), 7, '<u2')  # The flags say that all three edges are seen.
        faces[:, :3] = o.faces
        groups = [chunk(0x4130, text(name), struct.pack('<H', len(numbers)), np.asarray(numbers, '<u2').tobytes())
                  for name, numbers in o.groups.items()]
        parts.append(chunk(0x4000, text(o.name), chunk(
            0x4100, chunk(0x4110, struct.pack('<H', n), stored.tobytes()),
            chunk(0x4140, struct.pack('<H', n), coordinates.astype('<f4').tobytes()),
            chunk(0x4120, struct.pack('<H', m), faces.tobytes(), *groups))))
    data = chunk(0x4D4D, chunk(0x0002, struct.pack('<I', 3)), chunk(0x3D3D, chunk(0x3D3E, struct.pack('<I', 3)), *parts))
    with open(path, 'wb') as file:
        file.write(data)


class Reader:
    """Reads a file the way the program does, with one flat cursor; says where a file breaks its form."""

    def __init__(self, data):
        self.data = data

    def children(self, start, end):
        while start < end:
            assert start + 6 <= end, 'a chunk header crosses its parent\'s end'
            identifier, length = struct.unpack_from('<HI', self.data, start)
            assert length >= 6 and start + length <= end, f'chunk {identifier:04X} crosses its parent\'s end'
            yield identifier, start + 6, start + length
            start += length

    def name(self, at, end):
        stop = self.data.index(b'\0', at, end)
        assert stop - at <= 80
        return self.data[at:stop].decode('ascii'), stop + 1

    def colour(self, at, end):
        for identifier, a, _ in self.children(at, end):
            if identifier in (0x0010, 0x0013):
                return struct.unpack_from('<3f', self.data, a)
            if identifier in (0x0011, 0x0012):
                return tuple(b / 255 for b in self.data[a:a + 3])
        return (0, 0, 0)

    def percentage(self, at, end):
        for identifier, a, _ in self.children(at, end):
            if identifier == 0x0031:
                return struct.unpack_from('<f', self.data, a)[0]
            if identifier == 0x0030:
                value = struct.unpack_from('<H', self.data, a)[0]
                return value * 0.01 if value >= 2 else 0.0
        return 0.0

    def material(self, at, end):
        m = Material('')
        for identifier, a, e in self.children(at, end):
            if identifier == 0xA000:
                m.name = self.name(a, e)[0]
            elif identifier == 0xA020:
                m.diffuse = self.colour(a, e)
            elif identifier == 0xA030:
                m.specular = self.colour(a, e)
            elif identifier == 0xA040:
                m.shininess = self.percentage(a, e) * 30
            elif identifier == 0xA084:
                m.glow = self.percentage(a, e)
            elif identifier == 0xA200:
                for inner, b, f in self.children(a, e):
                    if inner == 0xA300:
                        m.texture = self.name(b, f)[0]
        return m

    def object(self, at, end):
        name, at = self.name(at, end)
        o = Object(name, None, None, None, {})
        for identifier, a, e in self.children(at, end):
            if identifier != 0x4100:
                continue
            for inner, b, f in self.children(a, e):
                if inner in (0x4110, 0x4140):
                    n, width = struct.unpack_from('<H', self.data, b)[0], 3 if inner == 0x4110 else 2
                    assert b + 2 + n * width * 4 == f, f'{inner:04X} is not as long as its count'
                    values = np.frombuffer(self.data, '<f4', n * width, b + 2).reshape(n, width)
                    if width == 3:
                        o.points = np.stack([values[:, 0], values[:, 2], -values[:, 1]], 1)
                    else:
                        o.coordinates = np.stack([values[:, 0], 1 - values[:, 1]], 1)
            for inner, b, f in self.children(a, e):
                if inner == 0x4120:
                    m = struct.unpack_from('<H', self.data, b)[0]
                    o.faces = np.frombuffer(self.data, '<u2', m * 4, b + 2).reshape(m, 4)[:, :3].astype(int)
                    assert o.faces.max() < len(o.points), 'a face names a vertex that is not there'
                    for group, c, g in self.children(b + 2 + m * 8, f):
                        if group == 0x4130:
                            material, c = self.name(c, g)
                            n = struct.unpack_from('<H', self.data, c)[0]
                            assert c + 2 + 2 * n == g, '4130 is not as long as its count'
                            numbers = np.frombuffer(self.data, '<u2', n, c + 2).astype(int)
                            assert not n or numbers.max() < m, 'a group names a face that is not there'
                            o.groups.setdefault(material, []).extend(numbers.tolist())
        return o


def read(path):
    with open(path, 'rb') as file:
        reader = Reader(file.read())
    materials, objects = [], []
    assert struct.unpack_from('<I', reader.data, 2)[0] == len(reader.data), 'the root does not cover the file'
    for identifier, at, end in reader.children(6, len(reader.data)):
        if identifier != 0x3D3D:
            continue
        for inner, a, e in reader.children(at, end):
            if inner == 0xAFFF:
                materials.append(reader.material(a, e))
        for inner, a, e in reader.children(at, end):
            if inner == 0x4000:
                objects.append(reader.object(a, e))
    names = {m.name for m in materials}
    for o in objects:
        assert set(o.groups) <= names, f'{o.name} uses a material that is not there'
    return materials, objects


def normals(o):
    """The program's normals: each face adds its cross product to all of its points."""
    a, b, c = (o.points[o.faces[:, k]].astype(float) for k in range(3))
    face = np.cross(b - c, b - a)
    total = np.zeros((len(o.points), 3))
    for k in range(3):
        np.add.at(total, o.faces[:, k], face)
    length = np.linalg.norm(total, axis=1)
    length[length == 0] = 1
    return total / length[:, None]
