#!/usr/bin/env python3
"""Writes the first drafts of the Ashen Oath maps as Tiled TMX files.

The TMX files in content/maps/ are the sources; after this first draft they are
edited in Tiled. Running this again overwrites them.
    python3 tools/mapc/draft_maps.py content/maps
"""
import math
import random
import sys

N = 50
# Tilesets in the order of the TMX files: (source, firstgid).
TILE_TYPES = list(range(1, 11))
FIRSTGID = {t: 1 + 100 * (t - 1) for t in TILE_TYPES}
OBJECTS_FIRSTGID = 1001
PICTURES = {1: 12, 2: 10, 3: 10, 4: 10, 5: 16, 6: 10}
TRANSITION = {2: 7, 3: 8, 4: 9, 5: 10}  # other ground -> grass-other transition type
WATER = 5

# The object tileset's names (tile id order) and the manifest geometry used to
# place each object's picture by its base cell.
OBJECTS = {}


def load_objects(tsx_path, manifest_path):
    import re
    names = re.findall(r'<property name="name" value="([^"]+)"', open(tsx_path).read())
    for line in open(manifest_path):
        if line.startswith('#') or not line.strip():
            continue
        f = dict(kv.split('=', 1) for kv in line.split())
        x, y, w, h = map(int, f['rect'].split(','))
        ax, ay = map(int, f['anchor'].split(','))
        block = [tuple(map(int, p.split(','))) for p in f.get('block', '').split(';') if p]
        OBJECTS[f['name']] = dict(w=w, h=h, ax=ax, ay=ay, block=block, id=names.index(f['name']))


def box(i, j):
    return 1568 - 32 + (i - j) * 32, (i + j) * 16


class Map:
    def __init__(self, seed):
        self.rng = random.Random(seed)
        # Terrain of each grid vertex (a, b), 0 <= a, b <= N: 1 grass or another type.
        self.vertex = [[1] * (N + 1) for _ in range(N + 1)]
        self.block = set()
        self.used = set()       # cells taken by objects, roads, exits
        self.objects = []       # (base i, base j, name)
        self.rects = []         # (i0, j0, i1, j1, props)

    def paint(self, a, b, t):
        if 0 <= a <= N and 0 <= b <= N:
            self.vertex[a][b] = t

    def cell_terrain(self, i, j):
        corners = [self.vertex[i][j], self.vertex[i + 1][j], self.vertex[i + 1][j + 1], self.vertex[i][j + 1]]
        others = [c for c in corners if c != 1]
        if not others:
            return 1, 0, corners
        # Where two grounds meet in one cell the wetter/harder one wins.
        other = max(set(others), key=lambda t: (t == WATER, t == 3, others.count(t)))
        mask = 0
        for bit, c in zip((8, 4, 2, 1), corners):
            if c == other:
                mask |= bit
        return other, mask, corners

    def ground_gid(self, i, j):
        other, mask, _ = self.cell_terrain(i, j)
        if other == 1:
            k = self.rng.randrange(8) if self.rng.random() < 0.9 else 8 + self.rng.randrange(4)
            return FIRSTGID[1] + k
        if mask == 15:
            return FIRSTGID[other] + self.rng.randrange(PICTURES[other])
        k = mask - 1 + 14 * self.rng.randrange(2)
        return FIRSTGID[TRANSITION[other]] + k

    def water_blocked(self, i, j):
        other, mask, _ = self.cell_terrain(i, j)
        return other == WATER and bin(mask).count('1') >= 2

    def free(self, i, j, margin=0, strict=False):
        for a in range(i - margin, i + margin + 1):
            for b in range(j - margin, j + margin + 1):
                if not (0 <= a < N and 0 <= b < N):
                    return False
                if (a, b) in self.used or (a, b) in self.block:
                    return False
                _, _, corners = self.cell_terrain(a, b)
                # Nothing stands in water or on a road; only placed pieces on the square.
                if any(c in (2, WATER) or (strict and c != 1) for c in corners):
                    return False
        return True

    def place(self, i, j, name, margin=0, strict=False):
        o = OBJECTS[name]
        cells = [(i + di, j + dj) for di, dj in o['block']] or [(i, j)]
        for (a, b) in cells:
            if not self.free(a, b, margin, strict):
                return False
        self.objects.append((i, j, name))
        for (a, b) in cells:
            self.used.add((a, b))
        self.used.add((i, j))
        return True

    def reserve(self, i0, j0, i1, j1):
        for a in range(i0, i1):
            for b in range(j0, j1):
                self.used.add((a, b))

    def scatter(self, names, count, region, margin=1, tries=4000):
        placed = 0
        for _ in range(tries):
            if placed >= count:
                break
            i = self.rng.randrange(region[0], region[2])
            j = self.rng.randrange(region[1], region[3])
            if self.place(i, j, self.rng.choice(names), margin, strict=True):
                placed += 1
        return placed

    def tmx(self, props):
        ground = []
        block = []
        for j in range(N):
            row_g, row_b = [], []
            for i in range(N):
                row_g.append(str(self.ground_gid(i, j)))
                blocked = (i, j) in self.block or self.water_blocked(i, j)
                row_b.append(str(FIRSTGID[5] + 15) if blocked and not self.water_full(i, j) else '0')
            ground.append(','.join(row_g))
            block.append(','.join(row_b))
        out = ['<?xml version="1.0" encoding="UTF-8"?>',
               '<map version="1.10" tiledversion="1.10.0" orientation="isometric" renderorder="right-down" '
               f'width="{N}" height="{N}" tilewidth="64" tileheight="32" infinite="0" nextlayerid="6" '
               f'nextobjectid="{len(self.objects) + len(self.rects) + 1}">',
               ' <properties>']
        for k, v in props:
            kind = ' type="int"' if isinstance(v, int) else ''
            out.append(f'  <property name="{k}"{kind} value="{v}"/>')
        out.append(' </properties>')
        for t in TILE_TYPES:
            out.append(f' <tileset firstgid="{FIRSTGID[t]}" source="tilesets/tiles_{t}.tsx"/>')
        out.append(f' <tileset firstgid="{OBJECTS_FIRSTGID}" source="tilesets/objects.tsx"/>')
        out.append(f' <layer id="1" name="ground" width="{N}" height="{N}">')
        out.append('  <data encoding="csv">')
        out.append(',\n'.join(ground))
        out.append('</data>')
        out.append(' </layer>')
        out.append(f' <layer id="2" name="block" width="{N}" height="{N}" opacity="0.5">')
        out.append('  <data encoding="csv">')
        out.append(',\n'.join(block))
        out.append('</data>')
        out.append(' </layer>')
        oid = 1
        out.append(' <objectgroup id="3" name="objects">')
        # Back to front: objects further up the screen are drawn first.
        for i, j, name in sorted(self.objects, key=lambda o: (o[0] + o[1], o[0])):
            o = OBJECTS[name]
            bx, by = box(i, j)
            wx, wy = bx - o['ax'], by - o['ay']
            px, py = wx + o['w'] / 2, wy + o['h']
            ox, oy = (2 * py + px - 1568) / 2, (2 * py - px + 1568) / 2
            out.append(f'  <object id="{oid}" name="{name}" gid="{OBJECTS_FIRSTGID + o["id"]}" '
                       f'x="{ox:g}" y="{oy:g}" width="{o["w"]}" height="{o["h"]}"/>')
            oid += 1
        out.append(' </objectgroup>')
        out.append(' <objectgroup id="4" name="exits">')
        for i0, j0, i1, j1, rprops in self.rects:
            out.append(f'  <object id="{oid}" name="{rprops[0][1] if rprops[0][0] == "label" else ""}" '
                       f'x="{32 * i0}" y="{32 * j0}" width="{32 * (i1 - i0)}" height="{32 * (j1 - j0)}">')
            out.append('   <properties>')
            for k, v in rprops:
                kind = ' type="int"' if isinstance(v, int) else ''
                out.append(f'    <property name="{k}"{kind} value="{v}"/>')
            out.append('   </properties>')
            out.append('  </object>')
            oid += 1
        out.append(' </objectgroup>')
        out.append(' <objectgroup id="5" name="npcs"/>')
        out.append('</map>')
        return '\n'.join(out) + '\n'

    def water_full(self, i, j):
        other, mask, _ = self.cell_terrain(i, j)
        return other == WATER and mask == 15


def ashvale():
    m = Map(1)
    # River along the lower-left edge (high second index), wavering.
    for a in range(N + 1):
        edge = 44 + int(round(1.5 * math.sin(a / 5.0)))
        for b in range(edge, N + 1):
            m.paint(a, b, 5)
    # Stone square around the start, dirt roads to the east gate and south.
    for a in range(21, 30):
        for b in range(21, 30):
            if abs(a - 25) + abs(b - 25) <= 5:
                m.paint(a, b, 3)
    for a in range(27, N + 1):
        for b in (22, 23):
            m.paint(a, b, 2)
    for b in range(29, 41):
        for a in (25, 26):
            m.paint(a, b, 2)
    for a in range(4, 22):
        for b in (25, 26):
            m.paint(a, b, 2)
    # Keep the start, the gate and the roads clear of objects.
    m.reserve(23, 23, 28, 28)
    m.reserve(46, 19, 50, 27)
    # Village: houses around the square, the well, the market stall.
    for i, j, name in [(18, 17, 'cottage'), (29, 15, 'cottage'), (17, 29, 'stonehouse'), (31, 27, 'cottage'),
                       (12, 20, 'cottage'), (34, 17, 'stonehouse'), (30, 33, 'cottage'), (20, 35, 'cottage')]:
        assert m.place(i, j, name), (i, j, name)
    assert m.place(22, 22, 'well')
    assert m.place(27, 19, 'stall')
    assert m.place(46, 18, 'signpost')
    for i, j, name in [(21, 17, 'barrels'), (32, 15, 'crates'), (33, 27, 'barrels'), (15, 21, 'crates'),
                       (20, 29, 'barrels')]:
        m.place(i, j, name)
    # A fenced field west of the square.
    for i in range(5, 13):
        m.place(i, 31, 'fence_u')
        m.place(i, 38, 'fence_u')
    for j in range(32, 38):
        m.place(4, j, 'fence_v')
        if j not in (34, 35):
            m.place(12, j, 'fence_v')
    # Trees and bushes around the village, thicker toward the edges.
    m.scatter(['oak', 'oak2', 'pine'], 22, (1, 1, 49, 14), margin=1)
    m.scatter(['oak', 'oak2', 'pine2'], 14, (36, 1, 49, 44), margin=1)
    m.scatter(['oak', 'pine', 'deadtree'], 10, (1, 14, 10, 42), margin=1)
    m.scatter(['bush', 'bush_berry', 'rocks', 'stump'], 16, (2, 2, 48, 42), margin=0)
    exits = [(48, 20, 50, 26, [('label', 'To Greywood'), ('exit', 1), ('target', 'greywood.map')])]
    m.rects = exits
    props = [('name', 'Ashvale'), ('music', 'village.ogg'), ('start_x', 25), ('start_y', 25),
             ('blocking_types', '5')]
    return m, props


def greywood():
    m = Map(2)
    # A forest road from the west gate (first index 0) winding east.
    road = {}
    for a in range(0, N + 1):
        b = 22 + int(round(3 * math.sin(a / 8.0)))
        road[a] = b
        for db in (0, 1):
            m.paint(a, b + db, 2)
    # A pond south of the road.
    for a in range(10, 19):
        for b in range(33, 41):
            if (a - 14) ** 2 + (b - 37) ** 2 <= 10:
                m.paint(a, b, 5)
    m.reserve(0, 19, 7, 27)
    # The herbalist's hut in a clearing.
    assert m.place(29, 28, 'cottage')
    m.place(32, 28, 'barrels')
    m.reserve(27, 26, 35, 33)
    m.place(5, 18, 'signpost')
    # Dense forest everywhere else, kept off the road.
    for a in range(N):
        b = road[a]
        m.reserve(a, b - 2, a + 1, b + 4)
    m.scatter(['pine', 'pine2', 'oak', 'oak2'], 70, (1, 1, 49, 49), margin=0)
    m.scatter(['deadtree', 'stump', 'bush', 'bush_berry', 'rocks', 'boulder'], 20, (1, 1, 49, 49), margin=0)
    exits = [(0, 19, 2, 26, [('label', 'To Ashvale'), ('exit', 2), ('target', 'main.map')])]
    m.rects = exits
    props = [('name', 'Greywood'), ('music', 'forest.ogg'), ('start_x', 5), ('start_y', 22),
             ('blocking_types', '5')]
    return m, props


def main():
    out_dir = sys.argv[1] if len(sys.argv) > 1 else 'content/maps'
    manifest = sys.argv[2] if len(sys.argv) > 2 else 'build/stage/manifest/objects.txt'
    load_objects(out_dir + '/tilesets/objects.tsx', manifest)
    for name, make in (('main', ashvale), ('greywood', greywood)):
        m, props = make()
        with open(f'{out_dir}/{name}.tmx', 'w', newline='\n') as f:
            f.write(m.tmx(props))
        print(f'{name}.tmx: {len(m.objects)} objects')


if __name__ == '__main__':
    main()
