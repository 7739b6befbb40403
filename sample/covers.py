"""Posters for the sample albums: each design draws a title and an artist its own way.

A design is a function (canvas, title, artist, palette); the palette is a list of colours
whose meaning is the design's own. The large library draws the same designs with palettes
of its own making.
"""

import io
import math

from canvas import Canvas, mix

DESIGNS = {}


def design(*palette):
    """Registers a design under its function's name, with the palette it looks best in."""

    def register(function):
        DESIGNS[function.__name__] = (function, list(palette))
        return function

    return register


def render(name, title, artist, pixels=800, oversample=2, seed=1, palette=None, grain=5):
    """A finished cover as a Pillow image."""
    function, own = DESIGNS[name]
    canvas = Canvas(pixels, oversample, seed)
    function(canvas, title, artist, palette or own)
    return canvas.finish(grain)


def encode(image, kind="jpeg", quality=88):
    """A cover's bytes: kind 'jpeg', 'progressive' (JPEG), or 'png'."""
    out = io.BytesIO()
    if kind == "png":
        # 256 colours with dithering off keep the file at the size of a photograph's JPEG
        image.quantize(256, dither=0).convert("RGB").save(out, "PNG", optimize=False)
    else:
        image.save(out, "JPEG", quality=quality, progressive=(kind == "progressive"), optimize=True)
    return out.getvalue()


@design("#0b1026", "#1d2450", "#f5b642", "#ffe9b8", "#060816")
def night_line(c, title, artist, p):
    """A lit tram under a wide night sky."""
    night, dusk, lamp, light, ground = p
    c.fill(c.linear([night, dusk, mix(dusk, lamp, 0.35)], 90))
    for _ in range(140):
        x, y = c.random.uniform(0, 1000), c.random.uniform(0, 520)
        c.circle(x, y, c.random.choice((0.9, 1.2, 1.8)), mix(dusk, light, c.random.uniform(0.3, 0.9)))
    c.glow(500, 720, 640, lamp, 0.8)
    x = -10
    while x < 1000:
        wide, tall = c.random.uniform(46, 120), c.random.uniform(60, 210)
        c.rect(x, 690 - tall, x + wide, 700, mix(ground, dusk, 0.45))
        for row in range(int(tall // 26)):
            for col in range(int(wide // 22)):
                if c.random.random() < 0.16:
                    wx, wy = x + 8 + col * 22, 690 - tall + 12 + row * 26
                    c.rect(wx, wy, wx + 7, wy + 11, mix(lamp, ground, 0.35))
        x += wide + c.random.choice((0, 0, 14))
    c.rect(0, 690, 1000, 1000, ground)
    c.draw.rounded_rectangle([v * c.k for v in (170, 560, 830, 726)], radius=34 * c.k, fill=mix(lamp, "#7a1f1f", 0.62))
    c.rect(170, 664, 830, 680, light)
    for i in range(7):
        x0 = 200 + i * 88
        c.draw.rounded_rectangle([v * c.k for v in (x0, 586, x0 + 70, 648)], radius=10 * c.k, fill=light)
    c.line([(430, 560), (500, 500), (570, 560)], 5, ground)
    c.line([(0, 498), (1000, 498)], 3, mix(ground, light, 0.25))
    for x in (280, 380, 620, 720):
        c.circle(x, 728, 24, mix(ground, light, 0.12))
    for y, wide in ((752, 6), (776, 8)):
        c.line([(0, y), (1000, y)], wide, mix(ground, lamp, 0.55))
    c.text(64, 890, title, "gothic", c.fit(title, "gothic", 92, 870), light)
    c.text(66, 946, artist.upper(), "medium", 30, lamp, tracking=7)


@design("#f6efe2", "#f2a65a", "#7cc6c3", "#155e75", "#0b2c3d")
def tide(c, title, artist, p):
    """Layers of water under a pale sun."""
    paper, sun, shallow, deep, abyss = p
    c.fill(c.linear([mix(paper, shallow, 0.25), paper, mix(paper, sun, 0.35)], 90))
    c.paint(c.circle_mask(655, 395, 185), c.linear([sun, mix(sun, "#e4572e", 0.55)], 90))
    layers = 9
    for i in range(layers):
        t = i / (layers - 1)
        mask = c.poly_mask(c.below(c.swell(455 + 62 * i, 26 + 8 * t, period=(380, 900))))
        c.shadow(mask, dy=-7, blur=16, alpha=0.20, colour=abyss)
        tone = mix(shallow, deep, min(1, t * 1.6)) if t < 0.62 else mix(deep, abyss, (t - 0.62) / 0.38)
        c.paint(mask, c.linear([mix(tone, paper, 0.12), tone], 90))
    c.text(70, 138, title, "serif-italic", c.fit(title, "serif-italic", 104, 860), abyss)
    c.text(74, 196, artist, "medium", 32, mix(abyss, paper, 0.15), tracking=1)


@design("#f4ead7", "#e9c46a", "#d9714f", "#2a7f78", "#1f3a44")
def strata(c, title, artist, p):
    """Sheets of cut paper, one in the other, that leave a lake in the middle."""
    paper, sand, clay, water, deep = p
    c.fill(c.linear([paper, mix(paper, sand, 0.3)], 60))
    phase = [(n, c.random.uniform(0, math.tau), c.random.uniform(0.4, 1) / n) for n in range(2, 7)]
    tones = [
        mix(paper, sand, 0.55),
        sand,
        mix(sand, clay, 0.5),
        clay,
        mix(clay, water, 0.55),
        water,
        mix(water, deep, 0.5),
        deep,
    ]
    for i, tone in enumerate(tones):
        r = 418 - i * 48
        turned = [(n, f + 0.14 * i, w) for n, f, w in phase]
        points = c.blob(520 - i * 4, 405 + i * 5, r, wobble=0.30, phase=turned)
        mask = c.poly_mask(points)
        c.paint(mask, c.linear([mix(tone, "#ffffff", 0.10), tone], 70))
        # each sheet lies deeper than the rim around it, whose shadow falls onto it
        below = c.image.copy()
        c.shadow(mask.point([255 - v for v in range(256)]), dx=6, dy=11, blur=13, alpha=0.42, colour=deep)
        below.paste(c.image, (0, 0), mask)
        c.fill(below)
    c.text(66, 908, title, "century", c.fit(title, "century", 76, 860), deep)
    c.text(68, 954, artist, "serif-italic", 36, mix(deep, clay, 0.35))


@design("#fbf6ee", "#ef6f8e", "#f7b267", "#58b09c", "#3f4b8c", "#33272a")
def glass(c, title, artist, p):
    """Petals of stained glass that darken where they overlap."""
    paper, rose, amber, leaf, violet, ink = p
    c.fill(c.linear([paper, mix(paper, amber, 0.12)], 90))
    for x, y, r, petals, colours in (
        (315, 345, 235, 9, (rose, amber)),
        (700, 268, 175, 8, (violet, rose)),
        (640, 575, 215, 10, (leaf, amber)),
        (235, 690, 140, 7, (violet, leaf)),
    ):
        for i in range(petals):
            a = math.tau * i / petals + x
            points = []
            for j in range(61):
                t = j / 60 * math.tau
                along = r * 0.55 * (1 - math.cos(t))
                side = r * 0.27 * math.sin(t) * (0.55 + 0.45 * math.sin(t / 2))
                points.append(
                    (x + along * math.cos(a) - side * math.sin(a), y + along * math.sin(a) + side * math.cos(a))
                )
            c.paint(c.poly_mask(points), colours[i % 2], 0.72, "multiply")
        c.circle(x, y, r * 0.10, paper)
    c.text(930, 905, title, "light", c.fit(title, "light", 88, 860), ink, anchor="rs")
    c.text(930, 952, artist, "bold", 31, rose, anchor="rs")


@design("#191338", "#3d2a6d", "#f3e9d2", "#e8b4bc", "#f2c14e")
def moons(c, title, artist, p):
    """The phases of a paper moon."""
    night, violet, paper, blush, gold = p
    c.fill(c.linear([night, violet, mix(violet, blush, 0.28)], 75))
    for row in range(3):
        for col in range(3):
            x, y, r = 240 + col * 260, 208 + row * 228, 92
            disc = c.circle_mask(x, y, r)
            index = row * 3 + col
            tone = gold if index == 4 else paper
            c.shadow(disc, dy=12, blur=16, alpha=0.45)
            c.paint(disc, mix(night, violet, 0.55))
            # the lit side ends in a half circle, the other edge of it is a flattened one
            flat = math.cos(math.pi * min(index + 0.6, 8.6 - index) / 4.6) if index != 4 else -1
            side = 1 if index < 4 else -1
            rim = [(side * r * math.sin(t), -r * math.cos(t)) for t in (math.pi * j / 60 for j in range(61))]
            edge = [
                (side * flat * r * math.sin(t), -r * math.cos(t)) for t in (math.pi * j / 60 for j in range(60, -1, -1))
            ]
            c.paint(
                c.poly_mask([(x + dx, y + dy) for dx, dy in rim + edge]),
                c.radial(x - 34, y - 40, r * 2.1, [mix(tone, "#ffffff", 0.35), tone, mix(tone, blush, 0.7)]),
            )
    for _ in range(60):
        c.circle(
            c.random.uniform(20, 980), c.random.uniform(20, 980), c.random.choice((1.0, 1.6)), mix(violet, paper, 0.6)
        )
    c.text(500, 892, title, "serif-bold", c.fit(title, "serif-bold", 80, 860), paper, anchor="ms")
    c.text(500, 946, artist.upper(), "medium", 26, gold, tracking=8, anchor="ms")


@design("#f7e7b4", "#f2c46d", "#9cb65f", "#3f7d4e", "#12372a")
def hills(c, title, artist, p):
    """Hills one behind the other, in mist."""
    sky, sun, near, wood, dark = p
    c.fill(c.linear([mix(sky, "#ffffff", 0.35), sky, sun], 90))
    c.circle(320, 330, 128, mix(sky, "#ffffff", 0.7))
    layers = 7
    for i in range(layers):
        t = i / (layers - 1)
        curve = c.swell(430 + 76 * i, 58 - 3 * i, parts=4, period=(260, 900))
        mask = c.poly_mask(c.below(curve))
        tone = (
            mix(mix(sun, near, 0.35 + 0.65 * min(1, 2 * t)), dark, max(0, t * 1.25 - 0.25))
            if t > 0
            else mix(sun, near, 0.4)
        )
        c.paint(
            mask,
            c.linear(
                [(0, tone), (0.43 + 0.072 * i, tone), (0.55 + 0.072 * i, mix(tone, sky, 0.42 - 0.3 * t)), (1, tone)], 90
            ),
        )
        if 2 <= i <= 5:
            for x, y in curve[::2]:
                if c.random.random() < 0.16 + 0.04 * i:
                    tall = c.random.uniform(16, 30) * (0.5 + t)
                    c.poly([(x - tall * 0.26, y + 5), (x, y - tall), (x + tall * 0.26, y + 5)], mix(tone, dark, 0.45))
    c.text(64, 128, title, "black", c.fit(title, "black", 92, 872), dark, tracking=-1)
    c.text(66, 178, artist, "medium", 33, wood)


@design("#0f2a43", "#f4efe6", "#2ec4b6", "#ff9f1c", "#e71d36")
def sonar(c, title, artist, p):
    """Quarter circles in a grid, as on an old chart."""
    navy, paper, teal, orange, red = p
    c.fill(c.linear([navy, navy], 90))
    cells, side, left, top = 4, 217.5, 65, 65
    for row in range(cells):
        for col in range(cells):
            if row == 3:
                continue
            x0, y0 = left + col * side, top + row * side
            ground = c.random.choice((paper, navy, teal, paper, orange))
            c.rect(x0, y0, x0 + side, y0 + side, ground)
            corner = c.random.choice(((0, 0, 0, 90), (1, 0, 90, 180), (1, 1, 180, 270), (0, 1, 270, 360)))
            cx, cy = x0 + corner[0] * side, y0 + corner[1] * side
            inks = [i for i in (navy, teal, orange, red, paper) if i != ground]
            c.random.shuffle(inks)
            kind = c.random.random()
            if kind < 0.62:
                for n in range(5):
                    c.pie(cx, cy, side * (1 - n * 0.2), corner[2], corner[3], inks[0] if n % 2 == 0 else ground)
            else:
                c.pie(cx, cy, side, corner[2], corner[3], inks[0])
                c.pie(cx, cy, side * 0.5, corner[2], corner[3], inks[1])
    c.rect(left, 717, left + 870, 721, paper)
    size = c.fit(title, "black", 128, 870, -3)
    c.text(left - 4, 852, title, "black", size, paper, tracking=-3)
    c.text(left, 926, artist, "medium", 35, teal)


@design("#f3d9b1", "#c8553d", "#d9e4ec", "#2f4b6e", "#20252d")
def two_seasons(c, title, artist, p):
    """One tree, half in autumn and half in winter."""
    warm, rust, cold, blue, ink = p
    c.fill(c.linear([mix(warm, "#ffffff", 0.25), warm], 90))
    c.paint(_half(c), c.linear([mix(cold, "#ffffff", 0.3), cold, mix(cold, blue, 0.25)], 90))

    def branch(x, y, length, angle, wide, depth):
        x1, y1 = x + length * math.cos(angle), y - length * math.sin(angle)
        c.line([(x, y), (x1, y1)], wide, ink)
        c.circle(x1, y1, wide / 2, ink)
        if depth:
            for turn in (-0.48, 0.44, -0.04):
                if turn == -0.04 and depth < 5:
                    continue
                branch(
                    x1,
                    y1,
                    length * c.random.uniform(0.70, 0.82),
                    angle + turn + c.random.uniform(-0.14, 0.14),
                    wide * 0.68,
                    depth - 1,
                )
        else:
            tips.append((x1, y1))

    tips = []
    branch(500, 805, 205, math.pi / 2, 26, 6)
    for x, y in tips:
        for _ in range(2):
            dx, dy = x + c.random.gauss(0, 17), y + c.random.gauss(0, 17)
            if dx < 500:
                c.circle(dx, dy, c.random.uniform(6, 15), mix(rust, "#e9b44c", c.random.random()))
            elif c.random.random() < 0.55:
                c.circle(dx, dy, c.random.uniform(3, 7), "#ffffff")
    for _ in range(60):
        c.circle(c.random.uniform(515, 985), c.random.uniform(40, 790), c.random.uniform(2, 5), "#ffffff")
    for _ in range(26):
        c.circle(
            c.random.uniform(40, 480),
            c.random.uniform(700, 815),
            c.random.uniform(5, 10),
            mix(rust, warm, c.random.random() * 0.6),
        )
    c.rect(0, 800, 500, 1000, mix(rust, ink, 0.12))
    c.rect(500, 800, 1000, 1000, blue)
    c.text(500, 898, title, "gothic", c.fit(title, "gothic", 84, 860), "#ffffff", anchor="ms")
    c.text(
        500, 952, artist, "gothic-book", c.fit(artist, "gothic-book", 34, 860), mix(warm, "#ffffff", 0.4), anchor="ms"
    )


def _half(c):
    return c.poly_mask([(500, -10), (1010, -10), (1010, 1010), (500, 1010)])
