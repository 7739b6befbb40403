"""Short pieces of music for the sample: plucked strings over a soft chord.

Plain Python is enough because each note is made once and then only shifted, scaled and
added, which operator.add and operator.mul do in C.
"""

import array
import math
import operator
import random
import struct
from itertools import repeat

# Semitones above the key note: calm chords that follow one another well
_CHORDS = {
    "dawn": ((0, 7, 12, 16, 19), (-3, 4, 9, 12, 16), (5, 9, 12, 17, 21), (-5, 2, 7, 11, 14)),
    "river": ((0, 7, 10, 15, 19), (-4, 3, 8, 12, 15), (3, 10, 15, 19, 22), (-2, 5, 10, 14, 17)),
    "lamp": ((0, 4, 11, 14, 19), (-7, 0, 5, 9, 16), (2, 9, 12, 17, 21), (-5, 2, 7, 12, 16)),
    "field": ((0, 7, 12, 14, 19), (-2, 5, 10, 14, 17), (5, 12, 14, 17, 21), (0, 7, 12, 16, 24)),
}


def _pluck(rate, hertz, seconds, rng):
    """One plucked string: a burst of noise that circles in a delay line and loses its edge."""
    period = max(2, round(rate / hertz))
    ring = [rng.uniform(-1, 1) for _ in range(period)]
    for _ in range(2):  # a softer pluck
        ring = [(a + b) / 2 for a, b in zip(ring, ring[1:] + ring[:1])]
    out = array.array("d", ring)
    keep = 0.996
    while len(out) < seconds * rate:
        ring = [keep * 0.5 * (a + b) for a, b in zip(ring, ring[1:] + ring[:1])]
        out.extend(ring)
    out = out[: int(seconds * rate)]
    tail = len(out) // 4
    for i in range(tail):
        out[-1 - i] *= i / tail
    return out


def _pad(rate, hertz, seconds):
    """A soft tone with two overtones that swells and fades."""
    step = math.tau * hertz / rate
    n = int(seconds * rate)
    return array.array(
        "d",
        (
            math.sin(math.pi * i / n)
            * (math.sin(step * i) + 0.3 * math.sin(2 * step * i) + 0.1 * math.sin(3 * step * i))
            for i in range(n)
        ),
    )


def _add(track, start, note, gain):
    end = min(len(track), start + len(note))
    track[start:end] = array.array(
        "d", map(operator.add, track[start:end], map(operator.mul, note, repeat(gain, end - start)))
    )


def piece(mood, seconds=16.0, rate=44100, key=220.0, seed=1):
    """The two channels of a piece as arrays of floats within -1 ... 1."""
    rng = random.Random(seed)
    n = int(seconds * rate)
    left, right = array.array("d", bytes(8 * n)), array.array("d", bytes(8 * n))
    chords = _CHORDS[mood]
    notes, pads = {}, {}
    beat, bar = 0.25, 2.0
    at = 0.0
    while at < seconds:
        chord = chords[int(at / bar) % len(chords)]
        if at % bar == 0:
            for tone in chord[:2]:
                if tone not in pads:
                    pads[tone] = _pad(rate, key * 2 ** (tone / 12), bar * 1.1)
                _add(left, int(at * rate), pads[tone], 0.10)
                _add(right, int(at * rate), pads[tone], 0.10)
        tone = chord[rng.randrange(len(chord))] + rng.choice((0, 0, 12))
        if tone not in notes:
            notes[tone] = _pluck(rate, key * 2 ** (tone / 12), 1.4, rng)
        pan, loud = rng.uniform(0.25, 0.75), rng.uniform(0.5, 0.8)
        _add(left, int(at * rate), notes[tone], loud * (1 - pan))
        _add(right, int(at * rate), notes[tone], loud * pan)
        at += beat
    peak = max(max(left), -min(left), max(right), -min(right), 1e-9)
    gain = 0.8 / peak
    return [array.array("d", map(operator.mul, side, repeat(gain, n))) for side in (left, right)]


def cut(channels, rate, start, seconds):
    """A part of a piece, faded in and out so that it neither clicks nor ends abruptly."""
    result = []
    for side in channels:
        part = side[int(start * rate) : int((start + seconds) * rate)]
        rise, fall = min(len(part), rate // 100), min(len(part), rate // 4)
        for i in range(rise):
            part[i] *= i / rise
        for i in range(fall):
            part[-1 - i] *= i / fall
        result.append(part)
    return result


def wav(channels, rate, bits=16):
    """The bytes of a WAV file, 16 or 24 bits a sample."""
    n = len(channels[0])
    if bits == 16:
        samples = array.array("h", bytes(2 * n * len(channels)))
        full = 32767
    else:
        samples = array.array("i", bytes(4 * n * len(channels)))
        full = 8388607
    for i, side in enumerate(channels):
        samples[i :: len(channels)] = array.array(samples.typecode, map(int, map(operator.mul, side, repeat(full, n))))
    data = samples.tobytes()
    if bits == 24:  # the highest of the four little-endian bytes only repeats the sign
        packed = bytearray(3 * (len(data) // 4))
        packed[0::3], packed[1::3], packed[2::3] = data[0::4], data[1::4], data[2::4]
        data = bytes(packed)
    frame = len(channels) * bits // 8
    return (
        b"RIFF"
        + struct.pack("<I", 36 + len(data))
        + b"WAVEfmt "
        + struct.pack("<IHHIIHH", 16, 1, len(channels), rate, rate * frame, frame, bits)
        + b"data"
        + struct.pack("<I", len(data))
        + data
    )
