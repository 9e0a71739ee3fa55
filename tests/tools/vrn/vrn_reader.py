#!/usr/bin/env python3
"""Reads a VRN1 game-data archive from its format alone and checks it against
the folder it was packed from: same files, same bytes.

usage: vrn_reader.py ARCHIVE SOURCE_DIR
"""
import os
import struct
import sys

CHUNK = 49152


def lz77_block(data, out_len):
    """Decodes one LZ77 block: 0+8 bits literal, 1+gamma length+offset of
    ceil(log2 W) bits; bits are read most significant first."""
    pos = 0  # bit position

    def bits(n):
        nonlocal pos
        v = 0
        for _ in range(n):
            byte = data[pos >> 3]
            v = (v << 1) | ((byte >> (7 - (pos & 7))) & 1)
            pos += 1
        return v

    out = bytearray()
    while len(out) < out_len:
        if bits(1) == 0:
            out.append(bits(8))
            continue
        q = 0
        while bits(1) == 1:
            q += 1
        length = 2 if q == 0 else (1 << q) + bits(q) + 1
        w = len(out)
        obits = (w - 1).bit_length() if w > 1 else 0
        off = bits(obits)
        assert off < w and length <= out_len - w, "bad match"
        for k in range(length):
            out.append(out[off + k])
    assert (pos + 7) // 8 <= len(data), "block overran its chunk"
    return bytes(out)


def read_archive(path):
    with open(path, "rb") as f:
        raw = f.read()
    magic, base, root_count = struct.unpack_from("<4sII", raw, 0)
    assert magic == b"VRN1", "bad magic"
    pos = 12
    files = {}
    queue = [(root_count, "")]
    while queue:
        count, parent = queue.pop(0)
        for _ in range(count):
            size, full, off, kind, comp, _r, nlen, _r2 = struct.unpack_from("<IIIBBHII", raw, pos)
            name = raw[pos + 24:pos + 24 + nlen].decode("latin-1")
            pos += 24 + nlen + 1
            rel = name if not parent else parent + "\\" + name
            if kind == 1:
                queue.append((size, rel))
                continue
            stored = raw[base + off:base + off + size]
            assert len(stored) == size, "entry beyond the end of the file"
            if not comp:
                assert size == full
                files[rel] = stored
                continue
            out = bytearray()
            p = 0
            while p < size:
                n = CHUNK if len(out) + CHUNK < full else full - len(out)
                (clen,) = struct.unpack_from("<H", stored, p)
                out += lz77_block(stored[p + 2:p + 2 + clen], n)
                p += 2 + clen
            assert len(out) == full and p == size
            files[rel] = bytes(out)
    return files


def main():
    archive, src = sys.argv[1], sys.argv[2]
    files = read_archive(archive)
    expected = {}
    for root, _dirs, names in os.walk(src):
        for n in names:
            full = os.path.join(root, n)
            rel = os.path.relpath(full, src).replace(os.sep, "\\")
            with open(full, "rb") as f:
                expected[rel] = f.read()
    if set(files) != set(expected):
        print("entries differ:", sorted(set(files) ^ set(expected)))
        return 1
    for k, v in expected.items():
        if files[k] != v:
            print("bytes differ:", k)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
