#!/usr/bin/env python3
"""Writes the six maps of Ashen Oath as Tiled TMX files.

    python3 tools/mapc/draft_maps.py [content/maps] [build/stage/manifest/objects.txt]

Each map is laid out here by rule: ground by terrain painted on the grid's vertices
(each cell then takes the full tile or the corner piece its four corners ask for),
objects placed on cells and checked against what they cover, exits, script cells and
the places where people stand (object layer "people", string property "person"). The
maps are checked before they are written: the start cell is walkable and no exit, every
exit cell and every person can be reached on foot from the start cell. Running this
again rewrites the maps; edit the rules here rather than the TMX files, or stop using
the script once the maps are edited in Tiled.
"""
import math
import random
import re
import sys
from collections import deque

N = 50

# Ground types of tiles.ini by name, their picture counts, and the corner-piece types
# between two grounds: (base, other) -> type, the mask marking the other ground.
GROUND = {'grass': 1, 'dirt': 2, 'stone': 3, 'sand': 4, 'water': 5, 'cave': 6, 'rock': 11, 'ash': 12, 'scorch': 15}
PICTURES = {1: 12, 2: 10, 3: 10, 4: 10, 5: 16, 6: 10, 11: 10, 12: 10, 15: 10}
PIECES = {('grass', 'dirt'): 7, ('grass', 'stone'): 8, ('grass', 'sand'): 9, ('grass', 'water'): 10,
          ('cave', 'rock'): 13, ('grass', 'ash'): 14, ('ash', 'scorch'): 16}
TILE_TYPES = list(range(1, 17))
FIRSTGID = {t: 1 + 200 * (t - 1) for t in TILE_TYPES}   # each tileset holds 200 places
OBJECTS_FIRSTGID = 1 + 200 * len(TILE_TYPES)
# Grounds nobody walks on: blocked by type (blocking_types), and corner pieces where
# they take two corners or more are painted into the block layer.
HARD = ('water', 'rock')
BLOCK_MARK = FIRSTGID[5] + 15  # any tile marks a blocked cell in the block layer

OBJECTS = {}


def load_objects(tsx_path, manifest_path):
    names = re.findall(r'<property name="name" value="([^"]+)"', open(tsx_path).read())
    for line in open(manifest_path):
        if line.startswith('#') or not line.strip():
            continue
        f = dict(kv.split('=', 1) for kv in line.split())
        x, y, w, h = map(int, f['rect'].split(','))
        ax, ay = map(int, f['anchor'].split(','))
        cells = lambda key: [tuple(map(int, p.split(','))) for p in f.get(key, '').split(';') if p]
        OBJECTS[f['name']] = dict(w=w, h=h, ax=ax, ay=ay, block=cells('block'), walk=cells('walk'),
                                  id=names.index(f['name']))


def box(i, j):
    return 1568 - 32 + (i - j) * 32, (i + j) * 16


def dist_segment(px, py, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    l2 = dx * dx + dy * dy
    t = 0 if l2 == 0 else max(0.0, min(1.0, ((px - ax) * dx + (py - ay) * dy) / l2))
    return math.hypot(px - ax - t * dx, py - ay - t * dy)


class Map:
    def __init__(self, name, seed, base='grass'):
        self.name = name
        self.rng = random.Random(seed)
        self.vertex = [[base] * (N + 1) for _ in range(N + 1)]
        self.block = set()      # cells blocked by hand
        self.used = set()       # cells taken by objects, kept clear, or crossed by exits
        self.objects = []       # (i, j, name)
        self.rects = []         # (i0, j0, i1, j1, [(key, value)...])
        self.people = []        # (i, j, person)
        self.props = []
        self.start = None

    # ---- terrain on vertices
    def paint(self, a, b, t):
        if 0 <= a <= N and 0 <= b <= N:
            self.vertex[a][b] = t

    def paint_where(self, t, test, only=None):
        for a in range(N + 1):
            for b in range(N + 1):
                if (only is None or self.vertex[a][b] in only) and test(a, b):
                    self.vertex[a][b] = t

    def path(self, t, points, width, only=None):
        """Paints ground t along a polyline of vertex points, width in vertices."""
        def near(a, b):
            return any(dist_segment(a, b, *points[k], *points[k + 1]) <= width / 2.0
                       for k in range(len(points) - 1))
        self.paint_where(t, near, only)

    def disk(self, t, ca, cb, r, only=None):
        self.paint_where(t, lambda a, b: math.hypot(a - ca, b - cb) <= r, only)

    def rect(self, t, a0, b0, a1, b1, only=None):
        self.paint_where(t, lambda a, b: a0 <= a <= a1 and b0 <= b <= b1, only)

    def settle(self, base, priority, apart=()):
        """Where two grounds without corner pieces between them would meet in one cell,
        the ground earlier in priority gives way to the base ground (a strip of grass
        between a road and the square, say)."""
        rank = {g: k for k, g in enumerate(priority)}
        def joins(x, y):
            if (x, y) in apart or (y, x) in apart:
                return False
            return x == y or (x, y) in PIECES or (y, x) in PIECES
        changed = True
        while changed:
            changed = False
            for a in range(N + 1):
                for b in range(N + 1):
                    x = self.vertex[a][b]
                    if x == base:
                        continue
                    for da in (-1, 0, 1):
                        for db in (-1, 0, 1):
                            c, d = a + da, b + db
                            if not (0 <= c <= N and 0 <= d <= N):
                                continue
                            y = self.vertex[c][d]
                            if not joins(x, y) and rank.get(x, 99) < rank.get(y, 99):
                                self.vertex[a][b] = base
                                changed = True
                                break
                        if self.vertex[a][b] == base:
                            break

    def corners(self, i, j):
        v = self.vertex
        return [v[i][j], v[i + 1][j], v[i + 1][j + 1], v[i][j + 1]]

    def cell_ground(self, i, j):
        """(full ground or None, piece type or None, mask, other ground)."""
        c = self.corners(i, j)
        kinds = sorted(set(c))
        if len(kinds) == 1:
            return kinds[0], None, 0, None
        if len(kinds) > 2:
            raise SystemExit(f'{self.name}: cell ({i},{j}) has three grounds {c}')
        a, b = kinds
        if (a, b) in PIECES:
            base, other = a, b
        elif (b, a) in PIECES:
            base, other = b, a
        else:
            raise SystemExit(f'{self.name}: cell ({i},{j}): no pieces join {a} and {b}')
        mask = sum(bit for bit, g in zip((8, 4, 2, 1), c) if g == other)
        return None, PIECES[(base, other)], mask, other

    def hard_corners(self, i, j):
        return sum(1 for g in self.corners(i, j) if g in HARD)

    def ground_kind(self, i, j):
        """The ground a cell mostly shows: its full ground, or for pieces the ground
        of most corners (ties go to the other ground)."""
        full, _, mask, other = self.cell_ground(i, j)
        if full:
            return full
        n = bin(mask).count('1')
        base = [g for g in self.corners(i, j) if g != other][0]
        return other if n >= 2 else base

    def all_corners(self, i, j, grounds):
        return all(g in grounds for g in self.corners(i, j))

    # ---- walkability as the map compiler will write it
    def terrain_blocked(self, i, j):
        return (i, j) in self.block or self.hard_corners(i, j) >= 2

    def object_cells(self, i, j, name):
        o = OBJECTS[name]
        return [(i + di, j + dj) for di, dj in o['block']], [(i + di, j + dj) for di, dj in o['walk']]

    def walkable_grid(self):
        grid = [[not self.terrain_blocked(i, j) for j in range(N)] for i in range(N)]
        walk = []
        for i, j, name in self.objects:
            blocked, w = self.object_cells(i, j, name)
            for a, b in blocked:
                if 0 <= a < N and 0 <= b < N:
                    grid[a][b] = False
            walk += w
        for a, b in walk:
            if 0 <= a < N and 0 <= b < N:
                grid[a][b] = True
        return grid

    # ---- objects
    def free(self, i, j, grounds=None, margin=0):
        for a in range(i - margin, i + margin + 1):
            for b in range(j - margin, j + margin + 1):
                if not (0 <= a < N and 0 <= b < N):
                    return False
                if (a, b) in self.used or self.terrain_blocked(a, b):
                    return False
                if grounds is not None and not self.all_corners(a, b, grounds):
                    return False
        return True

    def place(self, i, j, name, grounds=None, margin=0, force=False):
        o = OBJECTS[name]
        cells = [(i + di, j + dj) for di, dj in o['block'] + o['walk']] or [(i, j)]
        if not force:
            for a, b in cells:
                if not self.free(a, b, grounds, margin):
                    return False
        self.objects.append((i, j, name))
        self.used.update(cells)
        self.used.add((i, j))
        return True

    def must(self, i, j, name, **kw):
        if not self.place(i, j, name, **kw):
            raise SystemExit(f'{self.name}: {name} does not fit at ({i},{j})')

    def scatter(self, names, count, region, grounds=('grass',), margin=1, tries=6000, keep_clear=()):
        placed = 0
        for _ in range(tries):
            if placed >= count:
                break
            i = self.rng.randrange(region[0], region[2])
            j = self.rng.randrange(region[1], region[3])
            if any(a0 <= i < a1 and b0 <= j < b1 for a0, b0, a1, b1 in keep_clear):
                continue
            if self.place(i, j, self.rng.choice(names), grounds, margin):
                placed += 1
        return placed

    def clear_below(self, i, j, depth=8, width=2):
        """Keeps tall things (trees, houses) off the cells below (i, j) on the screen
        whose pictures would rise over it: up to depth rows further down, width columns
        to either side."""
        for a in range(i, i + depth + 1):
            for b in range(j, j + depth + 1):
                rows, cols = (a + b) - (i + j), (a - b) - (i - j)
                if 1 <= rows <= depth and abs(cols) <= width:
                    self.used.add((a, b))

    def keep_view(self, grounds, depth=8):
        """Nothing tall hides a walker on a cell touching these grounds."""
        for i in range(N):
            for j in range(N):
                if any(g in grounds for g in self.corners(i, j)):
                    self.clear_below(i, j, depth)

    def keep_view_of(self, names, depth=8):
        """Nothing tall hides the placed objects of these names or the people placed
        so far."""
        cells = [(i, j) for i, j, _ in self.people]
        for i, j, name in self.objects:
            if name in names:
                blocked, walk = self.object_cells(i, j, name)
                cells += blocked + walk + [(i, j)]
        for i, j in cells:
            self.clear_below(i, j, depth)

    def reserve(self, i0, j0, i1, j1):
        for a in range(i0, i1):
            for b in range(j0, j1):
                self.used.add((a, b))

    # ---- exits, scripts, people
    def exit(self, no, i0, j0, i1, j1, target, label):
        self.rects.append((i0, j0, i1, j1, [('exit', no), ('target', target), ('label', label)]))
        self.reserve(i0, j0, i1, j1)

    def script(self, no, i0, j0, i1, j1, name):
        self.rects.append((i0, j0, i1, j1, [('script', no), ('name', name)]))
        self.reserve(i0, j0, i1, j1)

    def person(self, i, j, who):
        self.people.append((i, j, who))
        self.used.add((i, j))

    # ---- checks
    def check(self):
        grid = self.walkable_grid()
        si, sj = self.start
        exits = set()
        scripts = set()
        for i0, j0, i1, j1, props in self.rects:
            cells = {(a, b) for a in range(i0, i1) for b in range(j0, j1)}
            if props[0][0] == 'exit':
                exits |= cells
                for a, b in cells:
                    if not grid[a][b]:
                        raise SystemExit(f'{self.name}: exit cell ({a},{b}) is blocked')
            else:
                scripts |= cells
        if not grid[si][sj] or (si, sj) in exits or (si, sj) in scripts:
            raise SystemExit(f'{self.name}: start ({si},{sj}) is blocked, an exit or a script cell')
        seen = {(si, sj)}
        queue = deque([(si, sj)])
        while queue:
            a, b = queue.popleft()
            for da, db in ((1, 0), (-1, 0), (0, 1), (0, -1)):
                c = (a + da, b + db)
                if 0 <= c[0] < N and 0 <= c[1] < N and c not in seen and grid[c[0]][c[1]]:
                    seen.add(c)
                    queue.append(c)
        for i0, j0, i1, j1, props in self.rects:
            cells = {(a, b) for a in range(i0, i1) for b in range(j0, j1)}
            if not cells & seen:
                raise SystemExit(f'{self.name}: {props} cannot be reached from the start')
        for i, j, who in self.people:
            if (i, j) not in seen or (i, j) in exits or (i, j) in scripts:
                raise SystemExit(f'{self.name}: {who} at ({i},{j}) stands where nobody can reach or on an exit')
        return len(seen)

    # ---- output
    def tmx(self):
        ground, blocklayer = [], []
        for j in range(N):
            row_g, row_b = [], []
            for i in range(N):
                full, piece, mask, other = self.cell_ground(i, j)
                if full:
                    t = GROUND[full]
                    n = PICTURES[t]
                    if t == 1:
                        k = self.rng.randrange(8) if self.rng.random() < 0.9 else 8 + self.rng.randrange(4)
                    else:
                        k = self.rng.randrange(n)
                    gid = FIRSTGID[t] + k
                else:
                    gid = FIRSTGID[piece] + mask - 1 + 14 * self.rng.randrange(2)
                row_g.append(str(gid))
                hard_full = full in HARD
                row_b.append(str(BLOCK_MARK) if self.terrain_blocked(i, j) and not hard_full else '0')
            ground.append(','.join(row_g))
            blocklayer.append(','.join(row_b))
        nobj = len(self.objects) + len(self.rects) + len(self.people)
        out = ['<?xml version="1.0" encoding="UTF-8"?>',
               '<map version="1.10" tiledversion="1.10.0" orientation="isometric" renderorder="right-down" '
               f'width="{N}" height="{N}" tilewidth="64" tileheight="32" infinite="0" nextlayerid="7" '
               f'nextobjectid="{nobj + 1}">',
               ' <properties>']
        for k, v in self.props:
            kind = ' type="int"' if isinstance(v, int) else ''
            out.append(f'  <property name="{k}"{kind} value="{v}"/>')
        out.append(' </properties>')
        for t in TILE_TYPES:
            out.append(f' <tileset firstgid="{FIRSTGID[t]}" source="tilesets/tiles_{t}.tsx"/>')
        out.append(f' <tileset firstgid="{OBJECTS_FIRSTGID}" source="tilesets/objects.tsx"/>')
        for lid, lname, rows, extra in ((1, 'ground', ground, ''), (2, 'block', blocklayer, ' opacity="0.5"')):
            out.append(f' <layer id="{lid}" name="{lname}" width="{N}" height="{N}"{extra}>')
            out.append('  <data encoding="csv">')
            out.append(',\n'.join(rows))
            out.append('</data>')
            out.append(' </layer>')
        oid = 1
        out.append(' <objectgroup id="3" name="objects">')

        def depth(o):
            i, j, name = o
            cells = [(i + di, j + dj) for di, dj in OBJECTS[name]['block'] + OBJECTS[name]['walk']] or [(i, j)]
            ci = sum(c[0] for c in cells) / len(cells)
            cj = sum(c[1] for c in cells) / len(cells)
            return (ci + cj, ci)
        # Back to front: objects further up the screen are drawn first.
        for i, j, name in sorted(self.objects, key=depth):
            o = OBJECTS[name]
            bx, by = box(i, j)
            wx, wy = bx - o['ax'], by - o['ay']
            px, py = wx + o['w'] / 2, wy + o['h']
            ox, oy = (2 * py + px - 1568) / 2, (2 * py - px + 1568) / 2
            out.append(f'  <object id="{oid}" name="{name}" gid="{OBJECTS_FIRSTGID + o["id"]}" '
                       f'x="{ox:g}" y="{oy:g}" width="{o["w"]}" height="{o["h"]}"/>')
            oid += 1
        out.append(' </objectgroup>')
        for gid_, gname, kind in ((4, 'exits', 'exit'), (5, 'scripts', 'script')):
            out.append(f' <objectgroup id="{gid_}" name="{gname}">')
            for i0, j0, i1, j1, rprops in self.rects:
                if rprops[0][0] != kind:
                    continue
                label = dict(rprops).get('label', dict(rprops).get('name', ''))
                out.append(f'  <object id="{oid}" name="{label}" x="{32 * i0}" y="{32 * j0}" '
                           f'width="{32 * (i1 - i0)}" height="{32 * (j1 - j0)}">')
                out.append('   <properties>')
                for k, v in rprops:
                    kind_ = ' type="int"' if isinstance(v, int) else ''
                    out.append(f'    <property name="{k}"{kind_} value="{v}"/>')
                out.append('   </properties>')
                out.append('  </object>')
                oid += 1
            out.append(' </objectgroup>')
        out.append(' <objectgroup id="6" name="people">')
        for i, j, who in self.people:
            out.append(f'  <object id="{oid}" name="{who}" x="{32 * i + 16}" y="{32 * j + 16}">')
            out.append('   <properties>')
            out.append(f'    <property name="person" value="{who}"/>')
            out.append('   </properties>')
            out.append('   <point/>')
            out.append('  </object>')
            oid += 1
        out.append(' </objectgroup>')
        out.append('</map>')
        return '\n'.join(out) + '\n'


def wavy(a, base, amp, period, phase=0.0):
    return base + amp * math.sin(a / period + phase)


# ------------------------------------------------------------------------ Ashvale

def ashvale():
    m = Map('main', 1)
    # The river along the lower-left edge (high second index), wavering.
    m.paint_where('water', lambda a, b: b >= 44 + round(1.5 * math.sin(a / 5.0)))
    # The paved square round the start, roads east to Greywood, west to the shrine
    # road and south to the jetty.
    # Paved streets from the square to the east and west gates; dirt lanes to the
    # jetty, the smithy and the fields.
    m.paint_where('stone', lambda a, b: abs(a - 25) + abs(b - 25) <= 5)
    m.path('stone', [(27, 22.5), (50, 22.5)], 1.2)
    m.path('stone', [(0, 25.5), (21, 25.5)], 1.2)
    m.path('dirt', [(25.5, 32), (25.5, 42)], 1.2, only=('grass',))
    m.path('dirt', [(33, 25), (35, 29)], 1.0, only=('grass',))
    # Field plots to the west and north-west, and the smith's yard.
    m.rect('dirt', 5, 32, 11, 37)
    m.rect('dirt', 8, 9, 13, 14)
    m.settle('grass', ['dirt', 'stone', 'water'])
    m.start = (25, 25)
    m.reserve(23, 23, 28, 28)
    # Exits: east to Greywood (exit 1), west to the Ember Shrine (exit 3).
    m.exit(1, 48, 20, 50, 26, 'greywood.map', 'To Greywood')
    m.exit(3, 0, 23, 2, 29, 'shrine.map', 'To Ember Shrine')
    m.reserve(44, 20, 48, 26)
    m.reserve(2, 23, 5, 29)
    # Houses round the square; Elder Maren's stone house to the south-west.
    for i, j, name in [(18, 17, 'cottage'), (29, 15, 'cottage'), (17, 29, 'stonehouse'), (31, 27, 'stonehouse'),
                       (12, 20, 'cottage'), (35, 16, 'stonehouse'), (30, 33, 'cottage'), (19, 36, 'cottage'),
                       (37, 27, 'cottage_r'), (13, 27, 'cottage_r')]:
        m.must(i, j, name)
    m.must(22, 22, 'well')
    # The market north of the east road: Fen's and Pell's stalls, and a third.
    m.must(26, 19, 'stall')
    m.must(31, 19, 'stall')
    m.must(34, 20, 'stall')
    for i, j, name in [(28, 19, 'crates'), (33, 19, 'barrels'), (36, 20, 'crates')]:
        m.place(i, j, name)
    # Brannoc's smithy by his stone house, Oda's stand by her cottage.
    m.must(34, 29, 'forge')
    m.must(33, 30, 'anvil')
    m.must(35, 31, 'weaponrack')
    m.must(29, 36, 'armorstand')
    m.must(28, 37, 'barrels')
    # Signposts at the gates, the jetty on the river.
    m.must(46, 19, 'signpost')
    m.must(3, 22, 'signpost')
    m.must(25, 42, 'bridge_v', force=True)
    m.must(24, 41, 'barrels')
    # Fields: wheat and cabbages in the plots, fences round the western one.
    for i in range(5, 11):
        for j in range(32, 37):
            m.place(i, j, 'wheat' if j < 35 else 'cabbages', ('dirt',))
    for i in range(8, 13):
        for j in range(9, 14):
            m.place(i, j, 'cabbages' if (i + j) % 3 else 'herbs', ('dirt',))
    for i in range(4, 12):
        m.place(i, 31, 'fence_u')
        m.place(i, 38, 'fence_u')
    for j in range(32, 38):
        m.place(3, j, 'fence_v')
        if j not in (34, 35):
            m.place(12, j, 'fence_v')
    # The village graveyard by the shrine road.
    for i, j in [(6, 18), (8, 18), (10, 18), (6, 20), (8, 20)]:
        m.place(i, j, 'grave')
    m.place(11, 21, 'deadtree')
    # Reeds along the bank.
    for a in range(0, N):
        for b in range(36, N):
            if m.cell_ground(a, b)[1] == 10 and m.hard_corners(a, b) <= 1 and m.rng.random() < 0.35:
                m.place(a, b, 'reeds')
    # People.
    for i, j, who in [(18, 32, 'elder_maren'), (32, 31, 'brannoc'), (30, 38, 'oda'), (31, 21, 'fen'),
                      (34, 22, 'pell'), (45, 21, 'guard'), (45, 25, 'guard'), (5, 24, 'guard'),
                      (23, 26, 'villager_f'), (21, 24, 'villager_m'), (27, 27, 'child'), (13, 35, 'villager_m'),
                      (25, 45, 'villager_m'), (16, 24, 'villager_f')]:
        m.person(i, j, who)
    m.keep_view_of(('cottage', 'stonehouse', 'cottage_r', 'stonehouse_r', 'stall', 'forge', 'anvil',
                    'weaponrack', 'armorstand', 'well', 'bridge_v'))
    # Trees and bushes round the village, thicker towards the edges.
    m.keep_view(('stone', 'dirt'))
    m.scatter(['oak', 'oak2', 'pine'], 26, (1, 1, 49, 13), margin=1)
    m.scatter(['oak', 'oak2', 'pine2'], 16, (38, 1, 49, 44), margin=1)
    m.scatter(['oak', 'pine', 'deadtree'], 10, (1, 13, 10, 42), margin=1)
    m.scatter(['bush', 'bush_berry', 'rocks', 'stump'], 18, (2, 2, 48, 42), margin=0)
    m.props = [('name', 'Ashvale'), ('music', 'village.ogg'), ('start_x', 25), ('start_y', 25),
               ('blocking_types', '5,11')]
    return m


# ------------------------------------------------------------------------ Greywood

def greywood():
    m = Map('greywood', 2)
    road = {a: 22 + round(3 * math.sin(a / 8.0)) for a in range(N + 1)}
    m.path('dirt', [(a, road[a] + 0.5) for a in range(N + 1)], 1.2)
    # The branch north to the Old Mine and the path south to Lisse's hut.
    m.path('dirt', [(25.5, 22), (26.5, 15), (29.5, 9), (29.5, 6)], 1.4)
    m.path('dirt', [(33, 23), (36, 26), (36.5, 30)], 1.6)
    # A pond in the south-west.
    m.disk('water', 14, 37, 3.3)
    m.start = (25, 22)
    m.reserve(23, 20, 28, 25)
    m.exit(2, 0, 19, 2, 26, 'main.map', 'To Ashvale')
    m.exit(5, 48, 18, 50, 25, 'ford.map', 'To Greycloak Ford')
    # The cave mouth of the mine: its threshold cell (base + (1, 1)) leads in.
    m.must(28, 4, 'cave')
    m.exit(7, 29, 5, 30, 6, 'mine.map', 'To Old Mine')
    m.must(24, 19, 'signpost')
    m.must(26, 6, 'lantern')
    m.must(31, 6, 'crates')
    m.place(32, 6, 'cart')
    m.place(27, 7, 'barrels')
    # Lisse's hut in its clearing, with her herb beds.
    m.must(33, 29, 'cottage_r')
    for i, j in [(31, 33), (32, 33), (31, 34), (32, 34), (33, 34), (33, 33)]:
        m.place(i, j, 'herbs')
    m.must(36, 33, 'barrels')
    for i in range(30, 35):
        m.place(i, 36, 'fence_u')
    for j in range(32, 36):
        m.place(29, j, 'fence_v')
    m.place(27, 32, 'bush_berry')
    m.place(28, 30, 'bush_berry')
    m.reserve(27, 25, 41, 40)
    for i, j, who in [(36, 31, 'lisse'), (38, 20, 'wolf'), (42, 24, 'wolf'), (27, 12, 'wolf'), (30, 15, 'wolf'),
                      (12, 23, 'wolf'), (44, 19, 'wolf'), (18, 22, 'wolf'), (33, 23, 'wolf')]:
        m.person(i, j, who)
    m.keep_view_of(('cottage_r', 'herbs', 'cave', 'signpost'))
    # Keep the roads in view, then the forest everywhere else.
    for a in range(N):
        m.reserve(a, road[a] - 2, a + 1, road[a] + 4)
    m.keep_view(('dirt',))
    m.scatter(['pine', 'pine2', 'oak', 'oak2', 'pine'], 300, (0, 0, 50, 50), margin=0, tries=20000)
    m.scatter(['deadtree', 'stump', 'bush', 'bush_berry', 'rocks', 'boulder', 'bush'], 60, (0, 0, 50, 50), margin=0)
    m.props = [('name', 'Greywood'), ('music', 'forest.ogg'), ('start_x', 25), ('start_y', 22),
               ('blocking_types', '5,11')]
    return m


# ------------------------------------------------------------------------ Greycloak Ford

def ford():
    m = Map('ford', 3)
    bridge_row = 25  # the deck covers rows 25 and 26
    # The river runs across the map along the second index; it keeps straight where
    # the bridge spans it (water on vertex columns 20-24: blocked cells 19-24).
    def shift(b):
        ease = min(1.0, max(0.0, (abs(b - 26) - 4) / 6.0))
        return round(2.5 * math.sin((b - 26) / 6.0) * ease)
    m.paint_where('water', lambda a, b: 20 + shift(b) <= a <= 24 + shift(b))
    m.path('dirt', [(0, 26), (18, 26)], 2.2)
    m.path('dirt', [(26, 26), (50, 26)], 2.2)
    # The trodden ground of the camp inside its palisade.
    m.disk('dirt', 36, 14, 4.5)
    m.path('dirt', [(36, 16), (36.5, 24)], 1.6)
    m.settle('grass', ['dirt', 'water'])
    m.start = (16, 26)  # on the near bank, the bridge and the river in view
    m.reserve(14, 25, 18, 28)
    m.exit(6, 0, 23, 2, 30, 'greywood.map', 'To Greywood')
    m.exit(9, 48, 23, 50, 30, 'keep.map', 'To Cinder Keep')
    m.reserve(44, 23, 48, 30)
    m.reserve(2, 23, 5, 30)
    m.must(19, bridge_row, 'bridge_u6', force=True)
    m.must(17, 24, 'signpost')
    m.must(27, 23, 'barrels')
    m.must(27, 29, 'crates')
    # The Greycloak camp north of the road on the far bank: a palisade ring open to
    # the road, tents round the fire, the banner, racks and stores.
    ring = []
    for i in range(29, 45):
        ring.append((i, 6, 'palisade_u'))
    for j in range(7, 22):
        ring.append((29, j, 'palisade_v'))
        ring.append((44, j, 'palisade_v'))
    for i in range(30, 44):
        if not 34 <= i <= 39:
            ring.append((i, 22, 'palisade_u'))
    for i, j, name in ring:
        m.place(i, j, name)
    m.must(36, 14, 'campfire')
    for i, j in [(31, 8), (35, 8), (39, 8), (41, 13), (31, 13), (40, 17)]:
        m.must(i, j, 'tent')
    m.must(37, 11, 'banner')
    m.must(33, 17, 'weaponrack')
    m.must(34, 11, 'weaponrack')
    for i, j, name in [(42, 8, 'crates'), (43, 10, 'barrels'), (30, 11, 'barrels'), (30, 19, 'crates'),
                       (43, 20, 'crates'), (33, 20, 'barrels')]:
        m.must(i, j, name)
    m.reserve(29, 6, 45, 23)
    for i, j, who in [(28, 24, 'bandit'), (28, 28, 'bandit'), (35, 16, 'bandit'), (39, 13, 'bandit'),
                      (33, 15, 'bandit'), (45, 27, 'bandit'), (37, 15, 'captain_vey')]:
        m.person(i, j, who)
    m.keep_view_of(('tent', 'banner', 'signpost'))
    # Reeds on both banks, then trees: a greenwood on the near side, burned stumps and
    # dead trees on the keep side.
    for a in range(N):
        for b in range(N):
            if m.cell_ground(a, b)[1] == 10 and m.hard_corners(a, b) <= 1 and not (17 <= a <= 26 and 24 <= b <= 28) \
                    and m.rng.random() < 0.45:
                m.place(a, b, 'reeds')
    m.keep_view(('dirt',))
    m.scatter(['pine', 'pine2', 'oak', 'oak2'], 60, (0, 0, 18, 50), margin=0, keep_clear=[(0, 22, 19, 31)])
    m.scatter(['bush', 'rocks', 'boulder', 'stump'], 14, (0, 0, 18, 50), margin=0, keep_clear=[(0, 22, 19, 31)])
    m.scatter(['deadtree', 'pine', 'pine2', 'stump', 'rocks', 'bush'], 60, (27, 0, 50, 50), margin=0,
              keep_clear=[(26, 22, 50, 31), (28, 5, 46, 24)])
    m.props = [('name', 'Greycloak Ford'), ('music', 'tense.ogg'), ('start_x', 16), ('start_y', 26),
               ('blocking_types', '5,11')]
    return m


# ------------------------------------------------------------------------ Old Mine

def mine():
    m = Map('mine', 4, base='rock')
    tunnels = [
        ([(0, 25), (22, 25)], 2.0),            # the gallery from the entrance
        ([(26, 25), (26, 11)], 2.0),           # north to the ore chamber
        ([(26, 25), (42, 25)], 2.0),           # east
        ([(42, 25), (42, 37)], 2.0),           # south to the deep chamber
        ([(28, 8), (42, 9), (42, 25)], 1.8),   # the old loop round
        ([(24, 29), (14, 40)], 1.8),           # down to the bone pit
        ([(12, 25), (10, 14)], 1.6),           # a side drift, fallen in
    ]
    for points, r in tunnels:
        m.path('cave', points, 2 * r)
    for ca, cb, r in [(26, 25, 5.5), (27, 8, 5.0), (40, 41, 5.5), (11, 42, 4.0), (9, 11, 3.2)]:
        m.disk('cave', ca, cb, r)
    m.start = (7, 25)
    m.exit(8, 0, 23, 2, 27, 'greywood.map', 'To Greywood')
    m.reserve(4, 23, 10, 27)
    m.reserve(2, 23, 4, 27)
    # Rails down the gallery into the hall, carts, timber frames over the gallery.
    for i in range(3, 22):
        if i not in (6, 7, 8):
            m.place(i, 25, 'rails_u')
    for i, j in [(22, 25), (23, 25)]:
        m.place(i, j, 'rails_u')
    m.must(24, 25, 'cart')
    m.must(27, 22, 'cart')
    def frame(i, j, name):
        # Posts on the tunnel's walls, four open cells between them.
        cells = [(i, j + k) if name == 'frame_v' else (i + k, j) for k in range(6)]
        if not (m.terrain_blocked(*cells[0]) and m.terrain_blocked(*cells[5]) and
                all(not m.terrain_blocked(*c) for c in cells[1:5])):
            raise SystemExit(f'mine: {name} at ({i},{j}) does not span a tunnel')
        m.must(i, j, name, force=True)
    for i in (4, 16, 20, 31, 36):
        frame(i, 22, 'frame_v')
    for j in (15, 19):
        frame(23, j, 'frame_u')
    # Lanterns, stores and bones; ore in the ore chamber; rock spires in the chambers.
    for i, j, name in [(22, 21, 'lantern'), (30, 28, 'lantern'), (24, 5, 'lantern'), (38, 38, 'lantern'),
                       (12, 40, 'lantern'), (22, 28, 'crates'), (29, 21, 'barrels'), (30, 22, 'crates'),
                       (9, 40, 'bones'), (12, 44, 'bones'), (13, 42, 'bones'), (39, 44, 'bones'), (43, 40, 'bones'),
                       (25, 11, 'bones'), (8, 10, 'timbers_v'), (10, 12, 'rubble'), (8, 13, 'rubble')]:
        m.place(i, j, name)
    for i, j in [(23, 6), (24, 10), (30, 6), (31, 9), (28, 4), (26, 12)]:
        m.place(i, j, 'ore')
    for i, j in [(36, 41), (43, 44), (37, 44), (9, 44), (14, 44), (28, 30), (21, 26)]:
        m.place(i, j, 'spire')
    m.scatter(['rubble', 'spire', 'ore'], 14, (0, 0, 50, 50), grounds=('cave',), margin=1,
              keep_clear=[(0, 21, 30, 30), (22, 3, 33, 14)])
    for i, j, who in [(14, 24, 'skeleton'), (24, 22, 'skeleton'), (28, 27, 'skeleton'), (26, 14, 'skeleton'),
                      (28, 9, 'skeleton'), (35, 25, 'skeleton'), (42, 18, 'skeleton'), (40, 39, 'skeleton'),
                      (42, 42, 'skeleton'), (11, 41, 'skeleton'), (36, 9, 'skeleton')]:
        m.person(i, j, who)
    m.props = [('name', 'Old Mine'), ('music', 'dungeon.ogg'), ('start_x', 7), ('start_y', 25),
               ('blocking_types', '5,11')]
    return m


# ------------------------------------------------------------------------ Ember Shrine

def shrine():
    m = Map('shrine', 5)
    cx, cy = 17, 17
    m.disk('stone', cx, cy, 6.5)
    m.path('stone', [(50, 32), (40, 31), (32, 27), (26, 22), (21, 20)], 1.6)
    m.path('stone', [(13, 14), (11.5, 12.5)], 1.4)
    m.settle('grass', ['stone'])
    m.start = (24, 22)  # where the path reaches the hilltop: the court in view
    m.reserve(23, 21, 26, 24)
    m.exit(4, 48, 29, 50, 35, 'main.map', 'To Ashvale')
    m.reserve(45, 29, 48, 35)
    # The stele and the altar before it; braziers and a ring of standing stones.
    m.must(cx, cy, 'shrine')
    m.script(2, cx, cy, cx + 2, cy + 2, 'shrine_altar.gsp')
    m.must(cx + 2, cy - 1, 'brazier')
    m.must(cx - 1, cy + 2, 'brazier')
    for k in range(8):
        ang = k * math.pi / 4 + math.pi / 8
        i, j = round(cx + 5.2 * math.cos(ang)), round(cy + 5.2 * math.sin(ang))
        if (i - cx) + (j - cy) > 4:  # leave the way in from the path open
            continue
        m.place(i, j, 'menhir')
    # The chapel of the Order, its graveyard, steps where the path climbs.
    m.must(9, 9, 'chapel')
    for i, j in [(5, 14), (7, 14), (5, 16), (7, 16), (5, 18)]:
        m.place(i, j, 'grave')
    m.place(4, 12, 'deadtree')
    for i, j in [(22, 20), (23, 21), (24, 21), (27, 23), (28, 24), (33, 27), (34, 28)]:
        m.place(i, j, 'steps_u')
    m.place(24, 23, 'brazier')
    m.place(21, 18, 'brazier')
    # Crags ring the hilltop; the slopes below carry pines and wind-bent dead trees.
    m.keep_view(('stone',))
    dirn = math.atan2(1, 1.2)  # where the path leaves the hilltop
    for ring, count, (r0, r1) in ((0, 22, (10.0, 11.0)), (1, 16, (12.5, 14.0))):
        for k in range(count):
            ang = (k + 0.5 * ring) * 2 * math.pi / count
            if abs(math.atan2(math.sin(ang - dirn), math.cos(ang - dirn))) < 0.42:
                continue
            r = r0 + m.rng.random() * (r1 - r0)
            m.place(round(cx + r * math.cos(ang)), round(cy + r * math.sin(ang)), 'crag' if ring == 0 else 'boulder')
    for k in range(40):
        ang = m.rng.random() * 2 * math.pi
        if abs(math.atan2(math.sin(ang - dirn), math.cos(ang - dirn))) < 0.45:
            continue
        r = 9 + m.rng.random() * 7
        m.place(round(cx + r * math.cos(ang)), round(cy + r * math.sin(ang)), m.rng.choice(['rocks', 'rocks', 'bush']))
    m.scatter(['rocks', 'boulder'], 10, (0, 0, 50, 50), margin=0, keep_clear=[(8, 8, 27, 27)])
    m.scatter(['pine', 'pine2', 'deadtree'], 60, (0, 0, 50, 50), margin=1, keep_clear=[(5, 5, 29, 29)])
    m.scatter(['bush', 'stump'], 12, (0, 0, 50, 50), margin=0, keep_clear=[(5, 5, 29, 29)])
    m.person(13, 13, 'brother_ivo')
    m.props = [('name', 'Ember Shrine'), ('music', 'calm.ogg'), ('start_x', 24), ('start_y', 22),
               ('blocking_types', '5,11')]
    return m


# ------------------------------------------------------------------------ Cinder Keep

def keep():
    m = Map('keep', 6, base='ash')
    # Grass by the road from the ford, burned ground round the keep, stone inside it
    # and a causeway to the gate.
    m.paint_where('grass', lambda a, b: a >= 45 + round(1.2 * math.sin(b / 4.0)))
    m.rect('scorch', 9, 9, 36, 42)
    m.rect('scorch', 36, 23, 43, 28)
    for ca, cb, r in [(27, 13, 2.5), (31, 35, 3), (23, 38, 2), (33, 19, 1.8), (15, 40, 1.5), (24, 26, 2.2),
                      (13, 29, 1.6), (17, 20, 1.5), (29, 30, 1.5)]:
        m.disk('ash', ca, cb, r, only=('scorch',))
    m.settle('ash', ['grass', 'scorch'], apart=[('grass', 'scorch')])
    m.start = (42, 25)
    m.reserve(39, 22, 46, 29)
    m.exit(10, 48, 22, 50, 29, 'ford.map', 'To Greycloak Ford')
    m.reserve(46, 22, 48, 29)
    # Towers at the corners, tall walls on the far sides, broken walls on the near
    # sides (so the courtyard shows) with the gate and a breach.
    for i, j in [(7, 7), (35, 7), (7, 41), (35, 41)]:
        m.must(i, j, 'tower', force=True)
    towers = {(i + di, j + dj) for i, j in [(7, 7), (35, 7), (7, 41), (35, 41)] for di in (0, 1) for dj in (0, 1)}
    for j in range(9, 41):
        if (8, j) not in towers:
            m.place(8, j, 'kwall_v', force=True)
        if (36, j) not in towers and not 23 <= j <= 27:
            m.place(36, j, 'kwall_v_broken' if j % 5 else 'kwall_v', force=True)
    for i in range(9, 35):
        m.place(i, 8, 'kwall_u', force=True)
        if not 27 <= i <= 29:
            m.place(i, 42, 'kwall_u_broken', force=True)
    # The great hall at the far end: a tall wall on its far side, broken walls on the
    # near sides, the door facing the gate, a breach in its side.
    for i in range(9, 21):
        m.place(i, 14, 'kwall_u', force=True)
        if not 15 <= i <= 16:
            m.place(i, 36, 'kwall_u_broken', force=True)
    for j in range(15, 36):
        if not 23 <= j <= 27:
            m.place(20, j, 'kwall_v_broken', force=True)
    m.script(1, 20, 23, 21, 28, 'keep_hall.gsp')
    m.reserve(21, 22, 24, 29)
    m.must(10, 25, 'throne')
    for i in range(11, 20):
        m.place(i, 25, 'carpet_u')
    m.must(10, 22, 'brazier')
    m.must(10, 28, 'brazier')
    for i in (13, 16, 19):
        m.must(i, 18, 'pillar' if i != 16 else 'pillar_broken')
        m.must(i, 32, 'pillar' if i != 13 else 'pillar_broken')
    for i, j, name in [(15, 21, 'timbers'), (17, 29, 'rubble'), (12, 33, 'bones'), (18, 22, 'bones'),
                       (11, 16, 'rubble'), (17, 34, 'timbers'), (12, 20, 'bones'), (19, 29, 'bones'), (14, 35, 'rubble')]:
        m.place(i, j, name)
    # The courtyard: burned roof beams, rubble, a dry well, dead trees.
    for i, j, name in [(27, 12, 'timbers'), (31, 16, 'rubble'), (24, 34, 'timbers_v'), (30, 35, 'deadtree'),
                       (26, 13, 'deadtree'), (32, 30, 'rubble'), (23, 11, 'rubble'), (28, 38, 'bones'),
                       (33, 22, 'well'), (25, 20, 'bones'), (22, 40, 'rubble'), (34, 38, 'timbers'),
                       (23, 17, 'pillar_broken'), (30, 26, 'bones'), (22, 29, 'rubble'), (27, 35, 'rubble'),
                       (33, 11, 'timbers_v'), (29, 19, 'timbers'), (22, 22, 'bones'), (34, 26, 'rubble'),
                       (26, 9, 'rubble'), (32, 40, 'rubble'), (21, 36, 'bones'), (28, 30, 'timbers_v')]:
        m.place(i, j, name)
    for i, j, who in [(28, 16, 'skeleton'), (25, 31, 'skeleton'), (32, 34, 'skeleton'), (14, 22, 'skeleton'),
                      (14, 28, 'skeleton'), (30, 21, 'bandit'), (27, 27, 'bandit'), (13, 25, 'ash_knight')]:
        m.person(i, j, who)
    m.keep_view_of(())
    # Outside: burned fields, charred timbers, dead trees, graves by the road.
    for i, j in [(40, 19), (40, 31), (38, 21), (38, 29)]:
        m.place(i, j, 'grave')
    m.scatter(['deadtree', 'timbers', 'rubble', 'stump'], 26, (37, 0, 50, 50), grounds=('ash', 'grass'),
              margin=0, keep_clear=[(36, 20, 50, 31)])
    m.scatter(['deadtree', 'rubble', 'timbers_v', 'stump'], 16, (0, 0, 50, 50), grounds=('ash',), margin=0)
    m.props = [('name', 'Cinder Keep'), ('music', 'dark.ogg'), ('start_x', 42), ('start_y', 25),
               ('blocking_types', '5,11')]
    return m


def main():
    out_dir = sys.argv[1] if len(sys.argv) > 1 else 'content/maps'
    manifest = sys.argv[2] if len(sys.argv) > 2 else 'build/stage/manifest/objects.txt'
    load_objects(out_dir + '/tilesets/objects.tsx', manifest)
    for make in MAPS:
        m = make()
        reach = m.check()
        with open(f'{out_dir}/{m.name}.tmx', 'w', newline='\n') as f:
            f.write(m.tmx())
        print(f'{m.name}.tmx: {len(m.objects)} objects, {len(m.people)} people, {reach} cells reachable')


MAPS = [ashvale, greywood, ford, mine, shrine, keep]

if __name__ == '__main__':
    main()
