"""The lines that bench/run makes one table of."""

HEADINGS = ("what", "Quorvane", "beside it", "ratio", "beside")


def print_row(what, ours, other, theirs, unit):
    """Tells of one figure and of that of the program beside it; Row.h does the same."""
    print(f"row\t{what}\t{ours:.3f}\t{other}\t{theirs:.3f}\t{unit}", flush=True)


def parse(line):
    """The cells of the table that a line tells; none if it is not one of those."""
    kind, *cells = line.rstrip("\n").split("\t")
    if kind != "row" or len(cells) != 5:
        return None
    what, ours, other, theirs, unit = cells
    ratio = f"{float(ours) / float(theirs):.2f}" if float(theirs) else "-"
    return what, f"{float(ours):.2f} {unit}", f"{float(theirs):.2f} {unit}", ratio, other


def table(rows):
    """The rows below their headings, each column as wide as it has to be."""
    lines = [HEADINGS, *rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip()
                     for line in lines)
