#!/usr/bin/env python3
"""Compares a PNG (8-bit grey or RGB, unfiltered, not interlaced) with a
binary PPM or PGM pixel for pixel, grey taken as R = G = B. Checks every
chunk's CRC.
Usage: same_picture.py A.png B.ppm"""
import struct
import sys
import zlib


def unfilter(data, width, height, bpp):
    """Rows of filter type 0 (none), the only one the example driver writes."""
    stride = width * bpp
    out = bytearray()
    for y in range(height):
        row = data[y * (stride + 1):(y + 1) * (stride + 1)]
        if row[0] != 0:
            raise ValueError(f'row {y}: filter {row[0]} (only 0 is read here)')
        out += row[1:]
    return out


def read_png(path):
    with open(path, 'rb') as f:
        blob = f.read()
    if blob[:8] != b'\x89PNG\r\n\x1a\n':
        raise ValueError('not a PNG')
    pos, idat, header = 8, b'', None
    while pos < len(blob):
        n, kind = struct.unpack('>I4s', blob[pos:pos + 8])
        body = blob[pos + 8:pos + 8 + n]
        (crc,) = struct.unpack('>I', blob[pos + 8 + n:pos + 12 + n])
        if zlib.crc32(kind + body) != crc:
            raise ValueError(f'bad CRC in {kind}')
        if kind == b'IHDR':
            header = struct.unpack('>IIBBBBB', body)
        elif kind == b'IDAT':
            idat += body
        pos += 12 + n
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (0, 2) or interlace != 0:
        raise ValueError('only 8-bit grey or RGB, not interlaced')
    bpp = 3 if colour == 2 else 1
    pixels = unfilter(zlib.decompress(idat), width, height, bpp)
    return width, height, pixels if bpp == 3 else bytes(v for v in pixels for _ in range(3))


def read_pnm(path):
    with open(path, 'rb') as f:
        blob = f.read()
    magic, width, height, _, body = blob.split(maxsplit=4)
    width, height = int(width), int(height)
    if magic == b'P5':
        return width, height, bytes(v for v in body[:width * height] for _ in range(3))
    return width, height, body[:width * height * 3]


def main():
    a, b = read_png(sys.argv[1]), read_pnm(sys.argv[2])
    if a[:2] != b[:2]:
        print(f'sizes differ: {a[:2]} and {b[:2]}')
        return 1
    if a[2] != b[2]:
        first = next(i for i in range(len(a[2])) if a[2][i] != b[2][i]) // 3
        print(f'pixels differ, first at ({first % a[0]}, {first // a[0]})')
        return 1
    print(f'same picture: {a[0]} x {a[1]}')
    return 0


if __name__ == '__main__':
    sys.exit(main())
