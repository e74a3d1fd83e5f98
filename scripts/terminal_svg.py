"""Draws what a terminal shows, with its colours, as an SVG: standard input to standard output.

usage: terminal_svg.py COLUMNS TITLE
"""

import io
import sys

from rich.console import Console
from rich.terminal_theme import TerminalTheme
from rich.text import Text

BACKGROUND, FOREGROUND = (22, 27, 34), (214, 220, 228)
NORMAL = [(72, 79, 88), (255, 123, 114), (63, 185, 80), (210, 153, 34), (88, 166, 255), (188, 140, 255), (57, 197, 207), FOREGROUND]
BRIGHT = [(110, 118, 129), (255, 161, 152), (86, 211, 100), (227, 179, 65), (121, 192, 255), (210, 168, 255), (86, 212, 221), (255, 255, 255)]

# No fonts from elsewhere: whoever looks at the picture has one with letters of equal width.
PICTURE = """\
<svg class="rich-terminal" viewBox="0 0 {width} {height}" xmlns="http://www.w3.org/2000/svg">
<style>
.{unique_id}-matrix {{
  font-family: "DejaVu Sans Mono", Menlo, Consolas, "Liberation Mono", monospace;
  font-size: {char_height}px; line-height: {line_height}px; font-variant-east-asian: full-width;
}}
.{unique_id}-title {{ font-family: "DejaVu Sans", Helvetica, Arial, sans-serif; font-size: 16px; }}
{styles}
</style>
<defs>
<clipPath id="{unique_id}-clip-terminal"><rect x="0" y="0" width="{terminal_width}" height="{terminal_height}"/></clipPath>
{lines}
</defs>
{chrome}
<g transform="translate({terminal_x}, {terminal_y})" clip-path="url(#{unique_id}-clip-terminal)">
{backgrounds}
<g class="{unique_id}-matrix">
{matrix}
</g>
</g>
</svg>
"""


def main(columns, title):
    console = Console(record=True, width=int(columns), file=io.StringIO(), force_terminal=True, color_system="truecolor")
    shown = sys.stdin.read().rstrip("\n")
    console.print(Text.from_ansi(shown), no_wrap=True, highlight=False, end="\n\n")
    theme = TerminalTheme(BACKGROUND, FOREGROUND, NORMAL, BRIGHT)
    sys.stdout.write(console.export_svg(title=title, theme=theme, code_format=PICTURE, unique_id="terminal"))


if __name__ == "__main__":
    main(*sys.argv[1:])
