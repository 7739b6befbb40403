#!/usr/bin/python3
"""Makes the small pictures in the folder "images" beside this script, and of them the seeds of image_fuzz.

All show the same: a red, a green, a blue and a black quarter; but planar16.tiff is not to be read at all. Debian package: python3-pil.
"""
import io
import os
import struct
import zlib

from PIL import Image, ImageChops, ImageDraw

HERE = os.path.dirname(os.path.abspath(__file__))
picture = Image.new("RGB", (64, 48), "red")
picture.paste("lime", (32, 0, 64, 24))
picture.paste("blue", (0, 24, 32, 48))
picture.paste("black", (32, 24, 64, 48))


def write(name, data):
    for path, most in (os.path.join("images", name), None), (os.path.join("../../fuzz/seeds/image", name), 3000):
        path = os.path.join(HERE, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as target:
            target.write(data[:most])


def save(image, name, edit=bytes, **options):
    file = io.BytesIO()
    image.save(file, Image.registered_extensions()[os.path.splitext(name)[1]], **options)
    write(name, edit(file.getvalue()))


def transparent16():
    """A PNG picture of 16 bits a sample, in the middle of which a yellow square is transparent."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    marked = picture.copy()
    ImageDraw.Draw(marked).rectangle((28, 20, 35, 27), "yellow")
    rows = b"".join(b"\0" + bytes(value for x in range(64) for sample in marked.getpixel((x, y)) for value in (sample,) * 2)
                    for y in range(48))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 64, 48, 16, 2, 0, 0, 0))
            + chunk(b"tRNS", struct.pack(">HHH", 65535, 65535, 0)) + chunk(b"IDAT", zlib.compress(rows, 9))
            + chunk(b"IEND", b""))


def planar16():
    """A TIFF picture of 16 bits a sample, its colours one behind the other."""
    width, height, plane = 16, 12, 16 * 12 * 2
    after = 8 + 2 + 9 * 12 + 4
    data = after + 6 + 12 + 12
    fields = ((256, 4, 1, width), (257, 4, 1, height), (258, 3, 3, after), (259, 3, 1, 1), (262, 3, 1, 2),
              (273, 4, 3, after + 6), (277, 3, 1, 3), (279, 4, 3, after + 18), (284, 3, 1, 2))
    return (b"II*\0" + struct.pack("<IH", 8, len(fields)) + b"".join(struct.pack("<HHII", *field) for field in fields)
            + bytes(4) + struct.pack("<3H3I3I", *(16,) * 3, *(data + i * plane for i in range(3)), *(plane,) * 3)
            + bytes(3 * plane))


save(picture, "plain.jpg")
save(picture, "progressive.jpg", progressive=True)
save(picture.convert("CMYK"), "cmyk-adobe.jpg")
# without Adobe's marker ink is not inverted
save(ImageChops.invert(picture.convert("CMYK")), "cmyk.jpg", lambda data: data[:2] + data[18:])
turn = Image.Transpose
for orientation, method in enumerate((turn.FLIP_LEFT_RIGHT, turn.ROTATE_180, turn.FLIP_TOP_BOTTOM, turn.TRANSPOSE,
                                      turn.ROTATE_90, turn.TRANSVERSE, turn.ROTATE_270), 2):
    exif = Image.Exif()
    exif.endian = "<>"[orientation % 2]
    exif[0x0112] = orientation
    turned = picture.transpose(method)
    save(turned, f"exif-{orientation}.jpg", exif=exif)
    save(turned, f"exif-{orientation}.png", exif=exif)
    # some programs leave JPEG's mark in front; one such mark the library takes away
    save(turned, f"exif-{orientation}.webp", lossless=True, exif=b"Exif\0\0" * (orientation % 2 + 1) + exif.tobytes()[6:])
    save(turned, f"exif-{orientation}.tiff", compression="tiff_lzw", tiffinfo={0x0112: orientation})
save(picture, "plain.png")
save(picture.quantize(4), "palette.png")
write("transparent16.png", transparent16())
save(picture, "upwards.bmp")
flipped = picture.transpose(turn.FLIP_TOP_BOTTOM)
save(flipped, "downwards.bmp", lambda data: data[:22] + (-48).to_bytes(4, "little", signed=True) + data[26:])
save(picture.quantize(4), "animated.gif", save_all=True, append_images=[flipped.quantize(4)])
save(picture, "lossy.webp", quality=90)
save(picture, "lossless.webp", lossless=True)
save(picture, "lzw.tiff", compression="tiff_lzw")
write("planar16.tiff", planar16())
