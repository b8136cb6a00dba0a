#!/usr/bin/env python3
"""Writes ColorPresets.json: the colour maps KXComponents offers out of the box.

Run from this folder when a map is added or changed; the JSON is what the
library compiles in. Sources of the control points:
- "Cool to Warm": Moreland's diverging map ("Diverging Color Maps for
  Scientific Visualization", 2009), endpoints RGB (59,76,192) and (180,4,38),
  interpolated here in his Msh space through a white-ish midpoint.
- "Viridis", "Inferno": 17 evenly spaced samples of the published 256-entry
  tables of van der Walt and Smith (matplotlib 1.5 / 2.0 default maps).
- "Jet": the classic piecewise-linear blue-cyan-yellow-red ramp.
- "Rainbow Uniform": a hue sweep blue -> red with a lightness correction so
  that no band (cyan, yellow) stands out, sampled at 17 points.
- Indexed maps: ColorBrewer qualitative schemes (Harrower and Brewer, 2003),
  and "Distinct 12", the first twelve of Trubetskoy's list of distinct colours.
"""
import colorsys
import json
import math


def srgb_to_linear(c):
    return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4


def linear_to_srgb(c):
    c = min(max(c, 0.0), 1.0)
    return 12.92 * c if c <= 0.0031308 else 1.055 * c ** (1 / 2.4) - 0.055


WHITE = (0.95047, 1.0, 1.08883)


def rgb_to_lab(rgb):
    r, g, b = (srgb_to_linear(c) for c in rgb)
    x = 0.4124 * r + 0.3576 * g + 0.1805 * b
    y = 0.2126 * r + 0.7152 * g + 0.0722 * b
    z = 0.0193 * r + 0.1192 * g + 0.9505 * b

    def f(t):
        return t ** (1 / 3) if t > 0.008856 else 7.787 * t + 16 / 116

    fx, fy, fz = f(x / WHITE[0]), f(y / WHITE[1]), f(z / WHITE[2])
    return (116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz))


def lab_to_rgb(lab):
    L, a, b = lab
    fy = (L + 16) / 116
    fx = fy + a / 500
    fz = fy - b / 200

    def finv(t):
        return t ** 3 if t ** 3 > 0.008856 else (t - 16 / 116) / 7.787

    x, y, z = WHITE[0] * finv(fx), WHITE[1] * finv(fy), WHITE[2] * finv(fz)
    r = 3.2406 * x - 1.5372 * y - 0.4986 * z
    g = -0.9689 * x + 1.8758 * y + 0.0415 * z
    bb = 0.0557 * x - 0.2040 * y + 1.0570 * z
    return tuple(linear_to_srgb(c) for c in (r, g, bb))


def lab_to_msh(lab):
    L, a, b = lab
    M = math.sqrt(L * L + a * a + b * b)
    s = math.acos(L / M) if M > 0 else 0.0
    h = math.atan2(b, a)
    return (M, s, h)


def msh_to_lab(msh):
    M, s, h = msh
    return (M * math.cos(s), M * math.sin(s) * math.cos(h), M * math.sin(s) * math.sin(h))


def adjust_hue(saturated, unsat_m):
    m, s, h = saturated
    if m >= unsat_m:
        return h
    spin = s * math.sqrt(unsat_m * unsat_m - m * m) / (m * math.sin(s))
    return h + spin if h > -math.pi / 3 else h - spin


def diverging(c1, c2, t):
    m1, s1, h1 = lab_to_msh(rgb_to_lab(c1))
    m2, s2, h2 = lab_to_msh(rgb_to_lab(c2))
    if s1 > 0.05 and s2 > 0.05 and abs(h1 - h2) > math.pi / 3:
        mid = max(m1, m2, 88.0)
        if t < 0.5:
            m2, s2, h2, t = mid, 0.0, 0.0, 2 * t
        else:
            m1, s1, h1, t = mid, 0.0, 0.0, 2 * t - 1
    if s1 < 0.05 and s2 > 0.05:
        h1 = adjust_hue((m2, s2, h2), m1)
    elif s2 < 0.05 and s1 > 0.05:
        h2 = adjust_hue((m1, s1, h1), m2)
    msh = ((1 - t) * m1 + t * m2, (1 - t) * s1 + t * s2, (1 - t) * h1 + t * h2)
    return lab_to_rgb(msh_to_lab(msh))


def points(samples):
    n = len(samples)
    out = []
    for i, rgb in enumerate(samples):
        out += [i / (n - 1)] + list(rgb)
    return [round(v, 6) for v in out]


def hex_colors(codes):
    out = []
    for code in codes:
        out += [int(code[i:i + 2], 16) / 255 for i in (0, 2, 4)]
    return [round(v, 6) for v in out]


def piecewise(knots, t):
    for (x0, y0), (x1, y1) in zip(knots, knots[1:]):
        if x0 <= t <= x1:
            return y0 + (y1 - y0) * (t - x0) / (x1 - x0)
    return knots[-1][1]


cool, warm = (59 / 255, 76 / 255, 192 / 255), (180 / 255, 4 / 255, 38 / 255)
cool_to_warm = [diverging(cool, warm, i / 32) for i in range(33)]

viridis = [
    (0.267004, 0.004874, 0.329415), (0.280894, 0.078907, 0.402329),
    (0.282623, 0.140926, 0.457517), (0.263663, 0.237631, 0.518762),
    (0.229739, 0.322361, 0.545706), (0.199430, 0.387607, 0.554642),
    (0.172719, 0.448791, 0.557885), (0.149039, 0.508051, 0.557250),
    (0.127568, 0.566949, 0.550556), (0.120638, 0.625828, 0.533488),
    (0.157851, 0.683765, 0.501686), (0.246070, 0.738910, 0.452024),
    (0.369214, 0.788888, 0.382914), (0.515992, 0.831158, 0.294279),
    (0.678489, 0.863742, 0.189503), (0.845561, 0.887322, 0.099702),
    (0.993248, 0.906157, 0.143936),
]
inferno = [
    (0.001462, 0.000466, 0.013866), (0.046915, 0.030324, 0.150164),
    (0.142378, 0.046242, 0.308553), (0.258234, 0.038571, 0.406485),
    (0.366529, 0.071579, 0.431994), (0.472328, 0.110547, 0.428334),
    (0.578304, 0.148039, 0.404411), (0.682656, 0.189501, 0.360757),
    (0.780517, 0.243327, 0.299523), (0.865006, 0.316822, 0.226055),
    (0.930926, 0.411563, 0.145244), (0.974417, 0.522206, 0.058367),
    (0.993545, 0.640817, 0.039886), (0.987622, 0.767398, 0.163822),
    (0.964394, 0.892452, 0.351470), (0.960626, 0.959929, 0.533473),
    (0.988362, 0.998364, 0.644924),
]
jet_r = [(0, 0), (0.35, 0), (0.66, 1), (0.89, 1), (1, 0.5)]
jet_g = [(0, 0), (0.125, 0), (0.375, 1), (0.64, 1), (0.91, 0), (1, 0)]
jet_b = [(0, 0.5), (0.11, 1), (0.34, 1), (0.65, 0), (1, 0)]
jet = [(piecewise(jet_r, t), piecewise(jet_g, t), piecewise(jet_b, t))
       for t in (i / 16 for i in range(17))]


def rainbow(t):
    hue = (2 / 3) * (1 - t)
    r, g, b = colorsys.hsv_to_rgb(hue, 1.0, 1.0)
    # Pull the over-bright cyan and yellow bands down towards the lightness of
    # the ends, so the sweep reads as evenly spaced.
    L, a, bb = rgb_to_lab((r, g, b))
    target = 55 + 15 * t
    return lab_to_rgb((0.4 * L + 0.6 * target, a, bb))


rainbow_uniform = [rainbow(i / 16) for i in range(17)]

continuous = [
    ("Cool to Warm", "Diverging", [1.0, 1.0, 0.0], cool_to_warm),
    ("Viridis", "Lab", [1.0, 0.0, 0.0], viridis),
    ("Inferno", "Lab", [0.0, 1.0, 0.0], inferno),
    ("Grayscale", "RGB", [1.0, 0.0, 0.0], [(0, 0, 0), (1, 1, 1)]),
    ("Jet", "RGB", [1.0, 1.0, 1.0], jet),
    ("Rainbow Uniform", "RGB", [1.0, 1.0, 1.0], rainbow_uniform),
    ("Blue to Red Rainbow", "HSV", [0.5, 0.5, 0.5], [(0, 0, 1), (1, 0, 0)]),
]

indexed = [
    ("Distinct 12", ["e6194b", "3cb44b", "ffe119", "4363d8", "f58231", "911eb4",
                     "46f0f0", "f032e6", "bcf60c", "fabebe", "008080", "e6beff"]),
    ("Brewer Qualitative Set1", ["e41a1c", "377eb8", "4daf4a", "984ea3", "ff7f00",
                                 "ffff33", "a65628", "f781bf", "999999"]),
    ("Brewer Qualitative Paired", ["a6cee3", "1f78b4", "b2df8a", "33a02c", "fb9a99", "e31a1c",
                                   "fdbf6f", "ff7f00", "cab2d6", "6a3d9a", "ffff99", "b15928"]),
    ("Brewer Qualitative Set3", ["8dd3c7", "ffffb3", "bebada", "fb8072", "80b1d3", "fdb462",
                                 "b3de69", "fccde5", "d9d9d9", "bc80bd", "ccebc5", "ffed6f"]),
    ("Brewer Qualitative Dark2", ["1b9e77", "d95f02", "7570b3", "e7298a", "66a61e", "e6ab02",
                                  "a6761d", "666666"]),
]

presets = []
for name, space, nan, samples in continuous:
    presets.append({"Name": name, "ColorSpace": space, "NanColor": nan,
                    "RGBPoints": points(samples)})
for name, codes in indexed:
    presets.append({"Name": name, "ColorSpace": "RGB", "NanColor": [0.25, 0.0, 0.0],
                    "IndexedColors": hex_colors(codes), "Annotations": []})

with open("ColorPresets.json", "w") as out:
    json.dump(presets, out, indent=1)
    out.write("\n")
