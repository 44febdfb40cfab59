#!/ usr / bin / env python3
"""Big-path benchmark jobs: one fill of one large or self-crossing path.

Usage:
    python3 gen_bigpaths.py OUTDIR [NAME ...]

Writes NAME.kjob into OUTDIR (created if missing) for every job, or only the
NAMEs given. Every page is A4 at 600 dpi (4960 x 7016 device pixels, bands of
128 rows, 8-bit grey rasters, page mode 5), painted black with the non-zero
rule; points are given in sixteenths of a pixel (SetScale 0.0625), so vertices
are not snapped to whole pixels. Randomness comes only from xorshift32 (the
job scripts' stream), so the files are reproducible; do not commit them.

    star-4k, star-16k, star-64k
             star-shaped polygon of 4,096 / 16,384 / 65,536 vertices about the
             page centre, vertices alternating between radius 2,400 px and
             1,200 px at equal angle steps
    triangles-20k
             20,000 triangles in one path (one subpath each), corners within
             32 px of a random point of the page
    zigzag-2k, zigzag-8k
             2,000 / 8,000 vertices alternating between x = 100 and x = 4,860 px
             at random y: each edge crosses about half of the others (about a
             million crossings for 2,000 vertices)
    random-32k
             one LinesTo of 32,767 random points of the page
    clip-star-4k, clip-star-16k
             the star of 4,096 / 16,384 vertices as the clip region, then the
             page rectangle and the same star turned by half a step filled
             through it
"""

import math
import os
import sys

PAGE_W, PAGE_H, BAND_H = 4960, 7016, 128


class XorShift32:
    def __init__(self, seed):
        self.state = seed or 1

    def next(self):
        s = self.state
        s ^= (s << 13) & 0xFFFFFFFF
        s ^= s >> 17
        s ^= (s << 5) & 0xFFFFFFFF
        self.state = s
        return s

    def below(self, n):
        return self.next() % n


def star(n, turn=0.0):
    cx, cy, outer, inner = PAGE_W / 2, PAGE_H / 2, 2400.0, 1200.0
    pts = []
    for i in range(n):
        r = outer if i % 2 == 0 else inner
        t = 2 * math.pi * (i + turn) / n
        pts.append((round(16 * (cx + r * math.cos(t))), round(16 * (cy + r * math.sin(t)))))
    return [pts]


def triangles(count, seed=1501):
    rng = XorShift32(seed)
    subpaths = []
    for _ in range(count):
        x = 32 + rng.below(PAGE_W - 64)
        y = 32 + rng.below(PAGE_H - 64)
        subpaths.append([(16 * x + rng.below(1024) - 512, 16 * y + rng.below(1024) - 512)
                         for _ in range(3)])
    return subpaths


def zigzag(n, seed=1502):
    rng = XorShift32(seed)
    return [[(16 * (100 if i % 2 == 0 else PAGE_W - 100), 16 * 100 + rng.below(16 * (PAGE_H - 200)))
             for i in range(n)]]


def random_points(n, seed=1503):
    rng = XorShift32(seed)
    return [[(rng.below(16 * PAGE_W), rng.below(16 * PAGE_H)) for _ in range(n)]]


PAGE_RECT = [[(0, 0), (16 * PAGE_W, 0), (16 * PAGE_W, 16 * PAGE_H), (0, 16 * PAGE_H)]]


def clipped_star(n):
    return [('Clip', star(n)), ('Fill', PAGE_RECT), ('Fill', star(n, 0.5))]

#Each job : a list of(operation, subpaths), every operation with the non - zero rule.
JOBS = {
    'star-4k': ('star-shaped polygon of 4,096 vertices', lambda: [('Fill', star(4096))]),
    'star-16k': ('star-shaped polygon of 16,384 vertices', lambda: [('Fill', star(16384))]),
    'star-64k': ('star-shaped polygon of 65,536 vertices', lambda: [('Fill', star(65536))]),
    'triangles-20k': ('20,000 triangles in one path', lambda: [('Fill', triangles(20000))]),
    'zigzag-2k': ('self-crossing zigzag of 2,000 vertices', lambda: [('Fill', zigzag(2000))]),
    'zigzag-8k': ('self-crossing zigzag of 8,000 vertices', lambda: [('Fill', zigzag(8000))]),
    'random-32k': ('one LinesTo of 32,767 random points',
                   lambda: [('Fill', random_points(32768))]),
    'clip-star-4k': ('page and star filled through a star of 4,096 vertices',
                     lambda: clipped_star(4096)),
    'clip-star-16k': ('page and star filled through a star of 16,384 vertices',
                      lambda: clipped_star(16384)),
}

CHUNK = 32767  # LinesTo takes at most this many points


def job_text(name, title, operations):
    out = [
        f'# {name}: {title}. Written by gen_bigpaths.py; do not edit.',
        f'Init {PAGE_W - 1} {PAGE_H - 1} {BAND_H} 600 0x8009',
        'NewPage 5',
        'SelectSpace 1',
        'SetMatrix [1 0 0 1 0 0]',
        'SetScale 0.0625',
        'SetLogicalFunc 0xF0',
        'SetColor 0x000000 0',
    ]
    for operation, subpaths in operations:
        for pts in subpaths:
            out.append(f'MoveTo {pts[0][0]} {pts[0][1]}')
            rest = pts[1:]
            for i in range(0, len(rest), CHUNK):
                chunk = rest[i:i + CHUNK]
                out.append(f'LinesTo [{" ".join(f"{x} {y}" for x, y in chunk)}] {len(chunk)}')
            out.append('ClosePath')
        out.append(f'{operation} 1')
    out += ['ClosePage', 'End', '']
    return '\n'.join(out)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    outdir = sys.argv[1]
    names = sys.argv[2:] or list(JOBS)
    os.makedirs(outdir, exist_ok=True)
    for name in names:
        title, make = JOBS[name]
        with open(os.path.join(outdir, name + '.kjob'), 'w') as f:
            f.write(job_text(name, title, make()))
        print(name)


if __name__ == '__main__':
    main()
