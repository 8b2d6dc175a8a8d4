"""The table in the output of scripts/bench."""

HEADINGS = ("figure", "ours", "unit", "peer", "ratio", "name of peer")
TO_THE_RIGHT = (1, 3, 4)


def number(value):
    if value is None:
        return ""
    return f"{value:,.0f}" if abs(value) >= 100 else f"{value:.3g}"


def cells(row):
    ratio = row.ratio()
    return (row.title, number(row.our_median()), row.unit, number(row.peer_median()),
            "" if ratio is None else f"{ratio:.2f}", row.peer_name)


def table(sections):
    """Returns the text of sections of (title, rows). All sections have the same column widths."""
    lines = [HEADINGS, *(cells(row) for _, rows in sections for row in rows)]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]

    def text(line):
        return "  ".join(cell.rjust(width) if column in TO_THE_RIGHT else cell.ljust(width)
                         for column, (cell, width) in enumerate(zip(line, widths))).rstrip()

    parts = [text(HEADINGS)]
    for title, rows in sections:
        parts += ["", f"{title}:", *(text(cells(row)) for row in rows)]
    return "\n".join(parts)
