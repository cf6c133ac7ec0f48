"""Decodes block streams written by texture_interop_test with Pillow's BCn
decoder and compares Pillow's pixels with the library's, byte for byte.

Usage: texture_pillow.py DIR. Each DIR/<name>.bin holds: width, height and
Pillow's BCn number as three little-endian 32-bit words, the block stream,
then the library's RGBA pixels (4 * width * height bytes)."""
import os
import struct
import sys

from PIL import Image


def main(folder):
    failures = 0
    count = 0
    for name in sorted(os.listdir(folder)):
        if not name.endswith(".bin"):
            continue
        with open(os.path.join(folder, name), "rb") as f:
            data = f.read()
        width, height, n = struct.unpack_from("<III", data, 0)
        pixels = 4 * width * height
        stream = data[12:len(data) - pixels]
        ours = data[len(data) - pixels:]
        theirs = Image.frombytes("RGBA", (width, height), stream, "bcn", n).tobytes()
        count += 1
        if theirs != ours:
            failures += 1
            for i in range(pixels):
                if theirs[i] != ours[i]:
                    p = i // 4
                    print(f"{name}: pixel ({p % width}, {p // width}) channel {i % 4}: "
                          f"Pillow {theirs[i]}, library {ours[i]}")
                    break
    print(f"{count} streams, {failures} differ")
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
