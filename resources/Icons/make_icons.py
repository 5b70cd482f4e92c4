#!/usr/bin/env python3
"""Makes the icons of this folder: make_icons.py [--check | --sheet FILE.svg]

Without an option it writes every NAME.svg. --check writes nothing and fails if a committed file
isn't what would be made, if one is too many, or if one breaks the rules for files or colours.
--sheet writes all of them at several sizes on one page, to be looked at.

Glyphs lie on a grid of 24. Straight strokes, 1.5 wide, lie on 0.75, 2.25, 3.75 and so on: those
are the middles of pixels at 16, and edges at 32, so both sizes are sharp. Corners are 2.25 round.
"""
import math
import os
import re
import sys
import xml.etree.ElementTree as ElementTree
from collections import namedtuple

FOLDER = os.path.dirname(os.path.abspath(__file__))
STROKE = 1.5
MAX_BYTES = 2048


# Path pieces.

def number(value):
    return f"{round(value, 3):g}"


def box(x, y, width, height, radius=2.25):
    h, v, r = number(width - 2 * radius), number(height - 2 * radius), number(radius)
    arc = f"a{r} {r} 0 0 1 "
    return (f"M{number(x + radius)} {number(y)}h{h}{arc}{r} {r}v{v}{arc}-{r} {r}"
            f"h-{h}{arc}-{r}-{r}v-{v}{arc}{r}-{r}z")


def dot(x, y, radius):
    r, d = number(radius), number(2 * radius)
    return f"M{number(x - radius)} {number(y)}a{r} {r} 0 1 1 {d} 0a{r} {r} 0 1 1-{d} 0z"


# Body: stroked, and filled with a breath of the colour. An open body is filled up to the straight
# line between its ends, which leaves room for a badge. Line: stroked. Solid: filled, even-odd.
Glyph = namedtuple("Glyph", "body line solid", defaults=("", "", ""))

CARD = box(2.25, 5.25, 19.5, 13.5)
KEYHOLE = "M10.95 11.7a2.1 2.1 0 1 1 2.1 0l.75 4.05h-3.6z"
FOLDER_BODY = ("M2.25 18V6A2.25 2.25 0 0 1 4.5 3.75h4.32a2.25 2.25 0 0 1 1.59.66l2.34 2.34h6.75"
               "A2.25 2.25 0 0 1 21.75 9v9a2.25 2.25 0 0 1-2.25 2.25h-15A2.25 2.25 0 0 1 2.25 18z")

GLYPHS = {
    # A way in.
    "login": Glyph(
        body="M8.25 6.75V6a2.25 2.25 0 0 1 2.25-2.25h7.5A2.25 2.25 0 0 1 20.25 6v12A2.25 2.25 0 "
             "0 1 18 20.25h-7.5A2.25 2.25 0 0 1 8.25 18v-.75",
        solid="M2.25 10.5h8.25V8.1a.9.9 0 0 1 1.5-.67l4.6 3.9a.9.9 0 0 1 0 1.34l-4.6 3.9a.9.9 0 0 "
              "1-1.5-.67v-2.4H2.25a.75.75 0 0 1-.75-.75v-1.5a.75.75 0 0 1 .75-.75z"),
    # A sheet under lock.
    "secure-note": Glyph(
        body="M20.25 9.75V6A2.25 2.25 0 0 0 18 3.75H6A2.25 2.25 0 0 0 3.75 6v12A2.25 2.25 0 0 0 "
             "6 20.25h4.5",
        line="M7.5 8.25h9M7.5 12.75h3.75M15.75 15.75v-1.5a2.25 2.25 0 0 1 4.5 0v1.5",
        solid=box(13.5, 15.75, 9, 6.75, 1.5)),
    "credit-card": Glyph(
        body=CARD, line="M6 15.75h3.75", solid="M2.25 9h19.5v3H2.25z"),
    # A card with a portrait.
    "identity": Glyph(
        body=CARD, line="M14.25 9.75h4.5M14.25 14.25h3",
        solid=dot(8.25, 9.6, 1.95) + "M4.8 16.2c.1-2.5 1.5-3.9 3.45-3.9s3.35 1.4 3.45 3.9z"),
    # An input field, typed into.
    "password": Glyph(
        body=box(2.25, 6.75, 19.5, 10.5),
        solid=dot(6, 12, 1.5) + dot(10.5, 12, 1.5) + dot(15, 12, 1.5) + "M18 9h1.5v6H18z"),
    "router": Glyph(
        body=box(2.25, 12.75, 19.5, 7.5),
        line="M12 12.75v-3M8.8 7.6a4.5 4.5 0 0 1 6.4 0M6.2 4.7a8.2 8.2 0 0 1 11.6 0",
        solid=dot(6.375, 16.5, 1.125) + dot(10.125, 16.5, 1.125)),
    "server": Glyph(
        body=box(3.75, 3.75, 16.5, 6, 1.5) + box(3.75, 14.25, 16.5, 6, 1.5),
        line="M13.5 6.75h3M13.5 17.25h3M12 9.75v4.5",
        solid=dot(7.5, 6.75, 1.125) + dot(7.5, 17.25, 1.125)),
    "email": Glyph(
        body=CARD, line="m2.9 6.5 7.7 6.15a2.25 2.25 0 0 0 2.8 0l7.7-6.15"),
    "document": Glyph(
        body="M14.25 2.25H7.5A2.25 2.25 0 0 0 5.25 4.5v15a2.25 2.25 0 0 0 2.25 2.25h9a2.25 2.25 0 "
             "0 0 2.25-2.25V6.75z",
        line="M14.25 2.25v4.5h4.5M9 12.75h6M9 17.25h6"),
    # Braces round a keyhole.
    "api-credential": Glyph(
        line="M8.25 3.75H7.5A2.25 2.25 0 0 0 5.25 6v3.6c0 1.4-.9 2.4-2.25 2.4 1.35 0 2.25 1 2.25 "
             "2.4V18a2.25 2.25 0 0 0 2.25 2.25h.75M15.75 3.75h.75A2.25 2.25 0 0 1 18.75 6v3.6c0 "
             "1.4.9 2.4 2.25 2.4-1.35 0-2.25 1-2.25 2.4V18a2.25 2.25 0 0 1-2.25 2.25h-.75",
        solid=KEYHOLE),
    # A clipboard with a cross.
    "medical-record": Glyph(
        body=box(5.25, 3.75, 13.5, 18),
        solid=box(8.25, 1.5, 7.5, 4.5, 1.5) + "M10.5 9h3v3h3v3h-3v3h-3v-3h-3v-3h3z"),
    # A wallet with a token on it.
    "crypto-wallet": Glyph(
        body="M18.75 6.75V6a2.25 2.25 0 0 0-2.25-2.25H4.5a2.25 2.25 0 0 0-2.25 2.25v12A2.25 2.25 "
             "0 0 0 4.5 20.25h15A2.25 2.25 0 0 0 21.75 18V9a2.25 2.25 0 0 0-2.25-2.25z",
        line="M6 6.75h12.75M21.75 11.25h-3.6a2.25 2.25 0 0 0 0 4.5h3.6",
        solid="M9 9.75l3.25 1.875v3.75L9 17.25l-3.25-1.875v-3.75z" + dot(9, 13.5, 1.2)),
    # A key in a terminal.
    "ssh-key": Glyph(
        body=box(2.25, 3.75, 19.5, 16.5),
        line="m5.7 6.9 2.55 2.55L5.7 12M12.75 14.25h6M15.75 14.25v2.25M18.75 14.25v2.25"
        + dot(10.5, 14.25, 2.25)),
    # A package.
    "software-license": Glyph(
        body="M12 2.25 20.25 6.75v10.5L12 21.75l-8.25-4.5V6.75z",
        line="M3.75 6.75 12 11.25l8.25-4.5M12 11.25v10.5M7.9 4.5l8.25 4.5"),
    "bank-account": Glyph(
        body="M12 2.6 20.6 7a.7.7 0 0 1 .4.6v2.15H3V7.6A.7.7 0 0 1 3.4 7z",
        line="M5.25 12.75v4.5M9.75 12.75v4.5M14.25 12.75v4.5M18.75 12.75v4.5M3 20.25h18"),
    "database": Glyph(
        body="M3.75 5.625c0-1.86 3.7-3.375 8.25-3.375s8.25 1.515 8.25 3.375v12.75c0 1.86-3.7 3.375-"
             "8.25 3.375s-8.25-1.515-8.25-3.375z",
        line="M3.75 5.625C3.75 7.485 7.45 9 12 9s8.25-1.515 8.25-3.375M3.75 12c0 1.86 3.7 3.375 "
             "8.25 3.375S20.25 13.86 20.25 12"),
    "driver-license": Glyph(
        body="M5.25 11.25 6.9 6.3A2.25 2.25 0 0 1 9 4.75h6a2.25 2.25 0 0 1 2.1 1.55l1.65 4.95a1.5 "
             "1.5 0 0 1 1.5 1.5v4.5H3.75v-4.5a1.5 1.5 0 0 1 1.5-1.5z",
        line="M5.25 11.25h13.5",
        solid=dot(7.5, 14.25, 1.2) + dot(16.5, 14.25, 1.2) + "M3 17.25h4.5v2.6a1.15 1.15 0 0 1-"
              "1.15 1.15h-2.2A1.15 1.15 0 0 1 3 19.85zM16.5 17.25H21v2.6A1.15 1.15 0 0 1 19.85 21h-"
              "2.2a1.15 1.15 0 0 1-1.15-1.15z"),
    # A fir.
    "outdoor-license": Glyph(
        body="M12 2.25 6.75 9.75H9l-4.5 7.5h15l-4.5-7.5h2.25z", line="M12 17.25v4.5"),
    # A badge to wear.
    "membership": Glyph(
        body=box(5.25, 5.25, 13.5, 16.5),
        solid=box(10.5, 2.25, 3, 5.25, 0.75)
        + "M12 9.9l1.3 2.75 3 .4-2.2 2.1.55 3-2.65-1.45-2.65 1.45.55-3-2.2-2.1 3-.4z"),
    "passport": Glyph(
        body=box(5.25, 2.25, 13.5, 19.5),
        line=dot(12, 9.75, 4.125) + "M7.9 9.75h8.2M12 5.625c-2.2 2.3-2.2 5.95 0 8.25 2.2-2.3 "
             "2.2-5.95 0-8.25M9 17.625h6"),
    # A present.
    "rewards": Glyph(
        body=box(2.25, 6.75, 19.5, 4.5, 1.5)
        + "M3.75 11.25V18A2.25 2.25 0 0 0 6 20.25h12A2.25 2.25 0 0 0 20.25 18v-6.75",
        line="M12 6.75v13.5M12 6.75C11.1 3.75 9.6 2.25 8.1 2.25a2.25 2.25 0 0 0 0 4.5zM12 6.75c.9-"
             "3 2.4-4.5 3.9-4.5a2.25 2.25 0 0 1 0 4.5z"),
    # Somebody shielded.
    "social-security-number": Glyph(
        body="M12 2.25 20.25 5.25v6c0 4.9-3.3 8.7-8.25 10.5-4.95-1.8-8.25-5.6-8.25-10.5v-6z",
        solid=dot(12, 9, 2.25) + "M7.8 16c.2-2.5 1.9-3.9 4.2-3.9s4 1.4 4.2 3.9z"),
    "generic": Glyph(
        body=box(3.75, 3.75, 16.5, 16.5, 3),
        solid=KEYHOLE),
    "allitems": Glyph(
        body=box(3.75, 3.75, 6, 6, 1.5) + box(14.25, 3.75, 6, 6, 1.5)
        + box(3.75, 14.25, 6, 6, 1.5) + box(14.25, 14.25, 6, 6, 1.5)),
    "archive": Glyph(
        body=box(2.25, 3.75, 19.5, 4.5, 1.5)
        + "M3.75 8.25V18A2.25 2.25 0 0 0 6 20.25h12A2.25 2.25 0 0 0 20.25 18V8.25",
        line="M9.75 12.75h4.5"),
    # A globe with a warning.
    "compromisedsites": Glyph(
        body="M20.25 10.5a9 9 0 1 0-9.75 9.72",
        line="M2.25 11.25h12M11.25 2.25c-2.4 2.4-3.6 5.4-3.6 9s1.2 6.6 2.85 8.97M11.25 2.25c2 2 "
             "3.2 4.4 3.5 7.2",
        solid="M16.4 12.9a1 1 0 0 1 1.7 0l4.7 8.1a1 1 0 0 1-.85 1.5h-9.4a1 1 0 0 1-.85-1.5z"
              "M16.5 15.75h1.5l-.2 3.3h-1.1zM16.5 20h1.5v1.4h-1.5z"),
    "folder": Glyph(body=FOLDER_BODY),
    # A folder that looks for its items.
    "smart-folder": Glyph(body=FOLDER_BODY, line="m13.3 14.8 2.2 2.2" + dot(11.25, 12.75, 3)),
    "tombstone": Glyph(
        body="M5.25 20.25V9a6.75 6.75 0 0 1 13.5 0v11.25", line="M2.25 20.25h19.5M9.75 9.75h4.5"),
    # Places that a vault is kept in step with. The marks of services are theirs: the shapes must
    # stay unlike them.
    # A box that things are laid into.
    "dropbox": Glyph(
        body="M6 12.75H3.75V18A2.25 2.25 0 0 0 6 20.25h12A2.25 2.25 0 0 0 20.25 18v-5.25H18",
        line="M12 3v11.25M8.25 10.5 12 14.25l3.75-3.75"),
    "icloud": Glyph(
        body="M6.75 18.75a4.5 4.5 0 0 1-.6-8.96 6 6 0 0 1 11.6-.3 4.65 4.65 0 0 1-.5 9.26z",
        line="M12 15.75v-4.5M9.75 13.05 12 10.8l2.25 2.25"),
    "wifi": Glyph(
        line="M2.25 9.3a13.8 13.8 0 0 1 19.5 0M5.7 12.75a8.9 8.9 0 0 1 12.6 0M9.1 16.2a4.1 4.1 0 "
             "0 1 5.8 0",
        solid=dot(12, 19.35, 1.35)),
    # A folder that is handed on.
    "itunes": Glyph(
        body=FOLDER_BODY,
        line="M8.25 12.75h7.5M13.5 10.5l2.25 2.25-2.25 2.25"),
    # Card brands: the card and a plain shape of ours. The marks of the brands are theirs: the
    # shapes must stay unlike them.
    "visa": Glyph(body=CARD, line="M6 15.75h3", solid="M14.25 10.5h5.25l-1.75 5.25H12.5z"),
    "amex": Glyph(body=CARD, line="M6 15.75h3", solid="M15.75 9l3.75 3.75-3.75 3.75L12 12.75z"),
    "mastercard": Glyph(body=CARD, line="M6 15.75h3", solid="M15.75 9.5l3.75 6.25H12z"),
    "discover": Glyph(body=CARD, line="M6 15.75h3", solid="M12 15.75a3.75 3.75 0 0 1 7.5 0z"),
}

# Colours. A hue in degrees and a chroma for each family; the lightness comes from the use, so that
# all icons weigh the same. Values are OKLCH: equal steps look equal.

GREY = 0.015
HUES = {
    "login": (257, 0.17), "secure-note": (88, 0.13), "credit-card": (178, 0.12),
    "identity": (55, 0.15), "password": (290, 0.18), "document": (250, 0.06),
    "software-license": (317, 0.18), "bank-account": (132, 0.16), "database": (40, 0.16),
    "driver-license": (352, 0.18), "outdoor-license": (148, 0.15), "membership": (335, 0.18),
    "passport": (274, 0.18), "rewards": (8, 0.18), "social-security-number": (205, 0.11),
    "router": (112, 0.15), "server": (243, 0.14), "email": (226, 0.12),
    "api-credential": (304, 0.18), "medical-record": (24, 0.19), "ssh-key": (160, 0.14),
    "crypto-wallet": (72, 0.14),
    "generic": (260, GREY), "allitems": (257, 0.09), "archive": (70, 0.05),
    "compromisedsites": (30, 0.19), "folder": (235, 0.12), "smart-folder": (290, 0.14),
    "tombstone": (260, GREY),
    "dropbox": (250, 0.17), "icloud": (220, 0.13), "wifi": (150, 0.15), "itunes": (275, 0.1),
    "visa": (264, 0.19), "amex": (230, 0.12), "mastercard": (33, 0.19), "discover": (60, 0.15),
}
LIGHTNESS = {"list": 0.62, "details": 0.59, "dark-color": 0.79}
# Yellow turns to mud at the lightness that suits blue: so much lighter at 85 degrees.
YELLOW_LIFT = 0.05
SOURCE_GREY = "#7d828b"
WHITE = "#ffffff"
INK = "#3a3e46"


def colour(lightness, chroma, hue):
    """The sRGB colour of an OKLCH one, with the chroma lowered until it is one."""
    while True:
        a = chroma * math.cos(math.radians(hue))
        b = chroma * math.sin(math.radians(hue))
        l, m, s = ((lightness + 0.3963377774 * a + 0.2158037573 * b) ** 3,
                   (lightness - 0.1055613458 * a - 0.0638541728 * b) ** 3,
                   (lightness - 0.0894841775 * a - 1.2914855480 * b) ** 3)
        linear = (4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
                  -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
                  -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)
        if all(-1e-6 <= part <= 1 for part in linear):
            break
        chroma -= 0.002
    coded = (12.92 * part if part <= 0.0031308 else 1.055 * part ** (1 / 2.4) - 0.055
             for part in (max(part, 0) for part in linear))
    return "#" + "".join(f"{round(part * 255):02x}" for part in coded)


def contrast(one, other):
    """From 1 to 21; 3 is the least for a sign that must be told from its ground."""
    def luminance(text):
        parts = (int(text[i:i + 2], 16) / 255 for i in (1, 3, 5))
        linear = [p / 12.92 if p <= 0.04045 else ((p + 0.055) / 1.055) ** 2.4 for p in parts]
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]
    dark, light = sorted((luminance(one), luminance(other)))
    return (light + 0.05) / (dark + 0.05)


# Variants.

def svg(size, grid, content):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{size}" height="{size}" '
            f'viewBox="0 0 {grid} {grid}">\n{content}</svg>\n')


def drawn(glyph, ink, tint, placed=""):
    """The glyph in one colour. A tint of 0 leaves bodies empty."""
    lines = [f'<g fill="none" stroke="{ink}" stroke-width="{STROKE}" stroke-linecap="round" '
             f'stroke-linejoin="round"{placed}>']
    if glyph.body:
        fill = f' fill="{ink}" fill-opacity="{tint}"' if tint else ""
        lines.append(f'<path{fill} d="{glyph.body}"/>')
    if glyph.line:
        lines.append(f'<path d="{glyph.line}"/>')
    if glyph.solid:
        lines.append(f'<path fill="{ink}" fill-rule="evenodd" stroke="none" d="{glyph.solid}"/>')
    return "\n".join(lines) + "\n</g>\n"


def hue(family, use):
    degrees, chroma = HUES[family]
    yellowness = max(0, math.cos(math.radians(degrees - 85))) ** 4
    return colour(LIGHTNESS[use] + YELLOW_LIFT * yellowness, chroma, degrees)


def list_icon(family):
    return svg(32, 24, drawn(GLYPHS[family], hue(family, "list"), 0.2))


def details_icon(family):
    # Four units of the tile to one of the grid: three pixels a stroke at 64. The corner is that of
    # the squares behind monograms, a fifth of the width.
    tile = f'<rect width="128" height="128" rx="25.6" fill="{hue(family, "details")}"/>\n'
    glyph = drawn(GLYPHS[family], WHITE, 0.24, ' transform="translate(16 16) scale(4)"')
    return svg(64, 128, tile + glyph)


def source_icon(family):
    return svg(16, 24, drawn(GLYPHS[family], SOURCE_GREY, 0.16))


def dark_colour_icon(family):
    return svg(24, 24, drawn(GLYPHS[family], hue(family, "dark-color"), 0.24))


# Both are template images: only their coverage counts where the platform tints them. Where it
# doesn't, the one without a suffix is meant for a dark or selected row.
def sidebar_icon(family):
    return svg(16, 24, drawn(GLYPHS[family], WHITE, 0.24))


def light_sidebar_icon(family):
    return svg(16, 24, drawn(GLYPHS[family], INK, 0.16))


VARIANTS = {
    "type-{}-list": list_icon,
    "type-{}-details": details_icon,
    "type-{}-source": source_icon,
    "type-{}-dark-color": dark_colour_icon,
    "sidebar-{}": sidebar_icon,
    "sidebar-{}-light-background": light_sidebar_icon,
    "{}-icon-choice": list_icon,
}
BRANDS = ("visa", "amex", "mastercard", "discover")
BRAND_VARIANTS = ("type-{}-list", "type-{}-details", "type-{}-source")
# Kinds of places to synchronise with: a choice of them shows the only variant that there is.
PLACES = ("dropbox", "icloud", "wifi", "itunes")
# Rows of lists, which are never shown in detail.
ROWS = ("allitems", "archive", "compromisedsites", "folder", "smart-folder")
# Deleted items have an empty word in the names of their icons.
WORDS = {"tombstone": ""}


# Parts of generated icons: the light laid over a monogram, and frame and mask of a custom picture.
# Sizes in points; the corner is a fifth of the width.
PART_SIZES = {"mini": 16, "medium": 32, "large": 64}


def rim(size, opacity):
    """A hairline inside the edge, dark enough to part a white picture from a white ground."""
    width = size / 64 if size > 32 else 0.5
    return (f'<rect x="{number(width / 2)}" y="{number(width / 2)}" width="{number(size - width)}" '
            f'height="{number(size - width)}" rx="{number(0.2 * size - width / 2)}" fill="none" '
            f'stroke="#000000" stroke-opacity="{opacity}" stroke-width="{number(width)}"/>\n')


def login_overlay(size):
    shine = ('<linearGradient id="shine" x2="0" y2="1"><stop stop-color="#ffffff" stop-opacity='
             '".22"/><stop offset=".6" stop-color="#ffffff" stop-opacity="0"/></linearGradient>\n')
    sheet = f'<rect width="{size}" height="{size}" rx="{number(0.2 * size)}" fill="url(#shine)"/>\n'
    return svg(size, size, shine + sheet + rim(size, 0.14))


def picture_overlay(size):
    return svg(size, size, rim(size, 0.2))


def picture_mask(size):
    # White and opaque inside, nothing outside: right for masks by alpha and by brightness.
    return svg(size, size, f'<rect width="{size}" height="{size}" rx="{number(0.2 * size)}" '
                           f'fill="#ffffff"/>\n')


PARTS = {
    "login_overlay-{}": login_overlay,
    "richIcon-overlay-{}": picture_overlay,
    "richIcon-mask-{}": picture_mask,
}


def icons():
    """Name and text of every icon, family by family."""
    made = {}
    for family in HUES:
        for pattern, make in VARIANTS.items():
            if family in BRANDS and pattern not in BRAND_VARIANTS:
                continue
            if (family in PLACES) != (pattern == "{}-icon-choice"):
                continue
            if family in ROWS and pattern == "type-{}-details":
                continue
            made[pattern.format(WORDS.get(family, family))] = make(family)
    # Asked for by this name where a category is unknown; elsewhere the word is "details".
    made["type-generic-detail"] = made["type-generic-details"]
    for pattern, make in PARTS.items():
        for word, size in PART_SIZES.items():
            made[pattern.format(word)] = make(size)
    return made


# Checks.

ALLOWED = {"svg", "g", "path", "rect", "linearGradient", "stop"}
REFERENCE = re.compile(r"href|url\((?!#)|style|on[a-z]+=|@import|<!|&")


def fault(text):
    """What makes the text of an icon unfit, or nothing."""
    if len(text.encode()) > MAX_BYTES:
        return f"over {MAX_BYTES} bytes"
    if REFERENCE.search(text):
        return "refers to something outside, or runs something"
    try:
        root = ElementTree.fromstring(text)
    except ElementTree.ParseError as error:
        return f"no XML: {error}"
    for element in root.iter():
        space, _, tag = element.tag.rpartition("}")
        if space != "{http://www.w3.org/2000/svg" or tag not in ALLOWED:
            return f"has an element {tag}"
    sides = root.get("viewBox", "").split()
    if len(sides) != 4 or sides[:2] != ["0", "0"] or sides[2] != sides[3]:
        return "has no square viewBox"
    return None


def pale():
    """Colours too near to a ground that they are seen on."""
    for family in HUES:
        grounds = [("list", WHITE, 3), ("list", "#1e1e1e", 3), ("details", WHITE, 3),
                   ("dark-color", "#000000", 6)]
        for use, ground, least in grounds:
            reached = contrast(hue(family, use), ground)
            if reached < least:
                yield f"{family}, {use}: contrast {reached:.2f} to {ground}, not {least}"
    for ground in (WHITE, "#1e1e1e"):
        if contrast(SOURCE_GREY, ground) < 3:
            yield f"source: contrast below 3 to {ground}"


def check():
    made = icons()
    faults = [f"{name}.svg: {why}" for name, text in made.items() if (why := fault(text))]
    faults += pale()
    there = {name[:-4] for name in os.listdir(FOLDER) if name.endswith(".svg")}
    faults += [f"{name}.svg: isn't made here" for name in sorted(there - set(made))]
    for name, text in made.items():
        path = os.path.join(FOLDER, name + ".svg")
        if name not in there:
            faults.append(f"{name}.svg: missing")
            continue
        with open(path, encoding="utf-8", newline="") as file:
            if file.read() != text:
                faults.append(f"{name}.svg: not what is made now")
    print("\n".join(faults + [f"{len(made)} icons, {len(faults)} faults"]))
    return 1 if faults else 0


def write():
    made = icons()
    for name in os.listdir(FOLDER):
        if name.endswith(".svg") and name[:-4] not in made:
            os.remove(os.path.join(FOLDER, name))
    for name, text in made.items():
        with open(os.path.join(FOLDER, name + ".svg"), "w", encoding="utf-8", newline="") as file:
            file.write(text)
    print(f"{len(made)} icons")
    return 0


# The page to look at.

def sheet():
    """All icons as they are seen: on their own ground, at the sizes of their use."""
    made = icons()
    columns = [  # name pattern, size, ground
        ("type-{}-details", 128, "#ffffff"), ("type-{}-details", 64, "#1e1e1e"),
        ("type-{}-list", 32, "#ffffff"), ("type-{}-list", 32, "#1e1e1e"),
        ("type-{}-list", 24, "#ffffff"), ("type-{}-source", 16, "#ffffff"),
        ("type-{}-source", 16, "#1e1e1e"), ("type-{}-dark-color", 24, "#000000"),
        ("sidebar-{}-light-background", 16, "#ececee"), ("sidebar-{}", 16, "#2a5bd0"),
        ("{}-icon-choice", 32, "#ffffff"), ("{}-icon-choice", 32, "#1e1e1e"),
    ]
    step, across, label = 132, 2, 150
    wide = label + sum(size + 16 for _, size, _ in columns) + 20
    families = list(HUES)
    rows = -(-len(families) // across)
    height = rows * step + 150
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{wide * across}" height="{height}">',
           '<rect width="100%" height="100%" fill="#ffffff"/>']

    def place(name, x, y, size):
        inner = made[name].replace('id="shine"', f'id="shine{x}"').replace("#shine", f"#shine{x}")
        out.append(re.sub(r'width="\d+" height="\d+"',
                          f'x="{x}" y="{y}" width="{size}" height="{size}"', inner, count=1))

    for index, family in enumerate(families):
        left, top = (index // rows) * wide, (index % rows) * step
        out.append(f'<text x="{left + 10}" y="{top + 70}" font-family="DejaVu Sans" '
                   f'font-size="11" fill="#333333">{family}</text>')
        x = left + label
        for pattern, size, ground in columns:
            out.append(f'<rect x="{x}" y="{top}" width="{size + 16}" height="{step}" '
                       f'fill="{ground}"/>')
            name = pattern.format(WORDS.get(family, family))
            if name in made:
                place(name, x + 8, top + (step - size) // 2, size)
            x += size + 16
    # The parts on what they are for: a coloured square, or a dark ground for a mask.
    x = 10
    for pattern in PARTS:
        for word, size in PART_SIZES.items():
            ground = "#444444" if "mask" in pattern else "#66bb99"
            top = height - 110 + (64 - size) // 2
            out.append(f'<rect x="{x}" y="{top}" width="{size}" height="{size}" '
                       f'rx="{0 if "mask" in pattern else number(0.2 * size)}" fill="{ground}"/>')
            place(pattern.format(word), x, top, size)
            out.append(f'<text x="{x}" y="{height - 20}" font-size="10" fill="#333333" '
                       f'font-family="DejaVu Sans">{pattern.format(word)}</text>')
            x += 148
    return "\n".join(out + ["</svg>\n"])


def main(arguments):
    if not arguments:
        return write()
    if arguments == ["--check"]:
        return check()
    if len(arguments) == 2 and arguments[0] == "--sheet":
        with open(arguments[1], "w", encoding="utf-8") as file:
            file.write(sheet())
        return 0
    print(__doc__.splitlines()[0], file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
