"""The rows of the table that bench/run prints."""

HEADINGS = ("what", "Quorvane", "beside it", "ratio", "beside")


def print_row(what, ours, other, theirs, unit):
    """Prints a figure and the one beside it as a row for bench/run; Row.h does the same."""
    print(f"row\t{what}\t{ours:.3f}\t{other}\t{theirs:.3f}\t{unit}", flush=True)


def parse(line):
    """The table's cells for a printed row; None for any other line."""
    kind, *cells = line.rstrip("\n").split("\t")
    if kind != "row" or len(cells) != 5:
        return None
    what, ours, other, theirs, unit = cells
    ratio = f"{float(ours) / float(theirs):.2f}" if float(theirs) else "-"
    return what, f"{float(ours):.2f} {unit}", f"{float(theirs):.2f} {unit}", ratio, other


def table(rows):
    """The rows below their headings, in aligned columns."""
    lines = [HEADINGS, *rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip()
                     for line in lines)
