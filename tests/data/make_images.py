#!/usr/bin/python3
"""Makes the small pictures in the folder "images" beside this script, and of them the seeds of image_fuzz.

All show the same: a red, a green, a blue and a black quarter. Debian package: python3-pil.
"""
import io
import os

from PIL import Image, ImageChops

HERE = os.path.dirname(os.path.abspath(__file__))
picture = Image.new("RGB", (64, 48), "red")
picture.paste("lime", (32, 0, 64, 24))
picture.paste("blue", (0, 24, 32, 48))
picture.paste("black", (32, 24, 64, 48))


def save(image, name, edit=bytes, **options):
    file = io.BytesIO()
    image.save(file, Image.registered_extensions()[os.path.splitext(name)[1]], **options)
    for path, most in (os.path.join("images", name), None), (os.path.join("../../fuzz/seeds/image", name), 3000):
        path = os.path.join(HERE, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as target:
            target.write(edit(file.getvalue())[:most])


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
    save(picture.transpose(method), f"exif-{orientation}.jpg", exif=exif)
save(picture, "plain.png")
save(picture.quantize(4), "palette.png")
save(picture, "upwards.bmp")
flipped = picture.transpose(turn.FLIP_TOP_BOTTOM)
save(flipped, "downwards.bmp", lambda data: data[:22] + (-48).to_bytes(4, "little", signed=True) + data[26:])
save(picture.quantize(4), "animated.gif", save_all=True, append_images=[flipped.quantize(4)])
save(picture, "lossy.webp", quality=90)
save(picture, "lossless.webp", lossless=True)
save(picture, "lzw.tiff", compression="tiff_lzw")
