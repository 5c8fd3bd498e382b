#!/usr/bin/env python3
"""Measures the analysis against a plain decode of the same videos and prints it as Markdown tables.
Called by compare.sh, which makes what it needs."""

import argparse
import os
import sys
import tempfile

import component_share
import labelled
import measure

LEAST_ROUNDS = 5


class Bench:
    """Measures one video after another, and remembers whether anything had to be left out."""

    def __init__(self, options):
        self.rounds = 1 if options.quick else options.rounds
        self.autotrim = os.path.join(options.build, 'bin', 'autotrim')
        self.scene_task = os.path.join(options.build, 'bin', 'scene_task')
        self.reference = options.reference_build and os.path.join(
            options.reference_build, 'bin', 'scene_task')
        self.tools = os.environ.get('LABELLED_TOOLS')
        self.complete = True

    def attempt(self, what, work):
        """Returns what `work` gives; where it fails, says so and returns None."""
        say(what)
        try:
            return work()
        except measure.RunFailed as failure:
            say(f'{what} is left out: {failure}')
            self.complete = False
            return None

    def costs(self, commands):
        """Runs the commands in turn, round after round. Returns the runs of each."""
        rounds = [[measure.run(command) for command in commands] for _ in range(self.rounds)]
        return list(zip(*rounds))

    def boundaries(self, scene_task, video):
        said = measure.run([scene_task, '--boundaries', video.file]).output
        return [int(line) for line in said.splitlines()]


def analysis_arguments(file, json_file):
    return ['--kinds', '6,7', '--no-cache', '--progress', 'none', '--json', json_file, file]


def decode_command(file):
    return ['ffmpeg', '-nostdin', '-v', 'error', '-threads', '2', '-i', file,
            '-an', '-f', 'null', '-']


def against(runs, decodes):
    """Returns the cells of a program: wall and CPU time as ratios to decoding, peak memory."""
    wall = measure.ratio([run.wall for run in runs], [run.wall for run in decodes])
    cpu = measure.ratio([run.cpu for run in runs], [run.cpu for run in decodes])
    return [str(wall), str(cpu), f'{max(run.peak for run in runs):.0f}']


def speed_cells(bench, video, with_analysis):
    with tempfile.TemporaryDirectory() as directory:
        commands = [[bench.scene_task, video.file], decode_command(video.file)]
        if with_analysis:
            json_file = os.path.join(directory, 'results.json')
            commands.insert(0, [bench.autotrim, *analysis_arguments(video.file, json_file)])
        *analysed, decodes = bench.costs(commands)
    cells = [cell for runs in analysed for cell in against(runs, decodes)]
    if not with_analysis:
        cells = ['-'] * 3 + cells
    middle = sorted(decodes, key=lambda run: run.wall)[len(decodes) // 2]
    return [f'{middle.wall:.2f} / {middle.cpu:.2f}', *cells]


def same_boundaries(found, expected):
    """Says how many of the expected positions were found exactly, and how many others."""
    same = set(found) & set(expected)
    return f'{len(same)} of {len(expected)}, {len(found) - len(same)} more'


def boundary_cells(bench, video):
    """What scene detection by itself finds, next to the labels and to the reference build."""
    found = bench.boundaries(bench.scene_task, video)
    labels, same = '-', '-'
    if bench.tools:
        labels = str(labelled.agreement(bench.tools, video, found))
    if bench.reference:
        same = same_boundaries(found, bench.boundaries(bench.reference, video))
    return [labels, same]


def print_speed(bench, videos, copies):
    print_row(['video', 'decode s, wall / CPU', 'analysis wall', 'analysis CPU', 'analysis MiB',
               'scenes wall', 'scenes CPU', 'scenes MiB', 'as labelled', 'as reference'])
    print_row(['---'] * 10)
    for video in videos + copies:
        cells = bench.attempt(video.name, lambda: speed_cells(bench, video, video not in copies)
                              + boundary_cells(bench, video))
        if cells:
            print_row([video.name, *cells])
    print()


def print_accuracy(bench, sets):
    if not bench.tools:
        say('the accuracy is left out: LABELLED_TOOLS is not set')
        bench.complete = False
        return
    print_row(['set', 'F1 all', 'F1 cuts', 'F1 gradual', 'exact cuts', 'false in distractors',
               'false elsewhere'])
    print_row(['---'] * 7)
    for name, videos in sets.items():
        result = bench.attempt(f'the accuracy of {name}', lambda: labelled.accuracy(
            bench.tools, bench.autotrim, videos))
        if result:
            print_row([name, result.f1['all'], result.f1['cut'], result.f1['gradual'],
                       f'{result.exact_cuts} of {result.cuts}', result.false_in_distractors,
                       result.false_elsewhere])
    print()


def print_component_share(bench, video):
    with tempfile.TemporaryDirectory() as directory:
        arguments = analysis_arguments(video.file, os.path.join(directory, 'results.json'))
        counts = bench.attempt('the share of the component', lambda: component_share.component_share(
            bench.autotrim, arguments))
    if counts:
        samples, component = counts
        print(f'CPU time of the component in the analysis of {video.name}: '
              f'{100 * component / samples:.2f} % ({component} of {samples} samples)')


def print_row(cells):
    print('| ' + ' | '.join(str(cell) for cell in cells) + ' |', flush=True)


def say(line):
    print('compare.py:', line, file=sys.stderr, flush=True)


def parsed_options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('--build', required=True)
    parser.add_argument('--reference-build')
    parser.add_argument('--set', action='append', required=True, dest='sets')
    parser.add_argument('--copies')
    parser.add_argument('--copied', help='the labels of the video that the copies are of')
    parser.add_argument('--copied-seconds', type=float)
    parser.add_argument('--rounds', type=int, default=LEAST_ROUNDS)
    parser.add_argument('--quick', action='store_true')
    parser.add_argument('--only', default='')
    options = parser.parse_args()
    if options.rounds < LEAST_ROUNDS:
        parser.error(f'fewer than {LEAST_ROUNDS} rounds say little; --quick takes one')
    require(parser, options.build, ['autotrim', 'scene_task'])
    if options.reference_build:
        require(parser, options.reference_build, ['scene_task'])
    names = [labelled.set_name(directory) for directory in options.sets]
    if len(set(names)) < len(names):
        parser.error('two sets have the same name')
    return options


def require(parser, build, programs):
    for program in programs:
        if not os.access(os.path.join(build, 'bin', program), os.X_OK):
            parser.error(f'{build} has no bin/{program}')


def chosen(videos, text):
    return [video for video in videos if text in video.name]


def main():
    options = parsed_options()
    bench = Bench(options)
    sets = {}
    for directory in options.sets:
        name = labelled.set_name(directory)
        found = bench.attempt(f'the set {name}', lambda: labelled.videos_of_set(directory))
        sets[name] = chosen(found or [], options.only)
    sets = {name: videos for name, videos in sets.items() if videos}
    copies = []
    if options.copies:
        copies = chosen(labelled.copies(options.copies, options.copied, options.copied_seconds),
                        options.only)
    videos = [video for videos in sets.values() for video in videos]
    if not videos and not copies:
        why = f' with "{options.only}" in its name' if options.only else ''
        say(f'there is no video{why}')
        return 1

    print_speed(bench, videos, copies)
    if videos:
        print_accuracy(bench, sets)
        print_component_share(bench, videos[0])
    return 0 if bench.complete else 1


if __name__ == '__main__':
    sys.exit(main())
