"""Draws what scene_signal prints: changes, blends, and the scenes that begin, as one SVG.

    plot_signal.py TITLE=TABLE.csv [TITLE=TABLE.csv ...] > signals.svg
"""

import csv
import math
import statistics
import sys
from dataclasses import dataclass
from xml.sax.saxutils import escape

WIDTH = 900
PANEL_HEIGHT = 360
LEFT, RIGHT, TOP, BOTTOM = 56, 16, 64, 58

# In a long video a dissolve is narrow; its band is never narrower than this.
LEAST_BAND_PX = 2

# Of two pictures that are further apart, in seconds and in usual steps, what is between was left out.
LARGEST_STEP = 0.25
USUAL_STEPS = 3

STYLE = '''
    svg { --text: #24292f; --soft: #6a737d; --grid: #d8dee4; --change: #8c959f; --lasting: #0969da;
          --blend: #bc4c00; --bar: #1a7f37; --band: #bc4c00; background: #ffffff; }
    @media (prefers-color-scheme: dark) {
      svg { --text: #e6edf3; --soft: #9198a1; --grid: #30363d; --change: #6e7681;
            --lasting: #58a6ff; --blend: #f0883e; --bar: #3fb950; --band: #f0883e;
            background: #0d1117; }
    }
    text { font: 12px system-ui, sans-serif; fill: var(--text); }
    .title { font-size: 14px; font-weight: 600; }
    .soft { fill: var(--soft); }
    .grid { stroke: var(--grid); stroke-width: 1; }
    .axis { stroke: var(--soft); stroke-width: 1; }
    .seen { stroke: var(--soft); stroke-width: 1; }
    .change { stroke: var(--change); stroke-width: 1; fill: none; }
    .lasting { stroke: var(--lasting); stroke-width: 1.6; fill: none; }
    .blend { stroke: var(--blend); stroke-width: 1.6; fill: none; }
    .bar { stroke: var(--bar); stroke-width: 1.2; stroke-dasharray: 5 4; fill: none; }
    .cut { fill: var(--lasting); }
    .gradual { fill: var(--band); }
    .band { fill: var(--band); opacity: 0.16; }
'''


@dataclass
class Transition:
    """Where a scene begins, in seconds; of a cut all three are the same."""

    boundary: float
    begin: float
    end: float
    is_cut: bool


@dataclass
class Signals:
    """One table: columns of equal length, and the transitions."""

    seconds: list
    change: list
    lasting: list
    blend: list
    least_cut: list
    transitions: list

    def ends_of_stretches(self):
        """Yields the index behind each stretch of pictures that follow each other closely."""
        steps = [after - before for before, after in zip(self.seconds, self.seconds[1:])]
        usual = statistics.median(steps) if steps else 0
        for i, step in enumerate(steps, start=1):
            if step > max(LARGEST_STEP, USUAL_STEPS * usual):
                yield i
        yield len(self.seconds)


def signals_of(rows):
    """Returns the signals of the rows of a table. Raises ValueError where there is none."""
    rows = list(rows)
    if not rows:
        raise ValueError('the table is empty')

    def column(name):
        return [float(row[name]) for row in rows]

    transitions = [Transition(float(row['seconds']), float(row['transition_begin']),
                              float(row['transition_end']), row['transition'] == 'cut')
                   for row in rows if row['transition']]
    return Signals(column('seconds'), column('change'), column('lasting_change'), column('blend'),
                   column('least_cut'), transitions)


def step_for(extent, count):
    """Returns the round distance at which about `count` ticks divide `extent`, which is above 0."""
    rough = extent / count
    power = 10.0 ** math.floor(math.log10(rough))
    return next(power * factor for factor in (1, 2, 5, 10) if power * factor >= rough * 0.999)


class Panel:
    """Draws one table into a box whose upper edge is at `top`."""

    def __init__(self, title, signals, top):
        self.title = title
        self.signals = signals
        self.top = top
        self.end = max(signals.seconds[-1], 1e-3)
        highest = max(signals.change + signals.lasting + signals.blend + signals.least_cut)
        self.step = step_for(max(highest * 1.08, 1), 5)
        self.highest = math.ceil(max(highest * 1.08, 1) / self.step) * self.step

    def x(self, seconds):
        return LEFT + seconds / self.end * (WIDTH - LEFT - RIGHT)

    def y(self, value):
        height = PANEL_HEIGHT - TOP - BOTTOM
        return self.top + TOP + (1 - value / self.highest) * height

    def draw(self):
        return '\n'.join([*self.frame(), *self.bands(), *self.curves(), *self.seen(),
                          *self.marks(), *self.legend()])

    def frame(self):
        bottom = self.y(0)
        yield text(LEFT, self.top + 22, self.title, 'title')
        for i in range(round(self.highest / self.step) + 1):
            y = self.y(i * self.step)
            yield line(LEFT, y, WIDTH - RIGHT, y, 'axis' if i == 0 else 'grid')
            yield text(LEFT - 8, y + 4, f'{i * self.step:g}', 'soft', 'end')
        step = step_for(self.end, 10)
        for i in range(math.floor(self.end / step + 1e-9) + 1):
            x = self.x(i * step)
            yield line(x, bottom, x, bottom + 5, 'axis')
            yield text(x, bottom + 30, f'{i * step:g}', 'soft', 'middle')
        yield text((LEFT + WIDTH - RIGHT) / 2, bottom + 48, 'time in seconds', 'soft', 'middle')
        middle = (self.y(0) + self.y(self.highest)) / 2
        yield (f'<text class="soft" text-anchor="middle" transform="translate(16 {middle:.1f}) '
               'rotate(-90)">difference, in steps of 8 bits</text>')

    def bands(self):
        for transition in self.signals.transitions:
            if transition.is_cut:
                continue
            left, right = self.x(transition.begin), self.x(transition.end)
            yield (f'<rect class="band" x="{left:.1f}" y="{self.y(self.highest):.1f}" '
                   f'width="{max(right - left, LEAST_BAND_PX):.1f}" '
                   f'height="{self.y(0) - self.y(self.highest):.1f}"/>')

    def curves(self):
        yield self.curve(self.signals.change, 'change')
        yield self.curve(self.signals.least_cut, 'bar')
        yield self.curve(self.signals.blend, 'blend')
        yield self.curve(self.signals.lasting, 'lasting')

    def curve(self, values, kind):
        pieces = []
        begin = 0
        for end in self.signals.ends_of_stretches():
            points = zip(self.signals.seconds[begin:end], values[begin:end])
            pieces.append('M' + ' L'.join(f'{self.x(s):.1f} {self.y(v):.1f}' for s, v in points))
            begin = end
        return f'<path class="{kind}" d="{" ".join(pieces)}"/>'

    def seen(self):
        """The pictures that were looked at, as ticks below the axis."""
        top = self.y(0) + 8
        marks = ' '.join(f'M{self.x(s):.1f} {top:.1f} v7' for s in self.signals.seconds)
        yield f'<path class="seen" d="{marks}"/>'

    def marks(self):
        y = self.y(self.highest) - 3
        for transition in self.signals.transitions:
            yield triangle(self.x(transition.boundary), y, 'cut' if transition.is_cut
                           else 'gradual')

    def legend(self):
        y = self.top + 44
        x = LEFT
        for kind, label in (('change', 'change'), ('lasting', 'lasting change'),
                            ('blend', 'blend'), ('bar', 'least change of a cut')):
            yield line(x, y - 4, x + 20, y - 4, kind)
            yield text(x + 26, y, label)
            x += 44 + 6.6 * len(label)
        for kind, label in (('cut', 'cut'), ('gradual', 'dissolve or fade')):
            yield triangle(x + 6, y, kind)
            yield text(x + 18, y, label)
            x += 36 + 6.6 * len(label)
        yield line(x + 4, y - 8, x + 4, y - 1, 'seen')
        yield line(x + 8, y - 8, x + 8, y - 1, 'seen')
        yield text(x + 16, y, 'picture looked at')


def line(x1, y1, x2, y2, kind):
    return f'<line class="{kind}" x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}"/>'


def text(x, y, content, kind='', anchor='start'):
    return (f'<text class="{kind}" x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}">'
            f'{escape(content)}</text>')


def triangle(x, tip, kind):
    """Returns a triangle that stands on its tip."""
    return f'<path class="{kind}" d="M{x:.1f} {tip:.1f} l-5 -9 h10 z"/>'


def plot(panels):
    """Returns an SVG of pairs of a title and signals, one below the other."""
    height = PANEL_HEIGHT * len(panels)
    drawn = '\n'.join(Panel(title, signals, PANEL_HEIGHT * i).draw()
                      for i, (title, signals) in enumerate(panels))
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
            f'viewBox="0 0 {WIDTH} {height}" role="img">\n<title>Signals of scene detection'
            f'</title>\n<style>{STYLE}</style>\n{drawn}\n</svg>\n')


def complain(about):
    print(f'plot_signal: {about}', file=sys.stderr)
    return 1


def main(arguments):
    if not arguments or not all('=' in argument for argument in arguments):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    panels = []
    for argument in arguments:
        title, file = argument.rsplit('=', 1)
        try:
            with open(file, newline='', encoding='utf-8') as table:
                panels.append((title, signals_of(csv.DictReader(table))))
        except OSError as error:
            return complain(f'{file}: {error.strerror}')
        except (KeyError, ValueError) as error:
            return complain(f'{file} is no table of scene_signal: {error}')
    sys.stdout.write(plot(panels))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
