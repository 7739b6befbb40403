"""Drawing helpers for the sample covers.

Everything is drawn in units of a 1000 x 1000 square at a multiple of the final
size and reduced once at the end, which is what makes the edges smooth: Pillow
itself draws hard edges only.
"""

import functools
import math
import os
import random
import subprocess

from PIL import Image, ImageChops, ImageDraw, ImageFilter, ImageFont

# Each face lists files of Debian's fonts-inter and fonts-urw-base35 first, so that the
# sample looks the same on every machine that has them; fontconfig is asked only after that.
_FACES = {
    "black": ("inter/InterDisplay-Black.otf", "sans:weight=210"),
    "bold": ("inter/InterDisplay-Bold.otf", "sans:weight=200"),
    "medium": ("inter/InterDisplay-Medium.otf", "sans:weight=100"),
    "light": ("inter/InterDisplay-Light.otf", "sans:weight=50"),
    "gothic": ("urw-base35/URWGothic-Demi.otf", "sans:weight=200"),
    "gothic-book": ("urw-base35/URWGothic-Book.otf", "sans"),
    "serif": ("urw-base35/P052-Roman.otf", "serif"),
    "serif-bold": ("urw-base35/P052-Bold.otf", "serif:weight=200"),
    "serif-italic": ("urw-base35/P052-Italic.otf", "serif:slant=100"),
    "century": ("urw-base35/C059-Bold.otf", "serif:weight=200"),
    "condensed": ("urw-base35/NimbusSansNarrow-Bold.otf", "sans:weight=200"),
}


@functools.lru_cache(maxsize=None)
def _font_file(face):
    name, pattern = _FACES[face]
    path = os.path.join("/usr/share/fonts/opentype", name)
    if os.path.exists(path):
        return path
    found = subprocess.run(["fc-match", "-f", "%{file}", pattern], check=True, capture_output=True, text=True).stdout
    if not os.path.exists(found):
        raise RuntimeError("no usable font is installed (fonts-inter or any TrueType font)")
    return found


@functools.lru_cache(maxsize=256)
def _font(face, pixels):
    return ImageFont.truetype(_font_file(face), pixels)


def rgb(colour):
    """'#rrggbb' or a tuple to a tuple."""
    if isinstance(colour, tuple):
        return colour
    return tuple(int(colour[i : i + 2], 16) for i in (1, 3, 5))


def mix(a, b, t):
    """The colour a share t of the way from a to b."""
    a, b = rgb(a), rgb(b)
    return tuple(round(x + (y - x) * t) for x, y in zip(a, b))


class Canvas:
    """A square picture drawn in units of a thousandth of its side."""

    def __init__(self, pixels, oversample=2, seed=0, fill="#ffffff"):
        self.pixels = pixels
        self.n = pixels * oversample
        self.k = self.n / 1000.0
        self.random = random.Random(seed)
        self.image = Image.new("RGB", (self.n, self.n), rgb(fill))
        self.draw = ImageDraw.Draw(self.image)

    def finish(self, grain=5):
        """The reduced picture, with a little grain that hides the steps of gradients."""
        image = self.image
        if self.n != self.pixels:
            image = image.reduce(self.n // self.pixels)
        if grain:
            side = self.pixels
            noise = Image.frombytes("L", (side, side), self.random.randbytes(side * side))
            noise = noise.point([128 + round((v - 127.5) * grain / 127.5) for v in range(256)])
            noise = Image.merge("RGB", (noise, noise, noise))
            image = ImageChops.add(image, noise, scale=1, offset=-128)
        return image

    # -- masks ---------------------------------------------------------------------------

    def mask(self):
        layer = Image.new("L", (self.n, self.n), 0)
        return layer, ImageDraw.Draw(layer)

    def circle_mask(self, x, y, r):
        layer, draw = self.mask()
        draw.ellipse(self._box(x, y, r), fill=255)
        return layer

    def poly_mask(self, points):
        layer, draw = self.mask()
        draw.polygon(self._points(points), fill=255)
        return layer

    def paint(self, mask, fill, alpha=1.0, mode="normal"):
        """Puts a colour or a whole-canvas picture on through a mask.

        mode 'multiply' and 'screen' mix with what lies below, as inks and as light do."""
        box = mask.getbbox()
        if not box:
            return
        mask = mask.crop(box)
        if isinstance(fill, Image.Image):
            fill = fill.crop(box)
        else:
            fill = Image.new("RGB", mask.size, rgb(fill))
        if mode == "multiply":
            fill = ImageChops.multiply(self.image.crop(box), fill)
        elif mode == "screen":
            fill = ImageChops.screen(self.image.crop(box), fill)
        if alpha < 1.0:
            mask = mask.point([round(v * alpha) for v in range(256)])
        self.image.paste(fill, box[:2], mask)

    def shadow(self, mask, dx=0, dy=8, blur=14, alpha=0.35, colour="#000000"):
        """A soft shadow of the mask. Blurred at a quarter of the size: nobody sees the difference."""
        small = mask.resize((self.n // 4, self.n // 4), Image.BILINEAR)
        small = small.filter(ImageFilter.GaussianBlur(blur * self.k / 4))
        soft = small.resize((self.n, self.n), Image.BILINEAR)
        self.paint(ImageChops.offset(soft, round(dx * self.k), round(dy * self.k)), colour, alpha)

    # -- fills ---------------------------------------------------------------------------

    def linear(self, stops, angle=90):
        """A gradient picture; angle 90 runs from top to bottom, 0 from left to right.

        stops: colours at equal distances, or (position, colour) pairs."""
        ramp = Image.linear_gradient("L")
        turn = math.radians(angle)
        c, s = math.cos(turn), math.sin(turn)
        # maps the corners that lie farthest along the angle onto the ends of the 256 rows
        reach = 254.0 / self.n / (abs(c) + abs(s))
        ramp = ramp.transform(
            (self.n, self.n),
            Image.AFFINE,
            (0, 0, 128, reach * c, reach * s, 128 - self.n / 2 * reach * (c + s)),
            Image.BILINEAR,
        )
        return self._coloured(ramp, stops)

    def radial(self, x, y, r, stops):
        """A gradient from the centre (first stop) to the radius r (last stop) and on."""
        return self._coloured(self._distance(x, y, r), stops)

    def glow(self, x, y, r, colour, alpha=0.8):
        """Light around a point that fades to nothing at the radius r."""
        fade = self._distance(x, y, r).point([round(255 * alpha * (1 - v / 255) ** 2.2) for v in range(256)])
        self.paint(fade, colour, mode="screen")

    def _distance(self, x, y, r):
        """A mask of the distance from a point: 0 there, 255 from the radius r on."""
        # Pillow's own ramp reaches 255 in its corners only; here it does at the middle of its sides
        ramp = Image.radial_gradient("L").point([min(255, round(v * 1.4142)) for v in range(256)])
        scale = 128.0 / (r * self.k)
        return ramp.transform(
            (self.n, self.n),
            Image.AFFINE,
            (scale, 0, 128 - x * self.k * scale, 0, scale, 128 - y * self.k * scale),
            Image.BILINEAR,
            fillcolor=255,
        )

    def fill(self, picture):
        self.image.paste(picture, (0, 0))

    def _coloured(self, ramp, stops):
        if not isinstance(stops[0], tuple) or len(stops[0]) != 2:
            stops = [(i / (len(stops) - 1), s) for i, s in enumerate(stops)]
        stops = [(p, rgb(s)) for p, s in stops]
        tables = ([], [], [])
        for value in range(256):
            t = value / 255
            colour = stops[-1][1]
            for (p0, c0), (p1, c1) in zip(stops, stops[1:]):
                if t <= p0:
                    colour = c0
                    break
                if t <= p1:
                    colour = mix(c0, c1, (t - p0) / (p1 - p0))
                    break
            for table, channel in zip(tables, colour):
                table.append(channel)
        return Image.merge("RGB", [ramp.point(table) for table in tables])

    # -- shapes --------------------------------------------------------------------------

    def _box(self, x, y, r):
        k = self.k
        return ((x - r) * k, (y - r) * k, (x + r) * k, (y + r) * k)

    def _points(self, points):
        return [(x * self.k, y * self.k) for x, y in points]

    def circle(self, x, y, r, fill):
        self.draw.ellipse(self._box(x, y, r), fill=rgb(fill))

    def ring(self, x, y, r, width, colour):
        self.draw.ellipse(self._box(x, y, r), outline=rgb(colour), width=max(1, round(width * self.k)))

    def pie(self, x, y, r, start, end, fill):
        self.draw.pieslice(self._box(x, y, r), start, end, fill=rgb(fill))

    def rect(self, x0, y0, x1, y1, fill):
        k = self.k
        self.draw.rectangle((round(x0 * k), round(y0 * k), round(x1 * k) - 1, round(y1 * k) - 1), fill=rgb(fill))

    def poly(self, points, fill):
        self.draw.polygon(self._points(points), fill=rgb(fill))

    def line(self, points, width, colour):
        self.draw.line(self._points(points), fill=rgb(colour), width=max(1, round(width * self.k)), joint="curve")

    # -- lettering -----------------------------------------------------------------------

    def width(self, text, face, size, tracking=0):
        font = _font(face, max(1, round(size * self.k)))
        return font.getlength(text) / self.k + tracking * max(0, len(text) - 1)

    def fit(self, text, face, size, room, tracking=0):
        """The largest size up to the given one at which the text is no wider than the room."""
        wide = self.width(text, face, size, tracking)
        return size if wide <= room else size * room / wide

    def text(self, x, y, text, face, size, colour, tracking=0, anchor="ls"):
        """Writes with the baseline at y; anchor l, m or r says what x is. tracking: units."""
        font = _font(face, max(1, round(size * self.k)))
        if not tracking:
            self.draw.text((x * self.k, y * self.k), text, font=font, fill=rgb(colour), anchor=anchor)
            return
        wide = self.width(text, face, size, tracking)
        x -= {"l": 0, "m": wide / 2, "r": wide}[anchor[0]]
        for letter in text:
            self.draw.text((x * self.k, y * self.k), letter, font=font, fill=rgb(colour), anchor="l" + anchor[1])
            x += font.getlength(letter) / self.k + tracking

    def text_mask(self, text, face, size, x, y):
        """A mask of a line of text centred at x."""
        layer, draw = self.mask()
        draw.text((x * self.k, y * self.k), text, font=_font(face, round(size * self.k)), fill=255, anchor="ms")
        return layer

    def wrap(self, text, face, size, room):
        lines, line = [], ""
        for word in text.split():
            longer = (line + " " + word).strip()
            if line and self.width(longer, face, size) > room:
                lines.append(line)
                line = word
            else:
                line = longer
        return lines + [line] if line else lines

    # -- curves --------------------------------------------------------------------------

    def swell(self, y, height, step=8, parts=3, period=(420, 1100)):
        """A smooth random curve across the picture as points, a sum of slow sines."""
        waves = [
            (self.random.uniform(*period), self.random.uniform(0, math.tau), self.random.uniform(0.4, 1.0))
            for _ in range(parts)
        ]
        total = sum(w[2] for w in waves)
        return [
            (x, y + height * sum(a * math.sin(x * math.tau / p + f) for p, f, a in waves) / total)
            for x in range(-step, 1000 + 2 * step, step)
        ]

    def below(self, curve):
        """The area under a curve, as a polygon."""
        return curve + [(1010, 1010), (-10, 1010)]

    def blob(self, x, y, r, wobble=0.16, parts=4, steps=180, phase=None):
        """A closed, smooth, uneven circle."""
        waves = phase or [
            (n, self.random.uniform(0, math.tau), self.random.uniform(0.3, 1) / n) for n in range(2, 2 + parts)
        ]
        points = []
        for i in range(steps):
            a = math.tau * i / steps
            q = r * (1 + wobble * sum(w * math.sin(n * a + f) for n, f, w in waves))
            points.append((x + q * math.cos(a), y + q * math.sin(a)))
        return points
