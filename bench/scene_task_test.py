"""Tests of the program scene_task, whose path is the first argument."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

SECOND = 10_000_000
SCENE_TASK = sys.argv.pop(1)


def scene_task(*arguments):
    return subprocess.run([SCENE_TASK, *arguments], capture_output=True, text=True, check=False)


class SceneTask(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.video = os.path.join(directory.name, 'scenes.mp4')
        # Three scenes of two seconds.
        subprocess.run(['ffmpeg', '-nostdin', '-loglevel', 'error',
                        '-f', 'lavfi', '-i', 'testsrc=size=320x240:rate=25:duration=2',
                        '-f', 'lavfi', '-i', 'mandelbrot=size=320x240:rate=25:end_pts=100',
                        '-f', 'lavfi', '-i', 'smptebars=size=320x240:rate=25:duration=2',
                        '-filter_complex',
                        '[1]trim=duration=2,setsar=1[b];[0]setsar=1[a];[2]setsar=1[c];'
                        '[a][b][c]concat=n=3:v=1:a=0',
                        '-c:v', 'libx264', '-pix_fmt', 'yuv420p', cls.video], check=True)

    def test_tells_of_its_run(self):
        run = scene_task(self.video)
        self.assertEqual((run.returncode, run.stderr), (0, ''))
        told = json.loads(run.stdout)
        self.assertEqual(told['scenes'], [[0, 2 * SECOND], [2 * SECOND, 4 * SECOND],
                                          [4 * SECOND, 6 * SECOND]])
        self.assertGreater(told['progressEvents'], 0)
        self.assertIs(told['wentBackwards'], False)
        self.assertIsInstance(told['reached100'], bool)
        self.assertGreater(told['importSeconds'], 0)
        self.assertGreater(told['longestStandstillSeconds'], 0)
        self.assertLessEqual(told['longestStandstillSeconds'], told['taskSeconds'])

    def test_prints_where_scenes_begin(self):
        run = scene_task('--boundaries', self.video)
        self.assertEqual(run.stdout, f'{2 * SECOND}\n{4 * SECOND}\n')

    def test_takes_a_threshold(self):
        run = scene_task('--boundaries', '--threshold', '1000', self.video)
        self.assertEqual((run.returncode, run.stdout), (0, ''))

    def test_says_what_is_wrong(self):
        for arguments, complaint in ((['/not-there'], 'there is no such file'),
                                     (['--threshold', '0', self.video], 'the threshold was refused')):
            run = scene_task(*arguments)
            self.assertEqual((run.returncode, run.stdout), (1, ''))
            self.assertEqual(run.stderr, f'scene_task: {complaint}\n')


if __name__ == '__main__':
    unittest.main()
