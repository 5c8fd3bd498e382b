"""Tests of the program scene_signal, whose path is the first argument, and of plot_signal.py."""

import contextlib
import csv
import io
import os
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import plot_signal

SCENE_SIGNAL = sys.argv.pop(1)


def scene_signal(*arguments):
    return subprocess.run([SCENE_SIGNAL, *arguments], capture_output=True, text=True, check=False)


def elements(svg, kind):
    """Returns the elements of a class, those of legends included."""
    return [element for element in ElementTree.fromstring(svg).iter()
            if element.get('class') == kind]


def plotted(*arguments):
    """Returns the exit code of plot_signal.py, and what it prints and complains about."""
    output, complaints = io.StringIO(), io.StringIO()
    with contextlib.redirect_stdout(output), contextlib.redirect_stderr(complaints):
        code = plot_signal.main(list(arguments))
    return code, output.getvalue(), complaints.getvalue()


def signals(seconds, transitions=()):
    flat = [0.0] * len(seconds)
    return plot_signal.Signals(list(seconds), flat, flat, flat, [9.0] * len(seconds),
                               list(transitions))


class SceneSignal(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.video = os.path.join(directory.name, 'scenes.mp4')
        cls.table = os.path.join(directory.name, 'scenes.csv')
        # A cut after two seconds, a dissolve from 4 to 5.
        subprocess.run(['ffmpeg', '-nostdin', '-loglevel', 'error',
                        '-f', 'lavfi', '-i', 'testsrc=size=320x240:rate=25:duration=2',
                        '-f', 'lavfi', '-i', 'mandelbrot=size=320x240:rate=25:end_pts=100',
                        '-f', 'lavfi', '-i', 'smptebars=size=320x240:rate=25:duration=3',
                        '-filter_complex',
                        '[0]setsar=1,settb=1/25,format=yuv420p[a];'
                        '[1]trim=duration=3,setsar=1,settb=1/25,format=yuv420p[b];'
                        '[2]setsar=1,settb=1/25,format=yuv420p[c];'
                        '[b][c]xfade=duration=1:offset=2[bc];[a][bc]concat=n=2:v=1:a=0',
                        '-c:v', 'libx264', cls.video], check=True)
        cls.run_of_video = scene_signal(cls.video)
        with open(cls.table, 'w', encoding='utf-8') as table:
            table.write(cls.run_of_video.stdout)

    def rows(self):
        return list(csv.DictReader(io.StringIO(self.run_of_video.stdout)))

    def test_pictures_ascend(self):
        self.assertEqual((self.run_of_video.returncode, self.run_of_video.stderr), (0, ''))
        seconds = [float(row['seconds']) for row in self.rows()]
        self.assertEqual(seconds[0], 0)
        self.assertEqual(seconds, sorted(set(seconds)))

    def test_transitions_are_where_they_were_made(self):
        cut, dissolve = [row for row in self.rows() if row['transition']]
        self.assertEqual((cut['transition'], cut['seconds'], cut['transition_begin'],
                          cut['transition_end']), ('cut', '2.000', '2.000', '2.000'))
        self.assertGreater(float(cut['lasting_change']), float(cut['least_cut']))
        self.assertEqual(dissolve['transition'], 'gradual')
        self.assertGreater(float(dissolve['blend']), 0)
        for field, made, tolerance in (('transition_begin', 4, 0.3), ('seconds', 4.5, 0.3),
                                       ('transition_end', 5, 0.3)):
            self.assertAlmostEqual(float(dissolve[field]), made, delta=tolerance, msg=field)

    def test_threshold_moves_the_least_cut(self):
        higher = csv.DictReader(io.StringIO(scene_signal('--threshold', '6', self.video).stdout))
        self.assertEqual(float(next(higher)['least_cut']), 2 * float(self.rows()[0]['least_cut']))

    def test_tells_of_a_file_that_is_none(self):
        run = scene_signal(self.table)
        self.assertEqual((run.returncode, run.stdout), (1, ''))
        self.assertTrue(run.stderr.startswith('scene_signal: '), run.stderr)

    def test_is_plotted(self):
        code, svg, complaints = plotted(f'a < b={self.table}', f'again={self.table}')
        self.assertEqual((code, complaints), (0, ''))
        titles = [element.text for element in elements(svg, 'title')]
        self.assertEqual(titles, ['a < b', 'again'])
        # One of each in each panel, and one in its legend.
        self.assertEqual(len(elements(svg, 'cut')), 4)
        self.assertEqual(len(elements(svg, 'gradual')), 4)
        self.assertEqual(len(elements(svg, 'band')), 2)


class Plot(unittest.TestCase):
    def test_steps_are_round(self):
        for extent, count, step in ((10, 10, 1), (150, 5, 50), (0.9, 5, 0.2), (21, 10, 5)):
            self.assertAlmostEqual(plot_signal.step_for(extent, count), step)

    def test_curves_break_where_pictures_were_left_out(self):
        self.assertEqual(list(signals([0, 0.04, 0.08, 2, 2.04]).ends_of_stretches()), [3, 5])

    def test_curves_of_few_pictures_do_not_break(self):
        self.assertEqual(list(signals([0, 1, 2, 3, 4]).ends_of_stretches()), [5])
        self.assertEqual(list(signals([0]).ends_of_stretches()), [1])

    def test_positions_are_in_scale(self):
        panel = plot_signal.Panel('', signals([0, 10]), 100)
        self.assertEqual(panel.x(0), plot_signal.LEFT)
        self.assertEqual(panel.x(10), plot_signal.WIDTH - plot_signal.RIGHT)
        self.assertEqual(panel.highest, 10)
        self.assertEqual(panel.y(10), 100 + plot_signal.TOP)
        self.assertEqual(panel.y(0), 100 + plot_signal.PANEL_HEIGHT - plot_signal.BOTTOM)

    def test_short_dissolve_can_be_seen(self):
        dissolve = plot_signal.Transition(500, 500, 500.1, False)
        svg = plot_signal.plot([('', signals([0, 10000], [dissolve]))])
        band, = elements(svg, 'band')
        self.assertEqual(float(band.get('width')), plot_signal.LEAST_BAND_PX)

    def test_complains_about_what_is_no_table(self):
        with tempfile.TemporaryDirectory() as directory:
            other = os.path.join(directory, 'other.csv')
            with open(other, 'w', encoding='utf-8') as table:
                table.write('a,b\n1,2\n')
            for arguments, code in (((f'x={other}',), 1), ((f'x={other}2',), 1), ((), 2),
                                    ((other,), 2)):
                with self.subTest(arguments):
                    found, output, complaints = plotted(*arguments)
                    self.assertEqual((found, output), (code, ''))
                    self.assertTrue(complaints)


if __name__ == '__main__':
    unittest.main()
