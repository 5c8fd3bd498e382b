"""Labelled videos, and how well found scenes agree with their labels, as the set's own scorer says."""

import ast
import glob
import json
import os
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass

import measure


@dataclass
class Video:
    """A video whose scene boundaries are known."""

    name: str
    file: str
    truth: dict

    def boundary_count(self):
        return len(self.truth['boundaries'])


def videos_of_set(directory):
    """Returns the labelled videos of a directory, by name. Raises RunFailed where there is none."""
    videos = []
    for file in sorted(glob.glob(os.path.join(directory, '*.truth.json'))):
        truth = _truth_of(file)
        stem = os.path.splitext(truth['video'])[0]
        videos.append(Video(f'{set_name(directory)}/{stem}',
                            os.path.join(directory, truth['video']), truth))
    if not videos:
        raise measure.RunFailed(f'{directory} holds no labelled video')
    return videos


def set_name(directory):
    return os.path.basename(os.path.abspath(directory))


def copies(directory, copied, seconds):
    """Returns the copies of the first seconds of a video, with the part of its labels that they
    show. Labels that the end cuts through are left out, and with them all that follows."""
    truth = _truth_of(copied)
    end = min(truth['frames'], round(seconds * truth['fps_num'] / truth['fps_den']))
    for boundary in truth['boundaries']:
        if boundary['frame_begin'] < end <= boundary['frame_end']:
            end = boundary['frame_begin']
    shown = dict(truth, frames=end)
    for kind in ('boundaries', 'distractors'):
        shown[kind] = [label for label in truth[kind] if label['frame_end'] < end]
    return [Video(f'copy/{name}', os.path.join(directory, name), shown)
            for name in sorted(os.listdir(directory)) if not name.startswith('unfinished')]


@dataclass
class Agreement:
    """How many of the labelled boundaries were found, and how many more that are none."""

    found: int
    labelled: int
    false: int

    def __str__(self):
        return f'{self.found} of {self.labelled}, {self.false} false'


def agreement(tools, video, boundaries):
    """Scores boundaries, in ticks, by score_scenes.py in the directory `tools`."""
    with tempfile.TemporaryDirectory() as directory:
        truth, found = os.path.join(directory, 'truth.json'), os.path.join(directory, 'found.txt')
        with open(truth, 'w', encoding='utf-8') as file:
            json.dump(video.truth, file)
        with open(found, 'w', encoding='utf-8') as file:
            file.writelines(f'{boundary}\n' for boundary in boundaries)
        said = _say([os.path.join(tools, 'score_scenes.py'), truth, found, '--unit', 'ticks',
                     '--json'])
    counts = json.loads(said)['counts']
    return Agreement(counts['tp_cut'] + counts['tp_dissolve'] + counts['tp_fade'],
                     video.boundary_count(), counts['fp'])


@dataclass
class Accuracy:
    """How well autotrim finds the boundaries of several videos together."""

    f1: dict  # of all, cut, gradual: a text of three decimals
    exact_cuts: int
    cuts: int
    false_in_distractors: int
    false_elsewhere: int


def accuracy(tools, autotrim, videos):
    """Runs autotrim on labelled videos of sets, all scenes kept, and scores its records."""
    truths = [os.path.splitext(video.file)[0] + '.truth.json' for video in videos]
    said = _say([os.path.join(tools, 'score_autotrim.py'), autotrim, *truths,
                 '--', '--kinds', '6,7'])
    f1 = {kind: re.search(rf'^{kind}\s.*F1 (\S+)$', said, re.M).group(1)
          for kind in ('all', 'cut', 'gradual')}
    counts = ast.literal_eval(re.search(r'^counts (.*)$', said, re.M).group(1))
    false = ast.literal_eval(re.search(r'^false positives by distractor (.*)$', said, re.M).group(1))
    elsewhere = false.pop('none', 0)
    return Accuracy(f1, counts['exact_cut'], counts['n_cut'], sum(false.values()), elsewhere)


def _truth_of(file):
    with open(file, encoding='utf-8') as text:
        return json.load(text)


def _say(arguments):
    done = subprocess.run([sys.executable, *arguments], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        why = ''.join((done.stderr.splitlines() or ['no reason given'])[-1:])
        raise measure.RunFailed(f'{os.path.basename(arguments[0])}: {why}')
    return done.stdout
