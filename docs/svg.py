"""What the generated pictures share: text, a frame, and colours for light and dark."""

from xml.sax.saxutils import escape

from generated import settle

STYLE = """
text { font: 13px ui-monospace, "DejaVu Sans Mono", monospace; fill: #1f2328 }
.t { font-weight: bold } .n { fill: #59636e } .p { font-family: system-ui, "DejaVu Sans", sans-serif }
rect { fill: none; stroke: #8c959f } .h { fill: #ddf4ff } .b { fill: #fff1e5 } .z { fill: #eaeef2 }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3 } .n { fill: #9198a1 } rect { stroke: #656c76 }
  .h { fill: #0c2d6b } .b { fill: #4d2d00 } .z { fill: #262c36 }
}"""


def line(x, y, text, kind="", anchor="start"):
    return f'<text x="{x}" y="{y}" class="{kind}" text-anchor="{anchor}">{escape(text)}</text>'


def box(x, y, width, height, kind):
    return f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="4" class="{kind}"/>'


def finish(path, title, width, height, parts):
    """Puts the parts into one picture and settles its file."""
    settle(path, "\n".join((
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}">', f"<title>{title}</title>", f"<style>{STYLE}\n</style>",
        *parts, "</svg>\n")))
