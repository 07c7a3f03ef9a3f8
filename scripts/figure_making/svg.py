"""Line drawings with two axes."""

import math

COLORS = ("#0b62a4", "#c4451c", "#2e7d32", "#7b3fa0", "#8a6d00", "#444444")
WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 760, 360, 62, 34, 190, 48


def drawing(title, x, y, lines, *, logarithmic=False):
    """An SVG. x, y: (label, least, most, ticks); lines: {name: (x values, y values)}."""

    def place(axis, value, low, high):
        label, least, most, ticks = axis
        scale = math.log if axis is x and logarithmic else float
        return low + (scale(value) - scale(least)) / (scale(most) - scale(least)) * (high - low)

    right, bottom = WIDTH - RIGHT, HEIGHT - BOTTOM
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
           f'font-size="12"><rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
           f'<text x="{LEFT}" y="20" font-size="14" font-weight="bold">{title}</text>']
    for value in x[3]:
        at = place(x, value, LEFT, right)
        out.append(f'<path d="M{at:.1f} {TOP}V{bottom}" stroke="#ddd"/><text x="{at:.1f}" y="{bottom + 16}" '
                   f'text-anchor="middle">{value:g}</text>')
    for value in y[3]:
        at = place(y, value, bottom, TOP)
        out.append(f'<path d="M{LEFT} {at:.1f}H{right}" stroke="#ddd"/><text x="{LEFT - 6}" y="{at + 4:.1f}" '
                   f'text-anchor="end">{value:g}</text>')
    out.append(f'<text x="{(LEFT + right) / 2}" y="{HEIGHT - 10}" text-anchor="middle">{x[0]}</text>')
    middle = (TOP + bottom) / 2
    out.append(f'<text x="16" y="{middle}" text-anchor="middle" transform="rotate(-90 16 {middle})">{y[0]}</text>')
    for number, (name, (xs, ys)) in enumerate(lines.items()):
        color = COLORS[number % len(COLORS)]
        points = " ".join(f"{place(x, a, LEFT, right):.1f},{place(y, min(max(b, y[1]), y[2]), bottom, TOP):.1f}"
                          for a, b in zip(xs, ys) if x[1] <= a <= x[2])
        row = TOP + 14 + 18 * number
        out.append(f'<polyline points="{points}" fill="none" stroke="{color}" stroke-width="1.6"/>'
                   f'<path d="M{right + 10} {row - 4}h18" stroke="{color}" stroke-width="3"/>'
                   f'<text x="{right + 34}" y="{row}">{name}</text>')
    return "\n".join([*out, "</svg>", ""])


def table(title, header, rows):
    """A table in Markdown under its title."""
    lines = [f"### {title}", "", "| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    return "\n".join(lines + ["| " + " | ".join(map(str, row)) + " |" for row in rows]) + "\n"
