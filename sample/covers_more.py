"""Further posters; importing this module adds them to covers.DESIGNS."""

import math

from canvas import mix
from covers import design


@design("#d7263d", "#fff4e4", "#14110f")
def question(c, title, artist, p):
    """A question mark in coarse print dots."""
    red, paper, ink = p
    c.fill(c.linear([red, mix(red, ink, 0.22)], 80))
    layer, draw = c.mask()
    # how much of each 20 x 20 field the letter covers
    small = c.text_mask("?", "black", 900, 500, 745).resize((50, 50), 4)
    step = 20
    for row in range(-1, 51):
        for col in range(-1, 51):
            x, y = col * step + (step / 2 if row % 2 else 0), row * step
            inside = small.getpixel((min(49, max(0, int(x / 20))), min(49, max(0, int(y / 20))))) / 255
            r = 2.6 + inside * (3.5 + 7.6 * min(1, max(0, 0.25 + y / 760)))
            draw.ellipse(c._box(x, y, r), fill=255 if inside > 0.4 else 60)
    c.paint(layer, paper)
    c.rect(0, 800, 1000, 1000, ink)
    c.text(64, 906, title, "black", c.fit(title, "black", 96, 872, -2), paper, tracking=-2)
    c.text(66, 956, artist, "bold", 32, red)


@design("#071a2b", "#0f4c5c", "#ffd166", "#f4f1de", "#e4572e")
def beacon(c, title, artist, p):
    """A lighthouse and its two beams."""
    night, sea, lamp, paper, red = p
    c.fill(c.linear([night, mix(night, sea, 0.7), mix(sea, lamp, 0.25)], 90))
    for _ in range(110):
        c.circle(
            c.random.uniform(0, 1000),
            c.random.uniform(0, 560),
            c.random.choice((0.9, 1.3, 1.8)),
            mix(sea, paper, c.random.uniform(0.3, 0.9)),
        )
    x, y = 620, 292
    for angle, spread, strength in ((math.pi * 1.045, 0.155, 0.75), (-0.10, 0.155, 0.60)):
        for part, alpha in ((1.0, 0.35), (0.6, 0.35), (0.28, 0.45)):
            a, b = angle - spread * part, angle + spread * part
            beam = c.poly_mask(
                [
                    (x, y),
                    (x + 1400 * math.cos(a), y + 1400 * math.sin(a)),
                    (x + 1400 * math.cos(b), y + 1400 * math.sin(b)),
                ]
            )
            c.paint(
                beam,
                c.radial(x, y, 1000, [mix(night, lamp, strength), mix(night, lamp, strength * 0.3), "#000000"]),
                alpha,
                "screen",
            )
    c.glow(x, y, 400, lamp, 1.0)
    for i in range(5):
        curve = c.swell(735 + i * 52, 15 + 3 * i, period=(170, 520))
        if i == 1:
            _tower(c, x, y, paper, red, night, lamp)
            c.poly(c.blob(x + 10, 835, 190, wobble=0.22), mix(night, sea, 0.12))
        mask = c.poly_mask(c.below(curve))
        tone = mix(sea, night, 0.15 + i * 0.2)
        c.paint(mask, c.linear([mix(tone, lamp, 0.16), tone], 90))
    c.text(64, 914, title, "gothic", c.fit(title, "gothic", 100, 870), paper)
    c.text(67, 962, artist, "gothic-book", 33, lamp)


def _tower(c, x, y, paper, red, night, lamp):
    def half(v):
        return 34 + (v - y) * 0.085

    top, foot, bands = y + 30, 790, 7
    for i in range(bands):
        y0, y1 = top + (foot - top) * i / bands, top + (foot - top) * (i + 1) / bands
        tone = red if i % 2 == 0 else paper
        c.poly([(x - half(y0), y0), (x + half(y0), y0), (x + half(y1), y1), (x - half(y1), y1)], tone)
        c.poly(
            [(x + half(y0) * 0.25, y0), (x + half(y0), y0), (x + half(y1), y1), (x + half(y1) * 0.25, y1)],
            mix(tone, night, 0.28),
        )
    c.rect(x - 52, top - 6, x + 52, top + 8, night)
    c.rect(x - 27, y - 32, x + 27, top - 6, lamp)
    for dx in (-27, -9, 9, 27):
        c.line([(x + dx, y - 32), (x + dx, top - 6)], 4, night)
    c.poly([(x - 40, y - 32), (x, y - 78), (x + 40, y - 32)], red)


@design("#10121c", "#e8e2d0", "#ff6b4a", "#5bc0be", "#f2d06b")
def orbits(c, title, artist, p):
    """Small planets on thin rings."""
    space, paper, coral, aqua, gold = p
    c.fill(c.radial(500, 430, 720, [mix(space, aqua, 0.22), space, mix(space, "#000000", 0.4)]))
    for _ in range(150):
        c.circle(
            c.random.uniform(0, 1000),
            c.random.uniform(0, 1000),
            c.random.choice((0.8, 1.1, 1.6)),
            mix(space, paper, c.random.uniform(0.2, 0.8)),
        )
    c.glow(500, 425, 330, gold, 0.9)
    c.paint(c.circle_mask(500, 425, 74), c.radial(475, 398, 150, [mix(gold, "#ffffff", 0.5), gold, coral]))
    tones = (aqua, coral, paper, gold, aqua, coral)
    for i in range(6):
        r = 128 + i * 52
        c.ring(500, 425, r, 1.8, mix(space, paper, 0.42))
        a, size, tone = c.random.uniform(0, math.tau), c.random.uniform(12, 34), tones[i]
        x, y = 500 + r * math.cos(a), 425 + r * math.sin(a)
        c.circle(x, y, size + 9, mix(space, aqua, 0.08))
        disc = c.circle_mask(x, y, size)
        # lit from the middle of the picture
        c.paint(
            disc,
            c.radial(
                x - size * 0.5 * math.cos(a),
                y - size * 0.5 * math.sin(a),
                size * 1.9,
                [mix(tone, "#ffffff", 0.35), tone, mix(tone, space, 0.75)],
            ),
        )
        if i in (2, 4):
            c.line([(x - size * 1.75, y + size * 0.5), (x + size * 1.75, y - size * 0.5)], 3, paper)
    c.text(
        500, 905, title.upper(), "light", c.fit(title.upper(), "light", 84, 860, 22), paper, tracking=22, anchor="ms"
    )
    c.text(500, 956, artist, "medium", 29, aqua, tracking=2, anchor="ms")


@design("#f5d547", "#1b1b1e", "#d7263d")
def words(c, title, artist, p):
    """A title so long that it is the picture."""
    paper, ink, red = p
    c.fill(c.linear([mix(paper, "#ffffff", 0.12), paper], 70))
    size = 118
    while True:
        lines = c.wrap(title, "condensed", size, 880)
        if len(lines) * size * 0.98 <= 800:
            break
        size -= 2
    for i, line in enumerate(lines):
        c.text(60, 60 + size * 0.82 + i * size * 0.98, line, "condensed", size, red if i % 4 == 2 else ink)
    c.rect(60, 896, 940, 901, ink)
    c.text(60, 946, artist, "medium", c.fit(artist, "medium", 32, 880), ink)


@design("#fdf0d5", "#f4845f", "#f7b267", "#7d4f50", "#2d3142")
def sunrise(c, title, artist, p):
    """A striped sun from a printer of the seventies."""
    paper, coral, amber, brown, ink = p
    c.fill(c.linear([paper, mix(paper, amber, 0.16)], 90))
    for i, tone in enumerate((brown, coral, mix(coral, amber, 0.5), amber, mix(amber, paper, 0.55))):
        c.circle(500, 620, 450 - i * 62, tone)
    c.circle(500, 620, 140, paper)
    c.paint(c.circle_mask(500, 620, 128), c.linear([coral, amber], 90))
    c.rect(0, 620, 1000, 1000, mix(paper, amber, 0.16))
    for i in range(6):
        c.rect(
            50,
            636 + i * 25,
            950,
            636 + i * 25 + 15 - i * 2,
            (brown, coral, coral, amber, amber, mix(amber, paper, 0.5))[i],
        )
    c.text(50, 880, title, "gothic", c.fit(title, "gothic", 88, 900), ink)
    c.text(52, 938, artist, "gothic-book", c.fit(artist, "gothic-book", 36, 900), brown)


@design("#dcecf2", "#8fc1d4", "#e9dcc0", "#f28f6b", "#2b4c5e")
def postcard(c, title, artist, p):
    """A view in a white frame with its name written below."""
    sky, water, land, sun, ink = p
    c.fill(c.linear([mix(sky, "#ffffff", 0.2), mix(sky, sun, 0.35)], 90))
    c.circle(c.random.uniform(260, 740), c.random.uniform(250, 400), 84, mix(sun, "#ffffff", 0.25))
    for _ in range(3):
        x, y, wide = c.random.uniform(120, 760), c.random.uniform(120, 300), c.random.uniform(90, 170)
        c.draw.rounded_rectangle(
            [v * c.k for v in (x, y, x + wide, y + 20)], radius=10 * c.k, fill=mix(sky, "#ffffff", 0.75)
        )
        c.draw.rounded_rectangle(
            [v * c.k for v in (x + 30, y - 16, x + wide - 18, y + 6)], radius=11 * c.k, fill=mix(sky, "#ffffff", 0.75)
        )
    c.poly(c.below(c.swell(455, 46, parts=4, period=(240, 700))), mix(water, ink, 0.42))
    c.poly(c.below(c.swell(505, 26, parts=4, period=(240, 700))), mix(water, ink, 0.62))
    for i in range(4):
        mask = c.poly_mask(c.below(c.swell(544 + i * 40, 5, period=(160, 380))))
        c.paint(mask, mix(water, "#ffffff", 0.30 - i * 0.1))
    sail = c.random.uniform(280, 700)
    c.poly([(sail, 480), (sail, 584), (sail + 66, 584)], "#ffffff")
    c.poly([(sail - 8, 500), (sail - 8, 584), (sail - 50, 584)], mix("#ffffff", sun, 0.35))
    c.poly([(sail - 62, 592), (sail + 76, 592), (sail + 52, 614), (sail - 44, 614)], ink)
    c.poly(c.below(c.swell(716, 24, period=(500, 1200))), land)
    for edge in ((0, 0, 1000, 62), (0, 0, 62, 1000), (938, 0, 1000, 1000), (0, 806, 1000, 1000)):
        c.rect(*edge, "#fbfaf6")
    c.text(66, 902, title, "serif-italic", c.fit(title, "serif-italic", 78, 868), ink)
    c.text(68, 952, artist, "medium", 29, mix(ink, water, 0.35))


@design("#e8eddf", "#cfdbd5", "#f5cb5c", "#5c7c8a", "#242423")
def crossing(c, title, artist, p):
    """Lines that part and meet, like wakes."""
    paper, mist, gold, slate, ink = p
    c.fill(c.linear([paper, mist], 90))
    c.paint(c.circle_mask(500, 400, 250), c.linear([mix(gold, "#ffffff", 0.2), gold], 90))
    for i in range(34):
        y = 150 + i * 16.5
        points = []
        for x in range(60, 945, 5):
            bump = math.exp(-(((x - 500) / 170) ** 2))
            points.append((x, y + 46 * bump * math.sin(x / 38 + i * 0.42) * math.sin(math.pi * i / 33) - 34 * bump))
        c.line(points, 3.2, mix(slate, ink, i / 33))
    c.text(60, 868, title, "bold", c.fit(title, "bold", 84, 880, -1), ink, tracking=-1)
    c.text(62, 926, artist, "medium", 33, slate)
