"""Draws the rooms of src/ on their floors, and how often one includes another. For house.py."""
import html
import re

# The floors from the top, and what is said of the rooms on them. A room is a folder of src/.
FLOORS = [
    {"app": "the program: main, command line, environment"},
    {"desktop": "one instance, tray, light or dark, closing and ending"},
    {"mainwindow": "the main window and its commands"},
    {"ui": "views that know no controller"},
    {"session": "what plays and what has played, without widgets"},
    {
        "playback": "from address to sound",
        "directory": "which stations there are",
        "favourites": "the user's stations",
        "settings": "what is kept between two starts",
    },
    {"http": "requests, each within limits"},
    {"base": "texts, files, small conversions"},
]

# The inner folders of a room, in the rows that they are drawn in: how far from the left they begin, and their widths.
INNER_FOLDERS = {
    "ui": [
        {"table": (8, 112), "panels": (144, 88), "rack": (240, 88), "genres": (336, 88), "stationform": (432, 104)},
        {"drag": (8, 96), "widgets": (112, 424)},
    ],
    "playback": [{"mpv": (152, 240)}, {"stream": (152, 240)}, {"stream/hls": (152, 240)}],
    "directory": [{"keyed": (320, 216)}],
    "favourites": [{"archive": (320, 216)}],
}

# All measures are in pixels, on a grid of 8.
WIDTH = 960
LEFT, RIGHT = 32, 576
FIRST_COLUMN, COLUMN = 616, 32
TOP = 112
ROOM, ROOM_WITH_INNER = 56, 72
FLOOR_GAP, ROOM_GAP = 16, 8
INNER_HEIGHT, INNER_GAP, INNER_TOP = 72, 24, 56

PAPER, CARD, INNER, EDGE = "#f6f6f4", "#ffffff", "#f3f4f6", "#d8dbe0"
LINE, FAINT_LINE = "#9aa3b0", "#d8dbe0"
INK, GREY, ACCENT, BACK = "#22262d", "#616874", "#2f5d8c", "#c62828"

STYLE = f"""
text {{ font-family: Inter, "Segoe UI", "Helvetica Neue", Arial, sans-serif; font-size: 12px; fill: {GREY}; }}
.title {{ font-size: 20px; font-weight: 600; fill: {INK}; }}
.room {{ font-size: 15px; font-weight: 600; fill: {INK}; }}
.inner {{ font-size: 12px; font-weight: 600; fill: {INK}; }}
.small {{ font-size: 11px; }}
.count {{ font-size: 11px; font-weight: 600; fill: #ffffff; text-anchor: middle; }}
path {{ fill: none; stroke-width: 1.5; }}
"""


def room_of(folder):
    return folder.partition("/")[0]


def text(x, y, words, style="", **more):
    attributes = "".join(f' {name.replace("_", "-")}="{value}"' for name, value in more.items())
    return f'<text x="{x}" y="{y}" class="{style}"{attributes}>{html.escape(words)}</text>'


def box(x, y, width, height, fill, radius):
    return (f'<rect x="{x + .5}" y="{y + .5}" width="{width - 1}" height="{height - 1}" rx="{radius}"'
            f' fill="{fill}" stroke="{EDGE}"/>')


def disc(x, y, count, colour):
    radius = 8 + min(count, 32) // 8
    return f'<circle cx="{x}" cy="{y}" r="{radius}" fill="{colour}"/>' + text(x, y + 4, str(count), "count")


def figures(lines):
    """Of files with these numbers of lines by name: how many there are, their lines, the longest."""
    longest = max(lines, key=lines.get)
    files = f"{len(lines)} file" + ("s" if len(lines) != 1 else "")
    return files, f"{sum(lines.values()):,} lines", longest, lines[longest]


class Layout:
    """Where each room and inner folder is: its left edge, its top, its width and its height."""

    def __init__(self):
        self.places = {}
        y = TOP
        for floor in FLOORS:
            for room in floor:
                height = self._place_inner_folders(room, y)
                self.places[room] = (LEFT, y, RIGHT - LEFT, height)
                y += height + ROOM_GAP
            y += FLOOR_GAP - ROOM_GAP
        self.height = y - FLOOR_GAP + LEFT

    def _place_inner_folders(self, room, top):
        """Returns the height that the room needs."""
        rows = INNER_FOLDERS.get(room, [])
        if not rows:
            return ROOM
        is_beside = len(rows) == 1
        y = top + (8 if is_beside else INNER_TOP)
        height = ROOM_WITH_INNER - 16 if is_beside else INNER_HEIGHT
        for row in rows:
            for folder, (offset, width) in row.items():
                self.places[f"{room}/{folder}"] = (LEFT + offset, y, width, height)
            y += height + INNER_GAP
        return y - INNER_GAP + 8 - top

    def arrival(self, room):
        return self.places[room][1] + 16

    def departure(self, room):
        return self.places[room][1] + 40


def draw_room(layout, house, room, purpose):
    x, y, width, height = layout.places[room]
    rows = INNER_FOLDERS.get(room, [])
    inner = {name: house.lines[f"{room}/{name}"] for row in rows for name in row}
    own = house.lines.get(room) or {f"{folder}/{name}": count for folder, lines in inner.items()
                                    for name, count in lines.items()}
    files, lines, longest, most = figures(own)
    yield f'<g data-room="{room}">' + box(x, y, width, height, CARD, 8)
    yield text(x + 16, y + 24, room, "room")
    yield text(x + 128, y + 24, purpose)
    if len(rows) == 1:
        yield text(x + 16, y + 44, f"{files} · {lines}", "small")
        yield text(x + 16, y + 60, f"longest {longest}, {most}", "small")
    else:
        yield text(x + 16, y + 44, f"{files} · {lines} · longest {longest}, {most}", "small")
    for name, counts in inner.items():
        yield from draw_inner_folder(layout.places[f"{room}/{name}"], f"{room}/{name}", counts)
    yield "</g>"


def draw_inner_folder(place, folder, counts):
    x, y, width, height = place
    files, lines, longest, most = figures(counts)
    rows = [files, lines, f"longest {most}"]
    if width > 200:
        rows = [f"{files} · {lines}", f"longest {longest}, {most}"]
    yield f'<g data-room="{folder}">' + box(x, y, width, height, INNER, 4)
    yield text(x + 8, y + 18, folder.partition("/")[2], "inner")
    for index, row in enumerate(rows):
        yield text(x + 8, y + 34 + 14 * index, row, "small")
    yield "</g>"


def head(x, y, direction, colour):
    """The point of an arrow that ends at x, y."""
    corners = {"left": "8,-4 8,4", "right": "-8,-4 -8,4", "down": "-4,-8 4,-8", "up": "-4,8 4,8"}[direction]
    return f'<polygon transform="translate({x} {y})" points="0,0 {corners}" fill="{colour}"/>'


def draw_arrows_between_rooms(layout, arrows):
    """From a room to the right, at a disc down, and to the left into the room that is included."""
    order = list(layout.places)
    rooms = sorted((room for room in layout.places if "/" not in room), key=lambda room: layout.places[room][1])
    included = [room for room in rooms if any(end == room for _, end in arrows)]
    column = {room: FIRST_COLUMN + COLUMN * index for index, room in enumerate(included)}
    below, above = [], []
    for room in rooms:
        ends = [column[end] for start, end in arrows if start == room]
        if ends:
            y = layout.departure(room)
            below.append(f'<path d="M{RIGHT} {y}H{max(ends)}" stroke="{FAINT_LINE}"/>')
    for room in included:
        x, end = column[room], layout.arrival(room)
        starts = [layout.departure(start) for start, target in arrows if target == room]
        for y in {min(starts), max(starts)}:
            is_back = y > end
            colour = BACK if is_back else LINE
            turn = 8 if is_back else -8
            below.append(f'<path d="M{x} {y}V{end + turn}Q{x} {end} {x - 8} {end}H{RIGHT + 8}" stroke="{colour}"/>')
        above.append(head(RIGHT + 1, end, "left", BACK if max(starts) > end else LINE))
    for (start, end), count in sorted(arrows.items(), key=lambda arrow: [order.index(name) for name in arrow[0]]):
        y = layout.departure(start)
        colour = BACK if y > layout.arrival(end) else ACCENT
        above.append(f'<g data-arrow="{start} {end}"><title>{start} includes {end}: {count}</title>'
                     f"{disc(column[end], y, count, colour)}</g>")
    return below + above


def draw_arrows_within_rooms(layout, arrows):
    """From an inner folder down to another one or across to its neighbour, or to the left into the room itself; and from
    there to the right into an inner folder."""
    for (start, end), count in sorted(arrows.items()):
        if room_of(start) != room_of(end) or room_of(start) not in layout.places:
            continue
        x, y, width, height = layout.places[start]
        end_x, end_y, end_width, end_height = layout.places[end]
        colour = LINE
        if start.startswith(end + "/"):
            level = y + height - 12
            line, point, number = f"M{x} {level}H{x - 24}", head(x - 32, level, "left", colour), (x - 18, level - 6)
        elif "/" not in start and end.startswith(start + "/"):
            level = end_y + 20
            line, point, number = f"M{end_x - 32} {level}H{end_x - 8}", head(end_x, level, "right", colour), (end_x - 30, level - 6)
        elif end_y == y:
            level, tip, turn = y + 14, end_x + end_width, 8
            if end_x > x:
                x, tip, turn = x + width, end_x, -8
            line, point = f"M{x} {level}H{tip + turn}", head(tip, level, "left" if turn > 0 else "right", colour)
            number = ((x + tip) // 2 - 3, level + 16)
        else:
            across = (max(x, end_x) + min(x + width, end_x + end_width)) // 2
            number = (across + 8, max(y, end_y) - 8)
            if end_y > y:
                line, point = f"M{across} {y + height}V{end_y - 8}", head(across, end_y, "down", colour)
            else:
                colour, tip = BACK, end_y + end_height
                line, point = f"M{across} {y}V{tip + 8}", head(across, tip, "up", colour)
        yield f'<g data-arrow="{start} {end}"><title>{start} includes {end}: {count}</title>'
        yield f'<path d="{line}" stroke="{colour}"/>{point}{text(*number, str(count), "small")}</g>'


def draw(house):
    layout = Layout()
    counts = {f"{folder}/{name}": count for folder, lines in house.lines.items() if room_of(folder) in layout.places
              for name, count in lines.items()}
    arrows = {ends: count for ends, count in house.arrows(room_of).items() if set(ends) <= set(layout.places)}
    back = sum(layout.departure(start) > layout.arrival(end) for start, end in arrows)
    summary = f"{', '.join(figures(counts)[:2])}; {len(arrows)} arrows between rooms, {back or 'none'} of them back up."
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {layout.height}" width="{WIDTH}"'
             f' height="{layout.height}" role="img" aria-labelledby="title summary">',
             '<title id="title">The rooms of Plumtide</title>',
             f'<desc id="summary">{summary}</desc>',
             f"<style>{STYLE}</style>",
             f'<rect width="{WIDTH}" height="{layout.height}" rx="8" fill="{PAPER}"/>',
             text(LEFT, 48, "The rooms of src/", "title"),
             text(LEFT, 72, "Follow a line from a room to the right, down at a disc, and to the left: that room is included, "
                            "as often as the disc says."),
             text(LEFT, 92, summary),
             *draw_arrows_between_rooms(layout, arrows)]
    for floor in FLOORS:
        for room, purpose in floor.items():
            parts += draw_room(layout, house, room, purpose)
    parts += draw_arrows_within_rooms(layout, house.arrows(str))
    return "\n".join(parts + ["</svg>\n"])


def differences(house, drawn):
    """What rooms and arrows the drawing lacks or has too many of."""
    def names(kind, svg):
        return set(re.findall(rf'data-{kind}="([^"]*)"', svg))

    current = draw(house)
    found = [f"{folder} has no place in drawing.py" for folder in sorted(house.lines)
             if folder not in names("room", current) and room_of(folder) != "localradio"]
    for kind in "room", "arrow":
        found += [f"{kind} {name} is not drawn" for name in sorted(names(kind, current) - names(kind, drawn))]
        found += [f"{kind} {name} is drawn, but is no more" for name in sorted(names(kind, drawn) - names(kind, current))]
    return found
