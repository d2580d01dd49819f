#!/usr/bin/env python3
"""Draws the sample picture (a pelorus: the sighting ring of a compass) and makes the sample icon of it.

Needs Pillow; the results are kept in resources/samples, so nobody has to run this to build.
"""
import io
import math
import pathlib
import struct

from PIL import Image, ImageDraw, ImageFilter

SIDE = 1024
SCALE = 2
OUT = pathlib.Path(__file__).resolve().parent.parent / "resources" / "samples"


def ring(draw, radius, width, fill):
    centre = SIDE * SCALE / 2
    r = radius * SCALE
    draw.ellipse([centre - r, centre - r, centre + r, centre + r], outline=fill, width=int(width * SCALE))


def disc(draw, radius, fill):
    centre = SIDE * SCALE / 2
    r = radius * SCALE
    draw.ellipse([centre - r, centre - r, centre + r, centre + r], fill=fill)


def at(angle, radius):
    """A point at so many degrees clockwise from north."""
    centre = SIDE * SCALE / 2
    a = math.radians(angle)
    return (centre + math.sin(a) * radius * SCALE, centre - math.cos(a) * radius * SCALE)


def picture():
    size = SIDE * SCALE
    canvas = Image.new("RGBA", (size, size), (0, 0, 0, 0))
    shadow = Image.new("RGBA", (size, size), (0, 0, 0, 0))
    disc(ImageDraw.Draw(shadow), 456, (10, 24, 40, 120))
    shadow = shadow.filter(ImageFilter.GaussianBlur(18 * SCALE))
    canvas.alpha_composite(shadow, (0, 14 * SCALE), (0, 0, size, size - 14 * SCALE))

    draw = ImageDraw.Draw(canvas)
    disc(draw, 450, (176, 132, 56, 255))
    ring(draw, 450, 10, (120, 84, 28, 255))
    disc(draw, 404, (16, 52, 84, 255))
    disc(draw, 388, (24, 78, 119, 255))
    for step in range(72):
        long = step % 6 == 0
        draw.line([at(step * 5, 412 if long else 420), at(step * 5, 440)], fill=(70, 46, 12, 255),
                  width=(10 if long else 4) * SCALE)
    for quarter, (light, dark) in enumerate([((236, 92, 72, 255), (190, 52, 44, 255))] +
                                            [((246, 246, 240, 255), (196, 204, 208, 255))] * 3):
        angle = quarter * 90
        draw.polygon([at(angle, 350), at(angle + 45, 86), (size / 2, size / 2)], fill=light)
        draw.polygon([at(angle, 350), at(angle - 45, 86), (size / 2, size / 2)], fill=dark)
    ring(draw, 214, 7, (150, 196, 220, 255))
    disc(draw, 42, (176, 132, 56, 255))
    disc(draw, 26, (246, 222, 160, 255))
    return canvas.resize((SIDE, SIDE), Image.LANCZOS)


def icon_block(image):
    """One 32-bit image as it stands in an icon file."""
    width, height = image.size
    pixels = image.tobytes("raw", "BGRA", 0, -1)
    stride = (width + 31) // 32 * 4
    alpha = image.getchannel("A")
    mask = bytearray(stride * height)
    for y in range(height):
        for x in range(width):
            if alpha.getpixel((x, height - 1 - y)) == 0:
                mask[y * stride + x // 8] |= 0x80 >> x % 8
    header = struct.pack("<IiiHHIIiiII", 40, width, height * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    return header + pixels + bytes(mask)


def main():
    OUT.mkdir(parents=True, exist_ok=True)
    logo = picture()
    logo.save(OUT / "pelorus.png", optimize=True)
    images = []
    for side in (48, 32, 16, 256):
        small = logo.resize((side, side), Image.LANCZOS)
        if side == 256:
            packed = io.BytesIO()
            small.save(packed, "PNG", optimize=True)
            images.append((side, packed.getvalue()))
        else:
            images.append((side, icon_block(small)))
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for side, data in images:
        directory += struct.pack("<BBBBHHII", side & 255, side & 255, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    (OUT / "sample.ico").write_bytes(directory + b"".join(data for _, data in images))


main()
