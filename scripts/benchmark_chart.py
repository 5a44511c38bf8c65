"""Draws the result of one benchmark area as an SVG: a bar for each contender, grouped by work, with its figures as text."""
import math
from xml.sax.saxutils import escape

OURS = "quon"
WIDTH, NAMES, BARS, TIMES, GROWTHS = 900, 290, 300, 730, 820
ROW, MARGIN = 17, 14
STYLE = ("text{font:12px sans-serif;fill:#222}.work{font-weight:bold}.name,.time,.growth{text-anchor:end}"
         ".head{fill:#666;text-anchor:end}.ours{fill:#1f6f8b}.limit{fill:#b8c4c9}.other{fill:#e08e45}")


def ratio_text(ratio):
    return f"{ratio:.3f}" if ratio < 0.1 else f"{ratio:.2f}" if ratio < 100 else f"{ratio:,.0f}"


def time_text(nanoseconds):
    if nanoseconds < 0:
        return "-" + time_text(-nanoseconds)
    for unit, factor in (("ns", 1), ("us", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * factor:
            return f"{nanoseconds / factor:.3g} {unit}"
    return f"{nanoseconds / 1e9:.3g} s"


def scale(result):
    """Maps a ratio to a place on the logarithmic axis, which spans all ratios of the area and 1."""
    ratios = [entry["of_ours"] for work in result["works"] for entry in work["contenders"]] + [1.0]
    low, high = math.log(min(ratios)) - 0.3, math.log(max(ratios)) + 0.1
    return lambda ratio: NAMES + 10 + BARS * (math.log(ratio) - low) / (high - low)


def bar(entry, place, top):
    """One contender: its name, its bar, the ratio to our time, its time for an item and how that grows."""
    kind = "ours" if entry["name"] == OURS else "limit" if entry["name"].startswith("limit") else "other"
    end, base = place(entry["of_ours"]), top + ROW - 5
    growth = f"{entry['growth'][-1]:.2f}" if len(entry["growth"]) > 1 else ""
    return [f'<text class="name" x="{NAMES}" y="{base}">{escape(entry["name"])}</text>',
            f'<rect class="{kind}" x="{NAMES + 10}" y="{top + 2}" width="{end - NAMES - 10:.1f}" height="{ROW - 5}"/>',
            f'<text x="{end + 5:.1f}" y="{base}">{ratio_text(entry["of_ours"])}</text>',
            f'<text class="time" x="{TIMES}" y="{base}">{time_text(entry["minimum_ns"])}</text>',
            f'<text class="growth" x="{GROWTHS}" y="{base}">{growth}</text>']


def chart(result):
    """The chart as the text of an SVG. Ours is the line at 1; the axis is logarithmic."""
    place, top = scale(result), MARGIN + ROW
    body = [f'<text x="{NAMES + 10}" y="{MARGIN + 8}">time of one item, as a multiple of ours</text>',
            f'<text class="head" x="{TIMES}" y="{MARGIN + 8}">minimum</text>',
            f'<text class="head" x="{GROWTHS}" y="{MARGIN + 8}">growth</text>']
    for work in result["works"]:
        body.append(f'<text class="work" x="{MARGIN}" y="{top + ROW - 4}">{escape(work["work"])}, '
                    f'{work["size"]:,} items</text>')
        top += ROW + 2
        for entry in work["contenders"]:
            body += bar(entry, place, top)
            top += ROW
        top += 6
    line = place(1.0)
    body.insert(0, f'<line x1="{line:.1f}" y1="{MARGIN + ROW}" x2="{line:.1f}" y2="{top}" stroke="#1f6f8b"/>')
    height = top + MARGIN
    # A ground of its own, so that the chart can be read on dark pages too.
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
                      f'viewBox="0 0 {WIDTH} {height}">', f"<style>{STYLE}</style>",
                      f'<rect width="{WIDTH}" height="{height}" rx="6" fill="#fff"/>', *body, "</svg>"]) + "\n"
