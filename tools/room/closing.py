"""Closes the holes that stripping leaves in a solid part.

The program leaves out the backs of a closed part's faces. A part that lost the faces inside of its neighbours is open,
and its backs are lit and drawn for nothing. A hole is filled with a fan of faces, which lie where the lost ones were.
"""
from collections import Counter, defaultdict

import numpy as np

FLAT = 1e-3  # A part with less volume, by its area, has no inside: a sheet stays as it is.


def parts_of(places, faces):
    """The faces' parts: what hangs together by edges. Yields lists of face numbers."""
    parent = list(range(len(faces)))

    def root(n):
        while parent[n] != n:
            parent[n] = parent[parent[n]]
            n = parent[n]
        return n
    owner = {}
    for n in faces_with_area(places, faces):
        for k in range(3):
            edge = tuple(sorted((places[faces[n][k]], places[faces[n][(k + 1) % 3]])))
            parent[root(n)] = root(owner.setdefault(edge, n))
    parts = defaultdict(list)
    for n in faces_with_area(places, faces):
        parts[root(n)].append(n)
    return parts.values()


def faces_with_area(places, faces):
    return [n for n, f in enumerate(faces) if len({places[p] for p in f}) == 3]


def rims(places, faces):
    """The ways around the holes, as lists of points; each runs against the edges of the faces beside it."""
    edges, point = Counter(), {}
    for face in faces:
        for k in range(3):
            a, b = face[k], face[(k + 1) % 3]
            edges[places[a], places[b]] += 1
            point[places[a]] = a
    onward = defaultdict(list)
    for (a, b), count in list(edges.items()):
        for _ in range(count - edges.get((b, a), 0)):
            onward[b].append(a)
    while any(onward.values()):
        at = start = next(p for p, ways in onward.items() if ways)
        way = []
        while onward[at]:
            way.append(point[at])
            at = onward[at].pop()
            if at == start:
                break
        yield way


def volume(points, faces):
    a, b, c = (points[faces[:, k]] - points[faces[0, 0]] for k in range(3))
    return np.einsum('ij,ij->i', a, np.cross(b, c)).sum() / 6, np.linalg.norm(np.cross(b - a, c - a), axis=1).sum() / 2


def close(o):
    """Adds the missing faces to a threeds.Object, with points of their own, so that no normal changes. Returns how
    many."""
    points = np.asarray(o.points, '<f4')
    places = np.unique(points, axis=0, return_inverse=True)[1].reshape(-1)
    group_of = {n: name for name, numbers in o.groups.items() for n in numbers}
    numbers = sorted(group_of)
    drawn = np.asarray(o.faces)[numbers]
    added, copies = [], {}
    for part in parts_of(places, drawn):
        fill = [(way[0], b, c) for way in rims(places, drawn[part]) for b, c in zip(way[1:], way[2:])]
        if not fill:
            continue
        inside, area = volume(np.asarray(o.points, float), np.vstack([drawn[part], fill]))
        if inside < FLAT * area ** 1.5:
            continue
        name = group_of[numbers[part[0]]]
        for face in fill:
            added.append((name, [copies.setdefault((name, p), len(o.points) + len(copies)) for p in face]))
    for n, (name, _) in enumerate(added):
        o.groups[name].append(len(o.faces) + n)
    originals = [p for _, p in copies]
    if added:
        o.points = np.vstack([o.points, np.asarray(o.points)[originals]])
        o.coordinates = np.vstack([o.coordinates, np.asarray(o.coordinates)[originals]])
        o.faces = np.vstack([o.faces, [face for _, face in added]])
    return len(added)
