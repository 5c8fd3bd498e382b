"""Tests of what compare.py makes of its measurements."""

import json
import os
import sys
import tempfile
import unittest

import compare
import component_share
import labelled
import measure


class Costs(unittest.TestCase):
    def test_of_a_run_are_those_of_its_process(self):
        work = ('block = bytearray(200 << 20)\n'
                'import time\n'
                'while time.process_time() < 0.3: pass\n'
                'print("done")')
        run = measure.run([sys.executable, '-c', work])
        self.assertEqual(run.output, 'done\n')
        self.assertGreaterEqual(run.cpu, 0.3)
        self.assertLess(run.cpu, 3)
        self.assertGreaterEqual(run.wall, 0.25)
        self.assertGreater(run.peak, 200)
        self.assertLess(run.peak, 300)

    def test_of_the_next_run_begin_anew(self):
        measure.run([sys.executable, '-c', 'bytearray(200 << 20)'])
        self.assertLess(measure.run([sys.executable, '-c', '']).peak, 100)

    def test_are_none_where_a_program_fails(self):
        with self.assertRaisesRegex(measure.RunFailed, 'exit code 3: why$'):
            measure.run([sys.executable, '-c',
                         'import sys; sys.stderr.write("first\\nwhy\\n"); sys.exit(3)'])
        with self.assertRaisesRegex(measure.RunFailed, 'not-there: No such file'):
            measure.run(['/not-there'])

    def test_are_compared_round_by_round(self):
        ratio = measure.ratio([3, 8, 2], [2, 4, 4])
        self.assertEqual((ratio.median, ratio.least, ratio.most), (1.5, 0.5, 2))
        self.assertEqual(str(ratio), '1.50 (0.50..2.00)')
        self.assertEqual(str(measure.ratio([3], [2])), '1.50')


class Labels(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name
        truth = {'video': 'a.mp4', 'frames': 200, 'fps_num': 25, 'fps_den': 1,
                 'boundaries': [{'frame_begin': 20, 'frame_end': 20},
                                {'frame_begin': 90, 'frame_end': 110},
                                {'frame_begin': 150, 'frame_end': 150}],
                 'distractors': [{'frame_begin': 30, 'frame_end': 40},
                                 {'frame_begin': 95, 'frame_end': 120}]}
        self.truth = os.path.join(self.directory, 'a.truth.json')
        with open(self.truth, 'w', encoding='utf-8') as file:
            json.dump(truth, file)

    def shown(self, seconds):
        copies = os.path.join(self.directory, 'copies')
        os.makedirs(copies, exist_ok=True)
        for name in ('hevc.mp4', 'unfinished.av1.mp4'):
            open(os.path.join(copies, name), 'w', encoding='utf-8').close()
        only, = labelled.copies(copies, self.truth, seconds)
        self.assertEqual((only.name, only.file),
                         ('copy/hevc.mp4', os.path.join(copies, 'hevc.mp4')))
        return only.truth

    def test_of_a_set_go_with_its_videos(self):
        video, = labelled.videos_of_set(self.directory)
        self.assertEqual(video.name, f'{os.path.basename(self.directory)}/a')
        self.assertEqual(video.file, os.path.join(self.directory, 'a.mp4'))
        self.assertEqual(video.boundary_count(), 3)

    def test_of_a_copy_are_those_that_it_shows(self):
        shown = self.shown(seconds=5)
        self.assertEqual(shown['frames'], 125)
        self.assertEqual([label['frame_end'] for label in shown['boundaries']], [20, 110])
        self.assertEqual([label['frame_end'] for label in shown['distractors']], [40, 120])

    def test_of_a_copy_end_before_one_that_it_shows_half(self):
        shown = self.shown(seconds=4)
        self.assertEqual(shown['frames'], 90)
        self.assertEqual([label['frame_end'] for label in shown['boundaries']], [20])
        self.assertEqual([label['frame_end'] for label in shown['distractors']], [40])

    def test_of_a_copy_end_before_one_that_begins_with_what_is_cut_off(self):
        self.assertEqual(self.shown(seconds=4.4)['frames'], 90)
        shown = self.shown(seconds=6)
        self.assertEqual(shown['frames'], 150)
        self.assertEqual([label['frame_end'] for label in shown['boundaries']], [20, 110])

    def test_of_a_copy_of_all_are_all(self):
        self.assertEqual(self.shown(seconds=100)['frames'], 200)

    def test_are_missed_where_a_set_is_empty(self):
        with self.assertRaisesRegex(measure.RunFailed, 'holds no labelled video'):
            labelled.videos_of_set(os.path.join(self.directory, 'nothing'))


class Boundaries(unittest.TestCase):
    def test_are_the_same_exactly_or_not_at_all(self):
        self.assertEqual(compare.same_boundaries([10, 20, 31], [10, 20, 30, 40]), '2 of 4, 1 more')


class Samples(unittest.TestCase):
    def owner_of(self, *libraries):
        lines = [f'\t   7f{depth:02} function(int) ({library})'
                 for depth, library in enumerate(libraries)]
        return component_share.owner_of('\n'.join(['autotrim ', *lines]))

    def test_fall_to_the_nearest_library_that_is_no_servant(self):
        self.assertEqual(self.owner_of('/usr/lib/libc.so.6', '/b/lib/libMaterialAnalysis.so',
                                       '/b/lib/libreference_host.so'), 'libMaterialAnalysis.so')
        self.assertEqual(self.owner_of('[kernel.kallsyms]', '/usr/lib/libstdc++.so.6.0.30',
                                       '/usr/lib/libavcodec.so.59', '/b/libMaterialAnalysis.so'),
                         'libavcodec.so.59')

    def test_fall_to_a_servant_that_nobody_called(self):
        self.assertEqual(self.owner_of('/usr/lib/ld-linux-x86-64.so.2'), 'ld-linux-x86-64.so.2')
        self.assertEqual(component_share.owner_of('autotrim '), '')


if __name__ == '__main__':
    unittest.main()
